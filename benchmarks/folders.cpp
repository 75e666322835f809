#include "folders.h"

#include "Workplace.h"

#include <Utility/System.h>

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <benchmark/benchmark.h>

using namespace Vorn::Util;

namespace {

constexpr int FileSize = 10;

QString folderOf(const QString &name, int fileSize)
{
    Workplace::makeFiles(name, Folders::fileCount(), fileSize);
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
    return folderOf(QStringLiteral("tree"), FileSize);
}

// Empty files, so that the time that a disk needs to free blocks is not measured.
// Made for many removals at once, because some file systems avoid the inodes of files that were
// removed in the last minutes, and then need several times as long to make others.
QString Folders::toRemove()
{
    constexpr int Removals = 20;
    const auto name = [](int number) { return QStringLiteral("short-lived-%1").arg(number); };
    for (int number = 0; number < Removals; ++number) {
        if (QFileInfo::exists(Workplace::path(name(number))))
            return Workplace::path(name(number));
    }
    for (int number = 0; number < Removals; ++number)
        folderOf(name(number), 0);
    return Workplace::path(name(0));
}

BENCHMARK(sizeOwn)->Name("size/own")->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(removeOwn)
    ->Name("remove/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
