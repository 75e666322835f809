// Shows a task around a QProcess: when a task may be deleted, and how to end a program.

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskProcessor.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtCore/QTimer>

#include <cstdio>

using namespace Vorn::Util;

namespace {

constexpr char Help[] = R"(Usage: process-task SECONDS PROGRAM [ARGUMENT...]

Runs a program with a time limit. Processes that the program has started are not ended with it.
If process-task itself is killed, the program goes on without a limit.

Exit codes: that of the program; 124 the time limit ended it, 125 a wrong call, 126 it crashed,
127 it could not be started.)";

enum ExitCode : int { TimedOut = 124, WrongCall = 125, Crashed = 126, NotStarted = 127 };

void print(std::FILE *stream, const QString &line)
{
    std::fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stream);
}

void report(const QString &text)
{
    print(stderr, QStringLiteral("process-task: %1").arg(text));
}

class ProcessTask : public AsyncTask
{
public:
    ProcessTask(const QString &program, const QStringList &arguments, int milliseconds)
        : AsyncTask(QStringLiteral("Run %1").arg(program), nullptr)
        , milliseconds_(milliseconds)
    {
        process_.setProgram(program);
        process_.setArguments(arguments); // each is passed as it is, without a shell
        process_.setProcessChannelMode(QProcess::ForwardedChannels);
        process_.setInputChannelMode(QProcess::ForwardedInputChannel);
        // Either signal means that the program does not run, because the only errors of forwarded
        // channels are a failed start and a crash. Queued: setFinished() deletes this task and the
        // process with it, which must not happen while the process emits a signal.
        connect(&process_, &QProcess::errorOccurred, this, &ProcessTask::end, Qt::QueuedConnection);
        connect(&process_, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
                &ProcessTask::end, Qt::QueuedConnection);
        limit_.setSingleShot(true);
        limit_.setTimerType(Qt::PreciseTimer); // others may be up to 5 % early
        connect(&limit_, &QTimer::timeout, this, &ProcessTask::stop);
    }

    // What this program ends with. Valid when the task has finished.
    int exitCode() const { return exitCode_; }

protected:
    void execute() override
    {
        limit_.start(milliseconds_);
        process_.start();
    }

private:
    // Asks the program to end, and kills it if it does not. On Windows a program without windows
    // cannot be asked.
    void stop()
    {
        constexpr int TimeToEnd = 2000; // milliseconds
        if (process_.state() == QProcess::NotRunning)
            return; // it has just ended
        isTimedOut_ = true;
        process_.terminate();
        QTimer::singleShot(TimeToEnd, Qt::PreciseTimer, &process_, &QProcess::kill);
    }

    void end()
    {
        if (isTimedOut_)
            fail(TimedOut,
                 QStringLiteral("The time limit of %1 s has ended the program")
                     .arg(milliseconds_ / 1000.0));
        else if (process_.error() == QProcess::FailedToStart)
            fail(NotStarted,
                 QStringLiteral("%1: %2").arg(process_.program(), process_.errorString()));
        else if (process_.exitStatus() == QProcess::CrashExit)
            fail(Crashed, QStringLiteral("The program has crashed"));
        else
            exitCode_ = process_.exitCode();
        setFinished();
    }

    void fail(int exitCode, const QString &problem)
    {
        exitCode_ = exitCode;
        setError(problem);
    }

    const int milliseconds_;
    int exitCode_ = 0;
    bool isTimedOut_ = false;
    QProcess process_;
    QTimer limit_;
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString help = QString::fromLatin1(Help);
    if (arguments.value(1) == QLatin1String("--help")) {
        print(stdout, help);
        return 0;
    }
    const double seconds = arguments.value(1).toDouble(); // 0 if it is no number
    if (arguments.size() < 3 || !(seconds >= 0.001 && seconds <= 1000000)) {
        report(help.section(QLatin1Char('\n'), 0, 0));
        return WrongCall;
    }

    AsyncTaskProcessor processor;
    processor.setExitEventLoopWhenDone(true);
    auto *task = new ProcessTask(arguments.at(2), arguments.mid(3), qRound(seconds * 1000));
    processor.addTask(task); // which deletes the task when it has finished
    int exitCode = 0;
    QObject::connect(&processor, &AsyncTaskProcessor::finished, &processor, [&exitCode, task] {
        exitCode = task->exitCode();
        if (!task->isOk())
            report(task->error());
    });
    processor.startLater();
    QCoreApplication::exec();
    return exitCode;
}
