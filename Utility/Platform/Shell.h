#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

/// A call of the system's command interpreter.
struct ShellCall
{
    QString program;     ///< what is started, by its full path
    QString displayName; ///< what a log calls it
    QStringList arguments;
};

/// The call that runs the script \a fileName in the current folder.
ShellCall callOfScript(const QString &fileName);

/// The call that runs the command line \a text.
ShellCall callOfText(const QString &text);

} // namespace Vorn::Util::Platform
