#pragma once

#include <QtCore/QStringList>

/// "sevenzip-convert FUNCTION ARGUMENT...": prints the result of a converter of SevenZip.
int sevenZipConvert(const QStringList &arguments);

/// "sevenzip-missing FOLDER CURRENTPATH OPERATION": runs a SevenZip operation that finds no
/// archiver, and prints what happens. FOLDER is empty and is the whole PATH.
int sevenZipMissing(const QStringList &arguments);

/// "sevenzip-run FOLDER OPERATION ARCHIVE NAME": runs a SevenZip operation with the archiver in
/// FOLDER, which is the whole PATH, and prints the result, the error and the files. NAME is the
/// file to compress or the folder to extract to.
int sevenZipRun(const QStringList &arguments);
