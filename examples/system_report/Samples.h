#pragma once

#include <QtCore/QVector>
#include <QtCore/QtGlobal>

namespace SystemReport {

/// The counters at one time. A value is negative if it is not known.
struct Sample
{
    qint64 milliseconds = 0; ///< since the first sample was prepared
    qint64 load = -1;        ///< of all processors since the previous sample, in percent
    qint64 available = -1;   ///< memory in MiB
    qint64 committed = -1;   ///< memory in percent of the commit limit; can be more than 100
};

/// Reads the counters for \a seconds: every 250 milliseconds, for longer times less often.
QVector<Sample> takeSamples(int seconds);

/// The average of the values that are known; -1 if there are none.
qint64 average(const QVector<Sample> &samples, qint64 Sample::*value);

} // namespace SystemReport
