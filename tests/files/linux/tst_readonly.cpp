// Folders and files that an ordinary user may not write or read.

#include "OrdinaryUser.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestWithFolder.h"

#include <Utility/Command.h>
#include <Utility/CpuInfo.h>
#include <Utility/Log.h>
#include <Utility/Registry.h>
#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QSettings>
#include <QtTest/QtTest>

#include <array>

using namespace Vorn::Util;

namespace {

constexpr QFile::Permissions ReadOnlyFolder = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup
    | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
constexpr QFile::Permissions OpenFolder
    = ReadOnlyFolder | QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
constexpr QFile::Permissions OpenFile = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup
    | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
const char *const Key = "SOFTWARE\\Vantorel\\VORN\\24.0";

QByteArray truth(bool value)
{
    return value ? "true" : "false";
}

QByteArray countsOf(const CpuInfo &info)
{
    return QByteArray::number(info.processorCount()) + ' ' + QByteArray::number(info.coreCount())
        + ' ' + truth(info.isHyperThreadingOn());
}

} // namespace

class TestReadOnly : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override;
    void cleanup() override;

    void aLogCannotBeOpenedInAReadOnlyFolder_data();
    void aLogCannotBeOpenedInAReadOnlyFolder();
    void aLogThatMayNotBeWrittenCannotBeOpened();
    void aLogInAReadOnlyFolderStaysAsItWasAndIsWritten();
    void oldLogsInAReadOnlyFolderStay();

    void aCommandInAReadOnlyFolderPrintsNothing();
    void aScriptThatCannotBeDeletedIsOverwritten_data();
    void aScriptThatCannotBeDeletedIsOverwritten();
    void aScriptThatMayNotBeWrittenIsNotRun();
    void aCommandThatIsNotWaitedForRunsInAReadOnlyFolder();

    void theCountsAreTheSystemsAlthoughTheyCannotBeSaved();
    void anInformationFileThatMayNotBeReadLeavesTheDefaults();

    void settingsThatMayNotBeReadCountAsMissing();
    void theLocaleIsTheDefaultWhenSettingsMayNotBeRead();
    void settingsThatMayNotBeReadAreNotOverwritten();
    void theLocaleStaysWhenSettingsMayNotBeWritten();

    void aFileInAReadOnlyFolderKeepsItsName();

private:
    QString readOnly_;
    QString openLog_; // a file in it that everybody may write
};

void TestReadOnly::initTestCase()
{
    const TestFolder folder;
    QVERIFY(QFile::setPermissions(folder.path(), ReadOnlyFolder));
    const QByteArray outcome = asOrdinaryUser(
        [&folder] { return truth(writeFile(folder.filePath(QStringLiteral("probe")), "x")); });
    if (outcome != "false")
        QSKIP("Permissions count for no user that this process can become");
}

void TestReadOnly::init()
{
    TestWithFolder::init();
    QVERIFY(QFile::setPermissions(testFolder(), OpenFolder));
    readOnly_ = path(QStringLiteral("read only"));
    openLog_ = readOnly_ + QStringLiteral("/run.log");
    QVERIFY(QDir().mkdir(readOnly_));
    QVERIFY(writeFile(openLog_, QByteArray()));
    QVERIFY(QFile::setPermissions(openLog_, OpenFile));
    QVERIFY(QFile::setPermissions(readOnly_, ReadOnlyFolder));
}

void TestReadOnly::cleanup()
{
    QCOMPARE(entriesOf(readOnly_), QStringList{QStringLiteral("run.log")});
    QVERIFY(QFile::setPermissions(readOnly_, OpenFolder));
    TestWithFolder::cleanup();
}

void TestReadOnly::aLogCannotBeOpenedInAReadOnlyFolder_data()
{
    QTest::addColumn<bool>("append");
    QTest::newRow("anew") << false;
    QTest::newRow("at its end") << true;
}

