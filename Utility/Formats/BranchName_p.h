#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// The name of the branch in a reference of the build system: "main" for "Ref=refs/heads/main".
/// Empty if the reference does not begin with "Ref=refs/heads".
QString branchName(const QString &reference);

} // namespace Vorn::Util::Formats
