#include <Utility/Formats/ProcText_p.h>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace Vorn::Util::Formats {

namespace {

// Reads a number of KiB such as "   1024 kB" and returns bytes; -1 if it is not a number or is too
// large.
qint64 kibibytesAt(const char *position)
{
    constexpr qint64 Unit = 1024;
    constexpr qint64 Largest = std::numeric_limits<qint64>::max() / Unit;
    while (*position == ' ' || *position == '\t')
        ++position;
    if (*position < '0' || *position > '9')
        return -1;
    const qint64 number = std::strtoll(position, nullptr, 10);
    return number > Largest ? -1 : number * Unit;
}

} // namespace

ProcessorTime readProcessorTime(const char *text)
{
    // user, nice, system, idle, iowait, irq, softirq, steal. The columns after them (guest times)
    // are already contained in user and nice.
    constexpr int Columns = 8;
    constexpr int Idle = 3;
    constexpr int IoWait = 4;
    ProcessorTime time;
    if (std::strncmp(text, "cpu ", 4) != 0)
        return time;
    const char *position = text + 4;
    for (int column = 0; column < Columns; ++column) {
        while (*position == ' ')
            ++position;
        if (*position < '0' || *position > '9')
            break; // end of the line: older kernels have fewer columns
        quint64 ticks = 0;
        for (; *position >= '0' && *position <= '9'; ++position)
            ticks = ticks * 10 + static_cast<quint64>(*position - '0');
        time.total += ticks;
        if (column != Idle && column != IoWait)
            time.busy += ticks;
    }
    return time;
}

long loadBetween(const ProcessorTime &before, const ProcessorTime &after)
{
    if (after.total <= before.total)
        return -1;
    // The kernel can report a little less iowait time than before, so that busy grows by more than
    // total. Limit the result to 0 to 100.
    const quint64 total = after.total - before.total;
    const quint64 busy = after.busy > before.busy ? after.busy - before.busy : 0;
    return static_cast<long>(busy >= total ? 100 : busy * 100 / total);
}

LoadMeter::LoadMeter(const char *firstSample)
    : last_(readProcessorTime(firstSample))
{
}

long LoadMeter::load(const char *sample)
{
    const ProcessorTime now = readProcessorTime(sample);
    if (now.total == 0)
        return -1;
    if (now.total < last_.total)
        last_ = now; // the kernel's counter was reset
    const long load = loadBetween(last_, now);
    if (load >= 0) {
        load_ = load;
        last_ = now;
    }
    return load_;
}

qint64 readMemoryBytes(const char *text, const char *key)
{
    const std::size_t length = std::strlen(key);
    for (const char *line = text; line; line = std::strchr(line, '\n')) {
        if (*line == '\n')
            ++line;
        if (std::strncmp(line, key, length) == 0)
            return kibibytesAt(line + length);
    }
    return -1;
}

} // namespace Vorn::Util::Formats
