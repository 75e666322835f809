#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// Reads the product's machine-wide settings and builds the paths of its translators, into
/// buffers of the caller, so that programs without Qt strings can use it too. Static only.
///
/// \code
/// wchar_t folder[1024];
/// if (Registry::readProductInstallationFolder(folder, nullptr))
///     use(folder);
/// \endcode
///
/// The buffer of a value holds at least 1024 wide characters, that of a folder at least 512.
/// What does not fit counts as not there. No text is an empty text, never an exception.
///
/// Settings that cannot be read print one line to the standard output. Without state of its own:
/// for any thread.
class VORNUTILITY_EXPORT Registry
{
public:
    explicit Registry() = delete; // explicit: Registry{} does not compile either

    /// Reads a text of the product's key, or of \a keyPath below the machine-wide settings. A
    /// last part such as "24.x" of \a keyPath stands for its greatest release; any other last
    /// part is joined to the part before it without a separator.
    static void readRegistryValue(const wchar_t *valueName, wchar_t *out, const wchar_t *keyPath);

    /// Reads "InstallationDirectory"; true when there is one.
    static bool readProductInstallationFolder(wchar_t *out, const wchar_t *keyPath);

    /// The same as Latin-1 text, into 512 bytes; other characters become "?". False, too, for a
    /// text that does not fit.
    static bool readProductInstallationFolder(char *out, const wchar_t *keyPath);

    /// The translators' folder below the folder that the variable AllUsersProfile names, the
    /// translation server's folder in it and the server's program file, into 512 characters each.
    /// Without the variable they begin with a separator; empty when they do not fit.
    static void readOrlithTranslatorsFolder(wchar_t *const out);
    static void readOrlith_HLXServerFolder(wchar_t *const out);
    static void getOrlith_HLXServer_exe(wchar_t *const out);

private:
    static QString toQString(const char *text);
    static QString toQString(const wchar_t *text);
};

} // namespace Vorn::Util
