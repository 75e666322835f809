#pragma once

#include <Utility/AsyncTask.h>

#include <QtCore/QTimer>

#include <functional>
#include <utility>

/// A task whose work is a function, with the protected functions of tasks made public.
class TestTask : public Vorn::Util::AsyncTask
{
public:
    using Work = std::function<void(TestTask &)>;

    TestTask(const QString &name, Work work, QObject *parent = nullptr)
        : AsyncTask(name, parent)
        , work_(std::move(work))
    {
    }

    using AsyncTask::log;
    using AsyncTask::resetError;
    using AsyncTask::setError;
    using AsyncTask::setFinished;
    using AsyncTask::setLog;

protected:
    void execute() override
    {
        const Work work = work_; // outlives the task, which may be gone before the work returns
        work(*this);
    }

private:
    Work work_;
};

/// Finishes inside execute().
inline TestTask::Work succeed()
{
    return [](TestTask &task) { task.setFinished(); };
}

inline TestTask::Work fail(const QString &error = QStringLiteral("broken"))
{
    return [error](TestTask &task) {
        task.setError(error);
        task.setFinished();
    };
}

/// Does \a work in a later turn of the event loop.
inline TestTask::Work later(const TestTask::Work &work)
{
    return [work](TestTask &task) { QTimer::singleShot(0, &task, [work, &task] { work(task); }); };
}

/// Never finishes.
inline TestTask::Work idle()
{
    return [](TestTask &) {};
}
