// Where the kept part of a truncated log begins. The input is a list of 16-bit numbers that
// describe a log: by how many bytes it is shorter than the longest log used here, the length of its
// first line divided by 16, and the lengths of the other lines, repeated until the log is full.

#include "Fuzz.h"

#include <Utility/Formats/TruncationOffset_p.h>
#include <Utility/Log.h>

#include <QtCore/QtEndian>

#include <algorithm>
#include <cstring>

using namespace Vorn::Util;
using Formats::AmountToTruncate;
using Formats::LogHeadSize;
using Formats::truncationOffset;

namespace {

constexpr std::size_t NumberSize = 2;

int lengthAt(const std::uint8_t *data, std::size_t index)
{
    return qFromLittleEndian<quint16>(data + index * NumberSize);
}

const QByteArray &logOf(const std::uint8_t *data, std::size_t count)
{
    constexpr int Slack = 4096;
    const int size = LogHeadSize + Slack / 2 - lengthAt(data, 0) % Slack;
    static QByteArray log; // static, so that its memory is allocated once
    log.fill('x', size);
    if (count < 3)
        return log;
    char *bytes = log.data();
    std::size_t index = 2;
    for (int at = lengthAt(data, 1) * 16; at < size; at += lengthAt(data, index)) {
        bytes[at++] = '\n';
        index = index + 1 < count ? index + 1 : 2;
    }
    return log;
}

// A simple way to find the offset: reads the log piece by piece.
qint64 offsetOf(const QByteArray &log)
{
    constexpr int PieceSize = 255;
    int position = 0;
    while (position < log.size() && position <= Log::AmountToTruncate) {
        const int length = std::min(PieceSize, log.size() - position);
        const char *begin = log.constData() + position;
        const void *lineEnd = std::memchr(begin, '\n', static_cast<std::size_t>(length));
        position
            += lineEnd ? static_cast<int>(static_cast<const char *>(lineEnd) - begin) + 1 : length;
    }
    return position;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < NumberSize)
        return 0;
    const QByteArray &log = logOf(data, size / NumberSize);
    const QByteArray head
        = QByteArray::fromRawData(log.constData(), std::min(log.size(), LogHeadSize));
    const qint64 offset = offsetOf(log);
    CHECK(truncationOffset(head) == offset);
    // The same offset if a first part that ends with a line is omitted.
    for (const int lineEnd : {head.indexOf('\n'), head.lastIndexOf('\n', AmountToTruncate - 2)}) {
        const int omitted = lineEnd + 1;
        if (omitted < AmountToTruncate) {
            const QByteArray rest
                = QByteArray::fromRawData(head.constData() + omitted, head.size() - omitted);
            CHECK(omitted + truncationOffset(rest, AmountToTruncate - omitted) == offset);
        }
    }
    return 0;
}
