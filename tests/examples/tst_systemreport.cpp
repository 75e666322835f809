// The program system-report: its values, its page and its command line.

#include "../system/TestSettings.h"
#include "BuildPaths.h"
#include "OwnTempFolder.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/CpuInfo.h>
#include <Utility/System.h>
#include <Utility/Version.h>

#include <QtCore/QDateTime>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRegularExpression>
#include <QtCore/QSysInfo>
#include <QtCore/QThread>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

constexpr int TimeLimit = 60000; // milliseconds
constexpr int ToolTime = 45;     // seconds, of the cluster tool that does not end

const QString ProductKey = QStringLiteral("SOFTWARE\\Vantorel\\VORN\\24.0");

struct Outcome
{
    int exitCode = -1;
    qint64 id = 0;
    QString printed;
    QString errors;

    // The rest of the first line that begins with this name; null if there is none.
    QString value(const QString &name) const
    {
        const QStringList lines = printed.split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            if (line.startsWith(name + QStringLiteral("  ")))
                return line.mid(name.size()).trimmed();
        }
        return QString();
    }
};

QString text(QByteArray bytes)
{
    return QString::fromLocal8Bit(bytes.replace("\r\n", "\n"));
}

// The product's folders that the program uses and creates.
void insertFolders(QProcessEnvironment &environment, const QString &folder)
{
    environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), folder + QStringLiteral("/settings"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), folder + QStringLiteral("/data"));
    environment.insert(QStringLiteral("PUBLIC"), folder + QStringLiteral("/public"));
}

} // namespace

class TestSystemReport : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() override;
    void cleanup() override;

    void theValuesAreThoseOfTheLibrary();
    void theValuesAreThoseOfTheSystem();
    void theReportBeginsWithItsTitle();
    void settingsAreReported();
    void aMissingSettingIsExplained();
    void aHostileSettingIsEscaped();
    void setFlagsAreReported();
    void theClusterIsReported();
    void withoutAClusterToolTheClusterIsLeftOut();
    void aToolWithoutNodesIsExplained();
    void thePageHasTheSameNumberOfPointsAsSamples();
    void noValueOfAVariableIsInThePage();
    void anOlderPageIsReplaced();
    void aPageThatCannotBeWrittenIsAnError();
    void withoutATemporaryFolderThereIsNoReport();
    void aWrongCommandLineIsRefused_data();
    void aWrongCommandLineIsRefused();
    void theHelpNamesTheOptions();
    void aToolThatDoesNotEndIsNotWaitedFor(); // the last, because it takes half a minute

private:
    Outcome run(const QStringList &arguments,
                const QString &program = BuildPaths::systemReport()) const;
    QString slowFile() const { return slowFolder_.filePath(QStringLiteral("report.txt")); }

    QProcessEnvironment environment_;
    TestFolder slowFolder_;
    QProcess slow_; // a report with a cluster tool that does not end
    QDateTime slowStart_;
};

