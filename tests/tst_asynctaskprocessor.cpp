#include <Utility/AsyncTaskProcessor.h>

#include <Utility/AsyncTaskMonitor.h>
#include <Utility/Log.h>
#include <Utility/SyncTask.h>
#include <Utility/System.h>

#include "TestLog.h"
#include "TestTask.h"

#include <QtTest/QtTest>

#include <memory>
#include <new>

using Vorn::Util::AsyncTask;
using Vorn::Util::AsyncTaskMonitor;
using Vorn::Util::AsyncTaskProcessor;
using Vorn::Util::Log;
using Vorn::Util::System;

namespace {

const int TimedOut = -1;

// The event loop, which a run that never ends leaves with TimedOut.
int exec()
{
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [] { QCoreApplication::exit(TimedOut); });
    watchdog.start(20000);
    return QCoreApplication::exec();
}

// The event loop until nothing is left to do at once; 42 when nothing else ended it.
int execUntilIdle()
{
    QTimer::singleShot(50, qApp, [] { QCoreApplication::exit(42); });
    return QCoreApplication::exec();
}

// Delivers the processor's queued calls, those included that are made meanwhile.
void deliverQueuedCalls(AsyncTaskProcessor &processor)
{
    QCoreApplication::sendPostedEvents(&processor, QEvent::MetaCall);
}

// The last lines of all runs that take from \a atLeast to \a atMost milliseconds.
QStringList finishedLines(qint64 atLeast, qint64 atMost)
{
    QStringList lines;
    for (qint64 time = atLeast; time <= atMost; ++time)
        lines.append(QStringLiteral("Finished processing tasks in ")
                     + System::getElapsedTimeString(time));
    return lines;
}

// A processor with a log, and a journal of its signals.
struct Queue
{
    TestLog log;
    QStringList journal;
    AsyncTaskProcessor processor;

    Queue()
    {
        processor.setLog(log);
        processor.setExitEventLoopWhenDone(true);
        QObject::connect(&processor, &AsyncTaskProcessor::started, [this](AsyncTask *task) {
            journal.append(QStringLiteral("started ") + task->name());
        });
        QObject::connect(&processor, &AsyncTaskProcessor::finished, [this](AsyncTask *task) {
            journal.append(QStringLiteral("finished ") + task->name());
        });
        QObject::connect(&processor, &AsyncTaskProcessor::progress,
                         [this](AsyncTask *task, const QString &text) {
                             journal.append(QStringLiteral("progress ") + task->name()
                                            + QLatin1Char(' ') + text);
                         });
    }

    QPointer<TestTask> add(const char *name, const TestTask::Work &work = succeed())
    {
        auto *task = new TestTask(QString::fromLatin1(name), work);
        processor.addTask(task);
        return task;
    }

    int run()
    {
        processor.startLater();
        return exec();
    }

    QStringList lines() const { return log.linesWithoutTimes(); }
};

// Gives its answers one after another, the last one again and again.
class Monitor : public AsyncTaskMonitor
{
public:
    explicit Monitor(const QList<bool> &answers)
        : answers_(answers)
    {
    }

    bool isCanceled() override
    {
        if (whenAsked)
            whenAsked();
        return answers_.at(qMin(asked++, answers_.size() - 1));
    }

    int asked = 0;
    std::function<void()> whenAsked;

private:
    QList<bool> answers_;
};

// All of them have the same address, one after another.
class SameAddressTask : public TestTask
{
public:
    using TestTask::TestTask;

    static void *operator new(std::size_t size)
    {
        alignas(std::max_align_t) static unsigned char place[1024];
        if (taken || size > sizeof place)
            qFatal("No place for the task");
        taken = true;
        return place;
    }

    static void operator delete(void *) { taken = false; }

private:
    static bool taken;
};

bool SameAddressTask::taken = false;

} // namespace

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

