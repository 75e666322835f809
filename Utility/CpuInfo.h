#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>

class QDomElement;

namespace Vorn::Util {

class Log;

/// \ingroup machine
/// The number of processors and cores of this machine, and whether hyper-threading is on. Querying
/// the system is slow. So the result is saved in the file "SystemInfo.xml" and read from there as
/// long as the file exists.
///
/// \snippet docs/samples/machine.cpp processors
///
/// \par Failures
/// A failure is logged or, if there is no log, written as a debug message of the category
/// "vorn.utility". The numbers are then:
/// - The file cannot be read: 1 processor, 1 core, hyper-threading off. The system is not queried,
///   and the file is not changed. Delete the file to query the system again.
/// - The file has no entry for hyper-threading: the numbers of the system. If the system cannot be
///   queried: the numbers in the file, hyper-threading off.
/// - The file has the format of version 14 of the product, which has no such entry: the numbers in
///   the file, hyper-threading off.
/// - There is no file, and the system cannot be queried: 1 processor, 1 core, hyper-threading off.
///   These numbers are saved.
/// - There is no file, and it cannot be saved: the numbers of the system.
///
/// \par File
/// A file cannot be read if it is not well-formed XML, is not a regular file, has more than 1 MiB
/// or more than 2,000 "<", or contains "<!DOCTYPE". The numbers in the file are not compared with
/// the machine. A text that is not a number is read as 0.
///
/// A symbolic link to a file is followed for reading. If the link points to nothing, there is no
/// file; the link is then not changed, and saving fails. If two processes save the file at the same
/// time, the last one wins.
///
/// Memory: the XML parser is recursive. A file with deeply nested elements takes up to 800 KiB of
/// the thread's stack.
///
/// Objects can be copied. Use an object in one thread at a time. The log is not owned, may be null,
/// and is used only by the constructor.
class VORNUTILITY_EXPORT CpuInfo
{
public:
    /// Reads the file in the folder \a dir or, if there is none, queries the system and saves the
    /// file. The folder is not created: if it does not exist, saving fails.
    CpuInfo(Log *log, const QString &dir);

    /// The number of processor packages (sockets). At least 1, unless the file contains a smaller
    /// number.
    int processorCount() const;

    /// The total number of physical cores. At least 1, unless the file contains a smaller number.
    /// The file contains the number of cores per package, rounded down. So if the packages differ,
    /// the number read from the file can be smaller than that of the machine.
    int coreCount() const;

    /// coreCount() / processorCount(), rounded towards 0. A processorCount() of 0 is taken as 1.
    int coresPerProcessor() const;

    /// Whether a core runs more than one thread (simultaneous multithreading, SMT). If the cores
    /// differ, the last core in the list of the system decides.
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
