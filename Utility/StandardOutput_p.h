#pragma once

#include <QtCore/QString>

namespace Vorn::Util {

/// Writes \a text to the standard output of the process in the local encoding, after everything
/// that was printed before with narrow or wide characters.
void printToStandardOutput(const QString &text);

} // namespace Vorn::Util
