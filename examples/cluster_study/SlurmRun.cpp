#include "SlurmRun.h"

#include "CancelRequest.h"
#include "CaseCommand.h"
#include "CaseEnd.h"
#include "Output.h"
#include "RunCase.h"
#include "Study.h"
#include "StudyFolder.h"
#include "Text.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace ClusterStudy {

namespace {

// In milliseconds.
constexpr int CancelTick = 100;
constexpr int QueueTick = 2000;
constexpr int StoppingTick = 1000;
// An end file may appear later than its job has left the queue.
constexpr int TimeUntilMissing = 10000;
// Slurm waits 30 seconds by default before it kills a job.
constexpr int TimeToStop = 120000;
constexpr int TimeUntilNextTry = 10000; // before sbatch is called again

constexpr int MaxTask = 10000; // so that the list of tasks fits into an argument

// Fixed text: the parameters reach the case by files.
QByteArray batchScript()
{
    return "#!/bin/sh\nexec \"$" + QByteArray(ProgramVariable) + "\" " + RunCaseOption + "\n";
}

// A file system in the network may answer from what it has kept of a folder, on NFS for up to a
// minute. After a change of the folder it asks the server.
void readAgain(const QString &folder)
{
    QFile file(folder + QStringLiteral("/study-change"));
    if (file.open(QIODevice::WriteOnly))
        file.remove();
}

} // namespace

SlurmRun::SlurmRun(const Study &study, const StudyFolder &folder, const QList<int> &cases, int jobs,
                   Progress &progress, const CancelRequest &cancel)
    : AsyncTask(QStringLiteral("Run the cases on Slurm"), nullptr)
    , study_(study)
    , folder_(folder)
    , jobs_(folder)
    , cases_(cases)
    , jobLimit_(jobs)
    , progress_(progress)
    , cancel_(cancel)
{
    tick_.setSingleShot(true);
    connect(&tick_, &QTimer::timeout, this, [this] { askForQueue(); });
    connect(&cancelTimer_, &QTimer::timeout, this, [this] { checkCancel(); });
}

void SlurmRun::execute()
{
    if (cases_.isEmpty() && !jobs_.exists()) {
        setFinished();
        return;
    }
    mayHaveJobs_ = jobs_.exists();
    const QString problem = jobs_.create();
    if (!problem.isEmpty()) {
        setError(problem);
        setFinished();
        return;
    }
    jobName_ = jobs_.jobName();
    cancelTimer_.start(CancelTick);
    command_.run(QStringLiteral("scontrol"), {QStringLiteral("show"), QStringLiteral("config")},
                 [this](const SlurmCommand::Answer &answer) { readConfig(answer); });
}

void SlurmRun::readConfig(const SlurmCommand::Answer &answer)
{
    const int maxTask = qMin(MaxTask, maxArraySize(answer.output) - 1);
    if (!answer.isOk) {
        setError(answer.error);
        end(!mayHaveJobs_);
        return;
    }
    if (maxTask < 1)
        stop(QStringLiteral("Slurm does not allow job arrays"));
    else if (!isStopping_)
        waiting_ = splitIntoArrays(cases_, maxTask);
    askForQueue();
}

void SlurmRun::askForQueue()
{
    command_.run(QStringLiteral("squeue"),
                 {QStringLiteral("--noheader"), QStringLiteral("--all"),
                  QStringLiteral("--name=") + jobName_,
                  QStringLiteral("--format=") + queueFormat()},
                 [this](const SlurmCommand::Answer &answer) { readAnswer(answer); });
}

void SlurmRun::readAnswer(const SlurmCommand::Answer &answer)
{
    const bool isValid = answer.isOk && readQueue(answer.output, queue_);
    if (!isValid && !wasSilent_)
        log(answer.isOk ? QStringLiteral("The answer of squeue is not valid") : answer.error);
    if (isValid && wasSilent_)
        log(QStringLiteral("squeue answers again"));
    wasSilent_ = !isValid;
    if (isValid) {
        checkCases();
        goOn();
    } else if (isStopping_ && stopping_.elapsed() > TimeToStop) {
        end(false);
    } else {
        tick_.start(QueueTick);
    }
}

