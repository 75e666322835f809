#include <Utility/Platform/FolderTree.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <utility>
#include <vector>

namespace Vorn::Util::Platform {

namespace {

struct HandleCloser
{
    void operator()(HANDLE handle) const { CloseHandle(handle); }
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

// An open folder. As long as the object exists, nobody can rename or remove the folder, because it
// is opened without FILE_SHARE_DELETE.
class OpenFolder
{
public:
    explicit OpenFolder(const QString &path)
        : path_(path)
    {
        constexpr DWORD Access = FILE_LIST_DIRECTORY;
        constexpr DWORD Sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
        constexpr DWORD Flags = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
        const QString name = longForm(path);
        const HANDLE handle
            = CreateFileW(wide(name), Access, Sharing, nullptr, OPEN_EXISTING, Flags, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            return;
        handle_.reset(handle);
        if (!isRealFolder(handle))
            handle_.reset();
    }

    bool isOpen() const { return handle_ != nullptr; }
    QString path() const { return path_; }
    QString pathOf(const QString &name) const
    {
        return path_.endsWith(QLatin1Char('/')) ? path_ + name : path_ + QLatin1Char('/') + name;
    }

private:
    QString path_;
    std::unique_ptr<void, HandleCloser> handle_;
};

FolderEntry::Kind kindOf(const QFileInfo &info)
{
    if (info.isDir())
        return FolderEntry::Folder;
    return info.isFile() ? FolderEntry::File : FolderEntry::Other;
}

// Uses paths. This is safe, because all folders in them are open and cannot be replaced.
class WindowsFolderTree : public FolderTree
{
public:
    explicit WindowsFolderTree(OpenFolder top) { levels_.push_back(std::move(top)); }

    void visitEntries(const std::function<void(const FolderEntry &)> &visit) override
    {
        QDirIterator entries(levels_.back().path(),
                             QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        while (entries.hasNext()) {
            entries.next();
            const QFileInfo info = entries.fileInfo();
            visit({info.fileName(), kindOf(info), info.isSymLink() || info.isJunction()});
        }
    }

    bool enter(const QString &name) override
    {
        OpenFolder folder(levels_.back().pathOf(name));
        if (!folder.isOpen())
            return false;
        levels_.push_back(std::move(folder));
        return true;
    }

    bool leave() override
    {
        levels_.pop_back();
        return true;
    }

    // A link to a file is removed like a file, a link to a folder like a folder.
    bool removeFile(const QString &name) override
    {
        const QString path = levels_.back().pathOf(name);
        return QFile::remove(path) || QDir().rmdir(path);
    }

    bool removeFolder(const QString &name) override
    {
        return QDir().rmdir(levels_.back().pathOf(name));
    }

private:
    std::vector<OpenFolder> levels_; // the top first, the current folder last
};

} // namespace

std::unique_ptr<FolderTree> openFolderTree(const QString &path)
{
    OpenFolder top(path);
    return top.isOpen() ? std::make_unique<WindowsFolderTree>(std::move(top)) : nullptr;
}

} // namespace Vorn::Util::Platform
