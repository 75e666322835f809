#include "BuildPaths.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestSettings.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/System.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString withProductFolder(const QString &root)
{
    return native(root + QStringLiteral("/Vantorel/VORN 2024"));
}

QString productKey()
{
    return QStringLiteral("SOFTWARE\\Vantorel\\VORN\\24.0");
}

QString helperFolder()
{
    return native(QFileInfo(BuildPaths::helperProgram()).canonicalPath());
}

} // namespace

// System keeps its results for the process, so each state is tested in a process of its own.
class TestSystem : public TestInFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override;
    void cleanup() override;

    void allUsersDataPath();
    void programDataPath();
    void programDataPathIsKeptForEveryPartOfIt();
    void programDataPathOfAnotherNameReplacesTheOneKept();
    void programDataPathIsNotCreated();
    void userDataPath();
    void userDataPathIsNotThatOfTheVariable();
    void userDataPathIsKeptAndNotCreated();

    void publicDocumentsLieInTheFolderOfTheVariable();
    void publicDocumentsAreCreatedByTheFirstCallOnly();
    void publicDocumentsThatCannotBeCreatedAreReported();
    void tutorialsLieInThePublicDocuments();
    void tutorialsAreCreatedByTheFirstCallOnly();
    void tutorialsThatCannotBeCreatedAreReported();

    void temporaryFolderIsTheSystems();
    void temporaryFolderIsKept();
    void temporaryFolderIsNeverOutsideAscii();
    void temporaryFileNameHasTheSuffix_data();
    void temporaryFileNameHasTheSuffix();
    void temporaryFileNamesDiffer();
    void temporaryFileIsNotCreated();

    void workingFolderIsTheCurrentFolderAtFirst();
    void workingFolderIsStoredAsGiven_data();
    void workingFolderIsStoredAsGiven();
    void workingFolderOfAFileIsItsFolder();
    void workingFolderOfARelativeFileIsAbsolute();
    void workingFolderOfAFileInALinkedFolderIsTheLink();
    void workingFolderOfALinkToAFileIsTheFolderOfTheLink();
    void settingTheWorkingFolderKeepsTheCurrentOne();

    void analysisFolderIsReadAgainUntilItIsFound();
    void installationFolderOfTheSettings_data();
    void installationFolderOfTheSettings();
    void installationFolderOfTheVariable();
    void installationFolderOfTheVariableOnlyWhenWanted();
    void installationFolderOfTheSettingsGoesFirst();
    void installationFolderIsKept();
    void programFolderIsThatOfTheRunningProgram();
    void programFolderIsThatOfTheMainProgram();
    void programFolderWithoutAnApplication();
    void programFolderAskedForFirstIsTheInstallationFolder();
    void installationFolderAskedForFirstIsTheProgramFolder();

    void makePathCreatesAllMissingFolders_data();
    void makePathCreatesAllMissingFolders();
    void makePathOfAnExistingFolder();
    void makePathWithoutAnExistingPart();
    void makePathOfARelativePath();
    void makePathThroughAFile();

private:
    SystemOutcome run(const QStringList &calls, const QMap<QString, QString> &variables = {}) const;
    QString path(const QString &name) const { return here_ + QLatin1Char('/') + name; }

    QTemporaryDir settings_;
    QString here_; // the folder of the test function as the system names it
};

SystemOutcome TestSystem::run(const QStringList &calls,
                              const QMap<QString, QString> &variables) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), settings_.path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("data home")));
    environment.insert(QStringLiteral("PUBLIC"), path(QStringLiteral("public")));
    environment.remove(QStringLiteral("TAVELINE2024DIR"));
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        environment.insert(variable.key(), variable.value());
    return runSystemCalls(BuildPaths::helperProgram(), QStringLiteral("system"), calls,
                          environment);
}

void TestSystem::initTestCase()
{
    QVERIFY(settings_.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, settings_.path());
}

void TestSystem::init()
{
    TestInFolder::init();
    here_ = QDir::currentPath();
}

void TestSystem::cleanup()
{
    QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel\\VORN")));
    if (onWindows())
        QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel")));
    TestInFolder::cleanup();
}

