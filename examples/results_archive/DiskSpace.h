#pragma once

#include <QtCore/QString>

namespace ResultsArchive {

/// The free disk space in two folders that files will be written to.
struct DiskSpace
{
    QString archiveFolder;
    QString unpackFolder;
    qint64 archiveFree = -1; ///< bytes; -1 if unknown
    qint64 unpackFree = -1;
    bool isOneDisk = false; ///< both folders share the same disk space
};

DiskSpace diskSpaceIn(const QString &archiveFolder, const QString &unpackFolder);

/// Returns an error message if one of the folders has not enough disk space for files of \a bytes
/// bytes, packed (as if they did not become smaller) and unpacked; empty if there is enough, or if
/// that is not known.
QString diskSpaceProblem(const DiskSpace &space, qint64 bytes);

} // namespace ResultsArchive
