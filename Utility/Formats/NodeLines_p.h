#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Formats {

/// A node in the output of the cluster tool.
struct NodeLine
{
    QString name;
    int cores = 0;
    int sockets = 0;
    double quantity = 0;
    bool isHeadNode = false;
    bool isComputeNode = false;
};

/// Reads the nodes in the output of the cluster tool. A line has the form
/// "name:cores:sockets:quantity:roles". A line with fewer parts is skipped; further parts are
/// ignored. A node that is neither a head node nor a compute node is
/// skipped. Reading stops at the first line that contains "Error:".
QList<NodeLine> parseNodeLines(const QStringList &lines);

} // namespace Vorn::Util::Formats
