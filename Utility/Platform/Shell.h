#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

/// A call of the command interpreter.
struct ShellCall
{
    QString program;     ///< the full path of the interpreter
    QString displayName; ///< its name in the log
    QStringList arguments;
};

/// The call that runs the script \a fileName in the current folder.
ShellCall callOfScript(const QString &fileName);

/// The call that runs the command line \a text.
ShellCall callOfText(const QString &text);

} // namespace Vorn::Util::Platform
