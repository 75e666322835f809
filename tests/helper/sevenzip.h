#pragma once

#include <QtCore/QStringList>

/// "sevenzip-convert FUNCTION ARGUMENT...": prints the result of a converter of SevenZip.
int sevenZipConvert(const QStringList &arguments);

/// "sevenzip-missing FOLDER CURRENTPATH OPERATION": has SevenZip work where no archiver is to be
/// found, and prints what comes of it. FOLDER is empty, and all that is searched for programs.
int sevenZipMissing(const QStringList &arguments);
