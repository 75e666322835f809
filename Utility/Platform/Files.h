#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The result of a move. Nothing has changed unless it is Moved.
enum class MoveOutcome {
    Moved,
    OtherFileSystem, ///< the two paths lie on different file systems
    Failed
};

/// Moves \a source to \a target in one step, in the place of a file that lies there. A link is
/// moved or replaced itself, not what it leads to. \a target must not be a folder, nor the file
/// itself by another path or name (isSameFile()).
MoveOutcome moveFile(const QString &source, const QString &target);

/// Whether both paths lead to the same file or folder, also through links, two hard links, or two
/// mounts or drives. False when one leads nowhere.
bool isSameFile(const QString &first, const QString &second);

/// Removes a file, also a read-only one. A link is removed itself. False for a folder.
bool removeFile(const QString &path);

/// Opens \a file to write text to it, as a new file or in the place of an old one, also while
/// another process has the old one open. False for a link, wherever it leads: nothing is created or
/// changed there.
bool openWithoutLink(QFile &file);

/// Opens \a file to read it; a link is followed. False for anything but a plain file, also when it
/// takes the place of a plain file meanwhile: opening a pipe would wait for a writer.
bool openPlainFile(QFile &file);

} // namespace Vorn::Util::Platform
