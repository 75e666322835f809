#include <Utility/AsyncTaskProcessor.h>

#include "TestQueue.h"

#include <QtTest/QtTest>

class TestAsyncTaskFailure : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // failures
    void anErrorWithoutACleanUpTaskDropsTheQueue();
    void droppedTasksLiveOnAsChildren();
    void anErrorSkipsToTheCleanUpTask();
    void skippedTasksAreDeletedBeforeTheCleanUpTaskStarts();
    void aCleanUpTaskThatIsNextDeletesNothing();
    void tasksAfterTheCleanUpTaskRun();
    void aFailureOfTheLastTaskIsLoggedAndCounts();
    void anIgnoredErrorIsLoggedAndTheQueueGoesOn();
    void anIgnoredErrorDoesNotSkipToTheCleanUpTask();
    void anIgnoredErrorDoesNotHideAnotherOne();
    void anErrorIgnoredInTheFinishedSignalDoesNotCount();
    void withExitOnErrorOffEveryTaskRuns();
    void aCleanUpTaskThatFailsStopsNothing();
    void aCleanUpTaskOutsideTheQueueDeletesTheWholeQueue();
    void aTaskThatIsItsOwnCleanUpTaskDeletesTheWholeQueue();
    void theCleanUpTaskCanBeReplaced();
    void aReplacedCleanUpTaskThatIsGoneDoesNotCount();
    void theCleanUpTaskCanBeTakenAway();
    void theCleanUpTaskOfAnotherTaskDoesNotCount();
    void oneTaskMayCleanUpForSeveral();

    // clean-up tasks that are gone, and addresses used again
    void aCleanUpTaskThatIsGoneDeletesTheWholeQueue_data();
    void aCleanUpTaskThatIsGoneDeletesTheWholeQueue();
    void aCleanUpTaskDeletedInTheQueueDeletesTheTasksAfterIt();
    void aTaskAtTheAddressOfACleanUpTaskIsNotItsSuccessor();
    void aTaskAtTheAddressOfAFinishedTaskDoesNotHaveItsCleanUpTask();
    void aTaskAtTheAddressOfATaskThatWasNeverAddedDoesNotHaveItsCleanUpTask();
    void theCleanUpTaskMayBeNamedBeforeTheTasksAreAdded();
    void cleanUpTasksThatAreGoneLeaveNoObjectBehind();
};

void TestAsyncTaskFailure::anErrorWithoutACleanUpTaskDropsTheQueue()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.add("C");
    QCOMPARE(queue.run(), 1);
    QVERIFY(!a);
    QVERIFY(!queue.processor.isOk());
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QCOMPARE(queue.lines(), linesOfRun({"A: broken"}));
}

void TestAsyncTaskFailure::droppedTasksLiveOnAsChildren()
{
    QPointer<TestTask> b;
    QPointer<TestTask> c;
    {
        Queue queue;
        queue.add("A", fail());
        b = queue.add("B");
        c = queue.add("C");
        QCOMPARE(queue.run(), 1);
        QVERIFY(b);
        QCOMPARE(b->parent(), &queue.processor);
        QVERIFY(c);
        QCOMPARE(c->parent(), &queue.processor);

        queue.processor.startLater(); // they do not come back
        QCOMPARE(execUntilIdle(), 42);
        QCOMPARE(queue.journal, texts({"started A", "finished A"}));
        QVERIFY(b);
    }
    QVERIFY(!b);
    QVERIFY(!c);
}

void TestAsyncTaskFailure::anErrorSkipsToTheCleanUpTask()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "-> C", "C"}));
}

void TestAsyncTaskFailure::skippedTasksAreDeletedBeforeTheCleanUpTaskStarts()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", [&queue](TestTask &task) {
        task.setError(QStringLiteral("broken"));
        task.setFinished();
        queue.journal.append(QStringLiteral("A is done"));
    });
    const QPointer<TestTask> b1 = queue.add("B1");
    const QPointer<TestTask> b2 = queue.add("B2");
    for (const QPointer<TestTask> &b : {b1, b2}) {
        const QString name = b->name();
        connect(b, &QObject::destroyed, this,
                [&queue, name] { queue.journal.append(QStringLiteral("deleted ") + name); });
        connect(b, &AsyncTask::finished, this, [&queue, name] {
            queue.journal.append(QStringLiteral("wrong: finished ") + name);
        });
    }
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.journal,
             texts({"started A", "finished A", "deleted B1", "deleted B2", "A is done", "started C",
                    "finished C"}));
}

void TestAsyncTaskFailure::aCleanUpTaskThatIsNextDeletesNothing()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "-> C", "C"}));
}

