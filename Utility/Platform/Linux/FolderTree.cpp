#include <Utility/Platform/FolderTree.h>

#include <Utility/QtVersion_p.h>

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

// Opens a folder. With O_NOFOLLOW in flags it fails if the last part of name is a link.
Directory openDirectory(int above, const char *name, int flags)
{
    const int descriptor = ::openat(above, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
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
        Directory found = openDirectory(below, "..", O_NOFOLLOW);
        struct stat status = {};
        if (found && ::fstat(::dirfd(found.get()), &status) == 0 && status.st_dev == device
            && status.st_ino == inode)
            directory = std::move(found);
    }
};

FolderEntry::Kind kindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return FolderEntry::File;
    return S_ISDIR(mode) ? FolderEntry::Folder : FolderEntry::Other;
}

// False if the name is not text in the encoding of the locale.
bool decodeName(const char *bytes, int length, QString &name)
{
    name.resize(length);
    QChar *const characters = name.data();
    int index = 0;
    for (; index < length && static_cast<uchar>(bytes[index]) < 0x80; ++index)
        characters[index] = QLatin1Char(bytes[index]);
    if (index == length)
        return true;
    name = QtVersion::decodedLocal(bytes, length);
    return QFile::encodeName(name) == bytes;
}

// Sets kind, isLink and, if wanted, size. Reads the status of an entry only if it is needed.
void readStatus(int folder, const dirent &found, bool wantsSize, FolderEntry &entry)
{
    struct stat status = {};
    mode_t type = static_cast<mode_t>(DTTOIF(found.d_type));
    if (found.d_type == DT_UNKNOWN
        && ::fstatat(folder, found.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        type = status.st_mode;
    entry.isLink = S_ISLNK(type);
    entry.kind = kindOf(type);
    entry.size = 0;
    if (!entry.isLink && !(wantsSize && entry.kind == FolderEntry::File))
        return;
    if (::fstatat(folder, found.d_name, &status, 0) != 0)
        return;
    entry.size = status.st_size;
    entry.kind = kindOf(status.st_mode); // of the target, or of what has taken the place of a file
}

class LinuxFolderTree : public FolderTree
{
public:
    LinuxFolderTree(Directory top, TreeAccess access)
        : isMeasured_(access == TreeAccess::Measure)
    {
        levels_.push_back(Level{std::move(top)});
    }

    void visitEntries(const std::function<void(const FolderEntry &)> &visit) override
    {
        while (const dirent *found = ::readdir(directory()))
            visitEntry(*found, visit);
    }

    void visitLinks(const std::function<void(const FolderEntry &)> &visit) override
    {
        const auto visitLink = [&visit](const FolderEntry &entry) {
            if (entry.isLink)
                visit(entry);
        };
        while (const dirent *found = ::readdir(directory())) {
            if (found->d_type == DT_LNK || found->d_type == DT_UNKNOWN)
                visitEntry(*found, visitLink);
        }
        ::rewinddir(directory());
    }

    bool enter(const QString &name) override
    {
        Directory directory
            = openDirectory(descriptor(), QFile::encodeName(name).constData(), O_NOFOLLOW);
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

    DIR *directory() const { return levels_.back().directory.get(); }
    int descriptor() const { return levels_.back().descriptor(); }

    void visitEntry(const dirent &found, const std::function<void(const FolderEntry &)> &visit)
    {
        const char *const name = found.d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            return;
        if (!decodeName(name, static_cast<int>(std::strlen(name)), entry_.name))
            return;
        entry_.isHidden = *name == '.';
        readStatus(descriptor(), found, isMeasured_, entry_);
        visit(entry_);
    }

    bool remove(const QString &name, int flags) const
    {
        return ::unlinkat(descriptor(), QFile::encodeName(name).constData(), flags) == 0;
    }

    const bool isMeasured_;
    FolderEntry entry_;         // the one that is visited
    std::vector<Level> levels_; // the top first, the current folder last
};

} // namespace

std::unique_ptr<FolderTree> openFolderTree(const QString &path, TreeAccess access)
{
    const int flags = access == TreeAccess::Measure ? 0 : O_NOFOLLOW;
    Directory top = openDirectory(AT_FDCWD, QFile::encodeName(path).constData(), flags);
    if (!top)
        return nullptr;
    return std::make_unique<LinuxFolderTree>(std::move(top), access);
}

} // namespace Vorn::Util::Platform
