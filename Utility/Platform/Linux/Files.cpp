#include <Utility/Platform/Files.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>

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
    // Removed, not emptied: what lies there now may be a link by the time that it is opened.
    const QFileInfo other(file);
    return other.isFile() && !other.isSymLink() && QFile::remove(file.fileName())
        && file.open(NewFile);
}

} // namespace Vorn::Util::Platform
