#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

namespace Vorn::Util::Formats {

/// The bytes at the beginning of a log that a truncation removes at least.
constexpr int AmountToTruncate = 1048576;

/// The bytes at the beginning of a log that truncationOffset() needs at most.
extern const int LogHeadSize;

/// The offset of the part of a log that a truncation keeps. A log is read in pieces: a line with its
/// line end is one piece, a longer line is several pieces of 255 bytes. The kept part begins at the
/// first piece that starts more than AmountToTruncate bytes into the file. In a long line this can
/// be in the middle of the line, even of a character.
///
/// \a head is the beginning of the log, LogHeadSize bytes long or, for a shorter log, all of it.
/// Returns the length of \a head when nothing is kept.
qint64 truncationOffset(const QByteArray &head);

} // namespace Vorn::Util::Formats