class tst_AsyncTaskProcessor : public QObject
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
    void isFinishedTellsWhetherATaskWaits();
    void isFinishedIsTrueDuringTheLastTask();
    void destroyingTheProcessorDestroysTheWaitingTasks();
    void destroyingTheProcessorDestroysTheRunningTask();

    // the start
    void startLaterOnAnEmptyQueueDoesNothing();
    void startLaterLogsTheStartAtOnceAndStartsNothing();
    void theFirstTaskStartsWithAQueuedCall();
    void aProcessorDestroyedBeforeTheFirstTaskStartsNothing();
    void theStartIsLoggedBeforeStartedIsEmittedAndTheTaskRuns();

    // the run
    void aRunThatSucceedsLogsEachStep();
    void tasksRunInTheOrderAdded();
    void finishedIsEmittedBeforeTheResultIsTakenAndLogged();
    void aFinishedTaskIsDeletedBeforeSetFinishedReturns();
    void theNextTaskNeverStartsInsideTheFinishedEmission();
    void theNextStartIsPostedWhenTheTaskBeforeHasFinished();
    void theStackDoesNotGrowWithTheQueue();
    void progressIsPassedOnWithTheRunningTaskAndNotLogged();
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

    // failures
    void anErrorWithoutACleanUpTaskDropsTheQueue();
    void droppedTasksLiveOnAsChildren();
    void anErrorSkipsToTheCleanUpTask();
    void skippedTasksAreDeletedBeforeTheCleanUpTaskStarts();
    void aCleanUpTaskThatIsNextDeletesNothing();
    void tasksBehindTheCleanUpTaskRun();
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

    // cancel
    void aCancelWithoutACleanUpTaskIsLoggedAndTheQueueGoesOn();
    void aCancelSkipsToTheCleanUpTask();
    void aCancelWithACleanUpTaskOutsideTheQueueDeletesTheWholeQueue();
    void aCancelAfterTheSecondTaskSkipsToItsCleanUpTask();
    void theMonitorIsAskedAfterEveryTask();
    void theMonitorIsAskedAfterTheResultIsLoggedWhileTheTaskIsThere();
    void aMonitorThatChangesItsMindIsObeyedOnce();
    void afterACancelAnErrorDoesNotStopTheQueue();
    void afterAnErrorStopACancelIsNotLogged();
    void afterAnErrorThatDidNotStopACancelCounts();
    void anErrorAndACancelTogetherAreAnErrorStop();
    void aMonitorThatIsTakenAwayIsNotAsked();

    // clean-up tasks that are gone, and addresses used again
    void aCleanUpTaskThatIsGoneDeletesTheWholeQueue_data();
    void aCleanUpTaskThatIsGoneDeletesTheWholeQueue();
    void aTaskAtTheAddressOfACleanUpTaskIsNotItsSuccessor();
    void aTaskAtTheAddressOfAFinishedTaskHasItsCleanUpTask();

    // starting twice
    void aSecondStartBeforeTheRunStartsNoTaskTwice_data();
    void aSecondStartBeforeTheRunStartsNoTaskTwice();
    void aSecondStartDuringATaskDoesNotStartTheNextOne();
    void aSecondStartRestartsTheTimeOfTheRun();
    void aTaskAddedAfterTheRunWaitsForTheNextStart();
    void aProcessorStartedAgainRunsWhatWasAddedSince();

    // what others delete
    void aWaitingTaskThatIsDeletedLeavesTheQueue();
    void theRunEndsWhenAllWaitingTasksAreDeletedBeforeTheStart();
    void theRunEndsWhenTheLastWaitingTaskIsDeletedBetweenTwoTasks();
    void aWaitingTaskThatGetsAnotherParentLeavesTheQueue();
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
    void aRunningTaskThatGetsAnotherParentCountsAsFailed();
    void aProcessorMayBeDeletedInItsOwnSignals_data();
    void aProcessorMayBeDeletedInItsOwnSignals();
    void aMethodCalledByATaskMayDeleteTheProcessor();
};

// Settings

