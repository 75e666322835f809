#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

/// The maximum length of a value in UTF-16 code units, including its terminating null.
constexpr int SettingsValueSize = 1024;

/// The maximum length of a key path in UTF-16 code units, including its terminating null.
constexpr int SettingsKeyPathSize = 512;

/// The result of reading a value from the machine-wide settings.
struct SettingsValue
{
    enum Outcome { Found, NoKey, NoValue };

    Outcome outcome;
    QString text;    ///< if Found: the value up to its first null, shorter than SettingsValueSize
    int code;        ///< otherwise: the error code of the failed call
    QString message; ///< otherwise: the message of the system for the error, with its line end
};

/// Reads the value \a name of the key \a keyPath, whose parts are separated by "\\". A key path of
/// SettingsKeyPathSize characters or more is not found.
SettingsValue readSettingsValue(const QString &keyPath, const QString &name);

/// The value \a name of the key \a keyPath as text, whatever its type; null if there is none.
QString readSettingsText(const QString &keyPath, const QString &name);

/// Sets the value \a name of the key \a keyPath. Creates the key if it does not exist. Does nothing
/// if the settings cannot be written.
void writeSettingsText(const QString &keyPath, const QString &name, const QString &text);

/// The names of the subkeys of \a keyPath in the order of the settings; empty if the key does not
/// exist.
QStringList settingsSubkeys(const QString &keyPath);

} // namespace Vorn::Util::Platform
