#include <Utility/Platform/Files.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QDir>

namespace Vorn::Util::Platform {

MoveOutcome moveFile(const QString &source, const QString &target)
{
    const QString from = longForm(source);
    const QString to = longForm(target);
    const DWORD attributes = GetFileAttributesW(wide(from));
    const bool isFolder
        = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    if (MoveFileExW(wide(from), wide(to), isFolder ? 0 : MOVEFILE_REPLACE_EXISTING))
        return MoveOutcome::Moved;
    return GetLastError() == ERROR_NOT_SAME_DEVICE ? MoveOutcome::OtherFileSystem
                                                   : MoveOutcome::Failed;
}

bool openWithoutLink(QFile &file)
{
    const QString name = QDir::toNativeSeparators(file.fileName());
    const DWORD attributes = GetFileAttributesW(wide(name)); // of the link itself
    const bool isLink
        = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    // Emptied, not removed: another process may have it open.
    return !isLink && file.open(QIODevice::WriteOnly | QIODevice::Text);
}

} // namespace Vorn::Util::Platform
