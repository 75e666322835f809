#pragma once

#include <Utility/Export.h>

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <memory>

class QFile;

namespace Vorn::Util {

/// \ingroup logs
/// A log file in UTF-8. Each message is one line that begins with the time of writing.
///
/// A log of more than MaxLogSize bytes is truncated: about its first AmountToTruncate bytes are
/// removed. The file name can contain the time at which it was set. Then at most MaxLogCount older
/// logs with the same base name are kept.
///
/// \snippet docs/samples/logs.cpp log
///
/// Writing to a log that is not open has no effect. No member throws.
///
/// When append() or fastAppend() returns, the operating system has the line. The line survives a
/// crash of the process, but not necessarily a crash of the machine.
///
/// \par Threads
/// Any number of threads may call append() at the same time. Call all other members in one thread
/// at a time, and not while another thread is in append(). A Qt message handler that calls append()
/// causes a deadlock if the message comes from an append() of the same log.
///
/// \par Truncation
/// The tail of the log, about 4 MiB, is copied to a new file in the folder for temporary files. The
/// new file then replaces the log. If the folder is on another file system than the log, the tail
/// is copied a second time. The truncated log can begin inside a line of more than 255 bytes.
/// Kept for compatibility: see "Long line in a truncated log" in docs/compatibility.md.
/// - If the name of the log is a symbolic link, the file that it points to is replaced, and the
///   link is kept. A hard link still refers to the old file.
/// - Linux: permission bits, owner, group and access control list are kept as far as the process
///   may set them. The owner may always write the truncated log.
/// - Windows: the new file has the access control list of a new file in the folder for temporary
///   files. If that folder is on another volume, it has that of a new file in the log's folder.
/// - The log is closed for the truncation and opened again. If it cannot be opened again, for
///   example because the process has changed its user, it stays closed.
///
/// \par Failed truncations
/// A log that cannot be truncated does not change; it grows, and each append() tries again. Some
/// failures are detected in advance, with a few system calls: a folder is missing or not writable,
/// there is too little disk space, the log is write-protected, or it is a mount point. Others are
/// not: a quota is exceeded, or a security module or the file system refuses the replacement. Each
/// attempt then copies the tail up to twice.
///
/// \par Several processes
/// - Linux: several processes may append to one log as long as it is not truncated. When a process
///   truncates it, the other processes still have the old file open. The next append() of such a
///   process truncates the log once more and continues in the new file. Its fastAppend() still
///   writes to the old file, so these lines are lost.
/// - Windows: give each process a log of its own. A log that another process has open is not
///   truncated.
class VORNUTILITY_EXPORT Log
{
public:
    /// The time stamp at the beginning of a line. Any other value behaves like NoTimeStamp.
    enum TimeStamp : int {
        NoTimeStamp = 0, ///< nothing
        TimeOnly = 1,    ///< "[hh:mm:ss]", local time
        DateAndTime = 2  ///< "[ddd MMM d hh:mm:ss yyyy]", local time
    };

    /// Whether the file name contains the time at which it was set.
    enum FileTimeStamp : int {
        NoFileTimeStamp = 0,  ///< the name is used as given
        WithFileTimeStamp = 1 ///< "run.log" becomes "run_yyyy-MM-dd-hhmmss.log"
    };

    /// 5 MiB. A larger log is truncated.
    static const qint64 MaxLogSize;

    /// 1 MiB. A truncation removes this much and up to 255 bytes more.
    static const qint64 AmountToTruncate;

    /// 10. At most this many older time-stamped logs are kept.
    static const int MaxLogCount;

    /// A log without a name. timeStamp() is TimeOnly.
    Log();

    /// Calls setName(). The file is not opened.
    Log(const QString &name, Log::FileTimeStamp fileTimeStamp);

    /// Closes the file.
    ~Log();

    /// Sets the name of the file. Call it before open(): it neither creates nor opens the file. If
    /// the log is open, it is closed, and Qt prints a warning.
    ///
    /// WithFileTimeStamp inserts the current time into the name and deletes old logs of the same
    /// base name with removeOldTimeStampedLogFiles() and MaxLogCount.
    ///
    /// If the current folder of the process can change, give an absolute path: a truncation opens
    /// the file by its name again.
    void setName(const QString &name, Log::FileTimeStamp fileTimeStamp);

    /// The path of the log, with the time stamp of the file name.
    QString name() const;

    /// Opens the log for writing. If \a append is false, its content is removed. A log that is too
    /// large is truncated first, in either case. If the log is already open, it stays open and
    /// keeps its content. Returns true if the log is open.
    bool open(bool append);

    /// Closes the file. Does nothing if the log is not open. open() opens it again.
    void close();

    /// Writes what is buffered to the file. append() and fastAppend() do so themselves. It does not
    /// wait for the disk.
    void flush();

    /// Writes a line: the time stamp in brackets, a blank, and \a text without white space at its
    /// end. The blank is also written if there is no time stamp. If the log is too large, truncates
    /// it first. Any thread may call this function.
    /// Kept for compatibility: see "Log lines" in docs/compatibility.md.
    void append(const QString &text);

    /// Like append(), but takes no lock and does not check the size.
    void fastAppend(const QString &text);

    /// Writes only \a text, without time stamp and line end. The operators check the size like
    /// append(), but take no lock.
    Log &operator<<(const QString &text);

    /// Writes only one character, which is read as Latin-1.
    Log &operator<<(char character);

    /// Writes only the number, in decimal.
    Log &operator<<(int number);

    /// Writes only the number, with up to 6 significant digits (3.14159, 1e+10).
    Log &operator<<(double number);

    /// Sets the time stamp of the lines that are written from now on.
    void setTimeStamp(Log::TimeStamp timeStamp);

    /// The time stamp at the beginning of a line. Default: TimeOnly.
    Log::TimeStamp timeStamp() const;

    /// The time in the file name, "yyyy-MM-dd-hhmmss"; empty if the name contains no time.
    QString fileTimeStampString() const;

    /// Deletes old time-stamped logs in the folder \a path: files whose names match
    /// "baseName_20*.suffix" in any letter case. Deletes the empty ones, then the first by name
    /// until at most \a maxCount are left. As the names contain the time, the first by name are the
    /// oldest.
    ///
    /// Returns false if the folder does not exist, true if nothing had to be deleted, otherwise
    /// whether the last deletion succeeded.
    /// Kept for compatibility: see "Old logs" in docs/compatibility.md.
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
