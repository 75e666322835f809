#include <Utility/AsyncTask.h>

#include <Utility/Log.h>

namespace Vorn::Util {

AsyncTask::AsyncTask(const QString &name, QObject *parent)
    : QObject(parent)
    , name_(name)
{
}

AsyncTask::~AsyncTask() = default;

QString AsyncTask::name() const
{
    return name_;
}

QString AsyncTask::error() const
{
    return error_;
}

bool AsyncTask::isOk() const
{
    return ok_;
}

bool AsyncTask::ignoreError() const
{
    return ignoreError_;
}

void AsyncTask::setIgnoreError(bool ignoreError)
{
    ignoreError_ = ignoreError;
}

qint64 AsyncTask::elapsedTime() const
{
    return elapsedTime_;
}

void AsyncTask::start()
{
    timer_.start();
    execute(); // may delete this task
}

void AsyncTask::setFinished()
{
    elapsedTime_ = timer_.isValid() ? timer_.elapsed() : 0;
    Q_EMIT finished(); // deletes this task when a processor runs it
}

void AsyncTask::setError(const QString &text)
{
    ok_ = false;
    error_ = text;
}

void AsyncTask::resetError()
{
    ok_ = true;
    error_.clear();
}

void AsyncTask::log(const QString &text)
{
    if (log_)
        log_->fastAppend(text);
}

void AsyncTask::setLog(Log *log)
{
    log_ = log;
}

} // namespace Vorn::Util
