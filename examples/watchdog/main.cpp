// Shows how to end a task that never ends by itself. A watchdog deletes the running task when it
// has reported no progress for some time. The processor counts it as failed and skips to its
// clean-up task.
//
// The watchdog needs the event loop: it cannot end a task that never returns to it.

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Log.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTimer>

#include <cstdio>

using namespace Vorn::Util;

namespace {

constexpr char Help[] = R"(Usage: task-watchdog LOG SECONDS FILE...

Waits until other programs have written the line "done" at the end of each file, one file after
another. Gives up when the size of the file has not changed for SECONDS. What happens is added
to LOG.

Exit codes: 0 all files are done, 1 a failure.)";

void print(std::FILE *stream, const QString &line)
{
    std::fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stream);
}

int fail(const QString &problem)
{
    print(stderr, QStringLiteral("task-watchdog: %1").arg(problem));
    return 1;
}

// Waits for the last line of a file. A change of the size is progress.
class WaitTask : public AsyncTask
{
public:
    explicit WaitTask(const QString &fileName)
        : AsyncTask(QStringLiteral("Wait for %1").arg(fileName), nullptr)
        , fileName_(fileName)
    {
        // Queued: setFinished() deletes the timer with this task.
        connect(&timer_, &QTimer::timeout, this, &WaitTask::look, Qt::QueuedConnection);
    }

protected:
    void execute() override
    {
        constexpr int Pause = 50; // milliseconds
        timer_.start(Pause);
        look(); // the file may be done already
    }

private:
    // Opens the file each time: it may not exist yet, and a program may replace or shorten it.
    void look()
    {
        QFile file(fileName_);
        if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
            return;
        const qint64 size = file.size();
        file.seek(qMax<qint64>(0, size - 7)); // only the end, because the file may be large
        const QByteArray end = file.read(7).replace("\r\n", "\n");
        if (end == "done\n" || end.endsWith("\ndone\n"))
            return setFinished(); // deletes this task
        if (size != size_)
            Q_EMIT progress(QStringLiteral("%1 bytes").arg(size));
        size_ = size;
    }

    const QString fileName_;
    qint64 size_ = 0;
    QTimer timer_;
};

// Ends the running task of a processor when it has reported no progress for a time.
class Watchdog : public QObject
{
public:
    Watchdog(AsyncTaskProcessor &processor, Log &log, int milliseconds)
        : log_(log)
        , milliseconds_(milliseconds)
    {
        connect(&processor, &AsyncTaskProcessor::started, this, &Watchdog::watch);
    }

    QString problem() const { return problem_; } // empty if no task had to be ended

private:
    void watch(AsyncTask *task)
    {
        auto *timer = new QTimer(task); // deleted with the task
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer); // others may be up to 5 % early
        connect(task, &AsyncTask::progress, timer, QOverload<>::of(&QTimer::start));
        const auto endTask = [this, task, timer] {
            if (timer->isActive())
                return; // progress meanwhile, for example after this program was stopped
            problem_ = QStringLiteral("No progress for %1 s, task ended: %2")
                           .arg(QString::number(milliseconds_ / 1000.0), task->name());
            log_.append(problem_); // first: the processor logs nothing about a deleted task
            delete task;
        };
        // Queued: the timer must not be deleted while it emits a signal.
        connect(timer, &QTimer::timeout, task, endTask, Qt::QueuedConnection);
        timer->start(milliseconds_);
    }

    Log &log_;
    const int milliseconds_;
    QString problem_;
};

// Runs in any case, as the last task.
class SummaryTask : public AsyncTask
{
public:
    SummaryTask(const int &done, qint64 all)
        : AsyncTask(QStringLiteral("Summary"), nullptr)
        , done_(done)
        , all_(all)
    {
    }

protected:
    void execute() override
    {
        log(QStringLiteral("%1 of %2 files are done").arg(done_).arg(all_));
        setFinished();
    }

private:
    const int &done_;
    const qint64 all_;
};

// Whether the log holds the last line of this run. The log itself does not report a full disk.
bool isComplete(const QString &logName, qint64 sizeBefore)
{
    QFile log(logName);
    const QByteArray end = log.open(QIODevice::ReadOnly) ? log.readAll().right(80) : QByteArray();
    return log.size() != sizeBefore && end.contains("] Finished processing tasks in ")
        && end.endsWith('\n');
}

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
    const QStringList files = arguments.mid(3);
    const double seconds = arguments.value(2).toDouble(); // 0 if it is no number
    if (files.isEmpty() || !(seconds >= 0.001 && seconds <= 1000000))
        return fail(help.section(QLatin1Char('\n'), 0, 0));
    Log log(QDir::current().absoluteFilePath(arguments.at(1)), Log::NoFileTimeStamp);
    if (!log.open(true)) {
        return fail(QStringLiteral("The log cannot be written: %1")
                        .arg(QDir::toNativeSeparators(log.name())));
    }
    const qint64 logSize = QFileInfo(log.name()).size();

    AsyncTaskProcessor processor;
    processor.setLog(&log); // before the tasks are added
    processor.setExitEventLoopWhenDone(true);
    const Watchdog watchdog(processor, log, qRound(seconds * 1000));
    int done = 0;
    auto *summary = new SummaryTask(done, files.size());
    for (const QString &file : files) {
        auto *task = new WaitTask(file);
        QObject::connect(task, &AsyncTask::finished, &processor, [&done] { ++done; });
        processor.addTask(task);
        processor.setCleanUpTask(task, summary);
    }
    processor.addTask(summary);
    processor.startLater();
    int exitCode = QCoreApplication::exec(); // 1 if a task was deleted
    if (!watchdog.problem().isEmpty())
        exitCode = fail(watchdog.problem());
    if (!isComplete(log.name(), logSize))
        exitCode = fail(QStringLiteral("The log is incomplete"));
    return exitCode;
}