void TestSystem::allUsersDataPath()
{
    const SystemOutcome outcome
        = run({QStringLiteral("getAllUsersDataPath"), QStringLiteral("getAllUsersDataPath")});
    QString expected
        = withProductFolder(QDir::rootPath() + QStringLiteral("Users/Public/Documents"));
    if (!onWindows())
        expected = run({QStringLiteral("getProgramDataPath=VORN 2024")}).results.value(0);
    QCOMPARE(outcome.results, (QStringList{expected, expected}));
    QCOMPARE(outcome.messages, QStringList());
}

void TestSystem::programDataPath()
{
    const QString path = run({QStringLiteral("getProgramDataPath=Any Name")}).results.value(0);
    QString root = qEnvironmentVariable("ProgramData");
    if (!onWindows()) {
        // The folder of the machine where this process may write to it, otherwise that of the user.
        const QFileInfo makers(QStringLiteral("/var/lib/Vantorel"));
        const QFileInfo written(makers.exists() ? makers.filePath() : makers.path());
        root = written.isWritable() ? makers.path() : this->path(QStringLiteral("data home"));
    }
    QCOMPARE(path, native(root + QStringLiteral("/Vantorel/Any Name")));
}

void TestSystem::programDataPathIsKeptForEveryPartOfIt()
{
    const QStringList results
        = run({QStringLiteral("getProgramDataPath=VORN 2024"),
               QStringLiteral("getProgramDataPath=VORN"), QStringLiteral("getProgramDataPath=2024"),
               QStringLiteral("getProgramDataPath=ntorel"), QStringLiteral("getProgramDataPath=")})
              .results;
    QCOMPARE(results.size(), 5);
    QVERIFY(results.first().endsWith(native(QStringLiteral("/Vantorel/VORN 2024"))));
    for (const QString &result : results)
        QCOMPARE(result, results.first());
}

void TestSystem::programDataPathOfAnotherNameReplacesTheOneKept()
{
    const QStringList results = run({QStringLiteral("getProgramDataPath=VORN 2024"),
                                     QStringLiteral("getProgramDataPath=vorn"),
                                     QStringLiteral("getProgramDataPath=VORN 2024 Beta"),
                                     QStringLiteral("getProgramDataPath=VORN 2024"),
                                     QStringLiteral("getProgramDataPath=Other\\"),
                                     QStringLiteral("getProgramDataPath=VORN 2024")})
                                    .results;
    QCOMPARE(results.size(), 6);
    const QString root = results.first().chopped(QStringLiteral("VORN 2024").size());
    QVERIFY(root.endsWith(native(QStringLiteral("/Vantorel/"))));
    QCOMPARE(results,
             (QStringList{root + QStringLiteral("VORN 2024"), root + QStringLiteral("vorn"),
                          root + QStringLiteral("VORN 2024 Beta"),
                          root + QStringLiteral("VORN 2024 Beta"), root + QStringLiteral("Other\\"),
                          root + QStringLiteral("VORN 2024")}));
}

void TestSystem::programDataPathIsNotCreated()
{
    const QString path
        = run({QStringLiteral("getProgramDataPath=tst_system never made")}).results.value(0);
    QVERIFY(path.endsWith(QLatin1String("tst_system never made")));
    QVERIFY(!QFileInfo::exists(path));
}

void TestSystem::userDataPath()
{
    const QString root = onWindows() ? QDir::homePath() + QStringLiteral("/AppData/Local")
                                     : path(QStringLiteral("data home"));
    QCOMPARE(run({QStringLiteral("getUserDataPath")}).results,
             QStringList{withProductFolder(root)});
    if (!onWindows()) {
        QCOMPARE(
            run({QStringLiteral("getUserDataPath")},
                {{QStringLiteral("XDG_DATA_HOME"), QString()}, {QStringLiteral("HOME"), here_}})
                .results,
            QStringList{withProductFolder(path(QStringLiteral(".local/share")))});
    }
}

void TestSystem::userDataPathIsNotThatOfTheVariable()
{
    if (!onWindows())
        QSKIP("The variable has a meaning only on Windows");
    QCOMPARE(run({QStringLiteral("getUserDataPath")},
                 {{QStringLiteral("LOCALAPPDATA"), native(path(QStringLiteral("elsewhere")))}})
                 .results,
             QStringList{withProductFolder(QDir::homePath() + QStringLiteral("/AppData/Local"))});
}

