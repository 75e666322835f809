// Runs the example built against the installed package as a user would: what it packs, prints and
// logs.

#include "FakeArchiver.h"
#include "Noise.h"
#include "TestSystem.h"
#include "TestWithResultsArchive.h"

#include <Utility/SevenZip.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

// More files than go on 7-Zip's command line.
Tree resultsTree()
{
    Tree tree = fewResultsTree();
    for (int i = 1; i <= 45; ++i)
        tree.insert(QStringLiteral("step %1/node%2.dat").arg(i % 4).arg(i), noise(i * 100));
    return tree;
}

const QStringList &taskNames()
{
    static const QStringList names{QStringLiteral("ResultsArchive::Job::inspectFolder"),
                                   QStringLiteral("Check names and 7-Zip"),
                                   QStringLiteral("Check sizes and disk space"),
                                   QStringLiteral("Log the machine"),
                                   QStringLiteral("Pack"),
                                   QStringLiteral("List"),
                                   QStringLiteral("Unpack"),
                                   QStringLiteral("Compare"),
                                   QStringLiteral("List with the system"),
                                   QStringLiteral("Clean up")};
    return names;
}

} // namespace

class TestResultsArchive : public TestWithResultsArchive
{
    Q_OBJECT

private Q_SLOTS:
    void aFolderIsPackedWithNothingLost_data();
    void aFolderIsPackedWithNothingLost();
    void theOptionsReach7Zip_data();
    void theOptionsReach7Zip();
    void theOutputIsOneLinePerTaskAndASummary();
    void theLogHoldsTheTasksInOrder();
    void theLogHoldsTheListingOfTheSystemCommand();
    void aFailureSkipsToTheCleanUp();
    void aNamedLogGetsATimeStamp();
    void theArchiveIsNamedAfterTheFolder_data();
    void theArchiveIsNamedAfterTheFolder();
    void anArchiveWithoutSuffixGetsThatOfItsType_data();
    void anArchiveWithoutSuffixGetsThatOfItsType();
    void namesThatLookLikeOptionsArePacked_data();
    void namesThatLookLikeOptionsArePacked();
    void namesThatHoldTheFoldersPathArePacked();
    void linksAreLeftOutAndLogged();
    void emptyFilesArePacked();
    void aReaderThatEndsDoesNotEndTheRun();
};

void TestResultsArchive::aFolderIsPackedWithNothingLost_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<bool>("isZip");
    QTest::addColumn<bool>("hasManyFiles");
    const auto row = [](const char *options, bool isZip, bool hasManyFiles) {
        QTest::newRow(options) << QString::fromLatin1(options) << isZip << hasManyFiles;
    };
    row("", false, true);
    row("--type zip", true, true);
    row("--method Copy", false, false);
    row("--method Deflate", false, false);
    row("--method LZMA --level 9", false, false);
    row("--method BZip2", false, false);
    row("--type 7z --level 0", false, false);
    row("--type zip --method Copy", true, false);
    row("--type zip --method Deflate --level 9", true, false);
}

void TestResultsArchive::aFolderIsPackedWithNothingLost()
{
    NEED_ARCHIVER;
    QFETCH(QString, options);
    QFETCH(bool, isZip);
    QFETCH(bool, hasManyFiles);
    const Tree tree = hasManyFiles ? resultsTree() : fewResultsTree();
    Site site(tree);
    site.useRealArchiver();
    const QString name = isZip ? QStringLiteral("results.zip") : QStringLiteral("results.7z");
    const QString archive = site.outFile(name);
    QCOMPARE(
        site.run(words(options) << QStringLiteral("--archive") << archive << site.dataFolder()), 0);
    QCOMPARE(site.errors(), QString());
    QVERIFY(site.isTempFolderClean());
    QCOMPARE(entriesOf(site.outFolder()), QStringList{name});
    QCOMPARE(readTree(site.dataFolder()), tree);
    QCOMPARE(contentOf(archive).left(2), QByteArray(isZip ? "PK" : "7z"));

    SevenZip unpacker;
    unpacker.setArchiveFile(archive);
    QVERIFY(unpacker.extractFilesTo(site.path(QStringLiteral("unpacked"))));
    QCOMPARE(readTree(site.path(QStringLiteral("unpacked"))), tree);
}

