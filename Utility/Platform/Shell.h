#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

/// A command that starts the command interpreter.
struct ShellCommand
{
    QString program;     ///< the full path of the interpreter
    QString displayName; ///< its name in the log
    QStringList arguments;
};

/// The command that runs the script \a fileName in the current folder.
ShellCommand scriptCommand(const QString &fileName);

/// The command that runs the command line \a text.
ShellCommand textCommand(const QString &text);

} // namespace Vorn::Util::Platform
