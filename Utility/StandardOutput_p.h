#pragma once

#include <QtCore/QString>

namespace Vorn::Util {

/// Writes \a text to the process's standard output in the local encoding, after everything that
/// was printed there before, whether in narrow or in wide characters.
void printToStandardOutput(const QString &text);

} // namespace Vorn::Util
