// Runs the samples of the documentation.

#include "BuildPaths.h"
#include "FakeArchiver.h"
#include "Samples.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/AsyncTask.h>
#include <Utility/Log.h>
#include <Utility/Registry.h>
#include <Utility/UnicodeFile.h>

#include <QtTest/QtTest>
#include <QtXml/QDomDocument>

#include <array>

using namespace Vorn::Util;

class TestSamples : public TestInFolder
{
    Q_OBJECT

private Q_SLOTS:
    void init() override { TestInFolder::init(); }
    void cleanup() override { TestInFolder::cleanup(); }

    void aLogGetsALine();
    void tasksRunInTheirOrder();
    void aTaskEndsWithItsProgram_data();
    void aTaskEndsWithItsProgram();
    void aSyncTaskCallsItsMethod();
    void aCancelSkipsToTheCleanUpTask();
    void aCommandReturnsItsOutput();
    void anArchiveGetsTheNamesBelowItsFolder();
    void aPoolGetsAThreadForEachCore();
    void theLoadIsAPercentage();
    void theClusterAndItsNodesAreRead();
    void aScratchFileIsNew();
    void theInstallationFolderIsRead();
    void aFileHasAnAsciiPathForAWhile();
    void anOldVersionIsConverted();
    void anEnumIsFoundByItsName();
    void anElementIsReadBack();
    void aTextIsConvertedAndBack();

    void theProgramOfTheReadmePacksItsSources();

private:
    QString logText() const { return QString::fromUtf8(contentOf(path("samples.log"))); }
};

void TestSamples::aLogGetsALine()
{
    Samples::writeLog(testFolder());
    const QStringList logs = entriesOf(testFolder());
    QCOMPARE(logs.size(), 1);
    QVERIFY(logs.first().startsWith(QLatin1String("run_20")));
    QVERIFY(contentOf(path(logs.first())).contains("] Mesh read"));
}

