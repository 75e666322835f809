#pragma once

#include <Utility/AsyncTask.h>
#include <Utility/SevenZip.h>

#include <QtCore/QString>

#include <functional>

namespace ResultsArchive {

class CancelRequest;
class Job;

/// A task whose work says what went wrong, with an empty text when nothing did. After a cancel
/// nothing counts as wrong: 7-Zip may have been interrupted as well.
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

/// Starts an asynchronous operation of an archive and judges it when it has ended.
class ArchiveTask : public JobTask
{
public:
    using Start = std::function<QString(Vorn::Util::SevenZip &)>;
    using Check = std::function<QString(const Vorn::Util::SevenZip &)>;

    ArchiveTask(const QString &name, const CancelRequest &cancel, const Start &start,
                const Check &check);

protected:
    void execute() override;

private:
    void end();

    Start start_;
    Check check_;
    Vorn::Util::SevenZip archive_;
};

/// Compares the files one by one, with a turn of the event loop between them.
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

/// What has to be done in any case, and whose failure always counts.
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
