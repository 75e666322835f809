// Paths, processes, flags and shares on a fake platform. What System keeps for the whole process is
// set up first. Failures of the first call are tested in a child process, for which this program
// runs itself again.

#include "../helper/systemcalls.h"
#include "FakePlatform.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestMessages.h"
#include "TestSystem.h"

#include <Utility/System.h>

#include <QtCore/QTemporaryDir>
#include <QtNetwork/QHostInfo>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

// A process of the fake system.
struct Process
{
    long id;
    QString name;
    QString path;
    bool canBeTerminated = true;
};

class FakeProcess : public Platform::RunningProcess
{
public:
    FakeProcess(const Process &process, QStringList &terminated)
        : process_(process)
        , terminated_(terminated)
    {
    }

    long id() const override { return process_.id; }
    QString name() const override { return process_.name; }
    QString path() const override { return process_.path; }
    bool terminate(int exitCode) override
    {
        terminated_ += QStringLiteral("%1 with %2").arg(process_.id).arg(exitCode);
        return process_.canBeTerminated;
    }

private:
    const Process &process_;
    QStringList &terminated_;
};

// A folder that holds one folder, which cannot be left once it was entered.
class TrapTree : public Platform::FolderTree
{
public:
    void visitEntries(const std::function<void(const Platform::FolderEntry &)> &visit) override
    {
        if (!isInside_)
            visit({QStringLiteral("sub"), Platform::FolderEntry::Folder, false, false, 0});
    }
    void visitLinks(const std::function<void(const Platform::FolderEntry &)> &) override { }
    bool enter(const QString &) override { return isInside_ = true; }
    bool leave() override { return false; }
    bool removeFile(const QString &) override { return true; }
    bool removeFolder(const QString &) override { return true; }

private:
    bool isInside_ = false;
};

// The processes of the system, with what becomes of them.
class Processes
{
public:
    explicit Processes(const QList<Process> &processes)
    {
        fakePlatform().visitProcesses = [this, processes](const auto &visit) {
            for (const Process &process : processes) {
                ++visited_;
                FakeProcess running(process, terminated_);
                if (!visit(running))
                    return;
            }
        };
    }
    ~Processes() { fakePlatform().visitProcesses = FakePlatform().visitProcesses; }
    Q_DISABLE_COPY(Processes)

    int visited() const { return visited_; }
    QStringList terminated() const { return terminated_; }

private:
    int visited_ = 0;
    QStringList terminated_;
};

QString productKey()
{
    return QStringLiteral("SOFTWARE\\Vantorel\\VORN\\24.0");
}

QString childBehaviour()
{
    return QStringLiteral("child");
}

// "userDataRoot=FOLDER", "hostName=NAME", then calls of System.
int runAsChild(const QStringList &steps)
{
    SystemCalls calls;
    for (const QString &step : steps) {
        const QString value = step.section(QLatin1Char('='), 1);
        if (step.startsWith(QLatin1String("userDataRoot=")))
            fakePlatform().userDataRoot = [value] { return value; };
        else if (step.startsWith(QLatin1String("hostName=")))
            fakePlatform().hostName = [value] { return value; };
        else if (!calls.run(step))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

SystemOutcome run(const QStringList &steps)
{
    return runSystemCalls(QCoreApplication::applicationFilePath(), childBehaviour(), steps);
}

} // namespace

class TestSystemFakePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void theSystemDriveIsNeverAskedFor_data();
    void theSystemDriveIsNeverAskedFor();
    void aMappedDriveGivesItsUniversalName();
    void theUniversalNameIsAskedForInNativeForm();
    void theDriveIsAskedForWithoutAUniversalName_data();
    void theDriveIsAskedForWithoutAUniversalName();
    void theTargetOfADrive_data();
    void theTargetOfADrive();

    void theHostNameIsAskedForOnce();
    void aHostNameThatFailsIsAskedForElsewhere();
    void theLocalHostHasTheMachinesName();
    void aUserNameThatFailsIsReported();
    void theUserNameIsAskedForByEveryCall();

    void theSearchForAnIdEndsWithTheFirstFound();
    void aProcessWithoutANameIsUnknown();
    void theExitCodeOfAnEndedProcessIsOne();
    void aProcessThatCannotBeEndedIsNotInTheList();
    void withoutAPathTheFilterIsLookedForInTheName();
    void theFilterIsFoundAnywhereInThePath_data();
    void theFilterIsFoundAnywhereInThePath();
    void theRunningProgramIsAskedForAsItIsWritten();

    void aSettingThatCannotBeReadIsTheDefault();
    void aTextIsWrittenToTheProductsKey();
    void theFolderIsSharedUnderItsName_data();
    void theFolderIsSharedUnderItsName();

    void aFolderThatCannotBeReadHasNothingToRemove();
    void aRemovalThatCannotBeFinishedIsFalse();

    void theFlagsLieInTheUsersData();
    void aFlagIsTheFirstWordOfALine_data();
    void aFlagIsTheFirstWordOfALine();
    void flagsAreReadAnewByEveryCall();
    void aFlagsFileMayHaveAnySize();
    void aLineOfAMebibyteEndsTheFlags_data();
    void aLineOfAMebibyteEndsTheFlags();
    void withoutAFlagsFileNoFlagIsSet();
    void theFlagsFolderIsKept();
    void aFlagsFolderThatCannotBeMadeIsTriedAgain();

private:
    QString flagsFile() const;

    QTemporaryDir folder_;
    int hostNamesAskedFor_ = 0;
};

