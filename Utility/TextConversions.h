#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>
#include <vector>

/// \file
/// Conversions between QString and the standard library's text, for callers that are not built
/// on Qt.
///
/// Narrow text is UTF-8, never the local code page, and ends at its first NUL byte in both
/// directions. Wide text is the platform's form: UTF-16 where `wchar_t` has 16 bits, UTF-32 where
/// it has 32. All functions are stateless and may be called from any thread.
///
/// Byte-order marks: one byte-order mark (U+FEFF) at the beginning of a `std::string` or
/// `std::wstring` is left out. A QString that begins with U+FEFF is written with it. The functions
/// that take or fill an array keep it in both directions.
///
/// \code
/// std::string name = Vorn::Util::toStdString(QStringLiteral("Träger.dat"));
/// QString again = Vorn::Util::toQString(name);
/// \endcode

namespace Vorn::Util {

VORNUTILITY_EXPORT QString toQString(const std::string &text);
VORNUTILITY_EXPORT QString toQString(const std::wstring &text);

VORNUTILITY_EXPORT std::string toStdString(const QString &text);
VORNUTILITY_EXPORT std::string toStdString(const std::wstring &text);

VORNUTILITY_EXPORT std::wstring toStdWString(const std::string &text);
VORNUTILITY_EXPORT std::wstring toStdWString(const QString &text);

VORNUTILITY_EXPORT QStringList toQStringList(const std::vector<std::string> &texts);
VORNUTILITY_EXPORT std::vector<std::string> toStringVector(const QStringList &texts);

/// Returns a new zero-terminated array. The caller owns it and frees it with `delete[]`.
VORNUTILITY_EXPORT wchar_t *toWCharArray(const QString &text);

/// Writes the wide form of \a in and a terminating 0 to \a out, which must have room for the
/// length plus one; there is no other bound. A null pointer on either side writes nothing.
VORNUTILITY_EXPORT void toWCharArray(const char16_t *in, wchar_t *out);

/// Writes the UTF-16 code units of \a text and a terminating 0 to \a out, which must have room
/// for the length plus one; there is no other bound. A null \a out writes nothing.
VORNUTILITY_EXPORT void toChar16Array(const QString &text, char16_t *out);

/// Writes the UTF-16 code units of \a in and a terminating 0 to \a out, which must have room for
/// the length (in UTF-16 code units) plus one; there is no other bound. A null pointer on either
/// side writes nothing.
VORNUTILITY_EXPORT void toChar16Array(const wchar_t *in, char16_t *out);

} // namespace Vorn::Util
