#include "HelperProgram.h"
#include "SubstitutedDrive.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestMessages.h"
#include "TestSystem.h"

#include <Utility/System.h>
#include <Utility/Version.h>

#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

// A path that the build knows, whatever the current folder. It need not name its drive.
QString built(const char *path)
{
    return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QString::fromUtf8(path));
}

QString recorded(const char *name)
{
    return built(TEST_DATA "/programs/") + QString::fromLatin1(name);
}

bool runQuietly(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

// Of an entry whose name begins with a point, which is enough elsewhere.
bool makeHidden(const QString &path)
{
    if (onWindows()) {
        runQuietly(QStringLiteral("attrib"),
                   {QStringLiteral("+H"), QDir::toNativeSeparators(path)});
    }
    return QFileInfo(path).isHidden();
}

// Where Windows's programs run on another system, some calls are missing.
bool hasAllOfWindows()
{
    return !QLibrary::resolve(QStringLiteral("ntdll"), "wine_get_version");
}

} // namespace

class TestSystemFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theFlagsFolderLiesInTheUsersData();
    void flagsOfTheUserAreSet();

    void sizeOfAFolderIsThatOfAllItsFiles();
    void sizeOfWhatIsNoFolderIsZero();
    void sizeOfAnEmptyFolderIsZero();
    void sizeLeavesHiddenEntriesOut();
    void sizeLeavesLinkedFoldersOut();
    void sizeOfALinkIsThatOfItsFile();
    void sizeOfALinkedFolderIsThatOfTheFolder();
    void sizeOfADanglingLinkIsZero();
    void sizeOfARelativePath();
    void sizeCanBeBeyond32Bits();

    void removingTakesTheFolderWithAllItsEntries();
    void removingTakesHiddenEntries();
    void removingTakesManyEntries();
    void removingTakesDeepFolders();
    void removingTakesARelativePath_data();
    void removingTakesARelativePath();
    void keepingTheFolderTakesItsEntries();
    void exceptionsKeepTheFolder_data();
    void exceptionsKeepTheFolder();
    void exceptionsCountAtTheTopLevelOnly();
    void exceptedFoldersKeepTheirEntries();
    void exceptionsAreNamesInTheirLetterCase_data();
    void exceptionsAreNamesInTheirLetterCase();
    void hiddenEntriesCanBeExcepted();
    void emptyingADriveIsNotEmptyingItsCurrentFolder_data();
    void emptyingADriveIsNotEmptyingItsCurrentFolder();
    void removingAnEmptyPathIsFalse();
    void removingAMissingFolderIsFalse();
    void removingAFileIsFalse();
    void anEntryThatStaysIsFalseAndTheRestIsRemoved();
    void anEntryThatStaysBelowIsFalseAndTheRestIsRemoved();
    void aKeptFolderWithAnEntryThatStaysIsFalse();
    void readOnlyEntriesAreRemovedWhereTheSystemAllowsIt();
    void aDanglingLinkStays();
    void linksAreRemovedButNotWhatTheyPointTo();
    void aLinkIsRemovedButNotItsFolder_data();
    void aLinkIsRemovedButNotItsFolder();
    void aKeptShortcutIsLeftAlone();
    void aLinkToTheFolderItselfIsNotFollowed();
    void aFolderBehindALinkIsTheSystemsOne();
    void removingTheCurrentFolderByItsPointTakesItAll();
    void anExceptedLinkStays();
    void aJunctionIsRemovedButNotItsFolder();
    void aKeptJunctionLeadsToTheFolderToEmpty();

    void sharingAMissingFolderIsFalse();
    void aFolderIsNotSharedByItself();

    void versionOfTheLibrary();
    void versionOfAProgram_data();
    void versionOfAProgram();
    void aFileWithoutAVersion_data();
    void aFileWithoutAVersion();
    void theVersionIsPrinted_data();
    void theVersionIsPrinted();

