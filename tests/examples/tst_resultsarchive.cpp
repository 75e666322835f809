// Runs the example built against the installed package as a user would. What no machine can be made
// to do on demand is asked of its functions.

#include "DiskSpace.h"
#include "FakeArchiver.h"
#include "Machine.h"
#include "Noise.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <Utility/CpuInfo.h>
#include <Utility/SevenZip.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QStorageInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <cstdio>
#include <fstream>
#include <limits>

using namespace Vorn::Util;

namespace {

constexpr int TimeLimit = 120000; // milliseconds

using Tree = QMap<QString, QByteArray>; // relative name and content

bool writeFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    return QDir().mkpath(QFileInfo(name).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

Tree readTree(const QString &folder)
{
    Tree tree;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = files.next();
        tree.insert(QDir(folder).relativeFilePath(name), readFile(name));
    }
    return tree;
}

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                  | QDir::NoDotAndDotDot);
}

// Names of every kind that can be packed.
Tree fewResultsTree()
{
    Tree tree;
    tree.insert(QStringLiteral("text.txt"), QByteArray("a line that comes again\n").repeated(4000));
    tree.insert(QStringLiteral("noise.bin"), noise(70000));
    tree.insert(QStringLiteral("deep/er/and/deeper/x.txt"), "LF\nCR LF\r\nCR\r\x1a end");
    tree.insert(QStringLiteral("empty"), QByteArray());
    tree.insert(QStringLiteral("deep/empty too"), QByteArray());
    tree.insert(QStringLiteral(".hidden"), "hidden");
    tree.insert(QStringLiteral(".folder/hidden too"), "hidden");
    tree.insert(QStringLiteral("two  blanks   three"), "blanks");
    tree.insert(QStringLiteral("12 34 numbers.txt"), "numbers");
    tree.insert(QStringLiteral("12 34"), "numbers");
    tree.insert(QStringLiteral("98765432109876543210 34"), "more than 64 bits");
    tree.insert(QStringLiteral("-12 34"), "numbers");
    tree.insert(QStringLiteral("-option"), "option");
    tree.insert(QStringLiteral("@list"), "list");
    tree.insert(QStringLiteral("sub/-option"), "option below");
    tree.insert(QString::fromUtf8("größe/λύσις.txt"), "letters");
    tree.insert(QString::fromUtf8("結果.dat"), "letters");
    return tree;
}

// More files than go on 7-Zip's command line.
Tree resultsTree()
{
    Tree tree = fewResultsTree();
    for (int i = 1; i <= 45; ++i)
        tree.insert(QStringLiteral("step %1/node%2.dat").arg(i % 4).arg(i), noise(i * 100));
    return tree;
}

Tree smallTree()
{
    return {{QStringLiteral("a.txt"), "abc"}};
}

qint64 sizeOf(const Tree &tree)
{
    qint64 sum = 0;
    for (const QByteArray &bytes : tree)
        sum += bytes.size();
    return sum;
}

QStringList words(const QString &text)
{
    QStringList all = text.split(QLatin1Char(' '));
    all.removeAll(QString());
    return all;
}

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString error(const QString &text)
{
    return QStringLiteral("results-archive: %1\n").arg(text);
}

