// The rules of a parameter study on Slurm: job arrays, the answers of the commands, the command of
// a case.

#include "Fixture.h"

#include "CaseCommand.h"
#include "SlurmText.h"
#include "Study.h"

#include <QtTest/QtTest>

using namespace ClusterStudy;

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

QList<int> numbers(const QString &words)
{
    QList<int> list;
    for (const QString &word : words.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        list << word.toInt();
    return list;
}

QString shownRow(const QueueRow &row)
{
    QString shown = QString::number(row.array) + QLatin1Char(' ') + row.state;
    for (const int task : row.tasks)
        shown += QLatin1Char(' ') + QString::number(task);
    return shown;
}

} // namespace

class TestClusterStudySlurm : public Fixture
{
    Q_OBJECT

private Q_SLOTS:
    void casesAreSplitIntoArrays_data();
    void casesAreSplitIntoArrays();
    void theNumberOfJobsIsPartOfTheTaskList();
    void taskListsAreRead_data();
    void taskListsAreRead();
    void theLargestArrayIsReadFromTheConfiguration_data();
    void theLargestArrayIsReadFromTheConfiguration();
    void theJobIsReadFromSbatch_data();
    void theJobIsReadFromSbatch();
    void theQueueIsRead();
    void aQueueThatIsWrongIsNotRead_data();
    void aQueueThatIsWrongIsNotRead();
    void namesOfJobsAreRecognised();
    void aCommandHasTheValuesOfItsCase();
    void aCommandThatIsWrittenReadsBack();
    void aCommandFileThatIsWrongIsNotRead_data();
    void aCommandFileThatIsWrongIsNotRead();
};

void TestClusterStudySlurm::casesAreSplitIntoArrays_data()
{
    QTest::addColumn<QString>("cases");
    QTest::addColumn<QString>("arrays"); // offset:tasks
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("one") << text("1") << text("0:1");
    QTest::newRow("one array") << text("1 2 3 4") << text("0:1-4");
    QTest::newRow("two arrays") << text("1 2 3 4 5 6") << text("0:1-4 4:1-2");
    QTest::newRow("resumed") << text("2 3 5") << text("1:1-2,4");
    QTest::newRow("far apart") << text("2 100 103 104") << text("1:1 99:1,4 103:1");
}

void TestClusterStudySlurm::casesAreSplitIntoArrays()
{
    QFETCH(QString, cases);
    QFETCH(QString, arrays);
    QStringList shown;
    const QVector<TaskArray> split = splitIntoArrays(numbers(cases), 4);
    for (const TaskArray &array : split)
        shown << text("%1:%2").arg(QString::number(array.offset), taskList(array, 0));
    QCOMPARE(shown.join(QLatin1Char(' ')), arrays);
}

void TestClusterStudySlurm::theNumberOfJobsIsPartOfTheTaskList()
{
    QCOMPARE(taskList({10, {11, 12, 20}}, 3), text("1-2,10%3"));
}

void TestClusterStudySlurm::taskListsAreRead_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("tasks");
    QTest::newRow("task") << text("7") << text("7");
    QTest::newRow("tasks") << text("1-3,7") << text("1 2 3 7");
    QTest::newRow("with a limit") << text("1-3,7%2") << text("1 2 3 7");
    QTest::newRow("with a step") << text("1-7:3") << text("1 4 7");
    QTest::newRow("no array") << text("N/A") << QString();
    QTest::newRow("shortened") << text("1-3,...") << QString();
    QTest::newRow("step 0") << text("1-3:0") << QString();
    QTest::newRow("backwards") << text("3-1") << QString();
    QTest::newRow("too large") << text("1-9999999") << QString();
    QTest::newRow("nothing") << QString() << QString();
}

void TestClusterStudySlurm::taskListsAreRead()
{
    QFETCH(QString, list);
    QFETCH(QString, tasks);
    QCOMPARE(readTaskList(list).toList(), numbers(tasks));
}

void TestClusterStudySlurm::theLargestArrayIsReadFromTheConfiguration_data()
{
    QTest::addColumn<QString>("config");
    QTest::addColumn<int>("size");
    QTest::newRow("default") << text("MailProg = /bin/mail\nMaxArraySize            = 1001\n"
                                     "MaxBatchRequeue         = 5\n")
                             << 1001;
    QTest::newRow("disabled") << text("MaxArraySize = 0\n") << 0;
    QTest::newRow("missing") << text("MaxJobCount = 10000\n") << 0;
}

void TestClusterStudySlurm::theLargestArrayIsReadFromTheConfiguration()
{
    QFETCH(QString, config);
    QFETCH(int, size);
    QCOMPARE(maxArraySize(config), size);
}

void TestClusterStudySlurm::theJobIsReadFromSbatch_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<qint64>("job");
    QTest::newRow("number") << text("123\n") << qint64(123);
    QTest::newRow("with the cluster") << text("123;east\n") << qint64(123);
    QTest::newRow("nothing") << QString() << qint64(0);
    QTest::newRow("text") << text("Submitted batch job 123\n") << qint64(0);
}

