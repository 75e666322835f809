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
    Kind kind;   ///< of a link: of what it leads to; Other when it leads nowhere
    bool isLink; ///< a junction is a link, too
};

/// A folder tree that is walked by held folders, not by paths: the walk stays in the tree when
/// somebody exchanges one of its folders for a link. At each moment one folder of the tree is the
/// current one, at first its top.
class FolderTree
{
public:
    virtual ~FolderTree() = default;

    /// Hands the entries of the current folder to \a visit, in the system's order, without "." and
    /// "..". \a visit may remove the entry. An entry whose name is not valid text is left out.
    virtual void visitEntries(const std::function<void(const FolderEntry &)> &visit) = 0;

    /// Makes the folder \a name in the current one the current folder. False when it cannot be
    /// read or is no longer a folder, but for instance a link.
    virtual bool enter(const QString &name) = 0;

    /// Makes the folder above the current one the current folder. False when that cannot be found
    /// again; the walk cannot go on then.
    virtual bool leave() = 0;

    /// Removes the file or link \a name from the current folder; never what a link leads to.
    virtual bool removeFile(const QString &name) = 0;

    /// Removes the empty folder \a name from the current folder.
    virtual bool removeFolder(const QString &name) = 0;
};

/// Opens the tree below the folder \a path; null when that cannot be read or is a link.
std::unique_ptr<FolderTree> openFolderTree(const QString &path);

} // namespace Vorn::Util::Platform
