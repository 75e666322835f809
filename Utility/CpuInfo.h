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
/// pool.setMaxThreadCount(cpu.coreCount());
/// \endcode
///
/// A failure is a line in the log (without one, on Qt's debug channel); the numbers are then
/// 1 processor, 1 core, hyper-threading off. A file that cannot be read is left alone: delete it
/// to have the system asked again.
///
/// A copyable value for one thread; the log is not owned and may be null.
class VORNUTILITY_EXPORT CpuInfo
{
public:
    /// Reads the file in \a dir, or asks the system and writes it. The folder is not created.
    CpuInfo(Log *log, const QString &dir);

    /// Processor packages (sockets).
    int processorCount() const;

    /// Physical cores of all packages.
    int coreCount() const;

    /// Cores per package, rounded down; a package count of 0 counts as 1.
    int coresPerProcessor() const;

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
