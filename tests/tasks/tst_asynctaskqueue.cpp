#include <Utility/AsyncTaskProcessor.h>

#include <Utility/Log.h>
#include <Utility/System.h>

#include "TestQueue.h"

#include <QtTest/QtTest>

#include <memory>

using Vorn::Util::Log;
using Vorn::Util::System;

class TestAsyncTaskQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // settings
    void aNewProcessorIsOkAndFinishedAndExitsOnError();
    void theParentGivenOwnsTheProcessor();
    void theSettingsAreKept();

    // the queue
    void addTaskTakesOwnership();
    void addTaskIgnoresNull();
    void aTaskGetsTheLogThatTheProcessorHasWhenItIsAdded();
    void aProcessorWithoutALogTakesTheLogOfATaskAway();
    void isFinishedTellsWhetherATaskWaits();
    void isFinishedIsTrueDuringTheLastTask();
    void addingTasksTakesLinearTimeWithEitherParent();
    void destroyingTheProcessorDestroysTheWaitingTasks();
    void destroyingTheProcessorDestroysTheRunningTask();

    // the run
    void aRunThatSucceedsLogsEachStep();
    void tasksRunInTheOrderAdded();
    void finishedIsEmittedBeforeTheResultIsTakenAndLogged();
    void aFinishedTaskIsDeletedBeforeSetFinishedReturns();
    void theNextTaskNeverStartsInsideTheFinishedEmission();
    void theNextStartIsPostedWhenTheTaskBeforeHasFinished();
    void theStackDoesNotGrowWithTheQueue();
    void progressIsPassedOnWithTheRunningTaskAndNotLogged();
    void progressInASlotOfStartedIsPassedOn();
    void namesAndErrorsAreWrittenAsTheyStand();
    void theTimeOfATaskIsThatOfTheTask();
    void theTimeOfTheRunBeginsWithStartLater();
    void theProcessorWritesWithoutTheSizeCheck();
    void aRunWithoutALogWritesNothingAndWorks();
    void aLogSetDuringTheRunGetsTheProcessorsLines();
    void aTaskAddedDuringTheRunIsRunToo();
    void theEventLoopRunsOnWhenItIsNotToBeEnded();
    void theEventLoopIsToBeEndedWhenThisIsSetDuringTheRun();
    void stringBasedConnectionsFindTheSignals();
};

void TestAsyncTaskQueue::aNewProcessorIsOkAndFinishedAndExitsOnError()
{
    const AsyncTaskProcessor processor;
    QVERIFY(processor.isOk());
    QVERIFY(processor.isFinished());
    QVERIFY(processor.exitOnError());
    QVERIFY(!processor.exitEventLoopWhenDone());
    QVERIFY(!processor.parent());
}

void TestAsyncTaskQueue::theParentGivenOwnsTheProcessor()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor(parent.get());
    QCOMPARE(processor->parent(), parent.get());
    parent.reset();
    QVERIFY(!processor);
}

void TestAsyncTaskQueue::theSettingsAreKept()
{
    AsyncTaskProcessor processor;
    processor.setExitOnError(false);
    QVERIFY(!processor.exitOnError());
    QVERIFY(!processor.exitEventLoopWhenDone());
    processor.setExitEventLoopWhenDone(true);
    QVERIFY(processor.exitEventLoopWhenDone());
    QVERIFY(!processor.exitOnError());
    processor.setExitOnError(true);
    processor.setExitEventLoopWhenDone(false);
    QVERIFY(processor.exitOnError());
    QVERIFY(!processor.exitEventLoopWhenDone());
}

void TestAsyncTaskQueue::addTaskTakesOwnership()
{
    QObject formerParent;
    AsyncTaskProcessor processor;
    auto *task = new TestTask(QStringLiteral("A"), succeed(), &formerParent);
    processor.addTask(task);
    QCOMPARE(task->parent(), &processor);
}

