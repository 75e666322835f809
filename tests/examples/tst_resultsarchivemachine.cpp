// What the example logs about the machine, the disk and the cluster. What no machine can be made to
// do on demand is tested by calling the example's functions.

#include "DiskSpace.h"
#include "FakeArchiver.h"
#include "Machine.h"
#include "Names.h"
#include "TestSystem.h"
#include "TestWithResultsArchive.h"

#include <Utility/CpuInfo.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QStorageInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using namespace Vorn::Util;

namespace {

QStringList matching(const QStringList &lines, const QString &pattern)
{
    return lines.filter(QRegularExpression(QLatin1Char('^') + pattern + QLatin1Char('$')));
}

// Some systems give no sizes for the file system of a folder.
bool knowsFreeSpace(const QString &folder)
{
    return QStorageInfo(folder).bytesTotal() > 0;
}

} // namespace

class TestResultsArchiveMachine : public TestWithResultsArchive
{
    Q_OBJECT

private Q_SLOTS:
    void theMachineIsLogged();
    void aValueThatIsNotKnownIsCalledUnknown_data();
    void aValueThatIsNotKnownIsCalledUnknown();
    void sizesAreShownInMebibytes();
    void partsAreShownInPercent();
    void onlyTheWholeIsShownAs100Percent();
    void theSizeOfTheArchiveIsLogged();
    void theFreeBytesAreLogged();
    void aDiskNeedsSpaceForItsFiles_data();
    void aDiskNeedsSpaceForItsFiles();
    void aRunWithoutDiskSpaceIsRefused();
    void theTemporaryFolderMayLieInTheFolder();
    void withoutATemporaryFolderTheRunEnds();
    void theHeadNodeIsLogged_data();
    void theHeadNodeIsLogged();
    void withoutAHeadNodeTheRunGoesOn_data();
    void withoutAHeadNodeTheRunGoesOn();
    void theClusterIsNotAskedUnlessTold();
};

void TestResultsArchiveMachine::theMachineIsLogged()
{
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    QVERIFY(site.isTempFolderClean()); // no "SystemInfo.xml"

    const QTemporaryDir folder;
    const CpuInfo cpu(nullptr, folder.path());
    const QStringList lines = site.logLines();
    QCOMPARE(
        lines.filter(QStringLiteral("Processors: ")),
        QStringList(
            QStringLiteral("Processors: %1, cores: %2, hyper-threading: %3")
                .arg(QString::number(cpu.processorCount()), QString::number(cpu.coreCount()),
                     cpu.isHyperThreadingOn() ? QStringLiteral("on") : QStringLiteral("off"))));
    // Windows has its counters under other names in each language, and Wine not all of them.
    const auto value = [](const char *unit) {
        const QString number = QStringLiteral("\\d+ ") + QLatin1String(unit);
        return onWindows() ? QStringLiteral("(%1|unknown)").arg(number) : number;
    };
    QCOMPARE(matching(lines,
                      QStringLiteral("Memory available: %1, limit: %1, in use: %2")
                          .arg(value("MiB"), value("%")))
                 .size(),
             1);
    QCOMPARE(matching(lines, QStringLiteral("Processor load: ") + value("%")).size(), 1);
}

void TestResultsArchiveMachine::aValueThatIsNotKnownIsCalledUnknown_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("text");
    QTest::addRow("unknown") << qint64(-1) << QStringLiteral("unknown");
    QTest::addRow("none") << qint64(0) << QStringLiteral("0 MiB");
    QTest::addRow("some") << qint64(3000000000) << QStringLiteral("3000000000 MiB");
}

void TestResultsArchiveMachine::aValueThatIsNotKnownIsCalledUnknown()
{
    QFETCH(qint64, value);
    QTEST(ResultsArchive::measure(value, QStringLiteral("MiB")), "text");
}

void TestResultsArchiveMachine::sizesAreShownInMebibytes()
{
    QCOMPARE(ResultsArchive::sizeText(0), QStringLiteral("0.0 MiB"));
    QCOMPARE(ResultsArchive::sizeText(1), QStringLiteral("0.0 MiB"));
    QCOMPARE(ResultsArchive::sizeText(52429), QStringLiteral("0.1 MiB"));
    QCOMPARE(ResultsArchive::sizeText(1 << 20), QStringLiteral("1.0 MiB"));
    QCOMPARE(ResultsArchive::sizeText(qint64(3) << 40), QStringLiteral("3145728.0 MiB"));
}

