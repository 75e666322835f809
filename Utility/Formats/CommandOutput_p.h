#pragma once

#include <QtCore/QStringList>

#include <string_view>

namespace Vorn::Util::Formats {

/// The maximum number of bytes of a command's output that outputLines() reads for \a maxLines.
qint64 neededOutput(int maxLines);

/// Splits the output of a command into lines that include their line end. A line of more than 199
/// bytes is split into several. Each line is read as UTF-8 up to its first null byte.
///
/// Returns at most \a maxLines + 2 lines, one line for a negative number, and one empty line for no
/// output.
QStringList outputLines(std::string_view output, int maxLines);

} // namespace Vorn::Util::Formats
