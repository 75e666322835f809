#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// \ingroup system
/// Moves a file to a path in 7-bit ASCII, for programs that cannot open other paths, and moves it
/// back in the destructor. A file whose path is already ASCII is not moved.
///
/// \snippet docs/samples/system.cpp unicode file
///
/// The original path of the file is called its Unicode path, the other its ASCII path. For the
/// ASCII path a name with other characters is replaced by a random name with the same suffix, and a
/// folder with other characters by System::getTempDirPath(). The ASCII path can still contain other
/// characters:
/// - in the suffix ("a.größe" becomes "s1ko.größe");
/// - in the folder, if also the path of System::getTempDirPath() contains some;
/// - in the current folder, if a relative path was given.
///
/// To be sure, check asciiFilePath() with isUnicode().
///
/// \par Moving
/// If there is a file at the destination, it is replaced in one step, even if it belongs to another
/// program. So do not use two objects at the same time for files that have the same ASCII name in
/// different folders: both would use the same path in the folder for temporary files. A link at
/// the destination is replaced itself, not its target. If a move fails, the file is not moved.
/// Kept for compatibility: see "Replaced files" in docs/compatibility.md.
///
/// If the destination is on another file system, the file is copied. Until the copy is complete,
/// only the user can read it. The copy has the permissions of the file, but not its times and
/// owner. If it cannot be completed, it is removed.
///
/// Nothing is moved if both paths already refer to the same file, through links or hard links.
///
/// A file that does not exist is not moved; this is not an error. If a program creates it at the
/// ASCII path, it is moved to the Unicode path.
///
/// \par Links
/// If the file is a symbolic link, the link is moved, not its target. From the ASCII path a
/// relative link points to another place, usually to nothing. The link is moved back unless a
/// program has replaced it. If the destination is on another file system, the target is copied, and
/// the copy later replaces the link. A broken link is not moved to the ASCII path.
///
/// \par Killed processes
/// If the process is killed, the file stays at its ASCII path. During a move to another file system
/// the file can also be at both paths, and the destination folder can contain a copy whose name
/// is "vorn-" and six characters. The complete file is always at one of the two paths.
///
/// \par Copied objects
/// Each copy of an object moves the file back when it is destroyed, so the first one ends the use
/// of the ASCII path.
/// Kept for compatibility: see "Copies of a UnicodeFile" in docs/compatibility.md.
///
/// \par Limits
/// Give an absolute path: a relative path is relative to the current folder at the time of each
/// move. If the name must be replaced, the constructor changes the current folder of the process
/// for a short time: do not construct an object while another thread uses relative paths. Nothing
/// throws; see isOk() and error().
class VORNUTILITY_EXPORT UnicodeFile
{
public:
    /// Moves the file \a filePath to its ASCII path with renameToAscii().
    UnicodeFile(const QString &filePath);

    /// Copies the paths and the state. Moves no file.
    /// Kept for compatibility: see "Copies of a UnicodeFile" in docs/compatibility.md.
    UnicodeFile(const UnicodeFile &other);

    /// Copies the paths and the state. Moves no file: the file that this object stood for is not
    /// moved back.
    UnicodeFile &operator=(const UnicodeFile &other);

    /// Moves the file back with renameToUnicode(). If no move to the ASCII path has succeeded, does
    /// nothing: a file at the ASCII path is then another file.
    ~UnicodeFile();

    /// Moves the file from the Unicode path to the ASCII path. Returns true also if there is no
    /// file or the paths are equal. After a failure see error().
    bool renameToAscii();

    /// Moves the file from the ASCII path to the Unicode path, even if renameToAscii() has failed.
    /// A file at the Unicode path is replaced. Returns true also if there is no file at the ASCII
    /// path or the paths are equal. After a failure see error().
    bool renameToUnicode();

    /// Whether there is a file at one of the two paths.
    bool exists() const;

    /// False after a failure, also if a later move succeeds.
    bool isOk() const;

    /// The text of the last failure, with the paths; empty while isOk() is true.
    QString error() const;

    /// Whether the ASCII path differs from the Unicode path.
    bool isUnicode() const;

    /// Whether \a text contains a character outside 7-bit ASCII.
    static bool isUnicode(const QString &text);

    /// The file name in the ASCII path; empty if the constructor could not find one.
    QString asciiName() const;

    /// The folder of the ASCII path.
    QString asciiPath() const;

    /// The file name in the Unicode path.
    QString unicodeName() const;

    /// The folder of the Unicode path.
    QString unicodePath() const;

    /// asciiPath() and asciiName(), joined with "/". Empty parts are not left out.
    QString asciiFilePath() const;

    /// unicodePath() and unicodeName(), joined with "/".
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

    // Whether the Unicode name and folder contain characters outside 7-bit ASCII. They are set when
    // a move to the ASCII path has succeeded. If both are false, the destructor moves nothing.
    bool nameIsUnicode_ = false;
    bool pathIsUnicode_ = false;
};

} // namespace Vorn::Util
