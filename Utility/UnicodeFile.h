#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// Gives a file a plain path (7-bit ASCII) for the life of the object, for programs that can open
/// no other. A file whose path is plain stays where it is.
///
/// \code
/// {
///     UnicodeFile file(folder + "/Träger.dat");
///     if (file.isOk())
///         runSolver(file.asciiFilePath());
/// }                                               // moved back
/// \endcode
///
/// A name with other characters is replaced by a random one with the same suffix, a folder with
/// other characters by System::getTempDirPath(). The plain path can still hold other characters:
/// - in the suffix ("a.größe" becomes "s1ko.größe");
/// - in the folder, when System::getTempDirPath() fell back to a folder that holds some;
/// - in the current folder, when the path given is relative.
///
/// Check asciiFilePath() with isUnicode() where that matters.
///
/// \par Moving
/// A file at the destination is replaced in one step; a link there is replaced itself, never
/// written through. When a move fails, the file stays where it was. A file of that name in the
/// folder for temporary files is lost, whoever made it: two files with the same plain name in
/// different folders must not be handled at the same time.
/// Kept for compatibility: see "Replaced files" in docs/compatibility.md.
///
/// To another file system the file is copied. The copy is private to the user until it is complete,
/// and is removed when it cannot be completed. It has the permissions of the file, but not its
/// times or owner.
///
/// Nothing is moved when both paths lead to the same file already, through links or as two hard
/// links.
///
/// \par Links
/// A link at the file's own path is moved itself, not the file that it leads to: a relative one
/// leads elsewhere from the plain path, and nowhere as a rule. It comes back unless a program has
/// replaced it. To another file system the file that the link leads to is copied, and that copy
/// takes the place of the link when it is moved back. A link to nowhere is not moved.
///
/// \par Files after a kill
/// A process that is killed leaves the file at its plain path. In the middle of a move to another
/// file system it can leave the file at both paths, and a copy named "vorn-" and six more
/// characters in the folder that the file was to be moved to. At every moment one of the two paths
/// leads to the whole file.
///
/// A file that does not exist is not moved, which is no error. When a program creates it at the
/// plain path, it is moved to its own path like any other.
///
/// \par Copies
/// Every copy of the object moves the file back when it is destroyed: the first copy destroyed ends
/// the plain path.
/// Kept for compatibility: see "Copies of a UnicodeFile" in docs/compatibility.md.
///
/// \par Paths, threads, failures
/// Give an absolute path: a relative one counts from the current folder of each move. Construction
/// changes the current folder of the process for a moment when the name is replaced: do not
/// construct while another thread uses relative paths. Nothing throws: see isOk() and error().
class VORNUTILITY_EXPORT UnicodeFile
{
public:
    UnicodeFile(const QString &filePath);
    UnicodeFile(const UnicodeFile &other);
    UnicodeFile &operator=(const UnicodeFile &other);

    /// Moves the file back with renameToUnicode(). Moves nothing when no move to the plain path has
    /// succeeded: what lies there is not this file then.
    ~UnicodeFile();

    /// Moves the file from its own path to the plain path. True also when nothing lies at its own
    /// path or the paths are the same. On failure false: isOk() and error() tell why.
    bool renameToAscii();

    /// Moves the file from the plain path to its own, whatever came of earlier moves: a file at its
    /// own path is replaced. True also when nothing lies at the plain path or the paths are the
    /// same. On failure false: isOk() and error() tell why.
    bool renameToUnicode();

    /// Whether the file lies at one of its two paths.
    bool exists() const;

    /// False once something has failed; a later success does not change that.
    bool isOk() const;

    /// The text of the last failure, with the paths; empty while isOk().
    QString error() const;

    /// Whether the plain path differs from the file's own.
    bool isUnicode() const;

    /// Whether \a text holds a character outside 7-bit ASCII.
    static bool isUnicode(const QString &text);

    /// The plain name; empty when construction could not find one.
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

    // Whether name and folder hold characters outside 7-bit ASCII. Both false until a move to the
    // plain path has succeeded; the destructor tests this.
    bool nameIsUnicode_ = false;
    bool pathIsUnicode_ = false;
};

} // namespace Vorn::Util
