// The input is a word that is quoted for a shell.

#include "Fuzz.h"

#include <Utility/Formats/ShellWord_p.h>

#include <algorithm>

using namespace Vorn::Util::Formats;

namespace {

// What a shell makes of a word: text in single quotes, and quotes after a backslash.
QByteArray unquoted(const QByteArray &word)
{
    QByteArray bytes;
    for (int at = 0; at < word.size();) {
        if (word.at(at) == '\'') {
            const int end = word.indexOf('\'', at + 1);
            CHECK(end > at);
            bytes += word.mid(at + 1, end - at - 1);
            at = end + 1;
        } else {
            CHECK(word.mid(at, 2) == "\\'");
            bytes += '\'';
            at += 2;
        }
    }
    return bytes;
}

// What printf prints for bytes written as octal escapes.
QByteArray printed(const QByteArray &spelled)
{
    constexpr int Length = 4; // "\101"
    CHECK(spelled.size() % Length == 0);
    QByteArray bytes;
    for (int at = 0; at < spelled.size(); at += Length) {
        CHECK(spelled.at(at) == '\\');
        bool isOctal = false;
        bytes += static_cast<char>(spelled.mid(at + 1, Length - 1).toInt(&isOctal, 8));
        CHECK(isOctal);
    }
    return bytes;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    const QString text = shellWord(bytes);
    const QByteArray word = text.toLatin1();
    CHECK(std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character >= QLatin1Char(' ') && character <= QLatin1Char('~');
    }));
    const QByteArray before = "\"$(printf '";
    const QByteArray after = "')\"";
    if (word.startsWith('"')) {
        CHECK(word.startsWith(before) && word.endsWith(after));
        CHECK(printed(word.mid(before.size(), word.size() - before.size() - after.size()))
              == bytes);
    } else {
        CHECK(!word.isEmpty() && unquoted(word) == bytes);
    }
    return 0;
}
