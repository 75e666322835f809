// cluster-study on a real Slurm cluster.
#include "BuildPaths.h"
#include "TestWithCluster.h"

#include "BeamStudy.h"
#include "Terminal.h"
#include "TestWithStudy.h"

#include <csignal>

namespace {

// The process of a job that runs a case of the study; 0 if there is none.
qint64 jobOf(const StudySite &site)
{
    const QByteArray call = QFile::encodeName(site.program()) + '\0' + "--run-case" + '\0';
    const QStringList processes
        = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[1-9]*")}, QDir::Dirs);
    for (const QString &process : processes) {
        if (contentOf(QStringLiteral("/proc/%1/cmdline").arg(process)) == call)
            return process.toLongLong();
    }
    return 0;
}

} // namespace

class TestSlurmStudy : public TestWithCluster
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override { TestWithCluster::init(); }
    void cleanup() override;

    void theValuesAreExactAndTheClusterIsInTheLog();
    void aFailedCaseIsARowAndRunsAgain();
    void aFirstSubmissionThatFailsEndsTheStudy();
    void aCaseThatSlurmEndsIsCancelledAndNoneIsRequeued();
    void noMoreCasesRunThanAllowed();
    void studiesGoOnAfterALostJobAndAfterFailedCommands();
    void ctrlCEndsTheJobs();
    void ctrlCCancelsEveryRunningCase_data();
    void ctrlCCancelsEveryRunningCase();
    void ctrlCEndsAWaitingSubmission();
    void aKilledStudyIsResumed();
    void aKilledAndResumedBeamStudyGivesTheSameTableOnBothEngines();

private:
    void goesOnAfterCommandsOfSlurmHaveFailed();

    static QString text(const char *latin) { return QString::fromLatin1(latin); }
    static QStringList list(const char *words) { return text(words).split(QLatin1Char(' ')); }
    static QStringList queue(const QStringList &options = {})
    {
        return answerOf(text("squeue"),
                        options
                            + QStringList{text("--noheader"), text("--all"), text("--array"),
                                          text("--format=%j %t")})
            .lines;
    }
    // A shell script that the study runs instead of a command of Slurm. In it the command is that
    // of Slurm, and $folder is the folder of the site.
    static void replaceCommand(StudySite &site, const char *command, const QByteArray &script)
    {
        const QString file = site.path(text("bin/") + text(command));
        const QByteArray begin = "#!/bin/sh\nPATH=${PATH#*:}\nfolder=${0%/*}/..\n";
        const QFile::Permissions executable
            = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        if (!writeFileInFolder(file, begin + script) || !QFile::setPermissions(file, executable))
            qFatal("%s cannot be written.", command);
        site.environment().insert(text("PATH"),
                                  site.path(text("bin:")) + qEnvironmentVariable("PATH"));
    }
    static QString logOf(const StudySite &site)
    {
        return asText(contentOf(site.output(text("study.log"))));
    }
    static QStringList slurm() { return {text("--slurm"), text("--cluster-tools"), tools()}; }
    static QString tools() { return QFileInfo(BuildPaths::clusterTool()).path(); }
};

void TestSlurmStudy::initTestCase()
{
    TestWithCluster::initTestCase();
    QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
}

void TestSlurmStudy::cleanup()
{
    // Also after a failure the next test finds an empty queue.
    answerOf(text("scancel"), {text("--user=root")});
    QTRY_COMPARE_WITH_TIMEOUT(queue(), QStringList(), 30000);
    TestWithCluster::cleanup();
}

void TestSlurmStudy::theValuesAreExactAndTheClusterIsInTheLog()
{
    NEED_ARCHIVER;
    StudySite site;
    const QStringList values{text("a b"),   text("\"q\" 'p'"), text("$(exit 3) `x` ; & | > y"),
                             text("a,b=c"), text("*?\\"),      QString::fromUtf8("\xC3\xA4")};
    QByteArray csv = "Value\n";
    for (const QString &value : values)
        csv += ClusterStudy::csvLine({value});
    site.writeCases(csv);
    QVERIFY2(site.runCases(slurm(), list("print {Value} variable STUDY_VALUE result r={case}"))
                 == 0,
             qPrintable(site.errors() + site.printed()));
    QCOMPARE(site.column(text("Value")), values);
    QCOMPARE(site.column(text("r")), list("1 2 3 4 5 6"));
    for (int index = 0; index < values.size(); ++index) {
        const QString output = site.output(text("cases/000%1/study-output.txt").arg(index + 1));
        QCOMPARE(QString::fromUtf8(contentOf(output)), text("%1\n%1\n").arg(values.at(index)));
    }
    QCOMPARE(entriesOf(site.output()),
             list("cases results.7z results.csv study.json study.log times.svg"));
    QCOMPARE(entriesOf(site.output(text("cases/0001"))),
             list("result.txt study-errors.txt study-output.txt"));
    const QString log = logOf(site);
    // n1 to n4: 2, 2, 4 and 64 cores
    QVERIFY2(log.contains(text("compute nodes: 4, cores: 72\n")), qPrintable(log));
}

