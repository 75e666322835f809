#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// One node of a compute cluster; a plain value.
class VORNUTILITY_EXPORT NodeInfo
{
public:
    QString name;
    int cores = 0;
    int sockets = 0;
    /// A number that the cluster tool reports, infinity included. The library does not interpret
    /// it.
    double quantity = 0;
    bool isHeadNode = false;
    bool isComputeNode = false;

    NodeInfo();
    NodeInfo(const NodeInfo &other);
    NodeInfo &operator=(const NodeInfo &other);
    ~NodeInfo();

    bool operator==(const NodeInfo &other) const;

    /// "node01:16:2:64": name, cores, sockets, quantity.
    QString toString() const;
};

} // namespace Vorn::Util
