#include <Utility/Platform/Archiver.h>

namespace Vorn::Util::Platform {

Archiver findArchiver(const QString &productFolder)
{
    return {QStringLiteral("%1/7z.exe").arg(productFolder), ArchiverDialect::Product};
}

} // namespace Vorn::Util::Platform
