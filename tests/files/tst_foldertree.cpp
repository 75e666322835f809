// The platform's walk through a folder tree.

#include "TestWithEntries.h"

#include <Utility/Platform/FolderTree.h>

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <memory>

using namespace Vorn::Util;
using Platform::FolderEntry;
using Platform::openFolderTree;
using Platform::TreeAccess;

Q_DECLARE_METATYPE(TreeAccess)

namespace {

using Tree = std::unique_ptr<Platform::FolderTree>;

// The entries of the current folder in the order of their names, such as "Folder sub".
QStringList entriesIn(Platform::FolderTree &tree)
{
    QStringList entries;
    tree.visitEntries([&entries](const FolderEntry &entry) {
        const char *const kinds[] = {"File", "Folder", "Other"};
        entries += QLatin1String(kinds[entry.kind])
            + (entry.isLink ? QStringLiteral(" link ") : QStringLiteral(" ")) + entry.name;
    });
    entries.sort();
    return entries;
}

} // namespace

class TestFolderTree : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:

    void theEntriesHaveTheirKinds_data();
    void theEntriesHaveTheirKinds();
    void onlyHiddenEntriesAreMarkedSo();
    void aMeasuringWalkReadsTheSizesOfFiles();
    void linksAreVisitedApart();
    void aVisitMayRemoveTheEntry();
    void aFolderIsEnteredAndLeft();
    void everyFolderOfADeepTreeIsFoundAgain();
    void aLinkIsNeitherOpenedNorEntered();
    void aMeasuringWalkOpensALinkButEntersNone();
    void whatIsNoFolderIsNeitherOpenedNorEntered_data();
    void whatIsNoFolderIsNeitherOpenedNorEntered();
    void onlyWhatIsAskedForIsRemoved();
    void aFolderThatIsMovedStaysTheCurrentOne();
    void aFolderThatIsMovedOutOfADeepTreeIsNotLeft();

private:
    bool makeFolder(const char *name) const { return QDir().mkpath(path(name)); }
    bool makeFile(const char *name) const { return writeFile(path(name), QByteArray()); }
};

void TestFolderTree::theEntriesHaveTheirKinds_data()
{
    QTest::addColumn<TreeAccess>("access");
    QTest::newRow("measure") << TreeAccess::Measure;
    QTest::newRow("remove") << TreeAccess::Remove;
}

void TestFolderTree::theEntriesHaveTheirKinds()
{
    QFETCH(TreeAccess, access);
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeFile("tree/.hidden"));
    QVERIFY(makeFile("tree/Gr\xC3\xB6\xC3\x9F"
                     "e"));
    QStringList expected{QStringLiteral("File .hidden"), QStringLiteral("File Gr\u00f6\u00dfe"),
                         QStringLiteral("File file"), QStringLiteral("Folder sub")};
    if (!onWindows()) {
        QVERIFY(QFile::link(path("tree/file"), path("tree/to file")));
        QVERIFY(QFile::link(path("tree/sub"), path("tree/to folder")));
        QVERIFY(QFile::link(path("nowhere"), path("tree/to nowhere")));
        QVERIFY(QFile::link(QStringLiteral("/dev/null"), path("tree/to device")));
        expected
            += {QStringLiteral("File link to file"), QStringLiteral("Folder link to folder"),
                QStringLiteral("Other link to nowhere"), QStringLiteral("Other link to device")};
        expected.sort();
    }
    const Tree tree = openFolderTree(path("tree"), access);
    QVERIFY(tree);
    QCOMPARE(entriesIn(*tree), expected);
}

void TestFolderTree::onlyHiddenEntriesAreMarkedSo()
{
    QVERIFY(makeFolder("tree/.folder"));
    QVERIFY(makeFolder("tree/folder"));
    QVERIFY(makeFile("tree/.file"));
    QVERIFY(makeFile("tree/file.x"));
    QVERIFY(makeHidden(path("tree/.folder")));
    QVERIFY(makeHidden(path("tree/.file")));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Measure);
    QVERIFY(tree);
    QStringList hidden;
    tree->visitEntries([&hidden](const FolderEntry &entry) {
        if (entry.isHidden)
            hidden += entry.name;
    });
    hidden.sort();
    QCOMPARE(hidden, (QStringList{QStringLiteral(".file"), QStringLiteral(".folder")}));
}

