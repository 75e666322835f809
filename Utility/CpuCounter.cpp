#include <Utility/CpuCounter.h>

#include <Utility/Platform/Counters.h>

namespace Vorn::Util {

const QString CpuCounter::CpuPercent = QStringLiteral("\\Processor(_Total)\\% Processor Time");
const QString CpuCounter::MemInUseBytes = QStringLiteral("\\Memory\\Committed Bytes");
const QString CpuCounter::MemAvailBytes = QStringLiteral("\\Memory\\Available Bytes");
const QString CpuCounter::MemAvailKBytes = QStringLiteral("\\Memory\\Available KBytes");
const QString CpuCounter::MemAvailMBytes = QStringLiteral("\\Memory\\Available MBytes");
const QString CpuCounter::MemInUsePercent = QStringLiteral("\\Memory\\% Committed Bytes In Use");
const QString CpuCounter::MemLimitBytes = QStringLiteral("\\Memory\\Commit Limit");

CpuCounter::CpuCounter(const QString &counterPath)
    : sysInfo_(Platform::openCounter(counterPath))
{
}

CpuCounter::~CpuCounter() = default;
CpuCounter::CpuCounter(CpuCounter &&other) noexcept = default;
CpuCounter &CpuCounter::operator=(CpuCounter &&other) noexcept = default;

long CpuCounter::getValue()
{
    return sysInfo_ ? sysInfo_->getValue() : -1;
}

} // namespace Vorn::Util
