#include "Room.h"

#include "Names.h"

#include <QtCore/QDir>
#include <QtCore/QStorageInfo>

namespace ResultsArchive {

namespace {

// Some file systems tell no size at all.
qint64 freeBytes(const QStorageInfo &disk)
{
    return disk.isValid() && disk.bytesTotal() > 0 ? disk.bytesAvailable() : -1;
}

QString problemIn(const QString &folder, qint64 free, quint64 needed)
{
    if (free < 0 || static_cast<quint64>(free) >= needed)
        return QString();
    return QStringLiteral("The disk is too full: %1 bytes are free of %2 needed in %3")
        .arg(QString::number(free), QString::number(needed),
             oneLine(QDir::toNativeSeparators(folder)));
}

} // namespace

Room roomIn(const QString &archiveFolder, const QString &unpackFolder)
{
    const QStorageInfo archiveDisk(archiveFolder);
    const QStorageInfo unpackDisk(unpackFolder);
    return {archiveFolder, unpackFolder, freeBytes(archiveDisk), freeBytes(unpackDisk),
            archiveDisk == unpackDisk};
}

QString roomProblem(const Room &room, qint64 bytes)
{
    const quint64 needed = static_cast<quint64>(bytes) * (room.isOneDisk ? 2 : 1);
    const QString problem = problemIn(room.archiveFolder, room.archiveFree, needed);
    return problem.isEmpty() ? problemIn(room.unpackFolder, room.unpackFree, needed) : problem;
}

} // namespace ResultsArchive
