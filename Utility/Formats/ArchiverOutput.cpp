#include <Utility/Formats/ArchiverOutput_p.h>

#include <Utility/QtVersion_p.h>

#include <QtCore/QStringList>

#include <algorithm>

namespace Vorn::Util::Formats {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// At least one digit and nothing else. A number may be too large for every integer type.
bool isDecimalNumber(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
}

QByteArray withoutLineEnd(QByteArray line)
{
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return line;
}

// ---- The output format up to 9.33, also for a "7z.exe" of unknown version ----

QString simplifiedLatin1(const QByteArray &line)
{
    return QtVersion::fromLatin1(line).simplified();
}

// The text after the first \a count blanks; empty if there are fewer.
QString afterBlanks(const QString &line, int count)
{
    return line.section(QLatin1Char(' '), count);
}

class OldExtractionReader : public ArchiverReader
{
public:
    explicit OldExtractionReader(ArchiverEvents &events)
        : events_(events)
    {
    }

    void readLine(const QByteArray &bytes) override
    {
        const QString line = simplifiedLatin1(bytes);
        const QString rest = afterBlanks(line, 1);
        if (line.startsWith(QLatin1String("Extracting")))
            events_.file(rest);
        else if (line.startsWith(QLatin1String("Size:")))
            events_.uncompressedSize(rest.toLongLong());
        else if (line.startsWith(QLatin1String("Compressed:")))
            events_.compressedSize(rest.toLongLong());
    }

private:
    ArchiverEvents &events_;
};

class OldListingReader : public ArchiverReader
{
public:
    explicit OldListingReader(ArchiverEvents &events)
        : events_(events)
    {
    }

    void readLine(const QByteArray &bytes) override
    {
        const QString line = simplifiedLatin1(bytes);
        const bool isRuler = line.startsWith(QLatin1String("--------"));
        if (block_ == Totals)
            readTotals(line);
        else if (isRuler)
            block_ = block_ == Header ? Entries : Totals;
        else if (block_ == Header)
            readHeader(line);
        else
            readEntry(line);
    }

private:
    enum Block { Header, Entries, Totals };

    void readHeader(const QString &line)
    {
        if (line.startsWith(QLatin1String("Type")))
            events_.type(afterBlanks(line, 2));
        else if (line.startsWith(QLatin1String("Method")))
            events_.method(afterBlanks(line, 2));
    }

    // Date, time, attributes, size, packed size, name. The packed size may be missing. Then, if the
    // first word of the name is a number, it is taken for the packed size.
    // Kept for compatibility: see "Entries of a listing" in docs/compatibility.md.
    void readEntry(const QString &line)
    {
        QStringList parts = afterBlanks(line, 4).split(QLatin1Char(' '));
        if (parts.size() > 1 && isDecimalNumber(parts.first()))
            parts.removeFirst();
        events_.file(parts.join(QLatin1Char(' ')));
    }

    // Every line after the table is read as the totals, so the last one counts.
    // Kept for compatibility: see "Totals of a listing" in docs/compatibility.md.
    void readTotals(const QString &line)
    {
        events_.uncompressedSize(line.section(QLatin1Char(' '), 0, 0).toLongLong());
        events_.compressedSize(line.section(QLatin1Char(' '), 1, 1).toLongLong());
    }

    ArchiverEvents &events_;
    Block block_ = Header;
};

// ---- The output formats since 9.34 ----

// Recognises the lines of a multi-line text in the header, such as the comment of an archive. They
// must be skipped, because they can contain anything.
class CommentFilter
{
public:
    explicit CommentFilter(ArchiverDialect dialect)
        : hasBraces_(dialect == ArchiverDialect::From2107)
    {
    }

    bool isComment(const QByteArray &line)
    {
        if (isEndless_)
            return true;
        if (isInBraces_) {
            isInBraces_ = line != "}";
            return true;
        }
        if (hasBraces_)
            isInBraces_ = line == "{";
        else
            isEndless_ = line.startsWith("Comment = ");
        return isInBraces_ || isEndless_;
    }

