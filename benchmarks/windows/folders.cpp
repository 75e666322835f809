#include "folders.h"

#include <QtCore/QDir>

#include <benchmark/benchmark.h>

#include <string>
#include <windows.h>

namespace {

bool isFolder(const WIN32_FIND_DATAW &entry)
{
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Calls \a visit for each entry of a folder but "." and "..", with its path.
template <typename Visit> void forEach(const std::wstring &folder, Visit visit)
{
    WIN32_FIND_DATAW entry;
    const HANDLE search
        = FindFirstFileExW((folder + L"\\*").c_str(), FindExInfoBasic, &entry,
                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE)
        qFatal("cannot list a folder");
    do {
        const std::wstring name = entry.cFileName;
        if (name != L"." && name != L"..")
            visit(folder + L'\\' + name, entry);
    } while (FindNextFileW(search, &entry) != 0);
    FindClose(search);
}

qint64 size(const std::wstring &folder)
{
    qint64 total = 0;
    forEach(folder, [&total](const std::wstring &path, const WIN32_FIND_DATAW &entry) {
        total += isFolder(entry)
            ? size(path)
            : static_cast<qint64>(entry.nFileSizeHigh) << 32 | entry.nFileSizeLow;
    });
    return total;
}

void remove(const std::wstring &folder)
{
    forEach(folder, [](const std::wstring &path, const WIN32_FIND_DATAW &entry) {
        if (isFolder(entry))
            remove(path);
        else if (DeleteFileW(path.c_str()) == 0)
            qFatal("cannot delete a file");
    });
    if (RemoveDirectoryW(folder.c_str()) == 0)
        qFatal("cannot remove a folder");
}

std::wstring native(const QString &path)
{
    return QDir::toNativeSeparators(path).toStdWString();
}

void sizeWin32(benchmark::State &state)
{
    const std::wstring folder = native(Folders::lasting());
    qint64 total = 0;
    for (auto _ : state)
        total = size(folder);
    if (total != Folders::size())
        qFatal("wrong size");
}

void removeWin32(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const std::wstring folder = native(Folders::toRemove());
        state.ResumeTiming();
        remove(folder);
    }
}

} // namespace

// Wine needs ten times as long for a file.
int Folders::fileCount()
{
    return 3000;
}

BENCHMARK(sizeWin32)
    ->Name("size/win32")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK(removeWin32)
    ->Name("remove/win32")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
