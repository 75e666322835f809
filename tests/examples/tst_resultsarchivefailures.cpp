// Failures and cancels of the example, and changes that it notices.

#include "FakeArchiver.h"
#include "Noise.h"
#include "TestSystem.h"
#include "TestWithResultsArchive.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <csignal>

using namespace Vorn::Util;

class TestResultsArchiveFailures : public TestWithResultsArchive
{
    Q_OBJECT

private Q_SLOTS:
    void aFailureLeavesNothing_data();
    void aFailureLeavesNothing();
    void aSignalCancelsTheRun_data();
    void aSignalCancelsTheRun();
    void aCancelOfALargeRunLeavesNothing();
    void anArchiveThatChangesIsNoticed();
    void aFolderThatChangesIsNoticed();
    void hiddenFilesAndLinksDoNotCountAsAChange();
    void lengthsThatDifferAreNoticed_data();
    void lengthsThatDifferAreNoticed();
};

// The archiver does the same in each of its runs: what it does wrong shows in the first step that
// looks at it.
void TestResultsArchiveFailures::aFailureLeavesNothing_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<bool>("makesArchive");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<Tree>("unpacked");
    QTest::addColumn<QString>("text");
    const QByteArray good = listing("a.txt", 3);
    const QString notPacked = QStringLiteral("7-Zip could not pack the files");
    QTest::addRow("error") << 2 << true << good << Tree() << notPacked;
    QTest::addRow("warning") << 1 << true << good << Tree() << notPacked;
    QTest::addRow("no archive") << 0 << false << good << Tree() << notPacked;
    QTest::addRow("no archive, other exit code") << 127 << false << good << Tree() << notPacked;
    QTest::addRow("nothing listed")
        << 0 << true << QByteArray() << Tree() << QStringLiteral("The archive does not list a.txt");
    QTest::addRow("other name listed") << 0 << true << listing("b.txt", 3) << Tree()
                                       << QStringLiteral("The archive does not list a.txt");
    QTest::addRow("more listed") << 0 << true
                                 << QByteArray(listing("a.txt", 3))
                                        .replace("  a.txt\n",
                                                 "  a.txt\n2024-03-05 14:23:10 ....A "
                                                 "0 0  c.txt\n")
                                 << Tree()
                                 << QStringLiteral("The archive lists c.txt, which was not packed");
    QTest::addRow("other size listed") << 0 << true << listing("a.txt", 4) << Tree()
                                       << QStringLiteral("The archive lists 4 bytes instead of 3");
    QTest::addRow("nothing unpacked")
        << 0 << true << good << Tree()
        << QStringLiteral("The unpacked files are not the packed ones: 0 unpacked, 1 packed");
    QTest::addRow("other name unpacked")
        << 0 << true << good << Tree{{QStringLiteral("b.txt"), "abc"}}
        << QStringLiteral("The unpacked files are not the packed ones: 1 unpacked, 1 packed");
    QTest::addRow("more unpacked")
        << 0 << true << good
        << Tree{{QStringLiteral("a.txt"), "abc"}, {QStringLiteral("b.txt"), ""}}
        << QStringLiteral("The unpacked files are not the packed ones: 2 unpacked, 1 packed");
    const QString differs = QStringLiteral("a.txt differs from the unpacked file");
    QTest::addRow("other bytes") << 0 << true << good << Tree{{QStringLiteral("a.txt"), "abd"}}
                                 << differs;
    QTest::addRow("bytes missing") << 0 << true << good << Tree{{QStringLiteral("a.txt"), "ab"}}
                                   << QStringLiteral("The archive unpacks to 2 bytes instead of 3");
    QTest::addRow("bytes added") << 0 << true << good << Tree{{QStringLiteral("a.txt"), "abcd"}}
                                 << QStringLiteral("The archive unpacks to 4 bytes instead of 3");
    QTest::addRow("nothing wrong") << 0 << true << good << smallTree() << QString();
}

