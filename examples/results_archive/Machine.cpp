#include "Machine.h"

#include "Names.h"

#include <Utility/ClusterInfo.h>
#include <Utility/CpuCounter.h>
#include <Utility/CpuInfo.h>
#include <Utility/Log.h>

#include <QtCore/QDir>

#include <limits>

using namespace Vorn::Util;

namespace ResultsArchive {

namespace {

const QString &megabytes()
{
    static const QString unit = QStringLiteral("MiB");
    return unit;
}

const QString &percent()
{
    static const QString unit = QStringLiteral("%");
    return unit;
}

// The counter gives bytes. They do not fit where "long" has 32 bits: the limit is unknown there.
qint64 memoryLimit()
{
    constexpr qint64 Megabyte = 1 << 20;
    constexpr bool Fits = std::numeric_limits<long>::digits > 32;
    const qint64 bytes = Fits ? CpuCounter(CpuCounter::MemLimitBytes).getValue() : -1;
    return bytes < 0 ? -1 : bytes / Megabyte;
}

} // namespace

QString measure(qint64 value, const QString &unit)
{
    return value < 0 ? QStringLiteral("unknown") : QString::number(value) + QLatin1Char(' ') + unit;
}

void logMachine(Log &log, const QString &folder)
{
    const CpuInfo cpu(&log, folder);
    const QString hyperThreading
        = cpu.isHyperThreadingOn() ? QStringLiteral("on") : QStringLiteral("off");
    log.append(QStringLiteral("Processors: %1, cores: %2, hyper-threading: %3")
                   .arg(QString::number(cpu.processorCount()), QString::number(cpu.coreCount()),
                        hyperThreading));

    const qint64 available = CpuCounter(CpuCounter::MemAvailMBytes).getValue();
    const qint64 inUse = CpuCounter(CpuCounter::MemInUsePercent).getValue();
    log.append(QStringLiteral("Memory available: %1, limit: %2, in use: %3")
                   .arg(measure(available, megabytes()), measure(memoryLimit(), megabytes()),
                        measure(inUse, percent())));
}

void logLoad(Log &log, CpuCounter &load)
{
    log.append(QStringLiteral("Processor load: %1").arg(measure(load.getValue(), percent())));
}

void logCluster(Log &log, const QString &tools)
{
    const ClusterInfo cluster(&log, QDir::toNativeSeparators(tools));
    if (cluster.headNode().isEmpty()) {
        log.append(QStringLiteral("The cluster tool named no head node"));
        return;
    }
    log.append(QStringLiteral("Head node: %1, compute nodes: %2, cores: %3")
                   .arg(oneLine(cluster.headNode()), QString::number(cluster.computeNodeCount()),
                        QString::number(cluster.computeCoreCount())));
}

} // namespace ResultsArchive
