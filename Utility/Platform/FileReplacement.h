#pragma once

#include <QtCore/QString>

class QFile;

namespace Vorn::Util::Platform {

/// False when this process cannot put another file in the place of the file \a name, as far as the
/// system tells without a try: its folder cannot be written, or the file is protected. Not for a
/// link. Costs some system calls.
bool mayReplaceFile(const QString &name);

/// False when this process cannot make a file in \a folder, as far as the system tells without a
/// try, or when that is no folder. Costs one or two system calls.
bool mayCreateFileIn(const QString &folder);

/// The bytes that are free for this process on the file system of \a folder; 0 when no further file
/// can be made there. When the system does not tell, the largest number there is.
qint64 availableSpace(const QString &folder);

/// Puts the rest of \a file in the place of the whole file. At every moment the file's name stands
/// for the old content or for the new one. \a file is open for reading, not a link, and may be
/// closed afterwards. False when it could not be replaced; then it is as it was.
///
/// The rest is copied to a new file in \a temporaryFolder, which must exist. When that is on
/// another file system, a second copy is made beside the file. Once there is a new file, \a
/// startOfRest reads \a file to tell where the rest begins: without a new file nothing is read.
///
/// On Linux nobody else can read a copy before it lies in the file's folder. It gets the file's
/// owner, group, access list and permission bits just before it takes its place. Where the group or
/// the access list cannot be kept, the group gets no more than everybody. The copies have no names
/// until they are complete (where the file system knows such files, and /proc is there), so that a
/// process that is killed leaves none in \a temporaryFolder. A process that is killed between the
/// naming and the replacement leaves one beside the file.
///
/// On Windows the permissions are those that \a temporaryFolder gives to a new file, or the file's
/// own folder when it is on another volume. A process that is killed leaves its copies.
bool replaceByRest(QFile &file, const QString &temporaryFolder, qint64 (*startOfRest)(QFile &));

} // namespace Vorn::Util::Platform
