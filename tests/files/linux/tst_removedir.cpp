// Removing a folder tree while its owner changes it, and trees that only this system can hold.

#include "Adversary.h"
#include "DeepTree.h"
#include "DescriptorLimit.h"
#include "SpecialEntries.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/System.h>

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <atomic>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace Vorn::Util;

namespace {

// Two names that an adversary exchanges.
using Pair = std::pair<QByteArray, QByteArray>;

// Counts the exchanges.
void exchangeNames(const std::vector<Pair> &pairs, std::atomic<int> &count)
{
    for (const Pair &pair : pairs) {
        if (renameat2(AT_FDCWD, pair.first.constData(), AT_FDCWD, pair.second.constData(),
                      RENAME_EXCHANGE)
            == 0)
            ++count;
    }
}

constexpr int DescriptorCount = 128;

bool removeWithFewDescriptors(const QString &folder)
{
    rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit limit = before;
    limit.rlim_cur = DescriptorCount;
    const bool ok
        = setrlimit(RLIMIT_NOFILE, &limit) == 0 && System::removeDir(folder, false, QStringList());
    setrlimit(RLIMIT_NOFILE, &before);
    return ok;
}

} // namespace

class TestRemoveDir : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void aFolderThatBecomesALinkIsNeverFollowed_data();
    void aFolderThatBecomesALinkIsNeverFollowed();
    void aTreeOfAnyDepthIsRemoved();
    void aTreeWiderThanTheLimitOfDescriptorsIsRemoved();
    void aFolderThatCannotBeOpenedStays();
    void whatIsNeitherFileNorFolderStays_data();
    void whatIsNeitherFileNorFolderStays();
    void aNameThatIsNoTextStays();
    void aNameWithAByteOrderMarkIsText();
    void aLinkIsKeptAndItsTargetEmptied_data();
    void aLinkIsKeptAndItsTargetEmptied();
};

void TestRemoveDir::aFolderThatBecomesALinkIsNeverFollowed_data()
{
    QTest::addColumn<QString>("above"); // the folders of the tree above the exchanged ones
    QTest::newRow("at the top") << QString();
    QTest::newRow("further below") << QStringLiteral("a/b/");
}

// Each round is set up and checked under names that the adversary does not use.
void TestRemoveDir::aFolderThatBecomesALinkIsNeverFollowed()
{
    constexpr int Rounds = 10;
    constexpr int MaxRounds = 1000; // the exchanger may not run for a while
    constexpr int Folders = 15;
    constexpr int Files = 5;
    QFETCH(QString, above);

    const auto folderName
        = [&above](int number) { return QStringLiteral("/tree/%1d%2").arg(above).arg(number); };
    const auto linkName = [](int number) { return QStringLiteral("/links/%1").arg(number); };
    std::vector<Pair> pairs;
    for (int number = 0; number < Folders; ++number) {
        pairs.emplace_back(QFile::encodeName(path("round") + folderName(number)),
                           QFile::encodeName(path("round") + linkName(number)));
    }
    const Adversary exchanger([&pairs](std::atomic<int> &count) { exchangeNames(pairs, count); });
    QVERIFY(exchanger.isRunning());

    int lost = 0;
    int exchanges = 0;
    for (int round = 0; round < Rounds || (exchanges == 0 && round < MaxRounds); ++round) {
        const QString made = path(QStringLiteral("made %1").arg(round));
        const QString outside = path(QStringLiteral("outside %1").arg(round));
        QVERIFY(QDir().mkpath(made + QStringLiteral("/links")));
        QVERIFY(QDir().mkpath(outside));
        for (int number = 0; number < Files; ++number)
            QVERIFY(writeFile(QStringLiteral("%1/%2").arg(outside).arg(number), "precious"));
        for (int number = 0; number < Folders; ++number) {
            const QString folder = made + folderName(number);
            QVERIFY(QDir().mkpath(folder + QStringLiteral("/sub")));
            QVERIFY(writeFile(folder + QStringLiteral("/file"), "content"));
            QVERIFY(QFile::link(outside, made + linkName(number)));
        }
        QVERIFY(QFile::rename(made, path("round")));
        const int before = exchanger.count();
        System::removeDir(path("round/tree"), false, QStringList());
        exchanges += exchanger.count() - before;
        QVERIFY(QFile::rename(path("round"), made));
        lost += Files - entriesOf(outside).size();
    }
    QVERIFY(exchanges > 0);
    QCOMPARE(lost, 0);
}

// Deeper than the longest path and than the number of descriptors that may be open.
void TestRemoveDir::aTreeOfAnyDepthIsRemoved()
{
    constexpr int Depth = 150;
    static_assert(Depth > DescriptorCount);
    QVERIFY(makeDeepTree(path("tree"), QByteArray(60, 'd'), Depth,
                         [](int folder) { return mkdirat(folder, "beside", 0777) == 0; }));
    QVERIFY(removeWithFewDescriptors(path("tree")));
    QVERIFY(!QFileInfo::exists(path("tree")));
}

