#pragma once

#include <Utility/Export.h>

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <memory>

class QFile;

namespace Vorn::Util {

/// A log file: UTF-8, one line per message, each line prefixed by the time of writing.
///
/// A log larger than MaxLogSize is truncated: it loses about its first AmountToTruncate bytes. On
/// request the file name carries the start time; then at most MaxLogCount older files are kept
/// beside the new one.
///
/// \code
/// Log log(folder + "/run.log", Log::WithFileTimeStamp);
/// if (log.open(true))
///     log.append("Mesh read");           // "[14:23:10] Mesh read"
/// \endcode
///
/// Threads: any number of threads may call append() at the same time. Every other member is for
/// one thread at a time and must not run beside an append(). Writing to a log that is not open
/// writes nothing; no member throws. A Qt message handler that calls append() on a log waits for
/// ever when the message comes from an append() to the same log.
///
/// A written line has been handed to the operating system. It survives a crash of the process, but
/// not necessarily one of the machine.
///
/// Truncation copies the tail of the log, about 4 MiB, and replaces the file by the copy. The name
/// may be that of a link: then the file that it leads to is replaced, and the link stays.
/// Permission bits, owner, group and access list are kept where the process may set them (on
/// Windows the new file has the access list of the folder for temporary files, or of its own folder
/// when that is on another volume). A hard link goes on leading to the former file.
///
/// When the log cannot be truncated, it stays as it was and grows, and each append() tries again.
/// An attempt that must fail is cheap where this can be foreseen: one of the two folders is missing
/// or cannot be written, a disk is full, or the log is protected or a mount point of its own. A
/// quota, a security module that forbids the replacement, and a file system that refuses it for a
/// reason of its own cannot be foreseen: each line then costs up to two copies of the tail.
///
/// append() and the operators close an open log for its truncation and open it again afterwards.
/// Where it cannot be opened again (the process has changed its user since), the log writes nothing
/// more.
///
/// On Linux two processes may append to one file below the size limit. When one of them truncates
/// the file, the next append() of the other truncates it once more and goes on there, whereas its
/// fastAppend() goes on writing to the file that was replaced. On Windows each process needs a file
/// of its own: a log that another process holds open is not truncated.
class VORNUTILITY_EXPORT Log
{
public:
    /// What stands in front of a line. Any other value behaves as NoTimeStamp.
    enum TimeStamp : int {
        NoTimeStamp = 0, ///< nothing
        TimeOnly = 1,    ///< "[hh:mm:ss]", local time
        DateAndTime = 2  ///< "[ddd MMM d hh:mm:ss yyyy]", local time
    };

    /// Whether the file name carries the time at which it was set.
    enum FileTimeStamp : int {
        NoFileTimeStamp = 0,  ///< the name is used as given
        WithFileTimeStamp = 1 ///< "run.log" becomes "run_yyyy-MM-dd-hhmmss.log"
    };

    static const qint64 MaxLogSize;       ///< 5 MiB; a larger log is truncated
    static const qint64 AmountToTruncate; ///< 1 MiB; what truncation takes from the head
    static const int MaxLogCount;         ///< older time-stamped files that are kept

    /// A log without a name; timeStamp() is TimeOnly.
    Log();

    /// As setName(). The file is not opened.
    Log(const QString &name, Log::FileTimeStamp fileTimeStamp);

    /// Closes the file.
    ~Log();

    /// Names the file (by an absolute path, where the current folder may change: a truncation
    /// looks for the name again) and, with a time stamp, prunes old files of the same base name.
    /// Call it before open(): it neither opens nor creates the new file. A log that is open is
    /// closed, and Qt warns about it.
    void setName(const QString &name, Log::FileTimeStamp fileTimeStamp);

    /// The path of the file that is written, with its time stamp.
    QString name() const;

    /// Opens the file for writing, at its end or (without \a append) emptied. A log that is too
    /// large is truncated first, also when it is emptied then. Returns true when the file is open,
    /// also when it was so before; false when it cannot be opened.
    bool open(bool append);

    void close();
    void flush();

    /// Writes one line, truncating the file first when it is too large. Thread-safe. Trailing
    /// white space of \a text is dropped. The operating system has the line when the call returns.
    void append(const QString &text);

    /// As append(), but without the lock and without the size check.
    void fastAppend(const QString &text);

    /// Write the value alone: no prefix, no line end. They check the size, but take no lock. A
    /// character is Latin-1; a real number has up to 6 significant digits (3.14159, 1e+10).
    Log &operator<<(const QString &text);
    Log &operator<<(char character);
    Log &operator<<(int number);
    Log &operator<<(double number);

    void setTimeStamp(Log::TimeStamp timeStamp);
    Log::TimeStamp timeStamp() const;

    /// The "yyyy-MM-dd-hhmmss" in the file name; empty for a log named without one.
    QString fileTimeStampString() const;

    /// Deletes the empty files "baseName_20*.suffix" of the folder \a path, then the oldest by
    /// name until \a maxCount are left. Upper and lower case count as equal. Returns false when the
    /// folder does not exist, true when nothing had to be deleted, otherwise whether the last
    /// deletion succeeded.
    static bool removeOldTimeStampedLogFiles(const QString &path, const QString &baseName,
                                             const QString &suffix, int maxCount);

private:
    Q_DISABLE_COPY(Log)

    void checkSizeAndTruncate();
    void truncate();
    qint64 getSize() const;
    QString getPrefix() const;
    QString rstrip(const QString &text) const;
    static QString getFileTimeStamp();
    bool removeOldTimeStampedLogFiles();
    template <typename Value> void write(Value value);

    QString name_;
    QString path_;
    QString baseName_;
    QString suffix_;
    std::unique_ptr<QFile> file_; // never null
    QMutex mutex_;
    Log::TimeStamp timeStamp_ = TimeOnly;
    Log::FileTimeStamp fileTimeStamp_ = NoFileTimeStamp;
    QString fileTimeStampString_;
};

} // namespace Vorn::Util
