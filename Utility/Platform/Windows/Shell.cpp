#include <Utility/Platform/Shell.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>

namespace Vorn::Util::Platform {

namespace {

// The full path of the interpreter, so that a "cmd.exe" in the current folder is not started.
QString interpreter()
{
    const QString name = QStringLiteral("cmd.exe");
    wchar_t folder[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return name;
    return QDir(textOf(folder)).filePath(name);
}

ShellCommand shell(const QString &argument)
{
    return {interpreter(), QStringLiteral("cmd.exe"), {QStringLiteral("/C"), argument}};
}

} // namespace

ShellCommand scriptCommand(const QString &fileName)
{
    return shell(fileName);
}

ShellCommand textCommand(const QString &text)
{
    return shell(text);
}

} // namespace Vorn::Util::Platform
