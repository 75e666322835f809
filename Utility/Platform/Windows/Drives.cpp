#include <Utility/Platform/Drives.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <winnetwk.h>

#include <algorithm>

namespace Vorn::Util::Platform {

QString universalName(const QString &path)
{
    constexpr int PathSize = 256;
    if (path.size() >= PathSize)
        return QString();
    wchar_t local[PathSize] = {};
    std::copy_n(wide(path), path.size(), local);
    alignas(UNIVERSAL_NAME_INFOW) char buffer[1024] = {};
    DWORD size = sizeof buffer;
    if (WNetGetUniversalNameW(local, UNIVERSAL_NAME_INFO_LEVEL, buffer, &size) != NO_ERROR)
        return QString();
    return QString::fromWCharArray(
        reinterpret_cast<const UNIVERSAL_NAME_INFOW *>(buffer)->lpUniversalName);
}

QString driveTarget(const QString &drive)
{
    wchar_t target[1024] = {};
    return QueryDosDeviceW(wide(drive), target, 1024) == 0 ? QString() : textOf(target);
}

} // namespace Vorn::Util::Platform
