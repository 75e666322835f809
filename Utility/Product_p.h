#pragma once

#include <Utility/Version.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Product {

/// The name of the maker: the organisation in folders and settings.
inline QString maker()
{
    return QStringLiteral("Vantorel");
}

/// The application name in folders and settings.
inline QString name()
{
    return QStringLiteral("VORN");
}

/// The public name of the release: "2024".
inline QString publicVersion()
{
    return QStringLiteral("2024");
}

/// The product's folder in the maker's folder: "VORN 2024".
inline QString folder()
{
    return name() + QLatin1Char(' ') + publicVersion();
}

/// The release in the key of the settings: "24.0".
inline QString release()
{
    return QStringLiteral("%1.%2").arg(Version::Major).arg(Version::Minor);
}

/// The key of the product's machine-wide settings: "SOFTWARE\Vantorel\VORN\24.0".
inline QString settingsKey()
{
    return QStringList{QStringLiteral("SOFTWARE"), maker(), name(), release()}.join(
        QLatin1Char('\\'));
}

} // namespace Vorn::Util::Product
