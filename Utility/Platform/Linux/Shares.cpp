#include <Utility/Platform/Shares.h>

// Linux has no network shares of its own.

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
