#include <Utility/Platform/Counters.h>

#include <Utility/Formats/ProcText_p.h>

#include <array>
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace Vorn::Util::Platform {

namespace {

// A file of the proc file system. It is kept open and read again for each sample.
template <int Size> class ProcFile
{
public:
    explicit ProcFile(const char *name)
        : descriptor_(::open(name, O_RDONLY | O_CLOEXEC))
    {
    }
    ~ProcFile()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    ProcFile(const ProcFile &) = delete;
    ProcFile &operator=(const ProcFile &) = delete;

    // The beginning of the file, null-terminated; empty if it cannot be read.
    const char *read()
    {
        const ssize_t length
            = descriptor_ < 0 ? 0 : ::pread(descriptor_, buffer_.data(), buffer_.size() - 1, 0);
        buffer_[length < 0 ? 0 : static_cast<std::size_t>(length)] = '\0';
        return buffer_.data();
    }

private:
    int descriptor_;
    std::array<char, Size> buffer_{};
};

class UnknownCounter : public SysInfo
{
public:
    long getValue() override { return -1; }
};

class LoadCounter : public SysInfo
{
public:
    long getValue() override { return meter_.load(file_.read()); }

private:
    ProcFile<512> file_{"/proc/stat"}; // only the first line is read
    Formats::LoadMeter meter_{file_.read()};
};

class MemoryCounter : public SysInfo
{
public:
    MemoryCounter(const char *key, qint64 unit)
        : key_(key)
        , unit_(unit)
    {
    }

    long getValue() override
    {
        const qint64 bytes = Formats::readMemoryBytes(file_.read(), key_);
        return bytes < 0 ? -1 : static_cast<long>(bytes / unit_);
    }

private:
    ProcFile<8192> file_{"/proc/meminfo"};
    const char *key_;
    qint64 unit_;
};

class MemoryPercentCounter : public SysInfo
{
public:
    long getValue() override
    {
        const char *text = file_.read();
        const qint64 used = Formats::readMemoryBytes(text, "Committed_AS:");
        const qint64 limit = Formats::readMemoryBytes(text, "CommitLimit:");
        return used < 0 || limit <= 0
            ? -1
            : static_cast<long>(static_cast<double>(used) * 100 / static_cast<double>(limit));
    }

private:
    ProcFile<8192> file_{"/proc/meminfo"};
};

SysInfo *newCounter(const QString &path)
{
    constexpr const char *Available = "MemAvailable:";
    if (path == QLatin1String("\\Processor(_Total)\\% Processor Time"))
        return new (std::nothrow) LoadCounter;
    if (path == QLatin1String("\\Memory\\Committed Bytes"))
        return new (std::nothrow) MemoryCounter("Committed_AS:", 1);
    if (path == QLatin1String("\\Memory\\Available Bytes"))
        return new (std::nothrow) MemoryCounter(Available, 1);
    if (path == QLatin1String("\\Memory\\Available KBytes"))
        return new (std::nothrow) MemoryCounter(Available, 1024);
    if (path == QLatin1String("\\Memory\\Available MBytes"))
        return new (std::nothrow) MemoryCounter(Available, 1048576);
    if (path == QLatin1String("\\Memory\\Commit Limit"))
        return new (std::nothrow) MemoryCounter("CommitLimit:", 1);
    if (path == QLatin1String("\\Memory\\% Committed Bytes In Use"))
        return new (std::nothrow) MemoryPercentCounter;
    return new (std::nothrow) UnknownCounter;
}

} // namespace

std::unique_ptr<SysInfo> openCounter(const QString &path)
{
    return std::unique_ptr<SysInfo>(newCounter(path));
}

} // namespace Vorn::Util::Platform