void TestAsyncTaskFailure::tasksAfterTheCleanUpTaskRun()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    queue.add("D");
    QCOMPARE(queue.run(), 1);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started C", "finished C", "started D", "finished D"}));
}

void TestAsyncTaskFailure::aFailureOfTheLastTaskIsLoggedAndCounts()
{
    Queue queue;
    queue.add("A");
    queue.add("B", fail(QStringLiteral("no licence")));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A", "B: no licence"}));
}

void TestAsyncTaskFailure::anIgnoredErrorIsLoggedAndTheQueueGoesOn()
{
    Queue queue;
    queue.add("A", fail())->setIgnoreError(true);
    queue.add("B");
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "B"}));
}

void TestAsyncTaskFailure::anIgnoredErrorDoesNotSkipToTheCleanUpTask()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    a->setIgnoreError(true);
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 0);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started B", "finished B", "started C", "finished C"}));
}

void TestAsyncTaskFailure::anIgnoredErrorDoesNotHideAnotherOne()
{
    Queue queue;
    queue.add("A", fail())->setIgnoreError(true);
    queue.add("B", fail());
    queue.add("C");
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

void TestAsyncTaskFailure::anErrorIgnoredInTheFinishedSignalDoesNotCount()
{
    Queue queue;
    queue.add("A", fail());
    queue.add("B");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this,
            [](AsyncTask *task) { task->setIgnoreError(true); });
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "B"}));
}

void TestAsyncTaskFailure::withExitOnErrorOffEveryTaskRuns()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "B", "C"}));
}

void TestAsyncTaskFailure::aCleanUpTaskThatFailsStopsNothing()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    const QPointer<TestTask> c = queue.add("C", fail(QStringLiteral("cannot clean up")));
    queue.add("D");
    const QPointer<TestTask> e = queue.add("E");
    queue.processor.setCleanUpTask(a, c);
    queue.processor.setCleanUpTask(c, e);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "-> C", "C: cannot clean up", "D", "E"}));
}

void TestAsyncTaskFailure::aCleanUpTaskOutsideTheQueueDeletesTheWholeQueue()
{
    Queue queue;
    TestTask outside(QStringLiteral("outside"), idle());
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    queue.processor.setCleanUpTask(a, &outside);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QVERIFY(!c);
    QVERIFY(!outside.parent());
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "-> outside"}));
}

void TestAsyncTaskFailure::aTaskThatIsItsOwnCleanUpTaskDeletesTheWholeQueue()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, a);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QCOMPARE(queue.lines(), linesOfRun({"A: broken", "-> A"}));
}

void TestAsyncTaskFailure::theCleanUpTaskCanBeReplaced()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    const QPointer<TestTask> d = queue.add("D");
    queue.processor.setCleanUpTask(a, b);
    queue.processor.setCleanUpTask(a, d);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QVERIFY(!c);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started D", "finished D"}));
}

void TestAsyncTaskFailure::aReplacedCleanUpTaskThatIsGoneDoesNotCount()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    queue.processor.setCleanUpTask(a, b);
    queue.processor.setCleanUpTask(a, queue.add("D"));
    delete b;
    QCOMPARE(queue.run(), 1);
    QVERIFY(!c);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started D", "finished D"}));
}

void TestAsyncTaskFailure::theCleanUpTaskCanBeTakenAway()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, b);
    queue.processor.setCleanUpTask(a, nullptr);
    QCOMPARE(queue.run(), 1);
    QVERIFY(b); // dropped, not deleted
    QCOMPARE(queue.lines(), linesOfRun({"A: broken"}));
}