// The second call of each fails. Run inside of the test of a lost job, since both wait 10 seconds.
void TestSlurmStudy::goesOnAfterCommandsOfSlurmHaveFailed()
{
    const QByteArray failOnce
        = "echo >>\"$folder/NAME\"\n"
          "[ $(wc -l <\"$folder/NAME\") -ne 2 ] || { printf 'NAME: a\\n  b\\n' >&2; exit 1; }\n"
          "exec NAME \"$@\"\n";
    StudySite site;
    for (const char *command : {"sbatch", "squeue"})
        replaceCommand(site, command, QByteArray(failOnce).replace("NAME", command));
    site.writeCases("x\n1\n2\n3\n4\n5\n"); // an array has up to four, see scripts/slurm.sh
    QCOMPARE(site.runCases(slurm(), {text("count"), site.path(text("runs-{x}"))}), 0);
    QCOMPARE(site.states(), list("ok ok ok ok ok"));
    for (int number = 1; number <= 5; ++number)
        QCOMPARE(contentOf(site.path(text("runs-%1").arg(number))), QByteArray("run\n"));
    const QString log = logOf(site);
    for (const char *line :
         {"4 cases, from 1 to 4\n", "squeue failed: squeue: a; b\n", "squeue answers again\n",
          "Slurm does not accept more jobs now. sbatch failed: sbatch: a; b\n",
          "1 cases, from 5 to 5\n"})
        QVERIFY2(log.contains(text(line)), qPrintable(text(line) + log));
}

void TestSlurmStudy::aFirstSubmissionThatFailsEndsTheStudy()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    replaceCommand(site, "sbatch", "echo 'no such partition' >&2\nexit 1\n");
    QCOMPARE(site.runCases(slurm(), list("print x")), 1);
    QVERIFY2(site.errors().contains(text("sbatch failed: no such partition\n")),
             qPrintable(site.errors()));
    QCOMPARE(site.states(), list("missing"));
}

void TestSlurmStudy::aFailedCaseIsARowAndRunsAgain()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("action,value\nprint,a\nexit,7\nfail-without,../../../later\ncrash,-\n");
    const QStringList actions{text("count"), site.path(text("runs-{case}")), text("{action}"),
                              text("{value}")};
    QCOMPARE(site.runCases(slurm(), actions), 2);
    QCOMPARE(site.states(), list("ok failed failed failed"));
    QCOMPARE(site.column(text("exit_code")),
             QStringList({text("0"), text("7"), text("1"), QString()}));
    QVERIFY(site.printed().contains(text("Case 2 failed: Exit code 7\n")));

    QVERIFY(writeFile(site.path(text("later")), "x"));
    // Before the job of a case exists, nothing may be left that reads as its end.
    replaceCommand(site, "sbatch",
                   "cd \"$folder/cases-results/cases\"\n"
                   "echo *.json >\"$folder/ends\"\n"
                   "exec sbatch \"$@\"\n");
    QCOMPARE(site.runCases(slurm() + list("--resume"), actions), 2);
    QCOMPARE(site.states(), list("ok failed ok failed"));
    QCOMPARE(contentOf(site.path(text("ends"))), QByteArray("0001.json\n"));
    QCOMPARE(contentOf(site.path(text("runs-1"))), QByteArray("run\n"));
    for (int number = 2; number <= 4; ++number)
        QCOMPARE(contentOf(site.path(text("runs-%1").arg(number))), QByteArray("run\nrun\n"));
}

