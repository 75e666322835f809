#pragma once

#include <Utility/AsyncTask.h>

#include <QtCore/QProcess>

using Vorn::Util::AsyncTask;

// The example in Utility/AsyncTask.h, line by line: a test compares the two.
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
