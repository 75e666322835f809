#include <Utility/Platform/ProgramVersion.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Vorn::Util::Platform {

ProgramVersion programVersion(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return ProgramVersion();
    // Mapped: of a large program only the pages with its version are read.
    const qint64 size = qMin<qint64>(file.size(), 0x7fffffff);
    const uchar *bytes = size > 0 ? file.map(0, size) : nullptr;
    if (!bytes)
        return ProgramVersion();
    return versionInProgram(
        QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), static_cast<int>(size)));
}

} // namespace Vorn::Util::Platform