private:
    QString path(const QByteArray &name) const
    {
        return here_ + QLatin1Char('/') + QString::fromUtf8(name);
    }
    bool makeFolder(const QByteArray &name) const { return QDir().mkpath(path(name)); }
    bool makeFile(const QByteArray &name, const QByteArray &content = "content") const
    {
        return writeFile(path(name), content);
    }
    // Also of a link to nothing.
    bool exists(const QByteArray &name) const
    {
        const QFileInfo info(path(name));
        return entriesOf(info.path()).contains(info.fileName());
    }

    // A link's file has a name of its own on some systems.
    static QByteArray linkName(const QByteArray &name)
    {
        return onWindows() ? name + ".lnk" : name;
    }
    bool makeLink(const QByteArray &target, const QByteArray &name) const
    {
        return QFile::link(path(target), path(linkName(name)));
    }

    bool makeJunction(const char *target, const char *name) const
    {
        runQuietly(QStringLiteral("cmd.exe"),
                   {QStringLiteral("/C"), QStringLiteral("mklink"), QStringLiteral("/J"),
                    QDir::toNativeSeparators(path(name)), QDir::toNativeSeparators(path(target))});
        return QFileInfo(path(name)).isJunction();
    }

    // An entry that removeDir() cannot take away, as long as the test goes on.
    bool makeObstacle(const char *name)
    {
        if (!onWindows())
            return QFile::link(path("no such target"), path(name));
        opened_.setFileName(path(name));
        return opened_.open(QIODevice::WriteOnly);
    }

    QTemporaryDir folder_;
    QString start_;
    QString here_; // a folder for the test function, the current one
    QFile opened_;
    int functions_ = 0;
};

void TestSystemFiles::init()
{
    start_ = QDir::currentPath();
    here_ = QDir(folder_.path()).canonicalPath() + QLatin1Char('/') + QString::number(++functions_);
    QVERIFY(QDir().mkdir(here_));
    QVERIFY(QDir::setCurrent(here_));
}

void TestSystemFiles::cleanup()
{
    opened_.close();
    QVERIFY(QDir::setCurrent(start_));
}

// Only a child process can be given data of its own, and not everywhere.
void TestSystemFiles::theFlagsFolderLiesInTheUsersData()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), here_);
    const SystemOutcome outcome = runSystemCalls(
        helperProgram(), QStringLiteral("system"),
        {QStringLiteral("getUserDataPath"), QStringLiteral("getFlagsDirPath")}, environment);
    QCOMPARE(outcome.results.size(), 2);
    QDir flags(outcome.results.at(1));
    QCOMPARE(outcome.results.at(1),
             outcome.results.at(0) + QDir::separator() + QStringLiteral("Flags"));
    QVERIFY(flags.exists());
    if (onWindows()) {
        // The user's own: only what holds nothing is taken away again.
        QDir().rmpath(flags.path());
    } else {
        QVERIFY(exists("Vantorel/VORN 2024/Flags"));
    }
}