void TestResultsArchive::theOptionsReach7Zip_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("switches");
    const auto row = [](const char *options, const char *switches) {
        QTest::newRow(options) << QString::fromLatin1(options) << QString::fromLatin1(switches);
    };
    row("", "-t7z -m0=LZMA2 -mx=1 -ma=0 -mmt=on");
    row("--type 7z --method Copy --level 0", "-t7z -m0=Copy -mx=0 -mmt=on");
    row("--method Deflate", "-t7z -m0=Deflate -mx=1 -mmt=on");
    row("--method LZMA --level 9", "-t7z -m0=LZMA -mx=9 -ma=0 -mmt=on");
    row("--method LZMA2 --level 5", "-t7z -m0=LZMA2 -mx=5 -ma=0 -mmt=on");
    row("--method BZip2", "-t7z -m0=BZip2 -mx=1 -mmt=on");
    row("--type zip", "-tzip -mm=Deflate -mx=1 -mmt=on");
    row("--type zip --method Copy", "-tzip -mm=Copy -mx=1 -mmt=on");
    row("--type zip --method Deflate --level 7", "-tzip -mm=Deflate -mx=7 -mmt=on");
}

void TestResultsArchive::theOptionsReach7Zip()
{
    QFETCH(QString, options);
    QFETCH(QString, switches);
    Site site(smallTree());
    FakeArchiver archiver;
    archiver.exit(2);
    site.useFakeArchiver(archiver);
    QCOMPARE(site.run(words(options)
                      << QStringLiteral("--archive") << site.archive() << site.dataFolder()),
             1);
    QStringList arguments = archiver.arguments();
    QCOMPARE(arguments.value(0), QStringLiteral("a"));
    QCOMPARE(arguments.value(2), site.archive());
    QCOMPARE(arguments.value(3), native(QStringLiteral("./a.txt")));
    arguments.removeAt(0);
    arguments.erase(arguments.begin() + 1, arguments.begin() + 3);
    QCOMPARE(arguments.join(QLatin1Char(' ')), switches);
}

void TestResultsArchive::theOutputIsOneLinePerTaskAndASummary()
{
    NEED_ARCHIVER;
    const Tree tree = resultsTree();
    Site site(tree);
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    QVERIFY(!site.output().contains(QLatin1Char('\r')));
    QStringList lines = site.output().split(QLatin1Char('\n'));
    QCOMPARE(lines.takeLast(), QString());
    QCOMPARE(lines.takeFirst(), QStringLiteral("Log: ") + native(site.logFile()));

    const QString summary = lines.takeLast();
    const qint64 packed = QFileInfo(site.archive()).size();
    const double ratio = 100.0 * static_cast<double>(packed) / static_cast<double>(sizeOf(tree));
    const QString pattern = QStringLiteral("^Packed and verified: %1 files, %2 in %3 \\(%4 %\\), "
                                           "[0-9:.]+( sec)?: %5$")
                                .arg(QString::number(tree.size()), mebibytes(sizeOf(tree)),
                                     mebibytes(packed), QString::number(ratio, 'f', 1),
                                     QRegularExpression::escape(native(site.archive())));
    QVERIFY2(QRegularExpression(pattern).match(summary).hasMatch(), qPrintable(summary));

    QCOMPARE(lines.size(), taskNames().size());
    for (int i = 0; i < lines.size(); ++i)
        QVERIFY2(lines.at(i).startsWith(taskNames().at(i) + QStringLiteral(": done in ")),
                 qPrintable(lines.at(i)));
}

void TestResultsArchive::theLogHoldsTheTasksInOrder()
{
    NEED_ARCHIVER;
    const Tree tree = resultsTree();
    Site site(tree);
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const QStringList lines = site.logLines();
    QCOMPARE(lines.first(), QStringLiteral("Start processing tasks"));
    int from = 0;
    for (const QString &name : taskNames()) {
        const int start = lines.indexOf(QStringLiteral("Starting task: ") + name, from);
        QVERIFY2(start > 0, qPrintable(name));
        int end = start + 1;
        while (end < lines.size() && !lines.at(end).startsWith(QLatin1String("Task finished in ")))
            ++end;
        QVERIFY2(end < lines.size(), qPrintable(name));
        from = end;
    }
    QVERIFY(lines.at(from + 1).startsWith(QLatin1String("Finished processing tasks in ")));
    QVERIFY(lines.at(from + 2).startsWith(QLatin1String("Packed and verified: ")));
    QCOMPARE(lines.size(), from + 3);
    QCOMPARE(lines.filter(QStringLiteral("Starting task: ")).size(), taskNames().size());
    QVERIFY(lines.contains(QStringLiteral("%1 files, %2, 0 left out")
                               .arg(QString::number(tree.size()), mebibytes(sizeOf(tree)))));
}

