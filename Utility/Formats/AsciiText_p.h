#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// Whether \a text contains a character outside 7-bit ASCII.
bool isUnicodeText(const QString &text);

} // namespace Vorn::Util::Formats
