#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// Gives a file a path of plain ASCII for the life of the object, for programs that cannot open
/// another. A file whose path is plain stays where it is.
///
/// \code
/// {
///     UnicodeFile file(folder + "/Träger.dat");
///     if (file.isOk())
///         runSolver(file.asciiFilePath());
/// }                                               // moved back
/// \endcode
///
/// A name is replaced by a unique one with the same suffix, a folder by System::getTempDirPath().
/// A file that stands where this one is to go is removed. A file that does not exist yet is moved
/// back when it has been created under its plain path meanwhile. A file that could not be moved
/// stays where it is.
///
/// Every copy moves the file back when it is destroyed, so the first one ends the plain name.
///
/// Give an absolute path: a relative one counts from the current folder of each move.
///
/// Construction changes the current folder of the process for a moment: construct from one
/// thread. Nothing throws: see isOk() and error().
class VORNUTILITY_EXPORT UnicodeFile
{
public:
    UnicodeFile(const QString &filePath);
    UnicodeFile(const UnicodeFile &other);
    UnicodeFile &operator=(const UnicodeFile &other);

    /// Moves the file back.
    ~UnicodeFile();

    /// Move the file; true also when there is nothing to move.
    bool renameToAscii();
    bool renameToUnicode();

    /// Whether the file lies at one of its two paths.
    bool exists() const;

    /// False once something has failed; error() is the text of the last failure.
    bool isOk() const;
    QString error() const;

    /// Whether the plain path differs from the file's own.
    bool isUnicode() const;

    /// Whether \a text holds a character outside 7-bit ASCII.
    static bool isUnicode(const QString &text);

    QString asciiName() const;
    QString asciiPath() const;
    QString unicodeName() const;
    QString unicodePath() const;

    /// Folder and name, joined with "/".
    QString asciiFilePath() const;
    QString unicodeFilePath() const;

private:
    bool chooseAsciiName();
    bool rename(const QString &from, const QString &to);
    void setError(const QString &text);

    bool ok_ = true;
    QString error_;
    QString unicodeName_;
    QString unicodePath_;
    QString asciiName_;
    QString asciiPath_;
    bool nameIsUnicode_ = false;
    bool pathIsUnicode_ = false;
    bool stayed_ = false; // the latest move to the plain path failed
};

} // namespace Vorn::Util
