#pragma once

#include <QtCore/QStringList>

namespace ClusterStudy {

/// The files in the folder \a name below \a folder and in its subfolders, as names relative to
/// \a folder. Links and special files are left out. So is what cannot be read, and files
/// with a name that 7-Zip cannot be given. Each of these is added to \a leftOut with the reason.
QStringList filesToPack(const QString &folder, const QString &name, QStringList &leftOut);

} // namespace ClusterStudy
