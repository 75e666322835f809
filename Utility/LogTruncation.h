#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Vorn::Util {

/// How many bytes from a log's beginning logCutPosition() needs at the most.
extern const int LogCutHeadSize;

/// Where the kept part of a log begins. A log is taken as a row of pieces: lines with their line
/// ends, longer lines in pieces of 255 bytes. The kept part begins at the first piece that starts
/// more than Log::AmountToTruncate bytes into the file, so it may begin within a long line (and
/// within a character): readers of the logs know that.
///
/// \a head is the beginning of the log, LogCutHeadSize bytes long or, for a shorter log, all of
/// it. Returns the length of \a head when nothing is kept.
qint64 logCutPosition(const QByteArray &head);

/// Replaces the file \a name, or the one that a link of that name leads to, by its own tail. The
/// tail is copied in the folder for temporary files, see Platform::replaceByRest().
///
/// When that fails (no such folder, a full disk, a file that cannot be replaced), the log stays as
/// it was. A failure that can be foreseen, because one of the two folders or the log cannot be
/// changed or too little space is left, costs some system calls and copies nothing. Without a new
/// file for the tail the log is not read.
void truncateLogFile(const QString &name);

} // namespace Vorn::Util
