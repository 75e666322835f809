#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ResultsArchive {

/// The files in a folder and its subfolders, including hidden ones. Names are relative to the
/// folder. Symbolic links (on Windows also shortcuts and junctions), sockets and other special
/// files are left out. Empty folders are not recorded.
struct FolderFiles
{
    QStringList names; ///< sorted
    QStringList leftOut;
    qint64 bytes = 0;       ///< the size of all files in names
    qint64 hiddenBytes = 0; ///< the part of bytes that is in hidden files and in hidden folders
    qint64 linkedBytes = 0; ///< the size of the files that visible links lead to
    QString problem;        ///< an error message; empty if everything could be read
};

FolderFiles filesOf(const QString &folder);

/// The size of the files \a found in \a folder as System::getDirectorySize() counts it now.
qint64 countedBytes(const QString &folder, const FolderFiles &found);

/// Compares two files byte by byte. Returns how \a copy differs from \a original; empty if it does
/// not.
QString differenceInFiles(const QString &original, const QString &copy);

} // namespace ResultsArchive