void TestResultsArchiveFailures::aFailureLeavesNothing()
{
    QFETCH(int, exitCode);
    QFETCH(bool, makesArchive);
    QFETCH(QByteArray, output);
    QFETCH(Tree, unpacked);
    QFETCH(QString, text);
    Site site(smallTree());
    FakeArchiver archiver;
    if (makesArchive)
        archiver.writeFile(site.archive(), "archive");
    for (auto file = unpacked.begin(); file != unpacked.end(); ++file)
        archiver.unpackFile(file.key(), file.value());
    archiver.print(output).exit(exitCode);
    site.useFakeArchiver(archiver);
    const bool isGood = text.isEmpty();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}),
             isGood ? 0 : 1);
    QCOMPARE(site.errors(), isGood ? QString() : error(text));
    QCOMPARE(QFile::exists(site.archive()), isGood);
    QVERIFY(site.isTempFolderClean());
    QCOMPARE(readTree(site.dataFolder()), smallTree());
}

void TestResultsArchiveFailures::aSignalCancelsTheRun_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<int>("exitCode");
    for (const char *signal : {"INT", "TERM", "HUP"}) {
        QTest::addRow("%s", signal) << QString::fromLatin1(signal) << 0;
        QTest::addRow("%s, archiver stopped as well", signal) << QString::fromLatin1(signal) << 2;
    }
}

void TestResultsArchiveFailures::aSignalCancelsTheRun()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here");
#ifdef SIGHUP
    std::signal(SIGHUP, SIG_DFL); // nohup may have started this test
#endif
    QFETCH(QString, signal);
    QFETCH(int, exitCode);
    Site site(smallTree());
    FakeArchiver archiver;
    archiver.waitFor(QStringLiteral("check"));
    site.useFakeArchiver(archiver);
    site.start({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    const auto operation = [&archiver] { return archiver.arguments().value(0); };
    QTRY_COMPARE_WITH_TIMEOUT(operation(), QStringLiteral("l"), TimeLimit);
    archiver.writeFile(site.archive(), "half an archive");
    archiver.waitFor(QStringLiteral("pack")).exit(exitCode);
    QVERIFY(archiver.goOn(QStringLiteral("check")));
    QTRY_COMPARE_WITH_TIMEOUT(operation(), QStringLiteral("a"), TimeLimit);
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(site.archive()), QByteArray("half an archive"), TimeLimit);

    const QString kill
        = QStringLiteral("kill -%1 %2").arg(signal, QString::number(site.process().processId()));
    QCOMPARE(QProcess::execute(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), kill}), 0);
    QVERIFY(archiver.goOn(QStringLiteral("pack")));
    QCOMPARE(site.finish(), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("Cancelled")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());

    const QStringList lines = site.logLines();
    const int canceled = lines.indexOf(QStringLiteral("Task processing has been canceled"));
    QVERIFY(canceled > 0);
    QCOMPARE(lines.value(canceled + 1), QStringLiteral("Skipping to clean-up task: Clean up"));
    QCOMPARE(lines.value(canceled + 2), QStringLiteral("Starting task: Clean up"));
    QVERIFY(!lines.contains(QStringLiteral("Starting task: List")));
}

void TestResultsArchiveFailures::aCancelOfALargeRunLeavesNothing()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here");
    NEED_ARCHIVER;
    Tree tree;
    const QByteArray bytes = noise(1 << 20);
    for (int i = 0; i < 24; ++i)
        tree.insert(QStringLiteral("large %1").arg(i), bytes);
    Site site(tree);
    site.start({QStringLiteral("--level"), QStringLiteral("9"), QStringLiteral("--archive"),
                site.archive(), site.dataFolder()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.archive()), TimeLimit);
    site.process().terminate();
    QCOMPARE(site.finish(), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("Cancelled")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
    QCOMPARE(readTree(site.dataFolder()), tree);
}

