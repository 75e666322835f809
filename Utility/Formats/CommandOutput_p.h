#pragma once

#include <QtCore/QStringList>

#include <string_view>

namespace Vorn::Util::Formats {

/// The number of bytes from the beginning of a command's output that outputLines() can need for
/// \a maxLines.
qint64 neededOutput(int maxLines);

/// The lines that a caller gets from \a output: each with its line end, a longer line in pieces of
/// 199 bytes, each decoded by itself from UTF-8 up to its first null byte. At most \a maxLines + 2
/// of them, one for a negative number. No output is one empty line.
QStringList outputLines(std::string_view output, int maxLines);

} // namespace Vorn::Util::Formats
