#include <Utility/Platform/Shell.h>

namespace Vorn::Util::Platform {

namespace {

ShellCall shell(const QStringList &arguments)
{
    const QString program = QStringLiteral("/bin/sh");
    return {program, program, arguments};
}

} // namespace

ShellCall callOfScript(const QString &fileName)
{
    return shell({fileName});
}

ShellCall callOfText(const QString &text)
{
    return shell({QStringLiteral("-c"), text});
}

} // namespace Vorn::Util::Platform
