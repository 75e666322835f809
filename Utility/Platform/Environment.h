#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The value of the environment variable \a name (Latin-1); empty when it is not set.
QString environmentVariable(const char *name);

} // namespace Vorn::Util::Platform
