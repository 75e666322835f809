#include <Utility/Platform/Folders.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>

#include <shlobj.h>

#include <cstdio>

namespace Vorn::Util::Platform {

QString commonApplicationDataFolder(const QString &)
{
    constexpr int Folder = CSIDL_COMMON_APPDATA | CSIDL_FLAG_CREATE;
    static_assert(Folder == 0x8023);
    wchar_t path[MAX_PATH] = {};
    const HRESULT result = SHGetFolderPathW(nullptr, Folder, nullptr, 0, path);
    return result < 0 ? QString() : textOf(path);
}

QString publicDocumentsRoot(const QString &)
{
    return QDir::rootPath() + QStringLiteral("Users/Public/Documents/");
}

QString userDataRoot()
{
    return QDir::homePath() + QStringLiteral("/AppData/Local/");
}

QString uniqueFileName()
{
    char name[MAX_PATH] = {};
    return tmpnam_s(name, sizeof name) == 0 ? QString::fromLocal8Bit(name) : QString();
}

QString programFile()
{
    wchar_t path[MAX_PATH] = {};
    // If the path does not fit, it is truncated and fills the buffer. It is then not used.
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    return length < MAX_PATH ? textOf(path) : QString();
}

} // namespace Vorn::Util::Platform