// Decides what to do next. The queue is known.
void SlurmRun::goOn()
{
    // Jobs of a run that was killed, or of a call of sbatch that was ended too early to tell the
    // number.
    QStringList unknown;
    for (const QueueRow &row : qAsConst(queue_)) {
        if (!offsets_.contains(row.array))
            unknown << QString::number(row.array);
    }
    unknown.removeDuplicates();

    if (isStopping_) {
        if (queue_.isEmpty() || stopping_.elapsed() > TimeToStop)
            end(queue_.isEmpty());
        else
            cancelJobs({QStringLiteral("--name=") + jobName_});
    } else if (!unknown.isEmpty()) {
        cancelJobs(unknown);
    } else if (canSubmit()) {
        submit();
    } else if (waiting_.isEmpty() && active_.isEmpty()) {
        end(true);
    } else {
        tick_.start(QueueTick);
    }
}

bool SlurmRun::canSubmit() const
{
    if (waiting_.isEmpty() || (refused_.isValid() && refused_.elapsed() < TimeUntilNextTry))
        return false;
    return jobLimit_ == 0 || active_.isEmpty(); // Slurm applies the limit to one array
}

void SlurmRun::submit()
{
    const TaskArray &array = waiting_.first();
    const QString problem = prepare(array);
    if (!problem.isEmpty()) {
        stop(problem);
        askForQueue();
        return;
    }
    mayHaveJobs_ = true;
    isSubmitting_ = true;
    QProcessEnvironment variables;
    variables.insert(QLatin1String(ProgramVariable), QCoreApplication::applicationFilePath());
    variables.insert(QLatin1String(FolderVariable), folder_.path());
    variables.insert(QLatin1String(OffsetVariable), QString::number(array.offset));
    command_.run(
        QStringLiteral("sbatch"),
        {QStringLiteral("--parsable"), QStringLiteral("--export=ALL"),
         // A job that Slurm runs again would run a case of which the end is already known.
         QStringLiteral("--no-requeue"), QStringLiteral("--job-name=") + jobName_,
         QStringLiteral("--array=") + taskList(array, jobLimit_),
         QStringLiteral("--chdir=") + jobs_.path(),
         QStringLiteral("--output=") + SlurmFolder::messagesName(),
         QStringLiteral("--open-mode=append")},
        [this](const SlurmCommand::Answer &answer) { readSubmitted(answer); }, batchScript(),
        variables);
}

