// The platform's walk through a folder tree.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/Platform/FolderTree.h>

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <memory>

using namespace Vorn::Util;
using Platform::FolderEntry;
using Platform::openFolderTree;

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

    void theEntriesHaveTheirKinds();
    void aVisitMayRemoveTheEntry();
    void aFolderIsEnteredAndLeft();
    void everyFolderOfADeepTreeIsFoundAgain();
    void aLinkIsNeitherOpenedNorEntered();
    void whatIsNoFolderIsNeitherOpenedNorEntered();
    void onlyWhatIsAskedForIsRemoved();
    void aFolderThatIsMovedStaysTheCurrentOne();
    void aFolderThatIsMovedOutOfADeepTreeIsNotLeft();

private:
    bool makeFolder(const char *name) const { return QDir().mkpath(path(name)); }
    bool makeFile(const char *name) const { return writeFile(path(name), QByteArray()); }
};

void TestFolderTree::theEntriesHaveTheirKinds()
{
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
    const Tree tree = openFolderTree(path("tree"));
    QVERIFY(tree);
    QCOMPARE(entriesIn(*tree), expected);
}

void TestFolderTree::aVisitMayRemoveTheEntry()
{
    constexpr int Count = 3000; // more entries than one system call returns
    QVERIFY(makeFolder("tree"));
    for (int number = 0; number < Count; ++number)
        QVERIFY(writeFile(path("tree/") + QString::number(number), QByteArray()));
    const Tree tree = openFolderTree(path("tree"));
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
    const Tree tree = openFolderTree(path("tree"));
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
    const Tree tree = openFolderTree(path("tree"));
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
    QVERIFY(!openFolderTree(path("tree/link")));
    const Tree tree = openFolderTree(path("tree"));
    QVERIFY(tree);
    QVERIFY(!tree->enter(QStringLiteral("link")));
    QVERIFY(!tree->removeFolder(QStringLiteral("link")));
    QVERIFY(tree->removeFile(QStringLiteral("link")));
    QCOMPARE(entriesOf(path("other")), QStringList{QStringLiteral("sub")});
}

void TestFolderTree::whatIsNoFolderIsNeitherOpenedNorEntered()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(!openFolderTree(path("missing")));
    QVERIFY(!openFolderTree(path("tree/file")));
    QVERIFY(!openFolderTree(QString()));
    const Tree tree = openFolderTree(path("tree"));
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
    const Tree tree = openFolderTree(path("tree"));
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
    const Tree tree = openFolderTree(path("tree"));
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
    const Tree tree = openFolderTree(path("tree"));
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
