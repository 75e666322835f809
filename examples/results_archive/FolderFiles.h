#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ResultsArchive {

/// The files below a folder, hidden ones too, as names relative to it. Symbolic links (on Windows
/// shortcuts as well), sockets and the like are not followed but left out; folders only count
/// through their files.
struct FolderFiles
{
    QStringList names; ///< sorted
    QStringList leftOut;
    qint64 bytes = 0;
    QString problem; ///< what cannot be read; empty when nothing
};

FolderFiles filesOf(const QString &folder);

/// What is wrong with \a copy, which ought to hold the bytes of \a original; empty when nothing is.
QString differenceInFiles(const QString &original, const QString &copy);

} // namespace ResultsArchive