// Runs beside the tests, because it takes half a minute.
void TestSystemReport::initTestCase()
{
    QVERIFY(QFile::copy(BuildPaths::fakeClusterTool(),
                        slowFolder_.filePath(QStringLiteral("NodeInformation.exe"))));
    QVERIFY(writeFile(slowFolder_.filePath(QStringLiteral("nodes")), "n1:16:2:64:ComputeNodes\n"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FAKE_NODES"), slowFolder_.filePath(QStringLiteral("nodes")));
    environment.insert(QStringLiteral("FAKE_NODES_RECORD"),
                       slowFolder_.filePath(QStringLiteral("record")));
    environment.insert(QStringLiteral("FAKE_NODES_SECONDS"), QString::number(ToolTime));
    insertFolders(environment, slowFolder_.path());
    slow_.setProcessEnvironment(environment);
    slow_.setWorkingDirectory(slowFolder_.path());
    slow_.setStandardOutputFile(slowFile());
    slowStart_ = QDateTime::currentDateTime();
    slow_.start(BuildPaths::systemReport(),
                {QStringLiteral("--seconds"), QStringLiteral("1"),
                 QStringLiteral("--cluster-tools"), slowFolder_.path()});
}

void TestSystemReport::init()
{
    TestWithFolder::init();
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, path("settings"));
    environment_ = QProcessEnvironment::systemEnvironment();
    insertFolders(environment_, testFolder());
}

void TestSystemReport::cleanup()
{
    QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel\\VORN")));
    if (onWindows())
        QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel")));
    TestWithFolder::cleanup();
}

Outcome TestSystemReport::run(const QStringList &arguments, const QString &program) const
{
    QProcess process;
    process.setProcessEnvironment(environment_);
    process.setWorkingDirectory(testFolder());
    process.start(program,
                  QStringList{QStringLiteral("--seconds"), QStringLiteral("1")} + arguments);
    Outcome outcome;
    process.waitForStarted();
    outcome.id = process.processId();
    const bool hasEnded
        = process.waitForFinished(TimeLimit) && process.exitStatus() == QProcess::NormalExit;
    outcome.exitCode = hasEnded ? process.exitCode() : -1;
    outcome.printed = text(process.readAllStandardOutput());
    outcome.errors = text(process.readAllStandardError());
    return outcome;
}

void TestSystemReport::theValuesAreThoseOfTheLibrary()
{
    const CpuInfo cpu(nullptr, testFolder());
    const Outcome report = run({});
    QCOMPARE(report.errors, QString());
    QCOMPARE(report.exitCode, 0);
    QCOMPARE(report.value(QStringLiteral("Library, running")), Version::Current.toString());
    QCOMPARE(report.value(QStringLiteral("Cores")), QString::number(cpu.coreCount()));
    QCOMPARE(report.value(QStringLiteral("Processors")), QString::number(cpu.processorCount()));
    QCOMPARE(report.value(QStringLiteral("Machine")), System::getHostName());
    QCOMPARE(report.value(QStringLiteral("User")), System::getUserName());
    QCOMPARE(report.value(QStringLiteral("User interface")), System::getLocale());
    QCOMPARE(report.value(QStringLiteral("Identifier")), QString::number(System::getLocaleID()));
}

// The program has a name of its own, because the report tells the first process with its name.
void TestSystemReport::theValuesAreThoseOfTheSystem()
{
    const QString self = QStringLiteral("own-") + QFileInfo(BuildPaths::systemReport()).fileName();
    const QString program = testFolder() + QLatin1Char('/') + self;
    QVERIFY(QFile::copy(BuildPaths::systemReport(), program));
    const Outcome report = run({}, program);
    QCOMPARE(report.value(QStringLiteral("Kernel")),
             QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion());
    QCOMPARE(report.value(QStringLiteral("Qt, running")), QString::fromLatin1(qVersion()));
    QCOMPARE(report.value(self), QStringLiteral("running, process %1").arg(report.id));
    QCOMPARE(report.value(QStringLiteral("Threads for this program")),
             QString::number(QThread::idealThreadCount()));
    if (onWindows())
        return; // "uname" is a program of other systems
    QProcess tool;
    tool.start(QStringLiteral("uname"), {QStringLiteral("-r")});
    QVERIFY(tool.waitForFinished());
    QVERIFY(report.value(QStringLiteral("Kernel"))
                .endsWith(text(tool.readAllStandardOutput()).trimmed()));
}

// What the library prints for a missing setting does not come before the report.
void TestSystemReport::theReportBeginsWithItsTitle()
{
    const Outcome report = run({});
    QVERIFY2(report.printed.startsWith(
                 QStringLiteral("System report of %1, ").arg(System::getHostName())),
             qPrintable(report.printed.left(200)));
}

void TestSystemReport::settingsAreReported()
{
    QVERIFY(writeSetting(ProductKey, QStringLiteral("Locale"), QStringLiteral("de-DE")));
    const Outcome report = run({});
    QCOMPARE(report.value(QStringLiteral("User interface")), QStringLiteral("de-DE"));
    QCOMPARE(report.value(QStringLiteral("Identifier")), QStringLiteral("1031"));
    QCOMPARE(report.value(QStringLiteral("Locale")), QStringLiteral("de-DE"));
}

void TestSystemReport::aMissingSettingIsExplained()
{
    const Outcome report = run({});
    const QString value = report.value(QStringLiteral("AnalyzeDirectory"));
    QVERIFY2(value.startsWith(QLatin1String("(not set: Reg")), qPrintable(value));
}

void TestSystemReport::aHostileSettingIsEscaped()
{
    const QString hostile = QStringLiteral("</td><script>alert(1)</script>");
    QVERIFY(writeSetting(ProductKey, QStringLiteral("AnalyzeDirectory"), hostile));
    QCOMPARE(run({QStringLiteral("--html"), QStringLiteral("page.html")}).exitCode, 0);
    const QByteArray page = contentOf(path("page.html"));
    QVERIFY(page.contains("&lt;/td&gt;&lt;script&gt;alert(1)&lt;/script&gt;"));
    QVERIFY(!page.contains("<script"));
}

void TestSystemReport::setFlagsAreReported()
{
    if (onWindows())
        QSKIP("The folder of the flags cannot be moved to the test's folder on Windows");
    QVERIFY(writeFileInFolder(path("data/Vantorel/VORN 2024/Flags/VORN_flags.txt"),
                              "TraceSolver on\n\nKeepFiles\n"));
    const Outcome report = run({});
    QCOMPARE(report.value(QStringLiteral("TraceSolver")), QStringLiteral("set"));
    QCOMPARE(report.value(QStringLiteral("KeepFiles")), QStringLiteral("set"));
}

void TestSystemReport::theClusterIsReported()
{
    QVERIFY(QFile::copy(BuildPaths::fakeClusterTool(), path("NodeInformation.exe")));
    QVERIFY(writeFile(path("nodes"), "head:8:2:64:HeadNodes\nn<1>:16:2:64:ComputeNodes\n"));
    environment_.insert(QStringLiteral("FAKE_NODES"), path("nodes"));
    environment_.insert(QStringLiteral("FAKE_NODES_RECORD"), path("record"));
    const Outcome report = run({QStringLiteral("--cluster-tools"), testFolder()});
    QVERIFY2(report.printed.contains(QLatin1String("Compute nodes: 1, cores: 16.\n")),
             qPrintable(report.printed));
    QCOMPARE(report.value(QStringLiteral("n<1>")).simplified(),
             QStringLiteral("compute node 16 2 64"));
    QVERIFY(!QFile::exists(path("work.bat")));
}

void TestSystemReport::withoutAClusterToolTheClusterIsLeftOut()
{
    const Outcome report = run({QStringLiteral("--cluster-tools"), testFolder()});
    QCOMPARE(report.exitCode, 0);
    QVERIFY(report.printed.contains(QLatin1String("Left out: there is no cluster tool in ")));
}

void TestSystemReport::aToolWithoutNodesIsExplained()
{
    QVERIFY(writeFile(path("NodeInformation.exe"), "this is no program\n"));
    const Outcome report = run({QStringLiteral("--cluster-tools"), testFolder()});
    QCOMPARE(report.exitCode, 0);
    QVERIFY(report.printed.contains(QLatin1String("Left out: the cluster tool named no node.\n")));
}

// What the tool has printed until then is in the report.
void TestSystemReport::aToolThatDoesNotEndIsNotWaitedFor()
{
    slow_.waitForFinished(TimeLimit);
    QCOMPARE(slow_.state(), QProcess::NotRunning);
    QCOMPARE(slow_.exitStatus(), QProcess::NormalExit);
    QCOMPARE(slow_.exitCode(), 0);
    // The report is printed at the end.
    const qint64 time = slowStart_.msecsTo(QFileInfo(slowFile()).lastModified());
    QVERIFY2(time >= 30000 && time < ToolTime * 1000, QByteArray::number(time).constData());
    const QString report = text(contentOf(slowFile()));
    QVERIFY2(report.contains(QLatin1String("Compute nodes: 1, cores: 16.\n")),
             qPrintable(report.mid(report.indexOf(QLatin1String("Cluster")))));
}

void TestSystemReport::thePageHasTheSameNumberOfPointsAsSamples()
{
    QCOMPARE(run({QStringLiteral("--html"), QStringLiteral("page.html")}).exitCode, 0);
    const QString page = QString::fromUtf8(contentOf(path("page.html")));
    QVERIFY(page.contains(QRegularExpression(QStringLiteral("4 samples in \\d+ s\\."))));
    // Wine knows only the counter of the processors.
    const int pictures = page.contains(QLatin1String("The system reports no values")) ? 1 : 2;
    QCOMPARE(page.count(QLatin1String("<circle class=\"point\"")), 4 * pictures);
    if (!onWindows())
        QCOMPARE(pictures, 2);
}

void TestSystemReport::noValueOfAVariableIsInThePage()
{
    environment_.insert(QStringLiteral("PASSWORD"), QStringLiteral("secret-4711"));
    QCOMPARE(run({QStringLiteral("--html"), QStringLiteral("page.html")}).exitCode, 0);
    const QByteArray page = contentOf(path("page.html"));
    QVERIFY(page.contains("It does not contain"));
    QVERIFY(!page.contains("secret-4711"));
}

void TestSystemReport::anOlderPageIsReplaced()
{
    QVERIFY(writeFile(path("page.html"), "older"));
    QCOMPARE(run({QStringLiteral("--html"), QStringLiteral("page.html")}).exitCode, 0);
    QVERIFY(contentOf(path("page.html")).startsWith("<!DOCTYPE html>"));
    QVERIFY(contentOf(path("page.html")).endsWith("</html>\n"));
    QCOMPARE(entriesOf(testFolder()).filter(QStringLiteral("page")),
             QStringList(QStringLiteral("page.html")));
}

void TestSystemReport::aPageThatCannotBeWrittenIsAnError()
{
    const Outcome outcome = run({QStringLiteral("--html"), QStringLiteral("missing/page.html")});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.printed, QString());
    QVERIFY2(
        outcome.errors.startsWith(QLatin1String("system-report: The page cannot be written: ")),
        qPrintable(outcome.errors));
}

