#include <Utility/Platform/Counters.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <pdh.h>

#include <algorithm>
#include <new>

namespace Vorn::Util {

static_assert(PDH_FMT_LONG == 0x100);

class WindowsSysInfo : public SysInfo
{
public:
    explicit WindowsSysInfo(const QString &counterPath)
    {
        constexpr int Longest = PathSize - 1;
        std::copy_n(Platform::wide(counterPath), std::min(counterPath.size(), Longest), path_);
        if (PdhOpenQueryW(nullptr, 0, &query_) != ERROR_SUCCESS
            || PdhAddCounterW(query_, path_, 0, &counter_) != ERROR_SUCCESS)
            return;
        // A rate is computed from two samples. This is the first one.
        PdhCollectQueryData(query_);
    }

    ~WindowsSysInfo() override
    {
        // If a handle is null, the call fails and does nothing.
        PdhRemoveCounter(counter_);
        PdhCloseQuery(query_);
    }

    long getValue() override
    {
        PDH_FMT_COUNTERVALUE value = {};
        if (PdhCollectQueryData(query_) != ERROR_SUCCESS
            || PdhGetFormattedCounterValue(counter_, PDH_FMT_LONG, nullptr, &value)
                != ERROR_SUCCESS)
            return -1;
        return value.longValue;
    }

private:
    static constexpr int PathSize = 2048;

    PDH_HQUERY query_ = nullptr;
    PDH_HCOUNTER counter_ = nullptr;
    wchar_t path_[PathSize] = {};
};

namespace Platform {

std::unique_ptr<SysInfo> openCounter(const QString &path)
{
    return std::unique_ptr<SysInfo>(new (std::nothrow) WindowsSysInfo(path));
}

} // namespace Platform

} // namespace Vorn::Util
