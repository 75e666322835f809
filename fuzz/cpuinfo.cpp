// The input is a text such as /proc/cpuinfo.

#include "Fuzz.h"

#include <Utility/Formats/ProcessorRecords_p.h>

using namespace Vorn::Util::Formats;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text = bytesOf(data, size);
    const ProcessorCounts counts = countCpuinfo(textOf(text));
    CHECK(0 <= counts.packages && counts.packages <= counts.cores);
    CHECK(counts.cores <= text.count("processor"));
    CHECK((counts.cores > 0) == (counts.packages > 0));
    CHECK(counts.smt.has_value() == (counts.cores > 0));
    return 0;
}
