#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// \ingroup system
/// Reads the product's machine-wide settings and builds the paths of its translator folders. The
/// results are written to buffers of the caller, so that programs without Qt strings can use the
/// class. Static members only.
///
/// \snippet docs/samples/system.cpp registry
///
/// The settings are in the registry below HKEY_LOCAL_MACHINE, on Linux in a file (docs/linux.md).
///
/// \par Buffers
/// The buffer for a value must have space for 1024 wide characters, the buffer for a folder for
/// 512, including the terminating null. A text that does not fit is not truncated: the buffer then
/// contains an empty text.
///
/// \par Failures
/// After a failure the buffer contains an empty text. No function throws. If the key cannot be
/// opened, or the value cannot be read or does not fit, one line with the error code and message of
/// the system is printed to the standard output. A value that exists but is empty prints nothing.
///
/// If the buffer or the name of the value is a null pointer, a function does nothing or returns
/// false.
///
/// Any thread may call these functions. They have no state.
class VORNUTILITY_EXPORT Registry
{
public:
    /// There are no objects of this class.
    explicit Registry() = delete; // explicit: Registry{} does not compile either

    /// Reads the value \a valueName of the key \a keyPath. If \a keyPath is null, the key of the
    /// product is read. The value is read as text up to its first null character, whatever its
    /// type.
    ///
    /// The last part of \a keyPath has a special meaning:
    /// - A release with ".x" means the greatest release with this major number for which there is a
    ///   key. With the keys 24.0, 24.1 and 24.10, "SOFTWARE\\MAKER\\PRODUCT\\24.x" means
    ///   "SOFTWARE\\MAKER\\PRODUCT\\24.10".
    /// - Any other last part is appended without its separator: "SOFTWARE\\MAKER\\PRODUCT\\24.0"
    ///   means "SOFTWARE\\MAKER\\PRODUCT24.0".
    ///
    /// Kept for compatibility: see "Key path without its last separator" in docs/compatibility.md.
    static void readRegistryValue(const wchar_t *valueName, wchar_t *out, const wchar_t *keyPath);

    /// Reads the value "InstallationDirectory" with readRegistryValue(). Returns false if the
    /// result is empty.
    static bool readProductInstallationFolder(wchar_t *out, const wchar_t *keyPath);

    /// Like the function above, but writes Latin-1 text to a buffer of 512 bytes. Other characters
    /// become "?". A text of more than 511 characters does not fit: returns false.
    static bool readProductInstallationFolder(char *out, const wchar_t *keyPath);

    /// The folder of the product's translator programs, "VORN_Translators". It is below the folder
    /// in the environment variable AllUsersProfile. If the variable is not set or has more than 511
    /// characters, the path begins with a separator. The folder is not created and need not exist.
    static void readOrlithTranslatorsFolder(wchar_t *const out);

    /// The folder "VORN_HLXServer" in the folder of the translators.
    static void readOrlith_HLXServerFolder(wchar_t *const out);

    /// The program "VORN_HLXServer.exe" in that folder.
    static void getOrlith_HLXServer_exe(wchar_t *const out);

private:
    static QString toQString(const char *text);
    static QString toQString(const wchar_t *text);
};

} // namespace Vorn::Util
