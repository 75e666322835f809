#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The universal name of a path on a mapped network drive, in native form; empty for any other
/// path and where there are no such drives.
QString universalName(const QString &path);

/// What the drive \a drive ("X:") stands for in the system's own form; empty when there is none.
QString driveTarget(const QString &drive);

} // namespace Vorn::Util::Platform
