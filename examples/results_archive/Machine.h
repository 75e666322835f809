#pragma once

#include <QtCore/QString>

namespace Vorn::Util {
class CpuCounter;
class Log;
} // namespace Vorn::Util

namespace ResultsArchive {

/// \a value with its unit; "unknown" for -1, which a counter returns when it has no value.
QString measure(qint64 value, const QString &unit);

/// Logs the processors and the memory. CpuInfo saves the numbers of processors in \a folder.
void logMachine(Vorn::Util::Log &log, const QString &folder);

/// Logs the load of the processors since the last value of \a load.
void logLoad(Vorn::Util::Log &log, Vorn::Util::CpuCounter &load);

/// Logs the cluster as the cluster tool in the folder \a tools reports it. Command writes its
/// script into the current folder.
void logCluster(Vorn::Util::Log &log, const QString &tools);

} // namespace ResultsArchive
