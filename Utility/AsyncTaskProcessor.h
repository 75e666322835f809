#pragma once

#include <Utility/Export.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
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
/// Ownership: the processor owns the tasks added to it and deletes each when it has finished. A
/// waiting task that the caller deletes or gives another parent leaves the queue; a running one
/// counts as failed. The log and the monitor are not owned and may be null. A processor is meant
/// for one run.
///
/// Thread: everything happens in the thread of the event loop that owns the processor.
class VORNUTILITY_EXPORT AsyncTaskProcessor : public QObject
{
    Q_OBJECT

public:
    AsyncTaskProcessor(QObject *parent = nullptr);
    ~AsyncTaskProcessor() override;

    /// Appends a task, gives it the current log and takes ownership. Null is ignored, and so is a
    /// task that waits or runs here already.
    void addTask(Vorn::Util::AsyncTask *task);

    /// Names the task to jump to when \a task fails or the run is cancelled after it. It has to
    /// be queued after \a task: a jump to one that is not in the queue deletes the whole queue. The
    /// entry is kept for the address of \a task, also when the task is gone.
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

protected:
    void childEvent(QChildEvent *event) override;

private Q_SLOTS:
    void startTaskFromQueue();
    void handleFinishedTask();
    void handleProgressFromTask(const QString &text);

private:
    Q_DISABLE_COPY(AsyncTaskProcessor)

    void startTaskLater();
    void log(const QString &text);
    void goOn();
    void stopAfterError();
    void stopWhenCanceled();
    void skipToCleanUpTask(AsyncTask *cleanUpTask);
    void skipToTask(AsyncTask *target);
    void finishRun();
    void deleteTask(AsyncTask *task);
    void forgetTask(QObject *task);

    Log *log_ = nullptr;
    AsyncTaskMonitor *monitor_ = nullptr;
    bool exitEventLoopWhenDone_ = false;
    bool exitOnError_ = true;
    QList<AsyncTask *> tasks_; // without the running one
    QElapsedTimer timer_;
    AsyncTask *currentTask_ = nullptr;
    QMap<AsyncTask *, AsyncTask *> cleanUpTasks_;
    bool stopping_ = false;
    bool ok_ = true;
};

} // namespace Vorn::Util
