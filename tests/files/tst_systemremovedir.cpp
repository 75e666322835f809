// The removal of folders.

#include "SubstitutedDrive.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithEntries.h"

#include <Utility/System.h>

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestSystemRemoveDir : public TestWithEntries
{
    Q_OBJECT

private Q_SLOTS:
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
    void keepingAMissingFolderIsTrue();
    void removingAFileIsFalse();
    void anEntryThatStaysIsFalseAndTheRestIsRemoved();
    void anEntryThatStaysBelowIsFalseAndTheRestIsRemoved();
    void aKeptFolderWithAnEntryThatStaysIsFalse();
    void readOnlyEntriesAreRemovedWhereTheSystemAllowsIt();
    void aDanglingLinkStays();
    void linksAreRemovedButNotWhatTheyPointTo();
    void linksAreRemovedWithTheirTargetsInTheSameFolder();
    void aLinkIsRemovedButNotItsFolder_data();
    void aLinkIsRemovedButNotItsFolder();
    void aKeptShortcutIsLeftAlone();
    void aLinkToTheFolderItselfIsNotFollowed();
    void aFolderBelowALinkIsTheSystemsOne();
    void removingADotEmptiesTheCurrentFolder();
    void anExceptedLinkStays();
    void aJunctionIsRemovedButNotItsFolder();
    void aJunctionIsKeptAndItsTargetEmptied();
};

void TestSystemRemoveDir::removingTakesTheFolderWithAllItsEntries()
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

void TestSystemRemoveDir::removingTakesHiddenEntries()
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

void TestSystemRemoveDir::removingTakesManyEntries()
{
    QVERIFY(makeFolder("tree"));
    for (int number = 0; number < 1000; ++number)
        QVERIFY(makeFile("tree/" + QByteArray::number(number), ""));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!exists("tree"));
}

void TestSystemRemoveDir::removingTakesDeepFolders()
{
    const QByteArray deep = "tree" + QByteArray("/d").repeated(60);
    QVERIFY(makeFolder(deep));
    QVERIFY(makeFile(deep + "/file"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!exists("tree"));
}

void TestSystemRemoveDir::removingTakesARelativePath_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("name") << QStringLiteral("tree");
    QTest::newRow("separator at the end") << QStringLiteral("tree/");
    QTest::newRow("two at the end") << QStringLiteral("tree//");
    QTest::newRow("dot") << QStringLiteral("./tree");
    QTest::newRow("dot at the end") << QStringLiteral("tree/.");
    QTest::newRow("through a subfolder and back") << QStringLiteral("tree/sub/..");
    QTest::newRow("native") << QDir::toNativeSeparators(QStringLiteral("./tree/"));
}

void TestSystemRemoveDir::removingTakesARelativePath()
{
    QFETCH(QString, path);

    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file"));
    QVERIFY(makeFile("beside"));
    QVERIFY(System::removeDir(path, false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("beside")});
}

void TestSystemRemoveDir::keepingTheFolderTakesItsEntries()
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

void TestSystemRemoveDir::exceptionsKeepTheFolder_data()
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

void TestSystemRemoveDir::exceptionsKeepTheFolder()
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

void TestSystemRemoveDir::exceptionsCountAtTheTopLevelOnly()
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

void TestSystemRemoveDir::exceptedFoldersKeepTheirEntries()
{
    QVERIFY(makeFolder("tree/keep/sub"));
    QVERIFY(makeFile("tree/keep/file"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(System::removeDir(path("tree"), false, {QStringLiteral("keep")}));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral("keep")});
    QCOMPARE(entriesOf(path("tree/keep")),
             (QStringList{QStringLiteral("file"), QStringLiteral("sub")}));
}

void TestSystemRemoveDir::exceptionsAreNamesInTheirLetterCase_data()
{
    QTest::addColumn<QString>("exception");

    QTest::newRow("upper case") << QStringLiteral("KEEP.TXT");
    QTest::newRow("pattern") << QStringLiteral("keep.*");
    QTest::newRow("part") << QStringLiteral("keep");
    QTest::newRow("blank") << QStringLiteral("keep.txt ");
    QTest::newRow("relative path") << QStringLiteral("./keep.txt");
    QTest::newRow("path") << QString();
}