void TestSystemFiles::flagsOfTheUserAreSet()
{
    if (onWindows())
        QSKIP("The user's own flags cannot be put elsewhere.");
    QVERIFY(makeFolder("home/.local/share/Vantorel/VORN 2024/Flags"));
    QVERIFY(makeFile("home/.local/share/Vantorel/VORN 2024/Flags/VORN_flags.txt",
                     "  DebugMode   on\nOther\n"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("XDG_DATA_HOME"));
    environment.insert(QStringLiteral("HOME"), path("home"));
    const SystemOutcome outcome
        = runSystemCalls(helperProgram(), QStringLiteral("system"),
                         {QStringLiteral("isFlagSet=DebugMode"), QStringLiteral("isFlagSet=on"),
                          QStringLiteral("isFlagSet=Other")},
                         environment);
    QCOMPARE(
        outcome.results,
        (QStringList{QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("true")}));
}

void TestSystemFiles::sizeOfAFolderIsThatOfAllItsFiles()
{
    QVERIFY(makeFolder("tree/a/b"));
    QVERIFY(makeFolder("tree/empty"));
    QVERIFY(makeFile("tree/one", QByteArray(1000, 'x')));
    QVERIFY(makeFile("tree/two.txt", QByteArray(200, 'x')));
    QVERIFY(makeFile("tree/a/three", QByteArray(30, 'x')));
    QVERIFY(makeFile("tree/a/b/Gr\xC3\xB6\xC3\x9F"
                     "e %1",
                     QByteArray(4, 'x')));
    QVERIFY(makeFile("tree/nothing", ""));
    QVERIFY(makeFile("beside", "beside"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(1234));
    QCOMPARE(System::getDirectorySize(path("tree/")), qint64(1234));
    QCOMPARE(System::getDirectorySize(QDir::toNativeSeparators(path("tree/a"))), qint64(34));
}

void TestSystemFiles::sizeOfWhatIsNoFolderIsZero()
{
    QVERIFY(makeFile("file"));
    QCOMPARE(System::getDirectorySize(path("missing")), qint64(0));
    QCOMPARE(System::getDirectorySize(path("missing/missing")), qint64(0));
    QCOMPARE(System::getDirectorySize(path("file")), qint64(0));
}

void TestSystemFiles::sizeOfAnEmptyFolderIsZero()
{
    QVERIFY(makeFolder("tree/a/b"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(0));
}

void TestSystemFiles::sizeLeavesHiddenEntriesOut()
{
    QVERIFY(makeFolder("tree/.folder/sub"));
    QVERIFY(makeFile("tree/.folder/sub/file", QByteArray(1000, 'x')));
    QVERIFY(makeFile("tree/.file", QByteArray(200, 'x')));
    QVERIFY(makeFile("tree/file", QByteArray(3, 'x')));
    QVERIFY(makeHidden(path("tree/.folder")));
    QVERIFY(makeHidden(path("tree/.file")));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(3));
    QCOMPARE(System::getDirectorySize(path("tree/.folder")), qint64(1000));
}

void TestSystemFiles::sizeLeavesLinkedFoldersOut()
{
    if (onWindows())
        QSKIP("A link is a file with a size here.");
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFolder("other"));
    QVERIFY(makeFile("other/file", QByteArray(1000, 'x')));
    QVERIFY(makeFile("tree/sub/file", QByteArray(20, 'x')));
    QVERIFY(makeLink("other", "tree/link"));
    QVERIFY(makeLink("tree", "tree/sub/itself"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(20));
}

void TestSystemFiles::sizeOfALinkIsThatOfItsFile()
{
    if (onWindows())
        QSKIP("A link is a file with a size here.");
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("file", QByteArray(1000, 'x')));
    QVERIFY(makeLink("file", "tree/link"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(1000));
}

void TestSystemFiles::sizeOfALinkedFolderIsThatOfTheFolder()
{
    if (onWindows())
        QSKIP("A link is a file here.");
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file", QByteArray(1000, 'x')));
    QVERIFY(makeLink("tree", "link"));
    QCOMPARE(System::getDirectorySize(path("link")), qint64(1000));
}

void TestSystemFiles::sizeOfADanglingLinkIsZero()
{
    if (onWindows())
        QSKIP("A link is a file with a size here.");
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeLink("missing", "tree/link"));
    QVERIFY(makeFile("tree/file", QByteArray(5, 'x')));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(5));
}

void TestSystemFiles::sizeOfARelativePath()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file", QByteArray(5, 'x')));
    QCOMPARE(System::getDirectorySize(QStringLiteral("tree")), qint64(5));
    QCOMPARE(System::getDirectorySize(QStringLiteral(".")), qint64(5));
    QCOMPARE(System::getDirectorySize(QStringLiteral("tree/../tree")), qint64(5));
}

void TestSystemFiles::sizeCanBeBeyond32Bits()
{
    constexpr qint64 Size = Q_INT64_C(0x80000005);
    QVERIFY(makeFolder("tree/sub"));
    for (const char *name : {"tree/file", "tree/sub/file"}) {
        QVERIFY(makeFile(name, ""));
        if (!QFile::resize(path(name), Size))
            QSKIP("The file system takes no files of that size.");
    }
    QCOMPARE(System::getDirectorySize(path("tree")), 2 * Size);
}

void TestSystemFiles::removingTakesTheFolderWithAllItsEntries()
{
    QVERIFY(makeFolder("tree/a/b"));
    QVERIFY(makeFolder("tree/empty"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeFile("tree/[a] 100%.txt"));
    QVERIFY(makeFile("tree/a/Gr\xC3\xB6\xC3\x9F"
                     "e.txt"));
    QVERIFY(makeFile("tree/a/b/nothing", ""));
    QVERIFY(makeFile("beside"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("beside")});
}

void TestSystemFiles::removingTakesHiddenEntries()
{
    QVERIFY(makeFolder("tree/.folder/.sub"));
    QVERIFY(makeFile("tree/.folder/.sub/.file"));
    QVERIFY(makeFile("tree/.file"));
    for (const char *name :
         {"tree/.folder", "tree/.folder/.sub", "tree/.folder/.sub/.file", "tree/.file"})
        QVERIFY(makeHidden(path(name)));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!exists("tree"));
}

void TestSystemFiles::removingTakesManyEntries()
{
    QVERIFY(makeFolder("tree"));
    for (int number = 0; number < 1000; ++number)
        QVERIFY(makeFile("tree/" + QByteArray::number(number), ""));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!exists("tree"));
}

