#pragma once

#include <Utility/Formats/VersionBlock_p.h>

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// Reads the version block of the program file \a path.
Formats::ProgramVersion programVersion(const QString &path);

} // namespace Vorn::Util::Platform
