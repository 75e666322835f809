#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// A node of a compute cluster. ClusterInfo creates one for each node.
///
/// \code
/// const QList<NodeInfo> nodes = cluster.computeNodes();
/// for (const NodeInfo &node : nodes)
///     log.append(node.toString());
/// \endcode
class VORNUTILITY_EXPORT NodeInfo
{
public:
    QString name;
    int cores = 0;
    int sockets = 0;
    /// A number reported by the cluster tool, which can be infinite. The library does not interpret
    /// it. The tool for Slurm reports the memory in GiB.
    double quantity = 0;
    bool isHeadNode = false;
    bool isComputeNode = false;

    NodeInfo();
    NodeInfo(const NodeInfo &other);
    NodeInfo &operator=(const NodeInfo &other);
    ~NodeInfo();

    /// Compares all members.
    bool operator==(const NodeInfo &other) const;

    /// Name, cores, sockets and quantity as text, for example "node01:16:2:64".
    QString toString() const;
};

} // namespace Vorn::Util