void TestSystem::userDataPathIsKeptAndNotCreated()
{
    const QStringList results = run({QStringLiteral("getUserDataPath"),
                                     QStringLiteral("setVariable=XDG_DATA_HOME=/other"),
                                     QStringLiteral("getUserDataPath")})
                                    .results;
    QCOMPARE(results.size(), 2);
    QCOMPARE(results.at(1), results.at(0));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("data home"))));
}

void TestSystem::publicDocumentsLieInTheFolderOfTheVariable()
{
    const QString expected = withProductFolder(path(QStringLiteral("public/Documents")));
    const SystemOutcome outcome = run({QStringLiteral("getPublicDocumentsDirPath")});
    QCOMPARE(outcome.results, QStringList{expected});
    QCOMPARE(outcome.messages, QStringList());
    QVERIFY(QFileInfo(expected).isDir());
}

void TestSystem::publicDocumentsAreCreatedByTheFirstCallOnly()
{
    const QString expected = withProductFolder(path(QStringLiteral("public/Documents")));
    const QStringList results = run({QStringLiteral("getPublicDocumentsDirPath"),
                                     QStringLiteral("removeFolder=") + expected,
                                     QStringLiteral("setVariable=PUBLIC=/other"),
                                     QStringLiteral("getPublicDocumentsDirPath")})
                                    .results;
    QCOMPARE(results, (QStringList{expected, expected}));
    QVERIFY(!QFileInfo::exists(expected));
}

void TestSystem::publicDocumentsThatCannotBeCreatedAreReported()
{
    QVERIFY(writeFile(path(QStringLiteral("public")), QByteArray()));
    const QString expected = withProductFolder(path(QStringLiteral("public/Documents")));
    const SystemOutcome outcome = run(
        {QStringLiteral("getPublicDocumentsDirPath"), QStringLiteral("getPublicDocumentsDirPath")});
    QCOMPARE(outcome.results, (QStringList{expected, expected}));
    QCOMPARE(outcome.messages,
             QStringList{debugMessage("Serious: Unable to create the folder: ", expected)});
}

void TestSystem::tutorialsLieInThePublicDocuments()
{
    const QString documents = withProductFolder(path(QStringLiteral("public/Documents")));
    const QString expected = native(documents + QStringLiteral("/Tutorials"));
    const SystemOutcome outcome = run({QStringLiteral("getTutorialsDirPath")});
    QCOMPARE(outcome.results, QStringList{expected});
    QCOMPARE(outcome.messages, QStringList());
    QVERIFY(QFileInfo(expected).isDir());
}

void TestSystem::tutorialsAreCreatedByTheFirstCallOnly()
{
    const QString expected = withProductFolder(path(QStringLiteral("public/Documents")))
        + native(QStringLiteral("/Tutorials"));
    const QStringList results
        = run({QStringLiteral("getTutorialsDirPath"), QStringLiteral("removeFolder=") + expected,
               QStringLiteral("getTutorialsDirPath")})
              .results;
    QCOMPARE(results, (QStringList{expected, expected}));
    QVERIFY(!QFileInfo::exists(expected));
}

void TestSystem::tutorialsThatCannotBeCreatedAreReported()
{
    const QString documents = withProductFolder(path(QStringLiteral("public/Documents")));
    const QString expected = native(documents + QStringLiteral("/Tutorials"));
    QVERIFY(QDir().mkpath(documents));
    QVERIFY(writeFile(expected, QByteArray()));
    const SystemOutcome outcome
        = run({QStringLiteral("getTutorialsDirPath"), QStringLiteral("getTutorialsDirPath")});
    QCOMPARE(outcome.results, (QStringList{expected, expected}));
    QCOMPARE(outcome.messages,
             QStringList{debugMessage("Serious: Unable to create the folder: ", expected)});
}

void TestSystem::temporaryFolderIsTheSystems()
{
    const QString folder = path(QStringLiteral("temporary files"));
    QVERIFY(QDir().mkdir(folder));
    QMap<QString, QString> variables;
    for (const char *name : {"TMPDIR", "TEMP", "TMP"})
        variables.insert(QString::fromLatin1(name), native(folder));
    // As it is: not in native form.
    QCOMPARE(run({QStringLiteral("getTempDirPath")}, variables).results, QStringList{folder});
    QCOMPARE(run({QStringLiteral("getTempDirPath")}).results, QStringList{QDir::tempPath()});
}

