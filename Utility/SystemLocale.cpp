// The language of the user interface.

#include <Utility/Platform/Settings.h>
#include <Utility/Product_p.h>
#include <Utility/System.h>

namespace Vorn::Util {

namespace {

struct Language
{
    const char *name;
    int id;
};

constexpr Language Languages[]
    = {{"en-US", 1033}, {"zh-CN", 2052}, {"zh-TW", 1028}, {"de-DE", 1031}, {"fr-FR", 1036},
       {"ja-JP", 1041}, {"it-IT", 1040}, {"ko-KR", 1042}, {"ru-RU", 1049}};
constexpr int DefaultId = 1033;

} // namespace

QString System::getLocale()
{
    const QString locale
        = Platform::readSettingsText(Product::settingsKey(), QStringLiteral("Locale"));
    return locale.isEmpty() ? QStringLiteral("en-US") : locale;
}

int System::getLocaleID()
{
    const QString locale = getLocale().toUpper();
    for (const Language &language : Languages) {
        if (locale == QString::fromLatin1(language.name).toUpper())
            return language.id;
    }
    return DefaultId;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the exported interface takes a copy.
void System::setLocale(QString locale)
{
    writeToRegistry(QStringLiteral("Locale"), locale);
}

QStringList System::validLocales()
{
    QStringList names;
    for (const Language &language : Languages)
        names.append(QString::fromLatin1(language.name));
    return names;
}

void System::writeToRegistry(const QString &key, const QString &value)
{
    Platform::writeSettingsText(Product::settingsKey(), key, value);
}

} // namespace Vorn::Util
