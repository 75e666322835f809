#pragma once

#include <QtCore/QString>

namespace ClusterStudy {

/// How far a study is.
struct Progress
{
    int total = 0;    ///< all cases
    int done = 0;     ///< succeeded, in this run or before
    int failed = 0;   ///< failed in this run
    int running = 0;  ///< now
    int finished = 0; ///< ended in this run
    int toRun = 0;    ///< cases of this run
};

/// The expected time in milliseconds until all cases have ended; -1 as long as none has ended.
qint64 timeLeft(const Progress &progress, qint64 elapsed);

/// A line about the progress after \a elapsed milliseconds.
QString progressLine(const Progress &progress, qint64 elapsed);

} // namespace ClusterStudy
