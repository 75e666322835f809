// The small examples: what they write, print and end with.

#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <Utility/Log.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <list>

using namespace Vorn::Util;

namespace {

constexpr int TimeLimit = 60000; // milliseconds

QString text(const QByteArray &latin)
{
    return QString::fromLatin1(latin);
}

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString asText(QByteArray bytes)
{
    return QString::fromLocal8Bit(bytes.replace("\r\n", "\n"));
}

bool appendTo(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly | QIODevice::Append) && file.write(bytes) == bytes.size()
        && file.flush();
}

// An example in a folder of its own.
class Example
{
public:
    explicit Example(const char *name)
        : program_(BuildPaths::smallExample(text(name)))
    {
        process_.setWorkingDirectory(folder_.path());
    }

    ~Example()
    {
        process_.kill();
        process_.waitForFinished();
    }

    QString program() const { return program_; }
    QString path(const char *name = "") const { return folder_.filePath(text(name)); }
    QStringList entries() const { return entriesOf(folder_.path()); }
    QProcess &process() { return process_; }

    void start(const QStringList &arguments) { process_.start(program_, arguments); }

    int finish()
    {
        if (!process_.waitForFinished(TimeLimit) && process_.state() != QProcess::NotRunning)
            return -1;
        printed_ += asText(process_.readAllStandardOutput());
        errors_ = asText(process_.readAllStandardError());
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -2;
    }

    int run(const QStringList &arguments)
    {
        start(arguments);
        return finish();
    }

    // Whether the program prints this within the time limit.
    bool waitsForOutput(const char *part)
    {
        return QTest::qWaitFor(
            [&] {
                printed_ += asText(process_.readAllStandardOutput());
                return printed_.contains(text(part));
            },
            TimeLimit);
    }

    QString printed() const { return printed_; }
    QString errors() const { return errors_; }

private:
    Q_DISABLE_COPY(Example)

    const QString program_;
    TestFolder folder_;
    QProcess process_;
    QString printed_;
    QString errors_;
};

// The lines of a log without the time in front.
QStringList linesOfLog(const QString &name)
{
    QStringList lines = QString::fromUtf8(contentOf(name).replace("\r\n", "\n")).split(text("\n"));
    lines.removeLast();
    for (QString &line : lines)
        line.remove(QRegularExpression(text("^\\[\\d\\d:\\d\\d:\\d\\d\\] ")));
    return lines;
}

// What log-threads prints about a log, read in another way than the program reads it.
QString heldLines(const QString &name, int threads)
{
    QMap<int, QStringList> numbers;
    for (const QString &line : linesOfLog(name)) {
        const QStringList words = line.split(text(" "));
        numbers[words.value(1).toInt()] << words.value(3);
    }
    QString report;
    for (int thread = 1; thread <= threads; ++thread) {
        const QStringList held = numbers.value(thread);
        report += held.isEmpty() ? QStringLiteral("thread %1: all lines were removed\n").arg(thread)
                                 : QStringLiteral("thread %1: lines %2 to %3\n")
                                       .arg(QString::number(thread), held.first(), held.last());
    }
    return report;
}

// What task-queue prints about its progress. It covers a longer line before it.
QString progressLine(const char *line)
{
    return QLatin1Char('\r') + text(line).leftJustified(79);
}

} // namespace

class TestSmallExamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHelpIsPrinted_data();
    void theHelpIsPrinted();
    void aWrongCallIsRefused_data();
    void aWrongCallIsRefused();
    void aLogThatCannotBeWrittenIsReported_data();
    void aLogThatCannotBeWrittenIsReported();

    void aSmallLogHoldsAllLines();
    void aTruncatedLogHoldsTheNewestLines();

    void checksumsAreWritten();
    void aFailureLeavesNoList();
    void whatIsNoFileIsRefused_data();
    void whatIsNoFileIsRefused();
    void aListThatExistsIsKept_data();
    void aListThatExistsIsKept();
    void aNameWithALineBreakIsRefused();
    void aCancelLeavesNoList_data();
    void aCancelLeavesNoList();

    void theExitCodeIsPassedOn_data();
    void theExitCodeIsPassedOn();
    void argumentsArePassedAsTheyAre();
    void theStandardInputIsPassedOn();
    void theEndOfTheStandardInputIsPassedOn();
    void theTimeLimitEndsTheProgram_data();
    void theTimeLimitEndsTheProgram();
    void aProgramThatCannotBeStartedIsReported();
    void aCrashIsReported();

    void filesThatAreDoneEndTheRun();
    void aFileThatIsDoneNeedsNoTime();
    void aFileMayBeWrittenAgain_data();
    void aFileMayBeWrittenAgain();
    void theEndOfALargeFileIsRead();
    void noTaskIsEndedBeforeItsTime();
    void theWatchdogEndsATaskThatNeverEnds();
    void progressKeepsATaskAlive();
};

void TestSmallExamples::theHelpIsPrinted_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"log-threads", "task-queue", "process-task", "task-watchdog"})
        QTest::addRow("%s", name) << text(name);
}

void TestSmallExamples::theHelpIsPrinted()
{
    QFETCH(QString, name);
    Example example(name.toLatin1().constData());
    QCOMPARE(example.run({text("--help")}), 0);
    QVERIFY2(example.printed().startsWith(text("Usage: ") + name), qPrintable(example.printed()));
    QVERIFY2(example.printed().contains(text("\nExit codes: ")), qPrintable(example.printed()));
    QCOMPARE(example.entries(), QStringList());
}

void TestSmallExamples::aWrongCallIsRefused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char *name, const char *arguments, int exitCode) {
        QTest::addRow("%s %s", name, arguments) << QByteArray(name) << text(arguments) << exitCode;
    };
    row("log-threads", "", 1);
    row("log-threads", "a.log 0", 1);
    row("log-threads", "a.log 1 x", 1);
    row("log-threads", "a.log 1 1 1", 1);
    row("log-threads", "a.log 101", 1);
    row("log-threads", "a.log 1 1000001", 1);
    row("task-queue", "", 1);
    row("task-queue", "list", 1);
    row("process-task", "1", 125);
    row("process-task", "0 program", 125);
    row("process-task", "program 1", 125);
    row("process-task", "0.0009 program", 125);
    row("task-watchdog", "a.log 1", 1);
    row("task-watchdog", "a.log 0.0009 file", 1);
    row("task-watchdog", "a.log -1 file", 1);
    row("task-watchdog", "a.log file 1", 1);
}

void TestSmallExamples::aWrongCallIsRefused()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, arguments);
    Example example(name.constData());
    QStringList list = arguments.split(text(" "));
    list.removeAll(QString());
    QTEST(example.run(list), "exitCode");
    const QString start = text(name + ": Usage: " + name + ' ');
    QVERIFY2(example.errors().startsWith(start), qPrintable(example.errors()));
    QCOMPARE(example.entries(), QStringList());
}

void TestSmallExamples::aLogThatCannotBeWrittenIsReported_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QStringList>("arguments");
    QTest::addRow("log-threads") << QByteArray("log-threads") << QStringList();
    QTest::addRow("task-watchdog")
        << QByteArray("task-watchdog") << QStringList{text("1"), text("file")};
}

void TestSmallExamples::aLogThatCannotBeWrittenIsReported()
{
    QFETCH(QByteArray, name);
    QFETCH(QStringList, arguments);
    Example example(name.constData());
    const QString log = example.path("missing/run.log");
    QCOMPARE(example.run(QStringList{log} + arguments), 1);
    QCOMPARE(example.errors(),
             text(name) + text(": The log cannot be written: ") + native(log) + text("\n"));
}

