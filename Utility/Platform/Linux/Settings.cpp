#include <Utility/Platform/Settings.h>

#include <QtCore/QSettings>

#include <cerrno>
#include <cstring>
#include <memory>

namespace Vorn::Util::Platform {

namespace {

// Characters with the terminating null, as in the registry's buffers.
constexpr int KeyPathSize = 512;
constexpr int ValueSize = 1024;

// A key path "SOFTWARE\ORGANISATION\APPLICATION\GROUP..." in Qt's system-wide settings.
struct Location
{
    QString organisation;
    QString application;
    QString group;
};

bool isPlainName(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && name != QLatin1String(".")
        && name != QLatin1String("..");
}

// False for a path that names no application, or that would lead out of the settings' folder.
bool locate(const QString &keyPath, Location &location)
{
    QStringList parts = keyPath.split(QLatin1Char('\\'));
    if (parts.size() < 3
        || parts.takeFirst().compare(QLatin1String("SOFTWARE"), Qt::CaseInsensitive) != 0)
        return false;
    for (const QString &part : qAsConst(parts)) {
        if (!isPlainName(part))
            return false;
    }
    location.organisation = parts.takeFirst();
    location.application = parts.takeFirst();
    location.group = parts.join(QLatin1Char('/'));
    return true;
}

SettingsValue failure(SettingsValue::Outcome outcome, int code)
{
    const QString message = QString::fromLocal8Bit(std::strerror(code));
    return {outcome, QString(), code, message + QLatin1Char('\n')};
}

} // namespace

std::unique_ptr<QSettings> openSettings(const QString &keyPath)
{
    Location location;
    if (!locate(keyPath, location))
        return nullptr;
    auto settings = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::SystemScope,
                                                location.organisation, location.application);
    if (!location.group.isEmpty())
        settings->beginGroup(location.group);
    // Of all folders of XDG_CONFIG_DIRS: a desktop session puts one of its own in front.
    return settings->allKeys().isEmpty() ? nullptr : std::move(settings);
}

SettingsValue readSettingsValue(const QString &keyPath, const QString &name)
{
    if (keyPath.size() >= KeyPathSize)
        return failure(SettingsValue::NoKey, ENAMETOOLONG);
    const std::unique_ptr<QSettings> key = openSettings(keyPath);
    if (!key)
        return failure(SettingsValue::NoKey, ENOENT);
    if (!isPlainName(name) || !key->contains(name))
        return failure(SettingsValue::NoValue, ENOENT);
    // An unquoted comma in the file makes a list of the value.
    const QString text = key->value(name).toStringList().join(QLatin1String(", "));
    if (text.size() >= ValueSize)
        return failure(SettingsValue::NoValue, EMSGSIZE);
    return {SettingsValue::Found, text.left(text.indexOf(QChar())), 0, QString()};
}

QStringList settingsSubkeys(const QString &keyPath)
{
    const std::unique_ptr<QSettings> key = openSettings(keyPath);
    return key ? key->childGroups() : QStringList();
}

} // namespace Vorn::Util::Platform
