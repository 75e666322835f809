#include "log.h"

#include "Workplace.h"

#include <Utility/Log.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using Vorn::Util::Log;

namespace {

// The bare system calls: a line that is ready goes to a file.
class RawFile
{
public:
    RawFile()
        : name_(QFile::encodeName(Workplace::path(QStringLiteral("raw.log"))))
        , descriptor_(
              open(name_.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600))
    {
    }
    ~RawFile() { close(descriptor_); }

    void write() { benchmark::DoNotOptimize(::write(descriptor_, line_.data(), line_.size())); }
    void stat()
    {
        struct stat info;
        benchmark::DoNotOptimize(fstat(descriptor_, &info));
    }

private:
    Q_DISABLE_COPY(RawFile)

    QByteArray name_;
    int descriptor_;
    std::string line_ = Logs::line();
};

void fastAppendWrite(benchmark::State &state)
{
    RawFile file;
    for (auto _ : state)
        file.write();
}

void appendWrite(benchmark::State &state)
{
    RawFile file;
    for (auto _ : state) {
        file.stat();
        file.write();
    }
}

// spdlog with the same form of line. Each line is flushed, so that the operating system has it when
// the call returns, as with Log.
template <typename Sink> spdlog::logger spdlogLogger()
{
    const std::string name = qPrintable(Workplace::path(QStringLiteral("spdlog.log")));
    spdlog::logger logger("bench", std::make_shared<Sink>(name, true));
    logger.set_pattern("[%H:%M:%S] %v");
    logger.flush_on(spdlog::level::info);
    return logger;
}

void fastAppendSpdlog(benchmark::State &state)
{
    spdlog::logger logger = spdlogLogger<spdlog::sinks::basic_file_sink_st>();
    const std::string text = Logs::text();
    for (auto _ : state)
        logger.info(text);
}

void threadsSpdlog(benchmark::State &state)
{
    const std::string text = Logs::text();
    for (auto _ : state) {
        spdlog::logger logger = spdlogLogger<spdlog::sinks::basic_file_sink_mt>();
        Logs::inThreads([&] { logger.info(text); });
    }
}

// The kernel's copy of the tail, which then replaces the log in the same steps: a file without a
// name in the folder for temporary files gets its content and a name beside the log, and is
// renamed.
void truncationKernel(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QByteArray name = QFile::encodeName(Logs::makeTooLargeLog());
        state.ResumeTiming();
        const int log = open(name.constData(), O_RDONLY | O_CLOEXEC);
        const int tail = open(QFile::encodeName(QDir::tempPath()).constData(),
                              O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        off_t offset = Log::AmountToTruncate;
        while (copy_file_range(log, &offset, tail, nullptr, 1 << 30, 0) > 0) { }
        const QByteArray link = "/proc/self/fd/" + QByteArray::number(tail);
        const QByteArray newName = name + ".new";
        if (linkat(AT_FDCWD, link.constData(), AT_FDCWD, newName.constData(), AT_SYMLINK_FOLLOW)
                != 0
            || std::rename(newName.constData(), name.constData()) != 0)
            qFatal("cannot replace %s", name.constData());
        close(tail);
        close(log);
        close(open(name.constData(), O_WRONLY | O_APPEND | O_CLOEXEC));
    }
}

} // namespace

BENCHMARK(fastAppendWrite)->Name("fastAppend/write")->Iterations(Logs::LineCount);
BENCHMARK(fastAppendSpdlog)->Name("fastAppend/spdlog")->Iterations(Logs::LineCount);
BENCHMARK(appendWrite)->Name("append/write")->Iterations(Logs::LineCount);
BENCHMARK(threadsSpdlog)
    ->Name("threads/spdlog")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(truncationKernel)
    ->Name("truncation/kernel")
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(Logs::TruncationCount);
