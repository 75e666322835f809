#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <optional>

namespace Vorn::Util::Formats {

/// What a system's records of its processors say. The functions here read recorded bytes, texts
/// and folders; they ask no system.
struct ProcessorCounts
{
    int packages = 0;
    int cores = 0;
    /// Simultaneous multithreading: whether the last core has more than one logical processor.
    /// Nothing when the records do not say.
    std::optional<bool> smt;
};

/// Reads the variable-length records of Windows's extended query. Unknown kinds are skipped; a
/// record that does not fit ends the walk.
ProcessorCounts countExtendedRecords(const QByteArray &records);

/// Reads the fixed-size records of Windows's older query (64-bit form), which do not tell SMT.
ProcessorCounts countFixedRecords(const QByteArray &records);

struct ProcessorQuery
{
    bool ok = false;
    ProcessorCounts counts;
    QStringList messages; ///< what the caller's log is to say about the query, in order
};

struct CallOutcome
{
    bool ok;
    quint32 error; ///< the system's code when it failed
};

/// A call of Windows that fills \a buffer with records. \a length is the buffer's in bytes and
/// becomes that of the records; with a null buffer it becomes the length needed.
using RecordsCall = std::function<CallOutcome(char *buffer, quint32 *length)>;

/// Asks \a extended or, where the system has no such call and it is empty, \a older.
ProcessorQuery queryRecords(const RecordsCall &extended, const RecordsCall &older);

/// Reads a folder such as /sys/devices/system/cpu. No packages when it says nothing.
ProcessorCounts countSysfs(const QString &folder);

/// Reads a text such as /proc/cpuinfo. No packages when it says nothing.
ProcessorCounts countCpuinfo(const QString &text);

} // namespace Vorn::Util::Formats
