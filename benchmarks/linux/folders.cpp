#include "folders.h"

#include "Workplace.h"

#include <benchmark/benchmark.h>

namespace {

void sizeDu(benchmark::State &state)
{
    const QString command = QStringLiteral("du -sb %1").arg(Folders::lasting());
    for (auto _ : state)
        Workplace::shell(command);
}

void removeRm(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QString command = QStringLiteral("rm -rf %1").arg(Folders::toRemove());
        state.ResumeTiming();
        Workplace::shell(command);
    }
}

} // namespace

int Folders::fileCount()
{
    return 30000;
}

BENCHMARK(sizeDu)->Name("size/du")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(removeRm)->Name("remove/rm")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1);
