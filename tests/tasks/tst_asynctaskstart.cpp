#include <Utility/AsyncTaskProcessor.h>

#include "TestQueue.h"

#include <QtTest/QtTest>

namespace {

// Calls a private slot of the processor, which has no arguments.
bool callSlot(AsyncTaskProcessor &processor, const char *name)
{
    return QMetaObject::invokeMethod(&processor, name, Qt::DirectConnection);
}

} // namespace

// Replaces the slot that starts the next task.
class ProcessorWithStartSlot : public AsyncTaskProcessor
{
    Q_OBJECT

public:
    int starts() const { return starts_; }

private Q_SLOTS:
    void startTaskFromQueue() { ++starts_; }

private:
    int starts_ = 0;
};

class TestAsyncTaskStart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // the start
    void startLaterOnAnEmptyQueueDoesNothing();
    void startLaterLogsTheStartAtOnceAndStartsNothing();
    void theFirstTaskStartsWithAQueuedCall();
    void aProcessorDestroyedBeforeTheFirstTaskStartsNothing();
    void theStartIsLoggedBeforeStartedIsEmittedAndTheTaskRuns();

    // starting twice
    void aSecondStartBeforeTheRunStartsNoTaskTwice_data();
    void aSecondStartBeforeTheRunStartsNoTaskTwice();
    void aSecondStartDuringATaskDoesNotStartTheNextOne();
    void aSecondStartRestartsTheTimeOfTheRun();
    void aStartThatIsStillQueuedRunsATaskAddedAfterTheRun();
    void aTaskAddedAfterTheRunWaitsForTheNextStart();
    void aProcessorStartedAgainRunsWhatWasAddedSince();

    // slots called by name
    void theStartSlotStartsTheFirstTask();
    void theStartSlotDoesNothingWhileATaskRuns();
    void theStartSlotDoesNothingWithAnEmptyQueue();
    void theStartSlotOfADerivedClassIsCalled();
    void theFinishedSlotEndsTheRunningTask();
    void theFinishedSlotDoesNothingWithoutARunningTask();
    void theFinishedSlotDoesNothingWhileTheEndIsHandled_data();
    void theFinishedSlotDoesNothingWhileTheEndIsHandled();
    void theProgressSlotEmitsProgressOfTheRunningTask();
};

void TestAsyncTaskStart::startLaterOnAnEmptyQueueDoesNothing()
{
    Queue queue;
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.lines(), QStringList());
    QCOMPARE(queue.journal, QStringList());
    QVERIFY(queue.processor.isOk());
}

void TestAsyncTaskStart::startLaterLogsTheStartAtOnceAndStartsNothing()
{
    Queue queue;
    const QPointer<TestTask> task = queue.add("A");
    queue.processor.startLater();
    QCOMPARE(queue.lines(), texts({"Start processing tasks"}));
    QCOMPARE(queue.journal, QStringList());
    QVERIFY(task);
}

void TestAsyncTaskStart::theFirstTaskStartsWithAQueuedCall()
{
    Queue queue;
    queue.add("A");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskStart::aProcessorDestroyedBeforeTheFirstTaskStartsNothing()
{
    TemporaryLog log;
    bool ran = false;
    {
        AsyncTaskProcessor processor;
        processor.setLog(log);
        processor.addTask(new TestTask(QStringLiteral("A"), [&ran](TestTask &) { ran = true; }));
        processor.startLater();
    }
    QCOMPARE(execUntilIdle(), 42);
    QVERIFY(!ran);
    QCOMPARE(log.lines(), texts({"Start processing tasks"}));
}

void TestAsyncTaskStart::theStartIsLoggedBeforeStartedIsEmittedAndTheTaskRuns()
{
    Queue queue;
    QStringList linesWhenStarted;
    queue.add("A", [&](TestTask &task) {
        queue.journal.append(QStringLiteral("running A"));
        task.setFinished();
    });
    connect(&queue.processor, &AsyncTaskProcessor::started, this,
            [&] { linesWhenStarted = queue.lines(); });
    QCOMPARE(queue.run(), 0);
    QCOMPARE(linesWhenStarted, texts({"Start processing tasks", "Starting task: A"}));
    QCOMPARE(queue.journal, texts({"started A", "running A", "finished A"}));
}

void TestAsyncTaskStart::aSecondStartBeforeTheRunStartsNoTaskTwice_data()
{
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("tasks that finish inside execute()") << true;
    QTest::newRow("tasks that finish later") << false;
}

void TestAsyncTaskStart::aSecondStartBeforeTheRunStartsNoTaskTwice()
{
    QFETCH(bool, atOnce);
    const TestTask::Work work = atOnce ? succeed() : later(succeed());
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    queue.add("A", work);
    queue.add("B", work);
    queue.add("C", work);
    queue.processor.startLater();
    queue.processor.startLater();
    QTRY_COMPARE(queue.journal.size(), 6);
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started B", "finished B", "started C", "finished C"}));
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Start processing tasks", "Starting task: A",
               "Task finished in TIME", "Starting task: B", "Task finished in TIME",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskStart::aSecondStartDuringATaskDoesNotStartTheNextOne()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", idle());
    queue.add("B");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, texts({"started A"}));

    a->setFinished();
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Start processing tasks",
                    "Task finished in TIME", "Starting task: B", "Task finished in TIME",
                    "Finished processing tasks in TIME"}));
}