void TestAsyncTaskQueue::addTaskIgnoresNull()
{
    Queue queue;
    queue.processor.addTask(nullptr);
    QVERIFY(queue.processor.isFinished());
    queue.add("A");
    queue.processor.addTask(nullptr);
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void TestAsyncTaskQueue::aTaskGetsTheLogThatTheProcessorHasWhenItIsAdded()
{
    const auto speak = [](TestTask &task) {
        task.log(QStringLiteral("I am ") + task.name());
        task.setFinished();
    };
    TemporaryLog first;
    TemporaryLog second;
    AsyncTaskProcessor processor;
    processor.setExitEventLoopWhenDone(true);
    processor.addTask(new TestTask(QStringLiteral("A"), speak));
    processor.setLog(first);
    processor.addTask(new TestTask(QStringLiteral("B"), speak));
    processor.setLog(second);
    processor.addTask(new TestTask(QStringLiteral("C"), speak));
    processor.startLater();
    QCOMPARE(exec(), 0);

    QCOMPARE(first.lines(), texts({"I am B"}));
    QCOMPARE(second.linesWithoutTimes(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Starting task: B", "Task finished in TIME", "Starting task: C", "I am C",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskQueue::aProcessorWithoutALogTakesTheLogOfATaskAway()
{
    TemporaryLog log;
    AsyncTaskProcessor processor;
    processor.setExitEventLoopWhenDone(true);
    auto *task = new TestTask(QStringLiteral("A"), [](TestTask &self) {
        self.log(QStringLiteral("I am A"));
        self.setFinished();
    });
    task->setLog(log);
    processor.addTask(task);
    processor.startLater();
    QCOMPARE(exec(), 0);
    QCOMPARE(log.lines(), QStringList());
}

void TestAsyncTaskQueue::isFinishedTellsWhetherATaskWaits()
{
    Queue queue;
    QVERIFY(queue.processor.isFinished());
    QList<bool> answers;
    const auto ask = [&](TestTask &task) {
        answers.append(queue.processor.isFinished());
        task.setFinished();
    };
    queue.add("A", ask);
    queue.add("B", ask);
    queue.add("C", ask);
    QVERIFY(!queue.processor.isFinished());
    QCOMPARE(queue.run(), 0);
    QCOMPARE(answers, QList<bool>({false, false, true}));
    QVERIFY(queue.processor.isFinished());
}

void TestAsyncTaskQueue::isFinishedIsTrueDuringTheLastTask()
{
    Queue queue;
    const QPointer<TestTask> task = queue.add("A", idle());
    queue.processor.startLater();
    QVERIFY(!queue.processor.isFinished());
    deliverQueuedCalls(queue.processor);
    QCOMPARE(queue.journal, texts({"started A"}));
    QVERIFY(task);
    QVERIFY(queue.processor.isFinished());
}

void TestAsyncTaskQueue::destroyingTheProcessorDestroysTheWaitingTasks()
{
    auto processor = std::make_unique<AsyncTaskProcessor>();
    const QPointer<AsyncTask> first = new TestTask(QStringLiteral("A"), succeed());
    const QPointer<AsyncTask> second = new TestTask(QStringLiteral("B"), succeed());
    processor->addTask(first);
    processor->addTask(second);
    processor->setCleanUpTask(first, second);
    processor.reset();
    QVERIFY(!first);
    QVERIFY(!second);
}

void TestAsyncTaskQueue::destroyingTheProcessorDestroysTheRunningTask()
{
    TemporaryLog log;
    auto processor = std::make_unique<AsyncTaskProcessor>();
    processor->setLog(log);
    bool finished = false;
    connect(processor.get(), &AsyncTaskProcessor::finished, this, [&finished] { finished = true; });
    const QPointer<AsyncTask> task = new TestTask(QStringLiteral("A"), idle());
    processor->addTask(task);
    processor->startLater();
    deliverQueuedCalls(*processor);
    QVERIFY(task);
    processor.reset();
    QVERIFY(!task);
    QVERIFY(!finished);
    QCOMPARE(log.lines(), texts({"Start processing tasks", "Starting task: A"}));
}

void TestAsyncTaskQueue::aRunThatSucceedsLogsEachStep()
{
    Queue queue;
    queue.add("A");
    queue.add("B", later(succeed()));
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(queue.lines(), linesOfRun({"A", "B"}));
}

void TestAsyncTaskQueue::tasksRunInTheOrderAdded()
{
    Queue queue;
    queue.add("A", later(succeed()));
    queue.add("B");
    queue.add("C", later(later(succeed())));
    queue.add("D");
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal,
             texts({"started A", "finished A", "started B", "finished B", "started C", "finished C",
                    "started D", "finished D"}));
}

void TestAsyncTaskQueue::finishedIsEmittedBeforeTheResultIsTakenAndLogged()
{
    Queue queue;
    const QPointer<TestTask> task = queue.add("A", fail(QStringLiteral("No mesh")));
    bool okWhenFinished = false;
    QString errorWhenFinished;
    QStringList linesWhenFinished;
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&](AsyncTask *finished) {
        QCOMPARE(finished, task.data());
        okWhenFinished = queue.processor.isOk();
        errorWhenFinished = finished->error();
        linesWhenFinished = queue.lines();
    });
    QCOMPARE(queue.run(), 1);
    QVERIFY(okWhenFinished);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(errorWhenFinished, QStringLiteral("No mesh"));
    QCOMPARE(linesWhenFinished, texts({"Start processing tasks", "Starting task: A"}));
}

void TestAsyncTaskQueue::aFinishedTaskIsDeletedBeforeSetFinishedReturns()
{
    Queue queue;
    const auto finishAndLook = [&queue](TestTask &task) {
        const QPointer<TestTask> self = &task;
        const QString name = task.name();
        task.setFinished();
        queue.journal.append(name
                             + (self ? QStringLiteral(" is there") : QStringLiteral(" is gone")));
    };
    queue.add("A", finishAndLook);
    queue.add("B", later(finishAndLook));
    QCOMPARE(queue.run(), 0);
    QCOMPARE(
        queue.journal,
        texts({"started A", "finished A", "A is gone", "started B", "finished B", "B is gone"}));
}

void TestAsyncTaskQueue::theNextTaskNeverStartsInsideTheFinishedEmission()
{
    Queue queue;
    int depth = 0;
    int greatestDepth = 0;
    const auto nest = [&](TestTask &task) {
        greatestDepth = qMax(greatestDepth, ++depth);
        task.setFinished();
        --depth;
    };
    for (const char *name : {"A", "B", "C"})
        queue.add(name, nest);
    for (const char *name : {"D", "E"})
        queue.add(name, later(nest));
    QCOMPARE(queue.run(), 0);
    QCOMPARE(greatestDepth, 1);
    QCOMPARE(queue.journal.size(), 10);
}

void TestAsyncTaskQueue::theNextStartIsPostedWhenTheTaskBeforeHasFinished()
{
    Queue queue;
    queue.add("A");
    queue.add("B");
    queue.add("C");
    // What was posted during the finished signal is delivered before the next task starts.
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&](AsyncTask *task) {
        const QString name = task->name();
        QMetaObject::invokeMethod(
            this, [&queue, name] { queue.journal.append(QStringLiteral("posted by ") + name); },
            Qt::QueuedConnection);
    });
    QCOMPARE(queue.run(), 0);
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    QCOMPARE(queue.journal,
             texts({"started A", "finished A", "posted by A", "started B", "finished B",
                    "posted by B", "started C", "finished C", "posted by C"}));
}

