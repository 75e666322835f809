#pragma once

#include <Utility/SevenZip.h>

#include <QtCore/QString>

namespace ResultsArchive {

/// What the command line asks for. Paths are absolute.
struct Options
{
    QString folder;
    QString archive;
    QString log;
    QString clusterTools; ///< empty when the cluster is not asked for
    Vorn::Util::SevenZip::Type type = Vorn::Util::SevenZip::Type7z;
    Vorn::Util::SevenZip::Method method = Vorn::Util::SevenZip::LZMA2;
    Vorn::Util::SevenZip::Level level = Vorn::Util::SevenZip::Fastest;
};

/// Fills \a options from the application's command line. Returns what is wrong with it, empty
/// when nothing is: the folders exist, the archive does not and can be written, and neither it nor
/// the log lies inside the folder. Ends the program for "--help".
QString readOptions(Options &options);

} // namespace ResultsArchive
