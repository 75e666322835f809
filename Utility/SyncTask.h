#pragma once

#include <Utility/AsyncTask.h>

#include <QtCore/QPointer>

namespace Vorn::Util {

/// A task that calls one method of an object and is finished when the call returns.
///
/// \code
/// // Worker has a slot or Q_INVOKABLE method void update().
/// processor.addTask(new SyncTask(&worker, "update", nullptr));    // named "Worker::update"
/// \endcode
///
/// A method that can be called counts as success, whatever it does. When there is no such method
/// without arguments, the task gets the error "Unable to run sync task: NAME" and never
/// finishes: a processor that runs it waits for ever. So a wrong name shows at once in the first
/// trial run.
///
/// The receiver is not owned. One that is gone when the task starts has no method to call.
class VORNUTILITY_EXPORT SyncTask : public AsyncTask
{
public:
    /// \a method is the method's name without parentheses.
    SyncTask(QObject *receiver, const QString &method, QObject *parent);
    ~SyncTask() override;

protected:
    void execute() override;

private:
    Q_DISABLE_COPY(SyncTask)

    QPointer<QObject> receiver_;
    QString method_;
};

} // namespace Vorn::Util
