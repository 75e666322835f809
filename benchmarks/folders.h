#pragma once

#include <QtCore/QString>

/// The folders that the library and its peers measure and remove.
namespace Folders {

/// How many files the folders have; fewer where each takes longer.
int fileCount();

/// The size of the files in such a folder together, in bytes.
qint64 size();

/// A folder with many files, made once.
QString lasting();

/// A folder with many files, for one removal.
QString toRemove();

} // namespace Folders
