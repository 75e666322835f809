#include <Utility/Registry.h>

#include <Utility/Formats/RegistryKey_p.h>
#include <Utility/Platform/Environment.h>
#include <Utility/Platform/Settings.h>
#include <Utility/Product_p.h>
#include <Utility/StandardOutput_p.h>

#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>

namespace Vorn::Util {

namespace {

// The sizes of the caller's buffers, with the terminating null.
constexpr int FolderSize = 512; // for a folder, in wide characters
constexpr int NarrowSize = 512; // for the installation folder, in bytes

// A text that does not fit is not truncated, but replaced by an empty one: a part of a path would
// be the path of something else.
void copyBounded(const QString &text, wchar_t *out, int size)
{
    const std::wstring wide = text.toStdWString();
    const bool fits = wide.size() < static_cast<std::size_t>(size);
    if (fits)
        std::copy(wide.cbegin(), wide.cend(), out);
    out[fits ? wide.size() : 0] = L'\0';
}

QString translatorsFolder(const QStringList &lastParts = QStringList())
{
    QString base = Platform::environmentVariable("AllUsersProfile");
    if (base.size() >= FolderSize)
        base.clear(); // a longer value counts as not set
    const QStringList parts{base, Product::maker(), Product::folder(),
                            QStringLiteral("VORN_Translators")};
    return (parts + lastParts).join(QDir::separator());
}

QString serverFolder()
{
    return translatorsFolder({QStringLiteral("VORN_HLXServer")});
}

void print(const Platform::SettingsValue &value, const QString &keyPath)
{
    if (value.outcome == Platform::SettingsValue::NoKey) {
        printToStandardOutput(QStringLiteral("RegOpenKeyEx: %1: %2: %3")
                                  .arg(keyPath, QString::number(value.code), value.message));
    } else {
        printToStandardOutput(QStringLiteral("RegQueryValueEx: %1 %2")
                                  .arg(QString::number(value.code), value.message));
    }
}

} // namespace

void Registry::readRegistryValue(const wchar_t *valueName, wchar_t *out, const wchar_t *keyPath)
{
    if (!valueName || !out)
        return;
    out[0] = L'\0';
    const QString asked = toQString(keyPath);
    const QString key = asked.isNull() ? Product::settingsKey()
                                       : Formats::resolveKeyPath(asked, Platform::settingsSubkeys);
    const Platform::SettingsValue value = Platform::readSettingsValue(key, toQString(valueName));
    if (value.outcome == Platform::SettingsValue::Found)
        copyBounded(value.text, out, Platform::SettingsValueSize);
    else
        print(value, key);
}

bool Registry::readProductInstallationFolder(wchar_t *out, const wchar_t *keyPath)
{
    if (!out)
        return false;
    readRegistryValue(L"InstallationDirectory", out, keyPath);
    return out[0] != L'\0';
}

bool Registry::readProductInstallationFolder(char *out, const wchar_t *keyPath)
{
    if (!out)
        return false;
    out[0] = '\0';
    std::array<wchar_t, Platform::SettingsValueSize> wide{};
    if (!readProductInstallationFolder(wide.data(), keyPath))
        return false;
    const QByteArray narrow = toQString(wide.data()).toLatin1();
    if (narrow.size() >= NarrowSize)
        return false;
    std::copy_n(narrow.constData(), narrow.size() + 1, out);
    return true;
}

void Registry::readOrlithTranslatorsFolder(wchar_t *const out)
{
    if (out)
        copyBounded(translatorsFolder(), out, FolderSize);
}

void Registry::readOrlith_HLXServerFolder(wchar_t *const out)
{
    if (out)
        copyBounded(serverFolder(), out, FolderSize);
}

void Registry::getOrlith_HLXServer_exe(wchar_t *const out)
{
    if (!out)
        return;
    const QString program
        = QStringLiteral("%1/%2").arg(serverFolder(), QStringLiteral("VORN_HLXServer.exe"));
    copyBounded(QDir::toNativeSeparators(program), out, FolderSize);
}

QString Registry::toQString(const char *text)
{
    return QString::fromLatin1(text);
}

QString Registry::toQString(const wchar_t *text)
{
    return text ? QString::fromWCharArray(text) : QString();
}

} // namespace Vorn::Util
