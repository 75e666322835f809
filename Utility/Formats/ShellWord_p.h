#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// Quotes \a bytes, which can be any bytes, as one word of a command line of a POSIX shell. The
/// result is ASCII. \a bytes must not end with a line break, which
/// the shell removes from the result of a command.
QString shellWord(const QByteArray &bytes);

} // namespace Vorn::Util::Formats