void TestResultsArchive::theLogHoldsTheListingOfTheSystemCommand()
{
    NEED_ARCHIVER;
    Site site(smallTree());
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const QStringList lines = site.logLines();
    const QStringList output = lines.filter(QRegularExpression(QStringLiteral("^ output:")));
    QCOMPARE(lines.filter(QRegularExpression(QStringLiteral("^Command:"))).size(), 1);
    QVERIFY(!output.filter(QStringLiteral("results.7z")).isEmpty());
}

void TestResultsArchive::aFailureSkipsToTheCleanUp()
{
    Site site(smallTree());
    site.hideArchivers();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    const QStringList lines = site.logLines();
    const QStringList started
        = lines.filter(QRegularExpression(QStringLiteral("^Starting task: ")));
    const QStringList expected{QStringLiteral("Starting task: ResultsArchive::Job::inspectFolder"),
                               QStringLiteral("Starting task: Check names and 7-Zip"),
                               QStringLiteral("Starting task: Clean up")};
    QCOMPARE(started, expected);
    QVERIFY(lines.contains(QStringLiteral("Skipping to clean-up task: Clean up")));
    QVERIFY(!lines
                 .filter(QRegularExpression(QStringLiteral(
                     "^Task finished with errors in .*: error = 7-Zip cannot be started$")))
                 .isEmpty());
}

void TestResultsArchive::aNamedLogGetsATimeStamp()
{
    NEED_ARCHIVER;
    Site site(smallTree());
    site.useRealArchiver();
    const QString log = site.path(QStringLiteral("logs/my run.log"));
    QVERIFY(QDir().mkpath(QFileInfo(log).path()));
    QCOMPARE(site.run({QStringLiteral("--log"), log, QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()}),
             0);
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
    const QStringList logs = entriesOf(QFileInfo(log).path());
    QCOMPARE(logs.size(), 1);
    QVERIFY(QRegularExpression(QStringLiteral("^my run_\\d{4}-\\d\\d-\\d\\d-\\d{6}\\.log$"))
                .match(logs.first())
                .hasMatch());
}

void TestResultsArchive::theArchiveIsNamedAfterTheFolder_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("archive");
    const QString data = QStringLiteral("data");
    QTest::addRow("7z") << QStringList{data} << QStringLiteral("data.7z");
    QTest::addRow("zip") << QStringList{QStringLiteral("--type"), QStringLiteral("zip"), data}
                         << QStringLiteral("data.zip");
    QTest::addRow("separator at the end")
        << QStringList{data + QLatin1Char('/')} << QStringLiteral("data.7z");
    QTest::addRow("dots") << QStringList{QStringLiteral("out/../data/.")}
                          << QStringLiteral("data.7z");
}

void TestResultsArchive::theArchiveIsNamedAfterTheFolder()
{
    NEED_ARCHIVER;
    QFETCH(QStringList, arguments);
    QFETCH(QString, archive);
    Site site(smallTree());
    site.useRealArchiver();
    QCOMPARE(site.run(arguments), 0);
    QVERIFY(QFileInfo(site.path(archive)).isFile());
}

void TestResultsArchive::anArchiveWithoutSuffixGetsThatOfItsType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("archive");
    const QString sevenZip = QStringLiteral("7z");
    QTest::addRow("7z") << sevenZip << QStringLiteral("results") << QStringLiteral("results.7z");
    QTest::addRow("zip") << QStringLiteral("zip") << QStringLiteral("my results")
                         << QStringLiteral("my results.zip");
    QTest::addRow("other suffix") << sevenZip << QStringLiteral("results.dat")
                                  << QStringLiteral("results.dat");
    QTest::addRow("hidden") << sevenZip << QStringLiteral(".results") << QStringLiteral(".results");
    QTest::addRow("option") << sevenZip << QStringLiteral("-results")
                            << QStringLiteral("-results.7z");
}

void TestResultsArchive::anArchiveWithoutSuffixGetsThatOfItsType()
{
    NEED_ARCHIVER;
    QFETCH(QString, type);
    QFETCH(QString, name);
    QFETCH(QString, archive);
    Site site(smallTree());
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--type"), type, QStringLiteral("--archive"),
                       QStringLiteral("out/") + name, QStringLiteral("data")}),
             0);
    QCOMPARE(entriesOf(site.outFolder()), QStringList{archive});
}