void TestAsyncTaskFailure::theCleanUpTaskOfAnotherTaskDoesNotCount()
{
    Queue queue;
    queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(b, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskFailure::oneTaskMayCleanUpForSeveral()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B", fail());
    queue.add("C");
    const QPointer<TestTask> d = queue.add("D");
    queue.processor.setCleanUpTask(a, d);
    queue.processor.setCleanUpTask(b, d);
    QCOMPARE(queue.run(), 1);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started B", "finished B", "started D", "finished D"}));
}

void TestAsyncTaskFailure::aCleanUpTaskThatIsGoneDeletesTheWholeQueue_data()
{
    QTest::addColumn<bool>("canceled");
    QTest::addColumn<bool>("deletedByTheCaller");
    QTest::newRow("error, clean-up task has run") << false << false;
    QTest::newRow("cancel, clean-up task has run") << true << false;
    QTest::newRow("error, clean-up task deleted") << false << true;
    QTest::newRow("cancel, clean-up task deleted") << true << true;
}

void TestAsyncTaskFailure::aCleanUpTaskThatIsGoneDeletesTheWholeQueue()
{
    QFETCH(bool, canceled);
    QFETCH(bool, deletedByTheCaller);
    Queue queue;
    TestMonitor monitor({false, true});
    const QPointer<TestTask> c = queue.add("C");
    const QPointer<TestTask> a = queue.add("A", canceled ? succeed() : fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, c);
    if (canceled)
        queue.processor.setTaskMonitor(&monitor);
    if (deletedByTheCaller) {
        delete c;
        monitor.asked = 1;
    }
    QCOMPARE(queue.run(), canceled ? 0 : 1);
    QVERIFY(!b);
    QCOMPARE(queue.journal.last(), QStringLiteral("finished A"));

    QStringList end;
    if (canceled)
        end = texts({"Task finished in TIME", "Task processing has been canceled"});
    else
        end = texts({"Task finished with errors in TIME: error = broken"});
    end += texts({"Skipping to clean-up task: C", "Finished processing tasks in TIME"});
    QCOMPARE(queue.lines().mid(queue.lines().size() - end.size()), end);
}

void TestAsyncTaskFailure::aCleanUpTaskDeletedInTheQueueDeletesTheTasksAfterIt()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    queue.processor.setCleanUpTask(a, b);
    delete b;
    QCOMPARE(queue.run(), 1);
    QVERIFY(!c);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskFailure::aTaskAtTheAddressOfACleanUpTaskIsNotItsSuccessor()
{
    Queue queue;
    auto *gone = new SameAddressTask(QStringLiteral("gone"), succeed());
    queue.processor.addTask(gone);
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, gone);
    delete gone;
    const QPointer<TestTask> d = new SameAddressTask(QStringLiteral("D"), succeed());
    QCOMPARE(static_cast<void *>(d.data()), static_cast<void *>(gone));
    queue.processor.addTask(d);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QVERIFY(!d);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskFailure::aTaskAtTheAddressOfAFinishedTaskDoesNotHaveItsCleanUpTask()
{
    Queue queue;
    auto *a = new SameAddressTask(QStringLiteral("A"), succeed());
    const QPointer<TestTask> c = new TestTask(QStringLiteral("C"), succeed());
    QPointer<TestTask> e;
    queue.processor.addTask(a);
    queue.processor.setCleanUpTask(a, c);
    queue.add("B", [&](TestTask &task) {
        auto *d = new SameAddressTask(QStringLiteral("D"), fail());
        QCOMPARE(static_cast<void *>(d), static_cast<void *>(a));
        queue.processor.addTask(d);
        e = queue.add("E");
        queue.processor.addTask(c);
        task.setFinished();
    });
    QCOMPARE(queue.run(), 1);
    QVERIFY(e); // dropped, not deleted
    QVERIFY(c);
    QCOMPARE(queue.lines(), linesOfRun({"A", "B", "D: broken"}));
}

void TestAsyncTaskFailure::aTaskAtTheAddressOfATaskThatWasNeverAddedDoesNotHaveItsCleanUpTask()
{
    Queue queue;
    auto *never = new SameAddressTask(QStringLiteral("never"), succeed());
    TestTask outside(QStringLiteral("outside"), idle());
    queue.processor.setCleanUpTask(never, &outside);
    delete never;
    auto *a = new SameAddressTask(QStringLiteral("A"), fail());
    QCOMPARE(static_cast<void *>(a), static_cast<void *>(never));
    queue.processor.addTask(a);
    const QPointer<TestTask> b = queue.add("B");
    QCOMPARE(queue.run(), 1);
    QVERIFY(b); // dropped, not deleted
}

void TestAsyncTaskFailure::theCleanUpTaskMayBeNamedBeforeTheTasksAreAdded()
{
    Queue queue;
    auto *a = new TestTask(QStringLiteral("A"), fail());
    auto *c = new TestTask(QStringLiteral("C"), succeed());
    queue.processor.setCleanUpTask(a, c);
    queue.processor.addTask(a);
    queue.add("B");
    queue.processor.addTask(c);
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
}

void TestAsyncTaskFailure::cleanUpTasksThatAreGoneLeaveNoObjectBehind()
{
    AsyncTaskProcessor processor;
    TestTask task(QStringLiteral("A"), idle());
    for (int mapping = 0; mapping < 100; ++mapping) {
        TestTask cleanUpTask(QStringLiteral("C"), idle());
        processor.setCleanUpTask(&task, &cleanUpTask);
    }
    QCOMPARE(processor.children(), QObjectList());
}

QTEST_GUILESS_MAIN(TestAsyncTaskFailure)

#include "tst_asynctaskfailure.moc"
