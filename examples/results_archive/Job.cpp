#include "Job.h"

#include "CancelRequest.h"
#include "DiskSpace.h"
#include "Machine.h"
#include "Names.h"
#include "Platform.h"

#include <Utility/Command.h>
#include <Utility/Log.h>
#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

namespace ResultsArchive {

namespace {

QString missingScratchFolder()
{
    return QStringLiteral("The temporary folder no longer exists");
}

QString shown(const QString &path)
{
    return oneLine(QDir::toNativeSeparators(path));
}

// Changes the current folder while it exists. Command writes its script there.
class CurrentFolder
{
public:
    explicit CurrentFolder(const QString &folder)
        : isSet_(QDir::setCurrent(folder))
    {
    }
    ~CurrentFolder() { QDir::setCurrent(before_); }

    bool isSet() const { return isSet_; }

private:
    Q_DISABLE_COPY(CurrentFolder)

    const QString before_ = QDir::currentPath();
    const bool isSet_;
};

} // namespace

Job::Job(const Options &options, const CancelRequest &cancel, Log &log)
    : options_(options)
    , cancel_(cancel)
    , log_(log)
{
}

void Job::inspectFolder()
{
    files_ = filesOf(options_.folder);
    for (const QString &name : qAsConst(files_.leftOut))
        log_.append(QStringLiteral("Left out, neither file nor folder: %1").arg(oneLine(name)));
    log_.append(QStringLiteral("%1 files, %2, %3 left out")
                    .arg(QString::number(files_.names.size()), sizeText(files_.bytes),
                         QString::number(files_.leftOut.size())));
}

QString Job::logMachine()
{
    scratch_ = std::make_unique<QTemporaryDir>(
        QDir::temp().filePath(QStringLiteral("results-archive-XXXXXX")));
    if (!scratch_->isValid() || !QDir().mkdir(unpackFolder()))
        return QStringLiteral("A temporary folder cannot be made in %1")
            .arg(shown(QDir::tempPath()));
    ResultsArchive::logMachine(log_, scratch_->path());
    return QString();
}

QString Job::logCluster() const
{
    const CurrentFolder current(scratch_->path());
    if (!current.isSet())
        return missingScratchFolder();
    ResultsArchive::logCluster(log_, options_.clusterTools);
    return QString();
}

QString Job::checkStart() const
{
    if (!files_.problem.isEmpty())
        return files_.problem;
    if (files_.names.isEmpty())
        return QStringLiteral("The folder holds no files: %1").arg(shown(options_.folder));
    for (const QString &name : files_.names) {
        if (!canBePacked(name))
            return QStringLiteral("7-Zip cannot be given this name: %1").arg(oneLine(name));
    }
    // An asynchronous operation never ends if 7-Zip cannot be started, so this is tried first. The
    // blocking form then fails without an error. If 7-Zip runs, it reports an error, because the
    // archive does not exist.
    SevenZip archive;
    archive.setArchiveFile(options_.archive);
    if (!archive.listFiles() && archive.isOk())
        return QStringLiteral("7-Zip cannot be started");
    return QString();
}

QString Job::checkSizes() const
{
    const qint64 bytes = countedBytes(options_.folder, files_);
    if (bytes != files_.bytes) {
        return QStringLiteral("The folder is changing: it holds %1 bytes instead of %2")
            .arg(QString::number(bytes), QString::number(files_.bytes));
    }
    const DiskSpace space
        = diskSpaceIn(QFileInfo(options_.archive).absolutePath(), QDir::tempPath());
    const auto freeText
        = [](qint64 size) { return size < 0 ? QStringLiteral("unknown") : sizeText(size); };
    log_.append(QStringLiteral("Free for the archive: %1, for the unpacked files: %2")
                    .arg(freeText(space.archiveFree), freeText(space.unpackFree)));
    return diskSpaceProblem(space, files_.bytes);
}

QString Job::startPacking(SevenZip &archive)
{
    startedPacking_ = true;
    // SevenZip removes every occurrence of the current path from a name. With "/." at its end the
    // path occurs only at the beginning.
    QString currentPath = options_.folder;
    if (!currentPath.endsWith(QLatin1Char('/')))
        currentPath += QLatin1Char('/');
    currentPath += QLatin1Char('.');
    QStringList paths;
    for (const QString &name : qAsConst(files_.names))
        paths << currentPath + QLatin1Char('/') + nameForArchiver(name);

    archive.setArchiveFile(options_.archive);
    archive.setCurrentPath(currentPath);
    archive.setType(options_.type);
    archive.setMethod(options_.method);
    archive.setLevel(options_.level);
    archive.startCompressingFiles(paths);
    return QString();
}

QString Job::checkPacking(const SevenZip &archive)
{
    packedBytes_ = archive.compressedSize();
    if (archive.isOk() && packedBytes_ > 0) {
        log_.append(QStringLiteral("Packed into %1 (%2)")
                        .arg(sizeText(packedBytes_), percentText(packedBytes_, files_.bytes)));
        return QString();
    }
    if (!archive.output().isEmpty())
        log_.append(archive.output());
    return QStringLiteral("7-Zip could not pack the files");
}

QString Job::startListing(SevenZip &archive) const
{
    archive.setArchiveFile(options_.archive);
    archive.startListingFiles();
    return QString();
}

QString Job::checkListing(const SevenZip &archive) const
{
    if (!archive.isOk())
        return QStringLiteral("7-Zip could not list the archive");
    const QString difference = differenceInNames(files_.names, archive.files());
    if (!difference.isEmpty())
        return difference;
    // 0 if the totals that this version of 7-Zip prints could not be read.
    const qint64 bytes = archive.uncompressedSize();
    if (bytes != 0 && bytes != files_.bytes) {
        return QStringLiteral("The archive lists %1 bytes instead of %2")
            .arg(QString::number(bytes), QString::number(files_.bytes));
    }
    return QString();
}

QString Job::startUnpacking(SevenZip &archive) const
{
    archive.setArchiveFile(options_.archive);
    archive.startExtractingFilesTo(unpackFolder());
    return QString();
}

QString Job::unpackedPart() const
{
    // getDirectorySize() does not count hidden files.
    return percentText(System::getDirectorySize(unpackFolder()), files_.bytes - files_.hiddenBytes);
}

QString Job::checkUnpacking(const SevenZip &archive) const
{
    if (!archive.isOk())
        return QStringLiteral("7-Zip could not unpack the archive");
    const FolderFiles unpacked = filesOf(unpackFolder());
    if (!unpacked.problem.isEmpty())
        return unpacked.problem;
    if (unpacked.names != files_.names || !unpacked.leftOut.isEmpty()) {
        return QStringLiteral("The unpacked files are not the packed ones: %1 unpacked, %2 packed")
            .arg(QString::number(unpacked.names.size()), QString::number(files_.names.size()));
    }
    const qint64 bytes = countedBytes(unpackFolder(), unpacked);
    if (bytes != files_.bytes) {
        return QStringLiteral("The archive unpacks to %1 bytes instead of %2")
            .arg(QString::number(bytes), QString::number(files_.bytes));
    }
    return QString();
}

QStringList Job::names() const
{
    return files_.names;
}

QString Job::compareFile(const QString &name) const
{
    const QString difference = differenceInFiles(QDir(options_.folder).filePath(name),
                                                 QDir(unpackFolder()).filePath(name));
    return difference.isEmpty() ? QString() : oneLine(name) + QLatin1Char(' ') + difference;
}

QString Job::listWithSystem()
{
    const QString variable = QStringLiteral("RESULTS_ARCHIVE_FILE");
    setVariable(variable, QDir::toNativeSeparators(options_.archive));
    constexpr int MostLines = 20;
    const CurrentFolder current(scratch_->path());
    if (!current.isSet())
        return missingScratchFolder();
    const QString listing = Command(&log_).run(listingCommand(variable), MostLines, true);
    if (listing.trimmed().isEmpty())
        return QStringLiteral("The system does not list the archive");
    const qint64 bytes = QFileInfo(options_.archive).size();
    if (bytes != packedBytes_) {
        return QStringLiteral("The archive changed: it has %1 bytes instead of %2")
            .arg(QString::number(bytes), QString::number(packedBytes_));
    }
    verified_ = true;
    return QString();
}

QString Job::cleanUp()
{
    logLoad(log_, load_);
    complete_ = verified_ && !cancel_.wasReported();
    QString problem;
    if (scratch_ && scratch_->isValid() && !scratch_->remove())
        problem = QStringLiteral("%1 cannot be removed").arg(shown(scratch_->path()));
    if (startedPacking_ && !complete_ && QFileInfo::exists(options_.archive)
        && !QFile::remove(options_.archive))
        problem = QStringLiteral("%1 cannot be removed").arg(shown(options_.archive));
    return problem;
}

bool Job::isComplete() const
{
    return complete_;
}

QString Job::summary(qint64 milliseconds) const
{
    return QStringLiteral("Packed and verified: %1 files, %2 in %3 (%4), %5: %6")
        .arg(QString::number(files_.names.size()), sizeText(files_.bytes), sizeText(packedBytes_),
             percentText(packedBytes_, files_.bytes), System::getElapsedTimeString(milliseconds),
             shown(options_.archive));
}

QString Job::unpackFolder() const
{
    return scratch_->filePath(QStringLiteral("unpacked"));
}

} // namespace ResultsArchive
