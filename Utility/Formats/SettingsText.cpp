#include <Utility/Formats/SettingsText_p.h>

#include <Utility/QtVersion_p.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Vorn::Util::Formats {

namespace {

using QtVersion::Size;

// A group header, a value, or a line that is neither, with its position in the content.
struct Entry
{
    QString group;
    QString key; // group and name of a value; otherwise null
    Size begin;
    Size valueBegin;
    Size end;
};

bool isBlank(QChar character)
{
    return character == QLatin1Char(' ') || character == QLatin1Char('\t');
}

bool isLineBreak(char character)
{
    return character == '\n' || character == '\r';
}

Size endOfLine(const QByteArray &content, Size from)
{
    return static_cast<Size>(std::find_if(content.cbegin() + from, content.cend(), isLineBreak)
                             - content.cbegin());
}

// The position of the first byte, starting at \a from, that is not in white space or a comment.
Size beginOfEntry(const QByteArray &content, Size from)
{
    for (; from < content.size(); ++from) {
        if (content.at(from) == ';')
            from = endOfLine(content, from) - 1;
        else if (!std::strchr(" \t\r\n", content.at(from)) || content.at(from) == '\0')
            return from;
    }
    return content.size();
}

// The number of characters after a backslash that belong to it: 1, or 2 for the line breaks "\r\n"
// and "\n\r".
template <typename Text> int escapeSize(const Text &text, Size position)
{
    const auto isAt = [&](Size index, char character) {
        return index < text.size() && text.at(index) == QLatin1Char(character);
    };
    const bool isPair = (isAt(position, '\r') && isAt(position + 1, '\n'))
        || (isAt(position, '\n') && isAt(position + 1, '\r'));
    return isPair ? 2 : 1;
}

// Sets the end of an entry and, if it contains "=", the beginning of the value after it.
void findEnd(const QByteArray &content, Entry &entry)
{
    bool isQuoted = false;
    entry.valueBegin = -1;
    for (entry.end = entry.begin; entry.end < content.size(); ++entry.end) {
        const char character = content.at(entry.end);
        if (character == '\\')
            entry.end += escapeSize(content, entry.end + 1);
        else if (character == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted && (isLineBreak(character) || character == ';'))
            return;
        else if (!isQuoted && character == '=' && entry.valueBegin < 0)
            entry.valueBegin = entry.end + 1;
    }
    entry.end = content.size(); // it can be greater if the last character is a backslash
}

// Decodes a name: "%20" and "%U65E5" stand for characters, by their hexadecimal codes, and "\" for
// "/".
QString decodedName(const QByteArray &bytes)
{
    const QString name = QtVersion::fromUtf8(bytes);
    QString decoded;
    for (Size i = 0; i < name.size(); ++i) {
        const bool isWide = QStringView(name).mid(i).startsWith(QLatin1String("%U"));
        const int digitsBegin = isWide ? 2 : 1;
        const int digitCount = isWide ? 4 : 2;
        const QString digits
            = name.at(i) == QLatin1Char('%') ? name.mid(i + digitsBegin, digitCount) : QString();
        bool isNumber = false;
        const ushort unit = digits.toUShort(&isNumber, 16);
        if (isNumber && digits.size() == digitCount) {
            decoded += QChar(unit);
            i += digitsBegin + digitCount - 1;
        } else {
            decoded += name.at(i) == QLatin1Char('\\') ? QLatin1Char('/') : name.at(i);
        }
    }
    return decoded;
}

QString groupName(const QByteArray &entry)
{
    const QByteArray name = entry.mid(1, entry.indexOf(']') - 1).trimmed();
    if (name.compare("general", Qt::CaseInsensitive) == 0)
        return QString(); // "General" contains the values without a group
    return name.compare("%general", Qt::CaseInsensitive) == 0 ? QtVersion::fromLatin1(name.mid(1))
                                                              : decodedName(name);
}

std::vector<Entry> entriesOf(const QByteArray &content)
{
    std::vector<Entry> entries;
    QString group;
    const Size start = content.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    for (Size position = beginOfEntry(content, start); position < content.size();
         position = beginOfEntry(content, entries.back().end)) {
        Entry entry{QString(), QString(), position, 0, 0};
        findEnd(content, entry);
        if (content.at(position) == '[') {
            group = groupName(content.mid(position, entry.end - position));
        } else if (entry.valueBegin >= 0) {
            const QByteArray name = content.mid(position, entry.valueBegin - 1 - position);
            entry.key = group.isEmpty() ? QString() : group + QLatin1Char('/');
            entry.key += decodedName(name.trimmed());
        }
        entry.group = group;
        entries.push_back(entry);
    }
    return entries;
}

// The value of a hexadecimal digit; 16 for any other character.
int digitValue(QChar character)
{
    const char latin = character.unicode() < 0x80 ? character.toLatin1() : '\0';
    if (latin >= '0' && latin <= '9')
        return latin - '0';
    const int lower = latin | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

// Reads a number in digits of \a base at \a position of \a raw and appends it as a UTF-16 unit.
// Returns the position after the digits.
Size appendUnit(const QString &raw, Size position, int base, QString &text)
{
    ushort unit = 0; // overflows for a large number, as in QSettings
    const Size begin = position;
    for (; position < raw.size() && digitValue(raw.at(position)) < base; ++position)
        unit = static_cast<ushort>(unit * base + digitValue(raw.at(position)));
    if (position > begin)
        text += QChar(unit);
    return position;
}

// Decodes the escape sequence whose backslash is before \a position, and appends the result:
// nothing for a line break and for an unknown sequence. Returns the position after the sequence.
Size appendEscaped(const QString &raw, Size position, QString &text)
{
    if (position >= raw.size())
        return position;
    constexpr const char *Codes = "abfnrtv\"?'\\";
    constexpr const char *Meanings = "\a\b\f\n\r\t\v\"?'\\";
    const char code = raw.at(position).toLatin1();
    const char *known = code == '\0' ? nullptr : std::strchr(Codes, code);
    if (known)
        text += QLatin1Char(Meanings[known - Codes]);
    else if (code == 'x')
        return appendUnit(raw, position + 1, 16, text);
    else if (code >= '0' && code <= '7')
        return appendUnit(raw, position, 8, text);
    return position + escapeSize(raw, position);
}

// Decodes a value: removes quotation marks and the blanks around it, and decodes escapes.
QString decodedValue(const QString &raw)
{
    QString text;
    bool isQuoted = false;
    bool wasQuoted = false;
    Size kept = 0; // the length up to the last escape; blanks in this part are not removed
    const auto afterBlanks = [&raw](Size position) {
        while (position < raw.size() && isBlank(raw.at(position)))
            ++position;
        return position;
    };
    for (Size position = afterBlanks(0); position < raw.size();) {
        const QChar character = raw.at(position++);
        if (character == QLatin1Char('\\')) {
            position = appendEscaped(raw, position, text);
            kept = text.size();
        } else if (character == QLatin1Char('"')) {
            isQuoted = !isQuoted;
            wasQuoted = true;
            position = isQuoted ? position : afterBlanks(position);
        } else {
            text += character;
            if (character == QLatin1Char(',') && !isQuoted)
                wasQuoted = false; // only quotation marks after the last comma keep the blanks
        }
    }
    while (!wasQuoted && text.size() > kept && isBlank(text.at(text.size() - 1)))
        text.chop(1);
    return text;
}

// The text that QSettings has stored as \a stored.
QString textOfStored(const QString &stored)
{
    const auto isOf = [&](const char *type) {
        return stored.startsWith(QLatin1String(type)) && stored.endsWith(QLatin1Char(')'));
    };
    if (isOf("@ByteArray("))
        return QtVersion::fromUtf8(stored.mid(11).chopped(1).toLatin1());
    if (isOf("@String("))
        return stored.mid(8).chopped(1);
    if (stored == QLatin1String("@Invalid()"))
        return QString();
    return stored.startsWith(QLatin1String("@@")) ? stored.mid(1) : stored;
}

QByteArray hexNumber(QChar character, int digits)
{
    return QByteArray::number(character.unicode(), 16).rightJustified(digits, '0');
}

QByteArray escapedName(const QString &name)
{
    QByteArray escaped;
    for (const QChar character : name) {
        const bool isAscii = character.unicode() < 0x80;
        if (isAscii && (character.isLetterOrNumber() || QStringLiteral("_-.").contains(character)))
            escaped += character.toLatin1();
        else if (character == QLatin1Char('/'))
            escaped += '\\';
        else if (character.unicode() <= 0xFF)
            escaped += '%' + hexNumber(character, 2).toUpper();
        else
            escaped += "%U" + hexNumber(character, 4).toUpper();
    }
    return escaped;
}

QByteArray escapedValue(const QString &text)
{
    // An "@" at the beginning must be doubled: a single one marks the type of a value.
    const QString stored = text.startsWith(QLatin1Char('@')) ? QLatin1Char('@') + text : text;
    QByteArray escaped;
    bool isAfterNumber = false; // then a hexadecimal digit must be escaped, too
    for (const QChar character : stored) {
        const bool isPrintable = character.unicode() >= 0x20 && character.unicode() < 0x7F;
        const bool isNumber = !isPrintable || (isAfterNumber && digitValue(character) < 16);
        if (isNumber)
            escaped += "\\x" + hexNumber(character, 1);
        else if (character == QLatin1Char('"') || character == QLatin1Char('\\'))
            escaped += '\\' + QByteArray(1, character.toLatin1());
        else
            escaped += character.toLatin1();
        isAfterNumber = isNumber;
    }
    const bool isQuoted = escaped.startsWith(' ') || escaped.endsWith(' ')
        || std::any_of(escaped.cbegin(), escaped.cend(),
                       [](char character) { return std::strchr(";,=", character); });
    return isQuoted ? '"' + escaped + '"' : escaped;
}

} // namespace

QMap<QString, QString> settingsTexts(const QByteArray &content)
{
    QMap<QString, QString> texts;
    for (const Entry &entry : entriesOf(content)) {
        if (entry.key.isNull())
            continue;
        const QByteArray value = content.mid(entry.valueBegin, entry.end - entry.valueBegin);
        texts.insert(entry.key, textOfStored(decodedValue(QtVersion::fromUtf8(value))));
    }
    return texts;
}

QByteArray withSettingsText(const QByteArray &content, const QString &group, const QString &name,
                            const QString &text)
{
    const std::vector<Entry> entries = entriesOf(content);
    const QByteArray line = escapedName(name) + '=' + escapedValue(text);

    // If there are several values with the same key, the last one counts.
    const auto value = std::find_if(entries.crbegin(), entries.crend(), [&](const Entry &entry) {
        return entry.key == group + QLatin1Char('/') + name;
    });
    if (value != entries.crend())
        return QByteArray(content).replace(value->begin, value->end - value->begin, line);

    const auto header = std::find_if(entries.cbegin(), entries.cend(), [&](const Entry &entry) {
        return entry.group == group && content.at(entry.begin) == '[';
    });
    if (header != entries.cend())
        return QByteArray(content).insert(endOfLine(content, header->end), '\n' + line);

    const bool isLineOpen = !content.isEmpty() && !isLineBreak(content.back());
    return content + (isLineOpen ? "\n" : "") + (content.isEmpty() ? "" : "\n") + '['
        + escapedName(group) + "]\n" + line + '\n';
}

} // namespace Vorn::Util::Formats