void TestSystem::temporaryFolderIsKept()
{
    QStringList calls{QStringLiteral("getTempDirPath")};
    for (const char *name : {"TMPDIR", "TEMP", "TMP"})
        calls += QStringLiteral("setVariable=%1=%2").arg(QString::fromLatin1(name), native(here_));
    calls += QStringLiteral("getTempDirPath");
    QCOMPARE(run(calls).results, (QStringList{QDir::tempPath(), QDir::tempPath()}));
}

void TestSystem::temporaryFolderIsNeverOutsideAscii()
{
    const QString folder = path(QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                                  "e"));
    QVERIFY(QDir().mkdir(folder));
    QMap<QString, QString> variables;
    for (const char *name : {"TMPDIR", "TEMP", "TMP"})
        variables.insert(QString::fromLatin1(name), native(folder));
    const QStringList results
        = run({QStringLiteral("getTempDirPath"), QStringLiteral("getProgramDataPath=VORN 2024"),
               QStringLiteral("getProgramDataPath=Other"), QStringLiteral("getTempDirPath")},
              variables)
              .results;
    QCOMPARE(results.size(), 4);
    QVERIFY(results.at(0).endsWith(native(QStringLiteral("/Vantorel/VORN 2024"))));
    QCOMPARE(results.at(1), results.at(0));
    QCOMPARE(results.at(3), results.at(0));
}

void TestSystem::temporaryFileNameHasTheSuffix_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("suffix");

    const auto row = [](const char *fileName, const char *suffix) {
        QTest::addRow("\"%s\"", fileName)
            << QString::fromLatin1(fileName) << QString::fromLatin1(suffix);
    };
    row("results.xyz", ".xyz");
    row("archive.tar.gz", ".gz");
    row("a folder/results.xyz", ".xyz");
    row(".hidden", ".hidden");
    row("UPPER.DAT", ".DAT");
    row("results", ".");
    row("results.", ".");
    row("folder.d/results", ".");
    row("", ".");
}

void TestSystem::temporaryFileNameHasTheSuffix()
{
    QFETCH(QString, fileName);
    QFETCH(QString, suffix);

    const QString name = System::getTempFileName(fileName);
    QVERIFY2(name.endsWith(suffix), qPrintable(name));
    QVERIFY2(name.size() > suffix.size(), qPrintable(name));
    QVERIFY2(!name.startsWith(QLatin1Char('/')) && !name.startsWith(QLatin1Char('\\')),
             qPrintable(name));
    // Exactly one dot, whether the name from the system ends with one or not.
    QVERIFY2(!name.chopped(suffix.size()).endsWith(QLatin1Char('.')), qPrintable(name));
}

void TestSystem::temporaryFileNamesDiffer()
{
    QSet<QString> names;
    for (int count = 0; count < 100; ++count)
        names.insert(System::getTempFileName(QStringLiteral("results.xyz")));
    QCOMPARE(names.size(), 100);
}

void TestSystem::temporaryFileIsNotCreated()
{
    const QString name = System::getTempFileName(QStringLiteral("results.xyz"));
    QVERIFY(!name.isEmpty());
    for (const QString &folder : {here_, QDir::tempPath(), QDir::rootPath()})
        QVERIFY(!QFileInfo::exists(QDir(folder).filePath(name)));
}

void TestSystem::workingFolderIsTheCurrentFolderAtFirst()
{
    QCOMPARE(run({QStringLiteral("getWorkingDirPath")}).results, QStringList{here_});
}

void TestSystem::workingFolderIsStoredAsGiven_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("existing") << QDir::rootPath();
    QTest::newRow("not existing") << QStringLiteral("/no/such/folder");
    QTest::newRow("relative") << QStringLiteral("no such folder");
    QTest::newRow("separators") << QStringLiteral("/no\\such//folder/");
}

void TestSystem::workingFolderIsStoredAsGiven()
{
    QFETCH(QString, path);

    System::setWorkingDirPath(path);
    QCOMPARE(System::getWorkingDirPath(), path);
}

