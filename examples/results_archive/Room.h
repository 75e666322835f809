#pragma once

#include <QtCore/QString>

namespace ResultsArchive {

/// Two folders that files are to be written to.
struct Room
{
    QString archiveFolder;
    QString unpackFolder;
    qint64 archiveFree = -1; ///< bytes; -1 is unknown
    qint64 unpackFree = -1;
    bool isOneDisk = false; ///< so that both numbers are the same room
};

Room roomIn(const QString &archiveFolder, const QString &unpackFolder);

/// Where there is no room for an archive of \a bytes that do not compress and for the files
/// unpacked from it; empty when there is, or when it is not known.
QString roomProblem(const Room &room, qint64 bytes);

} // namespace ResultsArchive