void TestClusterStudySlurm::theJobIsReadFromSbatch()
{
    QFETCH(QString, output);
    QFETCH(qint64, job);
    QCOMPARE(submittedJob(output), job);
}

void TestClusterStudySlurm::theQueueIsRead()
{
    QVector<QueueRow> rows;
    QVERIFY(readQueue(QString(), rows));
    QVERIFY(rows.isEmpty());
    QVERIFY(readQueue(text("12|3-5,9%2|PD\n12|1|R\n12|2|CG\n"), rows));
    QCOMPARE(rows.size(), 3);
    QCOMPARE(shownRow(rows.at(0)), text("12 PD 3 4 5 9"));
    QCOMPARE(shownRow(rows.at(1)), text("12 R 1"));
    QCOMPARE(shownRow(rows.at(2)), text("12 CG 2"));
    QVERIFY(rows.at(0).isPending() && !rows.at(0).isRunning());
    QVERIFY(rows.at(1).isRunning() && !rows.at(1).isPending());
    QVERIFY(!rows.at(2).isRunning() && !rows.at(2).isPending());
}

void TestClusterStudySlurm::aQueueThatIsWrongIsNotRead_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("text") << text("slurm_load_jobs error\n");
    QTest::newRow("no state") << text("12|1\n");
    QTest::newRow("empty state") << text("12|1|\n");
    QTest::newRow("no number") << text("|1|R\n");
    QTest::newRow("no array") << text("12|N/A|R\n");
    QTest::newRow("more fields") << text("12|1|R|x\n");
}

void TestClusterStudySlurm::aQueueThatIsWrongIsNotRead()
{
    QFETCH(QString, output);
    QVector<QueueRow> rows;
    QVERIFY(!readQueue(output, rows));
}

void TestClusterStudySlurm::namesOfJobsAreRecognised()
{
    const QString name = newJobName();
    QVERIFY2(isJobName(name), qPrintable(name));
    QVERIFY(newJobName() != name);
    QVERIFY(!isJobName(QString()));
    QVERIFY(!isJobName(name + text(",other")));
    QVERIFY(!isJobName(name + text("\n")));
    QVERIFY(!isJobName(text("cluster-study-")));
}

void TestClusterStudySlurm::aCommandHasTheValuesOfItsCase()
{
    Study study;
    study.cases = {{text("load")}, {{text("1")}, {text("$(x) \"2\"")}}};
    study.program = text("/opt/solve");
    study.arguments = QStringList{text("--load={load}"), text("{case}")};
    const CaseCommand command = commandOf(study, 2);
    QCOMPARE(command.program, study.program);
    QCOMPARE(command.arguments, QStringList({text("--load=$(x) \"2\""), text("2")}));
    QCOMPARE(command.variables.size(), 2);
    QCOMPARE(command.variables.value(text("STUDY_LOAD")), text("$(x) \"2\""));
    QCOMPARE(command.variables.value(text("STUDY_CASE")), text("2"));
}

void TestClusterStudySlurm::aCommandThatIsWrittenReadsBack()
{
    const CaseCommand command{
        QString::fromUtf8("/\xC3\xA4/solve"),
        {QString(), text("a b"), text("\"\\\n"), QString::fromUtf8("\xE2\x82\xAC")},
        {{text("STUDY_X"), text("a\nb")}, {text("STUDY_Y"), QString()}}};
    CaseCommand read;
    QVERIFY(readCommandFile(commandFileContent(command, 7), 7, read));
    QCOMPARE(read.program, command.program);
    QCOMPARE(read.arguments, command.arguments);
    QCOMPARE(read.variables, command.variables);
}

void TestClusterStudySlurm::aCommandFileThatIsWrongIsNotRead_data()
{
    QTest::addColumn<QByteArray>("content");
    const CaseCommand command{text("p"), {text("a")}, {}};
    const QByteArray good = commandFileContent(command, 7);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("incomplete") << good.left(good.size() - 4);
    QTest::newRow("other case") << commandFileContent(command, 8);
    QTest::newRow("no program") << commandFileContent(CaseCommand(), 7);
    QTest::newRow("no arguments") << QByteArray("{\"case\":7,\"program\":\"p\",\"variables\":{}}");
    QTest::newRow("no variables") << QByteArray("{\"case\":7,\"program\":\"p\",\"arguments\":[]}");
}

void TestClusterStudySlurm::aCommandFileThatIsWrongIsNotRead()
{
    QFETCH(QByteArray, content);
    CaseCommand command;
    QVERIFY(!readCommandFile(content, 7, command));
}

QTEST_GUILESS_MAIN(TestClusterStudySlurm)

#include "tst_clusterstudyslurm.moc"