QString SlurmRun::prepare(const TaskArray &array) const
{
    for (const int number : array.cases) {
        QString problem = jobs_.writeCommand(number, commandOf(study_, number));
        if (problem.isEmpty())
            problem = folder_.removeEnd(number);
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

void SlurmRun::readSubmitted(const SlurmCommand::Answer &answer)
{
    isSubmitting_ = false;
    const qint64 job = answer.isOk ? submittedJob(answer.output) : 0;
    if (isStopping_) {
        // Whether Slurm has accepted the array does not matter: its jobs are found by their name.
    } else if (answer.isTooLate || (!answer.isOk && !offsets_.isEmpty())) {
        // sbatch waits if the queue is full. What fails after a first array was accepted can end by
        // itself, such as a limit for the jobs of a user or a restart of the controller.
        if (!refused_.isValid())
            log(QStringLiteral("Slurm does not accept more jobs now. %1").arg(answer.error));
        refused_.start();
    } else if (job <= 0) {
        stop(answer.isOk ? QStringLiteral("sbatch did not tell the number of the job")
                         : answer.error);
    } else {
        refused_.invalidate();
        const TaskArray array = waiting_.takeFirst();
        offsets_.insert(job, array.offset);
        for (const int number : array.cases)
            active_.insert(number);
        log(QStringLiteral("Slurm job %1: %2 cases, from %3 to %4")
                .arg(QString::number(job), QString::number(array.cases.size()),
                     QString::number(array.cases.first()), QString::number(array.cases.last())));
    }
    askForQueue();
}

void SlurmRun::cancelJobs(const QStringList &which)
{
    command_.run(QStringLiteral("scancel"), which, [this](const SlurmCommand::Answer &answer) {
        if (!answer.isOk)
            log(answer.error);
        tick_.start(StoppingTick);
    });
}

void SlurmRun::checkCases()
{
    QSet<int> queued;
    QSet<int> pending;
    progress_.running = 0;
    for (const QueueRow &row : qAsConst(queue_)) {
        if (!offsets_.contains(row.array))
            continue;
        for (const int task : row.tasks) {
            const int number = offsets_.value(row.array) + task;
            queued.insert(number);
            if (row.isPending())
                pending.insert(number);
            progress_.running += row.isRunning() ? 1 : 0;
            if (isStopping_ && row.isRunning())
                stopped_.insert(number);
        }
    }
    const QSet<int> started = active_ - pending;
    for (const int number : started) {
        const CaseEnd end = folder_.readEnd(number);
        const bool isLost
            = gone_.contains(number) && gone_.value(number).elapsed() > TimeUntilMissing;
        if (end.state != CaseEnd::Missing)
            caseEnded(number, end);
        else if (isLost && !queued.contains(number))
            caseEnded(number, readLateEnd(number));
        else if (queued.contains(number))
            gone_.remove(number);
        else if (!gone_.contains(number))
            gone_[number].start();
    }
}

CaseEnd SlurmRun::readLateEnd(int number) const
{
    const QString file = folder_.file(folder_.endFile(number));
    readAgain(QFileInfo(file).path());
    return folder_.readEnd(number);
}

void SlurmRun::caseEnded(int number, const CaseEnd &end)
{
    active_.remove(number);
    gone_.remove(number);
    if (end.state == CaseEnd::Ok) {
        ++progress_.ok;
    } else if (isStopping_) {
        // The user has cancelled it.
    } else if (end.state == CaseEnd::Cancelled) {
        ++progress_.cancelled;
        printLine(stdout, QStringLiteral("Case %1 cancelled: Slurm ended its job").arg(number));
    } else {
        ++progress_.failed;
        printLine(
            stdout,
            end.state == CaseEnd::Missing
                ? QStringLiteral("Case %1 is missing: its job has ended without a result")
                      .arg(number)
                : QStringLiteral("Case %1 failed: %2").arg(QString::number(number), end.error));
    }
}

void SlurmRun::checkCancel()
{
    if (!cancel_.isRequested() || isStopping_)
        return;
    stop(QString());
    if (tick_.isActive()) {
        tick_.stop();
        askForQueue();
    } else if (isSubmitting_) {
        command_.stop(); // sbatch waits if the queue is full
    }
    // The end of a running command leads to askForQueue().
}

// Ends all jobs; \a problem is empty after a cancel.
void SlurmRun::stop(const QString &problem)
{
    if (!problem.isEmpty() && isOk())
        setError(problem);
    waiting_.clear();
    if (!isStopping_)
        stopping_.start();
    isStopping_ = true;
    progress_.step = QStringLiteral("cancelling");
}

void SlurmRun::end(bool areJobsGone)
{
    cancelTimer_.stop();
    progress_.running = 0;
    logMessages();
    QString problem = areJobsGone
        ? recordKilledCases()
        : QStringLiteral("Jobs may still run on the cluster; their name is %1").arg(jobName_);
    if (problem.isEmpty())
        problem = jobs_.remove();
    if (!problem.isEmpty() && isOk())
        setError(problem);
    else if (!problem.isEmpty())
        log(problem);
    setFinished();
}

// Slurm kills a cancelled job if its case does not end within KillWait. If that is shorter than
// TimeToEnd, the job cannot record the end.
QString SlurmRun::recordKilledCases() const
{
    for (const int number : stopped_) {
        if (folder_.readEnd(number).state != CaseEnd::Missing
            || !QFileInfo::exists(folder_.caseFolder(number)))
            continue;
        CaseEnd cancelled;
        cancelled.state = CaseEnd::Cancelled;
        QString problem = folder_.writeEnd(number, cancelled);
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

void SlurmRun::logMessages()
{
    constexpr int MaxLines = 100;
    const QStringList lines
        = jobs_.messages().split(QLatin1Char('\n'), Qt::SkipEmptyParts).mid(0, MaxLines);
    for (const QString &line : lines)
        log(QStringLiteral("Slurm: %1").arg(oneLine(line)));
}

} // namespace ClusterStudy
