#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

namespace Vorn::Util {

/// The product's standard folders and other services of the system. Static members only.
///
/// \code
/// QFile results(System::getWorkingDirPath() + "/results.dat");
/// // The name can be a path: take its last part.
/// const QString name = QFileInfo(System::getTempFileName("scratch.dat")).fileName();
/// QFile scratch(System::getTempDirPath() + "/" + name);
/// const bool isNew = scratch.open(QIODevice::WriteOnly | QIODevice::NewOnly);
/// \endcode
///
/// "Native" means with the system's own separators. A folder that cannot be found is an empty text
/// or the fallback named; nothing throws. Messages go to Qt's debug channel.
///
/// Threads: any thread may call the functions for processes, environment variables, the host name
/// and the user name (getPID() to getUserName(), isLocalHost()) at any time. The functions for
/// folders keep a folder once it is worked out, without a lock. It is undefined behaviour, which
/// can end in a crash,
/// - to call one of them for the first time on two threads at once,
/// - to call getProgramDataPath() with another \a name while another thread calls it,
/// - to call setWorkingDirPath() while another thread calls getWorkingDirPath().
///
/// To use them on several threads, call each once before the threads start, and
/// getProgramDataPath() with one name only: from then on they only read. A function that has
/// returned an empty text looks for its folder again with each call, so it stays on one thread.
class VORNUTILITY_EXPORT System
{
public:
    explicit System() = delete; // explicit: System{} does not compile either

    /// The data folder that all users share; native. It is not created.
    static QString getAllUsersDataPath();

    /// The product's folder \a name in the machine's application data; native. It is not
    /// created. One cache serves all names: while the cached path contains \a name anywhere, it
    /// is the answer.
    static QString getProgramDataPath(QString name);

    /// The product's folder in the public documents (variable "PUBLIC"); native. The first call
    /// creates it.
    static QString getPublicDocumentsDirPath();

    /// The user's own data folder; native. It is not created.
    static QString getUserDataPath();

    /// The folder for temporary files; the program-data folder when the system's own has
    /// characters outside ASCII in its path.
    static QString getTempDirPath();

    /// A name for a temporary file with the suffix of \a fileName (after its last point); empty
    /// when the system gives none. On Windows it can be a full path. It is unlikely, not
    /// impossible, that another file has the name, and nothing is created that would keep it: open
    /// the file with QIODevice::NewOnly. QTemporaryFile does both in one step.
    static QString getTempFileName(const QString &fileName);

    /// The folder set with setWorkingDirPath(), at first the current folder.
    static QString getWorkingDirPath();

    /// Sets the working folder; for an existing file, its folder. The current folder of the
    /// process stays as it is.
    static void setWorkingDirPath(const QString &path);

    /// The setting "AnalyzeDirectory"; native. Empty, and read again next time, when it is not
    /// set.
    static QString getAnalyzeDirPath();

    /// The folder "Tutorials" in the public documents; native. The first call creates it.
    static QString getTutorialsDirPath();

    /// The folders "Rule" and "Template" in the user's data; native. Every call creates them;
    /// empty when that fails.
    static QString getRuleDirPath();
    static QString getTemplateDirPath();

    /// The folder of the product's main program, else of the running program; native. It shares
    /// its cache with getProgramFilesPathFromRegistry(): the first call decides both.
    static QString getCurrentExePath();

    /// The setting "InstallationDirectory" or, unless \a registryOnly, the variable
    /// "TAVELINE2024DIR"; native.
    static QString getProgramFilesPathFromRegistry(bool registryOnly);

    /// Creates a folder and its missing parents, from the last of them that exists. \a path is
    /// absolute: each missing folder of a relative one is looked for below the one before. False
    /// when a folder cannot be made or no part of \a path exists.
    static bool makePath(const QString &path);

    /// Whether \a path starts with "/mnt", as paths of the Windows Subsystem for Linux do.
    static bool isWslPath(const QString &path);
    static bool isWindowsPath(const QString &path);

    /// "/mnt/d/work/case1" as "D:\work\case1"; any other path unchanged. Every further "/mnt/d"
    /// in the path is replaced too.
    static QString toWindowsPath(const QString &path);

    /// "D:\work\case1" as "/mnt/d/work/case1"; any other path unchanged.
    static QString toWslPath(const QString &path);

