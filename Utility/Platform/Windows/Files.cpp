#include <Utility/Platform/Files.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>

namespace Vorn::Util::Platform {

bool replaceFile(const QString &source, const QString &target)
{
    const QString from = QDir::toNativeSeparators(source);
    const QString to = QDir::toNativeSeparators(target);
    return MoveFileExW(wide(from), wide(to), MOVEFILE_REPLACE_EXISTING) != FALSE;
}

} // namespace Vorn::Util::Platform
