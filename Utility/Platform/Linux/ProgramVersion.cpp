#include <Utility/Platform/ProgramVersion.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Vorn::Util::Platform {

ProgramVersion programVersion(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return ProgramVersion();
    return versionInProgram(file);
}

} // namespace Vorn::Util::Platform
