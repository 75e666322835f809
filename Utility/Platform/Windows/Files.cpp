#include <Utility/Platform/Files.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace Vorn::Util::Platform {

namespace {

// An open file or folder, to check whether two paths refer to the same one.
class OpenFile
{
public:
    explicit OpenFile(const QString &path)
    {
        constexpr DWORD Sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        const QString name = longForm(path);
        handle_ = CreateFileW(wide(name), 0, Sharing, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS,
                              nullptr); // the flag is needed to open a folder
        isKnown_
            = handle_ != INVALID_HANDLE_VALUE && GetFileInformationByHandle(handle_, &info_) != 0;
    }

    ~OpenFile()
    {
        if (handle_ != INVALID_HANDLE_VALUE)
            CloseHandle(handle_);
    }

    bool isSameAs(const OpenFile &other) const
    {
        return isKnown_ && other.isKnown_
            && info_.dwVolumeSerialNumber == other.info_.dwVolumeSerialNumber
            && info_.nFileIndexHigh == other.info_.nFileIndexHigh
            && info_.nFileIndexLow == other.info_.nFileIndexLow;
    }

private:
    Q_DISABLE_COPY(OpenFile)

    HANDLE handle_ = INVALID_HANDLE_VALUE;
    BY_HANDLE_FILE_INFORMATION info_ = {};
    bool isKnown_ = false;
};

} // namespace

MoveOutcome moveFile(const QString &source, const QString &target)
{
    const QString from = longForm(source);
    const QString to = longForm(target);
    const DWORD attributes = GetFileAttributesW(wide(from));
    const bool isFolder
        = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    if (MoveFileExW(wide(from), wide(to), isFolder ? 0 : MOVEFILE_REPLACE_EXISTING))
        return MoveOutcome::Moved;
    return GetLastError() == ERROR_NOT_SAME_DEVICE ? MoveOutcome::OtherFileSystem
                                                   : MoveOutcome::Failed;
}

bool isSameFile(const QString &first, const QString &second)
{
    // Both files must be open: the file index of a closed file can be used for another file.
    const OpenFile file(first);
    const OpenFile other(second);
    return file.isSameAs(other);
}

bool removeFile(const QString &path)
{
    const QString name = longForm(path);
    if (DeleteFileW(wide(name)))
        return true;
    const DWORD attributes = GetFileAttributesW(wide(name));
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY)
        || (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return false;
    SetFileAttributesW(wide(name), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    if (DeleteFileW(wide(name)))
        return true;
    SetFileAttributesW(wide(name), attributes);
    return false;
}

bool openWithoutLink(QFile &file)
{
    const QString name = QDir::toNativeSeparators(file.fileName());
    const DWORD attributes = GetFileAttributesW(wide(name)); // of the link itself
    const bool isLink
        = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    // The file is emptied, not removed, because another process may have it open.
    return !isLink && file.open(QIODevice::WriteOnly | QIODevice::Text);
}

bool openPlainFile(QFile &file)
{
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly);
}

} // namespace Vorn::Util::Platform
