#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// What a system's records of its processors say. The functions here read recorded bytes, texts
/// and folders; they ask no system.
struct ProcessorCounts
{
    int packages = 0;
    int cores = 0;
    bool tellsSmt = false; ///< whether smt is known
    bool smt = false;      ///< whether the last core has more than one logical processor
};

/// Reads the variable-length records of Windows's extended query. Unknown kinds are skipped; a
/// record that does not fit ends the walk.
ProcessorCounts countExtendedRecords(const QByteArray &records);

/// Reads the fixed-size records of Windows's older query (64-bit form), which do not tell SMT.
ProcessorCounts countFixedRecords(const QByteArray &records);

/// Reads a folder such as /sys/devices/system/cpu. Zero packages when it says nothing.
ProcessorCounts countSysfs(const QString &folder);

/// Reads a text such as /proc/cpuinfo. Zero packages when it says nothing.
ProcessorCounts countCpuinfo(const QString &text);

} // namespace Vorn::Util::Platform
