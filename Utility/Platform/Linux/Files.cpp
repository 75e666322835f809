#include <Utility/Platform/Files.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vorn::Util::Platform {

MoveOutcome moveFile(const QString &source, const QString &target)
{
    if (std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData())
        == 0)
        return MoveOutcome::Moved;
    return errno == EXDEV ? MoveOutcome::OtherFileSystem : MoveOutcome::Failed;
}

bool isSameFile(const QString &first, const QString &second)
{
    struct stat status = {};
    struct stat other = {};
    return ::stat(QFile::encodeName(first).constData(), &status) == 0
        && ::stat(QFile::encodeName(second).constData(), &other) == 0
        && status.st_dev == other.st_dev && status.st_ino == other.st_ino;
}

bool removeFile(const QString &path)
{
    return QFile::remove(path);
}

bool openWithoutLink(QFile &file)
{
    constexpr auto NewFile = QIODevice::WriteOnly | QIODevice::Text | QIODevice::NewOnly;
    if (file.open(NewFile))
        return true;
    // The file is removed and created again. Opening the existing file would be unsafe: another
    // process could replace it by a link before.
    const QFileInfo other(file);
    return other.isFile() && !other.isSymLink() && QFile::remove(file.fileName())
        && file.open(NewFile);
}

bool openPlainFile(QFile &file)
{
    const QByteArray path = QFile::encodeName(file.fileName());
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return false; // not opened, because opening a pipe would wake its writer
    const int descriptor = open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    close(descriptor);
    return false;
}

} // namespace Vorn::Util::Platform
