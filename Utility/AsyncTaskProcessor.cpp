#include <Utility/AsyncTaskProcessor.h>

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/Log.h>
#include <Utility/System.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

// Signals, the monitor and the destructors of tasks run code of the application, which may delete
// tasks and the processor. The processor survives this by three rules:
// - After code of the application has run, a QPointer tells whether the processor and the task
//   still exist. The queue holds such pointers only.
// - The running task is connected to forgetTask(), so that currentTask_ is never a task that was
//   deleted.
// - The running task is connected to handleFinishedTask(). Whoever cuts this connection handles
//   the end of the task, so that this happens once.

namespace Vorn::Util {

// The entry of a task. The QPointers tell a task that was deleted from a later one at its address.
struct AsyncTaskProcessor::CleanUp
{
    QPointer<AsyncTask> task;
    QPointer<AsyncTask> cleanUpTask;
    QString name;                // outlives the clean-up task
    bool isBeingDeleted = false; // the task itself, by the processor
};

namespace {

// What the processor needs of a finished task, which a slot may delete too early.
struct Result
{
    explicit Result(const AsyncTask &task)
        : isFailure(!task.isOk() && !task.ignoreError())
        , isOk(task.isOk())
        , error(task.error())
        , elapsedTime(task.elapsedTime())
    {
    }

    QString text() const
    {
        const QString time = System::getElapsedTimeString(elapsedTime);
        return isOk
            ? QStringLiteral("Task finished in %1").arg(time)
            : QStringLiteral("Task finished with errors in %1: error = %2").arg(time, error);
    }

