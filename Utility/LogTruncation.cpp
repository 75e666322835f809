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
constexpr int CutAfter = 1048576;

// Whether the truncation of \a log can succeed, as far as it can be told without reading the log. A
// log that cannot be truncated is asked for every line: nothing may be copied for it.
bool canBeTruncated(const QFileInfo &log, const QString &temporaryFolder)
{
    const qint64 leastKept = log.size() - LogCutHeadSize;
    return Platform::mayCreateFileIn(temporaryFolder) && Platform::mayReplaceFile(log.filePath())
        && Platform::availableSpace(temporaryFolder) >= leastKept
        && Platform::availableSpace(log.path()) >= leastKept;
}

qint64 truncationOffset(QFile &log)
{
    return logCutPosition(log.read(LogCutHeadSize));
}

} // namespace

const int LogCutHeadSize = CutAfter + PieceSize + 1;

qint64 logCutPosition(const QByteArray &head)
{
    if (head.size() <= CutAfter)
        return head.size();
    // The line that holds byte CutAfter - 1 or, when that byte ends a line, the next one.
    const int lineStart = head.lastIndexOf('\n', CutAfter - 1) + 1;
    const int nextPiece = lineStart + PieceSize * ((CutAfter - lineStart) / PieceSize + 1);
    const int lineEnd = head.indexOf('\n', CutAfter);
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
        Platform::replaceByRest(log, temporaryFolder, truncationOffset);
}

} // namespace Vorn::Util
