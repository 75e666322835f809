#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>
#include <vector>

/// \file
/// Conversions between QString and the strings of the standard library, for callers that do not use
/// Qt.
///
/// Narrow text is UTF-8, never the local code page. It ends at its first null byte, in the argument
/// and in the result. Wide text is UTF-16 if `wchar_t` has 16 bits (Windows), and UTF-32 if it has
/// 32 bits (Linux). The functions have no state; any thread may call them.
///
/// Byte-order marks: a byte-order mark (U+FEFF) at the beginning of a `std::string` or
/// `std::wstring` is removed. At the beginning of a QString it is kept. The functions with an array
/// always keep it.
///
/// \snippet docs/samples/values.cpp text

namespace Vorn::Util {

/// \addtogroup values
/// \{

/// Reads UTF-8 up to the first null byte.
VORNUTILITY_EXPORT QString toQString(const std::string &text);

/// Reads wide text, also after a null character.
VORNUTILITY_EXPORT QString toQString(const std::wstring &text);

/// Returns UTF-8, which ends at the first null byte.
VORNUTILITY_EXPORT std::string toStdString(const QString &text);

/// Returns UTF-8, which ends at the first null byte.
VORNUTILITY_EXPORT std::string toStdString(const std::wstring &text);

/// Reads UTF-8 up to the first null byte and returns wide text.
VORNUTILITY_EXPORT std::wstring toStdWString(const std::string &text);

/// Returns wide text, also after a null character.
VORNUTILITY_EXPORT std::wstring toStdWString(const QString &text);

/// Converts each element with toQString() and keeps the order.
VORNUTILITY_EXPORT QStringList toQStringList(const std::vector<std::string> &texts);

/// Converts each element with toStdString() and keeps the order.
VORNUTILITY_EXPORT std::vector<std::string> toStringVector(const QStringList &texts);

/// Returns a new null-terminated array. The caller owns it and frees it with `delete[]`.
VORNUTILITY_EXPORT wchar_t *toWCharArray(const QString &text);

/// Writes \a in as wide text with a terminating null to \a out. The size of \a out is not checked:
/// it must be at least the length of \a in plus one. If a pointer is null, nothing is written.
VORNUTILITY_EXPORT void toWCharArray(const char16_t *in, wchar_t *out);

/// Writes \a text as UTF-16 with a terminating null to \a out. The size of \a out is not checked:
/// it must be at least the length of \a text plus one. If \a out is null, nothing is written.
VORNUTILITY_EXPORT void toChar16Array(const QString &text, char16_t *out);

/// Writes \a in as UTF-16 with a terminating null to \a out. The size of \a out is not checked: it
/// must be at least the length of the UTF-16 text plus one. If a pointer is null, nothing is
/// written.
VORNUTILITY_EXPORT void toChar16Array(const wchar_t *in, char16_t *out);

/// \}

} // namespace Vorn::Util
