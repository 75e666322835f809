#include <Utility/Platform/Archiver.h>

#include <QtCore/QProcess>

namespace Vorn::Util::Platform {

QString findArchiver(const QString &productFolder)
{
    return QStringLiteral("%1/7z.exe").arg(productFolder);
}

// The archiver asks on the standard input, which is closed, so it cannot wait for an answer.
std::unique_ptr<QProcess> makeArchiverProcess()
{
    return std::make_unique<QProcess>();
}

} // namespace Vorn::Util::Platform
