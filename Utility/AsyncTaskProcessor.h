#pragma once

#include <Utility/Export.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

namespace Vorn::Util {

class AsyncTask;
class AsyncTaskMonitor;
class Log;

/// \ingroup tasks
/// Runs a queue of tasks one after another in the Qt event loop.
///
/// \snippet docs/samples/tasks.cpp processor
///
/// Each task starts in a new turn of the event loop, after the previous task has emitted
/// finished().
///
/// \par Failures and cancels
/// - A task fails and its error is not ignored: the processor skips to the clean-up task of that
///   task. If it has none, the processor removes all waiting tasks from the queue.
/// - The monitor reports a cancel after a task: the processor skips to the clean-up task of that
///   task. If it has none, the waiting tasks still run.
/// - After the first such failure or cancel, later ones do not change the queue any more.
///
/// Kept for compatibility: see "Cancel without a clean-up task", "Tasks dropped after a failure"
/// and "One stop" in docs/compatibility.md.
///
/// A task that fails without ignoreError() always makes isOk() false.
///
/// \par Ownership
/// addTask() makes the processor the parent of the task. The processor deletes
/// - a finished task, immediately after the slots connected to finished();
/// - the tasks that it skips on the way to a clean-up task, without starting them;
/// - all other tasks that are its children, when it is destroyed. These include the tasks that a
///   failure has removed from the queue, unless they were added again and run.
///
/// A task that gets another parent stays in the queue: the processor still runs and deletes it.
///
/// The application may delete a task. A waiting task is then removed from the queue. The running
/// task counts as failed, but its end is not logged, and finished() is not emitted. The destructor
/// of a task must not emit AsyncTask::finished(), or the processor would delete the task a second
/// time.
///
/// The processor may be deleted in a slot connected to its signals, in
/// AsyncTaskMonitor::isCanceled() and in the destructor of a task.
///
/// The log and the monitor are not owned and may be null.
///
/// \par Use
/// Use a processor for one run: isOk() and the effect of a failure or cancel are never reset.
///
/// Thread: use a processor only in its own thread, which needs an event loop.
///
/// Memory: about 240 bytes for each waiting task, most of them for the task object, plus its name.
class VORNUTILITY_EXPORT AsyncTaskProcessor : public QObject
{
    Q_OBJECT

public:
    /// A processor without tasks, log and monitor.
    AsyncTaskProcessor(QObject *parent = nullptr);

    /// Deletes all tasks that are its children, without starting any. No signal of the processor is
    /// emitted, and the event loop is not ended.
    ~AsyncTaskProcessor() override;

    /// Appends \a task to the queue, sets its log to the log of the processor and takes ownership.
    /// A null pointer is ignored. A task runs only once, even if it is added twice. A task that a
    /// failure has removed from the queue may be added again.
    void addTask(Vorn::Util::AsyncTask *task);

    /// Sets the task to skip to if \a task fails or the run is cancelled after it. Null removes the
    /// setting; a later call for the same task replaces an earlier one.
    ///
    /// Add the clean-up task to the queue after \a task. If it is not in the queue when the
    /// processor skips to it, all waiting tasks are deleted, and no further task runs.
    void setCleanUpTask(Vorn::Util::AsyncTask *task, Vorn::Util::AsyncTask *cleanUpTask);

    /// Whether the end of the run ends the application's event loop: with exit code 0 if isOk() is
    /// true, otherwise with 1. Default: false.
    void setExitEventLoopWhenDone(bool exitEventLoopWhenDone);

    /// See setExitEventLoopWhenDone().
    bool exitEventLoopWhenDone() const;

    /// Whether a failure changes the queue as described above. If not, a failure skips no task.
    /// Default: true.
    void setExitOnError(bool exitOnError);

    /// See setExitOnError().
    bool exitOnError() const;

    /// Sets the log, also for the tasks that are added later. Tasks that were added before keep
    /// their log. Not owned; null for no log.
    void setLog(Vorn::Util::Log *log);

    /// Sets the monitor, which the processor asks after every finished task whether the run is
    /// cancelled. Not owned; null for no monitor.
    void setTaskMonitor(Vorn::Util::AsyncTaskMonitor *monitor);

    /// True if no task is waiting. It is already true while the last task runs.
    /// Kept for compatibility: see "isFinished() during the last task" in docs/compatibility.md.
    bool isFinished() const;

    /// False after a task has failed without ignoreError().
    bool isOk() const;

    /// Starts the first task when control returns to the event loop. Does nothing if the queue is
    /// empty.
    /// Kept for compatibility: see "Start on an empty queue" in docs/compatibility.md.
    void startLater();

Q_SIGNALS:
    /// Emitted before the task is started.
    void started(Vorn::Util::AsyncTask *task);

    /// Emitted when a task has finished. The task is deleted after the slots of this signal: do not
    /// keep the pointer.
    void finished(Vorn::Util::AsyncTask *task);

    /// Forwards AsyncTask::progress() of the running task.
    void progress(Vorn::Util::AsyncTask *task, const QString &text);

private Q_SLOTS:
    void startTaskFromQueue();
    void handleFinishedTask();
    void handleProgressFromTask(const QString &text);

private:
    Q_DISABLE_COPY(AsyncTaskProcessor)

    struct CleanUp;
    struct Queue;

    void startTaskLater();
    void log(const QString &text);
    void forgetCurrentTask();
    void deleteCurrentTask();
    void skipTask();
    void stopAfterError(AsyncTask *task);
    void stopWhenCanceled(AsyncTask *task);
    void skipToCleanUpTask(AsyncTask *task);
    void goOn();
    void finishRun();

    Log *log_ = nullptr;
    AsyncTaskMonitor *monitor_ = nullptr;
    bool exitEventLoopWhenDone_ = false;
    bool exitOnError_ = true;
    std::unique_ptr<Queue> tasks_; // the waiting tasks, and the state of the current task
    QElapsedTimer timer_;
    AsyncTask *currentTask_ = nullptr; // the running or just finished task until it is deleted
    QMap<AsyncTask *, CleanUp> cleanUpTasks_;
    bool stopping_ = false;
    bool ok_ = true;
};

} // namespace Vorn::Util
