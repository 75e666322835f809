#include <Utility/Formats/ArchiverDialect_p.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QString>

#include <tuple>

namespace Vorn::Util::Formats {

std::optional<ArchiverVersion> versionInBanner(const QByteArray &line)
{
    // Between "7-Zip" and the version there can be words such as "(a)" and "[64]".
    static const QRegularExpression banner(
        QStringLiteral("^7-Zip (?:[(\\[][^ ]*[)\\]] )*([0-9]{1,4})\\.([0-9]{2})\\b"));
    const QRegularExpressionMatch match = banner.match(QString::fromLatin1(line));
    if (!match.hasMatch())
        return std::nullopt;
    return ArchiverVersion{match.captured(1).toInt(), match.captured(2).toInt()};
}

ArchiverDialect dialectOf(ArchiverVersion version)
{
    const auto isFrom = [version](int majorNumber, int minorNumber) {
        return std::tie(version.majorNumber, version.minorNumber)
            >= std::tie(majorNumber, minorNumber);
    };
    if (isFrom(21, 7))
        return ArchiverDialect::From2107;
    if (isFrom(15, 5))
        return ArchiverDialect::From1505;
    return isFrom(9, 34) ? ArchiverDialect::From934 : ArchiverDialect::UpTo933;
}

QStringList archiverArguments(ArchiverDialect dialect, ArchiverOperation operation,
                              const QStringList &arguments)
{
    if (dialect == ArchiverDialect::UpTo933)
        return arguments;
    QStringList all = arguments;
    all << QStringLiteral("-spd") << QStringLiteral("-sccUTF-8");
    // With "-p" the password is empty: instead of asking for one, the program ends with a fatal
    // error. Not for a compression, where the switch makes the program ask for a new password.
    if (operation != ArchiverOperation::Compress)
        all << QStringLiteral("-p");
    if (operation == ArchiverOperation::Extract && dialect != ArchiverDialect::From934)
        all << QStringLiteral("-bb1");
    return all;
}

} // namespace Vorn::Util::Formats
