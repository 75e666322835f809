// Runs a parameter study: what becomes of the cases, the results, a cancel and a resumed study.

#include "TestWithStudy.h"

#include <Utility/SevenZip.h>

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestClusterStudy : public TestWithStudy
{
    Q_OBJECT

private Q_SLOTS:
    void everyCaseRunsInAFolderOfItsOwn();
    void argumentsAndVariablesHaveTheExactValues();
    void theResultsAreInTheTable();
    void resultsThatAreIgnoredAreInTheLog();
    void theSummaryIsShownWithoutAnArchive();
    void everythingIsInTheArchive();
    void filesThatAreNotPackedAreCounted();
    void theArchiveIsKeptWhenAFileCannotBeRead();
    void aFailedCaseIsARow_data();
    void aFailedCaseIsARow();
    void aProgramThatCannotBeStartedIsAFailedCase();
    void anEndThatCannotBeWrittenStopsTheStudy();
    void aCaseThatRemovesItsFolderDoesNotStopTheStudy();
    void muchOutputGoesToTheFile();
    void casesRunSideBySide_data();
    void casesRunSideBySide();
    void theOutputEndsWithASummary();
    void theLogHoldsEachCase();
    void aSignalEndsTheCases_data();
    void aSignalEndsTheCases();
    void aCancelledStudyIsPackedAndCanBeResumed();
    void aKilledStudyIsResumed();
    void anArchiveIsReplacedAndAnIncompleteOneRemoved();
    void onlyCasesThatHaveNotSucceededAreResumed();
    void pipesAndBrokenLinksOfACaseAreRemoved();
    void aCaseWhoseFolderCannotBeRemovedHasFailed();
    void aStudyOfSeveralHundredCasesIsPackedWhole();
};

void TestClusterStudy::everyCaseRunsInAFolderOfItsOwn()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\na\nb\nc\n");
    QCOMPARE(site.runCases({}, list("print {x}{case} error e{x} count here")), 0);
    QCOMPARE(site.errors(), QString());
    QCOMPARE(site.states(), list("ok ok ok"));
    QCOMPARE(site.column(text("exit_code")), list("0 0 0"));
    QCOMPARE(entriesOf(site.output()),
             list("cases results.7z results.csv study.json study.log times.svg"));
    QCOMPARE(entriesOf(site.output(text("cases"))),
             list("0001 0001.json 0002 0002.json 0003 0003.json"));
    const Tree second = readTree(site.output(text("cases/0002")));
    QCOMPARE(QStringList(second.keys()), list("here study-errors.txt study-output.txt"));
    QCOMPARE(second.value(text("study-output.txt")), QByteArray("b2\n"));
    QCOMPARE(second.value(text("study-errors.txt")), QByteArray("eb\n"));
    const QByteArray end = contentOf(site.output(text("cases/0002.json")));
    QCOMPARE(QJsonDocument::fromJson(end).object().value(text("state")).toString(), text("ok"));
}

void TestClusterStudy::argumentsAndVariablesHaveTheExactValues()
{
    NEED_ARCHIVER;
    StudySite site;
    const QStringList values{
        text("a b"),     text("\"quoted\""), text("$(exit 3) ; & | > x"),
        text("%PATH%^"), text("back\\"),     text("{Value}"),
        text("*?"),      text("-n"),         QString::fromUtf8("\xEF\xBB\xBFz")};
    QByteArray csv = "Value\n";
    for (const QString &value : values)
        csv += ClusterStudy::csvLine({value});
    site.writeCases(csv);
    QCOMPARE(site.runCases({},
                           list("print {Value} print [{Value}] variable STUDY_VALUE "
                                "variable STUDY_CASE")),
             0);
    QCOMPARE(site.column(text("Value")), values);
    for (int index = 0; index < values.size(); ++index) {
        const QString output = site.output(text("cases/000%1/study-output.txt").arg(index + 1));
        QCOMPARE(QString::fromUtf8(contentOf(output)),
                 text("%1\n[%1]\n%1\n%2\n").arg(values.at(index), QString::number(index + 1)));
    }
}

void TestClusterStudy::theResultsAreInTheTable()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("load,name\r\n1.5,\"a,b\"\r\n2,c\r\n");
    QCOMPARE(site.runCases({},
                           list("result sum={load}{case} result odd result name=x "
                                "result {case}=last")),
             0);
    QVERIFY(contentOf(site.output(text("results.csv")))
                .startsWith("case,load,name,state,exit_code,seconds,error,sum,1,2\n"
                            "1,1.5,\"a,b\",ok,0,"));
    QCOMPARE(site.column(text("sum")), list("1.51 22"));
    QCOMPARE(site.column(text("1")), QStringList({text("last"), QString()}));
    QVERIFY(contentOf(site.output(text("times.svg"))).endsWith("</svg>\n"));
}

