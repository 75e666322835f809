// The size of folders with up to a million files.

#include "Workplace.h"
#include "linux/PeakMemory.h"

#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

constexpr int Million = 1000000;
constexpr int InOneFolder = 1000;
constexpr int FileSize = 10;

// The files have a size but no content, so that they take no space on the disk and are made
// quickly.
void makeSizedFile(const QString &name)
{
    const int file
        = open(QFile::encodeName(name).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0 || ftruncate(file, FileSize) != 0)
        qFatal("cannot make %s", qPrintable(name));
    close(file);
}

// A folder with this number of files, all directly in it or a thousand in each subfolder.
QString folderWith(int count, bool isFlat)
{
    const QString kind = isFlat ? QStringLiteral("flat") : QStringLiteral("nested");
    const QString folder = Workplace::path(QStringLiteral("%1-%2").arg(kind).arg(count));
    if (QFileInfo::exists(folder))
        return folder;
    const QString incomplete = folder + QStringLiteral(".new"); // see Workplace::makeFiles()
    System::removeDir(incomplete, false, QStringList());
    QString subfolder = incomplete;
    QDir().mkpath(subfolder);
    for (int index = 0; index < count; ++index) {
        if (!isFlat && index % InOneFolder == 0) {
            subfolder = QStringLiteral("%1/%2").arg(incomplete).arg(index / InOneFolder);
            QDir().mkpath(subfolder);
        }
        makeSizedFile(QStringLiteral("%1/%2.dat").arg(subfolder).arg(index));
    }
    QDir().rename(incomplete, folder);
    return folder;
}

void measureSize(const QString &folder, int count)
{
    if (System::getDirectorySize(folder) != qint64{FileSize} * count)
        qFatal("wrong size of %s", qPrintable(folder));
}

// The first call reads what is not in the cache of the system.
void sizeMillionOwn(benchmark::State &state)
{
    const QString folder = folderWith(Million, false);
    measureSize(folder, Million);
    for (auto _ : state)
        measureSize(folder, Million);
}

void sizeMillionDu(benchmark::State &state)
{
    const QString folder = folderWith(Million, false);
    measureSize(folder, Million);
    const QString command = QStringLiteral("du -sb %1").arg(folder);
    for (auto _ : state)
        Workplace::shell(command);
}

// With the counter "memory": the most that was resident during a call beyond that before it.
void growthSize(benchmark::State &state, bool isFlat)
{
    const int count = static_cast<int>(state.range());
    const QString folder = folderWith(count, isFlat);
    measureSize(folder, count);
    qint64 memory = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const Workplace::PeakMemory peak;
        state.ResumeTiming();
        measureSize(folder, count);
        state.PauseTiming();
        memory = qMax(memory, peak.growth());
        state.ResumeTiming();
    }
    state.counters["memory"] = static_cast<double>(memory);
}

} // namespace

BENCHMARK(sizeMillionOwn)
    ->Name("sizeMillion/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(sizeMillionDu)
    ->Name("sizeMillion/du")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(growthSize, nested, false)
    ->Name("growth/size")
    ->RangeMultiplier(10)
    ->Range(InOneFolder, Million)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(growthSize, flat, true)
    ->Name("growth/sizeFlat")
    ->RangeMultiplier(10)
    ->Range(InOneFolder, Million)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
