#include <Utility/Platform/Shell.h>

namespace Vorn::Util::Platform {

namespace {

ShellCommand shell(const QStringList &arguments)
{
    const QString program = QStringLiteral("/bin/sh");
    return {program, program, arguments};
}

} // namespace

ShellCommand scriptCommand(const QString &fileName)
{
    return shell({fileName});
}

ShellCommand textCommand(const QString &text)
{
    return shell({QStringLiteral("-c"), text});
}

} // namespace Vorn::Util::Platform
