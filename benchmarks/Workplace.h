#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// The folders and files that the benchmarks use. They are in one folder, which main() chooses.
namespace Workplace {

void setFolder(const QString &folder);

/// The path of \a name in that folder.
QString path(const QString &name);

/// Makes the folder \a name with \a count files of \a size bytes, a hundred in each subfolder,
/// unless the folder exists. The files contain random digits. Returns their paths.
QStringList makeFiles(const QString &name, int count, int size);

/// Runs a command line with the shell of the system and discards its output.
void shell(const QString &command);

/// The memory that the process has allocated, in bytes.
qint64 memory();

} // namespace Workplace