    /// The network path of a path on a mapped drive, or the real folder of one on a substituted
    /// drive; any other path unchanged.
    static QString getUniversalPath(const QString &path);

    /// Whether \a host is "localhost", "MyComputer" or this machine's name, in this very letter
    /// case.
    static bool isLocalHost(const QString &host);

    /// The id of the first running process whose program's name in upper case is in \a names;
    /// 0 when there is none. So the names are given in upper case. Programs of other users that
    /// may not be opened are passed over.
    static long getPID(const QStringList &names);

    /// Whether a program of exactly this file name is running, under any user. On Linux a process
    /// of another user is known by the name that it gives itself, at first that of its program, and
    /// only when that has fewer than 15 bytes: take the answer for a hint. On Windows each call
    /// leaves a handle open.
    /// Kept for compatibility: see "Snapshot of processes" in docs/compatibility.md.
    static bool isProcessRunning(const QString &exeName);

    /// Ends the processes whose program's name is in \a names and whose program's path contains
    /// \a pathFilter, in any letter case; an empty filter takes all. Where the path cannot be read,
    /// the name must contain the filter. Processes that may not be opened are passed over. Returns
    /// the names of those ended, without waiting for their end. On Linux without pidfd_open()
    /// (before 5.3, or where a container forbids it) the call can hit a process that has just got
    /// the id of one that ended.
    static QStringList killProcesses(const QString &pathFilter, const QStringList &names);

    /// Starts a program that outlives this one; false when it cannot be started.
    static bool startProcess(const QString &program, const QStringList &arguments);

    /// The value of an environment variable as Latin-1 text; empty when it is not set.
    static QString getEnv(const QString &name);

    /// The machine's name. The first call asks for it, on whatever thread; the others give the
    /// same.
    static QString getHostName();

    /// The name of the user who runs the process; empty when it cannot be found.
    static QString getUserName();

    /// The language of the user interface ("de-DE"), a machine-wide setting; "en-US" when it is
    /// not set. It need not be one of validLocales().
    static QString getLocale();

    /// Windows's number of that language; that of "en-US" for an unknown one.
    static int getLocaleID();

    /// Stores the language. Without the right to do so nothing happens.
    static void setLocale(QString locale);

    /// The languages offered.
    static QStringList validLocales();

    /// Stores a text among the product's machine-wide settings; silent when that fails.
    static void writeToRegistry(const QString &key, const QString &value);

    /// The folder of the flags file; native. It is created; empty when that fails.
    static QString getFlagsDirPath();

    /// Whether a line of the file "VORN_flags.txt" in that folder begins with the word \a flag.
    static bool isFlagSet(const QString &flag);

    /// Bytes of all files below \a path, without hidden ones and without entering links; 0 for a
    /// folder that does not exist.
    static qint64 getDirectorySize(const QString &path);

    /// Removes a folder tree. The folder itself stays with \a keepFolder or when there are
    /// \a exceptions, names of entries at its top level that are left alone (exact, in their letter
    /// case).
    ///
    /// When \a path is a link, the link is removed; when it is to stay, the folder that it leads to
    /// is emptied. A link or junction in the tree is removed, never what it leads to, also when it
    /// takes the place of a folder during the walk. A shortcut of Windows (".lnk") is a file.
    ///
    /// These entries are not removed: devices, pipes and sockets, links to such or to nowhere, and
    /// on Linux names that are not valid text. The folders that hold them stay, too.
    ///
    /// False when \a path is empty or a removal failed; the rest is removed all the same. A folder
    /// that holds one of the entries above cannot be removed: false, unless it is the folder that
    /// is to stay. A missing or unreadable folder that is to stay is true.
    static bool removeDir(const QString &path, bool keepFolder, const QStringList &exceptions);

    /// Shares a folder on the network, to be read and written by anybody. False when the system
    /// refuses or has no such shares (Linux).
    static bool shareFolder(const QString &shareName, const QString &path);

    /// Whether the system tells that \a path is shared; false on Linux.
    static bool isFolderShared(const QString &path);

    /// The version of a program file, such as "24.0.75.1"; "0.0.0.0" for a file without one. Every
    /// call also prints three lines with the version to the standard output.
    static QString getFileVersion(const QString &filePath);

    /// A duration as text, cut to hundredths: "1:05:09.07", "5:09.07", "9.07 sec".
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
