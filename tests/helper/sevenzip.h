#pragma once

#include <QtCore/QStringList>

/// "sevenzip-convert FUNCTION ARGUMENT...": prints the result of a converter of SevenZip.
int sevenZipConvert(const QStringList &arguments);

/// "sevenzip-missing FOLDER CURRENTPATH OPERATION": has SevenZip work where no archiver is to be
/// found, and prints what comes of it. FOLDER is empty, and all that is searched for programs.
int sevenZipMissing(const QStringList &arguments);

/// "sevenzip-run FOLDER OPERATION ARCHIVE NAME": has SevenZip work with the archiver in FOLDER,
/// which is all that is searched for programs, and prints the result, the error and the files. NAME
/// is the file to compress or the folder to extract to.
int sevenZipRun(const QStringList &arguments);
