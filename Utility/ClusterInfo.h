#pragma once

#include <Utility/Export.h>
#include <Utility/NodeInfo.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace Vorn::Util {

class Log;

/// \ingroup machine
/// The nodes of the compute cluster, as reported by the cluster tool "NodeInformation".
///
/// \snippet docs/samples/machine.cpp cluster
///
/// The constructor runs the tool with Command::runL() and waits for it, at most 30 seconds. So it
/// writes "work.bat" to the current folder, and logs the command and its output. At most 32 lines
/// of the output are read, up to the first line that contains "Error:". The nodes in further lines
/// are missing.
///
/// If the tool is missing or prints no nodes, the lists and names are empty, and the counts are 0.
/// There is no other sign of a failure.
///
/// Objects can be copied. Use an object in one thread at a time. The log is not owned and may be
/// null.
class VORNUTILITY_EXPORT ClusterInfo
{
public:
    /// Runs the tool in the folder \a dir and reads the nodes.
    ClusterInfo(Log *log, const QString &dir);

    /// The head nodes in the order of the tool's output. A node that is both a head node and a
    /// compute node is in both lists.
    QList<NodeInfo> headNodes() const;

    /// The compute nodes in the order of the tool's output.
    QList<NodeInfo> computeNodes() const;

    /// The number of compute nodes that were read.
    int computeNodeCount() const;

    /// The total number of cores of the compute nodes.
    int computeCoreCount() const;

    /// The number of cores of the first compute node that is not a head node. If there is no such
    /// node, or it reports 0 cores: the number of sockets of the first compute node.
    /// Kept for compatibility: see "Sockets for cores" in docs/compatibility.md.
    int coresPerComputeNode() const;

    /// The number of sockets of the first compute node that is not a head node. If there is no such
    /// node, or it reports 0 sockets: the number of sockets of the first compute node.
    int socketsPerComputeNode() const;

    /// The name of the first head node; empty if there is none.
    QString headNode() const;

    /// Whether the first head node is also a compute node; false if there is no head node.
    bool isHeadNodeAComputeNode() const;

private:
    void init();

    Log *log_;
    QString dir_;
    QList<NodeInfo> headNodes_;
    QList<NodeInfo> computeNodes_;
};

} // namespace Vorn::Util
