#include "Progress.h"

#include <Utility/System.h>

using namespace Vorn::Util;

namespace ClusterStudy {

qint64 timeLeft(const Progress &progress, qint64 elapsed)
{
    const int ended = progress.ok + progress.failed + progress.cancelled;
    if (ended == 0)
        return -1;
    const double perCase = static_cast<double>(elapsed) / ended;
    return static_cast<qint64>(perCase * (progress.total - progress.before - ended));
}

QString progressLine(const Progress &progress, qint64 elapsed)
{
    const qint64 left = timeLeft(progress, elapsed);
    const QString time = left < 0 ? QStringLiteral("unknown") : System::getElapsedTimeString(left);
    return QStringLiteral("%1 of %2 done, %3 failed, %4 running, %5")
        .arg(QString::number(progress.before + progress.ok), QString::number(progress.total),
             QString::number(progress.failed), QString::number(progress.running),
             progress.step.isEmpty() ? QStringLiteral("time left %1").arg(time) : progress.step);
}

} // namespace ClusterStudy