void TestFolderTree::aMeasuringWalkReadsTheSizesOfFiles()
{
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(writeFile(path("tree/sub/file"), "content"));
    QVERIFY(makeFile("tree/sub/nothing"));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Measure);
    QVERIFY(tree);
    QVERIFY(tree->enter(QStringLiteral("sub")));
    QMap<QString, qint64> sizes;
    tree->visitEntries([&sizes](const FolderEntry &entry) { sizes[entry.name] = entry.size; });
    QCOMPARE(sizes,
             (QMap<QString, qint64>{{QStringLiteral("file"), 7}, {QStringLiteral("nothing"), 0}}));
}

void TestFolderTree::linksAreVisitedApart()
{
    const QString link = onWindows() ? QStringLiteral("link.lnk") : QStringLiteral("link");
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(QFile::link(path("tree/file"), path("tree/") + link));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    QStringList links;
    tree->visitLinks([&links](const FolderEntry &entry) { links += entry.name; });
    QCOMPARE(links, QStringList{link});
    QVERIFY(tree->removeFile(link));
    QCOMPARE(entriesIn(*tree),
             (QStringList{QStringLiteral("File file"), QStringLiteral("Folder sub")}));
}

void TestFolderTree::aVisitMayRemoveTheEntry()
{
    constexpr int Count = 3000; // more entries than one system call returns
    QVERIFY(makeFolder("tree"));
    for (int number = 0; number < Count; ++number)
        QVERIFY(writeFile(path("tree/") + QString::number(number), QByteArray()));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    int removed = 0;
    tree->visitEntries(
        [&](const FolderEntry &entry) { removed += tree->removeFile(entry.name) ? 1 : 0; });
    QCOMPARE(removed, Count);
    QCOMPARE(entriesOf(path("tree")), QStringList());
}

void TestFolderTree::aFolderIsEnteredAndLeft()
{
    QVERIFY(makeFolder("tree/a/b"));
    QVERIFY(makeFile("tree/a/file"));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    QVERIFY(tree->enter(QStringLiteral("a")));
    QCOMPARE(entriesIn(*tree),
             (QStringList{QStringLiteral("File file"), QStringLiteral("Folder b")}));
    QVERIFY(tree->leave());
    QVERIFY(tree->enter(QStringLiteral("a")));
    QVERIFY(tree->enter(QStringLiteral("b")));
    QVERIFY(tree->leave());
    QVERIFY(tree->removeFolder(QStringLiteral("b")));
    QVERIFY(tree->removeFile(QStringLiteral("file")));
    QVERIFY(tree->leave());
    QVERIFY(tree->removeFolder(QStringLiteral("a")));
    QCOMPARE(entriesOf(path("tree")), QStringList());
}

void TestFolderTree::everyFolderOfADeepTreeIsFoundAgain()
{
    constexpr int Depth = 100;
    QString below = path("tree");
    for (int level = 1; level <= Depth; ++level) {
        below += QLatin1Char('/') + QString::number(level);
        QVERIFY(QDir().mkpath(below));
    }
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    for (int round = 0; round < 2; ++round) {
        for (int level = 1; level <= Depth; ++level)
            QVERIFY(tree->enter(QString::number(level)));
        for (int level = Depth; level > 1; --level)
            QVERIFY(tree->leave());
        // The same after going back up and halfway down again.
        for (int level = 2; level <= Depth / 2; ++level)
            QVERIFY(tree->enter(QString::number(level)));
        for (int level = Depth / 2; level > 1; --level)
            QVERIFY(tree->leave());
        QVERIFY(tree->leave());
    }
    for (int level = 1; level <= Depth; ++level)
        QVERIFY(tree->enter(QString::number(level)));
    for (int level = Depth; level >= 1; --level) {
        QVERIFY(tree->leave());
        QVERIFY(tree->removeFolder(QString::number(level)));
    }
    QCOMPARE(entriesOf(path("tree")), QStringList());
}

void TestFolderTree::aLinkIsNeitherOpenedNorEntered()
{
    if (onWindows())
        QSKIP("A link to a folder is a file here");
    QVERIFY(makeFolder("other/sub"));
    QVERIFY(makeFolder("tree"));
    QVERIFY(QFile::link(path("other"), path("tree/link")));
    QVERIFY(!openFolderTree(path("tree/link"), TreeAccess::Remove));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    QVERIFY(!tree->enter(QStringLiteral("link")));
    QVERIFY(!tree->removeFolder(QStringLiteral("link")));
    QVERIFY(tree->removeFile(QStringLiteral("link")));
    QCOMPARE(entriesOf(path("other")), QStringList{QStringLiteral("sub")});
}

