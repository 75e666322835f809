#include <Utility/NodeInfo.h>

namespace Vorn::Util {

NodeInfo::NodeInfo() = default;
NodeInfo::NodeInfo(const NodeInfo &) = default;
NodeInfo &NodeInfo::operator=(const NodeInfo &) = default;
NodeInfo::~NodeInfo() = default;

bool NodeInfo::operator==(const NodeInfo &other) const
{
    return name == other.name && cores == other.cores && sockets == other.sockets
        && quantity == other.quantity && isHeadNode == other.isHeadNode
        && isComputeNode == other.isComputeNode;
}

QString NodeInfo::toString() const
{
    return QStringLiteral("%1:%2:%3:%4")
        .arg(name, QString::number(cores), QString::number(sockets), QString::number(quantity));
}

} // namespace Vorn::Util
