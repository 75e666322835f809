// The small examples with what the system refuses: disk space, a read, a thread, lines of a log.

#include "BuildPaths.h"
#include "FileSizeLimit.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <QtCore/QProcess>
#include <QtCore/QVector>
#include <QtTest/QtTest>

#include <numeric>

class TestSmallExamplesDisk : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void aListThatDoesNotFitIsRemoved_data();
    void aListThatDoesNotFitIsRemoved();
    void aFileThatCannotBeReadIsReported();
    void theListIsCompletedWhenTheReaderOfTheOutputEnds();

    void aLogOfTheWatchdogThatDoesNotFitIsReported_data();
    void aLogOfTheWatchdogThatDoesNotFitIsReported();

    void aLogOfThreadsThatDoesNotFitIsReported();
    void missingLinesAreReported_data();
    void missingLinesAreReported();
    void aThreadThatCannotBeStartedIsReported();

private:
    void run(const char *example, const QStringList &arguments)
    {
        process_.setWorkingDirectory(testFolder());
        process_.start(program(example), arguments);
        process_.waitForFinished();
    }

    // The program is $0 of the script.
    void runScript(const char *script, const char *example)
    {
        process_.setWorkingDirectory(testFolder());
        process_.start(QStringLiteral("sh"),
                       {QStringLiteral("-c"), QString::fromUtf8(script), program(example)});
        process_.waitForFinished();
    }

    static QString program(const char *example)
    {
        return BuildPaths::smallExample(QString::fromUtf8(example));
    }

    QProcess process_;
};

void TestSmallExamplesDisk::aListThatDoesNotFitIsRemoved_data()
{
    QTest::addColumn<int>("limit"); // bytes
    QTest::newRow("nothing fits") << 0;
    QTest::newRow("one line fits") << 100;
}

