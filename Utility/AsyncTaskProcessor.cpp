#include <Utility/AsyncTaskProcessor.h>

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/Log.h>
#include <Utility/System.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

// Signals, the monitor and the destructors of tasks run code of the application, which may delete
// tasks and the processor. The processor survives this by three rules:
// - A waiting task that is deleted leaves a null pointer in tasks_. The deletion of the current
//   task calls forgetCurrentTask(), which sets currentTask_ to null.
// - The current task is connected to handleFinishedTask(). Whoever cuts this connection handles the
//   end of the task, so that this happens once.
// - After code of the application has run, a QPointer tells whether the processor and the task
//   still exist.

namespace Vorn::Util {

// The entry of a task. A QPointer is null for a deleted task, also when a later task has its
// address.
struct AsyncTaskProcessor::CleanUp
{
    QPointer<AsyncTask> task;
    QPointer<AsyncTask> cleanUpTask;
    QString name; // outlives the clean-up task
};

namespace {

// What the processor needs of a finished task. A slot may delete the task before it is used.
struct Result
{
    bool isOk;
    bool ignoreError;
    QString error;
    qint64 elapsedTime;
};

Result resultOf(const AsyncTask &task)
{
    return {task.isOk(), task.ignoreError(), task.error(), task.elapsedTime()};
}

QString text(const Result &result)
{
    const QString time = System::getElapsedTimeString(result.elapsedTime);
    return result.isOk
        ? QStringLiteral("Task finished in %1").arg(time)
        : QStringLiteral("Task finished with errors in %1: error = %2").arg(time, result.error);
}

} // namespace

AsyncTaskProcessor::AsyncTaskProcessor(QObject *parent)
    : QObject(parent)
{
}

AsyncTaskProcessor::~AsyncTaskProcessor()
{
    // The current task outlives the members, and must not call a slot then.
    if (currentTask_)
        disconnect(currentTask_, nullptr, this, nullptr);
}

void AsyncTaskProcessor::addTask(AsyncTask *task)
{
    if (!task)
        return;
    const auto cleanUp = cleanUpTasks_.constFind(task);
    if (cleanUp != cleanUpTasks_.constEnd() && !cleanUp->task)
        cleanUpTasks_.remove(task); // the entry of an earlier task at this address
    task->setLog(log_);
    tasks_.append(task);
    task->setParent(this);
}

void AsyncTaskProcessor::setCleanUpTask(AsyncTask *task, AsyncTask *cleanUpTask)
{
    if (cleanUpTask)
        cleanUpTasks_.insert(task, {task, cleanUpTask, cleanUpTask->name()});
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
    // True while the last task runs.
    // Kept for compatibility: see "isFinished() during the last task" in docs/compatibility.md.
    return std::none_of(tasks_.cbegin(), tasks_.cend(),
                        [](const QPointer<AsyncTask> &task) { return task; });
}

bool AsyncTaskProcessor::isOk() const
{
    return ok_;
}

void AsyncTaskProcessor::startLater()
{
    // Kept for compatibility: see "Start on an empty queue" in docs/compatibility.md.
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
    while (!currentTask_ && !tasks_.isEmpty())
        currentTask_ = tasks_.takeFirst();
    if (!currentTask_) {
        finishRun(); // the waiting tasks were deleted
        return;
    }
    if (!timer_.isValid())
        timer_.start(); // called without startLater()
    connect(currentTask_, &AsyncTask::finished, this, &AsyncTaskProcessor::handleFinishedTask);
    connect(currentTask_, &AsyncTask::progress, this, &AsyncTaskProcessor::handleProgressFromTask);
    connect(currentTask_, &QObject::destroyed, this, &AsyncTaskProcessor::forgetCurrentTask);
    if (log_)
        log(QStringLiteral("Starting task: %1").arg(currentTask_->name()));

    const QPointer<AsyncTaskProcessor> self(this);
    const QPointer<AsyncTask> task(currentTask_);
    Q_EMIT started(task);
    if (self && task)
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
    Result result = resultOf(*task);
    Q_EMIT finished(task);
    if (!self)
        return;
    if (alive)
        result = resultOf(*task); // the slots may have changed it

    const bool isFailure = !result.isOk && !result.ignoreError;
    ok_ = ok_ && !isFailure;
    if (log_)
        log(text(result));
    if (isFailure)
        stopAfterError(task);
    if (self)
        stopWhenCanceled(task);
    if (!self)
        return;
    deleteTask(alive);
    if (self)
        goOn();
}

// Cuts the connection for the end of the current task. False when that end is being handled.
bool AsyncTaskProcessor::takeEnd()
{
    return disconnect(currentTask_, &AsyncTask::finished, this,
                      &AsyncTaskProcessor::handleFinishedTask);
}

// Called while the current task is being deleted. Only its QObject is left.
void AsyncTaskProcessor::forgetCurrentTask()
{
    if (!takeEnd()) {
        currentTask_ = nullptr;
        return;
    }
    // Somebody else deletes the task while it runs: it counts as failed.
    const QPointer<AsyncTaskProcessor> self(this);
    currentTask_->setParent(nullptr); // a skipped task may delete this processor and its children
    ok_ = false;
    stopAfterError(currentTask_);
    if (!self)
        return;
    currentTask_ = nullptr;
    goOn();
}

void AsyncTaskProcessor::deleteTask(AsyncTask *task)
{
    if (!task)
        return;
    // The destructor of the task may delete this processor, which would delete its child again.
    connect(this, &QObject::destroyed, task, [task] { task->setParent(nullptr); });
    delete task;
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
    // Kept for compatibility: see "One stop" in docs/compatibility.md.
    if (!exitOnError_ || stopping_)
        return;
    stopping_ = true;
    if (cleanUpTasks_.contains(task))
        skipToCleanUpTask(task);
    else // Kept for compatibility: see "Tasks dropped after a failure" in docs/compatibility.md.
        tasks_.clear();
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
    // Unlike an error, a cancel without a clean-up task leaves the queue as it is.
    // Kept for compatibility: see "Cancel without a clean-up task" in docs/compatibility.md.
    if (cleanUpTasks_.contains(task))
        skipToCleanUpTask(task);
}

void AsyncTaskProcessor::skipToCleanUpTask(AsyncTask *task)
{
    const CleanUp cleanUp = cleanUpTasks_.value(task);
    log(QStringLiteral("Skipping to clean-up task: %1").arg(cleanUp.name));
    const QPointer<AsyncTaskProcessor> self(this);
    const auto isNext
        = [&] { return cleanUp.cleanUpTask && tasks_.first() == cleanUp.cleanUpTask; };
    while (self && !tasks_.isEmpty() && !isNext())
        deleteTask(tasks_.takeFirst());
}

void AsyncTaskProcessor::finishRun()
{
    if (!timer_.isValid())
        return; // a start that was left over when the run ended
    log(QStringLiteral("Finished processing tasks in %1")
            .arg(System::getElapsedTimeString(timer_.elapsed())));
    timer_.invalidate();
    if (exitEventLoopWhenDone_)
        QCoreApplication::exit(ok_ ? 0 : 1);
}

void AsyncTaskProcessor::log(const QString &text)
{
    if (log_)
        log_->fastAppend(text);
}

} // namespace Vorn::Util
