#include <Utility/AsyncTaskProcessor.h>

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/Log.h>
#include <Utility/System.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>

#include <algorithm>
#include <deque>

// Slots, the monitor and the destructors of tasks are code of the application. They may delete
// tasks and the processor. Three rules make this safe:
// - If a waiting task is deleted, its pointer in the queue becomes null. If the application deletes
//   the current task, forgetCurrentTask() sets currentTask_ to null.
// - The function that changes the state of the current task from Running to Ended handles the end
//   of the task, so this happens only once.
// - After code of the application has run, check with a QPointer whether the processor and the task
//   still exist.

namespace Vorn::Util {

// The clean-up task of a task. The QPointer to a deleted task is null, even if a new task has the
// same address.
struct AsyncTaskProcessor::CleanUp
{
    QPointer<AsyncTask> task;
    QPointer<AsyncTask> cleanUpTask;
    QString name; // of the clean-up task, for the log after it was deleted
};

struct AsyncTaskProcessor::Queue
{
    std::deque<QPointer<AsyncTask>> waiting;           // null for a task that was deleted
    enum { Running, Ended, Deleting } current = Ended; // the state of the current task
    QMetaMethod startSlot;
};

namespace {

// The result of a finished task, copied because a slot may delete the task.
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
    , tasks_(new Queue)
{
}

AsyncTaskProcessor::~AsyncTaskProcessor()
{
    if (!currentTask_)
        return;
    // The current task is a child and is deleted after the members. Its signals must not call slots
    // of this object then.
    disconnect(currentTask_, nullptr, this, nullptr);
    // Called by the destructor of the task: the task must not be deleted a second time.
    if (tasks_->current == Queue::Deleting)
        currentTask_->setParent(nullptr);
}

void AsyncTaskProcessor::addTask(AsyncTask *task)
{
    if (!task)
        return;
    const auto cleanUp = cleanUpTasks_.constFind(task);
    if (cleanUp != cleanUpTasks_.constEnd() && !cleanUp->task)
        cleanUpTasks_.remove(task); // the entry of a deleted task that had the same address
    task->setLog(log_);
    tasks_->waiting.emplace_back(task);
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
    // The queue does not contain the current task, so the result is true while the last task runs.
    // Kept for compatibility: see "isFinished() during the last task" in docs/compatibility.md.
    return std::none_of(tasks_->waiting.cbegin(), tasks_->waiting.cend(),
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
    // Found by its name, so that a derived class can replace the slot. Only once: a look-up takes
    // time.
    if (!tasks_->startSlot.isValid()) {
        tasks_->startSlot = metaObject()->method(metaObject()->indexOfSlot("startTaskFromQueue()"));
    }
    tasks_->startSlot.invoke(this, Qt::QueuedConnection);
}

void AsyncTaskProcessor::startTaskFromQueue()
{
    if (currentTask_)
        return;
    QPointer<AsyncTask> task;
    while (!task && !tasks_->waiting.empty()) {
        task = tasks_->waiting.front();
        tasks_->waiting.pop_front();
    }
    if (!task) {
        finishRun(); // all waiting tasks were deleted
        return;
    }
    if (!timer_.isValid())
        timer_.start(); // this slot was called without startLater()
    currentTask_ = task;
    tasks_->current = Queue::Running;
    connect(task, &AsyncTask::finished, this, &AsyncTaskProcessor::handleFinishedTask);
    connect(task, &AsyncTask::progress, this, &AsyncTaskProcessor::handleProgressFromTask);
    connect(task, &QObject::destroyed, this, &AsyncTaskProcessor::forgetCurrentTask);
    if (log_)
        log(QStringLiteral("Starting task: %1").arg(task->name()));

    const QPointer<AsyncTaskProcessor> self(this);
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
    if (!task || tasks_->current != Queue::Running)
        return;
    tasks_->current = Queue::Ended;
    const QPointer<AsyncTaskProcessor> self(this);
    const QPointer<AsyncTask> alive(task);
    Result result = resultOf(*task);
    Q_EMIT finished(task);
    if (!self)
        return;
    if (alive)
        result = resultOf(*task); // a slot may have changed it, for example with setIgnoreError()

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
    if (alive)
        deleteCurrentTask();
    if (self)
        goOn();
}

// Called by the destructor of the current task. Only the QObject part of the task still exists.
void AsyncTaskProcessor::forgetCurrentTask()
{
    if (tasks_->current == Queue::Deleting)
        return; // the destructor of this processor needs the pointer until the task is gone
    if (tasks_->current == Queue::Ended) {
        currentTask_ = nullptr;
        return;
    }
    // The application has deleted the running task: it counts as failed.
    tasks_->current = Queue::Ended;
    const QPointer<AsyncTaskProcessor> self(this);
    // The destructor of a skipped task may delete this processor, which must not delete the current
    // task, its child, a second time.
    currentTask_->setParent(nullptr);
    ok_ = false;
    stopAfterError(currentTask_);
    if (!self)
        return;
    currentTask_ = nullptr;
    goOn();
}

void AsyncTaskProcessor::deleteCurrentTask()
{
    tasks_->current = Queue::Deleting;
    const QPointer<AsyncTaskProcessor> self(this);
    delete currentTask_; // may delete this processor
    if (self)
        currentTask_ = nullptr;
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
        tasks_->waiting.clear();
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
    // Without a clean-up task a cancel does not change the queue, unlike a failure.
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
        = [&] { return cleanUp.cleanUpTask && tasks_->waiting.front() == cleanUp.cleanUpTask; };
    while (self && !tasks_->waiting.empty() && !isNext())
        skipTask();
}

void AsyncTaskProcessor::skipTask()
{
    AsyncTask *const task = tasks_->waiting.front();
    tasks_->waiting.pop_front();
    if (!task)
        return;
    // The destructor of the task may delete this processor. The processor must not delete the task,
    // which is its child, a second time.
    connect(this, &QObject::destroyed, task, [task] { task->setParent(nullptr); });
    delete task;
}

void AsyncTaskProcessor::finishRun()
{
    if (!timer_.isValid())
        return; // the run has already ended; this was a second queued start
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
