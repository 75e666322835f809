// The input is converted as narrow text (UTF-8) and as wide text (16-bit units).

#include "Fuzz.h"

#include <Utility/TextConversions.h>

#include <cstring>
#include <memory>
#include <string>

using namespace Vorn::Util;

namespace {

void checkNarrow(const std::string &text)
{
    const QString decoded = toQString(text);
    const std::string encoded = toStdString(decoded);
    CHECK(toQString(encoded) == decoded || decoded.startsWith(QChar(QChar::ByteOrderMark)));
    CHECK(toQString(toStdWString(text)) == decoded
          || decoded.startsWith(QChar(QChar::ByteOrderMark)));
    CHECK(toStdString(toStdWString(decoded)).size() <= encoded.size());
    CHECK(toStringVector(toQStringList({text, std::string()}))
          == (std::vector<std::string>{encoded, std::string()}));
    // Valid UTF-8 without a byte order mark is unchanged by both conversions, up to its first NUL.
    const std::string terminated = text.c_str();
    const QByteArray bytes(terminated.data(), static_cast<int>(terminated.size()));
    if (textOf(bytes).toUtf8() == bytes)
        CHECK(encoded == terminated);
}

// The arrays have exactly the documented size, so that the sanitizer finds every write beyond it.
void checkWide(const std::u16string &text)
{
    const QString whole = QString::fromUtf16(text.data(), static_cast<int>(text.size()));
    const std::unique_ptr<char16_t[]> units(
        new char16_t[static_cast<std::size_t>(whole.size()) + 1]);
    toChar16Array(whole, units.get());
    CHECK(std::memcmp(units.get(), whole.utf16(),
                      (static_cast<std::size_t>(whole.size()) + 1) * sizeof(char16_t))
          == 0);

    const std::unique_ptr<wchar_t[]> wide(toWCharArray(whole));
    const std::size_t length = std::wcslen(wide.get());
    CHECK(length <= static_cast<std::size_t>(whole.size()));

    const std::u16string terminated = text.c_str();
    const std::unique_ptr<wchar_t[]> out(new wchar_t[terminated.size() + 1]);
    toWCharArray(terminated.c_str(), out.get());
    const std::wstring converted = out.get();

    std::size_t needed = 1;
    for (const wchar_t character : converted)
        needed += static_cast<unsigned long>(character) > 0xffff ? 2 : 1;
    const std::unique_ptr<char16_t[]> back(new char16_t[needed]);
    toChar16Array(converted.c_str(), back.get());
    const QString text16(reinterpret_cast<const QChar *>(terminated.c_str()));
    if (text16.isValidUtf16()) // an unpaired surrogate does not survive the conversion to 32 bits
        CHECK(terminated == back.get());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    checkNarrow(std::string(reinterpret_cast<const char *>(data), size));
    std::u16string wide(size / sizeof(char16_t), u'\0');
    std::memcpy(&wide[0], data, wide.size() * sizeof(char16_t));
    checkWide(wide);
    return 0;
}
