#include <Utility/AsyncTaskProcessor.h>

#include "TestQueue.h"

#include <QtTest/QtTest>

class TestAsyncTaskCancel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCancelWithoutACleanUpTaskIsLoggedAndTheQueueGoesOn();
    void aCancelSkipsToTheCleanUpTask();
    void aCancelWithACleanUpTaskOutsideTheQueueDeletesTheWholeQueue();
    void aCancelAfterTheSecondTaskSkipsToItsCleanUpTask();
    void theMonitorIsAskedAfterEveryTask();
    void theMonitorIsAskedAfterTheResultIsLoggedWhileTheTaskIsThere();
    void aMonitorThatChangesItsMindIsObeyedOnce();
    void afterACancelAnErrorDoesNotStopTheQueue();
    void afterAnErrorStopACancelIsNotLogged();
    void aCancelCountsAfterAnErrorThatDidNotStopTheQueue();
    void anErrorAndACancelAtOnceStopLikeAnError();
    void aMonitorThatIsTakenAwayIsNotAsked();
};

void TestAsyncTaskCancel::aCancelWithoutACleanUpTaskIsLoggedAndTheQueueGoesOn()
{
    Queue queue;
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A");
    queue.add("B");
    queue.add("C");
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A", "cancel", "B", "C"}));
}

void TestAsyncTaskCancel::aCancelSkipsToTheCleanUpTask()
{
    Queue queue;
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 0);
    QVERIFY(!b);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
    QCOMPARE(queue.lines(), linesOfRun({"A", "cancel", "-> C", "C"}));
}

void TestAsyncTaskCancel::aCancelWithACleanUpTaskOutsideTheQueueDeletesTheWholeQueue()
{
    Queue queue;
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    TestTask outside(QStringLiteral("outside"), idle());
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, &outside);
    QCOMPARE(queue.run(), 0);
    QVERIFY(!b);
    QCOMPARE(queue.lines(), linesOfRun({"A", "cancel", "-> outside"}));
}

void TestAsyncTaskCancel::aCancelAfterTheSecondTaskSkipsToItsCleanUpTask()
{
    Queue queue;
    TestMonitor monitor({false, true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    const QPointer<TestTask> d = queue.add("D");
    queue.processor.setCleanUpTask(a, c);
    queue.processor.setCleanUpTask(b, d);
    QCOMPARE(queue.run(), 0);
    QVERIFY(!c);
    QCOMPARE(monitor.asked, 3);
    QCOMPARE(queue.lines(), linesOfRun({"A", "B", "cancel", "-> D", "D"}));
}

void TestAsyncTaskCancel::theMonitorIsAskedAfterEveryTask()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    TestMonitor monitor({false, true});
    queue.processor.setTaskMonitor(&monitor);
    QStringList asked;
    monitor.whenAsked = [&] { asked.append(queue.journal.last()); };
    queue.add("A");
    queue.add("B", fail());
    queue.add("C", fail())->setIgnoreError(true);
    queue.add("D");
    QCOMPARE(queue.run(), 1);
    QCOMPARE(asked, texts({"finished A", "finished B", "finished C", "finished D"}));
}

void TestAsyncTaskCancel::theMonitorIsAskedAfterTheResultIsLoggedWhileTheTaskIsThere()
{
    Queue queue;
    TestMonitor monitor({false});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> task = queue.add("A", fail());
    bool isThere = false;
    bool ok = true;
    QString lastLine;
    monitor.whenAsked = [&] {
        isThere = task;
        ok = queue.processor.isOk();
        lastLine = queue.lines().last();
    };
    QCOMPARE(queue.run(), 1);
    QVERIFY(isThere);
    QVERIFY(!ok);
    QCOMPARE(lastLine, QStringLiteral("Task finished with errors in TIME: error = broken"));
}

void TestAsyncTaskCancel::aMonitorThatChangesItsMindIsObeyedOnce()
{
    Queue queue;
    TestMonitor monitor({true, false, true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A");
    queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    queue.add("D");
    queue.processor.setCleanUpTask(c, queue.add("E"));
    QCOMPARE(queue.run(), 0);
    QCOMPARE(monitor.asked, 5);
    QCOMPARE(queue.lines(), linesOfRun({"A", "cancel", "B", "C", "D", "E"}));
}

void TestAsyncTaskCancel::afterACancelAnErrorDoesNotStopTheQueue()
{
    Queue queue;
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B", fail());
    queue.add("C");
    queue.processor.setCleanUpTask(b, queue.add("D"));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A", "cancel", "B: broken", "C", "D"}));
}

void TestAsyncTaskCancel::afterAnErrorStopACancelIsNotLogged()
{
    Queue queue;
    TestMonitor monitor({false, true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> c = queue.add("C");
    queue.add("D");
    queue.processor.setCleanUpTask(a, c);
    queue.processor.setCleanUpTask(c, queue.add("E"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(monitor.asked, 4);
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "-> C", "C", "D", "E"}));
}

void TestAsyncTaskCancel::aCancelCountsAfterAnErrorThatDidNotStopTheQueue()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "cancel", "-> C", "C"}));
}

void TestAsyncTaskCancel::anErrorAndACancelAtOnceStopLikeAnError()
{
    Queue queue;
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    QCOMPARE(queue.run(), 1);
    QVERIFY(b);
    QCOMPARE(monitor.asked, 1);
    QCOMPARE(queue.lines(), linesOfRun({"A: broken"}));
}

void TestAsyncTaskCancel::aMonitorThatIsTakenAwayIsNotAsked()
{
    Queue queue;
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.processor.setTaskMonitor(nullptr);
    queue.add("A");
    QCOMPARE(queue.run(), 0);
    QCOMPARE(monitor.asked, 0);
    QCOMPARE(queue.lines(), linesOfRun({"A"}));
}

QTEST_GUILESS_MAIN(TestAsyncTaskCancel)

#include "tst_asynctaskcancel.moc"
