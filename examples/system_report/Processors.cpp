#include "Sections.h"

#include <Utility/CpuInfo.h>

#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>

using namespace Vorn::Util;

namespace SystemReport {

Section processors()
{
    const QTemporaryDir scratch; // CpuInfo would read the numbers that it saved on an earlier day
    const CpuInfo cpu(nullptr, scratch.path());
    Section section;
    section.title = QStringLiteral("Processors");
    section.rows = {
        {QStringLiteral("Processors"), QString::number(cpu.processorCount())},
        {QStringLiteral("Cores"), QString::number(cpu.coreCount())},
        {QStringLiteral("Cores per processor"), QString::number(cpu.coresPerProcessor())},
        {QStringLiteral("Hyper-threading"),
         cpu.isHyperThreadingOn() ? QStringLiteral("on") : QStringLiteral("off")},
        {QStringLiteral("Threads for this program"), QString::number(QThread::idealThreadCount())},
    };
    return section;
}

} // namespace SystemReport
