#pragma once

#include <Utility/Formats/ArchiverDialect_p.h>

#include <QtCore/QString>

namespace Vorn::Util {

/// The archiver and how to use it.
struct ArchiverProgram
{
    QString path;
    Formats::ArchiverDialect dialect = Formats::ArchiverDialect::UpTo933;
    char separator = '/'; ///< the separator of folders in the names that it prints
};

/// Finds the archiver in the folder \a productFolder or, depending on the system, in other folders.
/// See Platform::findArchiver().
///
/// Its dialect follows from its version:
/// - Programs for Windows have a version block, which contains the version.
/// - A "7z.exe" without a version block gets the dialect up to 9.33.
/// - Any other program is run without arguments and prints its version. This takes at most about
///   TimeForVersion, and is repeated only if size or time of the file have changed. A program that
///   prints no version gets the newest dialect.
///
/// Any thread may call this function.
ArchiverProgram findArchiverProgram(const QString &productFolder);

constexpr int TimeForVersion = 3000; ///< milliseconds

} // namespace Vorn::Util
