#include <Utility/Platform/Processors.h>

#include <QtCore/QFile>

namespace Vorn::Util::Platform {

Formats::ProcessorQuery queryProcessors()
{
    Formats::ProcessorQuery query;
    query.counts = Formats::countSysfs(QStringLiteral("/sys/devices/system/cpu"));
    if (query.counts.packages == 0) {
        QFile cpuinfo(QStringLiteral("/proc/cpuinfo"));
        if (cpuinfo.open(QIODevice::ReadOnly))
            query.counts = Formats::countCpuinfo(QString::fromLatin1(cpuinfo.readAll()));
    }
    query.ok = query.counts.packages > 0;
    return query;
}

} // namespace Vorn::Util::Platform
