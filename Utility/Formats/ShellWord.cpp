#include <Utility/Formats/ShellWord_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

namespace {

bool isPrintable(char byte)
{
    return byte >= ' ' && byte <= '~';
}

} // namespace

QString shellWord(const QByteArray &bytes)
{
    if (std::all_of(bytes.cbegin(), bytes.cend(), isPrintable)) {
        QByteArray quoted = bytes;
        quoted.replace('\'', "'\\''");
        return QLatin1Char('\'') + QString::fromLatin1(quoted) + QLatin1Char('\'');
    }
    // Bytes outside ASCII are written as octal escapes, because a script is written in Latin-1.
    QString octal;
    for (const char byte : bytes)
        octal += QStringLiteral("\\%1").arg(static_cast<uchar>(byte), 3, 8, QLatin1Char('0'));
    return QStringLiteral("\"$(printf '%1')\"").arg(octal);
}

} // namespace Vorn::Util::Formats
