// The output of the archiver, read as it arrives. Byte 0: bit 0 is the dialect (1 is the current
// one), bit 1 the operation (1 lists). Byte 1 decides how the output is cut into blocks.

#include "Fuzz.h"

#include <Utility/SevenZip.h>
#include <Utility/SevenZipCommand.h>

#include <QtCore/QMetaObject>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <utility>

using namespace Vorn::Util;
using Platform::ArchiverDialect;
using Platform::ArchiverLineDecoder;
using Platform::ArchiverOperation;

namespace {

using Decoder = std::unique_ptr<ArchiverLineDecoder>;

// A process that never ran: it printed what it is given.
class Output : public QProcess
{
public:
    Output() { setOpenMode(QIODevice::ReadOnly); }

    void add(const QByteArray &block) { block_ += block; }

    bool canReadLine() const override { return block_.contains('\n') || QIODevice::canReadLine(); }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const int size = static_cast<int>(std::min<qint64>(maxSize, block_.size()));
        std::copy_n(block_.constData(), size, data);
        block_.remove(0, size);
        return size;
    }

private:
    QByteArray block_;
};

// Gives a command that was not started its process: an explicit instantiation may name what is
// private.
template <auto Process, auto Lines> struct Attachment
{
    friend void attach(SevenZipCommand &command, QProcess *process, Decoder decoder)
    {
        command.*Process = process;
        command.*Lines = std::move(decoder);
    }
};
void attach(SevenZipCommand &command, QProcess *process, Decoder decoder);
template struct Attachment<&SevenZipCommand::process_, &SevenZipCommand::decoder_>;

struct Result
{
    QStringList files;
    qint64 size;
    qint64 compressedSize;
    SevenZip::Type type;
    SevenZip::Method method;

    bool operator==(const Result &other) const
    {
        return files == other.files && size == other.size && compressedSize == other.compressedSize
            && type == other.type && method == other.method;
    }
};

Result read(const QByteArray &text, ArchiverDialect dialect, ArchiverOperation operation,
            const std::function<int()> &nextBlockSize)
{
    Output output;
    SevenZip archive;
    SevenZipCommand *command = nullptr;
    if (operation == ArchiverOperation::List)
        command = new SevenZipListCommand(&archive);
    else
        command = new SevenZipExtractCommand(QString(), &archive);
    attach(*command, &output, std::make_unique<ArchiverLineDecoder>(dialect, operation));
    for (int at = 0; at < text.size();) {
        const int blockSize = nextBlockSize();
        output.add(text.mid(at, blockSize));
        CHECK(QMetaObject::invokeMethod(command, "readOutput", Qt::DirectConnection));
        at += blockSize;
    }
    return {archive.files(), archive.uncompressedSize(), archive.compressedSize(), archive.type(),
            archive.method()};
}

// The lines that name a file, found by the marks around them alone.
QStringList namingLines(const QByteArray &text, ArchiverDialect dialect,
                        ArchiverOperation operation)
{
    const bool isCurrent = dialect == ArchiverDialect::Current;
    QStringList found;
    QList<QByteArray> lines = text.split('\n');
    lines.removeLast(); // what has no line end is not a line
    bool isComment = false;
    int rulers = 0;
    for (const QByteArray &bytes : lines) {
        QString line
            = isCurrent ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes).simplified();
        while (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const bool isHeader = operation == ArchiverOperation::List ? rulers == 0 : found.isEmpty();
        if (isCurrent && (isComment || (isHeader && line == QLatin1String("{")))) {
            isComment = line != QLatin1String("}");
        } else if (operation == ArchiverOperation::List) {
            // In the table of the current dialect the first column counts, without its blanks.
            const QString start = isCurrent && rulers == 1 ? line.left(10).trimmed() : line;
            if (start.startsWith(QLatin1String("--------")))
                ++rulers;
            else if (rulers == 1)
                found.append(line);
        } else if (!isCurrent) {
            if (line.startsWith(QLatin1String("Extracting")))
                found.append(line);
        } else if (line.startsWith(QLatin1String("Size:"))
                   || line.startsWith(QLatin1String("Compressed:"))) {
            break;
        } else if (line.startsWith(QLatin1String("- "))) {
            found.append(line);
        }
    }
    return found;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2)
        return 0;
    const auto dialect = data[0] & 1 ? ArchiverDialect::Current : ArchiverDialect::Product;
    const auto operation = data[0] & 2 ? ArchiverOperation::List : ArchiverOperation::Extract;
    const QByteArray text = bytesOf(data + 2, size - 2);

    const Result result = read(text, dialect, operation, [&] { return text.size(); });
    std::minstd_rand random(data[1]);
    CHECK(result == read(text, dialect, operation, [&] { return 1 + int(random() % 64); }));

    const QStringList lines = namingLines(text, dialect, operation);
    CHECK(result.files.size() == lines.size());
    if (dialect == ArchiverDialect::Current && operation == ArchiverOperation::Extract) {
        for (int i = 0; i < lines.size(); ++i) {
            const QString &name = result.files.at(i);
            CHECK(lines.at(i) == QLatin1String("- ") + name
                  || lines.at(i) == QLatin1String("- ") + name + QLatin1Char('/'));
        }
    }
    return 0;
}
