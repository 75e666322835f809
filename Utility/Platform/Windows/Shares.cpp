#include <Utility/Platform/Shares.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <lm.h>

namespace Vorn::Util::Platform {

namespace {

// The functions have non-const parameters, but do not change the text.
wchar_t *mutableWide(const QString &text)
{
    return const_cast<wchar_t *>(wide(text));
}

} // namespace

bool shareFolder(const QString &name, const QString &path)
{
    SHARE_INFO_2 share = {};
    share.shi2_netname = mutableWide(name);
    share.shi2_type = STYPE_DISKTREE;
    share.shi2_permissions = ACCESS_READ | ACCESS_WRITE;
    share.shi2_max_uses = static_cast<DWORD>(-1);
    share.shi2_path = mutableWide(path);
    static_assert(STYPE_DISKTREE == 0 && (ACCESS_READ | ACCESS_WRITE) == 3);
    return NetShareAdd(nullptr, 2, reinterpret_cast<BYTE *>(&share), nullptr) == 0;
}

bool isFolderShared(const QString &path)
{
    DWORD type = 0;
    return NetShareCheck(nullptr, mutableWide(path), &type) == 0;
}

} // namespace Vorn::Util::Platform