void TestResultsArchive::namesThatLookLikeOptionsArePacked_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("others");
    for (const char *type : {"7z", "zip"}) {
        QTest::addRow("%s, on the command line", type) << QString::fromLatin1(type) << 2;
        QTest::addRow("%s, in a list file", type) << QString::fromLatin1(type) << 40;
    }
}

void TestResultsArchive::namesThatLookLikeOptionsArePacked()
{
    NEED_ARCHIVER;
    QFETCH(QString, type);
    QFETCH(int, others);
    Tree tree;
    for (const char *name : {"-sdel", "-x!plain", "@list", "--", "a b", " leading", "plain",
                             "sub/-x", "sub/@y", "sub/deep/z"})
        tree.insert(QString::fromLatin1(name), QByteArray(name));
    if (!onWindows()) { // where no file can be named so
        for (const char *name : {"*", "?", "sub/*"})
            tree.insert(QString::fromLatin1(name), QByteArray(name));
    }
    for (int i = 0; i < others; ++i)
        tree.insert(QString::number(i), QByteArray());
    Site site(tree);
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--type"), type, QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()}),
             0);
    QCOMPARE(site.errors(), QString());
    SevenZip unpacker;
    unpacker.setArchiveFile(site.archive());
    QVERIFY(unpacker.extractFilesTo(site.path(QStringLiteral("unpacked"))));
    QCOMPARE(readTree(site.path(QStringLiteral("unpacked"))), tree);
    QCOMPARE(readTree(site.dataFolder()), tree); // none of it was a switch
}

// A backup of the folder within itself.
void TestResultsArchive::namesThatHoldTheFoldersPathArePacked()
{
    NEED_ARCHIVER;
    if (onWindows())
        QSKIP("A path begins with a drive here, which no name can hold");
    Site site(smallTree());
    site.useRealArchiver();
    QVERIFY(writeFileInFolder(
        site.dataFile(QStringLiteral("backup") + site.dataFolder() + QStringLiteral("/a.txt")),
        "older"));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    SevenZip unpacker;
    unpacker.setArchiveFile(site.archive());
    QVERIFY(unpacker.extractFilesTo(site.path(QStringLiteral("unpacked"))));
    QCOMPARE(readTree(site.path(QStringLiteral("unpacked"))), readTree(site.dataFolder()));
}

void TestResultsArchive::linksAreLeftOutAndLogged()
{
    NEED_ARCHIVER;
    Site site(smallTree());
    site.useRealArchiver();
    const QString target = site.path(QStringLiteral("target"));
    QVERIFY(writeFileInFolder(target + QStringLiteral("/inside.txt"), "inside"));
    // The suffix makes it a shortcut on Windows.
    QVERIFY(QFile::link(target, site.dataFile(QStringLiteral("folder.lnk"))));
    QVERIFY(QFile::link(target + QStringLiteral("/inside.txt"),
                        site.dataFile(QStringLiteral("file.lnk"))));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const QStringList lines = site.logLines();
    QVERIFY(lines.contains(QStringLiteral("Left out, neither file nor folder: folder.lnk")));
    QVERIFY(lines.contains(QStringLiteral("Left out, neither file nor folder: file.lnk")));
    QVERIFY(lines.contains(QStringLiteral("1 files, 0.0 MiB, 2 left out")));
    SevenZip unpacker;
    unpacker.setArchiveFile(site.archive());
    QVERIFY(unpacker.extractFilesTo(site.path(QStringLiteral("unpacked"))));
    QCOMPARE(readTree(site.path(QStringLiteral("unpacked"))), smallTree());
}

void TestResultsArchive::emptyFilesArePacked()
{
    NEED_ARCHIVER;
    Site site({{QStringLiteral("nothing"), QByteArray()}});
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    QVERIFY(site.output().contains(
        QStringLiteral("Packed and verified: 1 files, 0.0 MiB in 0.0 MiB (-), ")));
}

void TestResultsArchive::aReaderThatEndsDoesNotEndTheRun()
{
    NEED_ARCHIVER;
    Site site(resultsTree());
    site.useRealArchiver();
    site.start({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    QVERIFY(site.process().waitForReadyRead(TimeLimit));
    site.process().closeReadChannel(QProcess::StandardOutput);
    QCOMPARE(site.finish(), 0);
    QVERIFY(QFile::exists(site.archive()));
    QVERIFY(site.isTempFolderClean());
}

QTEST_GUILESS_MAIN(TestResultsArchive)

#include "tst_resultsarchive.moc"
