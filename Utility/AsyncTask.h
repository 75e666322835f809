#pragma once

#include <Utility/Export.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>

namespace Vorn::Util {

class Log;

/// A unit of work for an AsyncTaskProcessor: it is started, works at once or over several turns
/// of the event loop, and announces its end with finished().
///
/// \code
/// class RunProgram : public AsyncTask
/// {
/// public:
///     RunProgram(const QString &program, const QStringList &arguments)
///         : AsyncTask(QStringLiteral("Run %1").arg(program), nullptr)
///     {
///         process_.setProgram(program);
///         process_.setArguments(arguments);
///         // setFinished() deletes this task and process_ with it. This must not happen inside a
///         // signal of process_, so the connections are queued.
///         connect(&process_, &QProcess::errorOccurred, this, &RunProgram::end,
///                 Qt::QueuedConnection);
///         connect(&process_, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
///                 this, &RunProgram::end, Qt::QueuedConnection);
///     }
///
/// protected:
///     void execute() override { process_.start(); }
///
/// private:
///     void end()
///     {
///         if (process_.state() != QProcess::NotRunning)
///             return; // an error before the end
///         if (process_.error() != QProcess::UnknownError)
///             setError(process_.errorString());
///         else if (process_.exitCode() != 0)
///             setError(QStringLiteral("Exit code %1").arg(process_.exitCode()));
///         setFinished();
///     }
///
///     QProcess process_;
/// };
/// \endcode
///
/// Ownership: once added, a task belongs to its processor, which deletes it inside finished().
/// - Do not use a task after calling setFinished().
/// - A member of the task dies with it. When the end of its work is a signal of a member, use a
///   queued connection as above, or keep the object outside of the task and hand it to
///   deleteLater(). A direct connection to a slot that calls setFinished() destroys the member
///   inside its own signal, and the program crashes.
///
/// A task runs at most once.
///
/// Thread: that of the processor's event loop. A failure is an error text, never an exception.
class VORNUTILITY_EXPORT AsyncTask : public QObject
{
    Q_OBJECT

public:
    /// \a name is what the log and the user see; it never changes.
    AsyncTask(const QString &name, QObject *parent);
    ~AsyncTask() override;

    QString name() const;

    /// The text of the last failure; empty while isOk().
    QString error() const;
    bool isOk() const;

    /// Whether a failure of this task leaves the queue and the overall result as they are.
    bool ignoreError() const;
    void setIgnoreError(bool ignoreError);

    /// Milliseconds from start() to the end; 0 for a task that has not finished.
    qint64 elapsedTime() const;

    /// Starts the time and the work. The processor calls it; the task may be gone afterwards.
    void start();

Q_SIGNALS:
    /// A text about the work under way, for the user.
    void progress(const QString &text);

    /// The last thing a task does. The processor deletes the task inside this signal.
    void finished();

protected:
    /// Does the work. It ends, now or later, with setFinished(). Nothing times it out.
    virtual void execute() = 0;

    /// Takes the time and emits finished(). The task may be deleted when this returns.
    void setFinished();

    /// Notes a failure. The task still has to end with setFinished().
    void setError(const QString &text);
    void resetError();

    /// Writes a line to the log, if there is one.
    void log(const QString &text);

    /// The log is not owned and may be null. The processor sets its own when the task is added.
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