void TestReadOnly::aLogCannotBeOpenedInAReadOnlyFolder()
{
    QFETCH(bool, append);
    const QByteArray outcome = asOrdinaryUser([this, append] {
        Log log(readOnly_ + QStringLiteral("/new.log"), Log::WithFileTimeStamp);
        const bool isOpen = log.open(append);
        log.append(QStringLiteral("line"));
        log << QStringLiteral("text");
        return truth(isOpen);
    });
    QCOMPARE(outcome, QByteArray("false"));
    // A folder that no user can write to, not even root.
    Log process(QStringLiteral("/proc/run.log"), Log::NoFileTimeStamp);
    QVERIFY(!process.open(append));
}

void TestReadOnly::aLogThatMayNotBeWrittenCannotBeOpened()
{
    const QString fileName = path(QStringLiteral("mine.log"));
    QVERIFY(writeFile(fileName, "line\n"));
    QVERIFY(QFile::setPermissions(fileName, QFile::ReadOwner | QFile::ReadOther));
    const QByteArray outcome = asOrdinaryUser([&fileName] {
        Log log(fileName, Log::NoFileTimeStamp);
        const bool isOpen = log.open(false) || log.open(true);
        log.append(QStringLiteral("more"));
        return truth(isOpen);
    });
    QCOMPARE(outcome, QByteArray("false"));
    QCOMPARE(contentOf(fileName), QByteArray("line\n"));
}

// Neither the tail nor a copy of the tail can replace the log.
void TestReadOnly::aLogInAReadOnlyFolderStaysAsItWasAndIsWritten()
{
    const QByteArray before(static_cast<int>(Log::MaxLogSize) + 1, '\n');
    QVERIFY(writeFile(openLog_, before));
    const QByteArray outcome = asOrdinaryUser([this] {
        Log log(openLog_, Log::NoFileTimeStamp);
        log.setTimeStamp(Log::NoTimeStamp);
        const bool isOpen = log.open(true);
        log.append(QStringLiteral("more"));
        log << QStringLiteral("text");
        return truth(isOpen);
    });
    QCOMPARE(outcome, QByteArray("true"));
    QVERIFY(contentOf(openLog_) == before + " more\ntext");
}

void TestReadOnly::oldLogsInAReadOnlyFolderStay()
{
    const QString folder = path(QStringLiteral("logs"));
    QVERIFY(QDir().mkdir(folder));
    QStringList names;
    for (int day = 1; day < 10; ++day) {
        names += QStringLiteral("run_2023-01-0%1-000000.log").arg(day);
        QVERIFY(writeFile(folder + QLatin1Char('/') + names.last(), "line\n"));
    }
    QVERIFY(QFile::setPermissions(folder, ReadOnlyFolder));
    const QByteArray outcome = asOrdinaryUser([&folder] {
        return truth(Log::removeOldTimeStampedLogFiles(folder, QStringLiteral("run"),
                                                       QStringLiteral("log"), 3));
    });
    QCOMPARE(outcome, QByteArray("false"));
    QCOMPARE(entriesOf(folder), names);
    QVERIFY(QFile::setPermissions(folder, OpenFolder));
}

// There is no script to be run.
void TestReadOnly::aCommandInAReadOnlyFolderPrintsNothing()
{
    const QString logName = path(QStringLiteral("command.log"));
    const QByteArray outcome = asOrdinaryUser([this, &logName] {
        QDir::setCurrent(readOnly_);
        Log log(logName, Log::NoFileTimeStamp);
        log.setTimeStamp(Log::NoTimeStamp);
        log.open(true);
        Command command(&log);
        const QString text = QStringLiteral("echo text");
        const bool isEmpty = command.run(text, 100, true).isEmpty()
            && command.runL(text, 100, true) == QStringList{QString()};
        return truth(isEmpty) + ' ' + truth(command.runQ(text) == 0);
    });
    QCOMPARE(outcome, QByteArray("true true"));
    const QByteArray call = " Command:/bin/sh work.bat\n  output:\n";
    QCOMPARE(contentOf(logName), call + call);
}

void TestReadOnly::aScriptThatCannotBeDeletedIsOverwritten_data()
{
    QTest::addColumn<QByteArray>("older");
    QTest::newRow("shorter") << QByteArray("echo older\n");
    QTest::newRow("longer") << QByteArray("echo older\n").repeated(100);
}

