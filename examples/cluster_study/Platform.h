#pragma once

#include <QtCore/QString>

namespace ClusterStudy {

/// Whether the standard output is a terminal.
bool isTerminal();

/// Whether a process gets \a text unchanged as an argument or a variable.
bool canBePassed(const QString &text);

/// Whether \a program is run by the shell of the system, which reads its arguments as commands.
bool isRunByShell(const QString &program);

} // namespace ClusterStudy
