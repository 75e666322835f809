#include <Utility/Command.h>

#include <Utility/Formats/CommandOutput_p.h>
#include <Utility/Log.h>
#include <Utility/Platform/Shell.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <algorithm>
#include <string>

namespace Vorn::Util {

namespace {

constexpr int TimeLimit = 30000; // milliseconds

QString scriptName()
{
    return QStringLiteral("work.bat");
}

// Returns false if the script is not complete: it must not be run then, since a part of a command
// can do harm. The encoding is Latin-1, although the output is read as UTF-8.
// Kept for compatibility: see "Command scripts" in docs/compatibility.md.
bool writeScript(const QString &command)
{
    QFile::remove(scriptName());
    QFile script(scriptName());
    const QByteArray text = command.toLatin1();
    const bool isWritten = script.open(QIODevice::WriteOnly) && script.write(text) == text.size();
    script.close(); // writes the buffered data
    return isWritten && script.error() == QFileDevice::NoError;
}

void startScript(QProcess &process, const Platform::ShellCommand &shellCommand)
{
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(shellCommand.program, shellCommand.arguments, QIODevice::ReadWrite);
}

void finishScript(QProcess &process)
{
    process.close(); // stops a command that is still running
    QFile::remove(scriptName());
}

// Collects the first bytes that a process prints, at most \a maxSize. Discards the rest when it is
// read, to save memory.
class LimitedOutput
{
public:
    LimitedOutput(QProcess &process, qint64 maxSize)
    {
        QObject::connect(&process, &QProcess::readyReadStandardOutput, [this, &process, maxSize] {
            const QByteArray block = process.readAll();
            const qint64 remaining = maxSize - static_cast<qint64>(bytes_.size());
            bytes_.append(block.constData(),
                          static_cast<std::size_t>(std::min<qint64>(block.size(), remaining)));
        });
    }

    const std::string &bytes() const { return bytes_; }

private:
    Q_DISABLE_COPY(LimitedOutput)

    std::string bytes_;
};

// QProcess::waitForFinished() is not used: it can exceed its time limit while a process prints
// continuously.
void waitForEnd(QProcess &process)
{
    const QDeadlineTimer deadline(TimeLimit);
    while (!deadline.hasExpired()
           && process.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) { }
}

// Kept for compatibility: see "Logged command" in docs/compatibility.md.
void logCommand(Log &log, const Platform::ShellCommand &shellCommand)
{
    QString line = QStringLiteral("Command:") + shellCommand.displayName + QLatin1Char(' ');
    for (const QString &argument : shellCommand.arguments)
        line += argument + QLatin1Char(' ');
    log.append(line);
}

QStringList runAndRead(const QString &command, int maxLines, Log *log)
{
    const bool isWritten = writeScript(command);
    QProcess process;
    const LimitedOutput output(process, Formats::neededOutput(maxLines));
    const Platform::ShellCommand shellCommand = Platform::scriptCommand(scriptName());
    if (log)
        logCommand(*log, shellCommand);
    if (isWritten) {
        startScript(process, shellCommand);
        waitForEnd(process);
    }
    // No output is one empty line if the process has ended, and no line if it still runs.
    QStringList lines;
    if (!output.bytes().empty() || process.state() == QProcess::NotRunning)
        lines = Formats::outputLines(output.bytes(), maxLines);
    if (log) {
        for (const QString &line : qAsConst(lines))
            log->append(QStringLiteral(" output:") + line.trimmed());
    }
    finishScript(process);
    return lines;
}

} // namespace

Command::Command(Log *logFile)
    : log(logFile)
{
}

QString Command::run(const QString &command, int maxLines, bool logIt)
{
    return runAndRead(command, maxLines, logIt ? log : nullptr).join(QString());
}

QStringList Command::runL(const QString &command, int maxLines, bool logIt)
{
    return runAndRead(command, maxLines, logIt ? log : nullptr);
}

int Command::runQ(const QString &command)
{
    const bool isWritten = writeScript(command);
    QProcess process;
    if (isWritten) {
        process.setStandardOutputFile(QProcess::nullDevice());
        startScript(process, Platform::scriptCommand(scriptName()));
        process.waitForFinished(TimeLimit);
    }
    // If the process was not started, the value of exitCode() differs between systems.
    const bool hasStarted = isWritten && process.error() != QProcess::FailedToStart;
    const int exitCode = hasStarted ? process.exitCode() : 0;
    finishScript(process);
    return exitCode;
}

int Command::runNoWait(const QString &command, bool logIt, const QString &workingDirectory)
{
    // Never deleted: the destructor would kill the process.
    // Kept for compatibility: see "Command that nobody waits for" in docs/compatibility.md.
    auto *process = new QProcess;
    const Platform::ShellCommand shellCommand = Platform::textCommand(command);
    if (logIt && log)
        logCommand(*log, shellCommand);
    if (!workingDirectory.isEmpty())
        process->setWorkingDirectory(workingDirectory);
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(shellCommand.program, shellCommand.arguments, QIODevice::ReadWrite);
    return 0;
}

} // namespace Vorn::Util
