// Packs a folder into an archive and verifies the archive. Shows how to use a queue of tasks with a
// clean-up task, a log, a cancel with Ctrl-C, 7-Zip archives, the numbers of the machine and its
// cluster, and a command line.

#include "CancelRequest.h"
#include "Display.h"
#include "Job.h"
#include "Options.h"
#include "Platform.h"
#include "Tasks.h"

#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Log.h>
#include <Utility/SyncTask.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLoggingCategory>

#include <cstdio>

using namespace ResultsArchive;
using namespace Vorn::Util;

namespace {

int fail(const QString &problem)
{
    printLine(stderr, QStringLiteral("results-archive: ") + problem);
    return 1;
}

void addTasks(AsyncTaskProcessor &processor, const Options &options, Job &job,
              const CancelRequest &cancel)
{
    const auto step = [&](const char *name, const StepTask::Work &work) {
        return new StepTask(QString::fromLatin1(name), cancel, work);
    };
    const auto archiveStep
        = [&](const char *name, const ArchiveTask::Start &start, const ArchiveTask::Check &check,
              const ArchiveTask::Progress &progress = ArchiveTask::Progress()) {
              return new ArchiveTask(QString::fromLatin1(name), cancel, start, check, progress);
          };
    ArchiveTask::Progress unpackedPart; // takes time, so it is only for somebody who looks
    if (isTerminal())
        unpackedPart = [&job] { return job.unpackedPart(); };
    // The temporary folder is created after the checks: it may be inside the folder to pack.
    QList<AsyncTask *> tasks{
        new SyncTask(&job, QStringLiteral("inspectFolder"), nullptr),
        step("Check names and 7-Zip", [&job] { return job.checkStart(); }),
        step("Check sizes and disk space", [&job] { return job.checkSizes(); }),
        step("Log the machine", [&job] { return job.logMachine(); }),
    };
    if (!options.clusterTools.isEmpty())
        tasks << step("Log the cluster", [&job] { return job.logCluster(); });
    tasks += {
        archiveStep(
            "Pack", [&job](SevenZip &archive) { return job.startPacking(archive); },
            [&job](const SevenZip &archive) { return job.checkPacking(archive); }),
        archiveStep(
            "List", [&job](SevenZip &archive) { return job.startListing(archive); },
            [&job](const SevenZip &archive) { return job.checkListing(archive); }),
        archiveStep(
            "Unpack", [&job](SevenZip &archive) { return job.startUnpacking(archive); },
            [&job](const SevenZip &archive) { return job.checkUnpacking(archive); }, unpackedPart),
        new CompareTask(QStringLiteral("Compare"), cancel, job),
        step("List with the system", [&job] { return job.listWithSystem(); }),
    };
    auto *cleanUp = new CleanUpTask(QStringLiteral("Clean up"), job);
    for (AsyncTask *task : qAsConst(tasks)) {
        processor.addTask(task);
        processor.setCleanUpTask(task, cleanUp);
    }
    processor.addTask(cleanUp);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("results-archive"));
    // SevenZip writes the arguments of 7-Zip to Qt's debug channel, which is not needed here.
    QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
    ignoreEndOfReader();
    QElapsedTimer time;
    time.start();

    Options options;
    const QString problem = readOptions(options);
    if (!problem.isEmpty())
        return fail(problem);
    Log log(options.log, Log::WithFileTimeStamp);
    if (!log.open(true))
        return fail(QStringLiteral("The log cannot be written: %1")
                        .arg(QDir::toNativeSeparators(log.name())));
    printLine(stdout, QStringLiteral("Log: %1").arg(QDir::toNativeSeparators(log.name())));

    CancelRequest cancel;
    Job job(options, cancel, log);
    AsyncTaskProcessor processor;
    Display display(processor, options.archive);
    processor.setLog(&log);
    processor.setTaskMonitor(&cancel);
    processor.setExitOnError(true);
    processor.setExitEventLoopWhenDone(true);
    addTasks(processor, options, job, cancel);
    processor.startLater();
    const int exitCode = QCoreApplication::exec();

    if (!display.error().isEmpty())
        return fail(display.error());
    if (!job.isComplete())
        return fail(QStringLiteral("Cancelled"));
    const QString summary = job.summary(time.elapsed());
    log.append(summary);
    printLine(stdout, summary);
    return exitCode;
}
