#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// Folders and files that the benchmarks work on, below one temporary folder that main() removes.
namespace Workplace {

void setFolder(const QString &folder);

/// The path of \a name in that folder.
QString path(const QString &name);

/// Makes the folder \a name with \a count files of \a size bytes of not very compressible text,
/// a hundred to a subfolder. Returns their paths.
QStringList makeFiles(const QString &name, int count, int size);

/// Runs a command line with the system's shell; its output goes nowhere.
void shell(const QString &command);

/// The memory that the process has allocated, in bytes.
qint64 memory();

} // namespace Workplace
