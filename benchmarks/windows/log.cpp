#include "log.h"

#include "Workplace.h"

#include <Utility/Log.h>

#include <QtCore/QDir>

#include <benchmark/benchmark.h>

#include <windows.h>

using Vorn::Util::Log;

namespace {

std::wstring native(const QString &path)
{
    return QDir::toNativeSeparators(path).toStdWString();
}

HANDLE openFile(const std::wstring &name, DWORD access, DWORD disposition)
{
    const DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
    const HANDLE file = CreateFileW(name.c_str(), access, sharing, nullptr, disposition,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        qFatal("cannot open a file");
    return file;
}

// The bare system calls: a line that is ready goes to a file.
class RawFile
{
public:
    RawFile()
        : handle_(openFile(native(Workplace::path(QStringLiteral("raw.log"))), GENERIC_WRITE,
                           CREATE_ALWAYS))
    {
    }
    ~RawFile() { CloseHandle(handle_); }

    void write()
    {
        DWORD written = 0;
        benchmark::DoNotOptimize(
            WriteFile(handle_, line_.data(), static_cast<DWORD>(line_.size()), &written, nullptr));
    }
    void size()
    {
        LARGE_INTEGER size;
        benchmark::DoNotOptimize(GetFileSizeEx(handle_, &size));
    }

private:
    Q_DISABLE_COPY(RawFile)

    HANDLE handle_;
    std::string line_ = Logs::line();
};

void fastAppendWin32(benchmark::State &state)
{
    RawFile file;
    for (auto _ : state)
        file.write();
}

void appendWin32(benchmark::State &state)
{
    RawFile file;
    for (auto _ : state) {
        file.size();
        file.write();
    }
}

// A copy of the tail with ReadFile and WriteFile to a file in the folder for temporary files, which
// then replaces the log. Windows has no call that copies a part of a file.
void truncationWin32(benchmark::State &state)
{
    const std::wstring newName = native(QDir::tempPath() + QStringLiteral("/large.new"));
    std::string block(1 << 18, '\0');
    for (auto _ : state) {
        state.PauseTiming();
        const std::wstring name = native(Logs::makeTooLargeLog());
        state.ResumeTiming();
        const HANDLE log = openFile(name, GENERIC_READ, OPEN_EXISTING);
        const HANDLE tail = openFile(newName, GENERIC_WRITE, CREATE_ALWAYS);
        LARGE_INTEGER offset;
        offset.QuadPart = Log::AmountToTruncate;
        SetFilePointerEx(log, offset, nullptr, FILE_BEGIN);
        DWORD count = 0;
        while (ReadFile(log, &block[0], static_cast<DWORD>(block.size()), &count, nullptr) != 0
               && count > 0) {
            DWORD written = 0;
            WriteFile(tail, block.data(), count, &written, nullptr);
        }
        CloseHandle(tail);
        CloseHandle(log);
        if (MoveFileExW(newName.c_str(), name.c_str(), MOVEFILE_REPLACE_EXISTING) == 0)
            qFatal("cannot replace the log");
        CloseHandle(openFile(name, FILE_APPEND_DATA, OPEN_EXISTING));
    }
}

} // namespace

BENCHMARK(fastAppendWin32)->Name("fastAppend/win32")->Iterations(Logs::LineCount);
BENCHMARK(appendWin32)->Name("append/win32")->Iterations(Logs::LineCount);
BENCHMARK(truncationWin32)
    ->Name("truncation/win32")
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(Logs::TruncationCount);
