#pragma once

#include "Study.h"

#include <QtCore/QString>

namespace ClusterStudy {

/// The command line. Paths are absolute.
struct Options
{
    Study study;
    QString output;
    int jobs = 0; ///< cases at a time; 0 for as many as the machine has cores, or Slurm allows
    bool slurm = false;
    QString clusterTools; ///< the folder of the cluster tool
    bool resume = false;
};

/// Reads the command line of the application and the file of cases into \a options. Returns an
/// error message, empty if there is no error. For "--help" prints the help and ends the program.
QString readOptions(Options &options);

} // namespace ClusterStudy
