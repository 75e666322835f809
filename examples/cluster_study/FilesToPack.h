#pragma once

#include <QtCore/QStringList>

namespace ClusterStudy {

/// The files in the folder \a name below \a folder and in its subfolders, as names relative to
/// \a folder. Symbolic links are left out, and names that 7-Zip cannot be given; the latter are
/// added to \a leftOut.
QStringList filesToPack(const QString &folder, const QString &name, QStringList &leftOut);

} // namespace ClusterStudy
