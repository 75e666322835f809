#include "Workplace.h"

#include <windows.h>

#include <psapi.h>

qint64 Workplace::memory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<qint64>(counters.PagefileUsage);
}