void TestSystemFiles::removingTakesDeepFolders()
{
    const QByteArray deep = "tree" + QByteArray("/d").repeated(60);
    QVERIFY(makeFolder(deep));
    QVERIFY(makeFile(deep + "/file"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!exists("tree"));
}

void TestSystemFiles::removingTakesARelativePath_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("name") << QStringLiteral("tree");
    QTest::newRow("separator at the end") << QStringLiteral("tree/");
    QTest::newRow("two at the end") << QStringLiteral("tree//");
    QTest::newRow("point") << QStringLiteral("./tree");
    QTest::newRow("point at the end") << QStringLiteral("tree/.");
    QTest::newRow("around") << QStringLiteral("tree/sub/..");
    QTest::newRow("native") << QDir::toNativeSeparators(QStringLiteral("./tree/"));
}

void TestSystemFiles::removingTakesARelativePath()
{
    QFETCH(QString, path);

    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file"));
    QVERIFY(makeFile("beside"));
    QVERIFY(System::removeDir(path, false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("beside")});
}

void TestSystemFiles::keepingTheFolderTakesItsEntries()
{
    QVERIFY(makeFolder("tree/a/b"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeFile("tree/a/file"));
    QVERIFY(makeFile("tree/.file"));
    QVERIFY(System::removeDir(path("tree"), true, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("tree")});
    QCOMPARE(entriesOf(path("tree")), QStringList());
    QVERIFY(System::removeDir(path("tree"), true, QStringList()));
    QVERIFY(exists("tree"));
}

void TestSystemFiles::exceptionsKeepTheFolder_data()
{
    QTest::addColumn<bool>("keepFolder");
    QTest::addColumn<QStringList>("exceptions");
    QTest::addColumn<QStringList>("left");

    const QString keep = QStringLiteral("keep.txt");
    const QString other = QStringLiteral("no such entry");
    for (const bool keepFolder : {false, true}) {
        const char *name = keepFolder ? "kept anyway" : "not kept otherwise";
        QTest::addRow("one, %s", name) << keepFolder << QStringList{keep} << QStringList{keep};
        QTest::addRow("two, %s", name)
            << keepFolder << QStringList{other, keep, QStringLiteral("a")}
            << QStringList{QStringLiteral("a"), keep};
        QTest::addRow("without a match, %s", name)
            << keepFolder << QStringList{other} << QStringList();
        QTest::addRow("empty name, %s", name)
            << keepFolder << QStringList{QString()} << QStringList();
    }
}

void TestSystemFiles::exceptionsKeepTheFolder()
{
    QFETCH(bool, keepFolder);
    QFETCH(QStringList, exceptions);
    QFETCH(QStringList, left);

    QVERIFY(makeFolder("tree/a/b"));
    QVERIFY(makeFile("tree/keep.txt"));
    QVERIFY(makeFile("tree/other.txt"));
    QVERIFY(System::removeDir(path("tree"), keepFolder, exceptions));
    QVERIFY(exists("tree"));
    QCOMPARE(entriesOf(path("tree")), left);
}

void TestSystemFiles::exceptionsCountAtTheTopLevelOnly()
{
    QVERIFY(makeFolder("tree/a/keep.txt"));
    QVERIFY(makeFolder("tree/b"));
    QVERIFY(makeFile("tree/keep.txt", "kept"));
    QVERIFY(makeFile("tree/a/keep.txt/keep.txt"));
    QVERIFY(makeFile("tree/b/keep.txt"));
    QVERIFY(System::removeDir(path("tree"), false, {QStringLiteral("keep.txt")}));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral("keep.txt")});
    QCOMPARE(contentOf(path("tree/keep.txt")), QByteArray("kept"));
}

void TestSystemFiles::exceptedFoldersKeepTheirEntries()
{
    QVERIFY(makeFolder("tree/keep/sub"));
    QVERIFY(makeFile("tree/keep/file"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(System::removeDir(path("tree"), false, {QStringLiteral("keep")}));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral("keep")});
    QCOMPARE(entriesOf(path("tree/keep")),
             (QStringList{QStringLiteral("file"), QStringLiteral("sub")}));
}

void TestSystemFiles::exceptionsAreNamesInTheirLetterCase_data()
{
    QTest::addColumn<QString>("exception");

    QTest::newRow("upper case") << QStringLiteral("KEEP.TXT");
    QTest::newRow("pattern") << QStringLiteral("keep.*");
    QTest::newRow("part") << QStringLiteral("keep");
    QTest::newRow("blank") << QStringLiteral("keep.txt ");
    QTest::newRow("relative path") << QStringLiteral("./keep.txt");
    QTest::newRow("path") << QString();
}

