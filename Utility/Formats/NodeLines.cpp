#include <Utility/Formats/NodeLines_p.h>

#include <cmath>

namespace Vorn::Util::Formats {

namespace {

NodeLine nodeOf(const QStringList &parts)
{
    NodeLine node;
    node.name = parts.at(0);
    node.cores = parts.at(1).toInt();
    node.sockets = parts.at(2).toInt();
    const double quantity = parts.at(3).toDouble();
    node.quantity = std::isnan(quantity) ? 0 : quantity; // toDouble() accepts the text "nan"
    const QString &roles = parts.at(4);
    node.isHeadNode = roles.contains(QLatin1String("headnodes"), Qt::CaseInsensitive);
    node.isComputeNode = roles.contains(QLatin1String("computenodes"), Qt::CaseInsensitive);
    return node;
}

} // namespace

QList<NodeLine> parseNodeLines(const QStringList &lines)
{
    constexpr int PartCount = 5;
    QList<NodeLine> nodes;
    for (const QString &line : lines) {
        const QString text = line.trimmed();
        if (text.contains(QLatin1String("Error:")))
            break;
        const QStringList parts = text.split(QLatin1Char(':'), Qt::SkipEmptyParts);
        if (parts.size() < PartCount)
            continue;
        const NodeLine node = nodeOf(parts);
        if (node.isHeadNode || node.isComputeNode)
            nodes.append(node);
    }
    return nodes;
}

} // namespace Vorn::Util::Formats
