#include "DiskSpace.h"

#include "Names.h"

#include <QtCore/QDir>
#include <QtCore/QStorageInfo>

#include <cmath>

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
    // Rounded so that the numbers always differ.
    constexpr double TenthOfMebibyte = (1 << 20) / 10.0;
    const double need = std::ceil(static_cast<double>(needed) / TenthOfMebibyte) / 10;
    const double have = std::floor(static_cast<double>(free) / TenthOfMebibyte) / 10;
    return QStringLiteral("Not enough disk space in %1: need %2 MiB, have %3 MiB")
        .arg(oneLine(QDir::toNativeSeparators(folder)), QString::number(need, 'f', 1),
             QString::number(have, 'f', 1));
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