void TestSmallExamples::aSmallLogHoldsAllLines()
{
    Example example("log-threads");
    QCOMPARE(example.run({text("run.log"), text("3"), text("20")}), 0);
    QCOMPARE(linesOfLog(example.path("run.log")).size(), 60);
    const QString report = text("thread 1: lines 1 to 20\nthread 2: lines 1 to 20\n"
                                "thread 3: lines 1 to 20\n");
    QVERIFY2(example.printed().endsWith(text("run.log: 0.0 MiB\n") + report),
             qPrintable(example.printed()));
    QCOMPARE(heldLines(example.path("run.log"), 3), report);
}

void TestSmallExamples::aTruncatedLogHoldsTheNewestLines()
{
    constexpr int Threads = 4;
    Example example("log-threads");
    QCOMPARE(example.run({text("run.log")}), 0);
    const QString log = example.path("run.log");
    const qint64 size = QFile(log).size();
    QVERIFY(size <= Log::MaxLogSize + 255);
    QVERIFY(size >= Log::MaxLogSize - Log::AmountToTruncate - 255);
    QCOMPARE(example.printed().section(QLatin1Char('\n'), 1), heldLines(log, Threads));
    QVERIFY(linesOfLog(log).size() < Threads * 10000);
    QVERIFY(example.printed().contains(text(" to 10000\n")));
}

void TestSmallExamples::checksumsAreWritten()
{
    Example example("task-queue");
    const QByteArray large(3 << 20, 'x');
    QVERIFY(writeFile(example.path("large"), large));
    QVERIFY(writeFile(example.path("empty"), QByteArray()));
    QVERIFY(writeFile(example.path("s"), "s"));
    QCOMPARE(example.run({text("list"), text("large"), text("empty"), text("s")}), 0);
    const auto line = [](const QByteArray &bytes, const char *name) {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex() + "  " + name
            + '\n';
    };
    QCOMPARE(contentOf(example.path("list")),
             line(large, "large") + line(QByteArray(), "empty") + line("s", "s"));
    QCOMPARE(example.entries(),
             QStringList({text("empty"), text("large"), text("list"), text("s")}));
    QCOMPARE(example.printed(),
             progressLine("1 of 3, 33 %: large") + progressLine("1 of 3, 66 %: large")
                 + progressLine("1 of 3, 100 %: large") + progressLine("3 of 3, 100 %: s")
                 + text("\n"));
    QCOMPARE(example.errors(), QString());
}

void TestSmallExamples::aFailureLeavesNoList()
{
    Example example("task-queue");
    QVERIFY(writeFile(example.path("file"), "x"));
    QCOMPARE(example.run({text("list"), text("file"), text("missing"), text("file")}), 1);
    QVERIFY2(example.errors().startsWith(text("task-queue: missing: ")),
             qPrintable(example.errors()));
    QCOMPARE(example.printed(), progressLine("1 of 3, 100 %: file") + text("\n"));
    QCOMPARE(example.entries(), QStringList{text("file")});
}

void TestSmallExamples::whatIsNoFileIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("folder") << text("folder");
    if (onWindows())
        return;
    QTest::addRow("pipe") << text("pipe");
    QTest::addRow("device") << text("/dev/zero");
}

void TestSmallExamples::whatIsNoFileIsRefused()
{
    QFETCH(QString, name);
    Example example("task-queue");
    QVERIFY(QDir(example.path()).mkdir(text("folder")));
    if (name == text("pipe"))
        QCOMPARE(QProcess::execute(text("mkfifo"), {example.path("pipe")}), 0);
    const QStringList entries = example.entries();
    QCOMPARE(example.run({text("list"), name}), 1);
    QCOMPARE(example.errors(), QStringLiteral("task-queue: %1: not a file\n").arg(name));
    QCOMPARE(example.entries(), entries);
}

void TestSmallExamples::aListThatExistsIsKept_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("error");
    QTest::addRow("complete") << QByteArray("list") << text("task-queue: list exists already\n");
    QTest::addRow("incomplete") << QByteArray("list.part") << text("task-queue: list.part: ");
}