void TestAsyncTaskQueue::theStackDoesNotGrowWithTheQueue()
{
    Queue queue;
    const int count = 2000;
    int ran = 0;
    for (int i = 0; i < count; ++i) {
        queue.add("A", [&ran](TestTask &task) {
            ++ran;
            task.setFinished();
        });
    }
    QCOMPARE(queue.run(), 0);
    QCOMPARE(ran, count);
    QCOMPARE(queue.lines().size(), 2 * count + 2);
}

void TestAsyncTaskQueue::progressIsPassedOnWithTheRunningTaskAndNotLogged()
{
    Queue queue;
    const auto report = [](TestTask &task) {
        Q_EMIT task.progress(QStringLiteral("50 %1"));
        Q_EMIT task.progress(QString());
        task.setFinished();
    };
    queue.add("A", report);
    queue.add("B", later(report));
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal,
             texts({"started A", "progress A 50 %1", "progress A ", "finished A", "started B",
                    "progress B 50 %1", "progress B ", "finished B"}));
    QCOMPARE(queue.lines(), linesOfRun({"A", "B"}));
}

void TestAsyncTaskQueue::progressInASlotOfStartedIsPassedOn()
{
    Queue queue;
    queue.add("A");
    connect(&queue.processor, &AsyncTaskProcessor::started, this,
            [](AsyncTask *task) { Q_EMIT task->progress(QStringLiteral("half")); });
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "progress A half", "finished A"}));
}

