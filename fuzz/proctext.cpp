// The input is a text such as /proc/stat or /proc/meminfo.

#include "Fuzz.h"

#include <Utility/Formats/ProcText_p.h>

#include <string>

using namespace Vorn::Util::Formats;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // Zero-terminated, with no memory after the zero.
    std::string text(reinterpret_cast<const char *>(data), size);
    text.shrink_to_fit();

    const ProcessorTime time = readProcessorTime(text.c_str());
    CHECK(text.compare(0, 4, "cpu ") == 0 || (time.busy == 0 && time.total == 0));
    for (const quint64 ticks : {quint64(0), quint64(1000)}) {
        const long load = loadBetween({ticks / 2, ticks}, time);
        CHECK(load >= -1 && load <= 100);
        CHECK((load == -1) == (time.total <= ticks));
    }
    LoadMeter meter("cpu 10 0 10 20\n");
    const long load = meter.load(text.c_str());
    CHECK(load >= -1 && load <= 100);
    CHECK((load == -1) == (time.total == 0));
    for (const char *key : {"MemTotal:", "MemAvailable:", "Committed_AS:"}) {
        const qint64 bytes = readMemoryBytes(text.c_str(), key);
        CHECK(bytes == -1 || (bytes >= 0 && bytes % 1024 == 0));
        CHECK(bytes == -1 || text.find(key) != std::string::npos);
    }
    return 0;
}
