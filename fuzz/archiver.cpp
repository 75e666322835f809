// The input is the output of the archiver, after two bytes. Byte 0: bits 0 and 1 are the dialect,
// bit 2 is the operation (1: list), bit 3 is the separator (1: that of Windows). Byte 1 is the seed
// for the sizes of the blocks that the output arrives in.

#include "Fuzz.h"

#include <Utility/Formats/ArchiverOutput_p.h>
#include <Utility/Formats/LineSplitter_p.h>

#include <QtCore/QStringList>

#include <functional>
#include <random>

using namespace Vorn::Util;
using namespace Vorn::Util::Formats;

namespace {

// Records each event as a text.
class Recorder : public ArchiverEvents
{
public:
    void type(const QString &name) override { add('t', name); }
    void method(const QString &name) override { add('m', name); }
    void file(const QString &name) override { add('f', name); }
    void uncompressedSize(qint64 bytes) override { add('u', QString::number(bytes)); }
    void compressedSize(qint64 bytes) override { add('c', QString::number(bytes)); }

    const QStringList &events() const { return events_; }

private:
    void add(char kind, const QString &text) { events_ << QLatin1Char(kind) + text; }

    QStringList events_;
};

struct Program
{
    ArchiverDialect dialect;
    ArchiverOperation operation;
    char separator;
};

QStringList read(const QByteArray &text, const Program &program,
                 const std::function<int()> &nextBlockSize)
{
    Recorder recorder;
    const auto reader
        = makeArchiverReader(program.dialect, program.separator, program.operation, recorder);
    LineSplitter splitter;
    for (int at = 0; at < text.size();) {
        const int blockSize = nextBlockSize();
        const QList<QByteArray> lines = splitter.add(text.mid(at, blockSize));
        for (const QByteArray &line : lines)
            reader->readLine(line);
        at += blockSize;
    }
    return recorder.events();
}

// What must be true for every output.
void checkEvents(const QStringList &events, const QByteArray &text, const Program &program)
{
    const bool isOld = program.dialect == ArchiverDialect::UpTo933;
    const bool isListing = program.operation == ArchiverOperation::List;
    CHECK(events.size() <= 2 * text.count('\n'));
    int totals = 0;
    for (const QString &event : events) {
        const QChar kind = event.at(0);
        CHECK(isListing || (kind != QLatin1Char('t') && kind != QLatin1Char('m')));
        totals += kind == QLatin1Char('u');
        if (kind == QLatin1Char('f') && !isOld) {
            // The output contains the name unchanged. Bytes that are not UTF-8 cannot be compared.
            const QString name = event.mid(1);
            CHECK(name.contains(QChar::ReplacementCharacter) || text.contains(name.toUtf8()));
        }
    }
    CHECK(isOld || !isListing || totals <= 1);
}

void checkVersion(const QByteArray &text)
{
    const auto version = versionInBanner(text.left(text.indexOf('\n')));
    CHECK(!version || (text.startsWith("7-Zip ") && version->minorNumber < 100));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2)
        return 0;
    constexpr ArchiverDialect dialects[] = {ArchiverDialect::UpTo933, ArchiverDialect::From934,
                                            ArchiverDialect::From1505, ArchiverDialect::From2107};
    const Program program{dialects[data[0] & 3],
                          data[0] & 4 ? ArchiverOperation::List : ArchiverOperation::Extract,
                          data[0] & 8 ? '\\' : '/'};
    const QByteArray text = bytesOf(data + 2, size - 2);
    checkVersion(text);

    const QStringList events = read(text, program, [&] { return text.size(); });
    checkEvents(events, text, program);
    std::minstd_rand random(data[1]);
    CHECK(events == read(text, program, [&] { return 1 + int(random() % 64); }));
    return 0;
}
