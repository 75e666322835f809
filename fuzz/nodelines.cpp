// The input is the output of the cluster tool.

#include "Fuzz.h"

#include <Utility/Formats/NodeLines_p.h>
#include <Utility/NodeInfo.h>

using namespace Vorn::Util;
using Formats::NodeLine;
using Formats::parseNodeLines;

namespace {

QString textOfNode(const NodeLine &line)
{
    NodeInfo node;
    node.name = line.name;
    node.cores = line.cores;
    node.sockets = line.sockets;
    node.quantity = line.quantity;
    return node.toString();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QStringList lines = linesOf(bytesOf(data, size));
    const QList<NodeLine> nodes = parseNodeLines(lines);
    CHECK(nodes.size() <= lines.size());
    for (const NodeLine &node : nodes) {
        CHECK(node.isHeadNode || node.isComputeNode);
        CHECK(!node.name.isEmpty() && !node.name.contains(QLatin1Char(':')));
        const QString text = textOfNode(node);
        CHECK(text.startsWith(node.name + QLatin1Char(':')));
        CHECK(text.count(QLatin1Char(':')) == 3);
        // With a role added the text is a line of a node again, unless the name is blank.
        const QList<NodeLine> again = parseNodeLines({text + QLatin1String(":HeadNodes")});
        if (!node.name.trimmed().isEmpty())
            CHECK(again.size() == 1 && again.first().cores == node.cores
                  && again.first().sockets == node.sockets && again.first().isHeadNode);
    }
    return 0;
}
