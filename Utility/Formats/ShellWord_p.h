#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// \a bytes as one word of a POSIX shell's command line, whatever they are. The word is plain
/// ASCII; \a bytes must not end with a line break.
QString shellWord(const QByteArray &bytes);

} // namespace Vorn::Util::Formats
