#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// \ingroup machine
/// A node of a compute cluster. ClusterInfo creates one for each node.
///
/// \snippet docs/samples/machine.cpp nodes
class VORNUTILITY_EXPORT NodeInfo
{
public:
    QString name;    ///< the name of the node
    int cores = 0;   ///< the number of cores; 0 if the tool printed no number
    int sockets = 0; ///< the number of processor sockets; 0 if the tool printed no number

    /// A number reported by the cluster tool, which can be infinite. The library does not interpret
    /// it. The tool for Slurm reports the memory in GiB.
    double quantity = 0;

    bool isHeadNode = false;    ///< whether the node manages the cluster
    bool isComputeNode = false; ///< whether jobs run on the node

    /// A node without a name; all numbers are 0.
    NodeInfo();

    /// Copies all members.
    NodeInfo(const NodeInfo &other);

    /// Copies all members.
    NodeInfo &operator=(const NodeInfo &other);

    /// Destroys the node.
    ~NodeInfo();

    /// Compares all members, the names in the same letter case.
    bool operator==(const NodeInfo &other) const;

    /// Name, cores, sockets and quantity as text, for example "node01:16:2:64".
    QString toString() const;
};

} // namespace Vorn::Util
