// Flags, sizes of folders, and shared folders.

#include "BuildPaths.h"
#include "SystemCalls.h"
#include "TestSystem.h"
#include "TestWithEntries.h"

#include <Utility/System.h>

#include <QtCore/QLibrary>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

// Whether this is not Wine, which lacks some calls of Windows.
bool hasAllOfWindows()
{
    return !QLibrary::resolve(QStringLiteral("ntdll"), "wine_get_version");
}

} // namespace

class TestSystemFiles : public TestWithEntries
{
    Q_OBJECT

private Q_SLOTS:
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
    void sizeOfAShortcutIsThatOfItsTarget();
    void aFolderNamedLikeAShortcutCounts();
    void sizeOfADeepFolder();
    void sizeLeavesJunctionsOut();
    void sizeOfARelativePath();
    void sizeCanBeBeyond32Bits();

    void sharingAMissingFolderIsFalse();
    void aFolderIsNotSharedByItself();
};

// In a child process, because only there the user's data folder can be changed (not on Windows).
void TestSystemFiles::theFlagsFolderLiesInTheUsersData()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), here_);
    const SystemOutcome outcome = runSystemCalls(
        BuildPaths::helperProgram(), QStringLiteral("system"),
        {QStringLiteral("getUserDataPath"), QStringLiteral("getFlagsDirPath")}, environment);
    QCOMPARE(outcome.results.size(), 2);
    QDir flags(outcome.results.at(1));
    QCOMPARE(outcome.results.at(1),
             outcome.results.at(0) + QDir::separator() + QStringLiteral("Flags"));
    QVERIFY(flags.exists());
    if (onWindows()) {
        // This is the user's real folder: only what was empty is removed again.
        QDir().rmpath(flags.path());
    } else {
        QVERIFY(exists("Vantorel/VORN 2024/Flags"));
    }
}

void TestSystemFiles::flagsOfTheUserAreSet()
{
    if (onWindows())
        QSKIP("The user's own flags cannot be put elsewhere");
    QVERIFY(makeFolder("home/.local/share/Vantorel/VORN 2024/Flags"));
    QVERIFY(makeFile("home/.local/share/Vantorel/VORN 2024/Flags/VORN_flags.txt",
                     "  DebugMode   on\nOther\n"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("XDG_DATA_HOME"));
    environment.insert(QStringLiteral("HOME"), path("home"));
    const SystemOutcome outcome
        = runSystemCalls(BuildPaths::helperProgram(), QStringLiteral("system"),
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
        QSKIP("A link is a file with a size here");
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
        QSKIP("A link is a file with a size here");
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("file", QByteArray(1000, 'x')));
    QVERIFY(makeLink("file", "tree/link"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(1000));
}

void TestSystemFiles::sizeOfALinkedFolderIsThatOfTheFolder()
{
    if (onWindows())
        QSKIP("A link is a file here");
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file", QByteArray(1000, 'x')));
    QVERIFY(makeLink("tree", "link"));
    QCOMPARE(System::getDirectorySize(path("link")), qint64(1000));
}

void TestSystemFiles::sizeOfADanglingLinkIsZero()
{
    if (onWindows())
        QSKIP("A link is a file with a size here");
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeLink("missing", "tree/link"));
    QVERIFY(makeFile("tree/file", QByteArray(5, 'x')));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(5));
}

// A shortcut to a folder is not followed.
void TestSystemFiles::sizeOfAShortcutIsThatOfItsTarget()
{
    if (!onWindows())
        QSKIP("There are no shortcuts on this system");
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFolder("other"));
    QVERIFY(makeFile("other/file", QByteArray(100000, 'x')));
    QVERIFY(makeLink("other/file", "tree/to a file"));
    QVERIFY(makeLink("other", "tree/to a folder"));
    QVERIFY(makeLink("missing", "tree/to nothing"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(100000));
}

void TestSystemFiles::aFolderNamedLikeAShortcutCounts()
{
    QVERIFY(makeFolder("tree/folder.lnk"));
    QVERIFY(makeFile("tree/folder.lnk/file", QByteArray(20, 'x')));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(20));
    QCOMPARE(System::getDirectorySize(path("tree/folder.lnk")), qint64(20));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!exists("tree"));
}

// Deeper than the 260 characters of a path that Windows allows without a prefix.
void TestSystemFiles::sizeOfADeepFolder()
{
    const QByteArray deep = "tree" + QByteArray("/folder").repeated(60);
    QVERIFY(makeFolder(deep));
    QVERIFY(makeFile(deep + "/file", QByteArray(1000, 'x')));
    QVERIFY(makeFile("tree/folder/file", QByteArray(20, 'x')));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(1020));
    QCOMPARE(System::getDirectorySize(path(deep)), qint64(1000));
}

// But a junction given as the path is followed.
void TestSystemFiles::sizeLeavesJunctionsOut()
{
    if (!onWindows())
        QSKIP("There are no junctions on this system");
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file", QByteArray(1000, 'x')));
    if (!makeJunction("tree", "tree/sub/junction") || !makeJunction("tree", "junction"))
        QSKIP("The system's command interpreter makes no junctions");
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(1000));
    QCOMPARE(System::getDirectorySize(path("junction")), qint64(1000));
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
            QSKIP("The file system takes no files of that size");
    }
    QCOMPARE(System::getDirectorySize(path("tree")), 2 * Size);
}

void TestSystemFiles::sharingAMissingFolderIsFalse()
{
    QVERIFY(!System::shareFolder(QStringLiteral("VORN test"),
                                 QDir::toNativeSeparators(path("missing"))));
}

void TestSystemFiles::aFolderIsNotSharedByItself()
{
    if (onWindows() && !hasAllOfWindows())
        QSKIP("The call that lists shares is missing here, and ends the process");
    QVERIFY(!System::isFolderShared(QDir::toNativeSeparators(here_)));
    QVERIFY(!System::isFolderShared(QDir::toNativeSeparators(path("missing"))));
    QVERIFY(!System::isFolderShared(QString()));
}

QTEST_GUILESS_MAIN(TestSystemFiles)

#include "tst_systemfiles.moc"
