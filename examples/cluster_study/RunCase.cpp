#include "RunCase.h"

#include "CancelRequest.h"
#include "CaseCommand.h"
#include "CaseTask.h"
#include "Output.h"
#include "SlurmFolder.h"
#include "StudyFolder.h"

#include <Utility/AsyncTaskProcessor.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

// In milliseconds.
constexpr int CancelTick = 100;
constexpr int TimeForSignal = 300;

int fail(const QString &problem)
{
    printLine(stderr, QStringLiteral("cluster-study: ") + problem);
    return 1;
}

} // namespace

int runCaseOfJob()
{
    const CancelRequest cancel; // scancel sends SIGTERM
    bool isNumber = false;
    const int task = qEnvironmentVariableIntValue("SLURM_ARRAY_TASK_ID", &isNumber);
    const int number = qEnvironmentVariableIntValue(OffsetVariable) + task;
    StudyFolder folder(qEnvironmentVariable(FolderVariable));
    if (!isNumber || number < 1 || folder.path().isEmpty())
        return fail(
            QStringLiteral("%1 is only for jobs of a study").arg(QLatin1String(RunCaseOption)));
    QString problem = folder.open();
    if (!problem.isEmpty())
        return fail(problem);
    CaseCommand command;
    if (!SlurmFolder(folder).readCommand(number, command))
        return fail(QStringLiteral("Case %1: its command cannot be read").arg(number));

    auto *run = new CaseTask(number, command, folder);
    run->setTimeForSignal(TimeForSignal);
    AsyncTaskProcessor processor;
    processor.setExitEventLoopWhenDone(true);
    processor.addTask(run);
    CaseEnd end;
    QTimer tick;
    QObject::connect(&processor, &AsyncTaskProcessor::finished, &processor, [&](AsyncTask *) {
        tick.stop();
        end = run->end();
        problem = run->problem();
    });
    QObject::connect(&tick, &QTimer::timeout, &processor, [&] {
        if (!cancel.isRequested())
            return;
        tick.stop();
        run->cancel();
    });
    tick.start(CancelTick);
    processor.startLater();
    QCoreApplication::exec();
    if (!problem.isEmpty())
        return fail(QStringLiteral("Case %1: %2").arg(QString::number(number), problem));
    return end.state == CaseEnd::Ok ? 0 : 2;
}

} // namespace ClusterStudy