void TestAsyncTaskQueue::namesAndErrorsAreWrittenAsTheyStand()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("%1 %2 A", fail(QStringLiteral("%1 and %2 größer")));
    queue.processor.setCleanUpTask(a, queue.add("%1%2 C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.lines(), linesOfRun({"%1 %2 A: %1 and %2 größer", "-> %1%2 C", "%1%2 C"}));
}

void TestAsyncTaskQueue::theTimeOfATaskIsThatOfTheTask()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    const auto work = [](const TestTask::Work &end) {
        return
            [end](TestTask &task) { QTimer::singleShot(30, &task, [end, &task] { end(task); }); };
    };
    queue.add("A", work(succeed()));
    queue.add("B", work(fail()));
    QList<qint64> times;
    connect(&queue.processor, &AsyncTaskProcessor::finished, this,
            [&times](AsyncTask *task) { times.append(task->elapsedTime()); });
    QCOMPARE(queue.run(), 1);

    QCOMPARE(times.size(), 2);
    QVERIFY(times.at(0) >= 20); // a coarse timer may fire early
    const QStringList lines = queue.log.lines();
    QCOMPARE(lines.at(2),
             QStringLiteral("Task finished in ") + System::getElapsedTimeString(times.at(0)));
    QCOMPARE(lines.at(4),
             QStringLiteral("Task finished with errors in %1: error = broken")
                 .arg(System::getElapsedTimeString(times.at(1))));
}

void TestAsyncTaskQueue::theTimeOfTheRunBeginsWithStartLater()
{
    Queue queue;
    queue.add("A");
    QElapsedTimer before;
    before.start();
    queue.processor.startLater();
    QElapsedTimer after;
    after.start();
    while (!after.hasExpired(60)) {
        // The time before control is back in the event loop counts too.
    }
    const qint64 atLeast = after.elapsed();
    QCOMPARE(exec(), 0);
    const qint64 atMost = before.elapsed() + 1; // the clocks round down at different moments

    const QString line = queue.log.lines().last();
    QVERIFY2(finishedLines(atLeast - 1, atMost).contains(line), qPrintable(line));
}

void TestAsyncTaskQueue::theProcessorWritesWithoutTheSizeCheck()
{
    Queue queue;
    {
        QFile file(queue.log.fileName());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
        const QByteArray tooLarge(static_cast<int>(Log::MaxLogSize) + 1, 'x');
        QCOMPARE(file.write(tooLarge), qint64(tooLarge.size()));
    }
    queue.add("A");
    QCOMPARE(queue.run(), 0);
    QVERIFY(QFileInfo(queue.log.fileName()).size() > Log::MaxLogSize);
}

void TestAsyncTaskQueue::aRunWithoutALogWritesNothingAndWorks()
{
    Queue queue;
    queue.processor.setLog(nullptr);
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    TestMonitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
    QCOMPARE(queue.lines(), QStringList());
}