void TestResultsArchiveFailures::anArchiveThatChangesIsNoticed()
{
    Site site(smallTree());
    FakeArchiver archiver;
    archiver.waitFor(QStringLiteral("check"));
    site.useFakeArchiver(archiver);
    site.start({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    const auto operation = [&archiver] { return archiver.arguments().value(0); };
    QTRY_COMPARE_WITH_TIMEOUT(operation(), QStringLiteral("l"), TimeLimit);
    makeGood(archiver, site);
    archiver.waitFor(QStringLiteral("pack"));
    QVERIFY(archiver.goOn(QStringLiteral("check")));
    QTRY_COMPARE_WITH_TIMEOUT(operation(), QStringLiteral("a"), TimeLimit);
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(site.archive()), QByteArray("archive"), TimeLimit);

    archiver.writeFile(site.archive(), "another archive"); // from the next run on
    QVERIFY(archiver.goOn(QStringLiteral("pack")));
    QCOMPARE(site.finish(), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The archive changed: it has 15 bytes instead of 7")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveFailures::aFolderThatChangesIsNoticed()
{
    Site site(smallTree());
    FakeArchiver archiver;
    archiver.waitFor(QStringLiteral("check"));
    site.useFakeArchiver(archiver);
    site.start({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    const auto isAsked
        = [&archiver] { return archiver.arguments().value(0) == QLatin1String("l"); };
    QTRY_VERIFY_WITH_TIMEOUT(isAsked(), TimeLimit);
    QVERIFY(writeFileInFolder(site.dataFile(QStringLiteral("sub/late.txt")), "later"));
    QVERIFY(archiver.goOn(QStringLiteral("check")));
    QCOMPARE(site.finish(), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The folder is changing: it holds 8 bytes instead of 3")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveFailures::hiddenFilesAndLinksDoNotCountAsAChange()
{
    NEED_ARCHIVER;
    Tree tree = smallTree();
    for (const char *name : {".b", ".sub/c", ".sub/deep/d", "sub/.e", "sub/f"})
        tree.insert(QString::fromLatin1(name), name);
    Site site(tree);
    site.useRealArchiver();
    const QString target = site.path(QStringLiteral("target"));
    QVERIFY(writeFileInFolder(target + QStringLiteral("/inside.txt"), "inside"));
    for (const char *name : {"file.lnk", ".file.lnk", ".sub/file.lnk", "sub/file.lnk"})
        QVERIFY(QFile::link(target + QStringLiteral("/inside.txt"),
                            site.dataFile(QString::fromLatin1(name))));
    for (const char *name : {"folder.lnk", ".folder.lnk", ".sub/folder.lnk", "sub/folder.lnk"})
        QVERIFY(QFile::link(target, site.dataFile(QString::fromLatin1(name))));
    QVERIFY(QFile::link(site.dataFile(QStringLiteral(".b")),
                        site.dataFile(QStringLiteral("hidden.lnk"))));
    const int exitCode = site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    QCOMPARE(site.errors(), QString());
    QCOMPARE(exitCode, 0);
    QVERIFY(site.logLines().contains(
        QStringLiteral("6 files, %1, 9 left out").arg(mebibytes(sizeOf(tree)))));
}

// Although their sum is the same.
void TestResultsArchiveFailures::lengthsThatDifferAreNoticed_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addRow("bytes missing") << QByteArray("ab") << QByteArray("def");
    QTest::addRow("bytes added") << QByteArray("abcd") << QByteArray("d");
}

void TestResultsArchiveFailures::lengthsThatDifferAreNoticed()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    Site site({{QStringLiteral("a.txt"), "abc"}, {QStringLiteral("b.txt"), "de"}});
    FakeArchiver archiver;
    archiver.writeFile(site.archive(), "archive");
    archiver.unpackFile(QStringLiteral("a.txt"), first);
    archiver.unpackFile(QStringLiteral("b.txt"), second);
    archiver.print(listing("a.txt", 5)
                       .replace("  a.txt\n",
                                "  a.txt\n2024-03-05 14:23:10 ....A "
                                "2 2  b.txt\n"));
    site.useFakeArchiver(archiver);
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("a.txt differs from the unpacked file")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

QTEST_GUILESS_MAIN(TestResultsArchiveFailures)

#include "tst_resultsarchivefailures.moc"