void TestSystemRemoveDir::exceptionsAreNamesInTheirLetterCase()
{
    QFETCH(QString, exception);

    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/keep.txt"));
    if (exception.isNull())
        exception = path("tree/keep.txt");
    QVERIFY(System::removeDir(path("tree"), false, {exception}));
    QCOMPARE(entriesOf(path("tree")), QStringList());
}

void TestSystemRemoveDir::hiddenEntriesCanBeExcepted()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/.keep"));
    QVERIFY(makeFile("tree/.file"));
    QVERIFY(makeHidden(path("tree/.keep")));
    QVERIFY(System::removeDir(path("tree"), false, {QStringLiteral(".keep")}));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral(".keep")});
}

void TestSystemRemoveDir::emptyingADriveIsNotEmptyingItsCurrentFolder_data()
{
    QTest::addColumn<QString>("root");

    for (const char *root : {"\\", "/", "//", "/.", "\\.\\"})
        QTest::newRow(root) << QString::fromLatin1(root);
}

// "X:" is the folder of the drive X that is current, "X:\" its root.
void TestSystemRemoveDir::emptyingADriveIsNotEmptyingItsCurrentFolder()
{
    QFETCH(QString, root);

    if (!onWindows())
        QSKIP("There are no drives on this system");
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
    // A process cannot remove its own current folder on Windows.
    const bool isDone = System::removeDir(drive + root, true, {QStringLiteral("current")});
    QVERIFY(QDir::setCurrent(here_));
    QVERIFY(isDone);
    QCOMPARE(entriesOf(drive + QLatin1Char('/')), QStringList{QStringLiteral("current")});
    QCOMPARE(entriesOf(drive + QStringLiteral("/current")),
             (QStringList{QStringLiteral("file"), QStringLiteral("sub")}));
}

// Other functions take an empty path for the current folder.
void TestSystemRemoveDir::removingAnEmptyPathIsFalse()
{
    QVERIFY(makeFile("file"));
    for (const bool keepFolder : {false, true}) {
        QVERIFY(!System::removeDir(QString(), keepFolder, QStringList()));
        QVERIFY(!System::removeDir(QStringLiteral(""), keepFolder, {QStringLiteral("other")}));
    }
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("file")});
}