void TestClusterStudy::resultsThatAreIgnoredAreInTheLog()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2000000\n");
    QCOMPARE(site.runCases({}, list("result x=5 result state=5 result y=5 long-result {x}")), 0);
    QCOMPARE(site.column(text("y")), QStringList({text("5"), QString()}));
    const QString log = asText(contentOf(site.output(text("study.log"))));
    QVERIFY(log.contains(text("Results with the name of another column are not in the table: x, "
                              "state\n")));
    QVERIFY(log.contains(text("Case 2: result.txt has more than 1048576 bytes and is not read\n")));
}

void TestClusterStudy::theSummaryIsShownWithoutAnArchive()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    QCOMPARE(site.runCases({}, {text("folder"), text("../../results.7z/in-the-way")}), 1);
    QVERIFY2(site.errors().contains(text("results.7z cannot be ")), qPrintable(site.errors()));
    const QString summary = text("1 cases: 1 ok, 0 failed, 0 cancelled, 0 missing, in ");
    QVERIFY(site.printed().contains(summary));
    QVERIFY(asText(contentOf(site.output(text("study.log")))).contains(summary));
}

void TestClusterStudy::everythingIsInTheArchive()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n0\n");
    QCOMPARE(site.runCases({}, list("result x={x} exit {x}")), 2);
    SevenZip archive;
    archive.setArchiveFile(site.output(text("results.7z")));
    QVERIFY(archive.extractFilesTo(site.path(text("unpacked"))));
    Tree expected = readTree(site.output());
    for (const char *name : {"results.7z", "study.json", "study.log"})
        QCOMPARE(expected.remove(text(name)), 1);
    QCOMPARE(expected.size(), 2 + 2 * 4);
    QCOMPARE(readTree(site.path(text("unpacked"))), expected);
}

void TestClusterStudy::filesThatAreNotPackedAreCounted()
{
    if (onWindows())
        QSKIP("No name ends with a quotation mark here");
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    QCOMPARE(site.runCases({}, list("count mark\"")), 0);
    QVERIFY2(site.printed().contains(text("; 2 entries were not packed, see study.log\n")),
             qPrintable(site.printed()));
    QVERIFY(
        asText(contentOf(site.output(text("study.log"))))
            .contains(text("Not packed: cases/0002/mark\": 7-Zip cannot be given this name\n")));
}

// 7-Zip reports a file that is removed before it is read with the same exit code as one that cannot
// be read.
void TestClusterStudy::theArchiveIsKeptWhenAFileCannotBeRead()
{
    if (onWindows())
        QSKIP("7-Zip is started by a shell script here");
    NEED_ARCHIVER;
    StudySite site;
    site.wrapArchiver("rm -f cases/0001/gone\n");
    site.writeCases("x\n1\n2\n");
    QCOMPARE(site.runCases({}, list("count gone count here")), 0);
    QVERIFY2(site.printed().contains(text("Some files could not be packed, see study.log\n")),
             qPrintable(site.printed()));
    QVERIFY(asText(contentOf(site.output(text("study.log")))).contains(text("cases/0001/gone")));
    SevenZip archive;
    archive.setArchiveFile(site.output(text("results.7z")));
    QVERIFY(archive.listFiles());
    QVERIFY(archive.files().contains(text("cases/0001/here")));
    QVERIFY(archive.files().contains(text("cases/0002/gone")));
    QVERIFY(!archive.files().contains(text("cases/0001/gone")));
}

void TestClusterStudy::aFailedCaseIsARow_data()
{
    QTest::addColumn<QString>("actions");
    QTest::addColumn<QString>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("exit code") << text("exit 7") << text("7") << text("Exit code 7");
    QTest::newRow("crash") << text("crash -") << QString() << text("Ended abnormally");
}

void TestClusterStudy::aFailedCaseIsARow()
{
    NEED_ARCHIVER;
    QFETCH(QString, actions);
    QFETCH(QString, exitCode);
    QFETCH(QString, message);
    StudySite site;
    site.writeCases("action,value\nprint,a\n" + actions.toLatin1().replace(' ', ',')
                    + "\nprint,c\n");
    QCOMPARE(site.runCases({text("--jobs"), text("1")}, list("result r=1 {action} {value}")), 2);
    QCOMPARE(site.states(), list("ok failed ok"));
    QCOMPARE(site.column(text("exit_code")), QStringList({text("0"), exitCode, text("0")}));
    QCOMPARE(site.column(text("r")), QStringList({text("1"), QString(), text("1")}));
    QCOMPARE(site.column(text("error")), QStringList({QString(), message, QString()}));
    QVERIFY(site.printed().contains(text("Case 2 failed: %1\n").arg(message)));
    QVERIFY(site.printed().contains(text("3 cases: 2 ok, 1 failed, 0 cancelled, 0 missing, in ")));
}

