#include <Utility/Platform/FolderTree.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QFileInfo>

#include <utility>
#include <vector>

namespace Vorn::Util::Platform {

namespace {

struct HandleCloser
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

using Handle = std::unique_ptr<void, HandleCloser>;

struct SearchCloser
{
    void operator()(HANDLE handle) const { FindClose(handle); }
};

// False for a file, a symbolic link and a junction. Folders with other reparse points, such as
// those of cloud storage, are normal folders.
bool isRealFolder(HANDLE handle)
{
    BY_HANDLE_FILE_INFORMATION info = {};
    if (!GetFileInformationByHandle(handle, &info)
        || !(info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
        return false;
    if (!(info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return true;
    FILE_ATTRIBUTE_TAG_INFO tag = {};
    return GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag)
        && !IsReparseTagNameSurrogate(tag.ReparseTag);
}

// The path of an entry of a folder, whose path may end with a separator.
QString joined(const QString &folder, QChar separator, const QString &name)
{
    return folder.endsWith(separator) ? folder + name : folder + separator + name;
}

// Opens a folder for as long as the handle exists. Meanwhile nobody can rename or remove the
// folder, because it is opened without FILE_SHARE_DELETE. Null if it is no folder, but for example
// a link.
Handle holdFolder(const QString &longPath)
{
    constexpr DWORD Access = FILE_LIST_DIRECTORY;
    constexpr DWORD Sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
    constexpr DWORD Flags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
    const HANDLE handle
        = CreateFileW(wide(longPath), Access, Sharing, nullptr, OPEN_EXISTING, Flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return nullptr;
    Handle folder(handle);
    return isRealFolder(handle) ? std::move(folder) : nullptr;
}

// Reads the entries of a folder, many in one call of the system, and without their short names.
class Search
{
public:
    Search(const QString &longPath, const QString &names)
    {
        const QString pattern = joined(longPath, QLatin1Char('\\'), names);
        const HANDLE handle
            = FindFirstFileExW(wide(pattern), FindExInfoBasic, &found_, FindExSearchNameMatch,
                               nullptr, FIND_FIRST_EX_LARGE_FETCH);
        if (handle != INVALID_HANDLE_VALUE)
            handle_.reset(handle);
        else // an empty drive does not even contain "."
            canRead_ = GetLastError() == ERROR_FILE_NOT_FOUND;
    }

    bool canRead() const { return canRead_; }

    // The next entry; null at the end.
    const WIN32_FIND_DATAW *next()
    {
        if (handle_ && !isFirst_ && !FindNextFileW(handle_.get(), &found_))
            handle_.reset();
        isFirst_ = false;
        return handle_ ? &found_ : nullptr;
    }

private:
    std::unique_ptr<void, SearchCloser> handle_;
    WIN32_FIND_DATAW found_ = {};
    bool isFirst_ = true;
    bool canRead_ = true;
};

bool isDotName(const wchar_t *name)
{
    return name[0] == L'.' && (name[1] == L'\0' || (name[1] == L'.' && name[2] == L'\0'));
}

FolderEntry::Kind kindOf(const QFileInfo &info)
{
    if (info.isDir())
        return FolderEntry::Folder;
    return info.isFile() ? FolderEntry::File : FolderEntry::Other;
}

FolderEntry entryOf(const WIN32_FIND_DATAW &found)
{
    constexpr int HighBits = 32;
    const bool isFolder = found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    const bool isReparsed = found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
    const DWORD tag = isReparsed ? found.dwReserved0 : 0;
    FolderEntry entry;
    entry.name = textOf(found.cFileName);
    entry.kind = isFolder ? FolderEntry::Folder : FolderEntry::File;
    entry.isLink = tag == IO_REPARSE_TAG_SYMLINK || (isFolder && tag == IO_REPARSE_TAG_MOUNT_POINT);
    entry.isHidden = found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN;
    if (!isFolder)
        entry.size = (qint64{found.nFileSizeHigh} << HighBits) + found.nFileSizeLow;
    return entry;
}

// The entry of a shortcut has the properties of the target.
FolderEntry entryOfShortcut(const QFileInfo &info)
{
    return {info.fileName(), kindOf(info), true, info.isHidden(), info.size()};
}

bool isShortcut(const FolderEntry &entry)
{
    return entry.kind == FolderEntry::File && entry.name.endsWith(QLatin1String(".lnk"));
}

// A folder on the way from the top of the tree to the current folder.
struct Level
{
    QString path;
    QString longPath;
    Handle handle; // only in a walk that removes
    Search search;
};

// Uses paths. This is safe in a walk that removes, because all folders in them are held and cannot
// be replaced.
class WindowsFolderTree : public FolderTree
{
public:
    explicit WindowsFolderTree(TreeAccess access)
        : access_(access)
    {
    }

    bool open(const QString &path, const QString &longPath)
    {
        Handle handle;
        if (access_ == TreeAccess::Remove) {
            handle = holdFolder(longPath);
            if (!handle)
                return false;
        }
        Search search(longPath, QStringLiteral("*"));
        if (!search.canRead())
            return false;
        levels_.push_back({path, longPath, std::move(handle), std::move(search)});
        return true;
    }

    void visitEntries(const std::function<void(const FolderEntry &)> &visit) override
    {
        while (const WIN32_FIND_DATAW *found = levels_.back().search.next()) {
            if (isDotName(found->cFileName))
                continue;
            const FolderEntry entry = entryOf(*found);
            if (isShortcut(entry))
                visitShortcut(entry.name, visit);
            else
                visit(entry);
        }
    }

    // Links other than shortcuts have the kind that is stored in them.
    void visitLinks(const std::function<void(const FolderEntry &)> &visit) override
    {
        Search search(levels_.back().longPath, QStringLiteral("*.lnk"));
        while (const WIN32_FIND_DATAW *found = search.next()) {
            const FolderEntry entry = entryOf(*found);
            if (isShortcut(entry))
                visitShortcut(entry.name, visit);
        }
    }

    bool enter(const QString &name) override
    {
        return open(joined(levels_.back().path, QLatin1Char('/'), name), longPathOf(name));
    }

    bool leave() override
    {
        levels_.pop_back();
        return true;
    }

    // A link to a file is removed like a file, a link to a folder like a folder.
    bool removeFile(const QString &name) override
    {
        const QString path = longPathOf(name);
        return DeleteFileW(wide(path)) || RemoveDirectoryW(wide(path));
    }

    bool removeFolder(const QString &name) override
    {
        return RemoveDirectoryW(wide(longPathOf(name)));
    }

private:
    void visitShortcut(const QString &name,
                       const std::function<void(const FolderEntry &)> &visit) const
    {
        const QFileInfo shortcut(joined(levels_.back().path, QLatin1Char('/'), name));
        if (shortcut.exists())
            visit(entryOfShortcut(shortcut));
    }

    QString longPathOf(const QString &name) const
    {
        return joined(levels_.back().longPath, QLatin1Char('\\'), name);
    }

    const TreeAccess access_;
    std::vector<Level> levels_; // the top first, the current folder last
};

} // namespace

std::unique_ptr<FolderTree> openFolderTree(const QString &path, TreeAccess access)
{
    auto tree = std::make_unique<WindowsFolderTree>(access);
    return tree->open(path, longForm(path)) ? std::move(tree) : nullptr;
}

} // namespace Vorn::Util::Platform