void TestSystemFiles::exceptionsAreNamesInTheirLetterCase()
{
    QFETCH(QString, exception);

    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/keep.txt"));
    if (exception.isNull())
        exception = path("tree/keep.txt");
    QVERIFY(System::removeDir(path("tree"), false, {exception}));
    QCOMPARE(entriesOf(path("tree")), QStringList());
}

void TestSystemFiles::hiddenEntriesCanBeExcepted()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/.keep"));
    QVERIFY(makeFile("tree/.file"));
    QVERIFY(makeHidden(path("tree/.keep")));
    QVERIFY(System::removeDir(path("tree"), false, {QStringLiteral(".keep")}));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral(".keep")});
}

void TestSystemFiles::emptyingADriveIsNotEmptyingItsCurrentFolder_data()
{
    QTest::addColumn<QString>("root");

    for (const char *root : {"\\", "/", "//", "/.", "\\.\\"})
        QTest::newRow(root) << QString::fromLatin1(root);
}

// "X:" is the folder of the drive X that is current, "X:\" its root.
void TestSystemFiles::emptyingADriveIsNotEmptyingItsCurrentFolder()
{
    QFETCH(QString, root);

    if (!onWindows())
        QSKIP("There are no drives on this system.");
    QVERIFY(makeFolder("drive"));
    const SubstitutedDrive substituted(QDir::toNativeSeparators(path("drive")));
    // Under Wine no folder of such a drive can be the current one: a real drive is given there.
    const QString drive = qEnvironmentVariable("VORNUTILITY_TEST_DRIVE", substituted.name());
    QVERIFY(!drive.isEmpty());
    QVERIFY(QDir().mkpath(drive + QStringLiteral("/current/sub")));
    QVERIFY(QDir().mkpath(drive + QStringLiteral("/sub")));
    for (const char *name : {"/file", "/sub/file", "/current/file"})
        QVERIFY(writeFile(drive + QLatin1String(name), "content"));
    QVERIFY(QDir::setCurrent(drive + QStringLiteral("/current")));
    // No process can take its own current folder away.
    const bool isDone = System::removeDir(drive + root, true, {QStringLiteral("current")});
    QVERIFY(QDir::setCurrent(here_));
    QVERIFY(isDone);
    QCOMPARE(entriesOf(drive + QLatin1Char('/')), QStringList{QStringLiteral("current")});
    QCOMPARE(entriesOf(drive + QStringLiteral("/current")),
             (QStringList{QStringLiteral("file"), QStringLiteral("sub")}));
}

// An empty path is the current folder to others.
void TestSystemFiles::removingAnEmptyPathIsFalse()
{
    QVERIFY(makeFile("file"));
    for (const bool keepFolder : {false, true}) {
        QVERIFY(!System::removeDir(QString(), keepFolder, QStringList()));
        QVERIFY(!System::removeDir(QStringLiteral(""), keepFolder, {QStringLiteral("other")}));
    }
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("file")});
}

void TestSystemFiles::removingAMissingFolderIsFalse()
{
    QVERIFY(!System::removeDir(path("missing"), false, QStringList()));
    QVERIFY(!System::removeDir(path("missing/missing"), false, QStringList()));
    // Without a removal there is none that fails.
    QVERIFY(System::removeDir(path("missing"), true, QStringList()));
    QVERIFY(System::removeDir(path("missing"), false, {QStringLiteral("keep.txt")}));
    QCOMPARE(entriesOf(here_), QStringList());
}

void TestSystemFiles::removingAFileIsFalse()
{
    QVERIFY(makeFile("file"));
    QVERIFY(!System::removeDir(path("file"), false, QStringList()));
    QVERIFY(System::removeDir(path("file"), true, QStringList()));
    QCOMPARE(contentOf(path("file")), QByteArray("content"));
}

void TestSystemFiles::anEntryThatStaysIsFalseAndTheRestIsRemoved()
{
    QVERIFY(makeFolder("tree/a"));
    QVERIFY(makeFolder("tree/z"));
    QVERIFY(makeFile("tree/b"));
    QVERIFY(makeFile("tree/y"));
    QVERIFY(makeObstacle("tree/m"));
    QVERIFY(!System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral("m")});
}