void TestSystem::workingFolderOfAFileIsItsFolder()
{
    const QString file = path(QStringLiteral("a file.dat"));
    QVERIFY(writeFile(file, QByteArray()));
    const QString message
        = debugMessage("Passing file name to Util::System::setWorkingDirPath", file);
    QTest::ignoreMessage(QtDebugMsg, message.toUtf8().constData());
    System::setWorkingDirPath(file);
    QCOMPARE(System::getWorkingDirPath(), here_);
}

void TestSystem::workingFolderOfARelativeFileIsAbsolute()
{
    QVERIFY(writeFile(path(QStringLiteral("a file.dat")), QByteArray()));
    QTest::ignoreMessage(QtDebugMsg,
                         "Passing file name to Util::System::setWorkingDirPath \"a file.dat\"");
    System::setWorkingDirPath(QStringLiteral("a file.dat"));
    QCOMPARE(System::getWorkingDirPath(), here_);
}

void TestSystem::workingFolderOfAFileInALinkedFolderIsTheLink()
{
    if (onWindows())
        QSKIP("A link to a folder is a file here");
    const QString link = path(QStringLiteral("link"));
    QVERIFY(QDir().mkdir(path(QStringLiteral("folder"))));
    QVERIFY(QFile::link(path(QStringLiteral("folder")), link));
    const QString file = link + QStringLiteral("/a file.dat");
    QVERIFY(writeFile(file, QByteArray()));
    const QString message
        = debugMessage("Passing file name to Util::System::setWorkingDirPath", file);
    QTest::ignoreMessage(QtDebugMsg, message.toUtf8().constData());
    System::setWorkingDirPath(file);
    QCOMPARE(System::getWorkingDirPath(), link);
}

void TestSystem::workingFolderOfALinkToAFileIsTheFolderOfTheLink()
{
    if (onWindows())
        QSKIP("A link is a file of its own here");
    const QString file = path(QStringLiteral("folder/a file.dat"));
    const QString link = path(QStringLiteral("link"));
    QVERIFY(writeFileInFolder(file, QByteArray()));
    QVERIFY(QFile::link(file, link));
    const QString message
        = debugMessage("Passing file name to Util::System::setWorkingDirPath", link);
    QTest::ignoreMessage(QtDebugMsg, message.toUtf8().constData());
    System::setWorkingDirPath(link);
    QCOMPARE(System::getWorkingDirPath(), here_);
}

void TestSystem::settingTheWorkingFolderKeepsTheCurrentOne()
{
    System::setWorkingDirPath(QDir::rootPath());
    QCOMPARE(QDir::currentPath(), here_);
    QCOMPARE(System::getWorkingDirPath(), QDir::rootPath());
    // An empty path means the current folder again.
    System::setWorkingDirPath(QString());
    QCOMPARE(System::getWorkingDirPath(), here_);
}

void TestSystem::analysisFolderIsReadAgainUntilItIsFound()
{
    const QString name = QStringLiteral("AnalyzeDirectory");
    QCOMPARE(System::getAnalyzeDirPath(), QString());
    QVERIFY(writeSetting(productKey(), name, QStringLiteral("D:/analysis/1/")));
    QCOMPARE(System::getAnalyzeDirPath(), native(QStringLiteral("D:/analysis/1/")));
    QVERIFY(writeSetting(productKey(), name, QStringLiteral("D:/analysis/2")));
    QCOMPARE(System::getAnalyzeDirPath(), native(QStringLiteral("D:/analysis/1/")));
}

void TestSystem::installationFolderOfTheSettings_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");

    const QString folder = QStringLiteral("D:/Vantorel/VORN 2024");
    QTest::newRow("plain") << folder << folder;
    QTest::newRow("with /") << folder + QStringLiteral("/") << folder;
    QTest::newRow("with \\") << folder + QStringLiteral("\\") << folder;
    QTest::newRow("with two") << folder + QStringLiteral("//") << folder + QStringLiteral("/");
}

void TestSystem::installationFolderOfTheSettings()
{
    QFETCH(QString, value);
    QFETCH(QString, expected);

    QVERIFY(writeSetting(productKey(), QStringLiteral("InstallationDirectory"), value));
    for (const char *registryOnly : {"true", "false"}) {
        QCOMPARE(run({QStringLiteral("getProgramFilesPathFromRegistry=")
                      + QString::fromLatin1(registryOnly)})
                     .results,
                 QStringList{native(expected)});
    }
}

