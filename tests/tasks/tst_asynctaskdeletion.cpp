// Tasks that are deleted while they wait, while they run and in their own signals.

#include "TestQueue.h"

#include <Utility/AsyncTaskProcessor.h>

#include <QtTest/QtTest>

#include <functional>
#include <limits>
#include <memory>

using namespace Vorn::Util;

class TestAsyncTaskDeletion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWaitingTaskThatIsDeletedLeavesTheQueue();
    void theRunEndsWhenAllWaitingTasksAreDeletedBeforeTheStart();
    void startLaterDoesNothingWhenAllWaitingTasksAreDeleted();
    void theRunEndsAtOnceWhenASlotDeletesTheLastWaitingTask();
    void theRunEndsWhenTheLastWaitingTaskIsDeletedBetweenTwoTasks();
    void aWaitingTaskThatGetsAnotherParentIsRun();
    void aWaitingTaskThatAnotherParentDeletesLeavesTheQueue();
    void aWaitingTaskWithAnotherParentIsAddedOnce();
    void aRunningTaskThatIsDeletedCountsAsFailed();
    void aRunningTaskThatIsDeletedIsCleanedUp();
    void theLastTaskDeletedWhileRunningEndsTheRun();
    void aTaskDeletedInTheStartedSignalCountsAsFailed();
    void aTaskDeletedInTheFinishedSignalCountsAsItEnded_data();
    void aTaskDeletedInTheFinishedSignalCountsAsItEnded();
    void aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded_data();
    void aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded();
    void aFinishedTaskHandedToAnotherProcessorIsNotRunAgain_data();
    void aFinishedTaskHandedToAnotherProcessorIsNotRunAgain();
    void deletingAWaitingTaskTakesNoLongerBecauseOthersWait();
};

void TestAsyncTaskDeletion::aWaitingTaskThatIsDeletedLeavesTheQueue()
{
    Queue queue;
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.add("C");
    delete b;
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
}

void TestAsyncTaskDeletion::theRunEndsWhenAllWaitingTasksAreDeletedBeforeTheStart()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    queue.processor.startLater();
    delete a;
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.lines(), linesOfRun({}));
}

void TestAsyncTaskDeletion::startLaterDoesNothingWhenAllWaitingTasksAreDeleted()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    delete a;
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.lines(), QStringList());
}

void TestAsyncTaskDeletion::theRunEndsAtOnceWhenASlotDeletesTheLastWaitingTask()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", idle());
    const QPointer<TestTask> b = queue.add("B");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&b] { delete b; });
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    a->setFinished();
    QCOMPARE(queue.lines().last(), QStringLiteral("Finished processing tasks in TIME"));
}

void TestAsyncTaskDeletion::theRunEndsWhenTheLastWaitingTaskIsDeletedBetweenTwoTasks()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    bool aWasGone = false;
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&] {
        QMetaObject::invokeMethod(
            this,
            [&] {
                aWasGone = !a;
                delete b;
            },
            Qt::QueuedConnection);
    });
    QCOMPARE(queue.run(), 0);
    QVERIFY(aWasGone);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QCOMPARE(queue.lines(), linesOfRun({"A"}));
}

void TestAsyncTaskDeletion::aWaitingTaskThatGetsAnotherParentIsRun()
{
    Queue queue;
    QObject other;
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    b->setParent(&other);
    c->setParent(nullptr);
    QCOMPARE(queue.run(), 0);
    QVERIFY(!b);
    QVERIFY(!c);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started B", "finished B", "started C", "finished C"}));
}

