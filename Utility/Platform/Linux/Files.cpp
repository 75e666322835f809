#include <Utility/Platform/Files.h>

#include <QtCore/QFile>

#include <cerrno>
#include <cstdio>

namespace Vorn::Util::Platform {

bool replaceFile(const QString &source, const QString &target)
{
    return std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData())
        == 0;
}

MoveOutcome moveFile(const QString &source, const QString &target)
{
    if (std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData())
        == 0)
        return MoveOutcome::Moved;
    return errno == EXDEV ? MoveOutcome::OtherFileSystem : MoveOutcome::Failed;
}

} // namespace Vorn::Util::Platform