void TestClusterStudy::aProgramThatCannotBeStartedIsAFailedCase()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    QCOMPARE(site.run({text("cases.csv"), text("no-such-program")}), 2);
    QCOMPARE(site.states(), list("failed failed"));
    QCOMPARE(site.column(text("exit_code")), QStringList({QString(), QString()}));
    QVERIFY(site.printed().contains(text("Case 1 failed: Cannot be started: ")));
}

void TestClusterStudy::anEndThatCannotBeWrittenStopsTheStudy()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    QCOMPARE(site.runCases({text("--jobs"), text("1")}, list("folder ../0001.json/in-the-way")), 1);
    QVERIFY(site.errors().contains(text("0001.json cannot be written: ")));
    QCOMPARE(site.states(), list("missing missing"));
    QCOMPARE(entriesOf(site.output(text("cases"))), list("0001 0001.json"));
}

void TestClusterStudy::aCaseThatRemovesItsFolderDoesNotStopTheStudy()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("action,value\nremove-folder,-\nprint,2\n");
    QCOMPARE(site.runCases({text("--jobs"), text("1")}, list("{action} {value}")), 0);
    QCOMPARE(site.states(), list("ok ok"));
    if (!onWindows()) // it does not remove the open files of the output
        QVERIFY(!QFile::exists(site.output(text("cases/0001"))));
}

void TestClusterStudy::muchOutputGoesToTheFile()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n20000\n");
    QCOMPARE(site.runCases({}, list("flood {x}")), 0);
    QCOMPARE(QFileInfo(site.output(text("cases/0001/study-output.txt"))).size(), 20000 * 1024);
}

void TestClusterStudy::casesRunSideBySide_data()
{
    QTest::addColumn<int>("jobs");
    QTest::newRow("two") << 2;
    QTest::newRow("more than cases") << 30;
}

// Each case waits for a file that the other one writes.
void TestClusterStudy::casesRunSideBySide()
{
    NEED_ARCHIVER;
    QFETCH(int, jobs);
    StudySite site;
    site.writeCases("mine,other\na,b\nb,a\n");
    const QString folder = site.path(QString()) + QLatin1Char('/');
    QCOMPARE(site.runCases(
                 {text("--jobs"), QString::number(jobs)},
                 {text("count"), folder + text("{mine}"), text("wait"), folder + text("{other}")}),
             0);
    QCOMPARE(site.states(), list("ok ok"));
}

void TestClusterStudy::theOutputEndsWithASummary()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    QCOMPARE(site.runCases({}, list("print {x}")), 0);
    QVERIFY2(QRegularExpression(
                 text("(\\A|\n)1 cases: 1 ok, 0 failed, 0 cancelled, 0 missing, in [0-9.]+ sec: "
                      "%1\n\\z")
                     .arg(QRegularExpression::escape(QDir::toNativeSeparators(
                         QDir(site.path(QString())).canonicalPath() + text("/cases-results")))))
                 .match(site.printed())
                 .hasMatch(),
             qPrintable(site.printed()));
}

void TestClusterStudy::theLogHoldsEachCase()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n0\n3\n");
    QCOMPARE(site.runCases({text("--jobs"), text("1")}, list("exit {x}")), 2);
    const QString log = asText(contentOf(site.output(text("study.log"))));
    int from = 0;
    for (const char *line :
         {"2 cases, 2 to run, 1 at a time\n", "Starting task: Run the cases\n",
          "Starting task: Case 1\n", "Task finished in ", "Starting task: Case 2\n",
          "error = Exit code 3\n", "Starting task: Write the table and the picture\n",
          "Starting task: Pack\n", "2 cases: 1 ok, 1 failed"}) {
        from = log.indexOf(text(line), from);
        QVERIFY2(from > 0, line);
    }
}

void TestClusterStudy::aSignalEndsTheCases_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QString>("actions");
    for (const char *signal : {"INT", "TERM"}) {
        QTest::addRow("%s", signal) << text(signal) << text("child child");
        QTest::addRow("%s, ends with 0", signal) << text(signal) << text("obedient - child child");
    }
    QTest::newRow("INT, deaf") << text("INT") << text("child child deaf -"); // takes 10 seconds
}

