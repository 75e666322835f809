#pragma once

#include <QtCore/QString>

#include <functional>
#include <memory>

namespace Vorn::Util::Platform {

/// An entry of a folder.
struct FolderEntry
{
    enum Kind {
        File,
        Folder,
        Other ///< a device, pipe or socket
    };

    QString name;
    Kind kind = Other;     ///< for a link: the kind of its target, Other if it is broken
    bool isLink = false;   ///< true also for a junction
    bool isHidden = false; ///< by an attribute or, on Linux, by a dot at the beginning of the name
    qint64 size = 0;       ///< bytes of a file; set only in a walk for TreeAccess::Measure
};

/// What a walk through a folder tree is for.
enum class TreeAccess {
    Measure, ///< to read sizes; the top may be a link to a folder
    Remove   ///< to remove entries; the top must not be a link
};

/// A walk through a folder tree. One folder of the tree is the current folder, at the beginning the
/// top of the tree. A walk that removes stays in the tree even if another process replaces a folder
/// by a link. The memory that a walk needs does not depend on the number of entries.
class FolderTree
{
public:
    virtual ~FolderTree() = default;

    /// Calls \a visit for each entry of the current folder except "." and "..", in the order of the
    /// system. \a visit may remove the entry. An entry whose name is not valid text is skipped.
    /// Call this once after a folder has been opened or entered.
    virtual void visitEntries(const std::function<void(const FolderEntry &)> &visit) = 0;

    /// Calls \a visit for the links in the current folder whose kind depends on the existence of
    /// their target. Call this before visitEntries(). \a visit must not remove the entry.
    virtual void visitLinks(const std::function<void(const FolderEntry &)> &visit) = 0;

    /// Makes the folder \a name in the current folder the current folder. False if it cannot be
    /// read or is not a folder any more, but for example a link.
    virtual bool enter(const QString &name) = 0;

    /// Makes the parent folder the current folder. False if it cannot be found again; then the walk
    /// must end.
    virtual bool leave() = 0;

    /// Removes the file or link \a name from the current folder. The target of a link is kept.
    virtual bool removeFile(const QString &name) = 0;

    /// Removes the empty folder \a name from the current folder.
    virtual bool removeFolder(const QString &name) = 0;
};

/// Opens the folder tree \a path; null if it cannot be read, or is a link that \a access excludes.
std::unique_ptr<FolderTree> openFolderTree(const QString &path, TreeAccess access);

} // namespace Vorn::Util::Platform