void TestRemoveDir::aTreeWiderThanTheLimitOfDescriptorsIsRemoved()
{
    for (int number = 0; number <= DescriptorCount; ++number)
        QVERIFY(QDir().mkpath(path(QStringLiteral("tree/%1").arg(number))));
    QVERIFY(removeWithFewDescriptors(path("tree")));
    QVERIFY(!QFileInfo::exists(path("tree")));
}

// Its entries cannot be listed, so none of them is removed.
void TestRemoveDir::aFolderThatCannotBeOpenedStays()
{
    QVERIFY(QDir().mkpath(path("tree/empty")));
    QVERIFY(writeFile(path("tree/file"), "content"));
    bool isRemoved = true;
    bool isKept = false;
    {
        const DescriptorLimit limit;
        QVERIFY(limit.isSet());
        isRemoved = System::removeDir(path("tree"), false, QStringList());
        isKept = System::removeDir(path("tree"), true, QStringList());
    }
    QVERIFY(!isRemoved);
    QVERIFY(isKept); // true: no removal failed, as none was tried
    QCOMPARE(entriesOf(path("tree")),
             (QStringList{QStringLiteral("empty"), QStringLiteral("file")}));
}

void TestRemoveDir::whatIsNeitherFileNorFolderStays_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : SpecialEntries)
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestRemoveDir::whatIsNeitherFileNorFolderStays()
{
    QFETCH(QString, kind);
    QVERIFY(QDir().mkpath(path("tree/sub")));
    QVERIFY(writeFile(path("tree/sub/file"), "content"));
    const bool isMade = makeSpecialEntry(path("tree/sub/special"), kind, path("pipe"));
    QVERIFY(isMade);
    QVERIFY(!System::removeDir(path("tree"), true, QStringList())); // the folder "sub" is not empty
    QCOMPARE(entriesOf(path("tree/sub")), QStringList{QStringLiteral("special")});
    // True: no removal failed, as none was tried.
    QVERIFY(System::removeDir(path("tree/sub"), true, QStringList()));
    QVERIFY(!System::removeDir(path("tree/sub"), false, QStringList()));
    QCOMPARE(entriesOf(path("tree/sub")), QStringList{QStringLiteral("special")});
}

void TestRemoveDir::aNameThatIsNoTextStays()
{
    QVERIFY(QDir().mkpath(path("tree")));
    QVERIFY(writeFile(path("tree/file"), "content"));
    const QByteArray name = QFile::encodeName(path("tree/")) + "\xff";
    const int file = open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    QVERIFY(file >= 0);
    close(file);
    QVERIFY(!System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!QFileInfo::exists(path("tree/file")));
    QCOMPARE(access(name.constData(), F_OK), 0);
    QVERIFY(System::removeDir(path("tree"), true, QStringList()));
    QCOMPARE(access(name.constData(), F_OK), 0);
    QCOMPARE(unlink(name.constData()), 0);
}

void TestRemoveDir::aNameWithAByteOrderMarkIsText()
{
    const QString name = QChar(QChar::ByteOrderMark) + QStringLiteral("name");
    QVERIFY(QDir().mkpath(path("tree/") + name));
    QVERIFY(writeFile(path("tree/") + name + QStringLiteral("/") + name, "content"));
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
    QVERIFY(!QFileInfo::exists(path("tree")));
}

void TestRemoveDir::aLinkIsKeptAndItsTargetEmptied_data()
{
    QTest::addColumn<QString>("end"); // after the link's path
    QTest::addColumn<bool>("keepFolder");
    QTest::addColumn<QStringList>("exceptions");
    const QStringList exceptions{QStringLiteral("keep.txt")};
    for (const char *end : {"", "/", "//", "/."}) {
        const QString text = QString::fromLatin1(end);
        QTest::addRow("link%s kept", end) << text << true << QStringList();
        QTest::addRow("link%s with exceptions", end) << text << false << exceptions;
        QTest::addRow("link%s kept with exceptions", end) << text << true << exceptions;
    }
}

void TestRemoveDir::aLinkIsKeptAndItsTargetEmptied()
{
    QFETCH(QString, end);
    QFETCH(bool, keepFolder);
    QFETCH(QStringList, exceptions);
    QVERIFY(QDir().mkpath(path("other/sub")));
    for (const char *name : {"other/file", "other/keep.txt", "other/sub/keep.txt"})
        QVERIFY(writeFile(path(name), "content"));
    QVERIFY(QFile::link(path("other"), path("link to it")));
    QVERIFY(QFile::link(path("link to it"), path("link")));
    QVERIFY(System::removeDir(path("link") + end, keepFolder, exceptions));
    QCOMPARE(entriesOf(testFolder()),
             (QStringList{QStringLiteral("link"), QStringLiteral("link to it"),
                          QStringLiteral("other")}));
    QCOMPARE(entriesOf(path("other")), exceptions);
}

QTEST_GUILESS_MAIN(TestRemoveDir)

#include "tst_removedir.moc"
