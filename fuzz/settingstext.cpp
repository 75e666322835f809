// The input is the content of a settings file.

#include "Fuzz.h"

#include <Utility/Formats/SettingsText_p.h>

using namespace Vorn::Util::Formats;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray content = bytesOf(data, size);
    const QMap<QString, QString> before = settingsTexts(content);
    for (auto text = before.cbegin(); text != before.cend(); ++text)
        CHECK(text->size() <= content.size());

    const QString group = QStringLiteral("24.0");
    const QString name = QStringLiteral("Locale");
    const QString value = QStringLiteral("a,b \\\"\n@");
    const QByteArray after = withSettingsText(content, group, name, value);
    QMap<QString, QString> expected = before;
    expected.insert(group + QLatin1Char('/') + name, value);
    // After an open quotation mark, a backslash or a continued line, the added value can become
    // part of the value before it. Such a file is not written.
    const bool isOpen = content.contains('"') || content.endsWith('\\') || content.contains("\\\r");
    CHECK(isOpen || settingsTexts(after) == expected);
    return 0;
}
