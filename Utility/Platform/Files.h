#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// What came of a move. Nothing has changed unless it is Moved.
enum class MoveOutcome {
    Moved,
    OtherFileSystem, ///< the two paths lie on different file systems
    Failed
};

/// Moves \a source to \a target in one step, in the place of a file that lies there. A link is
/// moved or replaced itself, not what it leads to. A folder takes the place of nothing.
MoveOutcome moveFile(const QString &source, const QString &target);

/// Opens \a file to write text to it, as a new file or in the place of an old one, also while
/// another process has the old one open. False for a link, wherever it leads: nothing is created or
/// changed there.
bool openWithoutLink(QFile &file);

} // namespace Vorn::Util::Platform