QString textOf(QByteArray bytes)
{
    return QString::fromLocal8Bit(bytes.replace("\r\n", "\n"));
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

// The program in a folder of its own, data to pack, a folder for archives and one for temporary
// files, all gone in the end.
class Site
{
public:
    explicit Site(const Tree &data)
    {
        for (const QString &folder : {dataFolder(), outFolder(), tempFolder(), path(Program)})
            QDir().mkpath(folder);
        for (auto file = data.begin(); file != data.end(); ++file) {
            if (!writeFile(dataFile(file.key()), file.value()))
                qFatal("The test's data cannot be written.");
        }
        copy(QStringLiteral(RESULTS_ARCHIVE),
             QFileInfo(QStringLiteral(RESULTS_ARCHIVE)).fileName());
        environment_ = QProcessEnvironment::systemEnvironment();
        useTempFolder(tempFolder());
    }

    void useTempFolder(const QString &folder)
    {
        for (const char *variable : {"TMPDIR", "TEMP", "TMP"})
            environment_.insert(QString::fromLatin1(variable), native(folder));
    }

    // In the folder "tools". It prints these lines.
    void useClusterTool(const QByteArray &lines)
    {
        const QString tool = path(QStringLiteral("tools/NodeInformation.exe"));
        const QString nodes = path(QStringLiteral("nodes"));
        if (!writeFile(nodes, lines) || !QDir().mkpath(QFileInfo(tool).path())
            || !QFile::copy(QStringLiteral(FAKE_CLUSTER_TOOL), tool))
            qFatal("The cluster tool cannot be placed.");
        environment_.insert(QStringLiteral("FAKE_NODES"), native(nodes));
        environment_.insert(QStringLiteral("FAKE_NODES_RECORD"),
                            native(path(QStringLiteral("record"))));
    }

    QString dataFolder() const { return path(QStringLiteral("data")); }
    QString dataFile(const QString &name) const { return dataFolder() + QLatin1Char('/') + name; }
    QString outFolder() const { return path(QStringLiteral("out")); }
    QString archive() const { return outFile(QStringLiteral("results.7z")); }
    QString outFile(const QString &name) const { return outFolder() + QLatin1Char('/') + name; }
    QString tempFolder() const { return path(QStringLiteral("tmp")); }
    QString path(const QString &name) const { return root_.filePath(name); }

    void useRealArchiver() const
    {
        // Elsewhere it is on PATH.
        for (const QString &name : {QStringLiteral("7z.exe"), QStringLiteral("7z.dll")}) {
            const QString file = QCoreApplication::applicationDirPath() + QLatin1Char('/') + name;
            if (onWindows() && QFile::exists(file))
                copy(file, name);
        }
    }

    void useFakeArchiver(const FakeArchiver &)
    {
        for (const char *variable : {"FAKE_ARCHIVER", "FAKE_ARCHIVER_RECORD"})
            environment_.insert(QString::fromLatin1(variable), qEnvironmentVariable(variable));
        copy(QStringLiteral(FAKE_ARCHIVER_PROGRAM), QStringLiteral("7z.exe"));
    }

    void hideArchivers()
    {
        if (!onWindows()) // there it lies beside the program or nowhere
            environment_.insert(QStringLiteral("PATH"), tempFolder());
    }

    void start(const QStringList &arguments)
    {
        process_.setProcessEnvironment(environment_);
        process_.setWorkingDirectory(root_.path());
        process_.start(path(Program) + QLatin1Char('/')
                           + QFileInfo(QStringLiteral(RESULTS_ARCHIVE)).fileName(),
                       arguments);
    }

    int finish()
    {
        if (!process_.waitForFinished(TimeLimit) && process_.state() != QProcess::NotRunning)
            return -1;
        output_ = textOf(process_.readAllStandardOutput());
        errors_ = textOf(process_.readAllStandardError());
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -2;
    }

    int run(const QStringList &arguments)
    {
        start(arguments);
        return finish();
    }

    QProcess &process() { return process_; }
    QString output() const { return output_; }
    QString errors() const { return errors_; }

    QString logFile() const
    {
        const QDir folder(tempFolder());
        const QStringList logs = folder.entryList({QStringLiteral("results-archive_20*.log")});
        return logs.size() == 1 ? folder.filePath(logs.first()) : QString();
    }

    // Without the time in front.
    QStringList logLines() const
    {
        QStringList lines = textOf(readFile(logFile())).split(QLatin1Char('\n'));
        lines.removeLast();
        for (QString &line : lines)
            line.remove(QRegularExpression(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] ")));
        return lines;
    }

    // Nothing but the log, if a run came so far.
    bool isTempFolderClean() const
    {
        const QStringList entries = entriesOf(tempFolder());
        return entries.isEmpty() || (entries.size() == 1 && !logFile().isEmpty());
    }

private:
    Q_DISABLE_COPY(Site)

    void copy(const QString &from, const QString &name) const
    {
        if (!QFile::copy(from, path(Program) + QLatin1Char('/') + name))
            qFatal("%s cannot be copied.", qPrintable(from));
    }

    const QString Program = QStringLiteral("program");
    TestFolder root_;
    QProcessEnvironment environment_;
    QProcess process_;
    QString output_;
    QString errors_;
};

bool haveArchiver()
{
    if (onWindows())
        return QFile::exists(QCoreApplication::applicationDirPath() + QStringLiteral("/7z.exe"));
    for (const QString &name :
         {QStringLiteral("7z"), QStringLiteral("7zz"), QStringLiteral("7za")}) {
        if (!QStandardPaths::findExecutable(name).isEmpty())
            return true;
    }
    return false;
}

#define NEED_ARCHIVER                                                                              \
    if (!haveArchiver())                                                                           \
    QSKIP("There is no 7-Zip on PATH, or on Windows 7z.exe beside this test.")

// A listing in the words of the program that is shipped with the product.
QByteArray listing(const QByteArray &name, int size)
{
    const QByteArray number = QByteArray::number(size);
    return "Type = 7z\nMethod = LZMA2\n\n"
           "-------- -------- ----- ------------ ------------  ------------\n"
           "2024-03-05 14:23:10 ....A "
        + number + ' ' + number + "  " + name
        + "\n-------- -------- ----- ------------ ------------  ------------\n" + number + ' '
        + number + "  1 files, 0 folders\n";
}

// A program that packs the small tree well.
void makeGood(FakeArchiver &archiver, const Site &site)
{
    archiver.writeFile(site.archive(), "archive").unpackFile(QStringLiteral("a.txt"), "abc");
    archiver.print(listing("a.txt", 3));
}

QStringList matching(const QStringList &lines, const QString &pattern)
{
    return lines.filter(QRegularExpression(QLatin1Char('^') + pattern + QLatin1Char('$')));
}

// Some systems tell nothing of the file system that a folder lies on.
bool tellsRoom(const QString &folder)
{
    return QStorageInfo(folder).bytesTotal() > 0;
}

} // namespace

class TestResultsArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aFolderIsPackedWithNothingLost_data();
    void aFolderIsPackedWithNothingLost();
    void theOptionsReach7Zip_data();
    void theOptionsReach7Zip();
    void theOutputIsOneLinePerTaskAndASummary();
    void theLogHoldsTheTasksInOrder();
    void theLogNamesTheSystemsListing();
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
    void filesOfNoBytesArePacked();
    void helpSucceeds();
    void aWrongCallIsRefused_data();
    void aWrongCallIsRefused();
    void anArchiveThatExistsIsLeftAsItIs();
    void anArchiveInsideTheFolderIsRefused_data();
    void anArchiveInsideTheFolderIsRefused();
    void anArchiveThatCannotBeWrittenIsRefused_data();
    void anArchiveThatCannotBeWrittenIsRefused();
    void aLogInsideTheFolderIsRefused();
    void aLogThatCannotBeWrittenIsRefused();
    void anEmptyFolderIsRefused_data();
    void anEmptyFolderIsRefused();
    void aNameThat7ZipMisreadsIsRefused_data();
    void aNameThat7ZipMisreadsIsRefused();
    void aNameThatIsNoTextIsRefused();
    void withoutSevenZipTheRunEnds();
    void aFailureLeavesNothing_data();
    void aFailureLeavesNothing();
    void aSignalCancelsTheRun_data();
    void aSignalCancelsTheRun();
    void aCancelOfALargeRunLeavesNothing();
    void theMachineIsLogged();
    void aValueThatIsNotKnownIsCalledUnknown_data();
    void aValueThatIsNotKnownIsCalledUnknown();
    void theSizeOfTheArchiveIsLogged();
    void anArchiveThatChangesIsNoticed();
    void aFolderThatChangesIsNoticed();
    void hiddenFilesAndLinksDoNotCountAsAChange();
    void lengthsThatDifferAreNoticed_data();
    void lengthsThatDifferAreNoticed();
    void theFreeBytesAreLogged();
    void aDiskNeedsRoomForItsFiles_data();
    void aDiskNeedsRoomForItsFiles();
    void aRunWithoutRoomIsRefused();
    void theTemporaryFolderMayLieInTheFolder();
    void withoutATemporaryFolderTheRunEnds();
    void theHeadNodeIsLogged_data();
    void theHeadNodeIsLogged();
    void withoutAHeadNodeTheRunGoesOn_data();
    void withoutAHeadNodeTheRunGoesOn();
    void theClusterIsNotAskedUnlessTold();
};

