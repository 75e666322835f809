#include <Utility/Platform/ProgramVersion.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Vorn::Util::Platform {

Formats::ProgramVersion programVersion(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return Formats::ProgramVersion();
    return Formats::versionInProgram(file);
}

} // namespace Vorn::Util::Platform