void TestSystemFakePlatform::initTestCase()
{
    QVERIFY(folder_.isValid());
    fakePlatform().userDataRoot = [this] { return folder_.path() + QLatin1Char('/'); };
    QVERIFY(!System::getFlagsDirPath().isEmpty());
    fakePlatform().hostName = [this] {
        ++hostNamesAskedFor_;
        return QStringLiteral("LOCALHOST");
    };
    QCOMPARE(System::getHostName(), QStringLiteral("LOCALHOST"));
}

void TestSystemFakePlatform::init()
{
    fakePlatform() = FakePlatform();
    QFile::remove(flagsFile());
}

QString TestSystemFakePlatform::flagsFile() const
{
    return folder_.filePath(QStringLiteral("Vantorel/VORN 2024/Flags/VORN_flags.txt"));
}

void TestSystemFakePlatform::theSystemDriveIsNeverAskedFor_data()
{
    QTest::addColumn<QString>("path");

    for (const char *path : {"c:", "C:", "c:\\a", "C:\\a\\b", "C:/a", "c:relative"})
        QTest::newRow(path) << QString::fromLatin1(path);
}

void TestSystemFakePlatform::theSystemDriveIsNeverAskedFor()
{
    QFETCH(QString, path);

    int asked = 0;
    fakePlatform().universalName = [&asked](const QString &) {
        ++asked;
        return QStringLiteral("\\\\server\\share");
    };
    fakePlatform().driveTarget = [&asked](const QString &) {
        ++asked;
        return QStringLiteral("\\??\\D:\\real");
    };
    QCOMPARE(System::getUniversalPath(path), path);
    QCOMPARE(asked, 0);
    QVERIFY(System::getUniversalPath(QStringLiteral("D:") + path) != path);
    QCOMPARE(asked, 1);
}

void TestSystemFakePlatform::aMappedDriveGivesItsUniversalName()
{
    bool isDriveAskedFor = false;
    fakePlatform().universalName
        = [](const QString &path) { return QStringLiteral("\\\\server\\share") + path.mid(2); };
    fakePlatform().driveTarget = [&isDriveAskedFor](const QString &) {
        isDriveAskedFor = true;
        return QStringLiteral("\\??\\D:\\real");
    };
    QCOMPARE(System::getUniversalPath(QStringLiteral("X:a")), QStringLiteral("\\\\server\\sharea"));
    QVERIFY(!isDriveAskedFor);
}

void TestSystemFakePlatform::theUniversalNameIsAskedForInNativeForm()
{
    QStringList asked;
    fakePlatform().universalName = [&asked](const QString &path) {
        asked += path;
        return QString();
    };
    const QString path = QStringLiteral("X:/a b/c.txt");
    QCOMPARE(System::getUniversalPath(path), path);
    QCOMPARE(asked, QStringList{QDir::toNativeSeparators(path)});
}

