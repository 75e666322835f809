#include <Utility/Platform/FolderTree.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Vorn::Util::Platform {

namespace {

struct DirectoryCloser
{
    void operator()(DIR *directory) const { ::closedir(directory); }
};

using Directory = std::unique_ptr<DIR, DirectoryCloser>;

// Opens a folder. Fails if the last part of name is a link.
Directory openDirectory(int above, const char *name)
{
    const int descriptor = ::openat(above, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    Directory directory(::fdopendir(descriptor));
    if (!directory)
        ::close(descriptor);
    return directory;
}

// A folder on the way from the top of the tree to the current folder. If many folders are open, it
// is closed. Then device and inode number are used to check that the same folder is opened again.
struct Level
{
    Directory directory; // null while it is closed
    dev_t device = 0;
    ino_t inode = 0;

    int descriptor() const { return ::dirfd(directory.get()); }

    void close()
    {
        struct stat status = {};
        if (directory && ::fstat(descriptor(), &status) == 0) {
            device = status.st_dev;
            inode = status.st_ino;
        }
        directory.reset();
    }

    void reopenFrom(int below)
    {
        Directory found = openDirectory(below, "..");
        struct stat status = {};
        if (found && ::fstat(::dirfd(found.get()), &status) == 0 && status.st_dev == device
            && status.st_ino == inode)
            directory = std::move(found);
    }
};

FolderEntry::Kind kindOf(const struct stat &status)
{
    if (S_ISREG(status.st_mode))
        return FolderEntry::File;
    return S_ISDIR(status.st_mode) ? FolderEntry::Folder : FolderEntry::Other;
}

// Sets kind and isLink. Calls fstatat() only if the entry itself does not contain the kind.
void findKind(int folder, const dirent &found, FolderEntry &entry)
{
    struct stat status = {};
    entry.isLink = found.d_type == DT_LNK
        || (found.d_type == DT_UNKNOWN
            && ::fstatat(folder, found.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISLNK(status.st_mode));
    if (found.d_type == DT_REG)
        entry.kind = FolderEntry::File;
    else if (found.d_type == DT_DIR)
        entry.kind = FolderEntry::Folder;
    else if ((entry.isLink || found.d_type == DT_UNKNOWN)
             && ::fstatat(folder, found.d_name, &status, 0) == 0)
        entry.kind = kindOf(status);
    else
        entry.kind = FolderEntry::Other;
}

class LinuxFolderTree : public FolderTree
{
public:
    explicit LinuxFolderTree(Directory top) { levels_.push_back(Level{std::move(top)}); }

    void visitEntries(const std::function<void(const FolderEntry &)> &visit) override
    {
        DIR *const directory = levels_.back().directory.get();
        FolderEntry entry;
        while (const dirent *found = ::readdir(directory)) {
            const char *const name = found->d_name;
            if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
                continue;
            entry.name = QFile::decodeName(name);
            if (QFile::encodeName(entry.name) != name)
                continue;
            findKind(::dirfd(directory), *found, entry);
            visit(entry);
        }
    }

    bool enter(const QString &name) override
    {
        Directory directory = openDirectory(descriptor(), QFile::encodeName(name).constData());
        if (!directory)
            return false;
        levels_.push_back(Level{std::move(directory)});
        if (levels_.size() > MaxOpen)
            levels_[levels_.size() - 1 - MaxOpen].close();
        return true;
    }

    // Also opens the parent of the new current folder again if it was closed. It can only be found
    // as ".." of the current folder, so this must be done while the current folder is open.
    bool leave() override
    {
        levels_.pop_back();
        if (levels_.size() > 1 && !levels_[levels_.size() - 2].directory
            && levels_.back().directory)
            levels_[levels_.size() - 2].reopenFrom(descriptor());
        return levels_.back().directory != nullptr;
    }

    bool removeFile(const QString &name) override { return remove(name, 0); }
    bool removeFolder(const QString &name) override { return remove(name, AT_REMOVEDIR); }

private:
    static constexpr std::size_t MaxOpen = 32;

    int descriptor() const { return levels_.back().descriptor(); }

    bool remove(const QString &name, int flags) const
    {
        return ::unlinkat(descriptor(), QFile::encodeName(name).constData(), flags) == 0;
    }

    std::vector<Level> levels_; // the top first, the current folder last
};

} // namespace

std::unique_ptr<FolderTree> openFolderTree(const QString &path)
{
    Directory top = openDirectory(AT_FDCWD, QFile::encodeName(path).constData());
    return top ? std::make_unique<LinuxFolderTree>(std::move(top)) : nullptr;
}

} // namespace Vorn::Util::Platform
