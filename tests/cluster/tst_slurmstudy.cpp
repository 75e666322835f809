// cluster-study on a real Slurm cluster.
#include "TestWithCluster.h"

#include "BeamStudy.h"
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

    void casesHaveTheExactValues();
    void aFailedCaseIsARow();
    void theClusterIsInTheLog();
    void noMoreCasesRunThanAllowed();
    void aCaseWhoseJobIsLostIsMissing();
    void ctrlCEndsTheJobs();
    void ctrlCCancelsEveryRunningCase_data();
    void ctrlCCancelsEveryRunningCase();
    void ctrlCEndsAWaitingSubmission();
    void aKilledStudyIsResumed();
    void aKilledAndResumedBeamStudyGivesTheSameTableOnBothEngines();

private:
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
    static QStringList slurm() { return {text("--slurm"), text("--cluster-tools"), tools()}; }
    static QString tools() { return QFileInfo(QStringLiteral(CLUSTER_TOOL)).path(); }
};

void TestSlurmStudy::initTestCase()
{
    TestWithCluster::initTestCase();
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

void TestSlurmStudy::cleanup()
{
    // Also after a failure the next test finds an empty queue.
    answerOf(text("scancel"), {text("--user=root")});
    QTRY_COMPARE_WITH_TIMEOUT(queue(), QStringList(), 30000);
    TestWithCluster::cleanup();
}

void TestSlurmStudy::casesHaveTheExactValues()
{
    NEED_STUDY_ARCHIVER;
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
}

void TestSlurmStudy::aFailedCaseIsARow()
{
    NEED_STUDY_ARCHIVER;
    StudySite site;
    site.writeCases("action,value\nprint,a\nexit,7\ncrash,-\n");
    QCOMPARE(site.runCases(slurm(), list("{action} {value}")), 2);
    QCOMPARE(site.states(), list("ok failed failed"));
    QCOMPARE(site.column(text("exit_code")), QStringList({text("0"), text("7"), QString()}));
    QVERIFY(site.printed().contains(text("Case 2 failed: Exit code 7\n")));
}

void TestSlurmStudy::theClusterIsInTheLog()
{
    NEED_STUDY_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    QCOMPARE(site.runCases(slurm(), list("print {x}")), 0);
    const QString log = asText(contentOf(site.output(text("study.log"))));
    // n1 to n4: 2, 2, 4 and 64 cores
    QVERIFY2(log.contains(text("compute nodes: 4, cores: 72\n")), qPrintable(log));
    QVERIFY2(log.contains(text("1 cases, from 1 to 1\n")), qPrintable(log));
}

void TestSlurmStudy::noMoreCasesRunThanAllowed()
{
    NEED_STUDY_ARCHIVER;
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

void TestSlurmStudy::aCaseWhoseJobIsLostIsMissing()
{
    NEED_STUDY_ARCHIVER;
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
    QCOMPARE(site.finish(), 2);
    QCOMPARE(site.states(), list("ok missing"));
    QVERIFY(site.printed().contains(text("Case 2 is missing: ")));
}

void TestSlurmStudy::ctrlCEndsTheJobs()
{
    NEED_STUDY_ARCHIVER;
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
    NEED_STUDY_ARCHIVER;
    QFETCH(QString, action);
    StudySite site;
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
    NEED_STUDY_ARCHIVER;
    constexpr int AtOnce = 10000; // milliseconds; sbatch is ended after 20 seconds otherwise
    StudySite site;
    site.writeCases("x\n1\n");
    QVERIFY(writeFile(site.path(text("sbatch")),
                      "#!/bin/sh\necho >\"${0%/*}/waiting\"\nexec sleep 60\n"));
    QVERIFY(QFile::setPermissions(site.path(text("sbatch")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    site.environment().insert(
        text("PATH"), site.path(QString()) + QLatin1Char(':') + qEnvironmentVariable("PATH"));
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
    NEED_STUDY_ARCHIVER;
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
}

QTEST_GUILESS_MAIN(TestSlurmStudy)

#include "tst_slurmstudy.moc"
