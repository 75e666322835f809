#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util {

class Log;

/// \ingroup commands
/// Runs a command line with the command interpreter of the system: cmd.exe, or /bin/sh on Linux.
///
/// \snippet docs/samples/commands.cpp command
///
/// run(), runL() and runQ() write the command to the file "work.bat" in the current folder, let the
/// interpreter run this file, wait until it ends, and remove the file. All calls in a process use
/// the same file: make only one call at a time. runNoWait() needs no file.
///
/// \par Encoding
/// The command is written in Latin-1; other characters are lost. The output is read as UTF-8.
/// Kept for compatibility: see "Command scripts" in docs/compatibility.md.
///
/// \par Time limit
/// After 30 seconds the interpreter is stopped. The call returns the output printed until then;
/// runQ() returns 0. Programs that the interpreter has started are not stopped. On Windows the call
/// can return later if one of them prints continuously.
///
/// \par Output
/// Only the standard output is read, not the standard error. Memory: a call keeps up to 199 bytes
/// for each of \a maxLines + 2 lines and discards further output.
///
/// \par Failures
/// No call reports a failure. If the interpreter cannot be started, or "work.bat" cannot be written
/// completely, no command is run. The result is then that of a command that prints nothing, and
/// runQ() returns 0.
///
/// Objects can be copied. The log is not owned and may be null.
class VORNUTILITY_EXPORT Command
{
public:
    /// The calls of this object write to \a logFile if they are told to log. It is not owned and
    /// may be null.
    Command(Log *logFile = nullptr);

    /// Stops nothing: a command started with runNoWait() continues.
    ~Command() = default;

    /// Runs \a command and returns its output, at most \a maxLines + 2 lines (one line if
    /// \a maxLines is negative). Line ends are kept. A line of more than 199 bytes counts as
    /// several lines. If \a logIt is true, logs the call of the interpreter and each
    /// returned line.
    /// Kept for compatibility: see "Command output" in docs/compatibility.md.
    QString run(const QString &command, int maxLines, bool logIt);

    /// Like run(), but each line is an element of the list. If the command prints nothing or cannot
    /// be run, the list has one empty element. If it is stopped after 30 seconds and has printed
    /// nothing, the list is empty.
    QStringList runL(const QString &command, int maxLines, bool logIt);

    /// Runs \a command and returns the exit code of the interpreter: 0 if no command was run, or if
    /// the interpreter was stopped after 30 seconds. The output is discarded, and nothing is
    /// logged.
    int runQ(const QString &command);

    /// Starts \a command and returns immediately. Always returns 0, also if the interpreter cannot
    /// be started. The output is discarded. If \a logIt is true, logs the call of the interpreter
    /// with the command. If \a workingDirectory is empty, the command runs in the current folder.
    /// Kept for compatibility: see "Logged command" in docs/compatibility.md.
    ///
    /// Resources: each call allocates a small object that is never freed, and a pipe that is closed
    /// when the event loop of the thread processes the end of the command.
    /// Kept for compatibility: see "Command that nobody waits for" in docs/compatibility.md.
    int runNoWait(const QString &command, bool logIt, const QString &workingDirectory);

private:
    Log *log;
};

} // namespace Vorn::Util
