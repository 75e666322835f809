#pragma once

#include <QtCore/QtGlobal>

class QFile;

namespace Vorn::Util::Platform {

/// Writes the first of \a count bytes to the open \a file, whose buffer must be empty. This is
/// faster than file.write() and file.flush(), which must write the others. Returns how many bytes
/// were written; -1 if none could be.
///
/// Windows: 0. Only file.write() converts line ends.
qint64 writeDirectly(const QFile &file, const char *bytes, int count);

/// The size in bytes of the open \a file, whose buffer must be empty. This is faster than
/// file.size(). Returns -1 if the system does not report the size.
qint64 sizeOf(const QFile &file);

} // namespace Vorn::Util::Platform