void TestSystemFakePlatform::theDriveIsAskedForWithoutAUniversalName_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("drive");

    QTest::newRow("path") << QStringLiteral("X:\\a\\b") << QStringLiteral("X:");
    QTest::newRow("lower case") << QStringLiteral("x:/a") << QStringLiteral("x:");
    QTest::newRow("drive") << QStringLiteral("X:") << QStringLiteral("X:");
    QTest::newRow("share") << QStringLiteral("\\\\server\\share") << QStringLiteral("\\\\");
    QTest::newRow("relative") << QStringLiteral("folder/a") << QStringLiteral("fo");
    QTest::newRow("one character") << QStringLiteral("x") << QStringLiteral("x");
    QTest::newRow("empty") << QString() << QString();
}

void TestSystemFakePlatform::theDriveIsAskedForWithoutAUniversalName()
{
    QFETCH(QString, path);
    QFETCH(QString, drive);

    QStringList asked;
    fakePlatform().driveTarget = [&asked](const QString &name) {
        asked += name;
        return QString();
    };
    QCOMPARE(System::getUniversalPath(path), path);
    QCOMPARE(asked, QStringList{drive});
}

void TestSystemFakePlatform::theTargetOfADrive_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *path, const char *target, const char *expected) {
        QTest::addRow("%s on %s", path, target)
            << QString::fromLatin1(path) << QString::fromLatin1(target)
            << QString::fromLatin1(expected);
    };
    row("X:\\a\\b", "\\??\\D:\\real", "D:\\real\\a\\b");
    row("X:/a/b", "\\??\\D:\\real", "D:\\real/a/b");
    row("x:\\", "\\??\\C:\\Program Files\\VORN", "C:\\Program Files\\VORN\\");
    row("X:", "\\??\\D:\\real", "D:\\real");
    row("X:a", "\\??\\D:\\real", "D:\\reala");
    row("X:\\%1", "\\??\\D:\\%1%2", "D:\\%1%2\\%1");
    row("X:\\a", "\\??\\UNC\\server\\share", "UNC\\server\\share\\a");
    row("X:\\a", "\\??\\", "\\a");
    row("X:\\a", "\\??\\\\??\\D:", "\\??\\D:\\a");
    // Targets that are no folder: a device, and texts that only look like a folder.
    row("X:\\a", "\\Device\\HarddiskVolume2", "X:\\a");
    row("X:\\a", "\\Device\\Mup\\server\\share", "X:\\a");
    row("X:\\a", "\\DosDevices\\D:\\real", "X:\\a");
    row("X:\\a", "D:\\real", "X:\\a");
    row("X:\\a", "\\??", "X:\\a");
    row("X:\\a", " \\??\\D:\\real", "X:\\a");
    row("X:\\a",
        "/?"
        "?/D:/real",
        "X:\\a");
}

void TestSystemFakePlatform::theTargetOfADrive()
{
    QFETCH(QString, path);
    QFETCH(QString, target);
    QFETCH(QString, expected);

    fakePlatform().driveTarget = [&target](const QString &) { return target; };
    QCOMPARE(System::getUniversalPath(path), expected);
}

void TestSystemFakePlatform::theHostNameIsAskedForOnce()
{
    fakePlatform().hostName = [] { return QStringLiteral("other"); };
    QCOMPARE(System::getHostName(), QStringLiteral("LOCALHOST"));
    QCOMPARE(hostNamesAskedFor_, 1);
}

void TestSystemFakePlatform::aHostNameThatFailsIsAskedForElsewhere()
{
    const QString name = QHostInfo::localHostName();
    QVERIFY(!name.isEmpty());
    QCOMPARE(run({QStringLiteral("hostName="), QStringLiteral("getHostName"),
                  QStringLiteral("hostName=later"), QStringLiteral("getHostName")})
                 .results,
             (QStringList{name, name}));
    QCOMPARE(run({QStringLiteral("hostName=first"), QStringLiteral("getHostName"),
                  QStringLiteral("hostName=later"), QStringLiteral("getHostName")})
                 .results,
             (QStringList{QStringLiteral("first"), QStringLiteral("first")}));
}