void TestSmallExamples::aListThatExistsIsKept()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, error);
    Example example("task-queue");
    QVERIFY(writeFile(example.path(name.constData()), "precious"));
    QCOMPARE(example.run({text("list"), text(name)}), 1);
    QVERIFY2(example.errors().startsWith(error), qPrintable(example.errors()));
    QCOMPARE(contentOf(example.path(name.constData())), QByteArray("precious"));
    QCOMPARE(example.entries(), QStringList{text(name)});
}

void TestSmallExamples::aNameWithALineBreakIsRefused()
{
    Example example("task-queue");
    const QString name = text("a\nb");
    if (!onWindows()) // such a file cannot exist there
        QVERIFY(writeFile(example.path("a\nb"), "x"));
    const QStringList entries = example.entries();
    QCOMPARE(example.run({text("list"), name}), 1);
    QCOMPARE(example.errors(),
             text("task-queue: ") + name + text(": the name contains a line break\n"));
    QCOMPARE(example.entries(), entries);
}

void TestSmallExamples::aCancelLeavesNoList_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addRow("Ctrl-C") << text("INT");
    QTest::addRow("request to end") << text("TERM");
}

void TestSmallExamples::aCancelLeavesNoList()
{
    if (onWindows())
        QSKIP("A process cannot send another one Ctrl-C here");
    QFETCH(QString, signal);
    Example example("task-queue");
    QFile endless(example.path("endless"));
    QVERIFY(endless.open(QIODevice::WriteOnly));
    QVERIFY(endless.resize(qint64(1) << 40)); // sparse
    example.start({text("list"), text("endless")});
    QVERIFY(example.waitsForOutput("1 of 1, 0 %: endless"));
    QCOMPARE(example.entries(), QStringList({text("endless"), text("list.part")}));
    QCOMPARE(QProcess::execute(text("sh"),
                               {text("-c"), text("kill -$0 $1"), signal,
                                QString::number(example.process().processId())}),
             0);
    QCOMPARE(example.finish(), 130);
    QCOMPARE(example.errors(), text("task-queue: Cancelled\n"));
    QCOMPARE(example.entries(), QStringList{text("endless")});
}

void TestSmallExamples::theExitCodeIsPassedOn_data()
{
    QTest::addColumn<int>("exitCode");
    for (const int exitCode : {0, 1, 3, 255})
        QTest::addRow("%d", exitCode) << exitCode;
}

void TestSmallExamples::theExitCodeIsPassedOn()
{
    QFETCH(int, exitCode);
    Example example("process-task");
    QCOMPARE(example.run({text("60"), BuildPaths::helperProgram(), text("exit"),
                          QString::number(exitCode)}),
             exitCode);
    QCOMPARE(example.errors(), QString());
}

void TestSmallExamples::argumentsArePassedAsTheyAre()
{
    const QStringList arguments{text("a b"),         QString(),  text("\"quoted\""),
                                text("%PATH%$HOME"), text("--"), text("ends with \\")};
    Example example("process-task");
    QCOMPARE(
        example.run(QStringList{text("60"), BuildPaths::helperProgram(), text("print-arguments")}
                    + arguments),
        0);
    QCOMPARE(example.printed(), arguments.join(text("\n")) + text("\n"));
}

void TestSmallExamples::theStandardInputIsPassedOn()
{
    if (onWindows())
        QSKIP("There is no program that prints its input here");
    Example example("process-task");
    example.start({text("60"), text("cat")});
    example.process().write("a line\nthe rest");
    example.process().closeWriteChannel();
    QCOMPARE(example.finish(), 0);
    QCOMPARE(example.printed(), text("a line\nthe rest"));
    QCOMPARE(example.errors(), QString());
}

void TestSmallExamples::theEndOfTheStandardInputIsPassedOn()
{
    Example example("process-task");
    example.start({text("60"), BuildPaths::helperProgram(), text("hang"), text("6869"),
                   text("end of input")});
    QVERIFY(example.waitsForOutput("hi"));
    QCOMPARE(example.entries(), QStringList());
    example.process().closeWriteChannel();
    QCOMPARE(example.finish(), 0);
    QCOMPARE(example.entries(), QStringList{text("end of input")});
}

