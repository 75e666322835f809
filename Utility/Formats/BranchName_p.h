#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Formats {

/// The name of the branch in the build system's reference, such as "main" in
/// "Ref=refs/heads/main". Empty for a reference that does not begin with "Ref=refs/heads".
QString branchName(const QString &reference);

} // namespace Vorn::Util::Formats
