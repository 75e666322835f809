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
    Kind kind;   ///< for a link: the kind of its target, Other if it is broken
    bool isLink; ///< true also for a junction
};

/// A walk through a folder tree. It uses open folders instead of paths, so that it stays in the
/// tree even if another process replaces a folder by a link. One folder of the tree is the current
/// folder, at the beginning the top of the tree.
class FolderTree
{
public:
    virtual ~FolderTree() = default;

    /// Calls \a visit for each entry of the current folder except "." and "..", in the order of the
    /// system. \a visit may remove the entry. An entry whose name is not valid text is skipped.
    virtual void visitEntries(const std::function<void(const FolderEntry &)> &visit) = 0;

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

/// Opens the folder tree \a path; null if it cannot be read or is a link.
std::unique_ptr<FolderTree> openFolderTree(const QString &path);

} // namespace Vorn::Util::Platform
