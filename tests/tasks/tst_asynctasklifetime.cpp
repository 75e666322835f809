#include <Utility/AsyncTaskProcessor.h>

#include <Utility/SyncTask.h>

#include "TestQueue.h"

#include <QtTest/QtTest>

#include <functional>
#include <limits>
#include <memory>

// A worker for tasks that call a method.
class Worker : public QObject
{
    Q_OBJECT

public:
    std::function<void()> work;

    Q_INVOKABLE void update()
    {
        const std::function<void()> copy = work;
        copy();
    }
};

class TestAsyncTaskLifetime : public QObject
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
    void aTaskAddedTwiceRunsOnce();
    void aTaskThatFinishesAgainInItsFinishedSignalCountsOnce();
    void aTaskBornAsAChildIsAddedOnce();
    void aMonitorMayDeleteTheProcessor();
    void aTasksDestructorMayDeleteTheProcessor_data();
    void aTasksDestructorMayDeleteTheProcessor();
    void aRunningTaskThatGetsAnotherParentRunsOn();
    void aProcessorMayBeDeletedInItsOwnSignals_data();
    void aProcessorMayBeDeletedInItsOwnSignals();
    void aMethodCalledByATaskMayDeleteTheProcessor();
    void aTaskAndItsProcessorMayBeDeletedInTheFinishedSignal();
    void aTaskSeesItsParentUntilItIsGone_data();
    void aTaskSeesItsParentUntilItIsGone();
    void aTaskThatFinishesInItsDestructorIsDeletedOnce_data();
    void aTaskThatFinishesInItsDestructorIsDeletedOnce();
    void aSlotOfTheProcessorsDestroyedSignalMayDeleteTasks_data();
    void aSlotOfTheProcessorsDestroyedSignalMayDeleteTasks();
    void aTaskMayFinishInTheProcessorsDestroyedSignal();
    void aDroppedTaskMayBeAddedAgain();
    void theNextTaskDoesNotStartInAnEventLoopOfASlot();
    void aRunEndsWithTheTaskThatStartedInAnEventLoopOfASlot();
    void aTaskThatOutlivesItsProcessorIsNotStarted();
    void aSkippedTaskIsNotStartedInAnEventLoopOfItsDestructor();
    void deletingAWaitingTaskTakesNoLongerBecauseOthersWait();
};

void TestAsyncTaskLifetime::aWaitingTaskThatIsDeletedLeavesTheQueue()
{
    Queue queue;
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.add("C");
    delete b;
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
}

void TestAsyncTaskLifetime::theRunEndsWhenAllWaitingTasksAreDeletedBeforeTheStart()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    queue.processor.startLater();
    delete a;
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.lines(), texts({"Start processing tasks", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskLifetime::startLaterDoesNothingWhenAllWaitingTasksAreDeleted()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    delete a;
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.lines(), QStringList());
}

void TestAsyncTaskLifetime::theRunEndsAtOnceWhenASlotDeletesTheLastWaitingTask()
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

void TestAsyncTaskLifetime::theRunEndsWhenTheLastWaitingTaskIsDeletedBetweenTwoTasks()
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
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Finished processing tasks in TIME"}));
}

void TestAsyncTaskLifetime::aWaitingTaskThatGetsAnotherParentIsRun()
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