// As at the end of its time limit, or if an administrator ends it.
void TestSlurmStudy::aCaseThatSlurmEndsIsCancelledAndNoneIsRequeued()
{
    NEED_ARCHIVER;
    constexpr int UntilTheNextLine = 500; // milliseconds
    StudySite site;
    site.writeCases("x\n1\n2\n");
    Terminal terminal(site.program(),
                      slurm()
                          + QStringList{site.path(text("cases.csv")), text("--"),
                                        BuildPaths::studyCase(), text("count"),
                                        site.path(text("run-{x}")), text("wait"),
                                        site.path(text("go-{x}"))});
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-1"))), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-2"))), 30000);
    const QStringList jobs = answerOf(text("squeue"), list("--noheader --array --format=%i")).lines;
    const QStringList first = jobs.filter(text("_1"));
    const QStringList second = jobs.filter(text("_2"));
    QCOMPARE(second.size(), 1);
    QVERIFY(scontrol({text("requeue"), second.first().trimmed()}).exitCode != 0);
    QCOMPARE(answerOf(text("scancel"), first).exitCode, 0);
    QTRY_VERIFY_WITH_TIMEOUT(
        !terminal.waitForEnd(UntilTheNextLine) && terminal.output().contains("1 running"), 30000);
    QVERIFY(writeFile(site.path(text("go-2")), "x"));
    QVERIFY(terminal.waitForEnd(StudyTimeLimit));
    QCOMPARE(site.states(), list("cancelled ok"));
    const QByteArray output = terminal.output();
    QVERIFY2(output.contains("Case 1 cancelled: Slurm ended its job\r\n"), output.constData());
    QVERIFY2(!output.contains("1 failed"), output.constData());
}

void TestSlurmStudy::noMoreCasesRunThanAllowed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n3\n");
    site.start(site.commandLine(
        slurm() + list("--jobs 1"),
        {text("count"), site.path(text("run-{x}")), text("wait"), site.path(text("go-{x}"))}));
    for (const char *number : {"1", "2", "3"}) {
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-") + text(number))), 30000);
        QCOMPARE(queue({text("--states=RUNNING")}).size(), 1);
        QVERIFY(writeFile(site.path(text("go-") + text(number)), "x"));
    }
    QCOMPARE(site.finish(), 0);
}

void TestSlurmStudy::studiesGoOnAfterALostJobAndAfterFailedCommands()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    QVERIFY(writeFile(site.path(text("go-1")), "x"));
    site.start(site.commandLine(
        slurm(),
        {text("count"), site.path(text("run-{x}")), text("wait"), site.path(text("go-{x}"))}));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-1"))), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-2"))), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(queue({text("--states=RUNNING")}).size(), 1, 30000); // case 2
    const qint64 job = jobOf(site);
    QVERIFY(job > 0);
    QCOMPARE(::kill(static_cast<pid_t>(job), SIGKILL), 0);
    const QFileInfo cases(site.output(text("cases")));
    const QDateTime before = cases.lastModified();
    goesOnAfterCommandsOfSlurmHaveFailed();
    QCOMPARE(site.finish(), 2);
    QCOMPARE(site.states(), list("ok missing"));
    QVERIFY(site.printed().contains(text("Case 2 is missing: ")));
    // The folder of the end files was changed, so that a file system in the network reads it again.
    QVERIFY(QFileInfo(cases.filePath()).lastModified() > before);
    QCOMPARE(entriesOf(cases.filePath()), list("0001 0001.json 0002"));
}

void TestSlurmStudy::ctrlCEndsTheJobs()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\ngo\n2\n3\n4\n5\n6\n7\n8\n9\n");
    QVERIFY(writeFile(site.path(text("go")), "x"));
    site.start(site.commandLine(
        slurm() + list("--jobs 2"),
        {text("count"), site.path(text("run-{case}")), text("wait"), site.path(text("{x}"))}));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-3"))), 30000);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-2"))), 30000);
    ::kill(static_cast<pid_t>(site.process().processId()), SIGINT);
    QCOMPARE(site.finish(), 130);
    QCOMPARE(site.states(),
             list("ok cancelled cancelled missing missing missing missing missing missing"));
    QCOMPARE(queue(), QStringList());
    QVERIFY(QFile::exists(site.output(text("results.7z"))));
    QVERIFY(!QFile::exists(site.output(text("slurm"))));
}

void TestSlurmStudy::ctrlCCancelsEveryRunningCase_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("ends with exit code 0") << text("obedient");
    QTest::newRow("is killed by Slurm") << text("deaf");
}

