#include <Utility/Platform/FileReplacement.h>

#include <Utility/Platform/Files.h>
#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryFile>

#include <algorithm>
#include <limits>
#include <vector>

namespace Vorn::Util::Platform {

namespace {

bool canBeOpened(const QString &name, DWORD access)
{
    const QString native = QDir::toNativeSeparators(name);
    const HANDLE handle = CreateFileW(
        wide(native), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr); // the flag is needed to open a folder
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(handle);
    return true;
}

// Copies \a count bytes from the current position of \a from to that of \a to.
bool copyBytes(QIODevice &from, QIODevice &to, qint64 count)
{
    std::vector<char> block(1 << 18);
    while (count > 0) {
        const qint64 size
            = from.read(block.data(), std::min<qint64>(count, static_cast<qint64>(block.size())));
        if (size <= 0 || to.write(block.data(), size) != size)
            return false;
        count -= size;
    }
    return true;
}

// Copies the tail of \a file to a new file, which the caller must remove. Returns its path; empty
// after a failure.
QString copyTail(QFile &file, const QString &temporaryFolder, qint64 (*tailOffset)(QFile &))
{
    QTemporaryFile tail(temporaryFolder + QStringLiteral("/truncated-log-XXXXXX"));
    if (!tail.open() || !file.seek(tailOffset(file))
        || !copyBytes(file, tail, file.size() - file.pos()) || !tail.flush())
        return QString();
    tail.setAutoRemove(false);
    return tail.fileName();
}

// Copies \a source, which is on another volume, to the folder of \a target and replaces \a target
// by the copy.
bool replaceByCopy(const QString &source, const QString &target)
{
    QFile file(source);
    QSaveFile copy(target);
    // flush(): commit() does not notice that the last bytes do not fit on the disk.
    return file.open(QIODevice::ReadOnly) && copy.open(QIODevice::WriteOnly)
        && copyBytes(file, copy, file.size()) && copy.flush() && copy.commit();
}

} // namespace

bool mayReplaceFile(const QString &name)
{
    const QString native = QDir::toNativeSeparators(name);
    const DWORD attributes = GetFileAttributesW(wide(native));
    const bool isReadOnly
        = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY);
    return !isReadOnly && canBeOpened(name, DELETE) && mayCreateFileIn(QFileInfo(name).path());
}

bool mayCreateFileIn(const QString &folder)
{
    return QFileInfo(folder).isDir() && canBeOpened(folder, FILE_ADD_FILE);
}

qint64 availableSpace(const QString &folder)
{
    const QString native = QDir::toNativeSeparators(folder);
    ULARGE_INTEGER bytes = {};
    if (GetDiskFreeSpaceExW(wide(native), &bytes, nullptr, nullptr) == FALSE)
        return std::numeric_limits<qint64>::max();
    return static_cast<qint64>(bytes.QuadPart);
}

bool replaceByTail(QFile &file, const QString &temporaryFolder, qint64 (*tailOffset)(QFile &))
{
    const QString tail = copyTail(file, temporaryFolder, tailOffset);
    if (tail.isEmpty())
        return false;
    file.close(); // an open file cannot be replaced
    if (moveFile(tail, file.fileName()) == MoveOutcome::Moved)
        return true;
    const bool isReplaced = replaceByCopy(tail, file.fileName());
    QFile::remove(tail);
    return isReplaced;
}

} // namespace Vorn::Util::Platform
