#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

#include <memory>

namespace Vorn::Util {

class SysInfo;

/// \ingroup machine
/// Reads a performance counter of the system as an integer.
///
/// \snippet docs/samples/machine.cpp counter
///
/// A counter is identified by its path. On Windows every counter of the system can be read. The
/// path must be in the language of the system: a Windows in another language than English may not
/// know the paths below. Only the first 2047 characters of a path are used. On Linux only the paths
/// below are known.
///
/// An object can be moved, but not copied. Use it in one thread at a time.
class VORNUTILITY_EXPORT CpuCounter
{
public:
    static const QString CpuPercent;      ///< load of all processors in percent, 0 to 100
    static const QString MemInUseBytes;   ///< committed memory in bytes
    static const QString MemAvailBytes;   ///< available memory in bytes
    static const QString MemAvailKBytes;  ///< available memory in KiB
    static const QString MemAvailMBytes;  ///< available memory in MiB
    static const QString MemInUsePercent; ///< committed memory in percent of the commit limit
    static const QString MemLimitBytes;   ///< commit limit in bytes

    /// Opens the counter \a counterPath and takes the first sample.
    CpuCounter(const QString &counterPath);
    /// Closes the counter.
    ~CpuCounter();

    /// Takes the counter of \a other, whose getValue() then returns -1.
    CpuCounter(CpuCounter &&other) noexcept;

    /// Closes the own counter and takes the one of \a other, whose getValue() then returns -1.
    CpuCounter &operator=(CpuCounter &&other) noexcept;

    /// Takes a sample and returns the value of the counter; -1 if the counter does not exist, or
    /// cannot be read, or the object was moved from. A load is the average since the previous
    /// sample.
    ///
    /// For a value that does not fit into `long` (32 bits on Windows) the result is not defined. So
    /// read the available memory in MiB, not in bytes.
    long getValue();

private:
    std::unique_ptr<SysInfo> sysInfo_;
};

} // namespace Vorn::Util
