#include "Workplace.h"

#include <Utility/CpuCounter.h>
#include <Utility/CpuInfo.h>

#include <QtCore/QFile>
#include <QtXml/QDomDocument>

#include <benchmark/benchmark.h>

using namespace Vorn::Util;

namespace {

void counterOwn(benchmark::State &state)
{
    CpuCounter counter(CpuCounter::CpuPercent);
    for (auto _ : state)
        benchmark::DoNotOptimize(counter.getValue());
}

QString infoFolder()
{
    return Workplace::path(QString());
}

void infoOwn(benchmark::State &state)
{
    CpuInfo(nullptr, infoFolder()); // writes the file
    for (auto _ : state)
        benchmark::DoNotOptimize(CpuInfo(nullptr, infoFolder()).coreCount());
}

// The peer parses the same file with the same parser and reads the same elements.
void infoDom(benchmark::State &state)
{
    CpuInfo(nullptr, infoFolder());
    for (auto _ : state) {
        QFile file(infoFolder() + QStringLiteral("/SystemInfo.xml"));
        file.open(QIODevice::ReadOnly);
        QDomDocument document;
        document.setContent(file.readAll());
        const QDomElement root = document.documentElement();
        const auto text
            = [&root](const QString &name) { return root.firstChildElement(name).text(); };
        const int processors = text(QStringLiteral("processorCount")).toInt();
        const int cores = text(QStringLiteral("coresPerProcessor")).toInt();
        const bool isOn = text(QStringLiteral("hyperThreading")) == QLatin1String("on");
        benchmark::DoNotOptimize(processors * cores + (isOn ? 1 : 0));
    }
}

} // namespace

BENCHMARK(counterOwn)->Name("counter/own");
BENCHMARK(infoOwn)->Name("info/own");
BENCHMARK(infoDom)->Name("info/dom");
