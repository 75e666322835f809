#include "Names.h"

#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>

namespace ResultsArchive {

namespace {

bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

bool isNumber(const QString &word)
{
    return std::all_of(word.begin(), word.end(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
}

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
}

// Blanks separate the columns of a listing: a number at the beginning of a name can be lost.
QString comparable(const QString &name)
{
    QStringList words = QDir::fromNativeSeparators(name).simplified().split(QLatin1Char(' '));
    while (words.size() > 1 && isNumber(words.first()))
        words.removeFirst();
    return words.join(QLatin1Char(' '));
}

QSet<QString> foldersOf(const QStringList &names)
{
    QSet<QString> folders;
    for (const QString &name : names) {
        for (int end = name.indexOf(QLatin1Char('/')); end >= 0;
             end = name.indexOf(QLatin1Char('/'), end + 1))
            folders.insert(comparable(name.left(end)));
    }
    return folders;
}

} // namespace

bool canBePacked(const QString &name)
{
    const bool isSubfolder = name.indexOf(QLatin1Char('/')) > 0;
    const bool beginsAsOption
        = name.startsWith(QLatin1Char('-')) || name.startsWith(QLatin1Char('@'));
    return std::none_of(name.begin(), name.end(), isControl) && !name.endsWith(QLatin1Char(' '))
        && !(isSubfolder && beginsAsOption);
}

QString nameForArchiver(const QString &name)
{
    // Not for a file in a subfolder: 7-Zip stores a name that begins with "./" without its folders.
    return name.contains(QLatin1Char('/')) ? name : QStringLiteral("./") + name;
}

QString oneLine(QString text)
{
    std::replace_if(text.begin(), text.end(), isControl, QLatin1Char('?'));
    return text;
}

QString sizeText(qint64 bytes)
{
    constexpr double Mebibyte = 1 << 20;
    return QString::number(static_cast<double>(bytes) / Mebibyte, 'f', 1) + QStringLiteral(" MiB");
}

QString percentText(qint64 part, qint64 whole)
{
    if (whole == 0)
        return QString(QLatin1Char('-'));
    double percent = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
    if (part < whole)
        percent = qMin(percent, 99.9); // 100.0 % only if nothing is missing
    return QString::number(percent, 'f', 1) + QStringLiteral(" %");
}

QString differenceInNames(const QStringList &packed, const QStringList &listed)
{
    QHash<QString, int> missing;
    for (const QString &name : packed)
        ++missing[comparable(name)];

    const QSet<QString> folders = foldersOf(packed);
    QStringList unknown;
    for (const QString &name : listed) {
        const QString key = comparable(name);
        if (missing.value(key) > 0)
            --missing[key];
        else if (!folders.contains(key))
            unknown << key;
    }

    int garbled = 0;
    for (const QString &name : packed) {
        int &count = missing[comparable(name)];
        if (count == 0)
            continue;
        --count;
        if (isAscii(name) || ++garbled > unknown.size())
            return QStringLiteral("The archive does not list %1").arg(oneLine(name));
    }
    if (unknown.size() > garbled)
        return QStringLiteral("The archive lists %1, which was not packed").arg(unknown.last());
    return QString();
}

} // namespace ResultsArchive