void TestAsyncTaskLifetime::aWaitingTaskThatAnotherParentDeletesLeavesTheQueue()
{
    Queue queue;
    auto other = std::make_unique<QObject>();
    queue.add("A");
    queue.add("B")->setParent(other.get());
    other.reset();
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskLifetime::aWaitingTaskWithAnotherParentIsAddedOnce()
{
    Queue queue;
    QObject other;
    const QPointer<TestTask> a = queue.add("A");
    a->setParent(&other);
    queue.processor.addTask(a);
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskLifetime::aRunningTaskThatIsDeletedCountsAsFailed()
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

void TestAsyncTaskLifetime::aRunningTaskThatIsDeletedIsCleanedUp()
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

void TestAsyncTaskLifetime::theLastTaskDeletedWhileRunningEndsTheRun()
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

void TestAsyncTaskLifetime::aTaskDeletedInTheStartedSignalCountsAsFailed()
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

void TestAsyncTaskLifetime::aTaskDeletedInTheFinishedSignalCountsAsItEnded_data()
{
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QString>("line");

    QTest::newRow("ok") << false << QStringLiteral("Task finished in TIME");
    QTest::newRow("failed") << true
                            << QStringLiteral("Task finished with errors in TIME: error = broken");
}

void TestAsyncTaskLifetime::aTaskDeletedInTheFinishedSignalCountsAsItEnded()
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

void TestAsyncTaskLifetime::aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded_data()
{
    aTaskDeletedInTheFinishedSignalCountsAsItEnded_data();
}

void TestAsyncTaskLifetime::aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded()
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

void TestAsyncTaskLifetime::aFinishedTaskHandedToAnotherProcessorIsNotRunAgain_data()
{
    QTest::addColumn<bool>("amongOthers");

    QTest::newRow("alone") << false;
    QTest::newRow("among others") << true;
}

void TestAsyncTaskLifetime::aFinishedTaskHandedToAnotherProcessorIsNotRunAgain()
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
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Finished processing tasks in TIME"}));
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

void TestAsyncTaskLifetime::aTaskAddedTwiceRunsOnce()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", [&queue](TestTask &task) {
        queue.processor.addTask(&task);
        task.setFinished();
    });
    queue.processor.addTask(a);
    connect(&queue.processor, &AsyncTaskProcessor::finished, this,
            [&queue](AsyncTask *task) { queue.processor.addTask(task); });
    queue.add("B");
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

void TestAsyncTaskLifetime::aTaskThatFinishesAgainInItsFinishedSignalCountsOnce()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B", idle());
    queue.add("C");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&](AsyncTask *task) {
        if (task != a)
            return;
        a->setFinished();
        deliverQueuedCalls(queue.processor);
    });
    queue.processor.startLater();
    QTRY_VERIFY(!a);
    deliverQueuedCalls(queue.processor);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B"}));
    QMetaObject::invokeMethod(
        b, [b] { b->setFinished(); }, Qt::QueuedConnection);
    QCOMPARE(exec(), 0);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "started B", "finished B", "started C", "finished C"}));
}

void TestAsyncTaskLifetime::aTaskBornAsAChildIsAddedOnce()
{
    Queue queue;
    auto *a = new TestTask(QStringLiteral("A"), succeed(), &queue.processor);
    queue.processor.addTask(a);
    QVERIFY(!queue.processor.isFinished());
    queue.processor.addTask(a);
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskLifetime::aMonitorMayDeleteTheProcessor()
{
    struct Monitor : AsyncTaskMonitor
    {
        bool isCanceled() override
        {
            delete processor;
            return true;
        }
        QPointer<AsyncTaskProcessor> processor;
    };
    TemporaryLog log;
    Monitor monitor;
    monitor.processor = new AsyncTaskProcessor;
    monitor.processor->setLog(log);
    monitor.processor->setTaskMonitor(&monitor);
    const QPointer<TestTask> a = new TestTask(QStringLiteral("A"), succeed());
    monitor.processor->addTask(a);
    monitor.processor->addTask(new TestTask(QStringLiteral("B"), succeed()));
    monitor.processor->startLater();
    QTRY_VERIFY(!monitor.processor);
    QVERIFY(!a);
}

void TestAsyncTaskLifetime::aTasksDestructorMayDeleteTheProcessor_data()
{
    QTest::addColumn<QString>("task");
    QTest::newRow("of the finished task") << QStringLiteral("finished");
    QTest::newRow("of a task that is skipped after a failure") << QStringLiteral("failure");
    QTest::newRow("of a task that is skipped after a deletion") << QStringLiteral("deletion");
}

void TestAsyncTaskLifetime::aTasksDestructorMayDeleteTheProcessor()
{
    QFETCH(QString, task);

    struct Deleter : TestTask
    {
        using TestTask::TestTask;
        ~Deleter() override { delete processor; }
        QPointer<AsyncTaskProcessor> processor;
    };
    TestTask::Work work = succeed();
    if (task == QLatin1String("failure"))
        work = fail();
    else if (task == QLatin1String("deletion"))
        work = [](TestTask &self) { delete &self; };
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    const QPointer<TestTask> first = new TestTask(QStringLiteral("first"), work);
    auto *deleter = new Deleter(QStringLiteral("deleter"), succeed());
    deleter->processor = processor;
    const QPointer<TestTask> last = new TestTask(QStringLiteral("last"), succeed());
    processor->addTask(first);
    processor->addTask(deleter);
    processor->addTask(last);
    processor->setCleanUpTask(first, last);
    processor->startLater();
    QTRY_VERIFY(!processor);
    QVERIFY(!first);
    QVERIFY(!last);
}

void TestAsyncTaskLifetime::aRunningTaskThatGetsAnotherParentRunsOn()
{
    Queue queue;
    QObject other;
    const QPointer<TestTask> a = queue.add("A", idle());
    queue.add("B");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    a->setParent(&other);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, texts({"started A"}));

    Q_EMIT a->progress(QStringLiteral("half"));
    a->setFinished();
    QVERIFY(!a);
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.journal,
             texts({"started A", "progress A half", "finished A", "started B", "finished B"}));
}