void TestResultsArchiveMachine::onlyTheWholeIsShownAs100Percent()
{
    constexpr qint64 Whole = qint64(3) << 40;
    QCOMPARE(ResultsArchive::percentText(9999, 10000), QStringLiteral("99.9 %"));
    QCOMPARE(ResultsArchive::percentText(Whole - 1, Whole), QStringLiteral("99.9 %"));
    QCOMPARE(ResultsArchive::percentText(Whole, Whole), QStringLiteral("100.0 %"));
}

void TestResultsArchiveMachine::partsAreShownInPercent()
{
    QCOMPARE(ResultsArchive::percentText(1, 3), QStringLiteral("33.3 %"));
    QCOMPARE(ResultsArchive::percentText(3, 3), QStringLiteral("100.0 %"));
    QCOMPARE(ResultsArchive::percentText(3, 2), QStringLiteral("150.0 %"));
    QCOMPARE(ResultsArchive::percentText(0, 3), QStringLiteral("0.0 %"));
    QCOMPARE(ResultsArchive::percentText(1, qint64(3) << 40), QStringLiteral("0.0 %"));
    QCOMPARE(ResultsArchive::percentText(0, 0), QStringLiteral("-"));
}

void TestResultsArchiveMachine::theSizeOfTheArchiveIsLogged()
{
    NEED_ARCHIVER;
    Site site(fewResultsTree());
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const qint64 size = QFileInfo(site.archive()).size();
    const double percent
        = 100.0 * static_cast<double>(size) / static_cast<double>(sizeOf(fewResultsTree()));
    QVERIFY(site.logLines().contains(QStringLiteral("Packed into %1 (%2 %)")
                                         .arg(mebibytes(size), QString::number(percent, 'f', 1))));
}

void TestResultsArchiveMachine::theFreeBytesAreLogged()
{
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const QString free = knowsFreeSpace(site.outFolder()) ? QStringLiteral("[1-9]\\d*\\.\\d MiB")
                                                          : QStringLiteral("unknown");
    const QString pattern
        = QStringLiteral("Free for the archive: %1, for the unpacked files: %1").arg(free);
    QCOMPARE(matching(site.logLines(), pattern).size(), 1);
}

void TestResultsArchiveMachine::aDiskNeedsSpaceForItsFiles_data()
{
    QTest::addColumn<qint64>("archiveFree");
    QTest::addColumn<qint64>("unpackFree");
    QTest::addColumn<bool>("isOneDisk");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("problem");
    const auto exactRow = [](const char *name, qint64 archiveFree, qint64 unpackFree,
                             bool isOneDisk, qint64 bytes, const char *problem) {
        const QString text = QString::fromLatin1(problem);
        QTest::newRow(name) << archiveFree << unpackFree << isOneDisk << bytes
                            << (text.isEmpty()
                                    ? text
                                    : QStringLiteral("Not enough disk space in ") + text);
    };
    const auto row = [&exactRow](const char *name, int archiveFree, int unpackFree, bool isOneDisk,
                                 int size, const char *problem) { // in MiB
        const auto bytes
            = [](int mebibytes) { return mebibytes < 0 ? qint64(-1) : qint64(mebibytes) << 20; };
        exactRow(name, bytes(archiveFree), bytes(unpackFree), isOneDisk, bytes(size), problem);
    };
    constexpr qint64 Most = std::numeric_limits<qint64>::max();
    row("just enough", 100, 100, false, 100, "");
    row("archive", 99, 100, false, 100, "out: need 100.0 MiB, have 99.0 MiB");
    row("unpacked files", 100, 99, false, 100, "tmp: need 100.0 MiB, have 99.0 MiB");
    row("both", 98, 99, false, 100, "out: need 100.0 MiB, have 98.0 MiB");
    row("one disk, just enough", 200, 200, true, 100, "");
    row("one disk", 199, 199, true, 100, "out: need 200.0 MiB, have 199.0 MiB");
    row("one disk, two quotas", 200, 199, true, 100, "tmp: need 200.0 MiB, have 199.0 MiB");
    row("full", 0, 100, false, 1, "out: need 1.0 MiB, have 0.0 MiB");
    row("full, nothing to pack", 0, 0, true, 0, "");
    row("both unknown", -1, -1, true, 100, "");
    row("archive unknown", -1, 99, false, 100, "tmp: need 100.0 MiB, have 99.0 MiB");
    row("unpacked files unknown", 99, -1, false, 100, "out: need 100.0 MiB, have 99.0 MiB");
    exactRow("a tenth", 104858, 104858, false, 104859, "out: need 0.2 MiB, have 0.1 MiB");
    exactRow("one byte", 157286399, 157286399, false, 157286400,
             "out: need 150.0 MiB, have 149.9 MiB");
    exactRow("largest numbers", Most, Most, true, Most,
             "out: need 17592186044416.0 MiB, have 8796093022208.0 MiB");
}

