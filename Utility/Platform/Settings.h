#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

/// Characters of a value, with its terminating null.
constexpr int SettingsValueSize = 1024;

/// Characters of a key path, with its terminating null.
constexpr int SettingsKeyPathSize = 512;

/// What became of reading a text from the machine-wide settings.
struct SettingsValue
{
    enum Outcome { Found, NoKey, NoValue };

    Outcome outcome;
    QString
        text; ///< Found: the value up to its first null, at most SettingsValueSize - 1 characters
    int code; ///< otherwise: the system's code of the failed call
    QString message; ///< otherwise: the system's text, with its own line end
};

/// Reads the value \a name of the key \a keyPath, whose parts are separated by "\\". A key path of
/// SettingsKeyPathSize characters or more is not found.
SettingsValue readSettingsValue(const QString &keyPath, const QString &name);

/// The value \a name of the key \a keyPath as a text, whatever its type; null when there is none.
QString readSettingsText(const QString &keyPath, const QString &name);

/// Sets the value \a name of the key \a keyPath, which is made when it is missing. Nothing happens
/// when it cannot be written.
void writeSettingsText(const QString &keyPath, const QString &name, const QString &text);

/// The names of the subkeys of \a keyPath in the store's order; none when there is no such key.
QStringList settingsSubkeys(const QString &keyPath);

} // namespace Vorn::Util::Platform
