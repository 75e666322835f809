#include "Workplace.h"

#include <Utility/SevenZip.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

#include <benchmark/benchmark.h>

using namespace Vorn::Util;

namespace {

QString archiver()
{
    for (const char *name : {"7z", "7zz", "7za"}) {
        const QString program = QStandardPaths::findExecutable(QLatin1String(name));
        if (!program.isEmpty())
            return program;
    }
    qFatal("no 7-Zip");
}

// An archive with \a count entries, made once.
QString archiveOf(int count)
{
    const QString name = QStringLiteral("entries-%1").arg(count);
    const QString archive = Workplace::path(name + QStringLiteral(".7z"));
    if (!QFileInfo::exists(archive)) {
        Workplace::makeFiles(name, count, 4);
        Workplace::shell(QStringLiteral("cd %1 && %2 a -t7z -mx=1 %3 .")
                             .arg(Workplace::path(name), archiver(), archive));
        QDir(Workplace::path(name)).removeRecursively();
    }
    return archive;
}

void list(const QString &archive)
{
    SevenZip zip;
    zip.setArchiveFile(archive);
    if (!zip.listFiles())
        qFatal("listing failed");
}

void listOwn(benchmark::State &state)
{
    const QString archive = archiveOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        list(archive);
}

void listShell(benchmark::State &state)
{
    const QString archive = archiveOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        Workplace::shell(QStringLiteral("%1 l %2").arg(archiver(), archive));
}

// 200 MB in 2,000 files, made once.
const QStringList &results()
{
    static const QStringList files = Workplace::makeFiles(QStringLiteral("results"), 2000, 100000);
    return files;
}

QString resultsFolder()
{
    return Workplace::path(QStringLiteral("results"));
}

QString ownArchive()
{
    return Workplace::path(QStringLiteral("own.7z"));
}

QString freshFolder()
{
    const QString folder = Workplace::path(QStringLiteral("extracted"));
    QDir(folder).removeRecursively();
    return folder;
}

void compress()
{
    SevenZip zip;
    zip.setArchiveFile(ownArchive());
    zip.setCurrentPath(resultsFolder());
    if (!zip.compressFiles(results()))
        qFatal("compression failed");
}

void compressOwn(benchmark::State &state)
{
    results();
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(ownArchive());
        state.ResumeTiming();
        compress();
    }
}

void compressShell(benchmark::State &state)
{
    const QString names = Workplace::path(QStringLiteral("names.txt"));
    QFile file(names);
    file.open(QIODevice::WriteOnly);
    for (const QString &name : results())
        file.write(name.mid(resultsFolder().size() + 1).toUtf8() + '\n');
    file.close();
    const QString archive = Workplace::path(QStringLiteral("shell.7z"));
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(archive);
        state.ResumeTiming();
        Workplace::shell(QStringLiteral("cd %1 && %2 a -t7z %3 @%4 -m0=LZMA2 -mx=1 -ma=0 -mmt=on")
                             .arg(resultsFolder(), archiver(), archive, names));
    }
}

void extractOwn(benchmark::State &state)
{
    if (!QFileInfo::exists(ownArchive()))
        compress();
    for (auto _ : state) {
        state.PauseTiming();
        const QString folder = freshFolder();
        state.ResumeTiming();
        SevenZip zip;
        zip.setArchiveFile(ownArchive());
        if (!zip.extractFilesTo(folder))
            qFatal("extraction failed");
    }
}

void extractShell(benchmark::State &state)
{
    if (!QFileInfo::exists(ownArchive()))
        compress();
    for (auto _ : state) {
        state.PauseTiming();
        const QString folder = freshFolder();
        state.ResumeTiming();
        Workplace::shell(QStringLiteral("%1 x %2 -o%3 -aoa").arg(archiver(), ownArchive(), folder));
    }
}

} // namespace

BENCHMARK(listOwn)
    ->Name("list/own")
    ->Arg(200000)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(listShell)
    ->Name("list/shell")
    ->Arg(200000)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(compressOwn)
    ->Name("compress/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(compressShell)
    ->Name("compress/shell")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(extractOwn)
    ->Name("extract/own")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(extractShell)
    ->Name("extract/shell")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(listOwn)
    ->Name("growth/list")
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(50000)
    ->Arg(200000)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
