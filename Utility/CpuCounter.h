#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

#include <memory>

namespace Vorn::Util {

class SysInfo;

/// Samples one performance counter of the system as a whole number.
///
/// \code
/// CpuCounter load(CpuCounter::CpuPercent);
/// ...
/// long percent = load.getValue();      // since the sample before, at first since construction
/// \endcode
///
/// The paths are the system's own names in its language. A path of more than 2047 characters is
/// cut there. Every failure is the value -1.
///
/// A counter can be moved, not copied; one that was moved from gives -1. It belongs to one thread.
class VORNUTILITY_EXPORT CpuCounter
{
public:
    static const QString CpuPercent;      ///< load of all processors, 0 to 100
    static const QString MemInUseBytes;   ///< committed memory
    static const QString MemAvailBytes;   ///< memory that programs can have
    static const QString MemAvailKBytes;  ///< the same in KiB
    static const QString MemAvailMBytes;  ///< the same in MiB
    static const QString MemInUsePercent; ///< committed memory of what can be committed
    static const QString MemLimitBytes;   ///< what can be committed

    CpuCounter(const QString &counterPath);
    ~CpuCounter();
    CpuCounter(CpuCounter &&other) noexcept;
    CpuCounter &operator=(CpuCounter &&other) noexcept;

    /// Takes a sample. A value larger than `long` holds is cut as the system cuts it.
    long getValue();

private:
    std::unique_ptr<SysInfo> sysInfo_;
};

} // namespace Vorn::Util
