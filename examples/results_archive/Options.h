#pragma once

#include <Utility/SevenZip.h>

#include <QtCore/QString>

namespace ResultsArchive {

/// The options of the command line. Paths are absolute.
struct Options
{
    QString folder;
    QString archive;
    QString log;
    QString clusterTools; ///< empty if the cluster is not to be logged
    Vorn::Util::SevenZip::Type type = Vorn::Util::SevenZip::Type7z;
    Vorn::Util::SevenZip::Method method = Vorn::Util::SevenZip::LZMA2;
    Vorn::Util::SevenZip::Level level = Vorn::Util::SevenZip::Fastest;
};

/// Reads the command line of the application into \a options. Returns an error message, or an empty
/// text: then the folders exist, the archive does not exist and can be written, and neither the
/// archive nor the log is inside the folder to pack. For "--help" prints the help and ends the
/// program.
QString readOptions(Options &options);

} // namespace ResultsArchive
