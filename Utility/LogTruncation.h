#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace Vorn::Util {

/// The most bytes of a log's beginning that truncationOffset() needs.
extern const int LogHeadSize;

/// Where the kept part of a log begins. A log is taken as a row of pieces: lines with their line
/// ends, longer lines in pieces of 255 bytes. The kept part begins at the first piece that starts
/// more than Log::AmountToTruncate bytes into the file. In a long line this can be in the middle of
/// the line, even of a character.
///
/// \a head is the beginning of the log, LogHeadSize bytes long or, for a shorter log, all of it.
/// Returns the length of \a head when nothing is kept.
qint64 truncationOffset(const QByteArray &head);

/// Replaces the file \a name, or the one that a link of that name leads to, by its own tail. The
/// tail is copied in the folder for temporary files, see Platform::replaceByRest().
///
/// When that fails (no such folder, a full disk, a file that cannot be replaced), the log stays as
/// it was. A failure that can be foreseen, because one of the two folders or the log cannot be
/// changed or too little space is left, costs some system calls and copies nothing. Without a new
/// file for the tail the log is not read.
void truncateLogFile(const QString &name);

} // namespace Vorn::Util
