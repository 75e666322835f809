#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

namespace Vorn::Util::Formats {

/// Returns the names of the subkeys of a key, in the order of the settings.
using SubkeyNames = std::function<QStringList(const QString &keyPath)>;

/// The key that is meant by the argument \a keyPath of Registry::readRegistryValue(). \a subkeys is
/// called only if \a keyPath ends with a release such as "24.x".
QString resolveKeyPath(const QString &keyPath, const SubkeyNames &subkeys);

/// Of the \a names with the major number of \a release, the one with the greatest number after the
/// dot: "24.10" for "24.x" and the names "24.9", "24.10" and "25.0". Null if there is none.
QString greatestRelease(const QString &release, const QStringList &names);

} // namespace Vorn::Util::Formats