void TestSystem::installationFolderOfTheVariable()
{
    const SystemOutcome outcome = run({QStringLiteral("getProgramFilesPathFromRegistry=false")},
                                      {{QStringLiteral("TAVELINE2024DIR"),
                                        QString::fromUtf8("D:/Gr\xC3\xB6\xC3\x9F"
                                                          "e/")}});
    QCOMPARE(outcome.results,
             QStringList{native(QString::fromUtf8("D:/Gr\xC3\xB6\xC3\x9F"
                                                  "e"))});
    QCOMPARE(outcome.printed.size(), 1); // that there is no setting
}

void TestSystem::installationFolderOfTheVariableOnlyWhenWanted()
{
    const QMap<QString, QString> variables{
        {QStringLiteral("TAVELINE2024DIR"), QStringLiteral("D:/variable")}};
    QCOMPARE(run({QStringLiteral("getProgramFilesPathFromRegistry=true")}, variables).results,
             QStringList{QString()});
    // What is not found is looked for again.
    QCOMPARE(run({QStringLiteral("getProgramFilesPathFromRegistry=true"),
                  QStringLiteral("getProgramFilesPathFromRegistry=false"),
                  QStringLiteral("getProgramFilesPathFromRegistry=true")},
                 variables)
                 .results,
             (QStringList{QString(), native(QStringLiteral("D:/variable")),
                          native(QStringLiteral("D:/variable"))}));
}

void TestSystem::installationFolderOfTheSettingsGoesFirst()
{
    QVERIFY(writeSetting(productKey(), QStringLiteral("InstallationDirectory"),
                         QStringLiteral("D:/setting")));
    QCOMPARE(run({QStringLiteral("getProgramFilesPathFromRegistry=false")},
                 {{QStringLiteral("TAVELINE2024DIR"), QStringLiteral("D:/variable")}})
                 .results,
             QStringList{native(QStringLiteral("D:/setting"))});
}

void TestSystem::installationFolderIsKept()
{
    QCOMPARE(run({QStringLiteral("setVariable=TAVELINE2024DIR=D:/first"),
                  QStringLiteral("getProgramFilesPathFromRegistry=false"),
                  QStringLiteral("setVariable=TAVELINE2024DIR=D:/second"),
                  QStringLiteral("getProgramFilesPathFromRegistry=false")})
                 .results,
             (QStringList{native(QStringLiteral("D:/first")), native(QStringLiteral("D:/first"))}));
}

void TestSystem::programFolderIsThatOfTheRunningProgram()
{
    const SystemOutcome outcome
        = run({QStringLiteral("getCurrentExePath"), QStringLiteral("getCurrentExePath")});
    QCOMPARE(outcome.results, (QStringList{helperFolder(), helperFolder()}));
}

void TestSystem::programFolderIsThatOfTheMainProgram()
{
    const QString program = path(QFileInfo(BuildPaths::helperProgram()).fileName());
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), program));
    QVERIFY(writeFile(path(QStringLiteral("VORN.exe")), QByteArray()));
    QCOMPARE(
        runSystemCalls(program, QStringLiteral("system"), {QStringLiteral("getCurrentExePath")})
            .results,
        QStringList{native(QFileInfo(here_).canonicalFilePath())});
}

void TestSystem::programFolderWithoutAnApplication()
{
    const SystemOutcome outcome
        = runSystemCalls(BuildPaths::helperProgram(), QStringLiteral("system-without-application"),
                         {QStringLiteral("getCurrentExePath")});
    QCOMPARE(outcome.results, QStringList{helperFolder()});
}

void TestSystem::programFolderAskedForFirstIsTheInstallationFolder()
{
    QVERIFY(writeSetting(productKey(), QStringLiteral("InstallationDirectory"),
                         QStringLiteral("D:/setting")));
    QCOMPARE(run({QStringLiteral("getCurrentExePath"),
                  QStringLiteral("getProgramFilesPathFromRegistry=false")})
                 .results,
             (QStringList{helperFolder(), helperFolder()}));

    // The settings are not even read: that they are missing is not printed.
    QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel\\VORN")));
    const SystemOutcome outcome = run({QStringLiteral("getCurrentExePath"),
                                       QStringLiteral("getProgramFilesPathFromRegistry=false"),
                                       QStringLiteral("getProgramFilesPathFromRegistry=true")});
    QCOMPARE(outcome.results, (QStringList{helperFolder(), helperFolder(), helperFolder()}));
    QCOMPARE(outcome.printed, QStringList());
}