void TestResultsArchive::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

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
    QCOMPARE(readFile(archive).left(2), QByteArray(isZip ? "PK" : "7z"));

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
    const QString pattern
        = QStringLiteral("^Packed and verified: %1 files, %2 bytes in %3 bytes \\(%4 %\\), "
                         "[0-9:.]+( sec)?: %5$")
              .arg(QString::number(tree.size()), QString::number(sizeOf(tree)),
                   QString::number(packed), QString::number(ratio, 'f', 1),
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
    QVERIFY(lines.contains(QStringLiteral("%1 files, %2 bytes, 0 left out")
                               .arg(QString::number(tree.size()), QString::number(sizeOf(tree)))));
}

void TestResultsArchive::theLogNamesTheSystemsListing()
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
        QSKIP("A path begins with a drive here, which no name can hold.");
    Site site(smallTree());
    site.useRealArchiver();
    QVERIFY(writeFile(
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
    QVERIFY(writeFile(target + QStringLiteral("/inside.txt"), "inside"));
    // The suffix makes it a shortcut on Windows.
    QVERIFY(QFile::link(target, site.dataFile(QStringLiteral("folder.lnk"))));
    QVERIFY(QFile::link(target + QStringLiteral("/inside.txt"),
                        site.dataFile(QStringLiteral("file.lnk"))));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const QStringList lines = site.logLines();
    QVERIFY(lines.contains(QStringLiteral("Left out, neither file nor folder: folder.lnk")));
    QVERIFY(lines.contains(QStringLiteral("Left out, neither file nor folder: file.lnk")));
    QVERIFY(lines.contains(QStringLiteral("1 files, 3 bytes, 2 left out")));
    SevenZip unpacker;
    unpacker.setArchiveFile(site.archive());
    QVERIFY(unpacker.extractFilesTo(site.path(QStringLiteral("unpacked"))));
    QCOMPARE(readTree(site.path(QStringLiteral("unpacked"))), smallTree());
}

void TestResultsArchive::filesOfNoBytesArePacked()
{
    NEED_ARCHIVER;
    Site site({{QStringLiteral("nothing"), QByteArray()}});
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    QVERIFY(site.output().contains(
        QStringLiteral("Packed and verified: 1 files, 0 bytes in %1 bytes (-), ")
            .arg(QFileInfo(site.archive()).size())));
}

void TestResultsArchive::helpSucceeds()
{
    Site site(smallTree());
    QCOMPARE(site.run({QStringLiteral("--help")}), 0);
    for (const char *option :
         {"--archive", "--type", "--method", "--level", "--log", "--cluster-tools", "folder"})
        QVERIFY2(site.output().contains(QLatin1String(option)), option);
    QCOMPARE(site.errors(), QString());
}

void TestResultsArchive::aWrongCallIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QString &arguments, const char *text) {
        QTest::newRow(name) << arguments.split(QLatin1Char('|')) << QString::fromLatin1(text);
    };
    row("no such option", QStringLiteral("--fast|data"), "Unknown option 'fast'.");
    row("no value", QStringLiteral("data|--level"), "Missing value after '--level'.");
    row("no cluster tools", QStringLiteral("data|--cluster-tools"),
        "Missing value after '--cluster-tools'.");
    row("cluster tools missing", QStringLiteral("--cluster-tools|nowhere|data"),
        "The folder of the cluster tool does not exist: nowhere");
    row("cluster tools empty text", QStringLiteral("--cluster-tools||data"),
        "The folder of the cluster tool does not exist: ");
    row("cluster tools no folder", QStringLiteral("--cluster-tools|nodes.txt|data"),
        "The folder of the cluster tool does not exist: nodes.txt");
    row("no folder", QStringLiteral("--level|1"), "Expected one folder; see --help");
    row("two folders", QStringLiteral("data|data"), "Expected one folder; see --help");
    row("folder missing", QStringLiteral("nowhere"), "The folder does not exist: nowhere");
    row("folder empty text", QString(), "The folder does not exist: ");
    row("folder is a file", QStringLiteral("data/a.txt"), nullptr);
    row("type", QStringLiteral("--type|rar|data"), "The type rar is unknown: use 7z or zip");
    row("type in capitals", QStringLiteral("--type|ZIP|data"),
        "The type ZIP is unknown: use 7z or zip");
    row("method", QStringLiteral("--method|PPMd|data"),
        "The method PPMd is unknown: use Copy, Deflate, LZMA, LZMA2 or BZip2");
    row("method in small letters", QStringLiteral("--method|lzma|data"),
        "The method lzma is unknown: use Copy, Deflate, LZMA, LZMA2 or BZip2");
    for (const char *method : {"LZMA", "LZMA2", "BZip2"}) {
        const QByteArray text
            = QByteArray("The method ") + method + " is not for zip archives: use Copy or Deflate";
        row(method, QStringLiteral("--type|zip|--method|%1|data").arg(QLatin1String(method)),
            text.constData());
    }
    row("level too high", QStringLiteral("--level|10|data"), "The level 10 is unknown: use 0 to 9");
    row("level negative", QStringLiteral("--level=-1|data"), "The level -1 is unknown: use 0 to 9");
    row("level no number", QStringLiteral("--level|best|data"),
        "The level best is unknown: use 0 to 9");
}

