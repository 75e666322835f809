#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

namespace Vorn::Util::Formats {

/// The names of a key's subkeys, in the store's order.
using SubkeyNames = std::function<QStringList(const QString &keyPath)>;

/// The key that a caller's key path means. \a subkeys is asked for a path that ends with a release
/// such as "24.x".
QString resolveKeyPath(const QString &keyPath, const SubkeyNames &subkeys);

/// The name among \a names that is the greatest release of \a release ("24.x"); a null text when
/// there is none.
QString greatestRelease(const QString &release, const QStringList &names);

} // namespace Vorn::Util::Formats
