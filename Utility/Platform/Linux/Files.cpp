#include <Utility/Platform/Files.h>

#include <QtCore/QFile>

#include <cstdio>

namespace Vorn::Util::Platform {

bool replaceFile(const QString &source, const QString &target)
{
    return std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData())
        == 0;
}

} // namespace Vorn::Util::Platform
