#include <Utility/AsyncTaskProcessor.h>

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/Log.h>
#include <Utility/System.h>

#include <QtCore/QChildEvent>
#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>

#include <algorithm>

namespace Vorn::Util {

namespace {

// The tasks whose end a processor is handling, or that it is deleting, innermost first (a slot may
// run an event loop of its own): their going is nothing to react to, nor searched in the queue.
class TaskInHand
{
public:
    TaskInHand(const AsyncTaskProcessor *processor, const QObject *task)
        : processor_(processor)
        , task_(task)
        , outer_(innermost_)
    {
        innermost_ = this;
    }
    ~TaskInHand() { innermost_ = outer_; }

    static bool holds(const AsyncTaskProcessor *processor, const QObject *task)
    {
        const TaskInHand *mark = innermost_;
        while (mark && (mark->processor_ != processor || mark->task_ != task))
            mark = mark->outer_;
        return mark;
    }

private:
    Q_DISABLE_COPY(TaskInHand)

    const AsyncTaskProcessor *processor_;
    const QObject *task_;
    const TaskInHand *outer_;
    static thread_local const TaskInHand *innermost_;
};
thread_local const TaskInHand *TaskInHand::innermost_ = nullptr;

// Stands for a clean-up task that is gone. It is never queued, so that a jump to it finds nothing,
// not even a later task at the same address.
class GoneTask : public AsyncTask
{
public:
    using AsyncTask::AsyncTask;

protected:
    void execute() override { }
};

// What a finished task leaves: a slot may delete the task before all of it was used.
struct Result
{
    explicit Result(const AsyncTask &task)
        : ok(task.isOk())
        , ignoreError(task.ignoreError())
        , error(task.error())
        , elapsedTime(task.elapsedTime())
    {
    }

    QString text() const
    {
        const QString time = System::getElapsedTimeString(elapsedTime);
        return ok ? QStringLiteral("Task finished in %1").arg(time)
                  : QStringLiteral("Task finished with errors in %1: error = %2").arg(time, error);
    }

