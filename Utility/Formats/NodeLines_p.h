#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Formats {

/// A node of the cluster, as the cluster tool prints it.
struct NodeLine
{
    QString name;
    int cores = 0;
    int sockets = 0;
    double quantity = 0;
    bool isHeadNode = false;
    bool isComputeNode = false;
};

/// The nodes with a role in  lines, which the cluster tool printed, up to the first line that
/// contains "Error:". A line reads "name:cores:sockets:quantity:roles".
QList<NodeLine> parseNodeLines(const QStringList &lines);

} // namespace Vorn::Util::Formats
