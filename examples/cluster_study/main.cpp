// Runs a parameter study: a program once for each row of a CSV file. Shows how to run tasks side by
// side, how to run programs as tasks, how to cancel and resume, and how to collect and pack
// results.

#include "CancelRequest.h"
#include "CaseProcess.h"
#include "Cluster.h"
#include "Display.h"
#include "LocalRun.h"
#include "Options.h"
#include "Output.h"
#include "Platform.h"
#include "Progress.h"
#include "Report.h"
#include "RunCase.h"
#include "SlurmFolder.h"
#include "SlurmRun.h"
#include "StudyFolder.h"
#include "Tasks.h"
#include "Text.h"

#include <Utility/AsyncTaskProcessor.h>
#include <Utility/CpuInfo.h>
#include <Utility/Log.h>
#include <Utility/SevenZip.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTemporaryDir>

using namespace ClusterStudy;
using namespace Vorn::Util;

namespace {

enum ExitCode : int { AllOk = 0, CouldNotRun = 1, CasesFailed = 2, Cancelled = 130 };

int fail(const QString &problem)
{
    printLine(stderr, QStringLiteral("cluster-study: ") + problem);
    return CouldNotRun;
}

bool canMakeTemporaryFolders()
{
    return QTemporaryDir().isValid();
}

// An asynchronous operation never ends if 7-Zip cannot be started, so this is tried first. The
// blocking form then fails without an error. If 7-Zip runs, it reports an error, because the
// archive does not exist.
bool canStart7Zip()
{
    const QTemporaryDir scratch;
    SevenZip archive;
    archive.setArchiveFile(scratch.filePath(QStringLiteral("missing.7z")));
    return archive.listFiles() || !archive.isOk();
}

int coreCount(Log &log)
{
    const QTemporaryDir scratch; // CpuInfo saves the numbers, which may differ on the next machine
    return qMax(1, CpuInfo(&log, scratch.path()).coreCount());
}

QList<int> casesToRun(const StudyFolder &folder, int count)
{
    QList<int> cases;
    for (int number = 1; number <= count; ++number) {
        if (folder.readEnd(number).state != CaseEnd::Ok)
            cases << number;
    }
    return cases;
}

// The task that runs the cases, on this machine or on the cluster.
AsyncTask *newRun(const Options &options, const StudyFolder &folder, const QList<int> &cases,
                  Progress &progress, const CancelRequest &cancel, Log &log)
{
    const QString counts
        = QStringLiteral("%1 cases, %2 to run, ")
              .arg(QString::number(options.study.cases.count()), QString::number(cases.size()));
    if (options.slurm) {
        logCluster(log, options.clusterTools);
        log.append(counts
                   + (options.jobs > 0 ? QStringLiteral("%1 at a time on Slurm").arg(options.jobs)
                                       : QStringLiteral("on Slurm")));
        return new SlurmRun(options.study, folder, cases, options.jobs, progress, cancel);
    }
    const int jobs = options.jobs > 0 ? options.jobs : coreCount(log);
    log.append(counts + QStringLiteral("%1 at a time").arg(jobs));
    allowManyProcesses();
    return new LocalRun(options.study, folder, cases, jobs, progress, cancel, &log);
}

// Runs the cases and writes the results. Returns the first error message, empty if there is none.
QString runTasks(const Options &options, const StudyFolder &folder, Report &report,
                 CancelRequest &cancel, Log &log)
{
    const QList<int> cases = casesToRun(folder, options.study.cases.count());
    Progress progress;
    progress.total = options.study.cases.count();
    progress.before = progress.total - cases.size();

    AsyncTaskProcessor processor;
    processor.setLog(&log);
    processor.setTaskMonitor(&cancel);
    processor.setExitEventLoopWhenDone(true);
    QString problem;
    QObject::connect(&processor, &AsyncTaskProcessor::finished, &processor,
                     [&problem](AsyncTask *task) {
                         if (!task->isOk() && problem.isEmpty())
                             problem = task->error();
                     });
    AsyncTask *run = newRun(options, folder, cases, progress, cancel, log);
    auto *write = new StepTask(QStringLiteral("Write the table and the picture"),
                               [&report] { return report.write(); });
    processor.addTask(run);
    processor.addTask(write);
    processor.setCleanUpTask(run, write); // also after a failure and a cancel
    auto *pack = new PackTask(
        folder.path(), QStringLiteral("results"), [&report] { return report.filesForArchive(); },
        cancel);
    processor.addTask(pack);
    QObject::connect(&processor, &AsyncTaskProcessor::started, pack, [&, pack](AsyncTask *task) {
        if (task == pack)
            progress.step = QStringLiteral("packing %1 cases").arg(report.packedCount());
    });
    const Display display(progress);
    processor.startLater();
    QCoreApplication::exec();
    return problem;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("cluster-study"));
    // SevenZip writes the arguments of 7-Zip to Qt's debug channel, which is not needed here.
    QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
    ignoreEndOfReader();
    if (QCoreApplication::arguments().value(1) == QLatin1String(RunCaseOption))
        return runCaseOfJob();
    QElapsedTimer time;
    time.start();

    Options options;
    QString problem = readOptions(options);
    if (!problem.isEmpty())
        return fail(problem);
    if (!canMakeTemporaryFolders()) {
        return fail(
            QStringLiteral("A temporary folder cannot be made in %1").arg(shown(QDir::tempPath())));
    }
    if (!canStart7Zip())
        return fail(QStringLiteral("7-Zip cannot be started"));
    CancelRequest cancel;
    StudyFolder folder(options.output);
    problem = options.resume ? folder.resume(options.study) : folder.create(options.study);
    if (!problem.isEmpty())
        return fail(problem);
    if (!options.slurm && SlurmFolder(folder).exists()) {
        return fail(QStringLiteral("Jobs of this study may still run on the cluster: use --slurm "
                                   "to end them"));
    }
    Log log(folder.file(QStringLiteral("study.log")), Log::NoFileTimeStamp);
    if (!log.open(true))
        return fail(QStringLiteral("The log cannot be written: %1").arg(shown(log.name())));

    Report report(options.study.cases, folder, log);
    problem = runTasks(options, folder, report, cancel, log);
    const QString summary = report.summary(time.elapsed());
    log.append(summary);
    printLine(stdout, summary);
    if (!problem.isEmpty())
        return fail(problem);
    if (cancel.isRequested())
        return Cancelled;
    return report.count(CaseEnd::Ok) == options.study.cases.count() ? AllOk : CasesFailed;
}
