#pragma once

#include <QtCore/QString>

class QFile;

namespace Vorn::Util::Platform {

/// Whether this process may replace the file \a name by another one, as far as this can be known
/// without trying. False if the folder is not writable or the file is protected. \a name must not
/// be a link. Makes some system calls.
bool mayReplaceFile(const QString &name);

/// Whether this process may create a file in \a folder, as far as this can be known without trying.
/// False if \a folder is not a folder. Makes one or two system calls.
bool mayCreateFileIn(const QString &folder);

/// The number of bytes that this process can write to the file system of \a folder. 0 if no more
/// files can be created. The maximum of qint64 if the system does not report the number.
qint64 availableSpace(const QString &folder);

/// Replaces \a file by its tail, which begins at the offset that \a tailOffset returns. At any
/// time the name of the file refers to the complete old or the complete new content. \a file is
/// open for reading and not a link. The call may close it. Returns false if the file was not
/// replaced and is unchanged.
///
/// The tail is copied to a new file in \a temporaryFolder, which must exist. If that is on another
/// file system, the tail is copied a second time, to the folder of \a file. \a tailOffset is
/// called only after a new file was created.
///
/// Linux: other users cannot read a copy before it is in the folder of \a file. It gets the owner,
/// group, access control list and permission bits of \a file just before the replacement, and its
/// owner may write it. If the group or the access control list cannot be kept, the group gets only
/// the permissions of others. Until a copy is complete, it has no name, if the file system supports
/// this and /proc is available. So a killed process leaves no file in \a temporaryFolder, but it
/// can leave one in the folder of \a file.
///
/// Windows: the permissions are those of a new file in \a temporaryFolder or, if it is on another
/// volume, in the folder of \a file. A killed process leaves its copies.
bool replaceByTail(QFile &file, const QString &temporaryFolder, qint64 (*tailOffset)(QFile &));

} // namespace Vorn::Util::Platform
