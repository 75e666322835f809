// The flags that a user sets in the flags file.

#include <Utility/Platform/SmallFile.h>
#include <Utility/QtVersion_p.h>
#include <Utility/System.h>

#include <QtCore/QTextStream>

#include <optional>

namespace Vorn::Util {

bool System::isFlagSet(const QString &flag)
{
    const QString folder = getFlagsDirPath();
    if (folder.isEmpty())
        return false;
    const std::optional<QByteArray> content
        = Platform::readSmallFile(folder + QStringLiteral("/VORN_flags.txt"));
    if (!content)
        return false;
    QTextStream stream(*content, QIODevice::ReadOnly | QIODevice::Text);
    QtVersion::setUtf8(stream);
    while (!stream.atEnd()) {
        if (stream.readLine().simplified().section(QLatin1Char(' '), 0, 0) == flag)
            return true;
    }
    return false;
}

} // namespace Vorn::Util
