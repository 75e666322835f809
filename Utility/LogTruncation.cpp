#include <Utility/LogTruncation.h>

#include <Utility/Log.h>
#include <Utility/Platform/FileReplacement.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

namespace Vorn::Util {

namespace {

constexpr int PieceSize = 255;
constexpr int TruncateAfter = 1048576;

// Whether the truncation of \a log can succeed, as far as the system tells without a try. For a log
// that cannot be truncated this is asked before every line, so it must copy nothing.
bool canBeTruncated(const QFileInfo &log, const QString &temporaryFolder)
{
    const qint64 leastKept = log.size() - LogHeadSize;
    return Platform::mayCreateFileIn(temporaryFolder) && Platform::mayReplaceFile(log.filePath())
        && Platform::availableSpace(temporaryFolder) >= leastKept
        && Platform::availableSpace(log.path()) >= leastKept;
}

qint64 startOfRest(QFile &log)
{
    return truncationOffset(log.read(LogHeadSize));
}

} // namespace

const int LogHeadSize = TruncateAfter + PieceSize + 1;

qint64 truncationOffset(const QByteArray &head)
{
    if (head.size() <= TruncateAfter)
        return head.size();
    // The line that holds byte TruncateAfter - 1 or, when that byte ends a line, the next one.
    const int lineStart = head.lastIndexOf('\n', TruncateAfter - 1) + 1;
    const int nextPiece = lineStart + PieceSize * ((TruncateAfter - lineStart) / PieceSize + 1);
    const int lineEnd = head.indexOf('\n', TruncateAfter);
    const int nextLine = lineEnd < 0 ? head.size() : lineEnd + 1;
    return std::min({nextPiece, nextLine, head.size()});
}

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
        Platform::replaceByRest(log, temporaryFolder, startOfRest);
}

} // namespace Vorn::Util
