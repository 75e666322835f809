#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

class QDomElement;

namespace Vorn::Util {

class Log;

/// The processors of this machine. Asking the system is slow, so the answer is kept in the file
/// "SystemInfo.xml" of a folder and read from there as long as the file exists.
///
/// \code
/// CpuInfo cpu(&log, System::getUserDataPath());
/// pool.setMaxThreadCount(qMax(1, cpu.coreCount()));
/// \endcode
///
/// A failure is a line in the log or, without a log, on Qt's debug channel. The numbers are then:
///
/// - The file cannot be read: 1 processor and 1 core, and hyper-threading is off. The system is not
///   asked.
/// - The file does not say whether hyper-threading is on: the system is asked, and its numbers are
///   used instead of those in the file. When the system cannot be asked, the numbers in the file
///   are used, and hyper-threading is off.
/// - There is no file, and the system cannot be asked: 1 processor and 1 core, and hyper-threading
///   is off. These numbers are saved.
/// - There is no file, and none can be saved: the system's numbers are used.
///
/// A file that cannot be read is left alone: delete it to have the system asked again. Such a file
/// is one that is not well-formed, is not a plain file (a pipe, a folder), has more than 1 MiB or
/// more than 2,000 "<", or holds "<!DOCTYPE". The numbers in a file that can be read are not
/// checked against the machine. A text that is not a number is read as 0.
///
/// A link to a file is followed to read it. Nothing is written through a link: one that leads to
/// nothing counts as no file, stays as it is, and the saving fails.
///
/// The parser calls itself for each level of elements: the deepest file takes up to 800 KiB of the
/// thread's stack.
///
/// A copyable value for one thread at a time. The log is not owned, may be null, and must live as
/// long as the constructor runs. When two processes write the file at once, the last one wins.
class VORNUTILITY_EXPORT CpuInfo
{
public:
    /// Reads the file in \a dir, or asks the system and writes it. The folder is not created;
    /// without it, saving fails and the numbers are the system's.
    CpuInfo(Log *log, const QString &dir);

    /// Processor packages (sockets). At least 1, unless the file says otherwise.
    int processorCount() const;

    /// Physical cores of all packages. At least 1, unless the file says otherwise. The file holds
    /// the cores per package, rounded down: when the packages differ, the number read back can be
    /// smaller.
    int coreCount() const;

    /// Cores per package, rounded down; a package count of 0 counts as 1.
    int coresPerProcessor() const;

    /// Whether a core runs several threads (simultaneous multithreading). The last core that the
    /// system lists decides.
    /// Kept for compatibility: see "Hyper-threading of the last core" in docs/compatibility.md.
    bool isHyperThreadingOn() const;

private:
    bool getSystemInfo();
    bool loadFromXml();
    bool isV14Format(const QDomElement &root) const;
    void loadV14Format(const QDomElement &root);
    bool saveToXml() const;
    void log(const QString &message);

    static QString InfoFileName;

    QString infoFilePath_;
    Log *log_;
    int processorCount_ = 1;
    int coreCount_ = 1;
    bool hyperThreading_ = false;
};

} // namespace Vorn::Util
