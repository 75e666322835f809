#pragma once

#include <Utility/AsyncTask.h>
#include <Utility/SevenZip.h>

#include <QtCore/QString>
#include <QtCore/QTimer>

#include <functional>

namespace ResultsArchive {

class CancelRequest;
class Job;

/// A task whose work returns an error message, empty if it succeeded. After a cancel errors are
/// ignored: Ctrl-C may have stopped 7-Zip too.
class JobTask : public Vorn::Util::AsyncTask
{
protected:
    JobTask(const QString &name, const CancelRequest &cancel);

    bool isCanceled() const;
    void finishWith(const QString &problem);

private:
    const CancelRequest &cancel_;
};

/// Calls a function that does all of the work.
class StepTask : public JobTask
{
public:
    using Work = std::function<QString()>;

    StepTask(const QString &name, const CancelRequest &cancel, const Work &work);

protected:
    void execute() override;

private:
    Work work_;
};

/// Starts an asynchronous operation of an archive and checks its result at the end. Meanwhile
/// \a progress, if there is one, is asked for what to show.
class ArchiveTask : public JobTask
{
public:
    using Start = std::function<QString(Vorn::Util::SevenZip &)>;
    using Check = std::function<QString(const Vorn::Util::SevenZip &)>;
    using Progress = std::function<QString()>;

    ArchiveTask(const QString &name, const CancelRequest &cancel, const Start &start,
                const Check &check, const Progress &progress = Progress());

protected:
    void execute() override;

private:
    void showProgress();
    void end();

    Start start_;
    Check check_;
    Progress progress_;
    QTimer timer_;
    Vorn::Util::SevenZip archive_;
};

/// Compares the files one by one, and returns to the event loop after each.
class CompareTask : public JobTask
{
public:
    CompareTask(const QString &name, const CancelRequest &cancel, const Job &job);

protected:
    void execute() override;

private:
    void compareNext();

    const Job &job_;
    int next_ = 0;
};

/// Runs after an error or a cancel too. Its own error is never ignored.
class CleanUpTask : public Vorn::Util::AsyncTask
{
public:
    CleanUpTask(const QString &name, Job &job);

protected:
    void execute() override;

private:
    Job &job_;
};

} // namespace ResultsArchive
