#include <Utility/Platform/Settings.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QSettings>

namespace Vorn::Util::Platform {

namespace {

static_assert(KEY_READ == 0x20019);

constexpr QLatin1String LocalMachine("HKEY_LOCAL_MACHINE\\");

class OpenKey
{
public:
    explicit OpenKey(const QString &keyPath)
        : code_(RegOpenKeyExW(HKEY_LOCAL_MACHINE, wide(keyPath), 0, KEY_READ, &key_))
    {
    }
    ~OpenKey()
    {
        if (isOpen())
            RegCloseKey(key_);
    }
    OpenKey(const OpenKey &) = delete;
    OpenKey &operator=(const OpenKey &) = delete;

    bool isOpen() const { return code_ == ERROR_SUCCESS; }
    LONG code() const { return code_; }
    HKEY get() const { return key_; }

private:
    HKEY key_ = nullptr;
    LONG code_;
};

QString messageOf(DWORD code)
{
    wchar_t message[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                   message, 512, nullptr);
    return textOf(message);
}

SettingsValue noKey(LONG code)
{
    return {SettingsValue::NoKey, QString(), static_cast<int>(code),
            messageOf(static_cast<DWORD>(code))};
}

} // namespace

SettingsValue readSettingsValue(const QString &keyPath, const QString &name)
{
    if (keyPath.size() >= SettingsKeyPathSize)
        return noKey(ERROR_FILENAME_EXCED_RANGE);
    const OpenKey key(keyPath);
    if (!key.isOpen())
        return noKey(key.code());
    wchar_t value[SettingsValueSize] = {};
    static_assert(sizeof value == 2048);
    DWORD size = sizeof value;
    LONG code = RegQueryValueExW(key.get(), wide(name), nullptr, nullptr,
                                 reinterpret_cast<BYTE *>(value), &size);
    const DWORD lastError = GetLastError();
    const QString text = textOf(value);
    if (code == ERROR_SUCCESS && text.size() < SettingsValueSize)
        return {SettingsValue::Found, text, 0, QString()};
    if (code == ERROR_SUCCESS)
        code = ERROR_MORE_DATA; // the text fills the buffer: no space for the terminating null
    // The code is the result of the call, but the message is that of GetLastError(), which can be
    // another error. The caller prints both.
    // Kept for compatibility: see "Message of a missing value" in docs/compatibility.md.
    return {SettingsValue::NoValue, QString(), static_cast<int>(code), messageOf(lastError)};
}

QString readSettingsText(const QString &keyPath, const QString &name)
{
    return QSettings(LocalMachine + keyPath, QSettings::NativeFormat).value(name).toString();
}

void writeSettingsText(const QString &keyPath, const QString &name, const QString &text)
{
    QSettings settings(LocalMachine + keyPath, QSettings::NativeFormat);
    // Otherwise QSettings would keep the value in memory, and this process would read a value that
    // is not stored.
    if (settings.isWritable())
        settings.setValue(name, text);
}

QStringList settingsSubkeys(const QString &keyPath)
{
    QStringList names;
    const OpenKey key(keyPath);
    DWORD count = 0;
    if (!key.isOpen()
        || RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr, nullptr)
            != ERROR_SUCCESS)
        return names;
    for (DWORD index = 0; index < count; ++index) {
        wchar_t name[SettingsKeyPathSize] = {};
        DWORD length = SettingsKeyPathSize;
        if (RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr)
            == ERROR_SUCCESS)
            names.append(textOf(name));
    }
    return names;
}

} // namespace Vorn::Util::Platform
