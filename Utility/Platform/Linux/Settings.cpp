#include <Utility/Platform/Settings.h>

#include <Utility/Formats/SettingsText_p.h>
#include <Utility/Platform/SmallFile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLockFile>
#include <QtCore/QSaveFile>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

namespace Vorn::Util::Platform {

namespace {

// The parts of a key path "SOFTWARE\ORGANISATION\APPLICATION\GROUP...".
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

// False if the path contains no application, or would lead out of the folder of the settings.
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

// The file that QSettings uses. If it does not exist, the first existing file in the other folders
// of XDG_CONFIG_DIRS; but if a folder that is not one of them was set with QSettings::setPath(),
// only the file in that folder.
QString fileOf(const Location &location)
{
    QString named = QSettings(QSettings::NativeFormat, QSettings::SystemScope,
                              location.organisation, location.application)
                        .fileName();
    const QString below
        = QStringLiteral("/%1/%2.conf").arg(location.organisation, location.application);
    QStringList files;
    // mid(1) skips the folder of the user.
    for (const QString &folder :
         QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation).mid(1))
        files.append(folder + below);
    const auto exists = [](const QString &name) { return QFileInfo::exists(name); };
    if (exists(named) || !files.contains(named))
        return named;
    const auto found = std::find_if(files.cbegin(), files.cend(), exists);
    return found != files.cend() ? *found : named;
}

// The values of a key and of its subkeys. The names of the latter begin with "GROUP/". Empty if the
// key does not exist.
QMap<QString, QString> readKey(const QString &keyPath)
{
    Location location;
    if (!locate(keyPath, location))
        return {};
    const std::optional<QByteArray> content = readSmallFile(fileOf(location));
    const QMap<QString, QString> all = Formats::settingsTexts(content.value_or(QByteArray()));
    if (location.group.isEmpty())
        return all;
    QMap<QString, QString> key;
    const QString prefix = location.group + QLatin1Char('/');
    for (auto value = all.lowerBound(prefix); value != all.cend() && value.key().startsWith(prefix);
         ++value)
        key.insert(value.key().mid(prefix.size()), value.value());
    return key;
}

SettingsValue failure(SettingsValue::Outcome outcome, int code)
{
    const QString message = QString::fromLocal8Bit(std::strerror(code));
    return {outcome, QString(), code, message + QLatin1Char('\n')};
}

// Creates a folder and its parents, so that all users may enter them.
bool makeFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return true;
    if (!makeFolder(QFileInfo(path).path()))
        return false;
    if (!QDir().mkdir(path))
        return QFileInfo(path).isDir(); // another process may have created it
    constexpr auto ByOthers
        = QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    return QFile::setPermissions(path, QFile::permissions(path) | ByOthers);
}

} // namespace

QString readSettingsText(const QString &keyPath, const QString &name)
{
    return readKey(keyPath).value(name);
}

void writeSettingsText(const QString &keyPath, const QString &name, const QString &text)
{
    Location location;
    // As in QSettings, "/" separates groups, and empty parts are dropped.
    const QString key = name.split(QLatin1Char('/'), Qt::SkipEmptyParts).join(QLatin1Char('/'));
    if (!locate(keyPath, location) || location.group.isEmpty() || key.isEmpty())
        return;
    const QString fileName = fileOf(location);
    if (!makeFolder(QFileInfo(fileName).path()))
        return;
    QLockFile lock(fileName + QStringLiteral(".lock")); // the lock file of QSettings
    if (!lock.lock())
        return;

    const bool isNew = !QFileInfo::exists(fileName);
    const std::optional<QByteArray> before = isNew ? QByteArray() : readSmallFile(fileName);
    if (!before)
        return;
    const QByteArray after = Formats::withSettingsText(*before, location.group, key, text);
    QMap<QString, QString> expected = Formats::settingsTexts(*before);
    expected.insert(location.group + QLatin1Char('/') + key, text);
    // If a quotation mark in the file is not closed, the new text would become part of its value.
    if (Formats::settingsTexts(after) != expected)
        return;
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return;
    if (isNew) // all users may read the settings
        file.setPermissions(file.permissions() | QFile::ReadGroup | QFile::ReadOther);
    // flush(): commit() does not notice that the last bytes do not fit on the disk.
    if (file.write(after) == after.size() && file.flush())
        file.commit();
}

SettingsValue readSettingsValue(const QString &keyPath, const QString &name)
{
    if (keyPath.size() >= SettingsKeyPathSize)
        return failure(SettingsValue::NoKey, ENAMETOOLONG);
    const QMap<QString, QString> key = readKey(keyPath);
    if (key.isEmpty())
        return failure(SettingsValue::NoKey, ENOENT);
    const auto value = key.constFind(name);
    if (!isPlainName(name) || value == key.constEnd())
        return failure(SettingsValue::NoValue, ENOENT);
    if (value->size() >= SettingsValueSize)
        return failure(SettingsValue::NoValue, EMSGSIZE);
    return {SettingsValue::Found, value->left(value->indexOf(QChar())), 0, QString()};
}

QStringList settingsSubkeys(const QString &keyPath)
{
    QStringList names;
    const QMap<QString, QString> key = readKey(keyPath);
    for (auto value = key.cbegin(); value != key.cend(); ++value) {
        if (value.key().contains(QLatin1Char('/')))
            names.append(value.key().section(QLatin1Char('/'), 0, 0));
    }
    names.removeDuplicates();
    return names;
}

} // namespace Vorn::Util::Platform