void TestSystemFakePlatform::theLocalHostHasTheMachinesName()
{
    QVERIFY(System::isLocalHost(QStringLiteral("LOCALHOST")));
    QVERIFY(System::isLocalHost(QStringLiteral("localhost")));
    QVERIFY(System::isLocalHost(QStringLiteral("MyComputer")));
    QVERIFY(!System::isLocalHost(QStringLiteral("Localhost")));
    QVERIFY(!System::isLocalHost(QString()));
    QCOMPARE(hostNamesAskedFor_, 1);
}

void TestSystemFakePlatform::aUserNameThatFailsIsReported()
{
    const TestMessages messages;
    QCOMPARE(System::getUserName(), QString());
    QCOMPARE(messages.lines(), QStringList{QStringLiteral("Cannot determine user name")});
    fakePlatform().userName = [] { return QStringLiteral("a user"); };
    QCOMPARE(System::getUserName(), QStringLiteral("a user"));
    QCOMPARE(messages.lines().size(), 1);
}

void TestSystemFakePlatform::theUserNameIsAskedForByEveryCall()
{
    for (const QString &name : {QStringLiteral("first user"), QStringLiteral("second user")}) {
        fakePlatform().userName = [name] { return name; };
        QCOMPARE(System::getUserName(), name);
    }
}

void TestSystemFakePlatform::theSearchForAnIdEndsWithTheFirstFound()
{
    const Processes processes({{4, QStringLiteral("other.exe"), QString()},
                               {8, QStringLiteral("VORN.exe"), QString()},
                               {12, QStringLiteral("vorn.EXE"), QString()},
                               {16,
                                QString::fromUtf8("pr\xC3\xBC"
                                                  "fen.exe"),
                                QString()}});
    QCOMPARE(System::getPID({QStringLiteral("VORN.EXE")}), 8L);
    QCOMPARE(processes.visited(), 2);
    QCOMPARE(System::getPID({QString::fromUtf8("PR\xC3\x9C"
                                               "FEN.EXE")}),
             16L);
    QCOMPARE(processes.visited(), 6);
    QCOMPARE(System::getPID({QStringLiteral("VORN.exe"), QStringLiteral("vorn.EXE")}), 0L);
    QCOMPARE(processes.terminated(), QStringList());
}

void TestSystemFakePlatform::aProcessWithoutANameIsUnknown()
{
    const Processes processes({{4, QStringLiteral("<unknown>"), QStringLiteral("C:\\a\\b.exe")}});
    QCOMPARE(System::getPID({QStringLiteral("<UNKNOWN>")}), 4L);
    QCOMPARE(System::getPID({QStringLiteral("<unknown>")}), 0L);
    QCOMPARE(System::killProcesses(QString(), {QStringLiteral("b.exe")}), QStringList());
    QCOMPARE(System::killProcesses(QString(), {QStringLiteral("<Unknown>")}),
             QStringList{QStringLiteral("<unknown>")});
}

void TestSystemFakePlatform::theExitCodeOfAnEndedProcessIsOne()
{
    const Processes processes({{4, QStringLiteral("VORN.exe"), QString()},
                               {8, QStringLiteral("other.exe"), QString()},
                               {12, QStringLiteral("vorn.EXE"), QString()}});
    QCOMPARE(System::killProcesses(QString(), {QStringLiteral("Vorn.exe")}),
             (QStringList{QStringLiteral("VORN.exe"), QStringLiteral("vorn.EXE")}));
    QCOMPARE(processes.terminated(),
             (QStringList{QStringLiteral("4 with 1"), QStringLiteral("12 with 1")}));
    QCOMPARE(processes.visited(), 3);
}

void TestSystemFakePlatform::aProcessThatCannotBeEndedIsNotInTheList()
{
    const QString name = QStringLiteral("VORN.exe");
    const Processes processes({{4, name, QString(), false},
                               {8, QStringLiteral("Vorn.exe"), QString()},
                               {12, name, QString(), false}});
    QCOMPARE(System::killProcesses(QString(), {name}), QStringList{QStringLiteral("Vorn.exe")});
    QCOMPARE(processes.terminated().size(), 3);
}

