#pragma once

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

/// The release in the key of the settings and in SystemInfo.xml: "24.0". It stays when the version
/// changes, so that the settings of an older release are found.
inline QString release()
{
    return QStringLiteral("24.0");
}

/// The key of the product's machine-wide settings: "SOFTWARE\Vantorel\VORN\24.0".
inline QString settingsKey()
{
    return QStringList{QStringLiteral("SOFTWARE"), maker(), name(), release()}.join(
        QLatin1Char('\\'));
}

} // namespace Vorn::Util::Product
