#include "Workplace.h"

#include <Utility/System.h>

#include <QtCore/QStringList>

#include <benchmark/benchmark.h>

using namespace Vorn::Util;

namespace {

constexpr int FileCount = 30000;

QString tree()
{
    const QString name = QStringLiteral("tree");
    static const QStringList files = Workplace::makeFiles(name, FileCount, 10);
    return Workplace::path(name);
}

void sizeOwn(benchmark::State &state)
{
    const QString folder = tree();
    for (auto _ : state)
        benchmark::DoNotOptimize(System::getDirectorySize(folder));
}

void sizeDu(benchmark::State &state)
{
    const QString command = QStringLiteral("du -sb %1").arg(tree());
    for (auto _ : state)
        Workplace::shell(command);
}

QString freshTree()
{
    const QString name = QStringLiteral("short-lived");
    Workplace::makeFiles(name, FileCount, 10);
    return Workplace::path(name);
}

void removeOwn(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QString folder = freshTree();
        state.ResumeTiming();
        if (!System::removeDir(folder, false, QStringList()))
            qFatal("removal failed");
    }
}

void removeRm(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QString command = QStringLiteral("rm -rf %1").arg(freshTree());
        state.ResumeTiming();
        Workplace::shell(command);
    }
}

} // namespace

BENCHMARK(sizeOwn)->Name("size/own")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(sizeDu)->Name("size/du")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(removeOwn)
    ->Name("remove/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(removeRm)->Name("remove/rm")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