void TestResultsArchive::aWrongCallIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, text);
    if (text.isNull())
        text = QStringLiteral("The folder does not exist: ") + native(arguments.first());
    Site site(smallTree());
    QVERIFY(writeFile(site.path(QStringLiteral("nodes.txt")), "a file"));
    QCOMPARE(site.run(arguments), 1);
    QCOMPARE(site.errors(), error(text));
    QCOMPARE(site.output(), QString());
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
    QVERIFY(!QFile::exists(site.path(QStringLiteral("data.7z"))));
}

void TestResultsArchive::anArchiveThatExistsIsLeftAsItIs()
{
    Site site(smallTree());
    QVERIFY(writeFile(site.archive(), "precious"));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The archive exists already: ") + native(site.archive())));
    QCOMPARE(readFile(site.archive()), QByteArray("precious"));
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
}

void TestResultsArchive::anArchiveInsideTheFolderIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("inside") << QStringLiteral("data/x.7z");
    QTest::addRow("below") << QStringLiteral("data/sub/x.7z");
    QTest::addRow("below what is missing") << QStringLiteral("data/missing/too/x.7z");
    QTest::addRow("by a detour") << QStringLiteral("out/../data/x.7z");
}

void TestResultsArchive::anArchiveInsideTheFolderIsRefused()
{
    QFETCH(QString, name);
    const Tree tree{{QStringLiteral("sub/a.txt"), "abc"}};
    Site site(tree);
    QCOMPARE(site.run({QStringLiteral("--archive"), name, site.dataFolder()}), 1);
    const QString start = error(QStringLiteral("The archive lies inside the folder: "));
    QVERIFY2(site.errors().startsWith(start.chopped(1)), qPrintable(site.errors()));
    QCOMPARE(site.errors().count(QLatin1Char('\n')), 1);
    QCOMPARE(readTree(site.dataFolder()), tree);
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
}