void TestSystemFiles::anEntryThatStaysBelowIsFalseAndTheRestIsRemoved()
{
    QVERIFY(makeFolder("tree/a"));
    QVERIFY(makeFolder("tree/m/n"));
    QVERIFY(makeFolder("tree/z"));
    for (const char *name : {"tree/a/file", "tree/m/a", "tree/m/z", "tree/m/n/a", "tree/z/file"})
        QVERIFY(makeFile(name));
    QVERIFY(makeObstacle("tree/m/n/m"));
    QVERIFY(!System::removeDir(path("tree"), true, QStringList()));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral("m")});
    QCOMPARE(entriesOf(path("tree/m")), QStringList{QStringLiteral("n")});
    QCOMPARE(entriesOf(path("tree/m/n")), QStringList{QStringLiteral("m")});
}

void TestSystemFiles::aKeptFolderWithAnEntryThatStaysIsFalse()
{
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/keep.txt"));
    QVERIFY(makeObstacle("tree/sub/m"));
    QVERIFY(!System::removeDir(path("tree"), false, {QStringLiteral("keep.txt")}));
    QCOMPARE(entriesOf(path("tree")),
             (QStringList{QStringLiteral("keep.txt"), QStringLiteral("sub")}));
    QVERIFY(System::removeDir(path("tree"), false,
                              {QStringLiteral("keep.txt"), QStringLiteral("sub")}));
}

// What a user may do with them differs, also between a usual one and the administrator.
void TestSystemFiles::readOnlyEntriesAreRemovedWhereTheSystemAllowsIt()
{
    constexpr auto ReadOnly = QFileDevice::ReadOwner | QFileDevice::ExeOwner;
    constexpr auto Writable = ReadOnly | QFileDevice::WriteOwner;
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFolder("probe/sub"));
    for (const char *name : {"tree/file", "probe/file"}) {
        QVERIFY(makeFile(name));
        QVERIFY(QFile::setPermissions(path(name), ReadOnly));
    }
    for (const char *name : {"tree/sub/file", "probe/sub/file"})
        QVERIFY(makeFile(name));
    for (const char *name : {"tree/sub", "probe/sub"})
        QVERIFY(QFile::setPermissions(path(name), ReadOnly));
    const bool file = QFile::remove(path("probe/file"));
    const bool below = QFile::remove(path("probe/sub/file"));
    const bool folder = below && QDir().rmdir(path("probe/sub"));

    QCOMPARE(System::removeDir(path("tree"), true, QStringList()), file && folder);
    QCOMPARE(exists("tree/file"), !file);
    QCOMPARE(exists("tree/sub/file"), !below);
    QCOMPARE(exists("tree/sub"), !folder);
    for (const char *name : {"tree/file", "probe/file", "tree/sub", "probe/sub"})
        QFile::setPermissions(path(name), Writable);
}

// It counts as an entry of the system's, and such ones are not touched.
void TestSystemFiles::aDanglingLinkStays()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("target"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeLink("target", "tree/link"));
    QVERIFY(QFile::remove(path("target")));
    QVERIFY(!System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(path("tree")), QStringList{QString::fromLatin1(linkName("link"))});
    QVERIFY(System::removeDir(path("tree"), true, QStringList()));
}

void TestSystemFiles::linksAreRemovedButNotWhatTheyPointTo()
{
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFile("other/file"));
    QVERIFY(makeFile("other/sub/file"));
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeLink("other", "tree/folder"));
    QVERIFY(makeLink("other/file", "tree/file"));
    QVERIFY(makeLink("other", "tree/sub/folder"));
    QVERIFY(makeLink("other/sub/file", "tree/sub/file"));
    QVERIFY(makeLink(linkName("tree/folder"), "tree/link to a link"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("other")});
    QCOMPARE(contentOf(path("other/file")), QByteArray("content"));
    QCOMPARE(contentOf(path("other/sub/file")), QByteArray("content"));
}

void TestSystemFiles::aLinkIsRemovedButNotItsFolder_data()
{
    QTest::addColumn<QString>("end"); // after the link's path

    for (const char *end : {"", "/", "//", "/."}) {
        if (onWindows() && *end != '\0')
            break; // a link is a file
        QTest::addRow("link%s", end) << QString::fromLatin1(end);
    }
}

