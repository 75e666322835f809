#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

namespace Vorn::Util {

/// \ingroup system
/// The product's standard folders and other services of the operating system: paths, processes,
/// language, flags, folder trees. Static members only.
///
/// \snippet docs/samples/system.cpp folders
///
/// "Native" means with the separators of the system. If a folder cannot be found, the result is an
/// empty text or the fallback described at the function. No function throws. Messages are written
/// as debug messages of the category "vorn.utility".
///
/// \par Threads
/// Any thread may call the functions for processes, environment variables, the host name and the
/// user name (from getPID() to getUserName() in this header, and isLocalHost()) at any time.
///
/// The functions for folders find a folder in the first call, keep it in a static variable and
/// return it in further calls. They take no lock. These calls have undefined behaviour:
/// - the first call of such a function in two threads at the same time,
/// - getProgramDataPath() with a new \a name while another thread calls it,
/// - setWorkingDirPath() while another thread calls getWorkingDirPath().
///
/// To use these functions in several threads, call each of them once before the threads start, and
/// getProgramDataPath() with one name only. A function that has returned an empty text searches
/// again in each call: use it in one thread only.
class VORNUTILITY_EXPORT System
{
public:
    /// There are no objects of this class.
    explicit System() = delete; // explicit: System{} does not compile either

    /// The data folder for all users; native. It is not created.
    static QString getAllUsersDataPath();

    /// The folder \a name of the product in the application data of the machine; native. It is not
    /// created.
    ///
    /// There is one cached path for all names. If it contains \a name anywhere, it is returned:
    /// after a call for "VORN 2024" a call for "VORN" returns the same folder.
    /// Kept for compatibility: see "One program-data folder for all names" in
    /// docs/compatibility.md.
    static QString getProgramDataPath(QString name);

    /// The product's folder in the public documents; native. The first call creates it. The public
    /// documents are below the folder in the environment variable "PUBLIC". If it is not set, they
    /// are below the product's folder in the application data of the machine.
    /// Kept for compatibility: see "Doubled public documents" in docs/compatibility.md.
    static QString getPublicDocumentsDirPath();

    /// The data folder of the user; native. It is not created.
    static QString getUserDataPath();

    /// The folder for temporary files. If the path of the system's folder contains characters
    /// outside ASCII: the product's folder in the application data of the machine, which is not
    /// created.
    static QString getTempDirPath();

    /// A name for a temporary file, with the suffix of \a fileName (the part after its last dot).
    /// Empty if the system provides no name. On Windows the result can be a full path.
    ///
    /// The file is not created, and a file of this name may already exist. So open the file with
    /// QIODevice::NewOnly, or use QTemporaryFile instead of this function.
    static QString getTempFileName(const QString &fileName);

    /// The folder set with setWorkingDirPath(). If none was set, the folder that is the current
    /// folder of the process in the first call.
    static QString getWorkingDirPath();

    /// Sets the working folder to \a path or, if \a path is an existing file, to its folder. The
    /// current folder of the process does not change.
    static void setWorkingDirPath(const QString &path);

    /// The folder in the setting "AnalyzeDirectory"; native. Empty if it is not set.
    static QString getAnalyzeDirPath();

    /// The folder "Tutorials" in getPublicDocumentsDirPath(); native. The first call creates it.
    static QString getTutorialsDirPath();

    /// The folder "Rule" in getUserDataPath(); native. Each call creates it if it does not exist.
    /// Empty if it cannot be created.
    static QString getRuleDirPath();

    /// The folder "Template" in getUserDataPath(). Otherwise like getRuleDirPath().
    static QString getTemplateDirPath();

    /// The folder of the running program, which normally is that of the product's main program;
    /// native. If it cannot be found, the setting "InstallationDirectory".
    ///
    /// This function and getProgramFilesPathFromRegistry() share one cached path: the function that
    /// is called first decides what both return.
    static QString getCurrentExePath();

    /// The setting "InstallationDirectory" or, if it is not set and \a registryOnly is false, the
    /// environment variable "TAVELINE2024DIR"; native. See getCurrentExePath() for the cached path.
    static QString getProgramFilesPathFromRegistry(bool registryOnly);

    /// Creates a folder and its missing parents. Returns false if a folder cannot be created, or if
    /// no part of \a path exists.
    ///
    /// Give an absolute path. Each missing folder of a relative path would be created relative to
    /// the previous folder, which is not what the path means.
    static bool makePath(const QString &path);

    /// Whether \a path begins with "/mnt", like the drives in the Windows Subsystem for Linux.
    static bool isWslPath(const QString &path);

    /// Whether isWslPath() is false.
    static bool isWindowsPath(const QString &path);

    /// Converts "/mnt/d/work/case1" to "D:\work\case1". Any other path is returned unchanged. If
    /// "/mnt/d" occurs again in the path, it is replaced there, too.
    /// Kept for compatibility: see "Every occurrence of a drive" in docs/compatibility.md.
    static QString toWindowsPath(const QString &path);

    /// Converts "D:\work\case1" to "/mnt/d/work/case1". Any other path is returned unchanged. If
    /// "D:" occurs again in the path, it is replaced there, too. A vertical bar is accepted as the
    /// letter of a drive.
    /// Kept for compatibility: see "Every occurrence of a drive" and "Vertical bar as a drive
    /// letter" in docs/compatibility.md.
    static QString toWslPath(const QString &path);

    /// The network path of a path on a mapped drive, or the folder of a path on a substituted drive
    /// (subst). Any other path is returned unchanged.
    static QString getUniversalPath(const QString &path);

    /// Whether \a host is "localhost", "MyComputer" or getHostName(), in the same letter case.
    static bool isLocalHost(const QString &host);