    bool ok;
    bool ignoreError;
    QString error;
    qint64 elapsedTime;
};

} // namespace

AsyncTaskProcessor::AsyncTaskProcessor(QObject *parent)
    : QObject(parent)
{
}

AsyncTaskProcessor::~AsyncTaskProcessor() = default;

void AsyncTaskProcessor::addTask(AsyncTask *task)
{
    if (!task || (task->parent() == this && (task == currentTask_ || tasks_.contains(task))))
        return; // a task runs once
    task->setLog(log_);
    tasks_.append(task);
    task->setParent(this);
}

void AsyncTaskProcessor::setCleanUpTask(AsyncTask *task, AsyncTask *cleanUpTask)
{
    cleanUpTasks_.insert(task, cleanUpTask);
    if (!cleanUpTask)
        return;
    const QString name = cleanUpTask->name();
    connect(cleanUpTask, &QObject::destroyed, this, [this, task, cleanUpTask, name] {
        if (cleanUpTasks_.value(task) == cleanUpTask)
            cleanUpTasks_.insert(task, new GoneTask(name, this));
    });
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
    // The running task is not in the queue, so this is true while the last one runs: callers
    // count on it.
    return tasks_.isEmpty();
}

bool AsyncTaskProcessor::isOk() const
{
    return ok_;
}

void AsyncTaskProcessor::startLater()
{
    if (tasks_.isEmpty())
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
    const bool isSecondStart = currentTask_ || !timer_.isValid();
    if (isSecondStart)
        return;
    if (tasks_.isEmpty()) { // somebody else deleted the waiting tasks
        finishRun();
        return;
    }
    AsyncTask *task = tasks_.takeFirst();
    currentTask_ = task;
    connect(task, &AsyncTask::finished, this, &AsyncTaskProcessor::handleFinishedTask);
    connect(task, &AsyncTask::progress, this, &AsyncTaskProcessor::handleProgressFromTask);
    log(QStringLiteral("Starting task: %1").arg(task->name()));

    const QPointer<AsyncTaskProcessor> self(this);
    const QPointer<AsyncTask> alive(task);
    Q_EMIT started(task);
    if (self && alive && currentTask_ == task)
        task->start();
}

void AsyncTaskProcessor::handleProgressFromTask(const QString &text)
{
    if (sender() == currentTask_)
        Q_EMIT progress(currentTask_, text);
}

// Every step that calls foreign code may delete the task or this processor.
void AsyncTaskProcessor::handleFinishedTask()
{
    AsyncTask *task = currentTask_;
    if (!task || sender() != task || TaskInHand::holds(this, task))
        return;
    const TaskInHand mark(this, task);
    const QPointer<AsyncTaskProcessor> self(this);
    const QPointer<AsyncTask> alive(task);
    Result result(*task);
    Q_EMIT finished(task);
    if (!self)
        return;
    if (alive)
        result = Result(*task);

    const bool isFailure = !result.ok && !result.ignoreError;
    ok_ = ok_ && !isFailure;
    log(result.text());
    if (isFailure)
        stopAfterError();
    if (self)
        stopWhenCanceled();
    if (!self)
        return;

    currentTask_ = nullptr;
    if (alive)
        deleteTask(task);
    if (self)
        goOn();
}

void AsyncTaskProcessor::goOn()
{
    if (tasks_.isEmpty())
        finishRun();
    else
        startTaskLater();
}

void AsyncTaskProcessor::stopAfterError()
{
    if (!exitOnError_ || stopping_)
        return;
    stopping_ = true;
    if (AsyncTask *cleanUpTask = cleanUpTasks_.value(currentTask_))
        skipToCleanUpTask(cleanUpTask);
    else
        tasks_.clear(); // the dropped tasks live on as children
}

void AsyncTaskProcessor::stopWhenCanceled()
{
    const QPointer<AsyncTaskProcessor> self(this);
    if (!monitor_ || !monitor_->isCanceled() || !self || stopping_)
        return;
    stopping_ = true;
    log(QStringLiteral("Task processing has been canceled"));
    // Unlike an error, a cancel without a clean-up task leaves the queue as it is and the remaining
    // tasks run: callers count on it.
    if (AsyncTask *cleanUpTask = cleanUpTasks_.value(currentTask_))
        skipToCleanUpTask(cleanUpTask);
}

void AsyncTaskProcessor::skipToCleanUpTask(AsyncTask *cleanUpTask)
{
    log(QStringLiteral("Skipping to clean-up task: %1").arg(cleanUpTask->name()));
    skipToTask(cleanUpTask);
}

void AsyncTaskProcessor::skipToTask(AsyncTask *target)
{
    const QPointer<AsyncTaskProcessor> self(this);
    while (self && !tasks_.isEmpty() && tasks_.first() != target)
        deleteTask(tasks_.takeFirst());
}

void AsyncTaskProcessor::finishRun()
{
    log(QStringLiteral("Finished processing tasks in %1")
            .arg(System::getElapsedTimeString(timer_.elapsed())));
    timer_.invalidate(); // the run is over
    if (exitEventLoopWhenDone_)
        QCoreApplication::exit(ok_ ? 0 : 1);
}

void AsyncTaskProcessor::deleteTask(AsyncTask *task)
{
    const TaskInHand mark(this, task);
    task->setParent(nullptr); // its destructor may delete this processor
    delete task;
}

void AsyncTaskProcessor::childEvent(QChildEvent *event)
{
    if (event->removed() && !TaskInHand::holds(this, event->child()))
        forgetTask(event->child());
}

// The task was deleted, or given another parent, by somebody else: only its address is of use.
void AsyncTaskProcessor::forgetTask(QObject *task)
{
    if (task != currentTask_) {
        const auto isTask = [task](const AsyncTask *queued) { return queued == task; };
        tasks_.erase(std::remove_if(tasks_.begin(), tasks_.end(), isTask), tasks_.end());
        return;
    }
    const QPointer<AsyncTaskProcessor> self(this);
    ok_ = false;
    stopAfterError();
    if (!self)
        return;
    currentTask_ = nullptr;
    goOn();
}

void AsyncTaskProcessor::log(const QString &text)
{
    if (log_)
        log_->fastAppend(text);
}

} // namespace Vorn::Util