void TestSystemFiles::aLinkIsRemovedButNotItsFolder()
{
    QFETCH(QString, end);

    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFile("other/file"));
    QVERIFY(makeFile("other/sub/file"));
    QVERIFY(makeLink("other", "link"));
    QVERIFY(System::removeDir(path(linkName("link")) + end, false, QStringList()));
    QVERIFY(!exists(linkName("link")));
    QCOMPARE(contentOf(path("other/file")), QByteArray("content"));
    QCOMPARE(contentOf(path("other/sub/file")), QByteArray("content"));
}

// It is a file, and so is nothing that could be emptied.
void TestSystemFiles::aKeptShortcutIsLeftAlone()
{
    if (!onWindows())
        QSKIP("There are no shortcuts on this system.");
    QVERIFY(makeFolder("other"));
    QVERIFY(makeFile("other/file"));
    QVERIFY(makeLink("other", "link"));
    QVERIFY(System::removeDir(path("link.lnk"), true, QStringList()));
    QVERIFY(System::removeDir(path("link.lnk"), false, {QStringLiteral("keep.txt")}));
    QVERIFY(exists("link.lnk"));
    QCOMPARE(contentOf(path("other/file")), QByteArray("content"));
}

void TestSystemFiles::aLinkToTheFolderItselfIsNotFollowed()
{
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeLink("tree", "tree/sub/itself"));
    QVERIFY(makeLink(".", "tree/above"));
    QVERIFY(makeFile("beside"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("beside")});
}

// The path goes by way of the link: what is removed is what the system finds there.
void TestSystemFiles::aFolderBehindALinkIsTheSystemsOne()
{
    if (onWindows())
        QSKIP("A link is a file here.");
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFolder("other/tree"));
    QVERIFY(makeFile("other/tree/file"));
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeLink("other/sub", "link"));
    QVERIFY(System::removeDir(path("link/../tree"), false, QStringList()));
    QVERIFY(!exists("other/tree"));
    QVERIFY(exists("tree/file"));

    QVERIFY(System::removeDir(path("link/.."), true, QStringList()));
    QVERIFY(!exists("other/sub"));
    QVERIFY(exists("other"));
    QVERIFY(exists("tree/file"));
}

void TestSystemFiles::removingTheCurrentFolderByItsPointTakesItAll()
{
    QVERIFY(makeFolder("tree/sub"));
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(path("tree")));
    const bool removed = System::removeDir(QStringLiteral("."), true, QStringList());
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(removed);
    QVERIFY(exists("tree"));
    QVERIFY(!exists("tree/sub"));
}

void TestSystemFiles::anExceptedLinkStays()
{
    QVERIFY(makeFolder("other"));
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeLink("other", "tree/link"));
    const QString link = QString::fromLatin1(linkName("link"));
    QVERIFY(System::removeDir(path("tree"), false, {link}));
    QCOMPARE(entriesOf(path("tree")), QStringList{link});
}

void TestSystemFiles::aJunctionIsRemovedButNotItsFolder()
{
    if (!onWindows())
        QSKIP("There are no junctions on this system.");
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFile("other/file"));
    QVERIFY(makeFile("other/sub/file"));
    QVERIFY(makeFolder("tree"));
    for (const char *name : {"tree/junction", "junction"}) {
        if (!makeJunction("other", name))
            QSKIP("The system's command interpreter makes no junctions.");
    }
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(System::removeDir(path("junction"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("other")});
    QCOMPARE(contentOf(path("other/file")), QByteArray("content"));
    QCOMPARE(contentOf(path("other/sub/file")), QByteArray("content"));
}

void TestSystemFiles::aKeptJunctionLeadsToTheFolderToEmpty()
{
    if (!onWindows())
        QSKIP("There are no junctions on this system.");
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFile("other/file"));
    if (!makeJunction("other", "junction"))
        QSKIP("The system's command interpreter makes no junctions.");
    QVERIFY(System::removeDir(path("junction"), true, QStringList()));
    QVERIFY(QFileInfo(path("junction")).isJunction());
    QCOMPARE(entriesOf(path("other")), QStringList());
}

void TestSystemFiles::sharingAMissingFolderIsFalse()
{
    QVERIFY(!System::shareFolder(QStringLiteral("VORN test"),
                                 QDir::toNativeSeparators(path("missing"))));
}

void TestSystemFiles::aFolderIsNotSharedByItself()
{
    if (onWindows() && !hasAllOfWindows())
        QSKIP("The call that tells of shares is missing here, and ends the process.");
    QVERIFY(!System::isFolderShared(QDir::toNativeSeparators(here_)));
    QVERIFY(!System::isFolderShared(QDir::toNativeSeparators(path("missing"))));
    QVERIFY(!System::isFolderShared(QString()));
}