void TestAsyncTaskDeletion::aWaitingTaskThatAnotherParentDeletesLeavesTheQueue()
{
    Queue queue;
    auto other = std::make_unique<QObject>();
    queue.add("A");
    queue.add("B")->setParent(other.get());
    other.reset();
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskDeletion::aWaitingTaskWithAnotherParentIsAddedOnce()
{
    Queue queue;
    QObject other;
    const QPointer<TestTask> a = queue.add("A");
    a->setParent(&other);
    queue.processor.addTask(a);
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskDeletion::aRunningTaskThatIsDeletedCountsAsFailed()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", idle());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QTimer::singleShot(0, this, [&a] { delete a; });
    QCOMPARE(exec(), 1);
    QVERIFY(!a);
    QVERIFY(b); // dropped
    QVERIFY(!queue.processor.isOk());
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(queue.journal, texts({"started A"}));
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskDeletion::aRunningTaskThatIsDeletedIsCleanedUp()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", idle());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QTimer::singleShot(0, this, [&a] { delete a; });
    QCOMPARE(exec(), 1);
    QVERIFY(!b);
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskDeletion::theLastTaskDeletedWhileRunningEndsTheRun()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    const QPointer<TestTask> a = queue.add("A", idle());
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QTimer::singleShot(0, this, [&a] { delete a; });
    QCOMPARE(exec(), 1);
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskDeletion::aTaskDeletedInTheStartedSignalCountsAsFailed()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    bool ran = false;
    const QPointer<TestTask> a = queue.add("A", [&ran](TestTask &) { ran = true; });
    queue.add("B");
    connect(&queue.processor, &AsyncTaskProcessor::started, this, [&a] { delete a; });
    QCOMPARE(queue.run(), 1);
    QVERIFY(!ran);
    QCOMPARE(queue.journal, texts({"started A", "started B", "finished B"}));
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Starting task: B",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskDeletion::aTaskDeletedInTheFinishedSignalCountsAsItEnded_data()
{
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QString>("line");

    QTest::newRow("ok") << false << QStringLiteral("Task finished in TIME");
    QTest::newRow("failed") << true
                            << QStringLiteral("Task finished with errors in TIME: error = broken");
}

void TestAsyncTaskDeletion::aTaskDeletedInTheFinishedSignalCountsAsItEnded()
{
    QFETCH(bool, fails);
    QFETCH(QString, line);

    Queue queue;
    queue.processor.setExitOnError(false);
    const QPointer<TestTask> a = queue.add("A", fails ? fail() : succeed());
    queue.add("B");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&a] { delete a; });
    QCOMPARE(queue.run(), fails ? 1 : 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
    QCOMPARE(queue.lines(),
             QStringList(
                 {QStringLiteral("Start processing tasks"), QStringLiteral("Starting task: A"),
                  line, QStringLiteral("Starting task: B"), QStringLiteral("Task finished in TIME"),
                  QStringLiteral("Finished processing tasks in TIME")}));
}

void TestAsyncTaskDeletion::aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded_data()
{
    aTaskDeletedInTheFinishedSignalCountsAsItEnded_data();
}

void TestAsyncTaskDeletion::aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded()
{
    QFETCH(bool, fails);
    QFETCH(QString, line);

    Queue queue;
    queue.processor.setExitOnError(!fails);
    const QPointer<TestTask> a = queue.add("A", fails ? fail() : succeed());
    queue.add("B");
    queue.add("C");

    Queue other;
    other.processor.setExitEventLoopWhenDone(false);
    other.add("X");
    QEventLoop loop;
    connect(&other.processor, &AsyncTaskProcessor::finished, &loop, [&] {
        delete a;
        loop.quit();
    });
    connect(&queue.processor, &AsyncTaskProcessor::finished, &loop, [&](AsyncTask *task) {
        if (task == a) {
            other.processor.startLater();
            QTimer::singleShot(20000, &loop, &QEventLoop::quit);
            loop.exec();
        }
    });
    QCOMPARE(queue.run(), fails ? 1 : 0);
    QCOMPARE(other.journal, texts({"started X", "finished X"}));
    QVERIFY(!a);
    QCOMPARE(queue.processor.isOk(), !fails);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started B", "finished B", "started C", "finished C"}));
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A"}) + QStringList(line)
                 + texts({"Starting task: B", "Task finished in TIME", "Starting task: C",
                          "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskDeletion::aFinishedTaskHandedToAnotherProcessorIsNotRunAgain_data()
{
    QTest::addColumn<bool>("amongOthers");

    QTest::newRow("alone") << false;
    QTest::newRow("among others") << true;
}

void TestAsyncTaskDeletion::aFinishedTaskHandedToAnotherProcessorIsNotRunAgain()
{
    QFETCH(bool, amongOthers);

    Queue other;
    if (amongOthers)
        other.add("X");
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    const QPointer<TestTask> a = queue.add("A");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&](AsyncTask *task) {
        other.processor.addTask(task);
        if (amongOthers)
            other.add("Y");
        other.processor.startLater();
    });
    queue.processor.startLater();
    QCOMPARE(exec(), 0);
    QVERIFY(!a);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QCOMPARE(queue.lines(), linesOfRun({"A"}));
    QVERIFY(other.processor.isOk());
    QStringList journal;
    QStringList lines = texts({"Start processing tasks"});
    if (amongOthers) {
        journal = texts({"started X", "finished X", "started Y", "finished Y"});
        lines += texts({"Starting task: X", "Task finished in TIME", "Starting task: Y",
                        "Task finished in TIME"});
    }
    QCOMPARE(other.journal, journal);
    QCOMPARE(other.lines(), lines + texts({"Finished processing tasks in TIME"}));
}

// Compared with tasks that are only children of an object: a search of the queue for each deleted
// task would take many times longer.
void TestAsyncTaskDeletion::deletingAWaitingTaskTakesNoLongerBecauseOthersWait()
{
    constexpr int Count = 16000;
    const auto nanosecondsToDelete = [](const std::function<void(AsyncTask *)> &add) {
        QList<QObject *> tasks;
        for (int index = 0; index < Count; ++index) {
            auto *task = new TestTask(QStringLiteral("A"), idle());
            tasks.append(task);
            add(task);
        }
        QElapsedTimer clock;
        clock.start();
        qDeleteAll(tasks);
        return clock.nsecsElapsed();
    };
    qint64 waiting = std::numeric_limits<qint64>::max();
    qint64 children = waiting;
    for (int round = 0; round < 5; ++round) { // other programs slow single runs down
        AsyncTaskProcessor processor;
        QObject parent;
        waiting
            = qMin(waiting, nanosecondsToDelete([&](AsyncTask *task) { processor.addTask(task); }));
        children = qMin(children,
                        nanosecondsToDelete([&](AsyncTask *task) { task->setParent(&parent); }));
    }
    QVERIFY2(waiting < 5 * children,
             qPrintable(QStringLiteral("%1 ns and %2 ns").arg(waiting).arg(children)));
}

QTEST_GUILESS_MAIN(TestAsyncTaskDeletion)

#include "tst_asynctaskdeletion.moc"
