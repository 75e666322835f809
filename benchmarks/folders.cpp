#include "folders.h"

#include "Workplace.h"

#include <Utility/System.h>

#include <QtCore/QStringList>

#include <benchmark/benchmark.h>

using namespace Vorn::Util;

namespace {

constexpr int FileSize = 10;

QString folderOf(const QString &name)
{
    Workplace::makeFiles(name, Folders::fileCount(), FileSize);
    return Workplace::path(name);
}

void sizeOwn(benchmark::State &state)
{
    const QString folder = Folders::lasting();
    qint64 size = 0;
    for (auto _ : state)
        size = System::getDirectorySize(folder);
    if (size != Folders::size())
        qFatal("wrong size");
}

void removeOwn(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QString folder = Folders::toRemove();
        state.ResumeTiming();
        if (!System::removeDir(folder, false, QStringList()))
            qFatal("removal failed");
    }
}

} // namespace

qint64 Folders::size()
{
    return fileCount() * FileSize;
}

QString Folders::lasting()
{
    return folderOf(QStringLiteral("tree"));
}

QString Folders::toRemove()
{
    return folderOf(QStringLiteral("short-lived"));
}

BENCHMARK(sizeOwn)->Name("size/own")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(removeOwn)
    ->Name("remove/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
