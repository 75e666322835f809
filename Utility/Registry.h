#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// Reads the product's machine-wide settings and builds the paths of its translator folders, into
/// buffers of the caller, so that programs without Qt strings can use it too. Static members only.
///
/// \code
/// wchar_t folder[1024];
/// if (Registry::readProductInstallationFolder(folder, nullptr))
///     use(folder);
/// \endcode
///
/// The buffer of a value holds at least 1024 wide characters, that of a folder at least 512, each
/// with its terminating null. Nothing is cut: a text that does not fit leaves the buffer empty.
///
/// A failure leaves an empty text in the buffer; nothing throws. A key that cannot be opened and a
/// value that cannot be read or does not fit print one line to the standard output, with the
/// system's code and message. A value that is set and empty gives an empty text, too, but prints
/// nothing.
///
/// A null pointer for a buffer or for the name of a value is allowed: the function does nothing,
/// and one with a result returns false. A null pointer for a key path is the product's key.
///
/// Any thread may call these functions: they keep nothing.
///
/// The settings are the registry below HKEY_LOCAL_MACHINE, on Linux a file (docs/linux.md).
class VORNUTILITY_EXPORT Registry
{
public:
    explicit Registry() = delete; // explicit: Registry{} does not compile either

    /// Reads the value \a valueName of the key \a keyPath ("SOFTWARE\\MAKER\\PRODUCT\\24.x") below
    /// the machine-wide settings, or of the product's key when \a keyPath is null. \a out is the
    /// value up to its first null character, whatever its type.
    ///
    /// A last part such as "24.x" stands for the greatest release of that number there is. Any
    /// other last part is joined to the part before it without a separator.
    /// Kept for compatibility: see "Key path without its last separator" in docs/compatibility.md.
    static void readRegistryValue(const wchar_t *valueName, wchar_t *out, const wchar_t *keyPath);

    /// Reads "InstallationDirectory" as readRegistryValue() does. False, with an empty text, when
    /// it is missing, empty or does not fit.
    static bool readProductInstallationFolder(wchar_t *out, const wchar_t *keyPath);

    /// The same as Latin-1 text, into 512 bytes; every other character becomes "?". False, with an
    /// empty text, also when the text has more than 511 characters.
    static bool readProductInstallationFolder(char *out, const wchar_t *keyPath);

    /// The translators' folder below the folder that the environment variable AllUsersProfile
    /// names, the translation server's folder in it, and the server's program file. Nothing is
    /// created or looked for. Without the variable, or when it has more than 511 characters, the
    /// texts begin with a separator.
    static void readOrlithTranslatorsFolder(wchar_t *const out);
    static void readOrlith_HLXServerFolder(wchar_t *const out);
    static void getOrlith_HLXServer_exe(wchar_t *const out);

private:
    static QString toQString(const char *text);
    static QString toQString(const wchar_t *text);
};

} // namespace Vorn::Util
