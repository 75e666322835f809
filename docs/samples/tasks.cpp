#include "Samples.h"

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Log.h>
#include <Utility/SyncTask.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>

using namespace Vorn::Util;

namespace {

//! [run program]
class RunProgram : public AsyncTask
{
public:
    RunProgram(const QString &program, const QStringList &arguments)
        : AsyncTask(QStringLiteral("Run %1").arg(program), nullptr)
    {
        process_.setProgram(program);
        process_.setArguments(arguments);
        // setFinished() deletes this task and process_ with it. This must not happen inside a
        // signal of process_, so the connections are queued.
        connect(&process_, &QProcess::errorOccurred, this, &RunProgram::end, Qt::QueuedConnection);
        connect(&process_, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
                &RunProgram::end, Qt::QueuedConnection);
    }

protected:
    void execute() override { process_.start(); }

private:
    void end()
    {
        if (process_.state() != QProcess::NotRunning)
            return; // the program still runs; finished() will follow
        if (process_.error() != QProcess::UnknownError)
            setError(process_.errorString());
        else if (process_.exitCode() != 0)
            setError(QStringLiteral("Exit code %1").arg(process_.exitCode()));
        setFinished();
    }

    QProcess process_;
};
//! [run program]

//! [monitor]
class CancelButton : public AsyncTaskMonitor
{
public:
    void press() { pressed_ = true; }
    bool isCanceled() override { return pressed_; }

private:
    bool pressed_ = false;
};
//! [monitor]

} // namespace

AsyncTask *Samples::makeRunProgram(const QString &program, const QStringList &arguments)
{
    return new RunProgram(program, arguments);
}

int Samples::runTasks(QCoreApplication &app, Worker &worker, Log &log)
{
    //! [processor]
    AsyncTaskProcessor processor;
    processor.setLog(&log); // before addTask()
    auto *mesh = new SyncTask(&worker, "mesh", nullptr);
    auto *cleanUp = new SyncTask(&worker, "cleanUp", nullptr);
    processor.addTask(mesh);
    processor.addTask(new SyncTask(&worker, "solve", nullptr));
    processor.addTask(cleanUp);
    processor.setCleanUpTask(mesh, cleanUp); // if mesh fails, skip to cleanUp
    processor.setExitEventLoopWhenDone(true);
    processor.startLater();
    return app.exec(); // 0, or 1 when a task failed
    //! [processor]
}

int Samples::runTask(QCoreApplication &app, AsyncTask *task, Log &log)
{
    AsyncTaskProcessor processor;
    processor.setLog(&log);
    processor.addTask(task);
    processor.setExitEventLoopWhenDone(true);
    processor.startLater();
    return app.exec();
}

int Samples::runUpdate(QCoreApplication &app, Worker &worker)
{
    AsyncTaskProcessor processor;
    //! [sync task]
    // Worker has a slot or Q_INVOKABLE method void update().
    processor.addTask(new SyncTask(&worker, "update", nullptr)); // named "Worker::update"
    //! [sync task]
    processor.setExitEventLoopWhenDone(true);
    processor.startLater();
    return app.exec();
}

int Samples::cancelAtOnce(QCoreApplication &app, Worker &worker, Log &log)
{
    AsyncTaskProcessor processor;
    processor.setLog(&log);
    //! [set monitor]
    CancelButton cancelButton;
    processor.setTaskMonitor(&cancelButton);
    //! [set monitor]
    auto *mesh = new SyncTask(&worker, "mesh", nullptr);
    auto *cleanUp = new SyncTask(&worker, "cleanUp", nullptr);
    processor.addTask(mesh);
    processor.addTask(new SyncTask(&worker, "solve", nullptr));
    processor.addTask(cleanUp);
    processor.setCleanUpTask(mesh, cleanUp);
    processor.setExitEventLoopWhenDone(true);
    cancelButton.press();
    processor.startLater();
    return app.exec();
}
