#include <Utility/Platform/FileReplacement.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Vorn::Util::Platform {

namespace {

QByteArray folderOf(const QString &name)
{
    return QFile::encodeName(QFileInfo(name).path());
}

// Copies the access control list (ACL) of a file to another one. False if this fails.
bool copyAccessList(int from, int to)
{
    constexpr const char *Name = "system.posix_acl_access";
    std::array<char, 4096> list{};
    const ssize_t size = fgetxattr(from, Name, list.data(), list.size());
    const auto hasNoList = [] { return errno == ENODATA || errno == EOPNOTSUPP; };
    if (size < 0) // no list: remove one that the new file may have inherited from its folder
        return hasNoList() && (fremovexattr(to, Name) == 0 || hasNoList());
    return fsetxattr(to, Name, list.data(), static_cast<std::size_t>(size), 0) == 0;
}

// A new file that only its owner may read. The destructor removes it unless it has replaced another
// file.
class NewFile
{
public:
    explicit NewFile(const QByteArray &folder);
    ~NewFile();

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    bool copyFrom(int source, off_t offset);
    bool replace(const QString &name, int former);

private:
    Q_DISABLE_COPY(NewFile)

    void copyPermissions(int former);
    bool moveTo(const QByteArray &folder);

    int descriptor_ = -1;
    QByteArray name_; // empty while the file has no name (O_TMPFILE)
};

NewFile::NewFile(const QByteArray &folder)
{
    // A file without a name gets its name through /proc, which may be missing.
    if (access("/proc/self/fd", X_OK) == 0)
        descriptor_ = open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor_ < 0) {
        name_ = folder + "/.truncated-log-XXXXXX";
        descriptor_ = mkostemp(name_.data(), O_CLOEXEC);
        if (descriptor_ < 0)
            name_.clear();
    }
}

NewFile::~NewFile()
{
    if (!name_.isEmpty())
        unlink(name_.constData());
    if (descriptor_ >= 0)
        close(descriptor_);
}

// Copies \a source from \a offset to its end.
bool NewFile::copyFrom(int source, off_t offset)
{
    constexpr std::size_t BlockSize = 1 << 30;
    ssize_t copied = 0;
    do {
        copied = sendfile(descriptor_, source, &offset, BlockSize);
    } while (copied > 0 || (copied < 0 && errno == EINTR));
    // Some file systems report a full disk only when a descriptor is closed.
    return copied == 0 && close(dup(descriptor_)) == 0;
}

// Replaces the file \a name, which is open as \a former. False if this fails, for example because
// it is on another file system.
bool NewFile::replace(const QString &name, int former)
{
    // A file without a name gets its permissions before its name, because nobody else can open it.
    // A file with a name gets them only after it has left the folder for temporary files.
    const bool wasNameless = name_.isEmpty();
    if (wasNameless)
        copyPermissions(former);
    if (!moveTo(folderOf(name)))
        return false;
    if (!wasNameless)
        copyPermissions(former);
    if (std::rename(name_.constData(), QFile::encodeName(name).constData()) != 0)
        return false;
    name_.clear();
    return true;
}

// Copies owner, group, access control list and permission bits of the file open as \a former. The
// owner may also write: the log is opened again and continued.
void NewFile::copyPermissions(int former)
{
    constexpr mode_t GroupsBits = S_IRWXG;
    struct stat status = {};
    if (fstat(former, &status) != 0)
        return;
    const bool hasGroup = fchown(descriptor_, status.st_uid, status.st_gid) == 0
        || fchown(descriptor_, static_cast<uid_t>(-1), status.st_gid) == 0;
    mode_t mode = (status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO)) | S_IWUSR;
    // The permissions of the group were meant for the former group, or for names in the list. If
    // these cannot be kept, the group gets the permissions of others.
    if (!hasGroup || !copyAccessList(former, descriptor_))
        mode &= ~GroupsBits | ((mode & S_IRWXO) << 3);
    fchmod(descriptor_, mode);
}

// Gives the file a name in \a folder. False if this fails, for example because the folder is on
// another file system.
bool NewFile::moveTo(const QByteArray &folder)
{
    const QByteArray name = folder + "/.truncated-log-"
        + QByteArray::number(QRandomGenerator::global()->generate64(), 16);
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor_);
    const int result = name_.isEmpty()
        ? linkat(AT_FDCWD, link.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW)
        : std::rename(name_.constData(), name.constData());
    if (result == 0)
        name_ = name;
    return result == 0;
}

bool mayWriteTo(const QByteArray &folder)
{
    return faccessat(AT_FDCWD, folder.constData(), W_OK | X_OK, AT_EACCESS) == 0;
}

// Whether this process counts as the owner of \a file. Only the owner may open a file with
// O_NOATIME, with the same exceptions (capabilities) as for replacing a file in a folder with the
// sticky bit.
bool countsAsOwnerOf(const QByteArray &file)
{
    const int descriptor = open(file.constData(), O_RDONLY | O_NOATIME | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    close(descriptor);
    return true;
}

} // namespace

bool mayReplaceFile(const QString &name)
{
    constexpr quint64 Protected = STATX_ATTR_APPEND | STATX_ATTR_IMMUTABLE;
    const QByteArray file = QFile::encodeName(name);
    const QByteArray folder = folderOf(name);
    if (!mayWriteTo(folder))
        return false;
    struct statx status = {};
    struct statx folderStatus = {};
    if (statx(AT_FDCWD, file.constData(), 0, STATX_BASIC_STATS, &status) != 0
        || statx(AT_FDCWD, folder.constData(), 0, STATX_BASIC_STATS, &folderStatus) != 0)
        return true;
    const bool isMountPoint = (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    if (isMountPoint || ((status.stx_attributes | folderStatus.stx_attributes) & Protected) != 0)
        return false;
    const bool isSticky = (folderStatus.stx_mode & S_ISVTX) != 0;
    return !isSticky || folderStatus.stx_uid == geteuid() || countsAsOwnerOf(file);
}

bool mayCreateFileIn(const QString &folder)
{
    // Only a folder has an entry ".". An empty path would become "/.", the root folder.
    return !folder.isEmpty() && mayWriteTo(QFile::encodeName(folder) + "/.");
}

qint64 availableSpace(const QString &folder)
{
    struct statvfs status = {};
    if (statvfs(QFile::encodeName(folder).constData(), &status) != 0 || status.f_blocks == 0)
        return std::numeric_limits<qint64>::max();
    // f_files is 0 if the file system has no fixed number of files.
    if (status.f_files != 0 && status.f_ffree == 0)
        return 0;
    // Some blocks are reserved for root.
    const quint64 blocks = geteuid() == 0 ? status.f_bfree : status.f_bavail;
    return static_cast<qint64>(blocks * status.f_frsize);
}

bool replaceByTail(QFile &file, const QString &temporaryFolder, qint64 (*tailOffset)(QFile &))
{
    const int descriptor = file.handle();
    NewFile tail(QFile::encodeName(temporaryFolder));
    if (!tail.isOpen() || !tail.copyFrom(descriptor, tailOffset(file)))
        return false;
    if (tail.replace(file.fileName(), descriptor))
        return true;
    NewFile copy(folderOf(file.fileName()));
    return copy.copyFrom(tail.descriptor(), 0) && copy.replace(file.fileName(), descriptor);
}

} // namespace Vorn::Util::Platform
