#pragma once

#include <QtCore/QString>

namespace Vorn::Util {
class Log;
} // namespace Vorn::Util

namespace ClusterStudy {

/// Logs the number of nodes and cores of the cluster, as the cluster tool in the folder \a tools
/// reports them. Waits for the tool for 30 seconds at most.
void logCluster(Vorn::Util::Log &log, const QString &tools);

} // namespace ClusterStudy
