#include "log.h"

#include "Workplace.h"

#include <Utility/Log.h>

#include <QtCore/QFile>

#include <benchmark/benchmark.h>

#include <thread>
#include <vector>

using namespace Vorn::Util;

namespace {

void openFresh(Log &log)
{
    log.setName(Workplace::path(QStringLiteral("own.log")), Log::NoFileTimeStamp);
    QFile::remove(log.name());
    if (!log.open(true))
        qFatal("cannot open %s", qPrintable(log.name()));
}

QString ownText()
{
    return QString::fromStdString(Logs::text());
}

void fastAppendOwn(benchmark::State &state)
{
    Log log;
    openFresh(log);
    const QString text = ownText();
    for (auto _ : state)
        log.fastAppend(text);
}

void appendOwn(benchmark::State &state)
{
    Log log;
    openFresh(log);
    const QString text = ownText();
    for (auto _ : state)
        log.append(text);
}

void threadsOwn(benchmark::State &state)
{
    const QString text = ownText();
    for (auto _ : state) {
        Log log;
        openFresh(log);
        Logs::inThreads([&] { log.append(text); });
    }
}

void truncationOwn(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QString name = Logs::makeTooLargeLog();
        state.ResumeTiming();
        Log log(name, Log::NoFileTimeStamp);
        log.open(true); // truncates
    }
    if (QFile(Workplace::path(QStringLiteral("large.log"))).size() > Log::MaxLogSize)
        qFatal("the log was not truncated");
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

std::string Logs::text()
{
    return std::string(TextLength, 'x');
}

std::string Logs::line()
{
    return std::string(LineLength - 1, 'x') + '\n';
}

void Logs::inThreads(const std::function<void()> &write)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < ThreadCount; ++thread) {
        threads.emplace_back([&write] {
            for (int line = 0; line < LinesPerThread; ++line)
                write();
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

QString Logs::makeTooLargeLog()
{
    const int lineCount = static_cast<int>(Log::MaxLogSize) / LineLength + 1;
    QFile file(Workplace::path(QStringLiteral("large.log")));
    if (!file.open(QIODevice::WriteOnly)
        || file.write(QByteArray::fromStdString(line()).repeated(lineCount)) < Log::MaxLogSize)
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

BENCHMARK(fastAppendOwn)->Name("fastAppend/own")->Iterations(Logs::LineCount);
BENCHMARK(appendOwn)->Name("append/own")->Iterations(Logs::LineCount);
BENCHMARK(threadsOwn)
    ->Name("threads/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(truncationOwn)
    ->Name("truncation/own")
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(Logs::TruncationCount);
BENCHMARK(linesOfLength)
    ->Name("growth/line")
    ->RangeMultiplier(4)
    ->Range(16, 4096)
    ->UseRealTime()
    ->Iterations(1000);
