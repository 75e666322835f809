#pragma once

#include <QtCore/QString>

namespace Vorn::Util {

/// Replaces the log \a name by its tail. If \a name is a link, its target is replaced. The tail is
/// first copied to the folder for temporary files, see Platform::replaceByTail().
///
/// After a failure the log is unchanged. Some failures are detected in advance with a few system
/// calls, without a copy: one of the two folders or the log cannot be changed, or there is too
/// little disk space.
void truncateLogFile(const QString &name);

} // namespace Vorn::Util