    /// The id of the first running process with one of the program names \a names; 0 if there is
    /// none. Give the names in upper case ("VORN.EXE"): the name of the program is converted to
    /// upper case and compared with them. Processes that this process may not open are skipped.
    static long getPID(const QStringList &names);

    /// Whether a program with exactly this file name is running, under any user.
    ///
    /// Linux: a process of another user is identified by the name that it gives itself, which at
    /// first is that of its program. It is found only if the name has fewer than 15 bytes. So do
    /// not rely on the result.
    ///
    /// Windows: each call leaves a handle open.
    /// Kept for compatibility: see "Snapshot of processes" in docs/compatibility.md.
    static bool isProcessRunning(const QString &exeName);

    /// Terminates the processes whose program name is in \a names and whose program path contains
    /// \a pathFilter, both in any letter case. An empty filter matches every path. If the path of a
    /// process cannot be read, its name is compared with the filter. Processes that this process
    /// may not open are skipped.
    /// Kept for compatibility: see "Filter without a path" in docs/compatibility.md.
    ///
    /// Returns the names of the terminated processes. Does not wait for their end.
    ///
    /// Linux without pidfd_open() (before 5.3, or forbidden in a container): if a process ends
    /// during the call and its id is used again at once, the new process can be terminated.
    static QStringList killProcesses(const QString &pathFilter, const QStringList &names);

    /// Starts a program that continues to run after the end of this process. Returns false if it
    /// cannot be started.
    static bool startProcess(const QString &program, const QStringList &arguments);

    /// The value of an environment variable, read as Latin-1; empty if it is not set.
    static QString getEnv(const QString &name);

    /// The name of the machine. It is queried once per process.
    static QString getHostName();

    /// The name of the user who runs the process; empty if it cannot be found.
    static QString getUserName();

    /// The language of the user interface, for example "de-DE". It is a machine-wide setting. If it
    /// is not set, the result is "en-US". The setting is not checked against validLocales().
    static QString getLocale();

    /// The Windows language identifier of getLocale(), for example 1031 for "de-DE" or "de-de".
    /// 1033 ("en-US") if the language is not one of validLocales().
    static int getLocaleID();

    /// Sets the language for all users of the machine. Does nothing if the process may not write
    /// the machine-wide settings.
    static void setLocale(QString locale);

    /// The languages of the user interface that the product offers.
    static QStringList validLocales();

    /// Sets the value \a key of the product's machine-wide settings. A failure is not reported.
    static void writeToRegistry(const QString &key, const QString &value);

    /// The folder of the flags file; native. The first call creates it. Empty if it cannot be
    /// created; the next call then tries again.
    static QString getFlagsDirPath();

    /// Whether \a flag is the first word of a line in the file "VORN_flags.txt" in
    /// getFlagsDirPath(). The file is read in each call, up to the first line of 1048576 or more
    /// characters.
    static bool isFlagSet(const QString &flag);

    /// The total size of the files below \a path in bytes; 0 if the folder does not exist. Hidden
    /// files and the content of hidden folders do not count, and links to folders are not followed.
    /// A link to a file counts as much as the file; on Windows this is true for shortcuts, while a
    /// symbolic link counts as in the listing of its folder, usually 0. A file with several names
    /// counts for each. A folder in Qt's resources (":/name") counts 0.
    ///
    /// Costs: the system is asked for each file, which takes one or two seconds for a million
    /// files. The memory does not depend on the number of files.
    static qint64 getDirectorySize(const QString &path);

    /// Removes the folder \a path with its content. \a exceptions are names of entries directly in
    /// the folder that are not removed; the letter case matters. The folder itself is kept if
    /// \a keepFolder is true or if there are exceptions.
    ///
    /// Links: if \a path is a link, the link is removed. But if the folder is to be kept, the
    /// folder that the link points to is emptied. A link or junction inside the tree is removed,
    /// never its target, even if it replaces a folder during the call. A Windows shortcut (".lnk")
    /// is a file.
    ///
    /// Not removed: devices, pipes and sockets, links to them, broken links, and on Linux entries
    /// whose name is not valid text. So the folders that contain them cannot be removed either.
    ///
    /// Returns false if \a path is empty or a removal fails; everything else is still removed. An
    /// entry that is not removed because of its kind is not a failure, but the removal of its
    /// folder fails. If the folder is to be kept and does not exist or cannot be read, the result
    /// is true.
    ///
    /// The memory does not depend on the number of files.
    /// Kept for compatibility: see "What removeDir leaves" and "Missing folder to keep" in
    /// docs/compatibility.md.
    static bool removeDir(const QString &path, bool keepFolder, const QStringList &exceptions);

    /// Shares a folder on the network, so that everybody may read and write it. Returns false if
    /// the system refuses it; always false on Linux.
    static bool shareFolder(const QString &shareName, const QString &path);

    /// Whether the system reports that \a path is shared; always false on Linux.
    static bool isFolderShared(const QString &path);

    /// The version of a program file, for example "24.0.75.1"; "0.0.0.0" if the file has none. Each
    /// call also prints three lines with the version to the standard output.
    static QString getFileVersion(const QString &filePath);

    /// A duration as text, truncated to hundredths of a second: "1:05:09.07", "5:09.07",
    /// "9.07 sec".
    static QString getElapsedTimeString(qint64 milliseconds);

private:
    static QString makeAndGetNativePath(const QString &path);

    static QString hostName_;
    static QString programFilesPath_;
    static QString workingDirPath_;
    static QString flagsDirPath_;
    static QString programDataPath_;
    static QString analyzeDirPath_;
    static QString userDataPath_;
    static QString allUsersDataPath_;
    static QString tempDirPath_;
    static QString publicDocumentsPath_;
    static QString tutorialsPath_;
};

} // namespace Vorn::Util
