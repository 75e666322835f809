#include <Utility/SyncTask.h>

#include <QtCore/QMetaObject>

namespace Vorn::Util {

namespace {

QString taskName(const QObject *receiver, const QString &method)
{
    const char *className = receiver ? receiver->metaObject()->className() : "";
    return QStringLiteral("%1::%2").arg(QString::fromUtf8(className)).arg(method);
}

} // namespace

SyncTask::SyncTask(QObject *receiver, const QString &method, QObject *parent)
    : AsyncTask(taskName(receiver, method), parent)
    , receiver_(receiver)
    , method_(method)
{
}

SyncTask::~SyncTask() = default;

void SyncTask::execute()
{
    const QPointer<SyncTask> self(this);
    const bool called = receiver_
        && QMetaObject::invokeMethod(receiver_, method_.toLatin1().constData(),
                                     Qt::DirectConnection);
    if (!self)
        return; // the method has deleted the task or its processor
    // If the method cannot be called, the task gets an error and never finishes.
    // Kept for compatibility: see "SyncTask without its method" in docs/compatibility.md.
    if (called)
        setFinished();
    else
        setError(QStringLiteral("Unable to run sync task: %1").arg(name()));
}

} // namespace Vorn::Util
