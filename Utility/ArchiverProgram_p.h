#pragma once

#include <Utility/Formats/ArchiverDialect_p.h>

#include <QtCore/QString>

namespace Vorn::Util {

struct ArchiverProgram
{
    QString path;
    Formats::ArchiverDialect dialect = Formats::ArchiverDialect::UpTo933;
    char separator = '/'; ///< between the folders of a name in its output
};

/// The archiver to run, in the folder of the product, \a productFolder, or elsewhere where the
/// system has more places for programs. Its version decides which dialect it speaks:
/// - that in its version block, which the programs for Windows have;
/// - else, for a "7z.exe", none: it speaks the dialect of the product's own program;
/// - else that which it prints when it is run without arguments. That is done once for each state
///   of the program file (its size and time) and takes at most about TimeForVersion. A program that
///   tells no version is taken for a current one.
/// May be called from any thread.
ArchiverProgram findArchiverProgram(const QString &productFolder);

constexpr int TimeForVersion = 3000; ///< milliseconds

} // namespace Vorn::Util