    bool isFailure;
    bool isOk;
    QString error;
    qint64 elapsedTime;
};

} // namespace

AsyncTaskProcessor::AsyncTaskProcessor(QObject *parent)
    : QObject(parent)
{
}

AsyncTaskProcessor::~AsyncTaskProcessor()
{
    // A task whose destructor deletes the processor would be deleted again, as its child.
    for (const CleanUp &entry : qAsConst(cleanUpTasks_)) {
        if (entry.isBeingDeleted && entry.task)
            entry.task->setParent(nullptr);
    }
    // The children are deleted later, after the signal destroyed(). The running task must not call
    // a slot meanwhile.
    if (currentTask_)
        disconnect(currentTask_, nullptr, this, nullptr);
}

void AsyncTaskProcessor::addTask(AsyncTask *task)
{
    if (!task)
        return;
    task->setLog(log_);
    tasks_.append(task);
    task->setParent(this);
}

void AsyncTaskProcessor::setCleanUpTask(AsyncTask *task, AsyncTask *cleanUpTask)
{
    if (cleanUpTask)
        cleanUpTasks_.insert(task, {task, cleanUpTask, cleanUpTask->name(), false});
    else
        cleanUpTasks_.remove(task);
}

void AsyncTaskProcessor::setExitEventLoopWhenDone(bool exitEventLoopWhenDone)
{
    exitEventLoopWhenDone_ = exitEventLoopWhenDone;
}

bool AsyncTaskProcessor::exitEventLoopWhenDone() const
{
    return exitEventLoopWhenDone_;
}

void AsyncTaskProcessor::setExitOnError(bool exitOnError)
{
    exitOnError_ = exitOnError;
}

bool AsyncTaskProcessor::exitOnError() const
{
    return exitOnError_;
}

void AsyncTaskProcessor::setLog(Log *log)
{
    log_ = log;
}

void AsyncTaskProcessor::setTaskMonitor(AsyncTaskMonitor *monitor)
{
    monitor_ = monitor;
}

bool AsyncTaskProcessor::isFinished() const
{
    // True while the last task runs: kept for compatibility, see "isFinished() during the last
    // task" in docs/compatibility.md.
    return std::all_of(tasks_.cbegin(), tasks_.cend(),
                       [](const QPointer<AsyncTask> &task) { return task.isNull(); });
}

bool AsyncTaskProcessor::isOk() const
{
    return ok_;
}

void AsyncTaskProcessor::startLater()
{
    if (isFinished())
        return;
    log(QStringLiteral("Start processing tasks"));
    timer_.start();
    startTaskLater();
}

void AsyncTaskProcessor::startTaskLater()
{
    QMetaObject::invokeMethod(this, "startTaskFromQueue", Qt::QueuedConnection);
}

void AsyncTaskProcessor::startTaskFromQueue()
{
    if (currentTask_)
        return;
    while (!tasks_.isEmpty() && !currentTask_)
        currentTask_ = tasks_.takeFirst(); // null for a task that was deleted
    if (!currentTask_) {
        finishRun();
        return;
    }
    if (!timer_.isValid())
        timer_.start(); // called without startLater()
    AsyncTask *const task = currentTask_;
    const auto cleanUp = cleanUpTasks_.constFind(task);
    if (cleanUp != cleanUpTasks_.constEnd() && !cleanUp->task)
        cleanUpTasks_.remove(task); // said of an earlier task at this address
    connect(task, &QObject::destroyed, this, &AsyncTaskProcessor::forgetTask);
    connect(task, &AsyncTask::finished, this, &AsyncTaskProcessor::handleFinishedTask);
    connect(task, &AsyncTask::progress, this, &AsyncTaskProcessor::handleProgressFromTask);
    if (log_)
        log(QStringLiteral("Starting task: %1").arg(task->name()));

    const QPointer<AsyncTaskProcessor> self(this);
    const QPointer<AsyncTask> alive(task);
    Q_EMIT started(task);
    if (self && alive)
        task->start();
}

void AsyncTaskProcessor::handleProgressFromTask(const QString &text)
{
    Q_EMIT progress(currentTask_, text);
}

void AsyncTaskProcessor::handleFinishedTask()
{
    AsyncTask *const task = currentTask_;
    if (!task || !takeEnd())
        return;
    const QPointer<AsyncTaskProcessor> self(this);
    const QPointer<AsyncTask> alive(task);
    Result result(*task);
    Q_EMIT finished(task);
    if (!self)
        return;
    if (alive)
        result = Result(*task); // the slots may have changed it

    ok_ = ok_ && !result.isFailure;
    if (log_)
        log(result.text());
    if (result.isFailure)
        stopAfterError(task);
    if (self)
        stopWhenCanceled(task);
    if (!self)
        return;
    if (alive) {
        deleteTask(task);
        if (!self)
            return;
        currentTask_ = nullptr;
    }
    goOn();
}

// Cuts the connection for the end of the current task. False when that end is being handled.
bool AsyncTaskProcessor::takeEnd()
{
    return disconnect(currentTask_, &AsyncTask::finished, this,
                      &AsyncTaskProcessor::handleFinishedTask);
}

void AsyncTaskProcessor::deleteTask(AsyncTask *task)
{
    disconnect(task, &QObject::destroyed, this, &AsyncTaskProcessor::forgetTask);
    cleanUpTasks_.insert(task, {task, nullptr, QString(), true}); // see the destructor
    const QPointer<AsyncTaskProcessor> self(this);
    delete task;
    if (self)
        cleanUpTasks_.remove(task);
}

void AsyncTaskProcessor::goOn()
{
    if (!isFinished())
        startTaskLater();
    else if (!currentTask_)
        finishRun();
}

void AsyncTaskProcessor::stopAfterError(AsyncTask *task)
{
    if (!exitOnError_ || stopping_)
        return;
    stopping_ = true;
    if (cleanUpTasks_.contains(task)) {
        skipToCleanUpTask(task);
        return;
    }
    tasks_.clear(); // the dropped tasks live on as children
}

void AsyncTaskProcessor::stopWhenCanceled(AsyncTask *task)
{
    if (!monitor_)
        return;
    const QPointer<AsyncTaskProcessor> self(this);
    if (!monitor_->isCanceled() || !self || stopping_)
        return;
    stopping_ = true;
    log(QStringLiteral("Task processing has been canceled"));
    // Unlike an error, a cancel without a clean-up task leaves the queue as it is: kept for
    // compatibility, see "Cancel without a clean-up task" in docs/compatibility.md.
    if (cleanUpTasks_.contains(task))
        skipToCleanUpTask(task);
}

void AsyncTaskProcessor::skipToCleanUpTask(AsyncTask *task)
{
    const CleanUp cleanUp = cleanUpTasks_.value(task);
    if (log_)
        log(QStringLiteral("Skipping to clean-up task: %1").arg(cleanUp.name));
    const QPointer<AsyncTaskProcessor> self(this);
    const auto isReached
        = [&] { return cleanUp.cleanUpTask && tasks_.first() == cleanUp.cleanUpTask; };
    while (self && !tasks_.isEmpty() && !isReached()) {
        if (AsyncTask *skipped = tasks_.takeFirst())
            deleteTask(skipped);
    }
}

void AsyncTaskProcessor::finishRun()
{
    if (!timer_.isValid())
        return; // a start that was left over when the run ended
    if (log_)
        log(QStringLiteral("Finished processing tasks in %1")
                .arg(System::getElapsedTimeString(timer_.elapsed())));
    timer_.invalidate();
    if (exitEventLoopWhenDone_)
        QCoreApplication::exit(ok_ ? 0 : 1);
}

// Somebody else is deleting the current task, of which only the QObject is left.
void AsyncTaskProcessor::forgetTask()
{
    AsyncTask *const task = currentTask_;
    const bool isRunning = takeEnd();
    const QPointer<AsyncTaskProcessor> self(this);
    if (isRunning) {
        task->setParent(
            nullptr); // or it is deleted again when a skipped task deletes the processor
        ok_ = false;
        stopAfterError(task);
    }
    if (!self)
        return;
    currentTask_ = nullptr;
    if (isRunning)
        goOn();
}

void AsyncTaskProcessor::log(const QString &text)
{
    if (log_)
        log_->fastAppend(text);
}

} // namespace Vorn::Util