void TestAsyncTaskQueue::aLogSetDuringTheRunGetsTheProcessorsLines()
{
    Queue queue;
    TemporaryLog second;
    queue.add("A", [&](TestTask &task) {
        queue.processor.setLog(second);
        task.log(QStringLiteral("I am A"));
        task.setFinished();
    });
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.lines(), texts({"Start processing tasks", "Starting task: A", "I am A"}));
    QCOMPARE(second.linesWithoutTimes(),
             texts({"Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestAsyncTaskQueue::aTaskAddedDuringTheRunIsRunToo()
{
    Queue queue;
    queue.add("A");
    bool added = false;
    connect(&queue.processor, &AsyncTaskProcessor::finished, this, [&] {
        if (!added)
            queue.add("B");
        added = true;
    });
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
    QCOMPARE(queue.lines(), linesOfRun({"A", "B"}));
}

void TestAsyncTaskQueue::theEventLoopRunsOnWhenItIsNotToBeEnded()
{
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    queue.add("A", fail());
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines().last(), QStringLiteral("Finished processing tasks in TIME"));
}

void TestAsyncTaskQueue::theEventLoopIsToBeEndedWhenThisIsSetDuringTheRun()
{
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    queue.add("A", [&](TestTask &task) {
        queue.processor.setExitEventLoopWhenDone(true);
        task.setFinished();
    });
    QCOMPARE(queue.run(), 0);
}

void TestAsyncTaskQueue::stringBasedConnectionsFindTheSignals()
{
    qRegisterMetaType<Vorn::Util::AsyncTask *>("Vorn::Util::AsyncTask*");
    Queue queue;
    const QPointer<TestTask> task = queue.add("A", [](TestTask &self) {
        Q_EMIT self.progress(QStringLiteral("half"));
        self.setFinished();
    });
    const void *address = static_cast<AsyncTask *>(task);
    const auto addressIn = [](const QVariant &value) { // of a task that is gone
        return *static_cast<const void *const *>(value.constData());
    };
    QSignalSpy started(&queue.processor, SIGNAL(started(Vorn::Util::AsyncTask *)));
    QSignalSpy finished(&queue.processor, SIGNAL(finished(Vorn::Util::AsyncTask *)));
    QSignalSpy progress(&queue.processor, SIGNAL(progress(Vorn::Util::AsyncTask *, QString)));
    QVERIFY(started.isValid());
    QVERIFY(finished.isValid());
    QVERIFY(progress.isValid());
    QCOMPARE(queue.run(), 0);
    QCOMPARE(started.count(), 1);
    QCOMPARE(addressIn(started.at(0).at(0)), address);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(addressIn(finished.at(0).at(0)), address);
    QCOMPARE(progress.count(), 1);
    QCOMPARE(addressIn(progress.at(0).at(0)), address);
    QCOMPARE(progress.at(0).at(1).toString(), QStringLiteral("half"));
}

void TestAsyncTaskQueue::addingTasksTakesLinearTimeWithEitherParent()
{
    const int count = 50000;
    const auto nanosecondsToAdd = [](bool bornAsChildren) {
        AsyncTaskProcessor processor;
        QObject *parent = bornAsChildren ? &processor : nullptr;
        QElapsedTimer clock;
        clock.start();
        for (int index = 0; index < count; ++index)
            processor.addTask(new TestTask(QStringLiteral("A"), idle(), parent));
        return clock.nsecsElapsed();
    };
    const qint64 withoutParent = nanosecondsToAdd(false);
    const qint64 asChildren = nanosecondsToAdd(true);
    QVERIFY2(asChildren < 5 * withoutParent,
             qPrintable(QStringLiteral("%1 ns and %2 ns").arg(asChildren).arg(withoutParent)));
}

QTEST_GUILESS_MAIN(TestAsyncTaskQueue)

#include "tst_asynctaskqueue.moc"