void TestAsyncTaskLifetime::aProcessorMayBeDeletedInItsOwnSignals_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<bool>("atOnce");
    for (const char *signal : {"started", "progress", "finished"}) {
        QTest::addRow("%s, inside execute()", signal) << QString::fromLatin1(signal) << true;
        QTest::addRow("%s, later", signal) << QString::fromLatin1(signal) << false;
    }
}

void TestAsyncTaskLifetime::aProcessorMayBeDeletedInItsOwnSignals()
{
    QFETCH(QString, signal);
    QFETCH(bool, atOnce);
    TemporaryLog log;
    TestMonitor monitor({true});
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    processor->setLog(log);
    processor->setTaskMonitor(&monitor);
    processor->setExitEventLoopWhenDone(true);
    const TestTask::Work work = [](TestTask &task) {
        const QPointer<TestTask> self = &task;
        Q_EMIT task.progress(QStringLiteral("half"));
        if (self)
            self->setFinished();
    };
    const QPointer<AsyncTask> a = new TestTask(QStringLiteral("A"), atOnce ? work : later(work));
    const QPointer<AsyncTask> b = new TestTask(QStringLiteral("B"), succeed());
    processor->addTask(a);
    processor->addTask(b);
    processor->setCleanUpTask(a, b);

    const auto deleteProcessor = [&processor] { delete processor; };
    if (signal == QLatin1String("started"))
        connect(processor, &AsyncTaskProcessor::started, this, deleteProcessor);
    else if (signal == QLatin1String("progress"))
        connect(processor, &AsyncTaskProcessor::progress, this, deleteProcessor);
    else
        connect(processor, &AsyncTaskProcessor::finished, this, deleteProcessor);
    processor->startLater();
    QTRY_VERIFY(!processor);
    QCOMPARE(execUntilIdle(), 42);
    QVERIFY(!a);
    QVERIFY(!b);
    QCOMPARE(monitor.asked, 0);
    QCOMPARE(log.lines(), texts({"Start processing tasks", "Starting task: A"}));
}

void TestAsyncTaskLifetime::aMethodCalledByATaskMayDeleteTheProcessor()
{
    Worker worker;
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    const QPointer<AsyncTask> task
        = new Vorn::Util::SyncTask(&worker, QStringLiteral("update"), nullptr);
    processor->addTask(task);
    worker.work = [&processor] { delete processor; };
    processor->startLater();
    QTRY_VERIFY(!processor);
    QVERIFY(!task);
}