void TestSystemFakePlatform::withoutAPathTheFilterIsLookedForInTheName()
{
    const QString name = QStringLiteral("VORN.exe");
    const Processes processes({{4, name, QString()}});
    QCOMPARE(System::killProcesses(QStringLiteral("C:\\"), {name}), QStringList());
    QCOMPARE(processes.terminated(), QStringList());
    QCOMPARE(System::killProcesses(QStringLiteral("vorn"), {name}), QStringList{name});
    QCOMPARE(System::killProcesses(QString(), {name}), QStringList{name});
    QCOMPARE(processes.terminated().size(), 2);
}

void TestSystemFakePlatform::theFilterIsFoundAnywhereInThePath_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<bool>("isEnded");

    const auto row = [](const char *filter, bool isEnded) {
        QTest::addRow("\"%s\"", filter) << QString::fromLatin1(filter) << isEnded;
    };
    row("", true);
    row("C:\\Program Files\\VORN 2024", true);
    row("c:\\program files\\vorn 2024\\", true);
    row("PROGRAM FILES", true);
    row("vorn.EXE", true);
    row("m f", true);
    row("C:\\Program Files\\VORN 2024\\vorn.exe", true);
    row("C:\\Program Files\\VORN 2024\\vorn.exe ", false);
    row("C:/Program Files", false);
    row("D:\\", false);
    row("C:\\*", false);
    row("C:.Program", false);
    row("VORN2024", false);
}

void TestSystemFakePlatform::theFilterIsFoundAnywhereInThePath()
{
    QFETCH(QString, filter);
    QFETCH(bool, isEnded);

    const QString name = QStringLiteral("vorn.exe");
    const Processes processes(
        {{4, name, QStringLiteral("C:\\Program Files\\VORN 2024\\vorn.exe")}});
    QCOMPARE(System::killProcesses(filter, {name}), isEnded ? QStringList{name} : QStringList());
    QCOMPARE(processes.terminated().size(), isEnded ? 1 : 0);
}

void TestSystemFakePlatform::theRunningProgramIsAskedForAsItIsWritten()
{
    QStringList asked;
    fakePlatform().isProgramRunning = [&asked](const QString &name) {
        asked += name;
        return name == QLatin1String("VORN.exe");
    };
    QVERIFY(System::isProcessRunning(QStringLiteral("VORN.exe")));
    QVERIFY(!System::isProcessRunning(QStringLiteral("vorn.exe")));
    QVERIFY(!System::isProcessRunning(QString()));
    QCOMPARE(asked,
             (QStringList{QStringLiteral("VORN.exe"), QStringLiteral("vorn.exe"), QString()}));
}

void TestSystemFakePlatform::aSettingThatCannotBeReadIsTheDefault()
{
    QStringList asked;
    fakePlatform().readSettingsText = [&asked](const QString &keyPath, const QString &name) {
        asked += {keyPath, name};
        return QString();
    };
    QCOMPARE(System::getLocale(), QStringLiteral("en-US"));
    QCOMPARE(asked, (QStringList{productKey(), QStringLiteral("Locale")}));
    QCOMPARE(System::getLocaleID(), 1033);
}

void TestSystemFakePlatform::aTextIsWrittenToTheProductsKey()
{
    QStringList written;
    fakePlatform().writeSettingsText
        = [&written](const QString &keyPath, const QString &name, const QString &text) {
              written += {keyPath, name, text};
          };
    System::setLocale(QStringLiteral("de-DE"));
    System::writeToRegistry(QStringLiteral("A Name"), QStringLiteral("a text"));
    QCOMPARE(written,
             (QStringList{productKey(), QStringLiteral("Locale"), QStringLiteral("de-DE"),
                          productKey(), QStringLiteral("A Name"), QStringLiteral("a text")}));
}

void TestSystemFakePlatform::theFolderIsSharedUnderItsName_data()
{
    QTest::addColumn<bool>("result");

    QTest::newRow("done") << true;
    QTest::newRow("refused") << false;
}

void TestSystemFakePlatform::theFolderIsSharedUnderItsName()
{
    QFETCH(bool, result);

    QStringList asked;
    fakePlatform().shareFolder = [&asked, result](const QString &name, const QString &path) {
        asked += {name, path};
        return result;
    };
    fakePlatform().isFolderShared = [&asked, result](const QString &path) {
        asked += path;
        return result;
    };
    const QString path = QStringLiteral("D:\\a/b");
    QCOMPARE(System::shareFolder(QStringLiteral("A Name"), path), result);
    QCOMPARE(System::isFolderShared(path), result);
    QCOMPARE(asked, (QStringList{QStringLiteral("A Name"), path, path}));
}

