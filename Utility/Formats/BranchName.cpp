#include <Utility/Formats/BranchName_p.h>

namespace Vorn::Util::Formats {

QString branchName(const QString &reference)
{
    if (!reference.startsWith(QLatin1String("Ref=refs/heads")))
        return QString();
    return QString(reference).remove(QLatin1String("Ref=refs/heads/"));
}

} // namespace Vorn::Util::Formats