// Its former lines are not run.
void TestReadOnly::aScriptThatCannotBeDeletedIsOverwritten()
{
    QFETCH(QByteArray, older);
    const QString folder = path(QStringLiteral("scripts"));
    const QString script = folder + QStringLiteral("/work.bat");
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(writeFile(script, older));
    QVERIFY(QFile::setPermissions(script, OpenFile));
    QVERIFY(QFile::setPermissions(folder, ReadOnlyFolder));
    const QByteArray outcome = asOrdinaryUser([&folder] {
        QDir::setCurrent(folder);
        return Command().run(QStringLiteral("echo newer"), 100, false).toUtf8();
    });
    QVERIFY(QFile::setPermissions(folder, OpenFolder));
    QCOMPARE(outcome, QByteArray("newer\n"));
    QCOMPARE(contentOf(script), QByteArray("echo newer"));
}

// The script belongs to another user.
void TestReadOnly::aScriptThatMayNotBeWrittenIsNotRun()
{
    const QString folder = path(QStringLiteral("scripts"));
    const QString script = folder + QStringLiteral("/work.bat");
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(writeFile(script, "echo other\nexit 5"));
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ReadOther));
    QVERIFY(QFile::setPermissions(folder, ReadOnlyFolder));
    const QByteArray outcome = asOrdinaryUser([&folder] {
        QDir::setCurrent(folder);
        const QString text = QStringLiteral("echo mine");
        return truth(Command().run(text, 100, false).isEmpty()) + ' '
            + truth(Command().runL(text, 100, false) == QStringList{QString()}) + ' '
            + QByteArray::number(Command().runQ(text));
    });
    QVERIFY(QFile::setPermissions(folder, OpenFolder));
    QCOMPARE(outcome, QByteArray("true true 0"));
    QCOMPARE(contentOf(script), QByteArray("echo other\nexit 5"));
}

void TestReadOnly::aCommandThatIsNotWaitedForRunsInAReadOnlyFolder()
{
    const QString fileName = path(QStringLiteral("result"));
    const QByteArray outcome = asOrdinaryUser([this, &fileName] {
        const int result
            = Command().runNoWait(QStringLiteral("pwd > '%1'").arg(fileName), false, readOnly_);
        const bool isThere
            = QTest::qWaitFor([&fileName] { return contentOf(fileName).endsWith('\n'); });
        return QByteArray::number(result) + ' ' + truth(isThere);
    });
    QCOMPARE(outcome, QByteArray("0 true"));
    QCOMPARE(contentOf(fileName), QFile::encodeName(readOnly_) + '\n');
}

void TestReadOnly::theCountsAreTheSystemsAlthoughTheyCannotBeSaved()
{
    const QByteArray counts = countsOf(CpuInfo(nullptr, path(QString())));
    const QString logName = path(QStringLiteral("info.log"));
    const QByteArray outcome = asOrdinaryUser([this, &logName] {
        Log log(logName, Log::NoFileTimeStamp);
        log.setTimeStamp(Log::NoTimeStamp);
        log.open(true);
        return countsOf(CpuInfo(&log, readOnly_));
    });
    QCOMPARE(outcome, counts);
    QCOMPARE(contentOf(logName), QByteArray(" Cannot save CPU information to SystemInfo.xml\n"));
}

void TestReadOnly::anInformationFileThatMayNotBeReadLeavesTheDefaults()
{
    const QString infoFile = path(QStringLiteral("SystemInfo.xml"));
    const QByteArray content = "<SystemInformation><processorCount>7</processorCount>"
                               "<hyperThreading>on</hyperThreading></SystemInformation>";
    QVERIFY(writeFile(infoFile, content));
    QVERIFY(QFile::setPermissions(infoFile, QFile::Permissions()));
    const QString logName = path(QStringLiteral("info.log"));
    const QByteArray outcome = asOrdinaryUser([this, &logName] {
        Log log(logName, Log::NoFileTimeStamp);
        log.setTimeStamp(Log::NoTimeStamp);
        log.open(true);
        return countsOf(CpuInfo(&log, testFolder()));
    });
    QCOMPARE(outcome, QByteArray("1 1 false"));
    QCOMPARE(contentOf(logName),
             QByteArray(" Reading CPU information from SystemInfo.xml\n"
                        " Cannot read CPU information from SystemInfo.xml\n"));
    QVERIFY(QFile::setPermissions(infoFile, QFile::ReadOwner));
    QCOMPARE(contentOf(infoFile), content);
}