void TestSmallExamplesDisk::aListThatDoesNotFitIsRemoved()
{
    QFETCH(int, limit);
    QVERIFY(writeFile(path("a"), "x"));
    QVERIFY(writeFile(path("b"), "x"));
    {
        const FileSizeLimit fullDisk(limit);
        run("task-queue", {QStringLiteral("list"), QStringLiteral("a"), QStringLiteral("b")});
    }
    QCOMPARE(process_.exitCode(), 1);
    QCOMPARE(process_.readAllStandardError(), QByteArray("task-queue: list: cannot be written\n"));
    QCOMPARE(entriesOf(testFolder()), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
}

void TestSmallExamplesDisk::aFileThatCannotBeReadIsReported()
{
    // Opening the memory of a process succeeds, but nothing can be read at address 0.
    run("task-queue", {QStringLiteral("list"), QStringLiteral("/proc/self/mem")});
    QCOMPARE(process_.exitCode(), 1);
    QCOMPARE(process_.readAllStandardError(),
             QByteArray("task-queue: /proc/self/mem: Input/output error\n"));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestSmallExamplesDisk::theListIsCompletedWhenTheReaderOfTheOutputEnds()
{
    QVERIFY(writeFile(path("a"), "x"));
    runScript("mkfifo output; : <output & "
              "exec 3>output; wait; "
              "exec \"$0\" list a a >&3",
              "task-queue");
    QCOMPARE(process_.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process_.exitCode(), 0);
    QCOMPARE(contentOf(path("list")).count('\n'), 2);
    QVERIFY(!QFile::exists(path("list.part")));
}

void TestSmallExamplesDisk::aLogOfTheWatchdogThatDoesNotFitIsReported_data()
{
    QTest::addColumn<QByteArray>("log"); // which an earlier run has left
    QTest::addColumn<int>("limit");      // bytes
    const QByteArray earlier = "[12:00:00] Finished processing tasks in 0.10 sec\n";
    QTest::newRow("nothing fits") << QByteArray() << 0;
    QTest::newRow("the first lines fit") << QByteArray() << 100;
    QTest::newRow("nothing fits after an earlier run") << earlier << int(earlier.size());
    QTest::newRow("a part of a line fits") << earlier << int(earlier.size() + 10);
}

void TestSmallExamplesDisk::aLogOfTheWatchdogThatDoesNotFitIsReported()
{
    QFETCH(QByteArray, log);
    QFETCH(int, limit);
    QVERIFY(writeFile(path("run.log"), log));
    QVERIFY(writeFile(path("file"), "done\n"));
    const QStringList arguments{QStringLiteral("run.log"), QStringLiteral("60"),
                                QStringLiteral("file")};
    {
        const FileSizeLimit fullDisk(limit);
        run("task-watchdog", arguments);
    }
    QCOMPARE(process_.exitCode(), 1);
    QCOMPARE(process_.readAllStandardError(), QByteArray("task-watchdog: The log is incomplete\n"));
    QVERIFY(contentOf(path("run.log")).startsWith(log));

    run("task-watchdog", arguments);
    QCOMPARE(process_.exitCode(), 0);
    QCOMPARE(process_.readAllStandardError(), QByteArray());
}

void TestSmallExamplesDisk::aLogOfThreadsThatDoesNotFitIsReported()
{
    {
        const FileSizeLimit fullDisk(50000);
        run("log-threads", {QStringLiteral("run.log")});
    }
    QCOMPARE(process_.exitCode(), 1);
    QCOMPARE(QFile(path("run.log")).size(), 50000);
    QCOMPARE(process_.readAllStandardError(),
             QByteArray("log-threads: The log holds a damaged line\n"));
}

void TestSmallExamplesDisk::missingLinesAreReported_data()
{
    QTest::addColumn<QVector<int>>("lines");
    QTest::addColumn<QByteArray>("error");
    const QByteArray notWritten = "log-threads: Lines of thread 1 were not written\n";
    QVector<int> all(1000);
    std::iota(all.begin(), all.end(), 1);
    QTest::newRow("none") << all << QByteArray();
    QTest::newRow("in the middle")
        << QVector<int>{1, 2, 4}
        << QByteArray("log-threads: Thread 1 has lost lines after line 2\n");
    QTest::newRow("the first") << all.mid(1) << notWritten;
    QTest::newRow("the last") << all.mid(0, 999) << notWritten;
    QTest::newRow("all") << QVector<int>() << notWritten;
}

// The program writes its log into a pipe, which holds less than all lines. After the first of them
// a file with other lines gets the name of the pipe.
void TestSmallExamplesDisk::missingLinesAreReported()
{
    QFETCH(QVector<int>, lines);
    QFETCH(QByteArray, error);
    QByteArray log;
    for (const int line : lines) {
        log += "[12:00:00] thread 1 line " + QByteArray::number(line) + ' ' + QByteArray(150, '.')
            + '\n';
    }
    QVERIFY(writeFile(path("other.log"), log));
    runScript("mkfifo run.log; "
              "{ head -n 1 >/dev/null; mv other.log run.log; cat >/dev/null; } <run.log & "
              "exec \"$0\" run.log 1 1000",
              "log-threads");
    QCOMPARE(process_.readAllStandardError(), error);
    QCOMPARE(process_.exitCode(), error.isEmpty() ? 0 : 1);
}

void TestSmallExamplesDisk::aThreadThatCannotBeStartedIsReported()
{
    // 100 stacks of 4 TiB each are more than the address space of a process.
    runScript("ulimit -s $((4 << 30)) && exec \"$0\" run.log 100 1", "log-threads");
    QCOMPARE(process_.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process_.exitCode(), 1);
    QCOMPARE(process_.readAllStandardError(),
             QByteArray("log-threads: 100 threads cannot be started\n"));
}

QTEST_GUILESS_MAIN(TestSmallExamplesDisk)
#include "tst_smallexamplesdisk.moc"
