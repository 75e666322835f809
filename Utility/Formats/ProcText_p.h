#pragma once

#include <QtCore/QtGlobal>

namespace Vorn::Util::Formats {

/// Processor time in the system's ticks, from the first line of a text such as /proc/stat.
struct ProcessorTime
{
    quint64 busy = 0;
    quint64 total = 0; ///< 0 when the text does not tell
};

/// \a text is zero-terminated.
ProcessorTime readProcessorTime(const char *text);

/// The load in percent between two readings, rounded down; -1 when no time has passed.
long loadBetween(const ProcessorTime &before, const ProcessorTime &after);

/// The load of the time between samples, each a zero-terminated text such as /proc/stat.
class LoadMeter
{
public:
    explicit LoadMeter(const char *firstSample);

    /// The load in percent since the sample before; -1 for a sample that does not tell. Within one
    /// tick of the system's clock it is that of the interval before.
    long load(const char *sample);

private:
    ProcessorTime last_;
    long load_ = 0;
};

/// The bytes behind \a key (such as "MemAvailable:") in a text such as /proc/meminfo; -1 when it
/// is not there or no number. \a text is zero-terminated.
qint64 readMemoryBytes(const char *text, const char *key);

} // namespace Vorn::Util::Formats
