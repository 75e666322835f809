#include <Utility/Platform/Drives.h>

// Linux has no drives.

namespace Vorn::Util::Platform {

QString universalName(const QString &)
{
    return QString();
}

QString driveTarget(const QString &)
{
    return QString();
}

} // namespace Vorn::Util::Platform
