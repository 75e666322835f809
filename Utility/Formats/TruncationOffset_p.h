#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

namespace Vorn::Util::Formats {

/// The minimum number of bytes at the beginning of a log that a truncation removes.
constexpr int AmountToTruncate = 1048576;

/// The maximum number of bytes at the beginning of a log that truncationOffset() reads.
extern const int LogHeadSize;

/// The offset of the tail of a log: the part that a truncation keeps.
///
/// The log is divided into pieces. A line with its line end is a piece; a line of more than 255
/// bytes is several pieces of 255 bytes. The tail begins with the first piece whose offset is
/// greater than \a amount. In a long line this can be in the middle of a character.
///
/// \a head is the beginning of the log: LogHeadSize bytes, or the whole log if it is shorter. If
/// nothing is kept, returns the length of \a head.
///
/// To read less, a first part of the log that ends with a line can be omitted: subtract its length
/// from \a amount, which must be positive, and add it to the result.
qint64 truncationOffset(const QByteArray &head, int amount = AmountToTruncate);

} // namespace Vorn::Util::Formats
