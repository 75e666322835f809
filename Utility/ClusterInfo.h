#pragma once

#include <Utility/Export.h>
#include <Utility/NodeInfo.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace Vorn::Util {

class Log;

/// The nodes of the compute cluster, as the cluster tool "NodeInformation" reports them.
///
/// \code
/// ClusterInfo cluster(&log, toolFolder);
/// if (!cluster.headNode().isEmpty())
///     submit(cluster.headNode(), cluster.computeCoreCount());
/// \endcode
///
/// Construction runs the tool through Command, with its log lines and its "work.bat" in the current
/// folder, and waits for it up to 30 seconds. At most 32 lines of the tool are read: further nodes
/// are missing. Without a tool or a cluster there are no nodes: the counts are 0 and the names
/// empty.
///
/// A copyable value for one thread; the log is not owned and may be null.
class VORNUTILITY_EXPORT ClusterInfo
{
public:
    /// \a dir is the folder of the tool.
    ClusterInfo(Log *log, const QString &dir);

    /// In the tool's order. A node of both kinds stands in both lists.
    QList<NodeInfo> headNodes() const;
    QList<NodeInfo> computeNodes() const;

    int computeNodeCount() const;

    /// The cores of all compute nodes.
    int computeCoreCount() const;

    /// The cores of the first compute node that is not a head node. When there is none, or it
    /// reports none, the sockets of the first compute node.
    int coresPerComputeNode() const;

    /// As above, for sockets.
    int socketsPerComputeNode() const;

    /// The name of the first head node.
    QString headNode() const;

    /// Whether that node is a compute node too; false without a head node.
    bool isHeadNodeAComputeNode() const;

private:
    void init();

    Log *log_;
    QString dir_;
    QList<NodeInfo> headNodes_;
    QList<NodeInfo> computeNodes_;
};

} // namespace Vorn::Util