void TestSystemFakePlatform::aFolderThatCannotBeReadHasNothingToRemove()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("file"));
    QVERIFY(writeFile(file, "content"));
    QVERIFY(System::removeDir(folder.path(), true, QStringList()));
    QVERIFY(!System::removeDir(folder.path(), false, QStringList()));
    QVERIFY(QFile::remove(file));
    QVERIFY(System::removeDir(folder.path(), false, QStringList()));
    QVERIFY(!QFileInfo::exists(folder.path()));
}

void TestSystemFakePlatform::aRemovalThatCannotBeFinishedIsFalse()
{
    fakePlatform().openFolderTree
        = [](const QString &, Platform::TreeAccess) { return std::make_unique<TrapTree>(); };
    const QTemporaryDir folder;
    QVERIFY(!System::removeDir(folder.path(), true, QStringList()));
    fakePlatform().openFolderTree = FakePlatform().openFolderTree;
}

void TestSystemFakePlatform::theFlagsLieInTheUsersData()
{
    const QString path = System::getFlagsDirPath();
    QCOMPARE(
        path,
        QDir::toNativeSeparators(folder_.filePath(QStringLiteral("Vantorel/VORN 2024/Flags"))));
    QVERIFY(QFileInfo(path).isDir());
}

void TestSystemFakePlatform::aFlagIsTheFirstWordOfALine_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("flag");
    QTest::addColumn<bool>("isSet");

    const auto row = [](const char *content, const char *flag, bool isSet) {
        QTest::addRow("%s: \"%s\"", content, flag)
            << QByteArray(content) << QString::fromUtf8(flag) << isSet;
    };
    row("  DebugMode    on\n", "DebugMode", true);
    row("  DebugMode    on\n", "on", false);
    row("\tDebugMode\ton\n", "DebugMode", true);
    row("DebugMode\xC2\xA0on\n", "DebugMode", true);
    row("DebugMode\n", "DebugMode", true);
    row("DebugMode", "DebugMode", true);
    row("DebugMode   \r\n", "DebugMode", true);
    row("First\nSecond a\n\n  Third\n", "First", true);
    row("First\nSecond a\n\n  Third\n", "Second", true);
    row("First\nSecond a\n\n  Third\n", "Third", true);
    row("First\r\nSecond\r\nThird", "Third", true);
    row("First\nSecond a\n\n  Third\n", "Fourth", false);
    row("DebugMode\n", "debugmode", false);
    row("DEBUGMODE\n", "DebugMode", false);
    row("DebugModes\n", "DebugMode", false);
    row("Debug\n", "DebugMode", false);
    row("No DebugMode\n", "DebugMode", false);
    // There are no comments and no values.
    row("# DebugMode\n", "DebugMode", false);
    row("# DebugMode\n", "#", true);
    row("#DebugMode\n", "#DebugMode", true);
    row("DebugMode=on\n", "DebugMode", false);
    row("DebugMode=on\n", "DebugMode=on", true);
    row("DebugMode,Other\n", "DebugMode", false);
    row("DebugMode on\n", "DebugMode on", false);
    row("DebugMode\n", " DebugMode", false);
    row("Pr\xC3\xBC"
        "fung an\n",
        "Pr\xC3\xBC"
        "fung",
        true);
    row("DebugMode\n", "", false);
    row("First\n\nSecond\n", "", true);
    row("First\n  \t\nSecond\n", "", true);
    row("", "", false);
    row("", "DebugMode", false);
}

void TestSystemFakePlatform::aFlagIsTheFirstWordOfALine()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, flag);
    QFETCH(bool, isSet);

    QVERIFY(writeFile(flagsFile(), content));
    QCOMPARE(System::isFlagSet(flag), isSet);
}

