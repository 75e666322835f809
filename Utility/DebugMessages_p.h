#pragma once

#include <QtCore/QLoggingCategory>

namespace Vorn::Util {

/// The category of all debug messages of the library, "vorn.utility", so that a program can filter
/// them. Write with qCDebug(debugMessages).
Q_DECLARE_LOGGING_CATEGORY(debugMessages)

} // namespace Vorn::Util
