#pragma once

#include <QtCore/QIODevice>
#include <QtCore/QtGlobal>

namespace Vorn::Util::Formats {

/// A file version in two words: major and minor number, build and revision, each the upper and
/// the lower half. All 0 where there is none.
struct ProgramVersion
{
    quint32 high = 0;
    quint32 low = 0;
};

/// The version in the version block of a Windows program, read from the bytes of its file, whatever
/// they are. \a program is open and can be read at any place.
ProgramVersion versionInProgram(QIODevice &program);

} // namespace Vorn::Util::Formats
