#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util {

class Log;

/// Runs one command line through the system's command interpreter.
///
/// \code
/// Command command(&log);
/// QStringList lines = command.runL("hostname", 10, true);   // each with its line end
/// \endcode
///
/// run(), runL() and runQ() write the command to the file "work.bat" in the current folder, have
/// the interpreter run it and wait up to 30 seconds; then it is stopped. All of them in a process
/// share that file and the current folder: one call at a time. The command is written in Latin-1
/// (other characters are lost) and its output is read as UTF-8. Standard error is never read.
///
/// No call reports a failure: a command that cannot be run printed nothing.
///
/// A value class; the log is not owned and may be null.
class VORNUTILITY_EXPORT Command
{
public:
    Command(Log *logFile = nullptr);
    ~Command() = default;

    /// Returns what the command printed, at most \a maxLines + 2 lines (one for a negative
    /// number); a line longer than 199 bytes counts as several. \a logIt logs the call and each
    /// line of output.
    QString run(const QString &command, int maxLines, bool logIt);

    /// As run(), one element per line. A command that printed nothing, or that could not be run,
    /// gives one empty element.
    QStringList runL(const QString &command, int maxLines, bool logIt);

    /// Returns the exit code; 0 when the interpreter could not be started.
    int runQ(const QString &command);

    /// Starts \a command and returns 0 at once. Nobody waits for it or reads its output; the object
    /// behind it lives until the program ends, its pipes until the thread's event loop has seen the
    /// command's end. An empty \a workingDirectory is the current folder.
    int runNoWait(const QString &command, bool logIt, const QString &workingDirectory);

private:
    Log *log;
};

} // namespace Vorn::Util
