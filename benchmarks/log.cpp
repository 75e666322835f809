#include "Workplace.h"

#include <Utility/Log.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryFile>

#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

constexpr int TextLength = 70;
constexpr int LineLength = TextLength + 12; // "[hh:mm:ss] " and the line end
constexpr int Lines = 40000;                // stays below the size limit

class RawFile
{
public:
    RawFile()
        : name_(QFile::encodeName(Workplace::path(QStringLiteral("raw.log"))))
        , descriptor_(::open(name_.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600))
    {
    }
    ~RawFile() { ::close(descriptor_); }
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;

    void write() { benchmark::DoNotOptimize(::write(descriptor_, line_.data(), line_.size())); }
    void stat()
    {
        struct stat info;
        benchmark::DoNotOptimize(::fstat(descriptor_, &info));
    }

private:
    QByteArray name_;
    int descriptor_;
    std::string line_ = std::string(LineLength - 1, 'x') + '\n';
};

void openFresh(Log &log)
{
    log.setName(Workplace::path(QStringLiteral("own.log")), Log::NoFileTimeStamp);
    log.open(false);
}

void fastAppendOwn(benchmark::State &state)
{
    Log log;
    openFresh(log);
    const QString text(TextLength, QLatin1Char('x'));
    for (auto _ : state)
        log.fastAppend(text);
}

void fastAppendWrite(benchmark::State &state)
{
    RawFile file;
    for (auto _ : state)
        file.write();
}

void fastAppendSpdlog(benchmark::State &state)
{
    const std::string name = qPrintable(Workplace::path(QStringLiteral("spdlog.log")));
    spdlog::logger logger("bench", std::make_shared<spdlog::sinks::basic_file_sink_st>(name, true));
    logger.set_pattern("[%H:%M:%S] %v");
    logger.flush_on(spdlog::level::info);
    const std::string text(TextLength, 'x');
    for (auto _ : state)
        logger.info(text);
}

void appendOwn(benchmark::State &state)
{
    Log log;
    openFresh(log);
    const QString text(TextLength, QLatin1Char('x'));
    for (auto _ : state)
        log.append(text);
}

void appendWrite(benchmark::State &state)
{
    RawFile file;
    for (auto _ : state) {
        file.stat();
        file.write();
    }
}

void fillLog(const QString &name)
{
    QFile file(name);
    file.open(QIODevice::WriteOnly);
    const QByteArray line = QByteArray(LineLength - 1, 'x') + '\n';
    while (file.size() <= Log::MaxLogSize)
        file.write(line);
}

void truncationOwn(benchmark::State &state)
{
    const QString name = Workplace::path(QStringLiteral("large.log"));
    for (auto _ : state) {
        state.PauseTiming();
        fillLog(name);
        state.ResumeTiming();
        Log log(name, Log::NoFileTimeStamp);
        log.open(true); // truncates
    }
}

void truncationCopy(benchmark::State &state)
{
    const QString name = Workplace::path(QStringLiteral("large.log"));
    for (auto _ : state) {
        state.PauseTiming();
        fillLog(name);
        state.ResumeTiming();
        QFile file(name);
        file.open(QIODevice::ReadOnly);
        file.seek(Log::AmountToTruncate);
        const QByteArray kept = file.readAll();
        file.close();
        QTemporaryFile copy;
        copy.setAutoRemove(false);
        copy.open();
        copy.write(kept);
        copy.close();
        QFile::remove(name);
        QFile::rename(copy.fileName(), name);
    }
}

void linesOfLength(benchmark::State &state)
{
    Log log;
    openFresh(log);
    const QString text(static_cast<int>(state.range(0)), QLatin1Char('x'));
    for (auto _ : state)
        log.fastAppend(text);
    state.counters["lines"]
        = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(fastAppendOwn)->Name("fastAppend/own")->Iterations(Lines);
BENCHMARK(fastAppendWrite)->Name("fastAppend/write")->Iterations(Lines);
BENCHMARK(fastAppendSpdlog)->Name("fastAppend/spdlog")->Iterations(Lines);
BENCHMARK(appendOwn)->Name("append/own")->Iterations(Lines);
BENCHMARK(appendWrite)->Name("append/write")->Iterations(Lines);
BENCHMARK(truncationOwn)->Name("truncation/own")->Iterations(20);
BENCHMARK(truncationCopy)->Name("truncation/copy")->Iterations(20);
BENCHMARK(linesOfLength)
    ->Name("growth/line")
    ->RangeMultiplier(4)
    ->Range(16, 4096)
    ->UseRealTime()
    ->Iterations(1000);