void TestSmallExamples::theTimeLimitEndsTheProgram_data()
{
    QTest::addColumn<bool>("isAskedFirst");
    QTest::addColumn<int>("atLeast"); // milliseconds
    QTest::addRow("killed") << false << 3000;
    if (!onWindows())
        QTest::addRow("ends when it is asked") << true << 1000;
}

void TestSmallExamples::theTimeLimitEndsTheProgram()
{
    QFETCH(bool, isAskedFirst);
    QFETCH(int, atLeast);
    Example example("process-task");
    const QString limit = onWindows() ? text("3") : text("1"); // the start takes longer there
    const QStringList arguments{example.program(), limit,        BuildPaths::helperProgram(),
                                text("hang"),      text("6869"), text("ended by itself")};
    QElapsedTimer time;
    time.start();
    if (isAskedFirst || onWindows()) {
        example.start(arguments.mid(1));
    } else { // the program inherits that the signal is ignored
        example.process().start(text("sh"),
                                QStringList{text("-c"), text("trap '' TERM; exec \"$0\" \"$@\"")}
                                    + arguments);
    }
    QCOMPARE(example.finish(), 124);
    QVERIFY(time.elapsed() >= atLeast);
    QCOMPARE(example.errors(),
             text("process-task: The time limit of ") + limit + text(" s has ended the program\n"));
    QCOMPARE(example.entries(), QStringList());
}

void TestSmallExamples::aProgramThatCannotBeStartedIsReported()
{
    Example example("process-task");
    QCOMPARE(example.run({text("60"), text("./missing")}), 127);
    QVERIFY2(example.errors().startsWith(text("process-task: ./missing: ")),
             qPrintable(example.errors()));
}

void TestSmallExamples::aCrashIsReported()
{
    if (onWindows())
        QSKIP("There is no program that crashes here");
    Example example("process-task");
    QCOMPARE(example.run({text("60"), text("sh"), text("-c"), text("kill -SEGV $$")}), 126);
    QCOMPARE(example.errors(), text("process-task: The program has crashed\n"));
}

void TestSmallExamples::filesThatAreDoneEndTheRun()
{
    Example example("task-watchdog");
    QVERIFY(writeFile(example.path("a"), "done\n"));
    QVERIFY(writeFile(example.path("b"), "iteration 1\ndone\n"));
    QVERIFY(writeFile(example.path("c"), "iteration 1\r\ndone\r\n"));
    QCOMPARE(example.run({text("run.log"), text("60"), text("a"), text("b"), text("c")}), 0);
    QCOMPARE(example.errors(), QString());
    QVERIFY(linesOfLog(example.path("run.log")).contains(text("3 of 3 files are done")));
}

// Not even until the first pause is over.
void TestSmallExamples::aFileThatIsDoneNeedsNoTime()
{
    Example example("task-watchdog");
    QVERIFY(writeFile(example.path("file"), "done\n"));
    QCOMPARE(example.run({text("run.log"), text("0.001"), text("file")}), 0);
    QCOMPARE(example.errors(), QString());
}

void TestSmallExamples::aFileMayBeWrittenAgain_data()
{
    QTest::addColumn<bool>("isReplaced");
    QTest::addRow("shortened") << false;
    QTest::addRow("replaced") << true;
}

void TestSmallExamples::aFileMayBeWrittenAgain()
{
    QFETCH(bool, isReplaced);
    Example example("task-watchdog");
    QVERIFY(writeFile(example.path("file"), "a line of an earlier run\n"));
    example.start({text("run.log"), text("600"), text("file")});
    QVERIFY(QTest::qWaitFor(
        [&] { return contentOf(example.path("run.log")).contains("Starting task: Wait for file"); },
        TimeLimit));
    QTest::qWait(300); // the program reads the file every 50 ms
    if (isReplaced) {
        QVERIFY(writeFile(example.path("new"), "done\n"));
        QVERIFY(QFile::remove(example.path("file")));
        QVERIFY(QFile::rename(example.path("new"), example.path("file")));
    } else {
        QVERIFY(writeFile(example.path("file"), "done\n"));
    }
    QCOMPARE(example.finish(), 0);
    QCOMPARE(example.errors(), QString());
}

