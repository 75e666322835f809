#include <Utility/ClusterInfo.h>

#include <Utility/Command.h>
#include <Utility/Formats/NodeLines_p.h>
#include <Utility/Platform/ClusterTool.h>

#include <algorithm>

namespace Vorn::Util {

namespace {

int valueOfComputeNode(const QList<NodeInfo> &nodes, int NodeInfo::*value)
{
    if (nodes.isEmpty())
        return 0;
    const auto node = std::find_if(nodes.cbegin(), nodes.cend(),
                                   [](const NodeInfo &candidate) { return !candidate.isHeadNode; });
    const int found = node == nodes.cend() ? 0 : (*node).*value;
    // Kept for compatibility: see "Sockets for cores" in docs/compatibility.md.
    return found != 0 ? found : nodes.first().sockets;
}

NodeInfo nodeOf(const Formats::NodeLine &line)
{
    NodeInfo node;
    node.name = line.name;
    node.cores = line.cores;
    node.sockets = line.sockets;
    node.quantity = line.quantity;
    node.isHeadNode = line.isHeadNode;
    node.isComputeNode = line.isComputeNode;
    return node;
}

} // namespace

ClusterInfo::ClusterInfo(Log *log, const QString &dir)
    : log_(log)
    , dir_(dir)
{
    init();
}

QList<NodeInfo> ClusterInfo::headNodes() const
{
    return headNodes_;
}

QList<NodeInfo> ClusterInfo::computeNodes() const
{
    return computeNodes_;
}

int ClusterInfo::computeNodeCount() const
{
    return static_cast<int>(computeNodes_.size());
}

int ClusterInfo::computeCoreCount() const
{
    qint64 count = 0;
    for (const NodeInfo &node : computeNodes_)
        count += node.cores;
    return static_cast<int>(count);
}

int ClusterInfo::coresPerComputeNode() const
{
    return valueOfComputeNode(computeNodes_, &NodeInfo::cores);
}

int ClusterInfo::socketsPerComputeNode() const
{
    return valueOfComputeNode(computeNodes_, &NodeInfo::sockets);
}

QString ClusterInfo::headNode() const
{
    return headNodes_.isEmpty() ? QString() : headNodes_.first().name;
}

bool ClusterInfo::isHeadNodeAComputeNode() const
{
    return !headNodes_.isEmpty() && headNodes_.first().isComputeNode;
}

void ClusterInfo::init()
{
    constexpr int MaxLines = 30;
    headNodes_.clear();
    computeNodes_.clear();
    const QString command = Platform::clusterToolCommand(dir_, QStringLiteral("-q -cluster"));
    const QStringList lines = Command(log_).runL(command, MaxLines, true);
    const QList<Formats::NodeLine> nodes = Formats::parseNodeLines(lines);
    for (const Formats::NodeLine &line : nodes) {
        const NodeInfo node = nodeOf(line);
        if (node.isHeadNode)
            headNodes_.append(node);
        if (node.isComputeNode)
            computeNodes_.append(node);
    }
}

} // namespace Vorn::Util