void TestResultsArchive::anArchiveThatCannotBeWrittenIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("folder missing") << QStringLiteral("missing/x.7z");
    QTest::addRow("folder is a file") << QStringLiteral("file/x.7z");
    QTest::addRow("name too long") << QString(300, QLatin1Char('x')) + QStringLiteral(".7z");
}

void TestResultsArchive::anArchiveThatCannotBeWrittenIsRefused()
{
    QFETCH(QString, name);
    Site site(smallTree());
    QVERIFY(writeFile(site.outFile(QStringLiteral("file")), "x"));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.outFile(name), site.dataFolder()}), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The archive cannot be written: ") + native(site.outFile(name))));
    QCOMPARE(entriesOf(site.outFolder()), QStringList{QStringLiteral("file")});
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
}

void TestResultsArchive::aLogInsideTheFolderIsRefused()
{
    Site site(smallTree());
    const QString log = site.dataFile(QStringLiteral("run.log"));
    QCOMPARE(site.run({QStringLiteral("--log"), log, QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()}),
             1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The log lies inside the folder, use another with --log: ")
                   + native(log)));
    QCOMPARE(readTree(site.dataFolder()), smallTree());
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

void TestResultsArchive::aLogThatCannotBeWrittenIsRefused()
{
    Site site(smallTree());
    const QString log = site.path(QStringLiteral("missing/run.log"));
    QCOMPARE(site.run({QStringLiteral("--log"), log, QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()}),
             1);
    const QString pattern
        = QStringLiteral("^results-archive: The log cannot be written: %1_\\d{4}-\\d\\d-\\d\\d-"
                         "\\d{6}\\.log\n$")
              .arg(QRegularExpression::escape(native(site.path(QStringLiteral("missing/run")))));
    QVERIFY2(QRegularExpression(pattern).match(site.errors()).hasMatch(),
             qPrintable(site.errors()));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

void TestResultsArchive::anEmptyFolderIsRefused_data()
{
    QTest::addColumn<bool>("hasSubfolder");
    QTest::addRow("nothing") << false;
    QTest::addRow("only folders") << true;
}

void TestResultsArchive::anEmptyFolderIsRefused()
{
    QFETCH(bool, hasSubfolder);
    Site site{Tree()};
    if (hasSubfolder)
        QVERIFY(QDir().mkpath(site.dataFile(QStringLiteral("sub/deep"))));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The folder holds no files: ") + native(site.dataFolder())));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::aNameThat7ZipMisreadsIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shownName");
    const auto row = [](const char *name, const char *shownName) {
        QTest::addRow("%s", shownName)
            << QString::fromLatin1(name) << QString::fromLatin1(shownName);
    };
    row("-sdel/x", "-sdel/x");
    row("@list/x", "@list/x");
    if (!onWindows()) { // where no file can be named so
        row("line\nbreak", "line?break");
        row("blank ", "blank ");
    }
}

