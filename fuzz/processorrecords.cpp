// The two forms of Windows's processor records.

#include "Fuzz.h"

#include <Utility/Platform/ProcessorRecords.h>

using namespace Vorn::Util::Platform;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray records = bytesOf(data, size);

    constexpr int SmallestRecord = 8;
    const ProcessorCounts extended = countExtendedRecords(records);
    CHECK(extended.packages >= 0 && extended.cores >= 0);
    CHECK(extended.packages + extended.cores <= records.size() / SmallestRecord);
    CHECK(extended.tellsSmt == (extended.cores > 0));
    CHECK(extended.tellsSmt || !extended.smt);

    constexpr int RecordSize = 32;
    const ProcessorCounts fixed = countFixedRecords(records);
    CHECK(fixed.packages >= 0 && fixed.cores >= 0);
    CHECK(fixed.packages + fixed.cores <= (records.size() + RecordSize - 1) / RecordSize);
    CHECK(!fixed.tellsSmt && !fixed.smt);
    return 0;
}