void TestFolderTree::aMeasuringWalkOpensALinkButEntersNone()
{
    if (onWindows())
        QSKIP("A link to a folder is a file here");
    QVERIFY(makeFolder("tree"));
    QVERIFY(QFile::link(path("tree"), path("tree/itself")));
    QVERIFY(QFile::link(path("tree"), path("link")));
    const Tree tree = openFolderTree(path("link"), TreeAccess::Measure);
    QVERIFY(tree);
    QCOMPARE(entriesIn(*tree), QStringList{QStringLiteral("Folder link itself")});
    QVERIFY(!tree->enter(QStringLiteral("itself")));
}

void TestFolderTree::whatIsNoFolderIsNeitherOpenedNorEntered_data()
{
    theEntriesHaveTheirKinds_data();
}

void TestFolderTree::whatIsNoFolderIsNeitherOpenedNorEntered()
{
    QFETCH(TreeAccess, access);
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(!openFolderTree(path("missing"), access));
    QVERIFY(!openFolderTree(path("tree/file"), access));
    QVERIFY(!openFolderTree(QString(), access));
    const Tree tree = openFolderTree(path("tree"), access);
    QVERIFY(tree);
    QVERIFY(!tree->enter(QStringLiteral("missing")));
    QVERIFY(!tree->enter(QStringLiteral("file")));
    QCOMPARE(entriesIn(*tree), QStringList{QStringLiteral("File file")});
}

void TestFolderTree::onlyWhatIsAskedForIsRemoved()
{
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file"));
    QVERIFY(makeFile("tree/file"));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    QVERIFY(!tree->removeFile(QStringLiteral("sub")));
    QVERIFY(!tree->removeFile(QStringLiteral("missing")));
    QVERIFY(!tree->removeFolder(QStringLiteral("sub"))); // not empty
    QVERIFY(!tree->removeFolder(QStringLiteral("file")));
    QCOMPARE(entriesIn(*tree),
             (QStringList{QStringLiteral("File file"), QStringLiteral("Folder sub")}));
}

// Only where the system allows the folder to be moved.
void TestFolderTree::aFolderThatIsMovedStaysTheCurrentOne()
{
    QVERIFY(makeFolder("tree/sub"));
    QVERIFY(makeFile("tree/sub/file"));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    QVERIFY(tree->enter(QStringLiteral("sub")));
    const bool isMoved = QDir().rename(path("tree/sub"), path("moved"));
    QCOMPARE(isMoved, !onWindows());
    if (isMoved) {
        QVERIFY(makeFolder("tree/sub"));
        QVERIFY(makeFile("tree/sub/file"));
    }
    QVERIFY(tree->removeFile(QStringLiteral("file")));
    QCOMPARE(QFileInfo::exists(path("tree/sub/file")), isMoved);
    QVERIFY(!QFileInfo::exists(path("moved/file")));
}

// The parent folder is no longer the one from which it was entered.
void TestFolderTree::aFolderThatIsMovedOutOfADeepTreeIsNotLeft()
{
    if (onWindows())
        QSKIP("Such a folder cannot be moved here");
    constexpr int Depth = 100;
    constexpr int Moved = 5; // level
    QString below = path("tree");
    QString moved;
    for (int level = 1; level <= Depth; ++level) {
        below += QLatin1Char('/') + QString::number(level);
        if (level == Moved)
            moved = below;
    }
    QVERIFY(QDir().mkpath(below));
    const Tree tree = openFolderTree(path("tree"), TreeAccess::Remove);
    QVERIFY(tree);
    for (int level = 1; level <= Depth; ++level)
        QVERIFY(tree->enter(QString::number(level)));
    QVERIFY(makeFolder("outside"));
    QVERIFY(QDir().rename(moved, path("outside/5")));
    for (int level = Depth; level > Moved; --level)
        QVERIFY(tree->leave());
    QVERIFY(!tree->leave());
}

QTEST_GUILESS_MAIN(TestFolderTree)

#include "tst_foldertree.moc"
