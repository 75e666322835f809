// The standard folders. Each one that was found is kept in a static member.

#include <Utility/System.h>

#include <Utility/DebugMessages_p.h>
#include <Utility/Formats/AsciiText_p.h>
#include <Utility/Product_p.h>
#include <Utility/StandardFolders_p.h>

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace Vorn::Util {

QString System::programFilesPath_;
QString System::workingDirPath_;
QString System::flagsDirPath_;
QString System::programDataPath_;
QString System::analyzeDirPath_;
QString System::userDataPath_;
QString System::allUsersDataPath_;
QString System::tempDirPath_;
QString System::publicDocumentsPath_;
QString System::tutorialsPath_;

namespace {

void createIfMissing(const QString &path)
{
    if (!QDir(path).exists() && !QDir().mkpath(path))
        qCDebug(debugMessages) << "Serious: Unable to create the folder: " << path;
}

} // namespace

QString System::getAllUsersDataPath()
{
    if (allUsersDataPath_.isEmpty())
        allUsersDataPath_ = StandardFolders::allUsersData();
    return QDir::toNativeSeparators(allUsersDataPath_);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the exported interface takes a copy.
QString System::getProgramDataPath(QString name)
{
    // Kept for compatibility: see "One program-data folder for all names" in docs/compatibility.md.
    if (programDataPath_.isEmpty() || programDataPath_.indexOf(name) < 0)
        programDataPath_ = StandardFolders::programData(name);
    return QDir::toNativeSeparators(programDataPath_);
}

QString System::getPublicDocumentsDirPath()
{
    if (publicDocumentsPath_.isEmpty()) {
        QString documents = StandardFolders::publicDocuments();
        // Kept for compatibility: see "Doubled public documents" in docs/compatibility.md.
        if (documents.isEmpty())
            documents = getProgramDataPath(Product::folder());
        const QString path = StandardFolders::productFolderIn(documents);
        createIfMissing(path);
        publicDocumentsPath_ = path;
    }
    return publicDocumentsPath_;
}

QString System::getUserDataPath()
{
    if (userDataPath_.isEmpty())
        userDataPath_ = StandardFolders::userData();
    return QDir::toNativeSeparators(userDataPath_);
}

QString System::getTempDirPath()
{
    if (tempDirPath_.isEmpty()) {
        tempDirPath_ = QDir::tempPath();
        if (Formats::isUnicodeText(tempDirPath_))
            tempDirPath_ = getProgramDataPath(Product::folder());
    }
    return tempDirPath_;
}

QString System::getWorkingDirPath()
{
    if (workingDirPath_.isEmpty())
        workingDirPath_ = QDir::currentPath();
    return workingDirPath_;
}

void System::setWorkingDirPath(const QString &path)
{
    workingDirPath_ = path;
    const QFileInfo info(path);
    if (info.isFile()) {
        qCDebug(debugMessages) << "Passing file name to Util::System::setWorkingDirPath" << path;
        workingDirPath_ = info.absolutePath();
    }
}

QString System::getAnalyzeDirPath()
{
    if (analyzeDirPath_.isEmpty())
        analyzeDirPath_ = StandardFolders::analyses();
    return QDir::toNativeSeparators(analyzeDirPath_);
}

QString System::getTutorialsDirPath()
{
    if (tutorialsPath_.isEmpty()) {
        tutorialsPath_
            = QDir::toNativeSeparators(getPublicDocumentsDirPath() + QStringLiteral("/Tutorials"));
        createIfMissing(tutorialsPath_);
    }
    return tutorialsPath_;
}

QString System::getRuleDirPath()
{
    return makeAndGetNativePath(QStringLiteral("%1/Rule").arg(getUserDataPath()));
}

QString System::getTemplateDirPath()
{
    return makeAndGetNativePath(QStringLiteral("%1/Template").arg(getUserDataPath()));
}

QString System::getFlagsDirPath()
{
    if (flagsDirPath_.isEmpty())
        flagsDirPath_ = makeAndGetNativePath(QStringLiteral("%1/Flags").arg(getUserDataPath()));
    return flagsDirPath_;
}

QString System::getCurrentExePath()
{
    if (programFilesPath_.isEmpty())
        programFilesPath_ = StandardFolders::mainProgram();
    if (programFilesPath_.isEmpty())
        programFilesPath_ = StandardFolders::runningProgram();
    if (programFilesPath_.isEmpty()) {
        programFilesPath_
            = StandardFolders::withoutLastSeparator(getProgramFilesPathFromRegistry(true));
    }
    return programFilesPath_;
}

QString System::getProgramFilesPathFromRegistry(bool registryOnly)
{
    if (programFilesPath_.isEmpty())
        programFilesPath_ = StandardFolders::installation(!registryOnly);
    return programFilesPath_;
}

} // namespace Vorn::Util
