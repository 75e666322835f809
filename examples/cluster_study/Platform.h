#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace ClusterStudy {

/// Whether the standard output is a terminal.
bool isTerminal();

/// Whether a process gets \a text unchanged as an argument or a variable.
bool canBePassed(const QString &text);

/// Whether \a program is run by the shell of the system, which reads its arguments as commands.
bool isRunByShell(const QString &program);

/// The paths in \a folder and its subfolders that are no text in the encoding of the system. Their
/// invalid characters are replaced.
QStringList namesThatAreNoText(const QString &folder);

/// Whether a process with this id runs on this machine.
bool isRunning(qint64 process);

/// Lets the program go on when the reader of its output ends.
void ignoreEndOfReader();

/// The signals that ask this program to end.
QVector<int> endSignals();

} // namespace ClusterStudy