void TestAsyncTaskStart::aSecondStartRestartsTheTimeOfTheRun()
{
    Queue queue;
    queue.add("A");
    queue.processor.startLater();
    QElapsedTimer clock;
    clock.start();
    while (!clock.hasExpired(200)) {
        // What passes before the second start does not count.
    }
    clock.start();
    queue.processor.startLater();
    QCOMPARE(exec(), 0);
    const qint64 atMost = clock.elapsed() + 1;
    const QString line = queue.log.lines().last();
    QVERIFY2(finishedLines(0, atMost).contains(line), qPrintable(line));
}

void TestAsyncTaskStart::aStartThatIsStillQueuedRunsATaskAddedAfterTheRun()
{
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    queue.add("A");
    queue.processor.startLater();
    QMetaObject::invokeMethod(
        &queue.processor, [&queue] { queue.add("B"); }, Qt::QueuedConnection);
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Start processing tasks", "Starting task: A",
               "Task finished in TIME", "Finished processing tasks in TIME", "Starting task: B",
               "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskStart::aTaskAddedAfterTheRunWaitsForTheNextStart()
{
    Queue queue;
    queue.add("A");
    QCOMPARE(queue.run(), 0);
    queue.add("B");
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QVERIFY(!queue.processor.isFinished());
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

void TestAsyncTaskStart::aProcessorStartedAgainRunsWhatWasAddedSince()
{
    Queue queue;
    queue.add("A", fail());
    QCOMPARE(queue.run(), 1);
    queue.add("B", fail());
    queue.add("C");
    QCOMPARE(queue.run(), 1); // the failure is never forgotten, and the run was stopped for good
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A",
               "Task finished with errors in TIME: error = broken",
               "Finished processing tasks in TIME", "Start processing tasks", "Starting task: B",
               "Task finished with errors in TIME: error = broken", "Starting task: C",
               "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskStart::theStartSlotStartsTheFirstTask()
{
    Queue queue;
    queue.add("A");
    queue.add("B", fail());
    QVERIFY(callSlot(queue.processor, "startTaskFromQueue"));
    QCOMPARE(exec(), 1);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
    QCOMPARE(queue.lines(),
             texts({"Starting task: A", "Task finished in TIME", "Starting task: B",
                    "Task finished with errors in TIME: error = broken",
                    "Finished processing tasks in TIME"}));
}

void TestAsyncTaskStart::theStartSlotDoesNothingWhileATaskRuns()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", idle());
    queue.add("B");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QVERIFY(callSlot(queue.processor, "startTaskFromQueue"));
    QCOMPARE(queue.journal, texts({"started A"}));
    a->setFinished();
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

void TestAsyncTaskStart::theStartSlotDoesNothingWithAnEmptyQueue()
{
    Queue queue;
    QVERIFY(callSlot(queue.processor, "startTaskFromQueue"));
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, QStringList());
    QCOMPARE(queue.lines(), QStringList());
}

void TestAsyncTaskStart::theStartSlotOfADerivedClassIsCalled()
{
    ProcessorWithStartSlot processor;
    processor.addTask(new TestTask(QStringLiteral("A"), succeed()));
    processor.startLater();
    processor.startLater();
    QCOMPARE(processor.starts(), 0);
    deliverQueuedCalls(processor);
    QCOMPARE(processor.starts(), 2);
}

void TestAsyncTaskStart::theFinishedSlotEndsTheRunningTask()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", idle());
    queue.add("B");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QVERIFY(callSlot(queue.processor, "handleFinishedTask"));
    QVERIFY(!a);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
    QCOMPARE(queue.lines(), linesOfRun({"A", "B"}));
}

void TestAsyncTaskStart::theFinishedSlotDoesNothingWithoutARunningTask()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    QVERIFY(callSlot(queue.processor, "handleFinishedTask"));
    QVERIFY(a);
    QVERIFY(!queue.processor.isFinished());
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, QStringList());
    QCOMPARE(queue.lines(), QStringList());
}

void TestAsyncTaskStart::theFinishedSlotDoesNothingWhileTheEndIsHandled_data()
{
    QTest::addColumn<bool>("taskIsGone");
    QTest::newRow("the task is there") << false;
    QTest::newRow("a slot has deleted the task") << true;
}

void TestAsyncTaskStart::theFinishedSlotDoesNothingWhileTheEndIsHandled()
{
    QFETCH(bool, taskIsGone);
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&] {
        if (taskIsGone)
            delete a;
        QVERIFY(callSlot(queue.processor, "handleFinishedTask"));
    });
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QCOMPARE(queue.lines(), linesOfRun({"A"}));
}

void TestAsyncTaskStart::theProgressSlotEmitsProgressOfTheRunningTask()
{
    Queue queue;
    queue.add("A", idle());
    const auto report = [&queue](const char *text) {
        return QMetaObject::invokeMethod(&queue.processor, "handleProgressFromTask",
                                         Qt::DirectConnection,
                                         Q_ARG(QString, QString::fromLatin1(text)));
    };
    QVERIFY(report("early"));
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QVERIFY(report("half"));
    QCOMPARE(queue.journal, texts({"progress nothing early", "started A", "progress A half"}));
}

QTEST_GUILESS_MAIN(TestAsyncTaskStart)

#include "tst_asynctaskstart.moc"
