#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// Shares the folder \a path on the network under \a name, to be read and written without a limit
/// of users. False where the system refuses or has no such shares.
bool shareFolder(const QString &name, const QString &path);

bool isFolderShared(const QString &path);

} // namespace Vorn::Util::Platform