void TestSystem::installationFolderAskedForFirstIsTheProgramFolder()
{
    QVERIFY(writeSetting(productKey(), QStringLiteral("InstallationDirectory"),
                         QStringLiteral("/the/setting/")));
    const QString folder = native(QStringLiteral("/the/setting"));
    QCOMPARE(run({QStringLiteral("getProgramFilesPathFromRegistry=true"),
                  QStringLiteral("getCurrentExePath")})
                 .results,
             (QStringList{folder, folder}));
}

void TestSystem::makePathCreatesAllMissingFolders_data()
{
    QTest::addColumn<QString>("missing"); // below a folder that exists
    QTest::addColumn<QString>("parent");  // the last folder but one that is created

    const auto row = [](const char *name, const char *missing, const char *parent) {
        QTest::newRow(name) << QString::fromLatin1(missing) << QString::fromLatin1(parent);
    };
    row("one", "/a", "");
    row("three", "/a/b/c", "/a/b");
    row("backslashes", "\\a\\b", "\\a");
    row("a backslash before the last slash", "/a\\b/c", "/a\\b");
    row("a backslash after the last slash", "/a/b\\c", "/a/b");
    row("separator at the end", "/a/b/", "/a");
    row("two separators", "/a//b", "/a");
    row("blanks and dots", "/a b/c.d", "/a b");
}

void TestSystem::makePathCreatesAllMissingFolders()
{
    QFETCH(QString, missing);
    QFETCH(QString, parent);

    // Elsewhere than on Windows, the folder "top\a" lies beside "top".
    const QString top = path(QStringLiteral("top"));
    QVERIFY(QDir().mkdir(top));
    const QString folder = top + missing;
    QVERIFY(!QDir(folder).exists());
    QVERIFY(System::makePath(folder));
    QVERIFY(QDir(folder).exists());
    QVERIFY(QDir(top + parent).exists());
    QVERIFY(System::makePath(folder));
    QCOMPARE(QDir::currentPath(), here_);
}

void TestSystem::makePathOfAnExistingFolder()
{
    QVERIFY(System::makePath(here_));
    QVERIFY(System::makePath(QDir::rootPath()));
    QVERIFY(System::makePath(QStringLiteral(".")));
    QVERIFY(System::makePath(QString()));
    QVERIFY(QDir().isEmpty());
}

void TestSystem::makePathWithoutAnExistingPart()
{
    QVERIFY(!System::makePath(QStringLiteral("a")));
    QVERIFY(!System::makePath(QStringLiteral("a/b/c")));
    QVERIFY(!System::makePath(QStringLiteral("a\\b")));
    QVERIFY(QDir().isEmpty());
}

// makePath() creates each part relative to the last folder that it created, so of a relative path
// it can create only one part.
void TestSystem::makePathOfARelativePath()
{
    QVERIFY(QDir().mkdir(QStringLiteral("there")));
    QVERIFY(System::makePath(QStringLiteral("there")));
    QVERIFY(!System::makePath(QStringLiteral("there/a")));
    QVERIFY(System::makePath(QStringLiteral("./a")));
    QVERIFY(QDir(path(QStringLiteral("a"))).exists());
    QVERIFY(!System::makePath(QStringLiteral("./b/c")));
    QVERIFY(QDir(path(QStringLiteral("b"))).exists());
    QVERIFY(!QDir(path(QStringLiteral("b/c"))).exists());
}

void TestSystem::makePathThroughAFile()
{
    QVERIFY(writeFile(path(QStringLiteral("file")), QByteArray()));
    QVERIFY(!System::makePath(path(QStringLiteral("file"))));
    QVERIFY(!System::makePath(path(QStringLiteral("file/a"))));
    QVERIFY(QFileInfo(path(QStringLiteral("file"))).isFile());
}

QTEST_GUILESS_MAIN(TestSystem)

#include "tst_system.moc"
