#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <optional>

namespace Vorn::Util::Formats {

/// The number of processors and cores. The functions in this file read them from bytes, texts and
/// folders; they do not query the system.
struct ProcessorCounts
{
    int packages = 0;
    int cores = 0;
    /// Simultaneous multithreading (SMT): whether the last core has more than one logical
    /// processor. Nothing if this is not known.
    std::optional<bool> smt;
};

/// Reads the records of GetLogicalProcessorInformationEx(), which have different sizes. Records of
/// other kinds are skipped. A record with an invalid size ends the reading.
ProcessorCounts countExtendedRecords(const QByteArray &records);

/// Reads the records of GetLogicalProcessorInformation() in the 64-bit form. They have a fixed size
/// and do not contain SMT.
ProcessorCounts countFixedRecords(const QByteArray &records);

struct ProcessorQuery
{
    bool ok = false;
    ProcessorCounts counts;
    QStringList messages; ///< the lines to log
};

struct CallOutcome
{
    bool ok;
    quint32 error; ///< the error code of the system if the call failed
};

/// A Windows function that writes records to \a buffer. \a length is the size of the buffer in
/// bytes; the function sets it to the size of the records or, if \a buffer is null, to the size
/// needed.
using RecordsCall = std::function<CallOutcome(char *buffer, quint32 *length)>;

/// Reads the records with \a extended or, if \a extended is empty because the system does not have
/// it, with \a older.
ProcessorQuery queryRecords(const RecordsCall &extended, const RecordsCall &older);

/// Reads the files in a folder like /sys/devices/system/cpu. The result has 0 packages if they
/// cannot be read.
ProcessorCounts countSysfs(const QString &folder);

/// Reads a text like that of /proc/cpuinfo. The result has 0 packages if it lists no processor.
ProcessorCounts countCpuinfo(const QString &text);

} // namespace Vorn::Util::Formats
