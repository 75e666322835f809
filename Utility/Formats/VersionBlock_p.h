#pragma once

#include <QtCore/QIODevice>
#include <QtCore/QtGlobal>

namespace Vorn::Util::Formats {

/// The version of a program file. Both numbers are 0 if it has none.
struct ProgramVersion
{
    quint32 high = 0; ///< upper half: major number, lower half: minor number
    quint32 low = 0;  ///< upper half: build, lower half: revision
};

/// Reads the version block of a Windows program file. \a program is open for reading and not
/// sequential. It may contain any bytes.
ProgramVersion versionInProgram(QIODevice &program);

} // namespace Vorn::Util::Formats
