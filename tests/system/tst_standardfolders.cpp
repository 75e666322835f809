// Where the standard folders are, on systems that a test cannot have. Nothing is kept, so that each
// function sets up its own system.

#include "FakePlatform.h"

#include <Utility/StandardFolders_p.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// The product's settings have one value, \a name.
void setSetting(const QString &name, const QString &text)
{
    using Platform::SettingsValue;
    fakePlatform().readSettingsValue = [name, text](const QString &key, const QString &asked) {
        const bool found = key == QLatin1String("SOFTWARE\\Vantorel\\VORN\\24.0") && asked == name;
        return SettingsValue{found ? SettingsValue::Found : SettingsValue::NoKey,
                             found ? text : QString(), 2, QStringLiteral("Not found\n")};
    };
}

void setVariable(const char *name, const QString &value)
{
    fakePlatform().environmentVariable = [name, value](const char *asked) {
        return qstrcmp(asked, name) == 0 ? value : QString();
    };
}

// The product's folder lies below \a folder: the platform gets the maker's name.
std::function<QString(const QString &)> folderForMaker(const QString &folder)
{
    return [folder](const QString &maker) {
        return maker == QLatin1String("Vantorel") ? folder : QStringLiteral("unknown maker");
    };
}

} // namespace

class TestStandardFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void oneSeparatorIsRemovedAtTheEnd_data();
    void oneSeparatorIsRemovedAtTheEnd();

    void allUsersDataLieInThePublicDocuments();
    void userDataLieBelowTheirRoot();
    void programDataLieInTheCommonFolder_data();
    void programDataLieInTheCommonFolder();
    void withoutACommonFolderProgramDataLieBelowTheRoot();
    void publicDocumentsAreThoseOfTheVariable_data();
    void publicDocumentsAreThoseOfTheVariable();
    void theProductsFolderIsNative();

    void theFolderForAnalysesIsThatOfTheSetting();
    void theRunningProgramIsThatOfTheProgramFile();
    void withoutAProgramFileTheRunningProgramIsUnknown();
    void theInstallationIsThatOfTheSetting_data();
    void theInstallationIsThatOfTheSetting();
    void theVariableCountsOnlyWhereItIsAllowed();
    void theSettingComesBeforeTheVariable();

    void withoutAUniqueNameThereIsNoTemporaryFileName();
    void temporaryFileName_data();
    void temporaryFileName();

    void nothingIsKept();
};

void TestStandardFolders::init()
{
    fakePlatform() = FakePlatform();
}

void TestStandardFolders::oneSeparatorIsRemovedAtTheEnd_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *path, const char *expected) {
        QTest::newRow(path) << QString::fromLatin1(path) << QString::fromLatin1(expected);
    };
    row("", "");
    row("/", "");
    row("a", "a");
    row("a/", "a");
    row("a\\", "a");
    row("a//", "a/");
    row("a\\/", "a\\");
    row("/a/b", "/a/b");
}

void TestStandardFolders::oneSeparatorIsRemovedAtTheEnd()
{
    QFETCH(QString, path);
    QTEST(StandardFolders::withoutLastSeparator(path), "expected");
}

void TestStandardFolders::allUsersDataLieInThePublicDocuments()
{
    fakePlatform().publicDocumentsRoot = folderForMaker(QStringLiteral("/public/"));
    QCOMPARE(StandardFolders::allUsersData(), QStringLiteral("/public/Vantorel/VORN 2024"));
}

void TestStandardFolders::userDataLieBelowTheirRoot()
{
    fakePlatform().userDataRoot = [] { return QStringLiteral("/user/"); };
    QCOMPARE(StandardFolders::userData(), QStringLiteral("/user/Vantorel/VORN 2024"));
}

void TestStandardFolders::programDataLieInTheCommonFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected"); // below the common folder
    QTest::newRow("the product") << QStringLiteral("VORN 2024")
                                 << QStringLiteral("/Vantorel/VORN 2024");
    QTest::newRow("place markers") << QStringLiteral("%1%2") << QStringLiteral("/Vantorel/%1%2");
    QTest::newRow("no name") << QString() << QStringLiteral("/Vantorel/");
}

void TestStandardFolders::programDataLieInTheCommonFolder()
{
    QFETCH(QString, name);
    QFETCH(QString, expected);
    fakePlatform().commonApplicationDataFolder = folderForMaker(QStringLiteral("/common data"));
    QCOMPARE(native(StandardFolders::programData(name)),
             native(QStringLiteral("/common data") + expected));
}

void TestStandardFolders::withoutACommonFolderProgramDataLieBelowTheRoot()
{
    QCOMPARE(native(StandardFolders::programData(QStringLiteral("Other"))),
             native(QDir::rootPath() + QStringLiteral("ProgramData/Vantorel/Other")));
}

void TestStandardFolders::publicDocumentsAreThoseOfTheVariable_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("expected");
    QTest::newRow("not set or empty") << QString() << QString();
    QTest::newRow("set") << QStringLiteral("/public") << QStringLiteral("/public/Documents");
}

