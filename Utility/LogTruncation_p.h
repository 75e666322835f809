#pragma once

#include <QtCore/QString>

namespace Vorn::Util {

/// Replaces the file \a name, or the one that a link of that name leads to, by its own tail. The
/// tail is copied in the folder for temporary files, see Platform::replaceByRest().
///
/// When that fails (no such folder, a full disk, a file that cannot be replaced), the log stays as
/// it was. A failure that can be foreseen, because one of the two folders or the log cannot be
/// changed or too little space is left, costs some system calls and copies nothing. Without a new
/// file for the tail the log is not read.
void truncateLogFile(const QString &name);

} // namespace Vorn::Util
