#pragma once

#include <QtCore/QString>

namespace ClusterStudy {

/// How far a study is.
struct Progress
{
    int total = 0;     ///< all cases
    int before = 0;    ///< succeeded before this run
    int ok = 0;        ///< succeeded in this run
    int failed = 0;    ///< ended without success in this run
    int cancelled = 0; ///< in this run by Slurm, for example at a time limit
    int running = 0;   ///< now
    QString step;      ///< such as "cancelling"; empty while cases run
};

/// The expected time in milliseconds until all cases have ended; -1 as long as none has ended.
qint64 timeLeft(const Progress &progress, qint64 elapsed);

/// A line about the progress after \a elapsed milliseconds.
QString progressLine(const Progress &progress, qint64 elapsed);

} // namespace ClusterStudy
