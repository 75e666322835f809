#include <Utility/Platform/ProgramVersion.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <algorithm>
#include <limits>
#include <winver.h>

namespace Vorn::Util::Platform {

Formats::ProgramVersion programVersion(const QString &path)
{
    if (path.size() >= MAX_PATH)
        return Formats::ProgramVersion();
    wchar_t name[MAX_PATH] = {};
    std::copy_n(wide(path), path.size(), name);
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeW(name, &handle);
    if (size == 0 || size > static_cast<DWORD>(std::numeric_limits<int>::max()))
        return Formats::ProgramVersion();
    QByteArray block(static_cast<int>(size), '\0');
    void *info = nullptr;
    UINT length = 0;
    if (!GetFileVersionInfoW(name, 0, size, block.data())
        || !VerQueryValueW(block.constData(), L"\\", &info, &length)
        || length < sizeof(VS_FIXEDFILEINFO))
        return Formats::ProgramVersion();
    const auto *fixed = static_cast<const VS_FIXEDFILEINFO *>(info);
    if (fixed->dwSignature != VS_FFI_SIGNATURE)
        return Formats::ProgramVersion();
    return {fixed->dwFileVersionMS, fixed->dwFileVersionLS};
}

} // namespace Vorn::Util::Platform
