#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// Returns \a common if this process may write to the folder \a maker in it or, if that does not
/// exist, may create it. Otherwise returns \a own.
QString writableDataFolder(const QString &common, const QString &maker, const QString &own);

} // namespace Vorn::Util::Platform
