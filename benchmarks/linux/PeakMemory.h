#pragma once

#include <QtCore/QtGlobal>

namespace Workplace {

/// The most memory of the process that was resident since the object was made.
class PeakMemory
{
public:
    PeakMemory();

    /// In bytes, beyond what was resident before.
    qint64 growth() const;

private:
    qint64 before_ = 0;
};

} // namespace Workplace
