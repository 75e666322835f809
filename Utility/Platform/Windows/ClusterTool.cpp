#include <Utility/Platform/ClusterTool.h>

namespace Vorn::Util::Platform {

QString clusterToolCommand(const QString &dir, const QString &options)
{
    return QLatin1Char('"') + dir + QStringLiteral("\\NodeInformation.exe\" ") + options;
}

} // namespace Vorn::Util::Platform
