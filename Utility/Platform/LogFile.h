#pragma once

#include <QtCore/QtGlobal>

class QFile;

namespace Vorn::Util::Platform {

/// Writes \a count bytes to the open \a file, whose buffer must be empty. Returns how many of them
/// were written; -1 after a failure. The caller must write the rest with file.write() and
/// file.flush(), which are slower.
///
/// Windows: writes nothing and returns 0, because only file.write() converts line ends.
qint64 writeDirectly(const QFile &file, const char *bytes, qint64 count);

/// The size in bytes of the open \a file, whose buffer must be empty. This is faster than
/// file.size(). Returns -1 if the system does not report the size.
qint64 sizeOf(const QFile &file);

} // namespace Vorn::Util::Platform
