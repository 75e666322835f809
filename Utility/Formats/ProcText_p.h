#pragma once

#include <QtCore/QtGlobal>

namespace Vorn::Util::Formats {

/// The time of all processors since the start of the system, in clock ticks.
struct ProcessorTime
{
    quint64 busy = 0;
    quint64 total = 0; ///< 0 if the text does not contain it
};

/// Reads the first line of /proc/stat. \a text is null-terminated.
ProcessorTime readProcessorTime(const char *text);

/// The load between two points in time in percent, rounded down; -1 if no time has passed.
long loadBetween(const ProcessorTime &before, const ProcessorTime &after);

/// Computes the load between samples. A sample is the null-terminated content of /proc/stat.
class LoadMeter
{
public:
    explicit LoadMeter(const char *firstSample);

    /// The load since the previous sample in percent; -1 if \a sample cannot be read. Returns the
    /// previous result if less than a clock tick has passed.
    long load(const char *sample);

private:
    ProcessorTime last_;
    long load_ = 0;
};

/// Reads the value after \a key (for example "MemAvailable:") in /proc/meminfo. \a text is
/// null-terminated. Returns bytes; -1 if the key is missing or its value is not a number.
qint64 readMemoryBytes(const char *text, const char *key);

} // namespace Vorn::Util::Formats
