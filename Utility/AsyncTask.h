#pragma once

#include <Utility/Export.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>

namespace Vorn::Util {

class Log;

/// \ingroup tasks
/// Base class of the tasks that an AsyncTaskProcessor runs. A task does its work immediately, or
/// over several turns of the event loop, and then calls setFinished().
///
/// \snippet docs/samples/tasks.cpp run program
///
/// \dotfile task-life.dot "The life of a task"
///
/// Ownership: AsyncTaskProcessor::addTask() makes the processor the owner of the task. The
/// processor deletes the task while it emits finished(), that is, inside setFinished().
/// - Do not use a task after calling setFinished().
/// - The members of a task are deleted with the task. If a signal of a member ends the work, use a
///   queued connection as above. Or create the object outside the task and delete it with
///   deleteLater(). With a direct connection setFinished() would delete the member while it emits
///   the signal, and the program would crash.
///
/// A task runs at most once.
///
/// Thread: the thread of the processor's event loop. Report failures with setError(); execute()
/// must not throw.
class VORNUTILITY_EXPORT AsyncTask : public QObject
{
    Q_OBJECT

public:
    /// \a name identifies the task in the log and to the user. It cannot be changed later.
    AsyncTask(const QString &name, QObject *parent);
    /// Does not emit finished(). See above for who deletes a task.
    ~AsyncTask() override;

    /// The name given to the constructor.
    QString name() const;

    /// The text of the last failure; empty while isOk() is true.
    QString error() const;

    /// False after setError(), until resetError() is called.
    bool isOk() const;

    /// Whether the processor ignores a failure of this task: it logs the error, continues with the
    /// queue, and its own isOk() does not change. Default: false.
    bool ignoreError() const;

    /// Sets ignoreError(). The processor reads it when the task has finished.
    void setIgnoreError(bool ignoreError);

    /// Milliseconds from start() to setFinished(); 0 for a task that has not finished.
    qint64 elapsedTime() const;

    /// Starts the timer and calls execute(). The processor calls this function. The task may be
    /// deleted when it returns.
    void start();

Q_SIGNALS:
    /// Describes the current state of the work for the user. The processor forwards the text with
    /// AsyncTaskProcessor::progress(); it does not log it.
    void progress(const QString &text);

    /// Emitted by setFinished(). The processor deletes the task in a slot of this signal.
    void finished();

protected:
    /// Does the work or starts it. Call setFinished() at the end of the work, in this function or
    /// later: a task that never calls it is never finished. There is no time limit.
    virtual void execute() = 0;

    /// Records the elapsed time and emits finished(). The task may be deleted when this returns.
    void setFinished();

    /// Records a failure. It does not end the task: call setFinished() as well.
    void setError(const QString &text);

    /// Removes a failure: isOk() is true again and error() is empty.
    void resetError();

    /// Appends a line to the log with Log::fastAppend(). Does nothing without a log.
    void log(const QString &text);

    /// Sets the log, which is not owned and may be null. AsyncTaskProcessor::addTask() replaces it
    /// by the log of the processor.
    void setLog(Vorn::Util::Log *log);

private:
    Q_DISABLE_COPY(AsyncTask)
    friend class AsyncTaskProcessor;

    QString name_;
    bool ignoreError_ = false;
    bool ok_ = true;
    QString error_;
    Log *log_ = nullptr;
    QElapsedTimer timer_;
    qint64 elapsedTime_ = 0;
};

} // namespace Vorn::Util
