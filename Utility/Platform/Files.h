#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// Puts the file \a source in the place of the file \a target in one step: at every moment
/// \a target is the old file or the new one. False (and nothing changed) when that cannot be
/// done, for instance because the two lie on different file systems.
bool replaceFile(const QString &source, const QString &target);

} // namespace Vorn::Util::Platform
