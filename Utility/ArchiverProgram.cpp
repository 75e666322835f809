#include <Utility/ArchiverProgram_p.h>

#include <Utility/Platform/Archiver.h>
#include <Utility/Platform/ProgramVersion.h>

#include <QtCore/QDateTime>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QProcess>

#include <optional>

namespace Vorn::Util {

namespace {

using Formats::ArchiverDialect;
using Formats::ArchiverVersion;

std::optional<ArchiverVersion> versionInLines(const QByteArray &output)
{
    const QList<QByteArray> lines = output.split('\n');
    for (int i = 0; i + 1 < lines.size(); ++i) { // the last line may be incomplete
        if (const auto version = Formats::versionInBanner(lines.at(i)))
            return version;
    }
    return std::nullopt;
}

// Runs the program until it has printed its version, then kills it.
std::optional<ArchiverVersion> printedVersion(const QString &program)
{
    constexpr int MaxOutput = 4096;
    constexpr int KillTimeLimit = 1000;
    const QDeadlineTimer deadline(TimeForVersion);
    const std::unique_ptr<QProcess> process = Platform::makeArchiverProcess();
    process->setStandardInputFile(QProcess::nullDevice());
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(program, QStringList(), QIODevice::ReadOnly);
    QByteArray output;
    std::optional<ArchiverVersion> version;
    while (!version && output.size() < MaxOutput
           && process->waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
        output += process->readAllStandardOutput();
        version = versionInLines(output);
    }
    process->kill();
    process->waitForFinished(KillTimeLimit);
    return version;
}

struct FileState
{
    qint64 size;
    QDateTime changed;

    bool operator==(const FileState &other) const
    {
        return size == other.size && changed == other.changed;
    }
};

struct CachedProgram
{
    FileState file;
    std::optional<ArchiverVersion> version; // nothing if the program prints no version
};

std::optional<ArchiverVersion> cachedVersion(const QString &program)
{
    static QMutex mutex;
    static QHash<QString, CachedProgram> cache;
    const QFileInfo info(program);
    const FileState file{info.size(), info.lastModified()};
    {
        const QMutexLocker locker(&mutex);
        const auto found = cache.constFind(program);
        if (found != cache.constEnd() && found->file == file)
            return found->version;
    }
    const std::optional<ArchiverVersion> version = printedVersion(program);
    const QMutexLocker locker(&mutex);
    cache.insert(program, {file, version});
    return version;
}

} // namespace

ArchiverProgram findArchiverProgram(const QString &productFolder)
{
    const QString path = Platform::findArchiver(productFolder);
    const Formats::ProgramVersion block = Platform::programVersion(path);
    if (block.high != 0) {
        const ArchiverVersion version{static_cast<int>(block.high >> 16),
                                      static_cast<int>(block.high & 0xffff)};
        return {path, Formats::dialectOf(version), '\\'};
    }
    if (path.endsWith(QLatin1String("/7z.exe")))
        return {path, ArchiverDialect::UpTo933, '\\'};
    const std::optional<ArchiverVersion> version = cachedVersion(path);
    return {path, version ? Formats::dialectOf(*version) : ArchiverDialect::From2107, '/'};
}

} // namespace Vorn::Util