void TestAsyncTaskLifetime::aTaskAndItsProcessorMayBeDeletedInTheFinishedSignal()
{
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    const QPointer<TestTask> a = new TestTask(QStringLiteral("A"), succeed());
    const QPointer<TestTask> b = new TestTask(QStringLiteral("B"), succeed());
    processor->addTask(a);
    processor->addTask(b);
    connect(processor, &AsyncTaskProcessor::finished, this, [&] {
        delete a;
        delete processor;
    });
    processor->startLater();
    QTRY_VERIFY(!processor);
    QVERIFY(!a);
    QVERIFY(!b);
}

void TestAsyncTaskLifetime::aTaskSeesItsParentUntilItIsGone_data()
{
    QTest::addColumn<bool>("skipped");
    QTest::newRow("the finished task") << false;
    QTest::newRow("a skipped task") << true;
}

void TestAsyncTaskLifetime::aTaskSeesItsParentUntilItIsGone()
{
    QFETCH(bool, skipped);
    struct Child : TestTask
    {
        using TestTask::TestTask;
        ~Child() override { *parentAtTheEnd = parent(); }
        QObject **parentAtTheEnd = nullptr;
    };
    QObject *parentAtTheEnd = nullptr;
    Queue queue;
    const QPointer<TestTask> first = queue.add("first", fail());
    auto *child = new Child(QStringLiteral("child"), succeed());
    child->parentAtTheEnd = &parentAtTheEnd;
    queue.processor.addTask(child);
    queue.processor.setCleanUpTask(first, skipped ? queue.add("last").data() : child);
    QCOMPARE(queue.run(), 1);
    QCOMPARE(parentAtTheEnd, static_cast<QObject *>(&queue.processor));
}

void TestAsyncTaskLifetime::aTaskThatFinishesInItsDestructorIsDeletedOnce_data()
{
    QTest::addColumn<bool>("skipped");
    QTest::newRow("the finished task") << false;
    QTest::newRow("a skipped task") << true;
}

void TestAsyncTaskLifetime::aTaskThatFinishesInItsDestructorIsDeletedOnce()
{
    QFETCH(bool, skipped);
    struct Finisher : TestTask
    {
        using TestTask::TestTask;
        ~Finisher() override
        {
            ++*deletions;
            setFinished();
        }
        int *deletions = nullptr;
    };
    int deletions = 0;
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", skipped ? fail() : succeed());
    const QPointer<Finisher> b = new Finisher(QStringLiteral("B"), succeed());
    b->deletions = &deletions;
    queue.processor.addTask(b);
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), skipped ? 1 : 0);
    QCOMPARE(deletions, 1);
    QVERIFY(!b);
    QStringList journal = texts({"started A", "finished A"});
    if (!skipped)
        journal += texts({"started B", "finished B"});
    QCOMPARE(queue.journal, journal + texts({"started C", "finished C"}));
}

void TestAsyncTaskLifetime::aSlotOfTheProcessorsDestroyedSignalMayDeleteTasks_data()
{
    QTest::addColumn<QString>("task");
    for (const char *task : {"waiting", "running", "dropped", "clean-up", "with another parent"})
        QTest::newRow(task) << QString::fromLatin1(task);
}

void TestAsyncTaskLifetime::aSlotOfTheProcessorsDestroyedSignalMayDeleteTasks()
{
    QFETCH(QString, task);
    QObject other;
    auto processor = std::make_unique<AsyncTaskProcessor>();
    const QPointer<TestTask> a = new TestTask(QStringLiteral("A"), idle());
    QPointer<TestTask> victim = new TestTask(QStringLiteral("B"), idle());
    processor->addTask(a);
    if (task == QLatin1String("clean-up"))
        processor->setCleanUpTask(a, victim);
    else
        processor->addTask(victim);
    if (task == QLatin1String("with another parent"))
        victim->setParent(&other);
    if (task == QLatin1String("running") || task == QLatin1String("dropped"))
        processor->startLater();
    deliverQueuedCalls(*processor);
    if (task == QLatin1String("running")) {
        victim = a;
    } else if (task == QLatin1String("dropped")) {
        a->setError(QStringLiteral("broken"));
        a->setFinished();
        QVERIFY(victim);
        QVERIFY(processor->isFinished());
    }
    connect(processor.get(), &QObject::destroyed, this, [&victim] { delete victim; });
    processor.reset();
    QVERIFY(!victim);
}

