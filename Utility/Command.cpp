#include <Utility/Command.h>

#include <Utility/Log.h>
#include <Utility/Platform/Shell.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <array>
#include <functional>
#include <memory>

namespace Vorn::Util {

namespace {

constexpr int TimeLimit = 30000; // milliseconds
constexpr int LineBufferSize = 200;

QString scriptName()
{
    return QStringLiteral("work.bat");
}

// Latin-1 although the output is read as UTF-8: callers rely on both.
void writeScript(const QString &command)
{
    QFile::remove(scriptName());
    QFile script(scriptName());
    if (script.open(QIODevice::WriteOnly))
        script.write(command.toLatin1());
}

void runScript(QProcess &process, const Platform::ShellCall &call)
{
    process.start(call.program, call.arguments, QIODevice::ReadWrite);
    process.waitForFinished(TimeLimit);
}

void finishScript(QProcess &process)
{
    process.close(); // stops a command that is still running
    QFile::remove(scriptName());
}

void logCall(Log &log, const Platform::ShellCall &call)
{
    QString line = QStringLiteral("Command:") + call.displayName + QLatin1Char(' ');
    for (const QString &argument : call.arguments)
        line += argument + QLatin1Char(' ');
    log.append(line);
}

using LineHandler = std::function<void(const QString &)>;

// The count is compared before it is raised, so that two lines more than asked for are read, and
// a read that fails counts as an empty line: callers rely on both.
void readLines(QProcess &process, int maxLines, const LineHandler &handle)
{
    std::array<char, LineBufferSize> buffer{};
    qint64 count = 0;
    while (process.readLine(buffer.data(), LineBufferSize) != 0) {
        handle(QString::fromUtf8(buffer.data()));
        if (count++ > maxLines || process.atEnd())
            return;
    }
}

void runAndRead(const QString &command, int maxLines, Log *log, const LineHandler &handle)
{
    writeScript(command);
    const auto process = std::make_unique<QProcess>();
    const Platform::ShellCall call = Platform::callOfScript(scriptName());
    if (log)
        logCall(*log, call);
    runScript(*process, call);
    readLines(*process, maxLines, [&](const QString &line) {
        if (log)
            log->append(QStringLiteral(" output:") + line.trimmed());
        handle(line);
    });
    finishScript(*process);
}

} // namespace

Command::Command(Log *logFile)
    : log(logFile)
{
}

QString Command::run(const QString &command, int maxLines, bool logIt)
{
    QString output;
    runAndRead(command, maxLines, logIt ? log : nullptr,
               [&output](const QString &line) { output += line; });
    return output;
}

QStringList Command::runL(const QString &command, int maxLines, bool logIt)
{
    QStringList lines;
    runAndRead(command, maxLines, logIt ? log : nullptr,
               [&lines](const QString &line) { lines.append(line); });
    return lines;
}

int Command::runQ(const QString &command)
{
    writeScript(command);
    const auto process = std::make_unique<QProcess>();
    runScript(*process, Platform::callOfScript(scriptName()));
    // What a process that never started reports as its exit code differs between systems.
    const bool started = process->error() != QProcess::FailedToStart;
    const int exitCode = started ? process->exitCode() : 0;
    finishScript(*process);
    return exitCode;
}

int Command::runNoWait(const QString &command, bool logIt, const QString &workingDirectory)
{
    // Never deleted: deleting the object would end the process.
    auto *process = new QProcess;
    const Platform::ShellCall call = Platform::callOfText(command);
    if (logIt && log)
        logCall(*log, call);
    if (!workingDirectory.isEmpty())
        process->setWorkingDirectory(workingDirectory);
    process->start(call.program, call.arguments, QIODevice::ReadWrite);
    return 0;
}

} // namespace Vorn::Util