// Without one the settings would look empty, and the numbers of processors could be those of an
// earlier day.
void TestSystemReport::withoutATemporaryFolderThereIsNoReport()
{
    const QString temp = QDir::toNativeSeparators(path("file"));
    QVERIFY(writeFile(temp, "no folder"));
    for (const char *variable : TempVariables)
        environment_.insert(QString::fromLatin1(variable), temp);
    const Outcome outcome = run({});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.printed, QString());
    QCOMPARE(outcome.errors,
             QStringLiteral("system-report: A temporary folder cannot be made in %1\n").arg(temp));
}

void TestSystemReport::aWrongCommandLineIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const char *arguments, const char *message) {
        QTest::newRow(name) << QString::fromLatin1(arguments).split(QLatin1Char(' '))
                            << QString::fromLatin1(message);
    };
    row("unknown", "--fast", "Unknown option 'fast'.");
    row("word", "report", "Expected only options; see --help");
    row("no time", "--seconds 0", "The number of seconds 0 is not valid: use 1 to 3600");
    row("too long", "--seconds 3601", "The number of seconds 3601 is not valid: use 1 to 3600");
    row("no number", "--seconds x", "The number of seconds x is not valid: use 1 to 3600");
    row("no folder", "--cluster-tools missing",
        "The folder of the cluster tool does not exist: missing");
    row("a folder", "--html .", "The page is not a file: .");
    row("standard output", "--html -", "The page has no file name");
}

void TestSystemReport::aWrongCommandLineIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.printed, QString());
    QCOMPARE(outcome.errors, QStringLiteral("system-report: %1\n").arg(message));
}

void TestSystemReport::theHelpNamesTheOptions()
{
    const Outcome outcome = run({QStringLiteral("--help")});
    QCOMPARE(outcome.exitCode, 0);
    for (const char *option : {"--seconds", "--cluster-tools", "--html", "Exit codes"})
        QVERIFY2(outcome.printed.contains(QLatin1String(option)), option);
}

QTEST_GUILESS_MAIN(TestSystemReport)
#include "tst_systemreport.moc"