void tst_AsyncTaskProcessor::aNewProcessorIsOkAndFinishedAndExitsOnError()
{
    const AsyncTaskProcessor processor;
    QVERIFY(processor.isOk());
    QVERIFY(processor.isFinished());
    QVERIFY(processor.exitOnError());
    QVERIFY(!processor.exitEventLoopWhenDone());
    QVERIFY(!processor.parent());
}

void tst_AsyncTaskProcessor::theParentGivenOwnsTheProcessor()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor(parent.get());
    QCOMPARE(processor->parent(), parent.get());
    parent.reset();
    QVERIFY(!processor);
}

void tst_AsyncTaskProcessor::theSettingsAreKept()
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

// The queue

void tst_AsyncTaskProcessor::addTaskTakesOwnership()
{
    QObject formerParent;
    AsyncTaskProcessor processor;
    auto *task = new TestTask(QStringLiteral("A"), succeed(), &formerParent);
    processor.addTask(task);
    QCOMPARE(task->parent(), &processor);
}

void tst_AsyncTaskProcessor::addTaskIgnoresNull()
{
    Queue queue;
    queue.processor.addTask(nullptr);
    QVERIFY(queue.processor.isFinished());
    queue.add("A");
    queue.processor.addTask(nullptr);
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void tst_AsyncTaskProcessor::aTaskGetsTheLogThatTheProcessorHasWhenItIsAdded()
{
    const auto speak = [](TestTask &task) {
        task.log(QStringLiteral("I am ") + task.name());
        task.setFinished();
    };
    TestLog first;
    TestLog second;
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

void tst_AsyncTaskProcessor::isFinishedTellsWhetherATaskWaits()
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

void tst_AsyncTaskProcessor::isFinishedIsTrueDuringTheLastTask()
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

void tst_AsyncTaskProcessor::destroyingTheProcessorDestroysTheWaitingTasks()
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

void tst_AsyncTaskProcessor::destroyingTheProcessorDestroysTheRunningTask()
{
    TestLog log;
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

// The start

void tst_AsyncTaskProcessor::startLaterOnAnEmptyQueueDoesNothing()
{
    Queue queue;
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.lines(), QStringList());
    QCOMPARE(queue.journal, QStringList());
    QVERIFY(queue.processor.isOk());
}

void tst_AsyncTaskProcessor::startLaterLogsTheStartAtOnceAndStartsNothing()
{
    Queue queue;
    const QPointer<TestTask> task = queue.add("A");
    queue.processor.startLater();
    QCOMPARE(queue.lines(), texts({"Start processing tasks"}));
    QCOMPARE(queue.journal, QStringList());
    QVERIFY(task);
}

void tst_AsyncTaskProcessor::theFirstTaskStartsWithAQueuedCall()
{
    Queue queue;
    queue.add("A");
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void tst_AsyncTaskProcessor::aProcessorDestroyedBeforeTheFirstTaskStartsNothing()
{
    TestLog log;
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

void tst_AsyncTaskProcessor::theStartIsLoggedBeforeStartedIsEmittedAndTheTaskRuns()
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

// The run

void tst_AsyncTaskProcessor::aRunThatSucceedsLogsEachStep()
{
    Queue queue;
    queue.add("A");
    queue.add("B", later(succeed()));
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Starting task: B", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::tasksRunInTheOrderAdded()
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

void tst_AsyncTaskProcessor::finishedIsEmittedBeforeTheResultIsTakenAndLogged()
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

void tst_AsyncTaskProcessor::aFinishedTaskIsDeletedBeforeSetFinishedReturns()
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

void tst_AsyncTaskProcessor::theNextTaskNeverStartsInsideTheFinishedEmission()
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

void tst_AsyncTaskProcessor::theNextStartIsPostedWhenTheTaskBeforeHasFinished()
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

void tst_AsyncTaskProcessor::theStackDoesNotGrowWithTheQueue()
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

void tst_AsyncTaskProcessor::progressIsPassedOnWithTheRunningTaskAndNotLogged()
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
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Starting task: B", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::namesAndErrorsAreWrittenAsTheyStand()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("%1 %2 A", fail(QStringLiteral("%1 and %2 größer")));
    queue.processor.setCleanUpTask(a, queue.add("%1%2 C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: %1 %2 A",
                    "Task finished with errors in TIME: error = %1 and %2 größer",
                    "Skipping to clean-up task: %1%2 C", "Starting task: %1%2 C",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::theTimeOfATaskIsThatOfTheTask()
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

void tst_AsyncTaskProcessor::theTimeOfTheRunBeginsWithStartLater()
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
    const qint64 atMost = before.elapsed() + 1; // the clocks cut their milliseconds differently

    const QString line = queue.log.lines().last();
    QVERIFY2(finishedLines(atLeast - 1, atMost).contains(line), qPrintable(line));
}

void tst_AsyncTaskProcessor::theProcessorWritesWithoutTheSizeCheck()
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

void tst_AsyncTaskProcessor::aRunWithoutALogWritesNothingAndWorks()
{
    Queue queue;
    queue.processor.setLog(nullptr);
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
    QCOMPARE(queue.lines(), QStringList());
}

void tst_AsyncTaskProcessor::aLogSetDuringTheRunGetsTheProcessorsLines()
{
    Queue queue;
    TestLog second;
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

void tst_AsyncTaskProcessor::aTaskAddedDuringTheRunIsRunToo()
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
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Starting task: B", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::theEventLoopRunsOnWhenItIsNotToBeEnded()
{
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    queue.add("A", fail());
    queue.processor.startLater();
    QCOMPARE(execUntilIdle(), 42);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines().last(), QStringLiteral("Finished processing tasks in TIME"));
}

void tst_AsyncTaskProcessor::theEventLoopIsToBeEndedWhenThisIsSetDuringTheRun()
{
    Queue queue;
    queue.processor.setExitEventLoopWhenDone(false);
    queue.add("A", [&](TestTask &task) {
        queue.processor.setExitEventLoopWhenDone(true);
        task.setFinished();
    });
    QCOMPARE(queue.run(), 0);
}

void tst_AsyncTaskProcessor::stringBasedConnectionsFindTheSignals()
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

// Failures

void tst_AsyncTaskProcessor::anErrorWithoutACleanUpTaskDropsTheQueue()
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
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::droppedTasksLiveOnAsChildren()
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

void tst_AsyncTaskProcessor::anErrorSkipsToTheCleanUpTask()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A",
               "Task finished with errors in TIME: error = broken", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::skippedTasksAreDeletedBeforeTheCleanUpTaskStarts()
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

void tst_AsyncTaskProcessor::aCleanUpTaskThatIsNextDeletesNothing()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A",
               "Task finished with errors in TIME: error = broken", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::tasksBehindTheCleanUpTaskRun()
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

void tst_AsyncTaskProcessor::aFailureOfTheLastTaskIsLoggedAndCounts()
{
    Queue queue;
    queue.add("A");
    queue.add("B", fail(QStringLiteral("no licence")));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Starting task: B", "Task finished with errors in TIME: error = no licence",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::anIgnoredErrorIsLoggedAndTheQueueGoesOn()
{
    Queue queue;
    queue.add("A", fail())->setIgnoreError(true);
    queue.add("B");
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken", "Starting task: B",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::anIgnoredErrorDoesNotSkipToTheCleanUpTask()
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

void tst_AsyncTaskProcessor::anIgnoredErrorDoesNotHideAnotherOne()
{
    Queue queue;
    queue.add("A", fail())->setIgnoreError(true);
    queue.add("B", fail());
    queue.add("C");
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

// The result counts as the slots of the signal leave it.
void tst_AsyncTaskProcessor::anErrorIgnoredInTheFinishedSignalDoesNotCount()
{
    Queue queue;
    queue.add("A", fail());
    queue.add("B");
    connect(&queue.processor, &AsyncTaskProcessor::finished, this,
            [](AsyncTask *task) { task->setIgnoreError(true); });
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken", "Starting task: B",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::withExitOnErrorOffEveryTaskRuns()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken", "Starting task: B",
                    "Task finished in TIME", "Starting task: C", "Task finished in TIME",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aCleanUpTaskThatFailsStopsNothing()
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
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A",
               "Task finished with errors in TIME: error = broken", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished with errors in TIME: error = cannot clean up",
               "Starting task: D", "Task finished in TIME", "Starting task: E",
               "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aCleanUpTaskOutsideTheQueueDeletesTheWholeQueue()
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
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken",
                    "Skipping to clean-up task: outside", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aTaskThatIsItsOwnCleanUpTaskDeletesTheWholeQueue()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, a);
    QCOMPARE(queue.run(), 1);
    QVERIFY(!b);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken",
                    "Skipping to clean-up task: A", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::theCleanUpTaskCanBeReplaced()
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

void tst_AsyncTaskProcessor::aReplacedCleanUpTaskThatIsGoneDoesNotCount()
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

void tst_AsyncTaskProcessor::theCleanUpTaskCanBeTakenAway()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, b);
    queue.processor.setCleanUpTask(a, nullptr);
    QCOMPARE(queue.run(), 1);
    QVERIFY(b); // dropped, not deleted
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::theCleanUpTaskOfAnotherTaskDoesNotCount()
{
    Queue queue;
    queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(b, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void tst_AsyncTaskProcessor::oneTaskMayCleanUpForSeveral()
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

// Cancel

void tst_AsyncTaskProcessor::aCancelWithoutACleanUpTaskIsLoggedAndTheQueueGoesOn()
{
    Queue queue;
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A");
    queue.add("B");
    queue.add("C");
    QCOMPARE(queue.run(), 0);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Task processing has been canceled", "Starting task: B", "Task finished in TIME",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aCancelSkipsToTheCleanUpTask()
{
    Queue queue;
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 0);
    QVERIFY(!b);
    QVERIFY(queue.processor.isOk());
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Task processing has been canceled", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aCancelWithACleanUpTaskOutsideTheQueueDeletesTheWholeQueue()
{
    Queue queue;
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    TestTask outside(QStringLiteral("outside"), idle());
    const QPointer<TestTask> a = queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.processor.setCleanUpTask(a, &outside);
    QCOMPARE(queue.run(), 0);
    QVERIFY(!b);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Task processing has been canceled", "Skipping to clean-up task: outside",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aCancelAfterTheSecondTaskSkipsToItsCleanUpTask()
{
    Queue queue;
    Monitor monitor({false, true});
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
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Starting task: B", "Task finished in TIME", "Task processing has been canceled",
               "Skipping to clean-up task: D", "Starting task: D", "Task finished in TIME",
               "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::theMonitorIsAskedAfterEveryTask()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    Monitor monitor({false, true});
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

void tst_AsyncTaskProcessor::theMonitorIsAskedAfterTheResultIsLoggedWhileTheTaskIsThere()
{
    Queue queue;
    Monitor monitor({false});
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

void tst_AsyncTaskProcessor::aMonitorThatChangesItsMindIsObeyedOnce()
{
    Queue queue;
    Monitor monitor({true, false, true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A");
    queue.add("B");
    const QPointer<TestTask> c = queue.add("C");
    queue.add("D");
    queue.processor.setCleanUpTask(c, queue.add("E"));
    QCOMPARE(queue.run(), 0);
    QCOMPARE(monitor.asked, 5);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Task processing has been canceled", "Starting task: B",
                    "Task finished in TIME", "Starting task: C", "Task finished in TIME",
                    "Starting task: D", "Task finished in TIME", "Starting task: E",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::afterACancelAnErrorDoesNotStopTheQueue()
{
    Queue queue;
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B", fail());
    queue.add("C");
    queue.processor.setCleanUpTask(b, queue.add("D"));
    QCOMPARE(queue.run(), 1);
    QVERIFY(!queue.processor.isOk());
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Task processing has been canceled", "Starting task: B",
                    "Task finished with errors in TIME: error = broken", "Starting task: C",
                    "Task finished in TIME", "Starting task: D", "Task finished in TIME",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::afterAnErrorStopACancelIsNotLogged()
{
    Queue queue;
    Monitor monitor({false, true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A", fail());
    const QPointer<TestTask> c = queue.add("C");
    queue.add("D");
    queue.processor.setCleanUpTask(a, c);
    queue.processor.setCleanUpTask(c, queue.add("E"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(monitor.asked, 4);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken",
                    "Skipping to clean-up task: C", "Starting task: C", "Task finished in TIME",
                    "Starting task: D", "Task finished in TIME", "Starting task: E",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::afterAnErrorThatDidNotStopACancelCounts()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    const QPointer<TestTask> a = queue.add("A", fail());
    queue.add("B");
    queue.processor.setCleanUpTask(a, queue.add("C"));
    QCOMPARE(queue.run(), 1);
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A",
               "Task finished with errors in TIME: error = broken",
               "Task processing has been canceled", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::anErrorAndACancelTogetherAreAnErrorStop()
{
    Queue queue;
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.add("A", fail());
    const QPointer<TestTask> b = queue.add("B");
    QCOMPARE(queue.run(), 1);
    QVERIFY(b);
    QCOMPARE(monitor.asked, 1);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A",
                    "Task finished with errors in TIME: error = broken",
                    "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::aMonitorThatIsTakenAwayIsNotAsked()
{
    Queue queue;
    Monitor monitor({true});
    queue.processor.setTaskMonitor(&monitor);
    queue.processor.setTaskMonitor(nullptr);
    queue.add("A");
    QCOMPARE(queue.run(), 0);
    QCOMPARE(monitor.asked, 0);
    QCOMPARE(queue.lines(),
             texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
                    "Finished processing tasks in TIME"}));
}

// Clean-up tasks that are gone, and addresses used again

void tst_AsyncTaskProcessor::aCleanUpTaskThatIsGoneDeletesTheWholeQueue_data()
{
    QTest::addColumn<bool>("canceled");
    QTest::addColumn<bool>("deletedByTheCaller");
    QTest::newRow("error, clean-up task has run") << false << false;
    QTest::newRow("cancel, clean-up task has run") << true << false;
    QTest::newRow("error, clean-up task deleted") << false << true;
    QTest::newRow("cancel, clean-up task deleted") << true << true;
}

void tst_AsyncTaskProcessor::aCleanUpTaskThatIsGoneDeletesTheWholeQueue()
{
    QFETCH(bool, canceled);
    QFETCH(bool, deletedByTheCaller);
    Queue queue;
    Monitor monitor({false, true});
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

void tst_AsyncTaskProcessor::aTaskAtTheAddressOfACleanUpTaskIsNotItsSuccessor()
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

void tst_AsyncTaskProcessor::aTaskAtTheAddressOfAFinishedTaskHasItsCleanUpTask()
{
    // What the processor was told of an address stays.
    Queue queue;
    auto *a = new SameAddressTask(QStringLiteral("A"), succeed());
    auto *c = new TestTask(QStringLiteral("C"), succeed());
    QPointer<TestTask> d;
    QPointer<TestTask> e;
    queue.processor.addTask(a);
    queue.processor.setCleanUpTask(a, c);
    queue.add("B", [&](TestTask &task) {
        d = new SameAddressTask(QStringLiteral("D"), fail());
        QCOMPARE(static_cast<void *>(d.data()), static_cast<void *>(a));
        queue.processor.addTask(d);
        e = queue.add("E");
        queue.processor.addTask(c);
        task.setFinished();
    });
    QCOMPARE(queue.run(), 1);
    QVERIFY(!e);
    QCOMPARE(
        queue.lines(),
        texts({"Start processing tasks", "Starting task: A", "Task finished in TIME",
               "Starting task: B", "Task finished in TIME", "Starting task: D",
               "Task finished with errors in TIME: error = broken", "Skipping to clean-up task: C",
               "Starting task: C", "Task finished in TIME", "Finished processing tasks in TIME"}));
}

// Starting twice

void tst_AsyncTaskProcessor::aSecondStartBeforeTheRunStartsNoTaskTwice_data()
{
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("tasks that finish inside execute()") << true;
    QTest::newRow("tasks that finish later") << false;
}

void tst_AsyncTaskProcessor::aSecondStartBeforeTheRunStartsNoTaskTwice()
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

void tst_AsyncTaskProcessor::aSecondStartDuringATaskDoesNotStartTheNextOne()
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

void tst_AsyncTaskProcessor::aSecondStartRestartsTheTimeOfTheRun()
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

void tst_AsyncTaskProcessor::aTaskAddedAfterTheRunWaitsForTheNextStart()
{
    Queue queue;
    queue.add("A");
    queue.processor.startLater();
    QMetaObject::invokeMethod(
        &queue.processor, [&queue] { queue.add("B"); }, Qt::QueuedConnection);
    queue.processor.startLater();
    QCOMPARE(exec(), 0);
    QCOMPARE(execUntilIdle(), 42);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
    QVERIFY(!queue.processor.isFinished());
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started B", "finished B"}));
}

void tst_AsyncTaskProcessor::aProcessorStartedAgainRunsWhatWasAddedSince()
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

// What others delete

void tst_AsyncTaskProcessor::aWaitingTaskThatIsDeletedLeavesTheQueue()
{
    Queue queue;
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    queue.add("C");
    delete b;
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A", "started C", "finished C"}));
}

void tst_AsyncTaskProcessor::theRunEndsWhenAllWaitingTasksAreDeletedBeforeTheStart()
{
    Queue queue;
    const QPointer<TestTask> a = queue.add("A");
    queue.processor.startLater();
    delete a;
    QVERIFY(queue.processor.isFinished());
    QCOMPARE(exec(), 0);
    QCOMPARE(queue.lines(), texts({"Start processing tasks", "Finished processing tasks in TIME"}));
}

void tst_AsyncTaskProcessor::theRunEndsWhenTheLastWaitingTaskIsDeletedBetweenTwoTasks()
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

void tst_AsyncTaskProcessor::aWaitingTaskThatGetsAnotherParentLeavesTheQueue()
{
    Queue queue;
    QObject other;
    queue.add("A");
    const QPointer<TestTask> b = queue.add("B");
    b->setParent(&other);
    QCOMPARE(queue.run(), 0);
    QVERIFY(b);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void tst_AsyncTaskProcessor::aRunningTaskThatIsDeletedCountsAsFailed()
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

void tst_AsyncTaskProcessor::aRunningTaskThatIsDeletedIsCleanedUp()
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

void tst_AsyncTaskProcessor::theLastTaskDeletedWhileRunningEndsTheRun()
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

void tst_AsyncTaskProcessor::aTaskDeletedInTheStartedSignalCountsAsFailed()
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

void tst_AsyncTaskProcessor::aTaskDeletedInTheFinishedSignalCountsAsItEnded_data()
{
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QString>("line");

    QTest::newRow("ok") << false << QStringLiteral("Task finished in TIME");
    QTest::newRow("failed") << true
                            << QStringLiteral("Task finished with errors in TIME: error = broken");
}

void tst_AsyncTaskProcessor::aTaskDeletedInTheFinishedSignalCountsAsItEnded()
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

void tst_AsyncTaskProcessor::aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded_data()
{
    aTaskDeletedInTheFinishedSignalCountsAsItEnded_data();
}

// The other processor is handling a task of its own meanwhile.
void tst_AsyncTaskProcessor::aTaskDeletedByAnotherProcessorsSlotCountsAsItEnded()
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

void tst_AsyncTaskProcessor::aFinishedTaskHandedToAnotherProcessorIsNotRunAgain_data()
{
    QTest::addColumn<bool>("amongOthers");

    QTest::newRow("alone") << false;
    QTest::newRow("among others") << true;
}

// The processor that ran it deletes it, and the other one lets it go.
void tst_AsyncTaskProcessor::aFinishedTaskHandedToAnotherProcessorIsNotRunAgain()
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

void tst_AsyncTaskProcessor::aTaskAddedTwiceRunsOnce()
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

// A slot may run an event loop of its own, in which the task says it again.
void tst_AsyncTaskProcessor::aTaskThatFinishesAgainInItsFinishedSignalCountsOnce()
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

void tst_AsyncTaskProcessor::aTaskBornAsAChildIsAddedOnce()
{
    Queue queue;
    auto *a = new TestTask(QStringLiteral("A"), succeed(), &queue.processor);
    queue.processor.addTask(a);
    QVERIFY(!queue.processor.isFinished());
    queue.processor.addTask(a);
    QCOMPARE(queue.run(), 0);
    QCOMPARE(queue.journal, texts({"started A", "finished A"}));
}

void tst_AsyncTaskProcessor::aMonitorMayDeleteTheProcessor()
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
    TestLog log;
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

void tst_AsyncTaskProcessor::aTasksDestructorMayDeleteTheProcessor_data()
{
    QTest::addColumn<bool>("skipped");

    QTest::newRow("of the finished task") << false;
    QTest::newRow("of a skipped task") << true;
}

void tst_AsyncTaskProcessor::aTasksDestructorMayDeleteTheProcessor()
{
    QFETCH(bool, skipped);

    struct Deleter : TestTask
    {
        using TestTask::TestTask;
        ~Deleter() override { delete processor; }
        QPointer<AsyncTaskProcessor> processor;
    };
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    const QPointer<TestTask> first
        = new TestTask(QStringLiteral("first"), skipped ? fail() : succeed());
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

void tst_AsyncTaskProcessor::aRunningTaskThatGetsAnotherParentCountsAsFailed()
{
    Queue queue;
    queue.processor.setExitOnError(false);
    QObject other;
    const QPointer<TestTask> a = queue.add("A", idle());
    const QPointer<TestTask> b = queue.add("B", idle());
    queue.processor.startLater();
    deliverQueuedCalls(queue.processor);
    a->setParent(&other);
    QVERIFY(!queue.processor.isOk());
    deliverQueuedCalls(queue.processor);
    QCOMPARE(queue.journal, texts({"started A", "started B"}));

    // It is a stranger now.
    Q_EMIT a->progress(QStringLiteral("half"));
    a->setFinished();
    QVERIFY(a);
    QVERIFY(b);
    QCOMPARE(queue.journal, texts({"started A", "started B"}));
    b->setFinished();
    QVERIFY(!b);
    QCOMPARE(queue.journal, texts({"started A", "started B", "finished B"}));
}

void tst_AsyncTaskProcessor::aProcessorMayBeDeletedInItsOwnSignals_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<bool>("atOnce");
    for (const char *signal : {"started", "progress", "finished"}) {
        QTest::addRow("%s, inside execute()", signal) << QString::fromLatin1(signal) << true;
        QTest::addRow("%s, later", signal) << QString::fromLatin1(signal) << false;
    }
}

void tst_AsyncTaskProcessor::aProcessorMayBeDeletedInItsOwnSignals()
{
    QFETCH(QString, signal);
    QFETCH(bool, atOnce);
    TestLog log;
    Monitor monitor({true});
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

void tst_AsyncTaskProcessor::aMethodCalledByATaskMayDeleteTheProcessor()
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

QTEST_GUILESS_MAIN(tst_AsyncTaskProcessor)

#include "tst_asynctaskprocessor.moc"
