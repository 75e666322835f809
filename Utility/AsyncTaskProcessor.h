#pragma once

#include <Utility/Export.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>

namespace Vorn::Util {

class AsyncTask;
class AsyncTaskMonitor;
class Log;

/// Runs a queue of tasks strictly one after another on the Qt event loop.
///
/// \code
/// AsyncTaskProcessor processor;
/// processor.setLog(&log);                          // before addTask()
/// auto *mesh = new SyncTask(&worker, "mesh", nullptr);
/// auto *cleanUp = new SyncTask(&worker, "cleanUp", nullptr);
/// processor.addTask(mesh);
/// processor.addTask(new SyncTask(&worker, "solve", nullptr));
/// processor.addTask(cleanUp);
/// processor.setCleanUpTask(mesh, cleanUp);         // mesh fails: go on with cleanUp
/// processor.setExitEventLoopWhenDone(true);
/// processor.startLater();
/// return app.exec();                               // 0, or 1 when a task failed
/// \endcode
///
/// Each task starts from a fresh turn of the event loop, after the one before has emitted
/// finished(). A failure that is not ignored stops the queue or, where the task has a clean-up
/// task, jumps to it; a cancel jumps to the clean-up task, but without one lets the remaining
/// tasks run. After the first stop neither happens again.
///
/// Ownership: addTask() makes the processor the parent of the task. The processor deletes
/// - a finished task, right after the slots of finished() have run;
/// - the tasks that a jump to a clean-up task skips, without starting them;
/// - all other tasks that are its children, when it is destroyed itself. So tasks that an error
///   drops from the queue live until then, unless they are added again and run.
///
/// A task that gets another parent stays in the queue: the processor runs it and deletes it all the
/// same. The caller may delete a task: a waiting one leaves the queue, the running one counts as
/// failed, without a line in the log. The destructor of a running task that somebody else deletes
/// must not emit finished(): the processor would delete the task a second time.
///
/// Slots of the signals, the monitor, and the destructors of tasks may delete the processor. The
/// log and the monitor are not owned and may be null. A processor is meant for one run.
///
/// Thread: everything happens in the thread of the event loop that owns the processor.
///
/// Cost: about 260 bytes for each waiting task, most of it for the task itself, and its name.
class VORNUTILITY_EXPORT AsyncTaskProcessor : public QObject
{
    Q_OBJECT

public:
    AsyncTaskProcessor(QObject *parent = nullptr);
    ~AsyncTaskProcessor() override;

    /// Appends a task, gives it the current log and takes ownership. Null is ignored. A task runs
    /// once, even if it is added twice. A task that an error has dropped may be added again.
    void addTask(Vorn::Util::AsyncTask *task);

    /// Names the task to jump to when \a task fails or the run is cancelled after it; null for
    /// none. A later call replaces the earlier one. The clean-up task has to be queued after \a
    /// task: a jump to one that is not in the queue, or was deleted, deletes the whole queue, and
    /// nothing more runs.
    void setCleanUpTask(Vorn::Util::AsyncTask *task, Vorn::Util::AsyncTask *cleanUpTask);

    /// Whether the end of the run ends the application's event loop, with 0 or 1. Off at first.
    void setExitEventLoopWhenDone(bool exitEventLoopWhenDone);
    bool exitEventLoopWhenDone() const;

    /// Whether a failure stops the queue. On at first.
    void setExitOnError(bool exitOnError);
    bool exitOnError() const;

    /// Tasks that were added before keep the log they had. Not owned; null for none.
    void setLog(Vorn::Util::Log *log);

    /// Asked after every task that has finished whether the run is to be cancelled. Not owned; null
    /// for none.
    void setTaskMonitor(Vorn::Util::AsyncTaskMonitor *monitor);

    /// True when no task waits in the queue, so already while the last one runs.
    bool isFinished() const;

    /// False once a task has failed without ignoreError().
    bool isOk() const;

    /// Starts the run once control is back in the event loop. Does nothing with an empty queue.
    void startLater();

Q_SIGNALS:
    void started(Vorn::Util::AsyncTask *task);

    /// The task is deleted soon after this signal: keep no pointer to it.
    void finished(Vorn::Util::AsyncTask *task);
    void progress(Vorn::Util::AsyncTask *task, const QString &text);

private Q_SLOTS:
    void startTaskFromQueue();
    void handleFinishedTask();
    void handleProgressFromTask(const QString &text);

private:
    Q_DISABLE_COPY(AsyncTaskProcessor)

    struct CleanUp;

    void startTaskLater();
    void log(const QString &text);
    bool takeEnd();
    void forgetCurrentTask();
    void deleteTask(AsyncTask *task);
    void stopAfterError(AsyncTask *task);
    void stopWhenCanceled(AsyncTask *task);
    void skipToCleanUpTask(AsyncTask *task);
    void goOn();
    void finishRun();

    Log *log_ = nullptr;
    AsyncTaskMonitor *monitor_ = nullptr;
    bool exitEventLoopWhenDone_ = false;
    bool exitOnError_ = true;
    QList<QPointer<AsyncTask>> tasks_; // without the running one; null for one that was deleted
    QElapsedTimer timer_;
    AsyncTask *currentTask_ = nullptr; // until it is deleted
    QMap<AsyncTask *, CleanUp> cleanUpTasks_;
    bool stopping_ = false;
    bool ok_ = true;
};

} // namespace Vorn::Util
