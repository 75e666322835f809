#include <Utility/LogTruncation_p.h>

#include <Utility/Formats/TruncationOffset_p.h>
#include <Utility/Platform/FileReplacement.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Vorn::Util {

namespace {

// Whether the truncation of \a log can succeed, as far as this can be known in advance. If a log
// cannot be truncated, this is called for every line, so it must be fast and copy nothing.
bool canBeTruncated(const QFileInfo &log, const QString &temporaryFolder)
{
    const qint64 minTailSize = log.size() - Formats::LogHeadSize;
    return Platform::mayCreateFileIn(temporaryFolder) && Platform::mayReplaceFile(log.filePath())
        && Platform::availableSpace(temporaryFolder) >= minTailSize
        && Platform::availableSpace(log.path()) >= minTailSize;
}

qint64 tailOffset(QFile &log)
{
    return Formats::truncationOffset(log.read(Formats::LogHeadSize));
}

} // namespace

void truncateLogFile(const QString &name)
{
    QFileInfo info(name);
    if (info.isSymLink())
        info.setFile(info.canonicalFilePath());
    const QString temporaryFolder = QDir::tempPath();
    if (!info.isFile() || !canBeTruncated(info, temporaryFolder))
        return;
    QFile log(info.filePath());
    if (log.open(QIODevice::ReadOnly))
        Platform::replaceByTail(log, temporaryFolder, tailOffset);
}

} // namespace Vorn::Util