namespace {

const QByteArray Settings = "[24.0]\nInstallationDirectory=/product\nLocale=fr-FR\n";

// Settings with these permissions. Not written by QSettings, which would keep them in memory.
QString makeSettings(const QString &folder, QFile::Permissions permissions)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, folder);
    const QDir product(folder + QStringLiteral("/Vantorel"));
    const QString fileName = product.filePath(QStringLiteral("VORN.conf"));
    return QDir().mkdir(product.path()) && QFile::setPermissions(product.path(), OpenFolder)
            && writeFile(fileName, Settings) && QFile::setPermissions(fileName, permissions)
        ? fileName
        : QString();
}

// Settings that nobody may read.
QString makeLockedSettings(const QString &folder)
{
    return makeSettings(folder, QFile::Permissions());
}

} // namespace

void TestReadOnly::settingsThatMayNotBeReadCountAsMissing()
{
    QVERIFY(QFile::exists(makeLockedSettings(testFolder())));
    const QByteArray outcome = asOrdinaryUser([] {
        std::array<wchar_t, 1024> value{L'x'};
        Registry::readRegistryValue(L"InstallationDirectory", value.data(), nullptr);
        return truth(value.front() == 0)
            + truth(Registry::readProductInstallationFolder(value.data(), nullptr));
    });
    QVERIFY2(outcome.endsWith("truefalse"), outcome.constData());
    QCOMPARE(outcome.count("RegOpenKeyEx: " + QByteArray(Key) + ": "), 2);
}

void TestReadOnly::theLocaleIsTheDefaultWhenSettingsMayNotBeRead()
{
    QVERIFY(QFile::exists(makeLockedSettings(testFolder())));
    QCOMPARE(asOrdinaryUser([] { return System::getLocale().toUtf8(); }), QByteArray("en-US"));
}

void TestReadOnly::settingsThatMayNotBeReadAreNotOverwritten()
{
    const QString fileName = makeLockedSettings(testFolder());
    QVERIFY(QFile::exists(fileName));
    const QByteArray outcome = asOrdinaryUser([] {
        System::setLocale(QStringLiteral("de-DE"));
        return System::getLocale().toUtf8();
    });
    QCOMPARE(outcome, QByteArray("en-US"));
    QVERIFY(QFile::setPermissions(fileName, QFile::ReadOwner));
    QCOMPARE(contentOf(fileName), Settings);
}

// The process does not see a value that was never stored.
void TestReadOnly::theLocaleStaysWhenSettingsMayNotBeWritten()
{
    const QString fileName
        = makeSettings(testFolder(), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    QVERIFY(QFile::exists(fileName));
    const QByteArray outcome = asOrdinaryUser([] {
        const QString before = System::getLocale();
        System::setLocale(QStringLiteral("de-DE"));
        return (before + QLatin1Char(' ') + System::getLocale()).toUtf8();
    });
    QCOMPARE(outcome, QByteArray("fr-FR fr-FR"));
    QCOMPARE(contentOf(fileName), Settings);
}

void TestReadOnly::aFileInAReadOnlyFolderKeepsItsName()
{
    const QString folder = path(QStringLiteral("files"));
    QVERIFY(QDir().mkdir(folder));
    const QString fileName = folder + QStringLiteral("/l\u00f6ffel.txt");
    QVERIFY(writeFile(fileName, "content"));
    QVERIFY(QFile::setPermissions(folder, ReadOnlyFolder));
    const QByteArray outcome = asOrdinaryUser([&fileName] {
        const UnicodeFile file(fileName);
        return truth(QFile::exists(fileName));
    });
    QCOMPARE(outcome, QByteArray("true"));
    QCOMPARE(contentOf(fileName), QByteArray("content"));
    QVERIFY(QFile::setPermissions(folder, OpenFolder));
}

QTEST_GUILESS_MAIN(TestReadOnly)

#include "tst_readonly.moc"
