#include "CsvText.h"

#include <algorithm>

namespace ClusterStudy {

namespace {

const QChar Quote = QLatin1Char('"');
const QChar Comma = QLatin1Char(',');
const QChar LineFeed = QLatin1Char('\n');
const QChar CarriageReturn = QLatin1Char('\r');

class CsvReader
{
public:
    explicit CsvReader(const QString &text)
        : text_(text)
    {
    }

    QString read(QVector<CsvRow> &rows)
    {
        while (position_ < text_.size() && problem_.isEmpty()) {
            if (skipLineEnd())
                continue; // an empty line
            CsvRow row;
            row.line = line_;
            readRow(row);
            rows << row;
        }
        return problem_;
    }

private:
    QChar next() const { return position_ < text_.size() ? text_.at(position_) : QChar(); }

    bool atFieldEnd() const
    {
        return position_ >= text_.size() || next() == Comma || next() == LineFeed
            || (next() == CarriageReturn && text_.mid(position_, 2).endsWith(LineFeed));
    }

    bool skipLineEnd()
    {
        if (position_ >= text_.size() || next() == Comma || !atFieldEnd())
            return false;
        position_ += next() == LineFeed ? 1 : 2;
        ++line_;
        return true;
    }

    void readRow(CsvRow &row)
    {
        for (;;) {
            row.fields << (next() == Quote ? quotedField() : plainField());
            if (!problem_.isEmpty() || position_ >= text_.size() || skipLineEnd())
                return;
            ++position_; // the comma
        }
    }

    QString plainField()
    {
        const int begin = position_;
        for (; !atFieldEnd(); ++position_) {
            if (next() == Quote)
                fail(QStringLiteral("a quotation mark inside a field that is not quoted"));
            else if (next() == CarriageReturn)
                fail(QStringLiteral("a carriage return without a line feed"));
        }
        return text_.mid(begin, position_ - begin);
    }

    QString quotedField()
    {
        const int firstLine = line_;
        QString field;
        for (++position_; position_ < text_.size(); ++position_) {
            if (next() == Quote) {
                ++position_;
                if (next() != Quote) {
                    if (!atFieldEnd())
                        fail(QStringLiteral("text after the closing quotation mark"));
                    return field;
                }
            } else if (next() == LineFeed) {
                ++line_;
            }
            field += next();
        }
        line_ = firstLine;
        fail(QStringLiteral("the closing quotation mark is missing"));
        return field;
    }

    void fail(const QString &what)
    {
        if (problem_.isEmpty())
            problem_ = QStringLiteral("Line %1: %2").arg(QString::number(line_), what);
    }

    const QString text_;
    int position_ = 0;
    int line_ = 1;
    QString problem_;
};

bool needsQuotes(const QString &field)
{
    return std::any_of(field.begin(), field.end(), [](QChar c) {
        return c == Quote || c == Comma || c == LineFeed || c == CarriageReturn;
    });
}

} // namespace

QString readCsv(const QByteArray &text, QVector<CsvRow> &rows)
{
    const QString characters
        = QString::fromUtf8(text.constData(), text.size()); // removes a byte order mark
    const bool hasMark = text.startsWith("\xEF\xBB\xBF");
    if (characters.toUtf8() != text.mid(hasMark ? 3 : 0))
        return QStringLiteral("The text is not UTF-8");
    if (characters.contains(QChar()))
        return QStringLiteral("The text contains a null character");
    return CsvReader(characters).read(rows);
}

QByteArray csvLine(const QStringList &fields)
{
    QStringList columns;
    for (QString field : fields) {
        if (needsQuotes(field)) {
            field.replace(Quote, QStringLiteral("\"\""));
            field = Quote + field + Quote;
        }
        columns << field;
    }
    QString line = columns.join(Comma);
    if (line.isEmpty())
        line = QStringLiteral("\"\""); // an empty line would be ignored
    return line.toUtf8() + '\n';
}

} // namespace ClusterStudy
