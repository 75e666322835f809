#pragma once

#include <Utility/NodeInfo.h>

#include <QtCore/QList>
#include <QtCore/QStringList>

namespace Vorn::Util {

/// The nodes with a role in the lines that the cluster tool printed, up to the first that holds
/// "Error:". A line reads "name:cores:sockets:quantity:roles".
QList<NodeInfo> parseNodeLines(const QStringList &lines);

} // namespace Vorn::Util
