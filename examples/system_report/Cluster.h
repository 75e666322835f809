#pragma once

#include "Report.h"

namespace SystemReport {

/// This program as a child process: prints the nodes of the cluster. The folder of the cluster tool
/// is the next argument.
constexpr const char *PrintClusterOption = "--print-cluster";

/// Prints the nodes that ClusterInfo reads with the tool in the folder \a tools. Returns the exit
/// code.
int printCluster(const QString &tools);

/// The nodes of the cluster, by the cluster tool in the folder \a tools.
Section cluster(const QString &tools);

} // namespace SystemReport
