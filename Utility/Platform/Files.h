#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The result of a move. If it is not Moved, nothing has changed.
enum class MoveOutcome {
    Moved,
    OtherFileSystem, ///< the two paths are on different file systems
    Failed
};

/// Moves \a source to \a target in one step and replaces a file at \a target. A link is moved or
/// replaced itself, not its target. \a target must not be a folder, and isSameFile() must be false
/// for the two paths.
MoveOutcome moveFile(const QString &source, const QString &target);

/// Whether both paths refer to the same file or folder, also through links, hard links, mounts or
/// drives. False if one does not exist.
bool isSameFile(const QString &first, const QString &second);

/// Removes a file, also if it is read-only. A link is removed itself, not its target. False for a
/// folder.
bool removeFile(const QString &path);

/// Opens \a file for writing text; it is then empty. An existing file is replaced (Linux) or
/// emptied (Windows), even if another process has it open. False if it is a link; then nothing is
/// created or changed.
bool openWithoutLink(QFile &file);

/// Opens \a file for reading. A link is followed. False if it is not a regular file, also if
/// another process puts it in the place of one during the call: opening a pipe would wait for a
/// writer.
bool openPlainFile(QFile &file);

} // namespace Vorn::Util::Platform