void TestSystemFakePlatform::flagsAreReadAnewByEveryCall()
{
    const QString flag = QStringLiteral("DebugMode");
    QVERIFY(!System::isFlagSet(flag));
    QVERIFY(writeFile(flagsFile(), "Other\n"));
    QVERIFY(!System::isFlagSet(flag));
    QVERIFY(writeFile(flagsFile(), "Other\nDebugMode\n"));
    QVERIFY(System::isFlagSet(flag));
    QVERIFY(writeFile(flagsFile(), "Other\n"));
    QVERIFY(!System::isFlagSet(flag));
}

void TestSystemFakePlatform::aFlagsFileMayHaveAnySize()
{
    QByteArray lines = "First\n";
    for (int number = 0; number < 300000; ++number)
        lines += "Flag" + QByteArray::number(number) + '\n';
    QVERIFY(writeFile(flagsFile(), lines));
    QVERIFY(System::isFlagSet(QStringLiteral("First")));
    QVERIFY(System::isFlagSet(QStringLiteral("Flag299999")));
    QVERIFY(!System::isFlagSet(QStringLiteral("Flag300000")));
    QVERIFY(QFile::remove(flagsFile()));
}

void TestSystemFakePlatform::aLineOfAMebibyteEndsTheFlags_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("isNextRead");
    QTest::newRow("one less") << 1048575 << true;
    QTest::newRow("1 MiB") << 1048576 << false;
    QTest::newRow("one more") << 1048577 << false;
}

void TestSystemFakePlatform::aLineOfAMebibyteEndsTheFlags()
{
    QFETCH(int, length);
    const QByteArray longLine = "Long" + QByteArray(length - 4, ' ');
    QVERIFY(writeFile(flagsFile(), "First\n" + longLine + "\nNext\n"));
    QVERIFY(System::isFlagSet(QStringLiteral("First")));
    QVERIFY(System::isFlagSet(QStringLiteral("Long")));
    QTEST(System::isFlagSet(QStringLiteral("Next")), "isNextRead");
    QVERIFY(QFile::remove(flagsFile()));
}

void TestSystemFakePlatform::withoutAFlagsFileNoFlagIsSet()
{
    QVERIFY(!System::isFlagSet(QStringLiteral("DebugMode")));
    QVERIFY(!System::isFlagSet(QString()));
    QVERIFY(QDir().mkdir(flagsFile()));
    QVERIFY(!System::isFlagSet(QStringLiteral("DebugMode")));
    QVERIFY(!System::isFlagSet(QString()));
    QVERIFY(QDir().rmdir(flagsFile()));
}

void TestSystemFakePlatform::theFlagsFolderIsKept()
{
    const QTemporaryDir root;
    const QString flags
        = QDir::toNativeSeparators(root.filePath(QStringLiteral("Vantorel/VORN 2024/Flags")));
    const SystemOutcome outcome = run(
        {QStringLiteral("userDataRoot=%1/").arg(root.path()), QStringLiteral("getFlagsDirPath"),
         QStringLiteral("removeFolder=") + flags, QStringLiteral("userDataRoot=/other/"),
         QStringLiteral("getFlagsDirPath"), QStringLiteral("isFlagSet=DebugMode")});
    QCOMPARE(outcome.results, (QStringList{flags, flags, QStringLiteral("false")}));
    QVERIFY(!QFileInfo::exists(flags));
}

void TestSystemFakePlatform::aFlagsFolderThatCannotBeMadeIsTriedAgain()
{
    const QTemporaryDir root;
    const QString obstacle = root.filePath(QStringLiteral("Vantorel"));
    QVERIFY(writeFile(obstacle, "no folder"));
    const QString flags
        = QDir::toNativeSeparators(root.filePath(QStringLiteral("Vantorel/VORN 2024/Flags")));
    const SystemOutcome outcome
        = run({QStringLiteral("userDataRoot=%1/").arg(root.path()),
               QStringLiteral("getFlagsDirPath"), QStringLiteral("isFlagSet=DebugMode"),
               QStringLiteral("removeFile=") + obstacle, QStringLiteral("getFlagsDirPath")});
    QCOMPARE(outcome.results, (QStringList{QString(), QStringLiteral("false"), flags}));
    QCOMPARE(outcome.messages, QStringList());
    QVERIFY(QFileInfo(flags).isDir());
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == childBehaviour())
        return runAsChild(arguments.mid(1));
    TestSystemFakePlatform test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_systemfakeplatform.moc"
