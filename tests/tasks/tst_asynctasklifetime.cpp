// How long tasks and their processor live, and who owns them.

#include "TestQueue.h"

#include <Utility/AsyncTaskProcessor.h>
#include <Utility/SyncTask.h>

#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace Vorn::Util;

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
    void aTaskAddedTwiceRunsOnce();
    void aTaskThatFinishesAgainInItsFinishedSignalCountsOnce();
    void aTaskCreatedAsAChildIsAddedOnce();
    void aMonitorMayDeleteTheProcessor();
    void aTasksDestructorMayDeleteTheProcessor_data();
    void aTasksDestructorMayDeleteTheProcessor();
    void theEndOfATaskMayDeleteTheProcessor_data();
    void theEndOfATaskMayDeleteTheProcessor();
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
};

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

void TestAsyncTaskLifetime::aTaskCreatedAsAChildIsAddedOnce()
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

void TestAsyncTaskLifetime::theEndOfATaskMayDeleteTheProcessor_data()
{
    QTest::addColumn<bool>("byChild");
    QTest::newRow("in a slot of its destroyed signal") << false;
    QTest::newRow("in the destructor of its child") << true;
}

void TestAsyncTaskLifetime::theEndOfATaskMayDeleteTheProcessor()
{
    QFETCH(bool, byChild);
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    const auto deleteProcessor = [processor] { delete processor; };
    const QPointer<TestTask> task = new TestTask(QStringLiteral("A"), succeed());
    processor->addTask(task);
    // Connected after the processor has made its own connections.
    connect(processor, &AsyncTaskProcessor::started, this, [&](AsyncTask *started) {
        QObject *const observed = byChild ? new QObject(started) : started;
        connect(observed, &QObject::destroyed, this, deleteProcessor);
    });
    processor->startLater();
    QTRY_VERIFY(!processor);
    QVERIFY(!task);
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

// The slot deletes the finished task, so that no task runs while the destructor's event loop could
// start the next one.
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

QTEST_GUILESS_MAIN(TestAsyncTaskLifetime)

#include "tst_asynctasklifetime.moc"