void TestResultsArchive::aNameThat7ZipMisreadsIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, shownName);
    Site site({{name, "x"}, {QStringLiteral("a.txt"), "abc"}});
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("7-Zip cannot be given this name: ") + shownName));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::aNameThatIsNoTextIsRefused()
{
    if (onWindows())
        QSKIP("Every name is text here.");
    Site site(smallTree());
    const std::string name = QFile::encodeName(site.dataFolder()).toStdString() + "/b\xff";
    QVERIFY(std::ofstream(name).is_open());
    const int exitCode = site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    QCOMPARE(std::remove(name.c_str()), 0); // Qt could not
    QCOMPARE(exitCode, 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The folder contains a name that cannot be read")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::withoutSevenZipTheRunEnds()
{
    Site site(smallTree());
    site.hideArchivers();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("7-Zip cannot be started")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

// The archiver does the same in each of its runs: what it does wrong shows in the first step that
// looks at it.
void TestResultsArchive::aFailureLeavesNothing_data()
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

void TestResultsArchive::aFailureLeavesNothing()
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

void TestResultsArchive::aSignalCancelsTheRun_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<int>("exitCode");
    for (const char *signal : {"INT", "TERM"}) {
        QTest::addRow("%s", signal) << QString::fromLatin1(signal) << 0;
        QTest::addRow("%s, archiver stopped as well", signal) << QString::fromLatin1(signal) << 2;
    }
}

void TestResultsArchive::aSignalCancelsTheRun()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here.");
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
    QTRY_COMPARE_WITH_TIMEOUT(readFile(site.archive()), QByteArray("half an archive"), TimeLimit);

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

void TestResultsArchive::aCancelOfALargeRunLeavesNothing()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here.");
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

void TestResultsArchive::theMachineIsLogged()
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

void TestResultsArchive::aValueThatIsNotKnownIsCalledUnknown_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("text");
    QTest::addRow("unknown") << qint64(-1) << QStringLiteral("unknown");
    QTest::addRow("none") << qint64(0) << QStringLiteral("0 MiB");
    QTest::addRow("some") << qint64(3000000000) << QStringLiteral("3000000000 MiB");
}

void TestResultsArchive::aValueThatIsNotKnownIsCalledUnknown()
{
    QFETCH(qint64, value);
    QTEST(ResultsArchive::measure(value, QStringLiteral("MiB")), "text");
}

void TestResultsArchive::theSizeOfTheArchiveIsLogged()
{
    NEED_ARCHIVER;
    Site site(fewResultsTree());
    site.useRealArchiver();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const qint64 size = QFileInfo(site.archive()).size();
    QVERIFY(site.logLines().contains(QStringLiteral("Packed into %1 bytes").arg(size)));
}

void TestResultsArchive::anArchiveThatChangesIsNoticed()
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
    QTRY_COMPARE_WITH_TIMEOUT(readFile(site.archive()), QByteArray("archive"), TimeLimit);

    archiver.writeFile(site.archive(), "another archive"); // from the next run on
    QVERIFY(archiver.goOn(QStringLiteral("pack")));
    QCOMPARE(site.finish(), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The archive changed: it has 15 bytes instead of 7")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::aFolderThatChangesIsNoticed()
{
    Site site(smallTree());
    FakeArchiver archiver;
    archiver.waitFor(QStringLiteral("check"));
    site.useFakeArchiver(archiver);
    site.start({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    const auto isAsked
        = [&archiver] { return archiver.arguments().value(0) == QLatin1String("l"); };
    QTRY_VERIFY_WITH_TIMEOUT(isAsked(), TimeLimit);
    QVERIFY(writeFile(site.dataFile(QStringLiteral("sub/late.txt")), "later"));
    QVERIFY(archiver.goOn(QStringLiteral("check")));
    QCOMPARE(site.finish(), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The folder is changing: it holds 8 bytes instead of 3")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::hiddenFilesAndLinksDoNotCountAsAChange()
{
    NEED_ARCHIVER;
    Tree tree = smallTree();
    for (const char *name : {".b", ".sub/c", ".sub/deep/d", "sub/.e", "sub/f"})
        tree.insert(QString::fromLatin1(name), name);
    Site site(tree);
    site.useRealArchiver();
    const QString target = site.path(QStringLiteral("target"));
    QVERIFY(writeFile(target + QStringLiteral("/inside.txt"), "inside"));
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
        QStringLiteral("6 files, %1 bytes, 9 left out").arg(sizeOf(tree))));
}

// Although their sum is the same.
void TestResultsArchive::lengthsThatDifferAreNoticed_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addRow("bytes missing") << QByteArray("ab") << QByteArray("def");
    QTest::addRow("bytes added") << QByteArray("abcd") << QByteArray("d");
}

void TestResultsArchive::lengthsThatDifferAreNoticed()
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

void TestResultsArchive::theFreeBytesAreLogged()
{
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 0);
    const QString free = tellsRoom(site.outFolder()) ? QStringLiteral("[1-9]\\d* bytes")
                                                     : QStringLiteral("unknown");
    const QString pattern
        = QStringLiteral("Free for the archive: %1, for the unpacked files: %1").arg(free);
    QCOMPARE(matching(site.logLines(), pattern).size(), 1);
}

void TestResultsArchive::aDiskNeedsRoomForItsFiles_data()
{
    QTest::addColumn<qint64>("archiveFree");
    QTest::addColumn<qint64>("unpackFree");
    QTest::addColumn<bool>("isOneDisk");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, qint64 archiveFree, qint64 unpackFree, bool isOneDisk,
                        qint64 bytes, const char *problem) {
        const QString text = QString::fromLatin1(problem);
        QTest::newRow(name) << archiveFree << unpackFree << isOneDisk << bytes
                            << (text.isEmpty()
                                    ? text
                                    : QStringLiteral("Not enough disk space in ") + text);
    };
    constexpr qint64 Most = std::numeric_limits<qint64>::max();
    row("just enough", 100, 100, false, 100, "");
    row("archive", 99, 100, false, 100, "out: need 100 bytes, have 99");
    row("unpacked files", 100, 99, false, 100, "tmp: need 100 bytes, have 99");
    row("both", 98, 99, false, 100, "out: need 100 bytes, have 98");
    row("one disk, just enough", 200, 200, true, 100, "");
    row("one disk", 199, 199, true, 100, "out: need 200 bytes, have 199");
    row("one disk, two quotas", 200, 199, true, 100, "tmp: need 200 bytes, have 199");
    row("full", 0, 100, false, 1, "out: need 1 bytes, have 0");
    row("full, nothing to pack", 0, 0, true, 0, "");
    row("both unknown", -1, -1, true, 100, "");
    row("archive unknown", -1, 99, false, 100, "tmp: need 100 bytes, have 99");
    row("unpacked files unknown", 99, -1, false, 100, "out: need 100 bytes, have 99");
    row("largest numbers", Most, Most, true, Most,
        "out: need 18446744073709551614 bytes, have 9223372036854775807");
}

void TestResultsArchive::aDiskNeedsRoomForItsFiles()
{
    QFETCH(qint64, archiveFree);
    QFETCH(qint64, unpackFree);
    QFETCH(bool, isOneDisk);
    QFETCH(qint64, bytes);
    const ResultsArchive::DiskSpace space{QStringLiteral("out"), QStringLiteral("tmp"), archiveFree,
                                          unpackFree, isOneDisk};
    QTEST(ResultsArchive::diskSpaceProblem(space, bytes), "problem");
}

// With a file that is larger than what is free and takes no room itself.
void TestResultsArchive::aRunWithoutRoomIsRefused()
{
    constexpr qint64 More = qint64(64) << 30;
    Site site(smallTree());
    if (!tellsRoom(site.outFolder()))
        QSKIP("The system does not tell how much room there is.");
    FakeArchiver archiver;
    site.useFakeArchiver(archiver);
    QFile file(site.dataFile(QStringLiteral("large")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    if (!file.resize(QStorageInfo(site.outFolder()).bytesAvailable() + More))
        QSKIP("This file system has no files that take less room than their size.");
    file.close();
    const int exitCode = site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    const QString pattern
        = QStringLiteral("^results-archive: Not enough disk space in %2: need %1 bytes, "
                         "have \\d+\n$")
              .arg(QString::number(2 * (file.size() + 3)),
                   QRegularExpression::escape(native(site.outFolder())));
    QVERIFY(file.remove());
    QVERIFY2(QRegularExpression(pattern).match(site.errors()).hasMatch(),
             qPrintable(site.errors()));
    QCOMPARE(exitCode, 1);
    QCOMPARE(archiver.arguments().value(0), QStringLiteral("l")); // not "a"
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::theTemporaryFolderMayLieInTheFolder()
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

void TestResultsArchive::withoutATemporaryFolderTheRunEnds()
{
    Site site(smallTree());
    FakeArchiver archiver;
    site.useFakeArchiver(archiver);
    const QString temp = site.path(QStringLiteral("file"));
    QVERIFY(writeFile(temp, "no folder"));
    site.useTempFolder(temp);
    QCOMPARE(site.run({QStringLiteral("--log"), site.path(QStringLiteral("run.log")),
                       QStringLiteral("--archive"), site.archive(), site.dataFolder()}),
             1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("A temporary folder cannot be made in ") + native(temp)));
    QCOMPARE(archiver.arguments().value(0), QStringLiteral("l")); // not "a"
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

void TestResultsArchive::theHeadNodeIsLogged_data()
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

void TestResultsArchive::theHeadNodeIsLogged()
{
    QFETCH(QByteArray, nodes);
    QFETCH(QString, line);
    Site site(smallTree());
    FakeArchiver archiver;
    makeGood(archiver, site);
    site.useFakeArchiver(archiver);
    site.useClusterTool(nodes);
    QVERIFY(writeFile(site.path(QStringLiteral("record")), QByteArray()));
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
    QCOMPARE(readFile(site.path(QStringLiteral("record"))),
             QByteArray("NodeInformation.exe|-q|-cluster\n"));
    QCOMPARE(entriesOf(site.path(QStringLiteral("tools"))),
             QStringList(QStringLiteral("NodeInformation.exe")));
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchive::withoutAHeadNodeTheRunGoesOn_data()
{
    QTest::addColumn<bool>("hasTool");
    QTest::addColumn<QByteArray>("nodes");
    QTest::addRow("no tool") << false << QByteArray();
    QTest::addRow("silent tool") << true << QByteArray();
    QTest::addRow("compute nodes only") << true << QByteArray("c1:16:2:64:ComputeNodes\n");
    QTest::addRow("error") << true << QByteArray("Error: no cluster\nh1:8:1:32:HeadNodes\n");
}

void TestResultsArchive::withoutAHeadNodeTheRunGoesOn()
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

void TestResultsArchive::theClusterIsNotAskedUnlessTold()
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

QTEST_GUILESS_MAIN(TestResultsArchive)
#include "tst_resultsarchive.moc"
