#pragma once

#include "TestSystem.h"

#include <QtCore/QSettings>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <memory>

/// The machine-wide settings of the application in the key path
/// "SOFTWARE\ORGANISATION\APPLICATION". The rest of the key path is opened as a group. Elsewhere
/// than on Windows they lie in a file, whose folder QSettings::setPath(QSettings::NativeFormat,
/// QSettings::SystemScope, FOLDER) sets.
inline std::unique_ptr<QSettings> openSettings(const QString &keyPath)
{
    if (onWindows()) {
        return std::make_unique<QSettings>(QStringLiteral("HKEY_LOCAL_MACHINE\\") + keyPath,
                                           QSettings::NativeFormat);
    }
    const QStringList parts = keyPath.split(QLatin1Char('\\'));
    auto settings = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::SystemScope,
                                                parts.value(1), parts.value(2));
    settings->setFallbacksEnabled(false);
    const QString group = parts.mid(3).join(QLatin1Char('/'));
    if (!group.isEmpty())
        settings->beginGroup(group);
    return settings;
}

/// False when the value cannot be written, for instance without the right to.
inline bool writeSetting(const QString &keyPath, const QString &name, const QVariant &value)
{
    const std::unique_ptr<QSettings> settings = openSettings(keyPath);
    settings->setValue(name, value);
    settings->sync();
    return settings->status() == QSettings::NoError;
}

/// Removes the key with all that lies below it.
inline bool removeSettings(const QString &keyPath)
{
    const std::unique_ptr<QSettings> settings = openSettings(keyPath);
    settings->remove(QString());
    settings->sync();
    return settings->status() == QSettings::NoError;
}
