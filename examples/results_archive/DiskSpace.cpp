#include "DiskSpace.h"

#include "Names.h"

#include <QtCore/QDir>
#include <QtCore/QStorageInfo>

namespace ResultsArchive {

namespace {

// Returns -1 for a file system that does not report its size.
qint64 freeBytes(const QStorageInfo &disk)
{
    return disk.isValid() && disk.bytesTotal() > 0 ? disk.bytesAvailable() : -1;
}

QString problemIn(const QString &folder, qint64 free, quint64 needed)
{
    if (free < 0 || static_cast<quint64>(free) >= needed)
        return QString();
    return QStringLiteral("Not enough disk space in %1: need %2 bytes, have %3")
        .arg(oneLine(QDir::toNativeSeparators(folder)), QString::number(needed),
             QString::number(free));
}

} // namespace

DiskSpace diskSpaceIn(const QString &archiveFolder, const QString &unpackFolder)
{
    const QStorageInfo archiveDisk(archiveFolder);
    const QStorageInfo unpackDisk(unpackFolder);
    return {archiveFolder, unpackFolder, freeBytes(archiveDisk), freeBytes(unpackDisk),
            archiveDisk == unpackDisk};
}

QString diskSpaceProblem(const DiskSpace &space, qint64 bytes)
{
    const quint64 needed = static_cast<quint64>(bytes) * (space.isOneDisk ? 2 : 1);
    const QString problem = problemIn(space.archiveFolder, space.archiveFree, needed);
    return problem.isEmpty() ? problemIn(space.unpackFolder, space.unpackFree, needed) : problem;
}

} // namespace ResultsArchive