void TestClusterStudy::aSignalEndsTheCases()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here");
    NEED_ARCHIVER;
    QFETCH(QString, signal);
    QFETCH(QString, actions);
    StudySite site;
    site.writeCases("x\n1\n2\n3\n");
    site.start(site.commandLine({text("--jobs"), text("1")},
                                actions.split(QLatin1Char(' ')) << list("wait forever")));
    const QString child = site.output(text("cases/0001/child"));
    QTRY_VERIFY_WITH_TIMEOUT(!contentOf(child).isEmpty(), StudyTimeLimit);
    const QString process = text("/proc/%1").arg(QString::fromLatin1(contentOf(child)));
    QVERIFY(QFile::exists(process));
    QCOMPARE(QProcess::execute(text("kill"),
                               {text("-") + signal, QString::number(site.process().processId())}),
             0);
    QCOMPARE(site.finish(), 130);
    QCOMPARE(site.states(), list("cancelled missing missing"));
    QTRY_VERIFY(!contentOf(process + text("/cmdline")).contains("studycase"));
    QVERIFY(site.printed().contains(text("3 cases: 0 ok, 0 failed, 1 cancelled, 2 missing")));
}

void TestClusterStudy::aCancelledStudyIsPackedAndCanBeResumed()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here");
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\nthere\nlater\nthere\n");
    QVERIFY(writeFile(site.path(text("there")), "x"));
    const QStringList actions{text("count"), site.path(text("runs-{case}")), text("wait"),
                              site.path(text("{x}"))};
    site.start(site.commandLine({text("--jobs"), text("1")}, actions));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("runs-2"))), StudyTimeLimit);
    QCOMPARE(QProcess::execute(text("kill"),
                               {text("-INT"), QString::number(site.process().processId())}),
             0);
    QCOMPARE(site.finish(), 130);
    QCOMPARE(site.states(), list("ok cancelled missing"));
    SevenZip archive;
    archive.setArchiveFile(site.output(text("results.7z")));
    QVERIFY(archive.listFiles());
    QVERIFY(archive.files().contains(text("cases/0001.json")));
    QVERIFY(!archive.files().contains(text("cases/0002/study-output.txt")));

    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(site.states(), list("ok ok ok"));
    QCOMPARE(contentOf(site.path(text("runs-1"))), QByteArray("run\n"));
    QCOMPARE(contentOf(site.path(text("runs-2"))), QByteArray("run\nrun\n"));
    QCOMPARE(contentOf(site.path(text("runs-3"))), QByteArray("run\n"));
    SevenZip complete;
    complete.setArchiveFile(site.output(text("results.7z")));
    QVERIFY(complete.listFiles());
    QVERIFY(complete.files().contains(QDir::toNativeSeparators(text("cases/0003.json"))));
}

void TestClusterStudy::anArchiveIsReplacedAndAnIncompleteOneRemoved()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QStringList actions{text("fail-without"), site.path(text("later"))};
    QCOMPARE(site.runCases({}, actions), 2);
    const QByteArray before = contentOf(site.output(text("results.7z")));
    QVERIFY(writeFile(site.output(text("results-new.7z")), "half of an archive"));
    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(QDir(site.output()).entryList({text("*.7z")}), list("results.7z"));
    QVERIFY(contentOf(site.output(text("results.7z"))) != before);
}

void TestClusterStudy::aKilledStudyIsResumed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\nthere\nlater\nthere\n");
    QVERIFY(writeFile(site.path(text("there")), "x"));
    const QStringList actions{text("count"), site.path(text("runs-{case}")), text("wait"),
                              site.path(text("{x}"))};
    site.start(site.commandLine({text("--jobs"), text("1")}, actions));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("runs-2"))), StudyTimeLimit);
    site.process().kill();
    QVERIFY(site.process().waitForFinished(StudyTimeLimit)
            || site.process().state() == QProcess::NotRunning);

    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(site.errors(), QString());
    QCOMPARE(site.states(), list("ok ok ok"));
    QCOMPARE(contentOf(site.path(text("runs-1"))), QByteArray("run\n"));
    QCOMPARE(contentOf(site.path(text("runs-2"))), QByteArray("run\nrun\n"));
    QCOMPARE(contentOf(site.path(text("runs-3"))), QByteArray("run\n"));
}

