#include <Utility/Platform/Shares.h>

// Linux itself has no network shares.

namespace Vorn::Util::Platform {

bool shareFolder(const QString &, const QString &)
{
    return false;
}

bool isFolderShared(const QString &)
{
    return false;
}

} // namespace Vorn::Util::Platform
