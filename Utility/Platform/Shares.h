#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// Shares the folder \a path on the network as \a name, for reading and writing, without a limit of
/// users. False if the system refuses it or has no shares.
bool shareFolder(const QString &name, const QString &path);

/// Whether the system reports that \a path is shared.
bool isFolderShared(const QString &path);

} // namespace Vorn::Util::Platform
