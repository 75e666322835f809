#include "Tasks.h"

#include "CancelRequest.h"
#include "Job.h"
#include "Names.h"

using namespace Vorn::Util;

namespace ResultsArchive {

JobTask::JobTask(const QString &name, const CancelRequest &cancel)
    : AsyncTask(name, nullptr)
    , cancel_(cancel)
{
}

bool JobTask::isCanceled() const
{
    return cancel_.isRequested();
}

void JobTask::finishWith(const QString &problem)
{
    if (!problem.isEmpty() && !isCanceled())
        setError(problem);
    setFinished();
}

StepTask::StepTask(const QString &name, const CancelRequest &cancel, const Work &work)
    : JobTask(name, cancel)
    , work_(work)
{
}

void StepTask::execute()
{
    finishWith(work_());
}

ArchiveTask::ArchiveTask(const QString &name, const CancelRequest &cancel, const Start &start,
                         const Check &check, const Progress &progress)
    : JobTask(name, cancel)
    , start_(start)
    , check_(check)
    , progress_(progress)
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &ArchiveTask::showProgress);
    // Queued: the archive is deleted with this task, which must not happen while it emits a signal.
    for (const auto signal :
         {&SevenZip::compressionFinished, &SevenZip::extractionFinished, &SevenZip::listFinished})
        connect(
            &archive_, signal, this, [this] { end(); }, Qt::QueuedConnection);
}

void ArchiveTask::execute()
{
    const QString problem = start_(archive_);
    if (!problem.isEmpty())
        finishWith(problem);
    else if (progress_)
        showProgress();
}

void ArchiveTask::showProgress()
{
    constexpr int Pause = 500; // milliseconds
    Q_EMIT progress(progress_());
    timer_.start(Pause);
}

void ArchiveTask::end()
{
    finishWith(check_(archive_));
}

CompareTask::CompareTask(const QString &name, const CancelRequest &cancel, const Job &job)
    : JobTask(name, cancel)
    , job_(job)
{
}

void CompareTask::execute()
{
    compareNext();
}

void CompareTask::compareNext()
{
    const QStringList names = job_.names();
    if (next_ == names.size() || isCanceled()) {
        setFinished();
        return;
    }
    const QString problem = job_.compareFile(names.at(next_++));
    if (!problem.isEmpty()) {
        finishWith(problem);
        return;
    }
    Q_EMIT progress(QStringLiteral("%1 of %2 files, %3")
                        .arg(QString::number(next_), QString::number(names.size()),
                             percentText(next_, names.size())));
    QTimer::singleShot(0, this, [this] { compareNext(); });
}

CleanUpTask::CleanUpTask(const QString &name, Job &job)
    : AsyncTask(name, nullptr)
    , job_(job)
{
}

void CleanUpTask::execute()
{
    const QString problem = job_.cleanUp();
    if (!problem.isEmpty())
        setError(problem);
    setFinished();
}

} // namespace ResultsArchive