void TestStandardFolders::publicDocumentsAreThoseOfTheVariable()
{
    QFETCH(QString, variable);
    setVariable("PUBLIC", variable);
    QTEST(StandardFolders::publicDocuments(), "expected");
}

void TestStandardFolders::theProductsFolderIsNative()
{
    QCOMPARE(StandardFolders::productFolderIn(QStringLiteral("/a/b")),
             native(QStringLiteral("/a/b/Vantorel/VORN 2024")));
}

void TestStandardFolders::theFolderForAnalysesIsThatOfTheSetting()
{
    setSetting(QStringLiteral("AnalyzeDirectory"), QStringLiteral("/analyses/"));
    QCOMPARE(StandardFolders::analyses(), QStringLiteral("/analyses/"));
}

void TestStandardFolders::theRunningProgramIsThatOfTheProgramFile()
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("program.exe"));
    fakePlatform().programFile = [program] { return program; };
    QCOMPARE(StandardFolders::runningProgram(),
             native(QFileInfo(folder.path()).absoluteFilePath()));
}

void TestStandardFolders::withoutAProgramFileTheRunningProgramIsUnknown()
{
    QCOMPARE(StandardFolders::runningProgram(), QString());
}

void TestStandardFolders::theInstallationIsThatOfTheSetting_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *setting, const char *expected) {
        QTest::newRow(setting) << QString::fromLatin1(setting) << QString::fromLatin1(expected);
    };
    row("/opt/VORN", "/opt/VORN");
    row("/opt/VORN/", "/opt/VORN");
    row("/opt/VORN\\", "/opt/VORN");
    row("/opt/VORN//", "/opt/VORN/");
    row("/opt/VORN\\/", "/opt/VORN\\");
}

void TestStandardFolders::theInstallationIsThatOfTheSetting()
{
    QFETCH(QString, setting);
    QFETCH(QString, expected);
    setSetting(QStringLiteral("InstallationDirectory"), setting);
    QCOMPARE(StandardFolders::installation(false), native(expected));
    QCOMPARE(StandardFolders::installation(true), native(expected));
}

void TestStandardFolders::theVariableCountsOnlyWhereItIsAllowed()
{
    setVariable("TAVELINE2024DIR", QStringLiteral("/variable/"));
    QCOMPARE(StandardFolders::installation(false), QString());
    QCOMPARE(StandardFolders::installation(true), native(QStringLiteral("/variable")));
}

void TestStandardFolders::theSettingComesBeforeTheVariable()
{
    setVariable("TAVELINE2024DIR", QStringLiteral("/variable"));
    setSetting(QStringLiteral("InstallationDirectory"), QStringLiteral("/setting"));
    QCOMPARE(StandardFolders::installation(true), native(QStringLiteral("/setting")));
}

void TestStandardFolders::withoutAUniqueNameThereIsNoTemporaryFileName()
{
    QCOMPARE(System::getTempFileName(QStringLiteral("results.xyz")), QString());
}

void TestStandardFolders::temporaryFileName_data()
{
    QTest::addColumn<QString>("uniqueName");
    QTest::addColumn<QString>("expected"); // for "results.tar.xyz"

    const auto row = [](const char *uniqueName, const char *expected) {
        QTest::newRow(uniqueName) << QString::fromLatin1(uniqueName)
                                  << QString::fromLatin1(expected);
    };
    row("\\s1ko.", "s1ko.xyz");
    row("\\s1ko", "s1ko.xyz");
    row("/s1ko.", "s1ko.xyz");
    row("/s1ko", "s1ko.xyz");
    row("s1ko.", "s1ko.xyz");
    row("s1ko", "s1ko.xyz");
    row("s1.ko", "s1.ko.xyz");
    row("s1ko..", "s1ko..xyz");
    row("\\\\s1ko", "\\s1ko.xyz");
    row("//s1ko", "/s1ko.xyz");
    row("C:\\Temp\\s1ko.", "C:\\Temp\\s1ko.xyz");
    row("/tmp/s1ko", "tmp/s1ko.xyz");
}

void TestStandardFolders::temporaryFileName()
{
    QFETCH(QString, uniqueName);
    QFETCH(QString, expected);

    const QString withoutSuffix = expected.chopped(QStringLiteral("xyz").size());
    fakePlatform().uniqueFileName = [uniqueName] { return uniqueName; };
    QCOMPARE(System::getTempFileName(QStringLiteral("results.tar.xyz")), expected);
    QCOMPARE(System::getTempFileName(QStringLiteral("results")), withoutSuffix);
}

void TestStandardFolders::nothingIsKept()
{
    for (const char *root : {"/first/", "/second/"}) {
        const QString folder = QString::fromLatin1(root);
        fakePlatform().userDataRoot = [folder] { return folder; };
        setSetting(QStringLiteral("InstallationDirectory"), folder);
        QCOMPARE(StandardFolders::userData(), folder + QStringLiteral("Vantorel/VORN 2024"));
        QCOMPARE(StandardFolders::installation(false), native(folder.chopped(1)));
    }
}

QTEST_GUILESS_MAIN(TestStandardFolders)

#include "tst_standardfolders.moc"
