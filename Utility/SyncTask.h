#pragma once

#include <Utility/AsyncTask.h>

#include <QtCore/QPointer>

namespace Vorn::Util {

/// \ingroup tasks
/// A task that calls a method of an object. The task is finished when the method returns.
///
/// \snippet docs/samples/tasks.cpp sync task
///
/// The task succeeds if the method can be called, whatever the method does.
///
/// If the object has no such method without arguments, or was deleted before the task starts, the
/// task gets the error "Unable to run sync task: NAME" and is never finished. The processor then
/// waits forever.
/// Kept for compatibility: see "SyncTask without its method" in docs/compatibility.md.
///
/// The object is not owned. Its method is called in the thread of the processor.
class VORNUTILITY_EXPORT SyncTask : public AsyncTask
{
public:
    /// The task will call \a method of \a receiver. \a method is the name of a slot or Q_INVOKABLE
    /// method without parentheses.
    SyncTask(QObject *receiver, const QString &method, QObject *parent);
    /// Does not change the receiver.
    ~SyncTask() override;

protected:
    /// Calls the method of the receiver directly, then setFinished().
    void execute() override;

private:
    Q_DISABLE_COPY(SyncTask)

    QPointer<QObject> receiver_;
    QString method_;
};

} // namespace Vorn::Util