void TestSamples::tasksRunInTheirOrder()
{
    Log log(path("samples.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    Samples::Worker worker;
    QCOMPARE(Samples::runTasks(*QCoreApplication::instance(), worker, log), 0);
    QCOMPARE(
        worker.done,
        QStringList({QStringLiteral("mesh"), QStringLiteral("solve"), QStringLiteral("cleanUp")}));
    QVERIFY(logText().contains(QLatin1String("Finished processing tasks in ")));
}

void TestSamples::aTaskEndsWithItsProgram_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("line");
    const QString helper = BuildPaths::helperProgram();
    QTest::newRow("success") << helper << QStringList{QStringLiteral("exit"), QStringLiteral("0")}
                             << 0 << QStringLiteral("Task finished in ");
    QTest::newRow("exit code") << helper << QStringList{QStringLiteral("exit"), QStringLiteral("3")}
                               << 1 << QStringLiteral("error = Exit code 3");
    QTest::newRow("no such program") << QStringLiteral("no-such-program") << QStringList() << 1
                                     << QStringLiteral("Task finished with errors in ");
}

void TestSamples::aTaskEndsWithItsProgram()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    QFETCH(QString, line);
    Log log(path("samples.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    const QPointer<AsyncTask> task = Samples::makeRunProgram(program, arguments);
    QTEST(Samples::runTask(*QCoreApplication::instance(), task, log), "result");
    QVERIFY(!task);
    QVERIFY2(logText().contains(line), qPrintable(logText()));
}

void TestSamples::aSyncTaskCallsItsMethod()
{
    Samples::Worker worker;
    QCOMPARE(Samples::runUpdate(*QCoreApplication::instance(), worker), 0);
    QCOMPARE(worker.done, QStringList(QStringLiteral("update")));
}

void TestSamples::aCancelSkipsToTheCleanUpTask()
{
    Log log(path("samples.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    Samples::Worker worker;
    QCOMPARE(Samples::cancelAtOnce(*QCoreApplication::instance(), worker, log), 0);
    QCOMPARE(worker.done, QStringList({QStringLiteral("mesh"), QStringLiteral("cleanUp")}));
    QVERIFY(logText().contains(QLatin1String("Task processing has been canceled")));
}

void TestSamples::aCommandReturnsItsOutput()
{
    Log log(path("samples.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    const QStringList lines = Samples::runCommand(log);
    QCOMPARE(lines.last().trimmed(), QStringLiteral("done"));
    QVERIFY(logText().contains(QLatin1String(" output:done")));
}

void TestSamples::anArchiveGetsTheNamesBelowItsFolder()
{
    FakeArchiver archiver;
    QVERIFY(Samples::compress(testFolder()));
    QVERIFY(archiver.arguments().contains(QStringLiteral("mesh.dat")));
    QVERIFY(archiver.arguments().contains(QStringLiteral("log.txt")));
}

void TestSamples::aPoolGetsAThreadForEachCore()
{
    Log log(path("samples.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QThreadPool pool;
    const int cores = Samples::setThreadCount(pool, log, testFolder());
    QVERIFY(cores >= 1);
    QCOMPARE(pool.maxThreadCount(), cores);
}

void TestSamples::theLoadIsAPercentage()
{
    const long percent = Samples::measureLoad();
    QVERIFY(percent >= 0);
    QVERIFY(percent <= 100);
}

void TestSamples::theClusterAndItsNodesAreRead()
{
    QVERIFY(writeFile(path("nodes"), "h1:8:1:32:HeadNodes\ncn1:16:2:64:ComputeNodes\n"));
    qputenv("FAKE_NODES", QFile::encodeName(path("nodes")));
    qputenv("FAKE_NODES_RECORD", QFile::encodeName(path("record")));
    Log log(path("samples.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    const QString toolFolder = QFileInfo(BuildPaths::fakeClusterTool()).path();
    QCOMPARE(Samples::submitToCluster(log, toolFolder), QStringLiteral("h1 16"));
    QVERIFY(logText().endsWith(QLatin1String("] cn1:16:2:64\n"))
            || logText().endsWith(QLatin1String("] cn1:16:2:64\r\n")));
}

void TestSamples::aScratchFileIsNew()
{
    const QString name = Samples::makeScratchFile();
    QVERIFY(name.endsWith(QLatin1String(".dat")));
    QCOMPARE(contentOf(name), QByteArray());
    QVERIFY(QFile::remove(name));
}

void TestSamples::theInstallationFolderIsRead()
{
    std::array<wchar_t, 1024> folder{};
    Registry::readProductInstallationFolder(folder.data(), nullptr);
    QCOMPARE(Samples::readInstallationFolder(), QString::fromWCharArray(folder.data()));
}

void TestSamples::aFileHasAnAsciiPathForAWhile()
{
    const QString name = path(QStringLiteral("Tr\u00e4ger.dat"));
    QVERIFY(writeFile(name, "beam"));
    const QString asciiPath = Samples::solveInAscii(testFolder());
    QVERIFY(!asciiPath.isEmpty());
    QVERIFY(!UnicodeFile::isUnicode(QFileInfo(asciiPath).fileName()));
    QVERIFY(!QFile::exists(asciiPath));
    QCOMPARE(contentOf(name), QByteArray("beam"));
}

void TestSamples::anOldVersionIsConverted()
{
    QVERIFY(Samples::needsConversion(Version(23, 1, 12)));
    QVERIFY(!Samples::needsConversion(Version::Current));
}

void TestSamples::anEnumIsFoundByItsName()
{
    QCOMPARE(Samples::valueOfGreen(), 1);
}

void TestSamples::anElementIsReadBack()
{
    QDomDocument document;
    document.appendChild(document.createElement(QStringLiteral("machine")));
    QCOMPARE(Samples::readCores(document), 8);
}

void TestSamples::aTextIsConvertedAndBack()
{
    std::string name;
    QCOMPARE(Samples::convertText(name), QStringLiteral("Tr\u00e4ger.dat"));
    QCOMPARE(name, std::string("Tr\xc3\xa4ger.dat"));
}

void TestSamples::theProgramOfTheReadmePacksItsSources()
{
    const QString program = BuildPaths::smallExample(QStringLiteral("pack"));
    if (onWindows() && !QFile::exists(QFileInfo(program).path() + QStringLiteral("/7z.exe")))
        QSKIP("There is no 7z.exe beside the program");
    qint64 size = 0;
    for (const QString &name : {QStringLiteral("main.cpp"), QStringLiteral("CMakeLists.txt")}) {
        const QString source = BuildPaths::samples() + QStringLiteral("/pack/") + name;
        QVERIFY(QFile::copy(source, path(name)));
        size += QFileInfo(source).size();
    }
    QProcess process;
    process.setWorkingDirectory(testFolder());
    process.start(program, QStringList());
    QVERIFY2(process.waitForFinished(60000), qPrintable(process.errorString()));

    const QStringList logs = QDir(testFolder()).entryList({QStringLiteral("pack_20*.log")});
    QCOMPARE(logs.size(), 1);
    const QByteArray log = contentOf(path(logs.first()));
    QVERIFY2(log.contains("] Packed " + QByteArray::number(size) + " bytes"), log.constData());
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(contentOf(path(QStringLiteral("source.7z"))).startsWith("7z"));
}

QTEST_GUILESS_MAIN(TestSamples)
#include "tst_samples.moc"