void TestSmallExamples::theEndOfALargeFileIsRead()
{
    if (onWindows())
        QSKIP("A file with a hole takes its whole size on the disk here");
    Example example("task-watchdog");
    QFile large(example.path("large"));
    QVERIFY(large.open(QIODevice::WriteOnly));
    QVERIFY(large.resize(qint64(1) << 40));
    QVERIFY(large.seek(large.size()));
    QVERIFY(large.write("\ndone\n") == 6 && large.flush());
    QCOMPARE(example.run({text("run.log"), text("600"), text("large")}), 0);
}

// A timer that is not precise ends early or late: that depends on when it starts.
void TestSmallExamples::noTaskIsEndedBeforeItsTime()
{
    std::list<Example> examples;
    for (int count = 0; count < 8; ++count)
        examples.emplace_back("task-watchdog");
    for (Example &example : examples) {
        example.start({text("run.log"), text("2"), text("missing")});
        QTest::qWait(60);
    }
    for (Example &example : examples) {
        QCOMPARE(example.finish(), 1);
        const QRegularExpressionMatch time = QRegularExpression(text("in ([0-9.]+) sec$"))
                                                 .match(linesOfLog(example.path("run.log")).last());
        QVERIFY2(time.captured(1).toDouble() >= 2, qPrintable(time.captured()));
    }
}

void TestSmallExamples::theWatchdogEndsATaskThatNeverEnds()
{
    Example example("task-watchdog");
    QVERIFY(writeFile(example.path("a"), "done\n"));
    QVERIFY(writeFile(example.path("b"), "abandoned\n"));
    QVERIFY(writeFile(example.path("c"), "done\n"));
    QCOMPARE(example.run({text("run.log"), text("1"), text("a"), text("b"), text("c")}), 1);
    const QString problem = text("No progress for 1 s, task ended: Wait for b");
    QCOMPARE(example.errors(), text("task-watchdog: ") + problem + text("\n"));
    QStringList lines = linesOfLog(example.path("run.log"));
    for (QString &line : lines)
        line.remove(QRegularExpression(text(" in [^ ]+ sec$")));
    QCOMPARE(lines,
             QStringList({text("Start processing tasks"), text("Starting task: Wait for a"),
                          text("Task finished"), text("Starting task: Wait for b"), problem,
                          text("Skipping to clean-up task: Summary"),
                          text("Starting task: Summary"), text("1 of 3 files are done"),
                          text("Task finished"), text("Finished processing tasks")}));
}

// On a busy machine this test itself may make too long a pause. Then it tries again.
void TestSmallExamples::progressKeepsATaskAlive()
{
    constexpr int Limit = 2000; // milliseconds, as on the command line
    qint64 longestPause = Limit;
    for (int attempt = 0; longestPause > Limit / 2; ++attempt) {
        QVERIFY(attempt < 10);
        Example example("task-watchdog");
        example.start({text("run.log"), text("2"), text("file")});
        QElapsedTimer time;
        QElapsedTimer pause;
        time.start();
        pause.start();
        longestPause = 0;
        const auto append = [&](const char *line) {
            const bool isAppended = appendTo(example.path("file"), line);
            longestPause = qMax(longestPause, pause.restart());
            return isAppended;
        };
        while (time.elapsed() < Limit + 1000) {
            QVERIFY(append("a line\n"));
            QTest::qWait(200);
        }
        QVERIFY(append("done\n"));
        const int exitCode = example.finish();
        if (longestPause > Limit / 2)
            continue;
        QCOMPARE(exitCode, 0);
        QVERIFY(linesOfLog(example.path("run.log")).contains(text("1 of 1 files are done")));
    }
}

QTEST_GUILESS_MAIN(TestSmallExamples)

#include "tst_smallexamples.moc"
