#include <Utility/Platform/Archiver.h>

#include <QtCore/QProcess>

namespace Vorn::Util::Platform {

QString findArchiver(const QString &productFolder)
{
    return QStringLiteral("%1/7z.exe").arg(productFolder);
}

// The archiver reads its standard input only, which is at its end.
std::unique_ptr<QProcess> makeArchiverProcess()
{
    return std::make_unique<QProcess>();
}

} // namespace Vorn::Util::Platform
