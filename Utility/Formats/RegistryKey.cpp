#include <Utility/Formats/RegistryKey_p.h>

#include <Utility/QtVersion_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

namespace {

// Reads a text that is a decimal number in the range of 32-bit long, like wcstol(): white space and
// a sign may come before it. Negative for any other text.
int releaseNumber(const QString &text)
{
    QtVersion::Size digits = 0;
    while (digits < text.size() && text.at(digits).isSpace())
        ++digits;
    QString number = text.mid(digits);
    const bool isNegative = number.startsWith(QLatin1Char('-'));
    if (isNegative || number.startsWith(QLatin1Char('+')))
        number.remove(0, 1);
    const bool isPlain = std::all_of(number.cbegin(), number.cend(), [](QChar character) {
        return character >= QLatin1Char('0') && character <= QLatin1Char('9');
    });
    bool ok = false;
    const int value = number.toInt(&ok);
    if (!ok || !isPlain)
        return -1;
    return isNegative ? -value : value;
}

} // namespace

QString greatestRelease(const QString &release, const QStringList &names)
{
    const auto end = std::find_if(release.cbegin(), release.cend(), [](QChar character) {
        return character == QLatin1Char('.') || character == QLatin1Char('x');
    });
    const QString prefix = release.left(static_cast<QtVersion::Size>(end - release.cbegin()));
    QString best;
    int bestNumber = -1;
    for (const QString &name : names) {
        const auto point = name.indexOf(QLatin1Char('.'));
        if (point < 0 || point == name.size() - 1 || name.left(point) != prefix)
            continue;
        const int number = releaseNumber(name.mid(point + 1));
        if (number > bestNumber) {
            bestNumber = number;
            best = name;
        }
    }
    return best;
}

QString resolveKeyPath(const QString &keyPath, const SubkeyNames &subkeys)
{
    const auto separator
        = std::max(keyPath.lastIndexOf(QLatin1Char('/')), keyPath.lastIndexOf(QLatin1Char('\\')));
    const QString key = keyPath.left(std::max<QtVersion::Size>(separator, 0));
    const QString release = keyPath.mid(separator + 1);
    // Kept for compatibility: see "Key path without its last separator" in docs/compatibility.md.
    if (!release.contains(QLatin1String(".x")))
        return key + release;
    const QString found = greatestRelease(release, subkeys(key));
    return key + QLatin1Char('\\') + (found.isNull() ? release : found);
}

} // namespace Vorn::Util::Formats