void TestResultsArchiveMachine::aDiskNeedsSpaceForItsFiles()
{
    QFETCH(qint64, archiveFree);
    QFETCH(qint64, unpackFree);
    QFETCH(bool, isOneDisk);
    QFETCH(qint64, bytes);
    const ResultsArchive::DiskSpace space{QStringLiteral("out"), QStringLiteral("tmp"), archiveFree,
                                          unpackFree, isOneDisk};
    QTEST(ResultsArchive::diskSpaceProblem(space, bytes), "problem");
}

// With a sparse file that is larger than the free space.
void TestResultsArchiveMachine::aRunWithoutDiskSpaceIsRefused()
{
    constexpr qint64 More = qint64(64) << 30;
    Site site(smallTree());
    if (!knowsFreeSpace(site.outFolder()))
        QSKIP("The system does not report the free disk space");
    FakeArchiver archiver;
    site.useFakeArchiver(archiver);
    QFile file(site.dataFile(QStringLiteral("large")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (!file.resize(QStorageInfo(site.outFolder()).bytesAvailable() + More))
        QSKIP("This file system has no files that take less disk space than their size");
    file.close();
    const int exitCode = site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    const QString pattern
        = QStringLiteral("^results-archive: Not enough disk space in %2: need %1 MiB, "
                         "have \\d+\\.\\d MiB\n$")
              .arg(QString::number(std::ceil(2.0 * static_cast<double>(file.size() + 3) / 104857.6)
                                       / 10,
                                   'f', 1),
                   QRegularExpression::escape(native(site.outFolder())));
    QVERIFY(file.remove());
    QVERIFY2(QRegularExpression(pattern).match(site.errors()).hasMatch(),
             qPrintable(site.errors()));
    QCOMPARE(exitCode, 1);
    QCOMPARE(archiver.arguments().value(0), QStringLiteral("l")); // not "a"
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveMachine::theTemporaryFolderMayLieInTheFolder()
{
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    const QString temp = site.dataFile(QStringLiteral("tmp"));
    QVERIFY(QDir().mkdir(temp));
    site.useTempFolder(temp);
    const int exitCode = site.run({QStringLiteral("--log"), site.path(QStringLiteral("run.log")),
                                   QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    QCOMPARE(site.errors(), QString());
    QCOMPARE(exitCode, 0);
    QCOMPARE(entriesOf(temp), QStringList());
}

void TestResultsArchiveMachine::withoutATemporaryFolderTheRunEnds()
{
    Site site(smallTree());
    FakeArchiver archiver;
    site.useFakeArchiver(archiver);
    const QString temp = site.path(QStringLiteral("file"));
    QVERIFY(writeFileInFolder(temp, "no folder"));
    site.useTempFolder(temp);
    QCOMPARE(site.run({QStringLiteral("--log"), site.path(QStringLiteral("run.log")),
                       QStringLiteral("--archive"), site.archive(), site.dataFolder()}),
             1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("A temporary folder cannot be made in ") + native(temp)));
    QCOMPARE(archiver.arguments().value(0), QStringLiteral("l")); // not "a"
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

void TestResultsArchiveMachine::theHeadNodeIsLogged_data()
{
    QTest::addColumn<QByteArray>("nodes");
    QTest::addColumn<QString>("line");
    QTest::addRow("head and compute nodes")
        << QByteArray("h1:8:1:32:HeadNodes\nc1:16:2:64:ComputeNodes\nc2:24:2:64:ComputeNodes\n")
        << QStringLiteral("Head node: h1, compute nodes: 2, cores: 40");
    QTest::addRow("one of both kinds") << QByteArray("h2:12:2:48:HeadNodes,ComputeNodes\n")
                                       << QStringLiteral("Head node: h2, compute nodes: 1, "
                                                         "cores: 12");
    QTest::addRow("head node only") << QByteArray("h3:8:1:32:HeadNodes\n")
                                    << QStringLiteral("Head node: h3, compute nodes: 0, cores: 0");
}

void TestResultsArchiveMachine::theHeadNodeIsLogged()
{
    QFETCH(QByteArray, nodes);
    QFETCH(QString, line);
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    site.useClusterTool(nodes);
    QVERIFY(writeFileInFolder(site.path(QStringLiteral("record")), QByteArray()));
    const QStringList entries = entriesOf(site.path(QStringLiteral(".")));
    QCOMPARE(site.run({QStringLiteral("--cluster-tools"), QStringLiteral("tools"),
                       QStringLiteral("--archive"), site.archive(), site.dataFolder()}),
             0);
    const QStringList lines = site.logLines();
    QVERIFY(lines.contains(QStringLiteral("Starting task: Log the cluster")));
    QCOMPARE(lines.filter(QStringLiteral("ead node")), QStringList(line));
    QVERIFY(site.output().contains(QStringLiteral("\nLog the cluster: done in ")));

    // No script is left, neither in the current folder nor in that of the tool.
    QCOMPARE(entriesOf(site.path(QStringLiteral("."))), entries);
    QCOMPARE(contentOf(site.path(QStringLiteral("record"))),
             QByteArray("NodeInformation.exe|-q|-cluster\n"));
    QCOMPARE(entriesOf(site.path(QStringLiteral("tools"))),
             QStringList(QStringLiteral("NodeInformation.exe")));
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveMachine::withoutAHeadNodeTheRunGoesOn_data()
{
    QTest::addColumn<bool>("hasTool");
    QTest::addColumn<QByteArray>("nodes");
    QTest::addRow("no tool") << false << QByteArray();
    QTest::addRow("silent tool") << true << QByteArray();
    QTest::addRow("compute nodes only") << true << QByteArray("c1:16:2:64:ComputeNodes\n");
    QTest::addRow("error") << true << QByteArray("Error: no cluster\nh1:8:1:32:HeadNodes\n");
}

void TestResultsArchiveMachine::withoutAHeadNodeTheRunGoesOn()
{
    QFETCH(bool, hasTool);
    QFETCH(QByteArray, nodes);
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    if (hasTool)
        site.useClusterTool(nodes);
    const QString tools = hasTool ? QStringLiteral("tools") : QStringLiteral("out");
    QCOMPARE(site.run({QStringLiteral("--cluster-tools"), site.path(tools),
                       QStringLiteral("--archive"), site.archive(), site.dataFolder()}),
             0);
    QCOMPARE(QFile::exists(site.path(QStringLiteral("record"))), hasTool);
    QCOMPARE(
        matching(site.logLines(), QStringLiteral("The cluster tool named no head node")).size(), 1);
    QCOMPARE(entriesOf(site.outFolder()), QStringList(QStringLiteral("results.7z")));
    QVERIFY(!QFile::exists(site.path(QStringLiteral("work.bat"))));
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveMachine::theClusterIsNotAskedUnlessTold()
{
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    site.useClusterTool("h1:8:1:32:HeadNodes\n");
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    QVERIFY(!QFile::exists(site.path(QStringLiteral("record"))));
    QCOMPARE(site.logLines().filter(QStringLiteral("head node"), Qt::CaseInsensitive),
             QStringList());
}

QTEST_GUILESS_MAIN(TestResultsArchiveMachine)

#include "tst_resultsarchivemachine.moc"