void TestSystemFiles::versionOfTheLibrary()
{
    // Only Windows's programs have one.
    const QString number = QString::number(Version::Hotfix);
    const QString expected = onWindows() ? Version::Current.toString() + QLatin1Char('.') + number
                                         : QStringLiteral("0.0.0.0");
    const QString library = built(LIBRARY_FILE);
    QVERIFY(QFile::exists(library));
    QCOMPARE(System::getFileVersion(library), expected);
    QCOMPARE(System::getFileVersion(QDir::toNativeSeparators(library)), expected);
}

void TestSystemFiles::versionOfAProgram_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("version");

    QTest::newRow("64 bit") << recorded("version64.dll") << QStringLiteral("24.0.75.1");
    QTest::newRow("32 bit") << recorded("version32.dll") << QStringLiteral("65535.65534.32768.1");
}

void TestSystemFiles::versionOfAProgram()
{
    QFETCH(QString, file);
    QFETCH(QString, version);

    QVERIFY(QFile::exists(file));
    QCOMPARE(System::getFileVersion(file), version);
    QVERIFY(QFile::copy(file,
                        path("Gr\xC3\xB6\xC3\x9F"
                             "e %1.txt")));
    QCOMPARE(System::getFileVersion(path("Gr\xC3\xB6\xC3\x9F"
                                         "e %1.txt")),
             version);
}

void TestSystemFiles::aFileWithoutAVersion_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("program with other resources") << recorded("noversion.dll");
    QTest::newRow("program without resources") << recorded("noresources.dll");
    QTest::newRow("text") << QStringLiteral("text.exe");
    QTest::newRow("nothing in it") << QStringLiteral("empty.exe");
    QTest::newRow("missing") << QStringLiteral("missing.exe");
    QTest::newRow("in a missing folder") << QStringLiteral("missing/missing.exe");
    QTest::newRow("folder") << QStringLiteral(".");
    QTest::newRow("empty path") << QString();
    QTest::newRow("longer than any path") << QString(5000, QLatin1Char('x'));
}

void TestSystemFiles::aFileWithoutAVersion()
{
    QFETCH(QString, file);

    QVERIFY(makeFile("text.exe", "MZ is how programs begin"));
    QVERIFY(makeFile("empty.exe", ""));
    const TestMessages messages;
    QCOMPARE(System::getFileVersion(file), QStringLiteral("0.0.0.0"));
    QCOMPARE(messages.lines(), QStringList());
}

void TestSystemFiles::theVersionIsPrinted_data()
{
    QTest::addColumn<QString>("before"); // a call that prints
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("printed");

    const QByteArray other = "Higher: fffffffe\nLower: 80000001\nVersion: 65535.65534.32768.1\n";
    const QByteArray none = "Higher: 0\nLower: 0\nVersion: 0.0.0.0\n";
    const auto row
        = [](const char *name, const QString &before, const QString &file,
             const QByteArray &printed) { QTest::newRow(name) << before << file << printed; };
    const QByteArray version = "Higher: 180000\nLower: 4b0001\nVersion: 24.0.75.1\n";
    row("alone", QString(), recorded("version64.dll"), version);
    row("other", QString(), recorded("version32.dll"), other);
    row("none", QString(), QStringLiteral("missing.exe"), none);
    row("after text", QStringLiteral("printNarrow=a b"), recorded("version64.dll"),
        "a b\n" + version);
    row("after wide text", QStringLiteral("printWide=a b"), recorded("version64.dll"),
        "a b\n" + version);
}

void TestSystemFiles::theVersionIsPrinted()
{
    QFETCH(QString, before);
    QFETCH(QString, file);
    QFETCH(QByteArray, printed);

    QStringList arguments{QStringLiteral("system")};
    QByteArray after;
    if (!before.isEmpty()) {
        arguments += before;
        after = "a b\n";
    }
    arguments += QStringLiteral("getFileVersion=") + file;
    if (!before.isEmpty())
        arguments += before;
    QProcess process;
    process.start(helperProgram(), arguments);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QByteArray output = process.readAllStandardOutput();
    if (onWindows())
        output.replace("\r\n", "\n");
    const QByteArray result = printed.mid(printed.lastIndexOf(' ') + 1);
    QCOMPARE(output, printed + '=' + result + after);
}

QTEST_GUILESS_MAIN(TestSystemFiles)

#include "tst_systemfiles.moc"