    // In a comment without braces. It has no mark for its end.
    bool isEndless() const { return isEndless_; }

private:
    bool hasBraces_;
    bool isInBraces_ = false;
    bool isEndless_ = false;
};

// The text of a header line "KEY = TEXT".
QString headerText(const QByteArray &line, const QByteArray &key)
{
    return QtVersion::fromUtf8(line.mid(key.size()));
}

// The first method in the list that SevenZip::Method contains, without its parameters: "LZMA2" for
// "LZMA2:12 BCJ".
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

// A row of the table. Each column has a fixed position and may be empty:
// "2024-02-29 12:34:56 ....A          292          139  a.txt"
class Row
{
public:
    explicit Row(const QByteArray &line)
        : line_(line)
        , sizeEnd_(endOfNumber(SizeAt + NumberWidth))
        , packedEnd_(endOfNumber(sizeEnd_ + 1 + NumberWidth))
    {
    }

    bool hasName() const { return line_.size() >= packedEnd_ + 2; }

    // In the row of an entry its name, in the totals the number of files.
    QString name() const { return QtVersion::fromUtf8(line_.mid(packedEnd_ + 2)); }

    QByteArray size() const { return line_.mid(SizeAt, sizeEnd_ - SizeAt).trimmed(); }
    QByteArray packedSize() const { return line_.mid(sizeEnd_, packedEnd_ - sizeEnd_).trimmed(); }

private:
    static constexpr int SizeAt = 26;
    static constexpr int NumberWidth = 12;

    // A number with more digits than its column is wide moves the following columns to the right.
    int endOfNumber(int end) const
    {
        while (end < line_.size() && isDigit(line_.at(end)))
            ++end;
        return end;
    }

    const QByteArray &line_;
    int sizeEnd_;
    int packedEnd_;
};

class ListingReader : public ArchiverReader
{
public:
    ListingReader(ArchiverDialect dialect, ArchiverEvents &events)
        : events_(events)
        , comments_(dialect)
    {
    }

    void readLine(const QByteArray &bytes) override
    {
        const QByteArray line = withoutLineEnd(bytes);
        const bool isRuler = line
            == "------------------- ----- ------------ ------------  ------------------------";
        if (block_ == Header)
            readHeader(line, isRuler);
        else if (block_ == Entries)
            readEntry(line, isRuler);
        else if (block_ == Totals)
            readTotals(line);
    }

private:
    enum Block { Header, Entries, Totals, End };

    void readHeader(const QByteArray &line, bool isRuler)
    {
        static const QByteArray type = QByteArrayLiteral("Type = ");
        static const QByteArray method = QByteArrayLiteral("Method = ");
        if (comments_.isComment(line)) {
            if (isRuler && comments_.isEndless())
                block_ = Entries;
        } else if (isRuler) {
            block_ = Entries;
        } else if (line.startsWith(type)) {
            events_.type(headerText(line, type));
        } else if (line.startsWith(method)) {
            events_.method(plainMethod(headerText(line, method)));
        }
    }

    void readEntry(const QByteArray &line, bool isRuler)
    {
        const Row row(line);
        if (isRuler)
            block_ = Totals;
        else if (row.hasName())
            events_.file(row.name());
    }

    // There is one line of totals. Warnings may follow.
    void readTotals(const QByteArray &line)
    {
        const Row row(line);
        const QByteArray size = row.size();
        if (!row.hasName() || row.name().isEmpty()
            || !std::all_of(size.begin(), size.end(), isDigit))
            return;
        events_.uncompressedSize(size.toLongLong());
        events_.compressedSize(row.packedSize().toLongLong());
        block_ = End;
    }

