#include <Utility/Platform/ClusterTool.h>

#include <Utility/Formats/ShellWord_p.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Vorn::Util::Platform {

QString clusterToolCommand(const QString &dir, const QString &options)
{
    QString tool = dir + QStringLiteral("/NodeInformation.exe");
    if (!QFileInfo::exists(tool))
        tool = dir + QStringLiteral("/NodeInformation");
    return Formats::shellWord(QFile::encodeName(tool)) + QLatin1Char(' ') + options;
}

} // namespace Vorn::Util::Platform
