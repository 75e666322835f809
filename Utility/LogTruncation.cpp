#include <Utility/LogTruncation.h>

#include <Utility/Log.h>
#include <Utility/Platform/Files.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryFile>

#include <algorithm>

namespace Vorn::Util {

namespace {

constexpr int PieceSize = 255;
constexpr int CutAfter = 1048576;

// Copies from the current positions up to the end of \a from, which holds \a count bytes more.
bool copyBytes(QIODevice &from, QIODevice &to, qint64 count)
{
    while (count > 0) {
        const QByteArray block = from.read(std::min<qint64>(count, 1 << 18));
        if (block.isEmpty() || to.write(block) != block.size())
            return false;
        count -= block.size();
    }
    return true;
}

// The kept part of \a log in a file of its own, which the caller removes; no name on failure.
QString copyTail(QFile &log)
{
    // QTemporaryFile takes the root folder when the one for temporary files is not there.
    if (!QFileInfo(QDir::tempPath()).isDir())
        return QString();
    QTemporaryFile tail;
    const qint64 size = log.size();
    const qint64 cut = logCutPosition(log.read(LogCutHeadSize));
    if (!tail.open() || !log.seek(cut) || !copyBytes(log, tail, size - cut) || !tail.flush())
        return QString();
    tail.setPermissions(log.permissions());
    tail.setAutoRemove(false);
    return tail.fileName();
}

// For a temporary folder on another file system: a copy beside the log, which then takes its
// place in one step.
void replaceByCopy(const QString &tailName, const QString &name)
{
    QFile tail(tailName);
    QSaveFile copy(name);
    if (tail.open(QIODevice::ReadOnly) && copy.open(QIODevice::WriteOnly)
        && copyBytes(tail, copy, tail.size()))
        copy.commit();
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

void truncateLogFile(const QString &logName)
{
    const QString name = QFileInfo(logName).canonicalFilePath();
    QFile log(name);
    if (!log.open(QIODevice::ReadOnly))
        return;
    const QString tail = copyTail(log);
    log.close();
    if (tail.isEmpty() || Platform::replaceFile(tail, name))
        return;
    replaceByCopy(tail, name);
    QFile::remove(tail);
}

} // namespace Vorn::Util
