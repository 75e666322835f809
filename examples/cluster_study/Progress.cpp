#include "Progress.h"

#include <Utility/System.h>

using namespace Vorn::Util;

namespace ClusterStudy {

qint64 timeLeft(const Progress &progress, qint64 elapsed)
{
    if (progress.finished == 0)
        return -1;
    const double perCase = static_cast<double>(elapsed) / progress.finished;
    return static_cast<qint64>(perCase * (progress.toRun - progress.finished));
}

QString progressLine(const Progress &progress, qint64 elapsed)
{
    const qint64 left = timeLeft(progress, elapsed);
    return QStringLiteral("%1 of %2 done, %3 failed, %4 running, time left %5")
        .arg(QString::number(progress.done), QString::number(progress.total),
             QString::number(progress.failed), QString::number(progress.running),
             left < 0 ? QStringLiteral("unknown") : System::getElapsedTimeString(left));
}

} // namespace ClusterStudy
