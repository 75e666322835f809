// Pins what clients see of the class System.

#include "TestInterface.h"

#include <Utility/System.h>

#include <QtTest/QtTest>

#include <type_traits>

using namespace Vorn::Util;

PRIVATE_MEMBER(System::makeAndGetNativePath, QString (*)(const QString &));
PRIVATE_MEMBER(System::hostName_, QString *);
PRIVATE_MEMBER(System::programFilesPath_, QString *);
PRIVATE_MEMBER(System::workingDirPath_, QString *);
PRIVATE_MEMBER(System::flagsDirPath_, QString *);
PRIVATE_MEMBER(System::programDataPath_, QString *);
PRIVATE_MEMBER(System::analyzeDirPath_, QString *);
PRIVATE_MEMBER(System::userDataPath_, QString *);
PRIVATE_MEMBER(System::allUsersDataPath_, QString *);
PRIVATE_MEMBER(System::tempDirPath_, QString *);
PRIVATE_MEMBER(System::publicDocumentsPath_, QString *);
PRIVATE_MEMBER(System::tutorialsPath_, QString *);

class TestInterfaceSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folders();
    void pathForms();
    void processes();
    void locale();
    void flagsAndFolderUtilities();
    void elapsedTime();

    void theCachesAreClosedToClients();
    void thereAreNoObjects();
    void everyArgumentHasToBeWrittenOut();
};

void TestInterfaceSystem::folders()
{
    EXPORTED(System::getAllUsersDataPath, QString(*)());
    EXPORTED(System::getProgramDataPath, QString(*)(QString));
    EXPORTED(System::getPublicDocumentsDirPath, QString(*)());
    EXPORTED(System::getUserDataPath, QString(*)());
    EXPORTED(System::getTempDirPath, QString(*)());
    EXPORTED(System::getTempFileName, QString(*)(const QString &));
    EXPORTED(System::getWorkingDirPath, QString(*)());
    EXPORTED(System::setWorkingDirPath, void (*)(const QString &));
    EXPORTED(System::getAnalyzeDirPath, QString(*)());
    EXPORTED(System::getTutorialsDirPath, QString(*)());
    EXPORTED(System::getRuleDirPath, QString(*)());
    EXPORTED(System::getTemplateDirPath, QString(*)());
    EXPORTED(System::getCurrentExePath, QString(*)());
    EXPORTED(System::getProgramFilesPathFromRegistry, QString(*)(bool));
    EXPORTED(System::makePath, bool (*)(const QString &));
}

void TestInterfaceSystem::pathForms()
{
    EXPORTED(System::isWslPath, bool (*)(const QString &));
    EXPORTED(System::isWindowsPath, bool (*)(const QString &));
    EXPORTED(System::toWindowsPath, QString(*)(const QString &));
    EXPORTED(System::toWslPath, QString(*)(const QString &));
    EXPORTED(System::getUniversalPath, QString(*)(const QString &));
    EXPORTED(System::isLocalHost, bool (*)(const QString &));
}

void TestInterfaceSystem::processes()
{
    EXPORTED(System::getPID, long (*)(const QStringList &));
    EXPORTED(System::isProcessRunning, bool (*)(const QString &));
    EXPORTED(System::killProcesses, QStringList(*)(const QString &, const QStringList &));
    EXPORTED(System::startProcess, bool (*)(const QString &, const QStringList &));
    EXPORTED(System::getEnv, QString(*)(const QString &));
    EXPORTED(System::getHostName, QString(*)());
    EXPORTED(System::getUserName, QString(*)());
}

void TestInterfaceSystem::locale()
{
    EXPORTED(System::getLocale, QString(*)());
    EXPORTED(System::getLocaleID, int (*)());
    EXPORTED(System::setLocale, void (*)(QString));
    EXPORTED(System::validLocales, QStringList(*)());
    EXPORTED(System::writeToRegistry, void (*)(const QString &, const QString &));
}

void TestInterfaceSystem::flagsAndFolderUtilities()
{
    EXPORTED(System::getFlagsDirPath, QString(*)());
    EXPORTED(System::isFlagSet, bool (*)(const QString &));
    EXPORTED(System::getDirectorySize, qint64(*)(const QString &));
    EXPORTED(System::removeDir, bool (*)(const QString &, bool, const QStringList &));
    EXPORTED(System::shareFolder, bool (*)(const QString &, const QString &));
    EXPORTED(System::isFolderShared, bool (*)(const QString &));
    EXPORTED(System::getFileVersion, QString(*)(const QString &));
}

void TestInterfaceSystem::elapsedTime()
{
    EXPORTED(System::getElapsedTimeString, QString(*)(qint64));
}

void TestInterfaceSystem::theCachesAreClosedToClients()
{
    static_assert(!CLIENT_MAY_WRITE(System, object.makeAndGetNativePath(QString())));
    static_assert(!CLIENT_MAY_WRITE(System, object.hostName_));
    static_assert(!CLIENT_MAY_WRITE(System, object.programFilesPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.workingDirPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.flagsDirPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.programDataPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.analyzeDirPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.userDataPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.allUsersDataPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.tempDirPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.publicDocumentsPath_));
    static_assert(!CLIENT_MAY_WRITE(System, object.tutorialsPath_));
}

void TestInterfaceSystem::thereAreNoObjects()
{
    QVERIFY(!std::is_default_constructible_v<System>);
    QVERIFY(!hasEmptyBraces<System>);
    QVERIFY(std::is_empty_v<System>);
}

void TestInterfaceSystem::everyArgumentHasToBeWrittenOut()
{
    static_assert(!CLIENT_MAY_WRITE(System, object.getProgramDataPath()));
    static_assert(!CLIENT_MAY_WRITE(System, object.getTempFileName()));
    static_assert(!CLIENT_MAY_WRITE(System, object.getProgramFilesPathFromRegistry()));
    static_assert(!CLIENT_MAY_WRITE(System, object.killProcesses(QString())));
    static_assert(!CLIENT_MAY_WRITE(System, object.startProcess(QString())));
    static_assert(!CLIENT_MAY_WRITE(System, object.setLocale()));
    static_assert(!CLIENT_MAY_WRITE(System, object.writeToRegistry(QString())));
    static_assert(!CLIENT_MAY_WRITE(System, object.removeDir(QString())));
    static_assert(!CLIENT_MAY_WRITE(System, object.removeDir(QString(), false)));
    static_assert(CLIENT_MAY_WRITE(System, object.removeDir(QString(), false, QStringList())));
    static_assert(!CLIENT_MAY_WRITE(System, object.shareFolder(QString())));
}

QTEST_GUILESS_MAIN(TestInterfaceSystem)

#include "tst_interfacesystem.moc"
