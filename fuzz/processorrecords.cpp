// The input is read as each of the two kinds of processor records of Windows.

#include "Fuzz.h"

#include <Utility/Formats/ProcessorRecords_p.h>

using namespace Vorn::Util::Formats;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray records = bytesOf(data, size);

    constexpr int SmallestRecord = 8;
    const ProcessorCounts extended = countExtendedRecords(records);
    CHECK(extended.packages >= 0 && extended.cores >= 0);
    CHECK(extended.packages + extended.cores <= records.size() / SmallestRecord);
    CHECK(extended.smt.has_value() == (extended.cores > 0));

    constexpr int RecordSize = 32;
    const ProcessorCounts fixed = countFixedRecords(records);
    CHECK(fixed.packages >= 0 && fixed.cores >= 0);
    CHECK(fixed.packages + fixed.cores <= (records.size() + RecordSize - 1) / RecordSize);
    CHECK(!fixed.smt);
    return 0;
}
