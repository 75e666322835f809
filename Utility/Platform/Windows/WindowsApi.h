#pragma once

// The only place that includes <windows.h>.

#ifndef WINVER
#define WINVER 0x0601
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef UNICODE
#define UNICODE
#endif

// Before <windows.h>, which would bring in its older form.
#include <winsock2.h>

#include <windows.h>

#include <QtCore/QDir>
#include <QtCore/QString>

#include <vector>

namespace Vorn::Util::Platform {

/// A text in the form that the wide-character calls take; valid as long as \a text is unchanged.
inline const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

/// The absolute path in the form that is not limited to 260 characters. A path in that form, or in
/// that of devices, is unchanged.
inline QString longForm(const QString &path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (native.startsWith(QLatin1String("\\\\?\\")) || native.startsWith(QLatin1String("\\\\.\\")))
        return native;
    const DWORD size = GetFullPathNameW(wide(native), 0, nullptr, nullptr); // counts the null
    std::vector<wchar_t> buffer(size + 1);
    const DWORD length = GetFullPathNameW(wide(native), size, buffer.data(), nullptr);
    const QString full = QString::fromWCharArray(buffer.data(), static_cast<int>(length));
    return full.startsWith(QLatin1String("\\\\")) ? QStringLiteral("\\\\?\\UNC") + full.mid(1)
                                                  : QStringLiteral("\\\\?\\") + full;
}

/// The text of a buffer that need not be terminated.
template <std::size_t Size> QString textOf(const wchar_t (&buffer)[Size])
{
    std::size_t length = 0;
    while (length < Size && buffer[length] != L'\0')
        ++length;
    return QString::fromWCharArray(buffer, static_cast<int>(length));
}

} // namespace Vorn::Util::Platform
