#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ResultsArchive {

/// The files below a folder, hidden ones too, as names relative to it. Symbolic links (on Windows
/// shortcuts and junctions as well), sockets and the like are not followed but left out; folders
/// only count through their files.
struct FolderFiles
{
    QStringList names; ///< sorted
    QStringList leftOut;
    qint64 bytes = 0;
    qint64 hiddenBytes = 0; ///< of the bytes, those of hidden files and of all in hidden folders
    qint64 linkedBytes = 0; ///< of the files that visible links point to
    QString problem;        ///< what cannot be read; empty when nothing
};

FolderFiles filesOf(const QString &folder);

/// The bytes of the files \a found in \a folder as the library counts them now.
qint64 countedBytes(const QString &folder, const FolderFiles &found);

/// What is wrong with \a copy, which ought to hold the bytes of \a original; empty when nothing is.
QString differenceInFiles(const QString &original, const QString &copy);

} // namespace ResultsArchive