void TestSlurmStudy::ctrlCCancelsEveryRunningCase()
{
    NEED_ARCHIVER;
    QFETCH(QString, action);
    StudySite site;
    // Variables of the user that hide the jobs.
    site.environment().insert(text("SQUEUE_STATES"), text("PENDING"));
    site.environment().insert(text("SCANCEL_STATE"), text("PENDING"));
    site.writeCases("x\n1\n2\n");
    site.start(site.commandLine(slurm() + list("--jobs 1"),
                                {action, text("-"), text("count"), site.path(text("run-{case}")),
                                 text("wait"), text("forever")}));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("run-1"))), 30000);
    ::kill(static_cast<pid_t>(site.process().processId()), SIGINT);
    QVERIFY2(site.finish() == 130, qPrintable(site.errors()));
    QCOMPARE(site.states(), list("cancelled missing"));
}

// As when the queue of Slurm is full.
void TestSlurmStudy::ctrlCEndsAWaitingSubmission()
{
    NEED_ARCHIVER;
    constexpr int AtOnce = 10000; // milliseconds; sbatch is ended after 20 seconds otherwise
    StudySite site;
    site.writeCases("x\n1\n");
    replaceCommand(site, "sbatch", "echo >\"$folder/waiting\"\nexec sleep 60\n");
    site.start(site.commandLine(slurm(), list("print x")));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("waiting"))), 30000);
    QElapsedTimer time;
    time.start();
    ::kill(static_cast<pid_t>(site.process().processId()), SIGINT);
    QVERIFY2(site.finish() == 130, qPrintable(site.errors()));
    QVERIFY2(time.elapsed() < AtOnce, QByteArray::number(time.elapsed()).constData());
    QCOMPARE(site.states(), list("missing"));
    QVERIFY(!QFile::exists(site.output(text("slurm"))));
}

// The jobs of the killed run still run when the study is resumed.
void TestSlurmStudy::aKilledStudyIsResumed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\nthere\nlater\nthere\n");
    QVERIFY(writeFile(site.path(text("there")), "x"));
    const QStringList actions{text("count"), site.path(text("runs-{case}")), text("wait"),
                              site.path(text("{x}"))};
    site.start(site.commandLine(slurm() + list("--jobs 1"), actions));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.path(text("runs-2"))), 30000);
    site.process().kill();
    QVERIFY(site.process().waitForFinished());
    QVERIFY(!queue().isEmpty());
    QCOMPARE(site.runCases({text("--resume")}, actions), 1); // not on this machine as well

    site.start(site.commandLine(slurm() + list("--resume"), actions));
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(site.path(text("runs-2"))), QByteArray("run\nrun\n"),
                              30000);
    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.finish(), 0);
    QCOMPARE(site.states(), list("ok ok ok"));
    QCOMPARE(contentOf(site.path(text("runs-1"))), QByteArray("run\n"));
    QCOMPARE(contentOf(site.path(text("runs-3"))), QByteArray("run\n"));
}

void TestSlurmStudy::aKilledAndResumedBeamStudyGivesTheSameTableOnBothEngines()
{
    const QString missing = BeamStudy::missingProgram();
    if (!missing.isEmpty())
        QSKIP(qPrintable(missing));
    // Meanwhile another study waits, as when the queue is full: its first call of sbatch is ended
    // after 20 seconds, and the second follows 10 seconds later.
    NEED_ARCHIVER;
    StudySite waiting;
    waiting.writeCases("x\n1\n");
    replaceCommand(waiting, "sbatch",
                   "mkdir \"$folder/called\" || exec sbatch \"$@\"\nexec sleep 60\n");
    waiting.start(waiting.commandLine(slurm(), list("print x")));

    BeamStudy onSlurm;
    QCOMPARE(onSlurm.runKilledAndResumed(slurm()), QString());
    BeamStudy here;
    QVERIFY2(here.run({}) == 0, here.output().constData());
    QList<Row> first = onSlurm.table();
    QList<Row> second = here.table();
    QVERIFY(first.size() >= 40);
    for (QList<Row> *rows : {&first, &second}) {
        for (Row &row : *rows)
            QCOMPARE(row.remove(text("seconds")), 1);
    }
    QCOMPARE(first, second);

    QVERIFY2(waiting.finish() == 0, qPrintable(waiting.errors()));
    QCOMPARE(waiting.states(), list("ok"));
    QVERIFY(logOf(waiting).contains(
        text("Slurm does not accept more jobs now. sbatch does not answer.")));
}

QTEST_GUILESS_MAIN(TestSlurmStudy)

#include "tst_slurmstudy.moc"
