#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

namespace Vorn::Util {

/// The product's standard folders and other services of the system. Static members only.
///
/// \code
/// QFile results(System::getWorkingDirPath() + "/results.dat");
/// QFile scratch(System::getTempDirPath() + "/" + System::getTempFileName("scratch.dat"));
/// \endcode
///
/// Each folder is worked out once per process. The caches are not guarded: two threads that ask
/// for a folder for the first time at once both work it out. "Native" means with the system's own
/// separators. A folder that cannot be found is an empty text or the fallback named; nothing
/// throws. Messages go to Qt's debug channel.
class VORNUTILITY_EXPORT System
{
public:
    System() = delete;

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

    /// A name that no file has, with the suffix of \a fileName behind its last point; empty when
    /// the system gives none. Nothing is created.
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

    /// Creates a folder and its missing parents, from the first parent that exists. False when a
    /// folder cannot be made or no part of \a path exists.
    static bool makePath(const QString &path);

    /// A duration as text, cut to hundredths: "1:05:09.07", "5:09.07", "9.07 sec".
    static QString getElapsedTimeString(qint64 milliseconds);

private:
    static QString makeAndGetNativePath(const QString &path);

    static QString programFilesPath_;
    static QString workingDirPath_;
    static QString programDataPath_;
    static QString analyzeDirPath_;
    static QString userDataPath_;
    static QString allUsersDataPath_;
    static QString tempDirPath_;
    static QString publicDocumentsPath_;
    static QString tutorialsPath_;
};

} // namespace Vorn::Util
