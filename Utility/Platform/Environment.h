#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The value of the environment variable \a name (in Latin-1); empty if it is not set.
QString environmentVariable(const char *name);

} // namespace Vorn::Util::Platform
