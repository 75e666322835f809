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
/// the interpreter run that file, and wait until it ends, at most 30 seconds. All calls in a
/// process share that file and the current folder: make one call at a time. The command is written
/// in Latin-1 (other characters are lost); its output is read as UTF-8.
///
/// After 30 seconds the interpreter is stopped. Only the interpreter: programs that it has started
/// run on until they end by themselves. Output that was printed until then is returned, and runQ()
/// returns 0. On Windows the call may return later: as long as one of those programs prints without
/// a pause.
///
/// Standard error is never read. Only the output that a call can return is kept in memory, at most
/// 199 bytes for each of \a maxLines + 2 lines: with a large \a maxLines that can be all of it.
///
/// No call reports a failure. When the interpreter cannot be started, or "work.bat" cannot be
/// written completely, nothing is run, and the command has printed nothing.
///
/// A value class; the log is not owned and may be null.
class VORNUTILITY_EXPORT Command
{
public:
    Command(Log *logFile = nullptr);
    ~Command() = default;

    /// Returns what the command printed, at most \a maxLines + 2 lines (one for a negative
    /// number), each with its line end. A line longer than 199 bytes counts as several. With
    /// \a logIt the call and each returned line are logged.
    QString run(const QString &command, int maxLines, bool logIt);

    /// As run(), one element per line. A command that printed nothing, or that could not be run,
    /// gives one empty element; one that is stopped before it has printed gives an empty list.
    QStringList runL(const QString &command, int maxLines, bool logIt);

    /// Returns the interpreter's exit code; 0 when nothing was run or when the interpreter was
    /// stopped after 30 seconds. The output of the command is not read.
    int runQ(const QString &command);

    /// Starts \a command and returns 0 at once, also when nothing could be started. Nobody waits
    /// for the command or reads its output. An empty \a workingDirectory is the current folder.
    ///
    /// Each call leaves a small object in memory until the program ends, and a pipe until the
    /// thread's event loop has noticed the end of the command.
    int runNoWait(const QString &command, bool logIt, const QString &workingDirectory);

private:
    Log *log;
};

} // namespace Vorn::Util
