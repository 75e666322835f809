#pragma once

// The only file that includes <windows.h>. Where a constant of Windows is part of the documented
// behaviour, a static_assert beside its use states its value.

#ifndef WINVER
#define WINVER 0x0601 // Windows 7
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

// Must come before <windows.h>, which would include the older <winsock.h>.
#include <winsock2.h>

#include <windows.h>

#include <QtCore/QDir>
#include <QtCore/QString>

#include <vector>

namespace Vorn::Util::Platform {

static_assert(MAX_PATH == 260);

/// The text as a pointer for wide-character functions. Valid as long as \a text is not changed.
inline const wchar_t *wide(const QString &text)
{
    return reinterpret_cast<const wchar_t *>(text.utf16());
}

/// The absolute path in the form "\\?\...", which is not limited to 260 characters. A path that
/// already has this form, or is a device path ("\\.\..."), is returned unchanged.
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

/// The text in a buffer, up to its first null or to the end of the buffer.
template <std::size_t Size> QString textOf(const wchar_t (&buffer)[Size])
{
    std::size_t length = 0;
    while (length < Size && buffer[length] != L'\0')
        ++length;
    return QString::fromWCharArray(buffer, static_cast<int>(length));
}

} // namespace Vorn::Util::Platform