    ArchiverEvents &events_;
    CommentFilter comments_;
    Block block_ = Header;
};

void readExtractionTotals(const QByteArray &line, ArchiverEvents &events)
{
    const auto number = [&line] { return line.mid(line.indexOf(':') + 1).trimmed().toLongLong(); };
    if (line.startsWith("Size:"))
        events.uncompressedSize(number());
    else if (line.startsWith("Compressed:"))
        events.compressedSize(number());
}

// Since 9.34: "Extracting  NAME".
class NamingExtractionReader : public ArchiverReader
{
public:
    explicit NamingExtractionReader(ArchiverEvents &events)
        : events_(events)
    {
    }

    void readLine(const QByteArray &bytes) override
    {
        static const QByteArray prefix = QByteArrayLiteral("Extracting  ");
        const QByteArray line = withoutLineEnd(bytes);
        if (line.startsWith(prefix))
            events_.file(QtVersion::fromUtf8(line.mid(prefix.size())));
        else
            readExtractionTotals(line, events_);
    }

private:
    ArchiverEvents &events_;
};

// Since 15.05: "- NAME" for every entry. The name of a folder ends with a separator.
class ExtractionReader : public ArchiverReader
{
public:
    ExtractionReader(ArchiverDialect dialect, char separator, ArchiverEvents &events)
        : events_(events)
        , separator_(separator)
        , comments_(dialect)
    {
    }

    // Names are also read after totals: some versions print a line break in a name unchanged, and
    // the rest of the name can look like totals.
    void readLine(const QByteArray &bytes) override
    {
        const QByteArray line = withoutLineEnd(bytes);
        if (isHeader_ && comments_.isComment(line))
            readAfterComment(line);
        else if (line.startsWith("- "))
            readName(line);
        else
            readExtractionTotals(line, events_);
    }

private:
    void readName(const QByteArray &line)
    {
        isHeader_ = false;
        QByteArray name = line.mid(2);
        if (name.endsWith(separator_))
            name.chop(1);
        events_.file(QtVersion::fromUtf8(name));
    }

    // A comment without braces can contain lines that look like names ("- NAME"), and nothing marks
    // its end. So such lines are collected up to the line "Everything is Ok" or an error. The names
    // come after an empty line, so lines collected before it belong to the comment. An empty line
    // directly before an error is not that line.
    void readAfterComment(const QByteArray &line)
    {
        if (!comments_.isEndless())
            return;
        const bool isName = line.startsWith("- ");
        const bool isEnd = line == "Everything is Ok";
        if (isAfterEmptyLine_ && (isName || isEnd))
            possibleNames_.clear();
        isAfterEmptyLine_ = line.isEmpty();
        if (isName)
            possibleNames_ << line;
        else if (isEnd || line.startsWith("ERROR: "))
            readPossibleNames();
    }

    void readPossibleNames()
    {
        isHeader_ = false;
        for (const QByteArray &name : qAsConst(possibleNames_))
            readName(name);
        possibleNames_.clear();
    }

    ArchiverEvents &events_;
    char separator_;
    CommentFilter comments_;
    QByteArrayList possibleNames_;
    bool isAfterEmptyLine_ = false;
    bool isHeader_ = true;
};

} // namespace

std::unique_ptr<ArchiverReader> makeArchiverReader(ArchiverDialect dialect, char separator,
                                                   ArchiverOperation operation,
                                                   ArchiverEvents &events)
{
    const bool isOld = dialect == ArchiverDialect::UpTo933;
    switch (operation) {
    case ArchiverOperation::Extract:
        if (isOld)
            return std::make_unique<OldExtractionReader>(events);
        if (dialect == ArchiverDialect::From934)
            return std::make_unique<NamingExtractionReader>(events);
        return std::make_unique<ExtractionReader>(dialect, separator, events);
    case ArchiverOperation::List:
        if (isOld)
            return std::make_unique<OldListingReader>(events);
        return std::make_unique<ListingReader>(dialect, events);
    case ArchiverOperation::Compress:
        break;
    }
    return nullptr;
}

} // namespace Vorn::Util::Formats
