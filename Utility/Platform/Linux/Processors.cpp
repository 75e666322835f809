#include <Utility/Platform/Processors.h>

#include <QtCore/QFile>

namespace Vorn::Util::Platform {

ProcessorQuery queryProcessors()
{
    ProcessorQuery query;
    query.counts = countSysfs(QStringLiteral("/sys/devices/system/cpu"));
    if (query.counts.packages == 0) {
        QFile cpuinfo(QStringLiteral("/proc/cpuinfo"));
        if (cpuinfo.open(QIODevice::ReadOnly))
            query.counts = countCpuinfo(QString::fromLatin1(cpuinfo.readAll()));
    }
    query.ok = query.counts.packages > 0;
    return query;
}

} // namespace Vorn::Util::Platform