void TestAsyncTaskLifetime::aTaskMayFinishInTheProcessorsDestroyedSignal()
{
    auto processor = std::make_unique<AsyncTaskProcessor>();
    const QPointer<TestTask> a = new TestTask(QStringLiteral("A"), idle());
    processor->addTask(a);
    processor->startLater();
    deliverQueuedCalls(*processor);
    connect(processor.get(), &QObject::destroyed, this, [&a] {
        Q_EMIT a->progress(QStringLiteral("half"));
        a->setFinished();
    });
    processor.reset();
    QVERIFY(!a);
}

void TestAsyncTaskLifetime::aDroppedTaskMayBeAddedAgain()
{
    Queue queue;
    queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    QCOMPARE(queue.run(), 1);
    QVERIFY(b);
    queue.processor.addTask(b);
    queue.processor.addTask(b);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

void TestAsyncTaskLifetime::theNextTaskDoesNotStartInAnEventLoopOfASlot()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&queue] {
        queue.processor.startLater();
        deliverQueuedCalls(queue.processor);
    });
    QCOMPARE(queue.run(), 1);
    QVERIFY(!a);
    QVERIFY(b); // dropped
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

// The slot deletes the finished task, so that no task runs when its event loop starts the next one.
void TestAsyncTaskLifetime::aRunEndsWithTheTaskThatStartedInAnEventLoopOfASlot()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B", idle());
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&](AsyncTask *task) {
        if (task == b)
            return;
        delete a;
        queue.processor.startLater();
        deliverQueuedCalls(queue.processor);
    });
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B"}));
    QCOMPARE(queue.lines().last(), QStringLiteral("Task finished in TIME"));
    b->setFinished();
    QCOMPARE(queue.lines().count(QStringLiteral("Finished processing tasks in TIME")), 1);
    QCOMPARE(queue.lines().last(), QStringLiteral("Finished processing tasks in TIME"));
}

void TestAsyncTaskLifetime::aTaskThatOutlivesItsProcessorIsNotStarted()
{
    bool ran = false;
    QObject other;
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    const QPointer<TestTask> a
        = new TestTask(QStringLiteral("A"), [&ran](TestTask &) { ran = true; });
    processor->addTask(a);
    a->setParent(&other);
    connect(processor, &AsyncTaskProcessor::started, this, [&processor] { delete processor; });
    processor->startLater();
    QTRY_VERIFY(!processor);
    QVERIFY(a);
    QVERIFY(!ran);
}

// The slot deletes the finished task, so that no task runs when the event loop starts the next one.
void TestAsyncTaskLifetime::aSkippedTaskIsNotStartedInAnEventLoopOfItsDestructor()
{
    struct Starter : TestTask
    {
        using TestTask::TestTask;
        ~Starter() override
        {
            processor->startLater();
            deliverQueuedCalls(*processor);
        }
        AsyncTaskProcessor *processor = nullptr;
    };
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<Starter> b = new Starter(QStringLiteral("B"), succeed());
    b->processor = &queue.processor;
    queue.processor.addTask(b);
    queue.processor.setCleanUpTask(a, queue.add("C"));
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&a] { delete a; });
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
}

// Compared with tasks that are only children of an object: a search of the queue for each deleted
// task would take many times longer.
void TestAsyncTaskLifetime::deletingAWaitingTaskTakesNoLongerBecauseOthersWait()
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

QTEST_GUILESS_MAIN(TestAsyncTaskLifetime)

#include "tst_asynctasklifetime.moc"
