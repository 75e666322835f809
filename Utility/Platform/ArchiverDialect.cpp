#include <Utility/Platform/ArchiverDialect.h>

#include <algorithm>

namespace Vorn::Util::Platform {

namespace {

// One row of the listing's table. Columns that are empty read as "0".
struct Row
{
    QString date;
    QString time;
    QString attributes;
    QString size;
    QString packedSize;
    QString rest; // the name, or the count of files, to the letter
};

QString column(const QString &line, int from, int length)
{
    const QString text = line.mid(from, length).trimmed();
    return text.isEmpty() ? QStringLiteral("0") : text;
}

// A number of more digits than its column has pushes what follows to the right.
int endOfNumber(const QString &line, int end)
{
    while (end < line.size() && line.at(end).isDigit())
        ++end;
    return end;
}

Row splitRow(const QString &line)
{
    constexpr int DateWidth = 10, TimeAt = 11, TimeWidth = 8, AttributesAt = 20,
                  AttributesWidth = 5;
    constexpr int SizeAt = 26, NumberWidth = 12;
    const int sizeEnd = endOfNumber(line, SizeAt + NumberWidth);
    const int packedEnd = endOfNumber(line, sizeEnd + 1 + NumberWidth);
    return {column(line, 0, DateWidth),
            column(line, TimeAt, TimeWidth),
            column(line, AttributesAt, AttributesWidth),
            column(line, SizeAt, sizeEnd - SizeAt),
            column(line, sizeEnd, packedEnd - sizeEnd),
            line.mid(packedEnd + 2)};
}

bool isRuler(const QString &line)
{
    return line.startsWith(QLatin1String("--------"));
}

// "LZMA2:12 BCJ" becomes "LZMA2": the first method that the product knows, without parameters.
QString plainMethod(const QString &methods)
{
    static const QStringList known{QStringLiteral("Copy"), QStringLiteral("Deflate"),
                                   QStringLiteral("LZMA"), QStringLiteral("LZMA2"),
                                   QStringLiteral("BZip2")};
    const QStringList parts = methods.split(QLatin1Char(' '));
    for (const QString &part : parts) {
        QString method = part.section(QLatin1Char(':'), 0, 0);
        if (known.contains(method))
            return method;
    }
    return methods;
}

// The programs end with a fatal error where they would ask for a password otherwise. Compression
// has no such switch: there it asks for the password that encrypts.
QString emptyPassword()
{
    return QStringLiteral("-p");
}

QString withoutLineEnd(QString line)
{
    while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return line;
}

} // namespace

QStringList archiverArguments(ArchiverDialect dialect, ArchiverOperation operation,
                              const QStringList &arguments)
{
    if (dialect == ArchiverDialect::Product)
        return arguments;
    QStringList all = arguments;
    all << QStringLiteral("-spd"); // names are no wildcards
    if (operation != ArchiverOperation::Compress)
        all << QStringLiteral("-sccUTF-8") << emptyPassword();
    if (operation == ArchiverOperation::Extract)
        all << QStringLiteral("-bb1");
    return all;
}

bool isDecimalNumber(const QString &text)
{
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isDigit);
}

ArchiverLineDecoder::ArchiverLineDecoder(ArchiverDialect dialect, ArchiverOperation operation)
    : dialect_(dialect)
    , operation_(operation)
{
}

QString ArchiverLineDecoder::decode(const QByteArray &line)
{
    if (dialect_ == ArchiverDialect::Product)
        return QString::fromLatin1(line).simplified();
    const QString text = withoutLineEnd(QString::fromUtf8(line));
    if (isComment(text))
        return QString();
    return operation_ == ArchiverOperation::List ? decodeListing(text) : decodeExtraction(text);
}

// An archive's comment stands in the header between braces and may hold anything.
bool ArchiverLineDecoder::isComment(const QString &line)
{
    if (block_ == Block::Header && line == QLatin1String("{")) {
        block_ = Block::Comment;
    } else if (block_ == Block::Comment) {
        if (line == QLatin1String("}"))
            block_ = Block::Header;
        return true;
    }
    return block_ == Block::Comment;
}

QString ArchiverLineDecoder::decodeExtraction(const QString &line)
{
    if (line.startsWith(QLatin1String("- ")) && block_ != Block::Totals) {
        block_ = Block::Entries;
        const QString name = line.mid(2);
        const bool isFolder = name.endsWith(QLatin1Char('/'));
        return QStringLiteral("Extracting ") + (isFolder ? name.chopped(1) : name);
    }
    if (line.startsWith(QLatin1String("Size:")) || line.startsWith(QLatin1String("Compressed:"))) {
        block_ = Block::Totals;
        return line.simplified();
    }
    return QString();
}

QString ArchiverLineDecoder::decodeListing(const QString &line)
{
    if (block_ == Block::Header)
        return decodeHeader(line);
    if (block_ == Block::Entries)
        return decodeEntry(line);
    return decodeTotals(line);
}

QString ArchiverLineDecoder::decodeHeader(const QString &line)
{
    if (isRuler(line)) {
        block_ = Block::Entries;
        return line;
    }
    const QString method = QStringLiteral("Method = ");
    if (line.startsWith(method))
        return method + plainMethod(line.mid(method.size()));
    return line.startsWith(QLatin1String("Type = ")) ? line : QString();
}

QString ArchiverLineDecoder::decodeEntry(const QString &line)
{
    const Row row = splitRow(line);
    QString entry = isRuler(line)
        ? line
        : QStringList{row.date, row.time, row.attributes, row.size, row.packedSize, row.rest}.join(
            QLatin1Char(' '));
    // Not the line alone: without the blanks in front of it the readers may take it for a ruler.
    if (isRuler(entry))
        block_ = Block::Totals;
    return entry;
}

// There is one line of totals; what follows it are warnings, which hold no number at its place.
QString ArchiverLineDecoder::decodeTotals(const QString &line)
{
    const Row row = splitRow(line);
    const bool isTotals = isDecimalNumber(row.size) && !row.rest.isEmpty();
    return isTotals ? QStringList{row.size, row.packedSize, row.rest}.join(QLatin1Char(' '))
                    : QString();
}

} // namespace Vorn::Util::Platform
