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
    // Most lines are short, so that the end of the head contains the beginning of a line.
    constexpr int EndSize = 4096;
    constexpr int EndOffset = Formats::AmountToTruncate - EndSize;
    if (log.seek(EndOffset)) {
        const QByteArray end = log.read(Formats::LogHeadSize - EndOffset);
        const int lineStart = static_cast<int>(end.lastIndexOf('\n', EndSize - 2) + 1);
        if (lineStart > 0) {
            return EndOffset + lineStart
                + Formats::truncationOffset(end.mid(lineStart), EndSize - lineStart);
        }
    }
    log.seek(0);
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
