#pragma once

#include <QtCore/QString>

namespace SystemReport {

/// The command line. Paths are absolute.
struct Options
{
    int seconds = 5;      ///< how long the counters are read
    QString html;         ///< the page to write; empty for text on the standard output
    QString clusterTools; ///< the folder of the cluster tool
};

/// Reads the command line of the application into \a options. Returns an error message, empty if
/// there is no error. For "--help" prints the help and ends the program.
QString readOptions(Options &options);

} // namespace SystemReport