void TestClusterStudy::onlyCasesThatHaveNotSucceededAreResumed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\nthere\nlater\nthere\nthere\n");
    QVERIFY(writeFile(site.path(text("there")), "x"));
    const QStringList actions{text("count"),        site.path(text("runs-{case}")),
                              text("result"),       text("x={x}"),
                              text("fail-without"), site.path(text("{x}"))};
    QCOMPARE(site.runCases({}, actions), 2);
    QCOMPARE(site.states(), list("ok failed ok ok"));
    // An end file that is incomplete, and a file of the failed attempt.
    QVERIFY(writeFile(site.output(text("cases/0004.json")), "{"));
    QVERIFY(writeFile(site.output(text("cases/0002/left")), "x"));
    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(site.states(), list("ok ok ok ok"));
    QCOMPARE(site.column(text("x")), list("there later there there"));
    QCOMPARE(contentOf(site.path(text("runs-1"))), QByteArray("run\n"));
    QCOMPARE(contentOf(site.path(text("runs-2"))), QByteArray("run\nrun\n"));
    QCOMPARE(contentOf(site.path(text("runs-3"))), QByteArray("run\n"));
    QCOMPARE(contentOf(site.path(text("runs-4"))), QByteArray("run\nrun\n"));
    QVERIFY(!QFile::exists(site.output(text("cases/0002/left"))));
    // Nothing is left to do.
    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(contentOf(site.path(text("runs-4"))), QByteArray("run\nrun\n"));
}

void TestClusterStudy::pipesAndBrokenLinksOfACaseAreRemoved()
{
    if (onWindows())
        QSKIP("There are no pipes in folders here");
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    const QStringList actions{text("fail-without"), site.path(text("later"))};
    QCOMPARE(site.runCases({}, actions), 2);
    const QString sub = site.output(text("cases/0001/sub"));
    QVERIFY(QDir().mkpath(sub));
    QCOMPARE(QProcess::execute(text("mkfifo"), {sub + text("/pipe")}), 0);
    QVERIFY(QFile::link(text("missing"), sub + text("/link")));
    QVERIFY(QFile::link(sub + text("/pipe"), sub + text("/to-pipe")));
    QVERIFY(QDir().mkpath(site.path(text("mine"))));
    QVERIFY(writeFile(site.path(text("mine/file")), "x"));
    QVERIFY(QFile::link(site.path(text("mine")), sub + text("/to-mine")));
    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(site.errors(), QString());
    QVERIFY(!QFile::exists(sub));
    QVERIFY(QFile::exists(site.path(text("mine/file"))));
}

void TestClusterStudy::aCaseWhoseFolderCannotBeRemovedHasFailed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    const QStringList actions{text("fail-without"), site.path(text("later"))};
    QCOMPARE(site.runCases({}, actions), 2);
    QVERIFY(writeFile(site.path(text("later")), "x"));
    const QString folder = site.output(text("cases/0001"));
    QFile open(folder + text("/open")); // Windows does not remove an open file
    QVERIFY(open.open(QIODevice::WriteOnly));
    if (!onWindows()) // nor can Qt remove a name that is no text
        QCOMPARE(QProcess::execute(text("sh"),
                                   {text("-c"), text("cd \"$1\" && : >\"$(printf '\\377')\""),
                                    text("sh"), folder}),
                 0);
    QCOMPARE(site.runCases({text("--resume"), text("--jobs"), text("1")}, actions), 2);
    // The name must not remain after this test.
    QVERIFY(onWindows() || QProcess::execute(text("rm"), {text("-r"), folder}) == 0);
    QCOMPARE(site.states(), list("failed ok"));
    QVERIFY2(site.printed().contains(text("0001 cannot be removed\n")), qPrintable(site.printed()));
}

void TestClusterStudy::aStudyOfSeveralHundredCasesIsPackedWhole()
{
    if (onWindows())
        QSKIP("The start of a program is slow under Wine");
    NEED_ARCHIVER;
    constexpr int Count = 200;
    StudySite site;
    QByteArray csv = "x\n";
    for (int number = 1; number <= Count; ++number)
        csv += QByteArray::number(number * 3) + '\n';
    site.writeCases(csv);
    QCOMPARE(site.runCases({}, list("result y={x}")), 0);
    QCOMPARE(site.column(text("y")), site.column(text("x")));
    SevenZip archive;
    archive.setArchiveFile(site.output(text("results.7z")));
    QVERIFY(archive.extractFilesTo(site.path(text("unpacked"))));
    QCOMPARE(readTree(site.path(text("unpacked"))).size(), 2 + 4 * Count);
}

QTEST_GUILESS_MAIN(TestClusterStudy)

#include "tst_clusterstudy.moc"
