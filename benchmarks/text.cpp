#include <Utility/TextConversions.h>

#include <benchmark/benchmark.h>

#include <string>

using namespace Vorn::Util;

namespace {

std::string sample(bool mixed)
{
    std::string text;
    while (text.size() < 1024)
        text += mixed ? "Tr\xc3\xa4ger \xe2\x82\xac " : "A plain line of text. ";
    return text;
}

void toQStringOwn(benchmark::State &state, bool mixed)
{
    const std::string text = sample(mixed);
    for (auto _ : state)
        benchmark::DoNotOptimize(toQString(text));
}

void toQStringQt(benchmark::State &state, bool mixed)
{
    const std::string text = sample(mixed);
    for (auto _ : state)
        benchmark::DoNotOptimize(QString::fromStdString(text));
}

void toStdStringOwn(benchmark::State &state, bool mixed)
{
    const QString text = QString::fromStdString(sample(mixed));
    for (auto _ : state)
        benchmark::DoNotOptimize(toStdString(text));
}

void toStdStringQt(benchmark::State &state, bool mixed)
{
    const QString text = QString::fromStdString(sample(mixed));
    for (auto _ : state)
        benchmark::DoNotOptimize(text.toStdString());
}

} // namespace

BENCHMARK_CAPTURE(toQStringOwn, , false)->Name("toQStringAscii/own");
BENCHMARK_CAPTURE(toQStringQt, , false)->Name("toQStringAscii/qt");
BENCHMARK_CAPTURE(toQStringOwn, , true)->Name("toQStringMixed/own");
BENCHMARK_CAPTURE(toQStringQt, , true)->Name("toQStringMixed/qt");
BENCHMARK_CAPTURE(toStdStringOwn, , false)->Name("toStdStringAscii/own");
BENCHMARK_CAPTURE(toStdStringQt, , false)->Name("toStdStringAscii/qt");
BENCHMARK_CAPTURE(toStdStringOwn, , true)->Name("toStdStringMixed/own");
BENCHMARK_CAPTURE(toStdStringQt, , true)->Name("toStdStringMixed/qt");