void TestSystemRemoveDir::removingAMissingFolderIsFalse()
{
    QVERIFY(!System::removeDir(path("missing"), false, QStringList()));
    QVERIFY(!System::removeDir(path("missing/missing"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList());
}

// Nothing is removed, so nothing fails.
void TestSystemRemoveDir::keepingAMissingFolderIsTrue()
{
    QVERIFY(System::removeDir(path("missing"), true, QStringList()));
    QVERIFY(System::removeDir(path("missing"), false, {QStringLiteral("keep.txt")}));
    QCOMPARE(entriesOf(here_), QStringList());
}

void TestSystemRemoveDir::removingAFileIsFalse()
{
    QVERIFY(makeFile("file"));
    QVERIFY(!System::removeDir(path("file"), false, QStringList()));
    QVERIFY(System::removeDir(path("file"), true, QStringList()));
    QCOMPARE(contentOf(path("file")), QByteArray("content"));
}

void TestSystemRemoveDir::anEntryThatStaysIsFalseAndTheRestIsRemoved()
{
    QVERIFY(makeFolder("tree/a"));
    QVERIFY(makeFolder("tree/z"));
    QVERIFY(makeFile("tree/b"));
    QVERIFY(makeFile("tree/y"));
    QVERIFY(makeObstacle("tree/m"));
    QVERIFY(!System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(path("tree")), QStringList{QStringLiteral("m")});
}

void TestSystemRemoveDir::anEntryThatStaysBelowIsFalseAndTheRestIsRemoved()
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

void TestSystemRemoveDir::aKeptFolderWithAnEntryThatStaysIsFalse()
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

// What a user may do with them differs from system to system, and for the administrator.
void TestSystemRemoveDir::readOnlyEntriesAreRemovedWhereTheSystemAllowsIt()
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

// It counts as a special file, and removeDir() leaves special files.
void TestSystemRemoveDir::aDanglingLinkStays()
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

void TestSystemRemoveDir::linksAreRemovedButNotWhatTheyPointTo()
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

// In whatever order the system lists them.
void TestSystemRemoveDir::linksAreRemovedWithTheirTargetsInTheSameFolder()
{
    QVERIFY(makeFolder("tree/sub"));
    for (int number = 0; number < 20; ++number) {
        const QByteArray suffix = QByteArray::number(number);
        QVERIFY(makeFile("tree/sub/m" + suffix));
        QVERIFY(makeLink("tree/sub/m" + suffix, "tree/sub/a" + suffix));
        QVERIFY(makeLink("tree/sub/m" + suffix, "tree/sub/z" + suffix));
        QVERIFY(makeLink(linkName("tree/sub/a" + suffix), "tree/sub/y" + suffix));
        QVERIFY(makeLink(linkName("tree/sub/z" + suffix), "tree/sub/b" + suffix));
    }
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList());
}

void TestSystemRemoveDir::aLinkIsRemovedButNotItsFolder_data()
{
    QTest::addColumn<QString>("end"); // after the link's path

    for (const char *end : {"", "/", "//", "/."}) {
        if (onWindows() && *end != '\0')
            break; // a link is a file
        QTest::addRow("link%s", end) << QString::fromLatin1(end);
    }
}

void TestSystemRemoveDir::aLinkIsRemovedButNotItsFolder()
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

// It is a file: there is nothing to empty.
void TestSystemRemoveDir::aKeptShortcutIsLeftAlone()
{
    if (!onWindows())
        QSKIP("There are no shortcuts on this system");
    QVERIFY(makeFolder("other"));
    QVERIFY(makeFile("other/file"));
    QVERIFY(makeLink("other", "link"));
    QVERIFY(System::removeDir(path("link.lnk"), true, QStringList()));
    QVERIFY(System::removeDir(path("link.lnk"), false, {QStringLiteral("keep.txt")}));
    QVERIFY(exists("link.lnk"));
    QCOMPARE(contentOf(path("other/file")), QByteArray("content"));
}

void TestSystemRemoveDir::aLinkToTheFolderItselfIsNotFollowed()
{
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeLink("tree", "tree/sub/itself"));
    QVERIFY(makeLink(".", "tree/above"));
    QVERIFY(makeFile("beside"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("beside")});
}

// The path leads through the link: removeDir() removes what the system finds there.
void TestSystemRemoveDir::aFolderBelowALinkIsTheSystemsOne()
{
    if (onWindows())
        QSKIP("A link is a file here");
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

void TestSystemRemoveDir::removingADotEmptiesTheCurrentFolder()
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

void TestSystemRemoveDir::anExceptedLinkStays()
{
    QVERIFY(makeFolder("other"));
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeLink("other", "tree/link"));
    const QString link = QString::fromLatin1(linkName("link"));
    QVERIFY(System::removeDir(path("tree"), false, {link}));
    QCOMPARE(entriesOf(path("tree")), QStringList{link});
}

void TestSystemRemoveDir::aJunctionIsRemovedButNotItsFolder()
{
    if (!onWindows())
        QSKIP("There are no junctions on this system");
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFile("other/file"));
    QVERIFY(makeFile("other/sub/file"));
    QVERIFY(makeFolder("tree"));
    for (const char *name : {"tree/junction", "junction"}) {
        if (!makeJunction("other", name))
            QSKIP("The system's command interpreter makes no junctions");
    }
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(System::removeDir(path("junction"), false, QStringList()));
    QCOMPARE(entriesOf(here_), QStringList{QStringLiteral("other")});
    QCOMPARE(contentOf(path("other/file")), QByteArray("content"));
    QCOMPARE(contentOf(path("other/sub/file")), QByteArray("content"));
}

void TestSystemRemoveDir::aJunctionIsKeptAndItsTargetEmptied()
{
    if (!onWindows())
        QSKIP("There are no junctions on this system");
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFile("other/file"));
    if (!makeJunction("other", "junction"))
        QSKIP("The system's command interpreter makes no junctions");
    QVERIFY(System::removeDir(path("junction"), true, QStringList()));
    QVERIFY(QFileInfo(path("junction")).isJunction());
    QCOMPARE(entriesOf(path("other")), QStringList());
}

QTEST_GUILESS_MAIN(TestSystemRemoveDir)

#include "tst_systemremovedir.moc"
