#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The universal name (UNC) of \a path if it is on a mapped network drive; otherwise empty, as on a
/// system without such drives. \a path has native separators.
QString universalName(const QString &path);

/// The target of the drive \a drive ("X:") as a device path of the system; empty if there is no
/// such drive.
QString driveTarget(const QString &drive);

} // namespace Vorn::Util::Platform
