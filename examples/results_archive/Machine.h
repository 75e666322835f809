#pragma once

#include <QtCore/QString>

namespace Vorn::Util {
class CpuCounter;
class Log;
} // namespace Vorn::Util

namespace ResultsArchive {

/// \a value with its unit; what a counter cannot tell, -1, is "unknown".
QString measure(qint64 value, const QString &unit);

/// Logs processors and memory. What is asked of the system is kept in a file in \a folder.
void logMachine(Vorn::Util::Log &log, const QString &folder);

/// Logs the load of the processors since the counter's last value.
void logLoad(Vorn::Util::Log &log, Vorn::Util::CpuCounter &load);

/// Logs what the cluster tool in the folder \a tools says. It is run by a script in the current
/// folder.
void logCluster(Vorn::Util::Log &log, const QString &tools);

} // namespace ResultsArchive
