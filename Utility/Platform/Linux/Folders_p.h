#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The folder \a common when this process may write the folder \a maker in it or, while that one
/// does not exist, make it there; the folder \a own otherwise.
QString writableDataFolder(const QString &common, const QString &maker, const QString &own);

} // namespace Vorn::Util::Platform
