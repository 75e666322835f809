#include <Utility/TextConversions.h>

#include <algorithm>
#include <memory>

namespace Vorn::Util {

QString toQString(const std::string &text)
{
    return QString::fromUtf8(text.c_str());
}

QString toQString(const std::wstring &text)
{
    return QString::fromStdWString(text);
}

std::string toStdString(const QString &text)
{
    return text.toUtf8().constData();
}

std::string toStdString(const std::wstring &text)
{
    return toStdString(toQString(text));
}

std::wstring toStdWString(const std::string &text)
{
    return toQString(text).toStdWString();
}

std::wstring toStdWString(const QString &text)
{
    return text.toStdWString();
}

QStringList toQStringList(const std::vector<std::string> &texts)
{
    QStringList list;
    list.reserve(static_cast<int>(texts.size()));
    for (const std::string &text : texts)
        list.append(toQString(text));
    return list;
}

std::vector<std::string> toStringVector(const QStringList &texts)
{
    std::vector<std::string> vector;
    vector.reserve(static_cast<std::size_t>(texts.size()));
    for (const QString &text : texts)
        vector.push_back(toStdString(text));
    return vector;
}

wchar_t *toWCharArray(const QString &text)
{
    // The wide text never has more units than the UTF-16 text.
    auto array = std::make_unique<wchar_t[]>(static_cast<std::size_t>(text.size()) + 1);
    text.toWCharArray(array.get());
    return array.release();
}

void toWCharArray(const char16_t *in, wchar_t *out)
{
    if (!in || !out)
        return;
    // QString::fromUtf16 would remove a byte-order mark.
    const QString text(reinterpret_cast<const QChar *>(in));
    out[text.toWCharArray(out)] = L'\0';
}

void toChar16Array(const QString &text, char16_t *out)
{
    if (!out)
        return;
    std::copy_n(reinterpret_cast<const char16_t *>(text.utf16()), text.size() + 1, out);
}

void toChar16Array(const wchar_t *in, char16_t *out)
{
    // QString::fromStdWString would remove a byte-order mark at the beginning, so put a blank
    // before it.
    if (in)
        toChar16Array(QString::fromStdWString(L' ' + std::wstring(in)).mid(1), out);
}

} // namespace Vorn::Util
