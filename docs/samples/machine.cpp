#include "Samples.h"

#include <Utility/ClusterInfo.h>
#include <Utility/CpuCounter.h>
#include <Utility/CpuInfo.h>
#include <Utility/Log.h>

#include <QtCore/QThread>

using namespace Vorn::Util;

namespace {

void runSolver()
{
    QThread::msleep(50);
}

} // namespace

int Samples::setThreadCount(QThreadPool &pool, Log &log, const QString &folder)
{
    //! [processors]
    CpuInfo cpu(&log, folder); // for example System::getUserDataPath()
    pool.setMaxThreadCount(qMax(1, cpu.coreCount()));
    //! [processors]
    return cpu.coreCount();
}

long Samples::measureLoad()
{
    //! [counter]
    CpuCounter load(CpuCounter::CpuPercent);
    runSolver();
    const long percent = load.getValue(); // the average load while the solver ran
    //! [counter]
    return percent;
}

QString Samples::submitToCluster(Log &log, const QString &toolFolder)
{
    QString submitted;
    const auto submit = [&submitted](const QString &node, int cores) {
        submitted = QStringLiteral("%1 %2").arg(node).arg(cores);
    };
    //! [cluster]
    ClusterInfo cluster(&log, toolFolder);
    if (!cluster.headNode().isEmpty())
        submit(cluster.headNode(), cluster.computeCoreCount());
    //! [cluster]
    logNodes(cluster, log);
    return submitted;
}

void Samples::logNodes(const ClusterInfo &cluster, Log &log)
{
    //! [nodes]
    const QList<NodeInfo> nodes = cluster.computeNodes();
    for (const NodeInfo &node : nodes)
        log.append(node.toString());
    //! [nodes]
}
