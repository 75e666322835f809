#pragma once

#include <QtCore/QtGlobal>

namespace Vorn::Util {

/// The source of one sampled value of the system.
class SysInfo
{
public:
    virtual ~SysInfo() = default;

    /// Takes a sample; -1 when there is none.
    virtual long getValue() = 0;

protected:
    SysInfo() = default;

private:
    Q_DISABLE_COPY(SysInfo)
};

} // namespace Vorn::Util
