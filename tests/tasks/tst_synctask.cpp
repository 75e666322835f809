#include <Utility/SyncTask.h>

#include <Utility/AsyncTaskProcessor.h>

#include "TemporaryLog.h"
#include "TestTask.h"

#include <QtTest/QtTest>

#include <functional>
#include <memory>

namespace app {

class Worker : public QObject
{
    Q_OBJECT

public:
    std::function<void()> work;
    int calls = 0;

    Q_INVOKABLE int count() { return ++calls; }
    Q_INVOKABLE bool failAsBool() { return ++calls < 0; }
    Q_INVOKABLE int failAsNumber() { return -(++calls); }
    Q_INVOKABLE QString failAsText()
    {
        ++calls;
        return QStringLiteral("the work went wrong");
    }
    Q_INVOKABLE void scale(int factor) { calls += factor; }
    Q_INVOKABLE void refine(int levels = 7) { calls += levels; }
    void unknownToTheMetaObject() { ++calls; }

public Q_SLOTS:
    void update()
    {
        ++calls;
        const std::function<void()> copy = work; // outlives the worker
        if (copy)
            copy();
    }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void updatePrivately() { ++calls; }
};

class SpecialWorker : public Worker
{
    Q_OBJECT
};

} // namespace app

using Vorn::Util::AsyncTask;
using Vorn::Util::AsyncTaskProcessor;
using Vorn::Util::SyncTask;

class TestSyncTask : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNameIsTheClassNameAndTheMethod_data();
    void theNameIsTheClassNameAndTheMethod();
    void theNameHasTheClassOfTheObjectItself();
    void theTaskBelongsToTheParentGiven();
    void theReceiverIsNotOwned();

    void aSlotRunsInsideExecute();
    void finishedIsEmittedOnceAfterTheMethodHasReturned();
    void elapsedTimeCoversTheCall();
    void everyKindOfMethodWithoutArgumentsIsCalled_data();
    void everyKindOfMethodWithoutArgumentsIsCalled();
    void aSignalOfTheReceiverIsEmitted();
    void theMethodIsCalledDirectlyAlsoForAReceiverOfAnotherThread();
    void whatTheMethodReturnsDoesNotMatter_data();
    void whatTheMethodReturnsDoesNotMatter();
    void theStateInWhichTheMethodLeavesTheTaskIsKept();
    void eachStartCallsTheMethodOnce();

    void aMethodThatCannotBeCalledIsAnErrorAndTheTaskNeverFinishes_data();
    void aMethodThatCannotBeCalledIsAnErrorAndTheTaskNeverFinishes();
    void aReceiverThatIsGoneHasNoMethodToCall();
    void aTaskWithoutAReceiverHasNoMethodToCall();
    void aProcessorWaitsForEverForATaskThatCannotCallItsMethod();

    void aQueueOfSyncTasksRunsInOrder();
    void theMethodMayDeleteTheReceiver();
    void theMethodMayDeleteTheTask();
    void theMethodMayDeleteTheProcessor();
};

void TestSyncTask::theNameIsTheClassNameAndTheMethod_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("name");
    QTest::newRow("a slot") << QStringLiteral("update") << QStringLiteral("app::Worker::update");
    QTest::newRow("no such method")
        << QStringLiteral("Update()") << QStringLiteral("app::Worker::Update()");
    QTest::newRow("nothing") << QString() << QStringLiteral("app::Worker::");
    QTest::newRow("place markers") << QStringLiteral("%1%2") << QStringLiteral("app::Worker::%1%2");
    QTest::newRow("outside Latin-1")
        << QStringLiteral("κλήση") << QStringLiteral("app::Worker::κλήση");
}

void TestSyncTask::theNameIsTheClassNameAndTheMethod()
{
    QFETCH(QString, method);
    QFETCH(QString, name);
    app::Worker worker;
    const SyncTask task(&worker, method, nullptr);
    QCOMPARE(task.name(), name);
    QVERIFY(task.isOk());
    QVERIFY(task.error().isEmpty());
    QCOMPARE(worker.calls, 0);
}

void TestSyncTask::theNameHasTheClassOfTheObjectItself()
{
    app::SpecialWorker worker;
    QObject *receiver = &worker;
    const SyncTask task(receiver, QStringLiteral("update"), nullptr);
    QCOMPARE(task.name(), QStringLiteral("app::SpecialWorker::update"));
}

void TestSyncTask::theTaskBelongsToTheParentGiven()
{
    app::Worker worker;
    QObject parent;
    const auto *task = new SyncTask(&worker, QStringLiteral("update"), &parent);
    QCOMPARE(task->parent(), &parent);
}

void TestSyncTask::theReceiverIsNotOwned()
{
    app::Worker worker;
    {
        SyncTask task(&worker, QStringLiteral("update"), nullptr);
        task.start();
    }
    QVERIFY(!worker.parent());
    QCOMPARE(worker.calls, 1);
}

void TestSyncTask::aSlotRunsInsideExecute()
{
    app::Worker worker;
    SyncTask task(&worker, QStringLiteral("update"), nullptr);
    QCOMPARE(worker.calls, 0);
    task.start();
    QCOMPARE(worker.calls, 1);
    QVERIFY(task.isOk());
}

void TestSyncTask::finishedIsEmittedOnceAfterTheMethodHasReturned()
{
    app::Worker worker;
    SyncTask task(&worker, QStringLiteral("update"), nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    int finishedDuringTheCall = -1;
    worker.work = [&] { finishedDuringTheCall = finished.count(); };
    task.start();
    QCOMPARE(finishedDuringTheCall, 0);
    QCOMPARE(finished.count(), 1);
}

void TestSyncTask::elapsedTimeCoversTheCall()
{
    app::Worker worker;
    worker.work = [] {
        QElapsedTimer clock;
        clock.start();
        while (!clock.hasExpired(5)) { }
    };
    SyncTask task(&worker, QStringLiteral("update"), nullptr);
    QCOMPARE(task.elapsedTime(), qint64(0));
    task.start();
    QVERIFY2(task.elapsedTime() >= 5, qPrintable(QString::number(task.elapsedTime())));
}

void TestSyncTask::everyKindOfMethodWithoutArgumentsIsCalled_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<int>("calls");
    QTest::newRow("slot") << QStringLiteral("update") << 1;
    QTest::newRow("private slot") << QStringLiteral("updatePrivately") << 1;
    QTest::newRow("result that nobody takes") << QStringLiteral("count") << 1;
    QTest::newRow("default argument") << QStringLiteral("refine") << 7;
}

void TestSyncTask::everyKindOfMethodWithoutArgumentsIsCalled()
{
    QFETCH(QString, method);
    app::SpecialWorker worker; // which inherits them all
    SyncTask task(&worker, method, nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QTEST(worker.calls, "calls");
    QCOMPARE(finished.count(), 1);
    QVERIFY(task.isOk());
}

void TestSyncTask::aSignalOfTheReceiverIsEmitted()
{
    app::Worker worker;
    const QSignalSpy changed(&worker, &app::Worker::changed);
    SyncTask task(&worker, QStringLiteral("changed"), nullptr);
    task.start();
    QCOMPARE(changed.count(), 1);
    QVERIFY(task.isOk());
}

void TestSyncTask::theMethodIsCalledDirectlyAlsoForAReceiverOfAnotherThread()
{
    QThread neverStarted;
    app::Worker worker;
    const QThread *calledIn = nullptr;
    worker.work = [&calledIn] { calledIn = QThread::currentThread(); };
    worker.moveToThread(&neverStarted);
    SyncTask task(&worker, QStringLiteral("update"), nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QCOMPARE(calledIn, static_cast<const QThread *>(thread()));
    QCOMPARE(finished.count(), 1);
}

void TestSyncTask::whatTheMethodReturnsDoesNotMatter_data()
{
    QTest::addColumn<QString>("method");
    QTest::newRow("false") << QStringLiteral("failAsBool");
    QTest::newRow("a negative number") << QStringLiteral("failAsNumber");
    QTest::newRow("an error text") << QStringLiteral("failAsText");
}

void TestSyncTask::whatTheMethodReturnsDoesNotMatter()
{
    QFETCH(QString, method);
    app::Worker worker;
    SyncTask task(&worker, method, nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QCOMPARE(worker.calls, 1);
    QCOMPARE(finished.count(), 1);
    QVERIFY(task.isOk());
    QCOMPARE(task.error(), QString());
}

void TestSyncTask::theStateInWhichTheMethodLeavesTheTaskIsKept()
{
    struct OpenTask : SyncTask
    {
        using SyncTask::setError;
        using SyncTask::SyncTask;
    };
    app::Worker worker;
    OpenTask task(&worker, QStringLiteral("update"), nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    worker.work = [&task] { task.setError(QStringLiteral("the work went wrong")); };
    task.start();
    QCOMPARE(finished.count(), 1);
    QVERIFY(!task.isOk());
    QCOMPARE(task.error(), QStringLiteral("the work went wrong"));
}

void TestSyncTask::eachStartCallsTheMethodOnce()
{
    app::Worker worker;
    SyncTask first(&worker, QStringLiteral("update"), nullptr);
    SyncTask second(&worker, QStringLiteral("update"), nullptr);
    first.start();
    second.start();
    QCOMPARE(worker.calls, 2);
}

void TestSyncTask::aMethodThatCannotBeCalledIsAnErrorAndTheTaskNeverFinishes_data()
{
    QTest::addColumn<QString>("method");
    QTest::newRow("parentheses") << QStringLiteral("update()");
    QTest::newRow("no such method") << QStringLiteral("downdate");
    QTest::newRow("other case") << QStringLiteral("Update");
    QTest::newRow("nothing") << QString();
    QTest::newRow("argument needed") << QStringLiteral("scale");
    QTest::newRow("argument given") << QStringLiteral("scale(int)");
    QTest::newRow("not invokable") << QStringLiteral("unknownToTheMetaObject");
    QTest::newRow("outside Latin-1") << QStringLiteral("κλήση");
    QTest::newRow("percent and digit") << QStringLiteral("%1");
}

void TestSyncTask::aMethodThatCannotBeCalledIsAnErrorAndTheTaskNeverFinishes()
{
    QFETCH(QString, method);
    app::Worker worker;
    SyncTask task(&worker, method, nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    if (!method.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such method")));
    task.start();
    QVERIFY(!task.isOk());
    QCOMPARE(task.error(), QStringLiteral("Unable to run sync task: app::Worker::") + method);

    QCoreApplication::processEvents();
    QCOMPARE(finished.count(), 0);
    QCOMPARE(task.elapsedTime(), qint64(0));
    QCOMPARE(worker.calls, 0);
}

void TestSyncTask::aReceiverThatIsGoneHasNoMethodToCall()
{
    auto worker = std::make_unique<app::Worker>();
    SyncTask task(worker.get(), QStringLiteral("update"), nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    worker.reset();
    task.start();
    QCOMPARE(task.error(), QStringLiteral("Unable to run sync task: app::Worker::update"));
    QCOMPARE(finished.count(), 0);
}

void TestSyncTask::aTaskWithoutAReceiverHasNoMethodToCall()
{
    SyncTask task(nullptr, QStringLiteral("update"), nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QCOMPARE(task.error(), QStringLiteral("Unable to run sync task: ::update"));
    QCOMPARE(finished.count(), 0);
}

void TestSyncTask::aProcessorWaitsForEverForATaskThatCannotCallItsMethod()
{
    TemporaryLog log;
    app::Worker worker;
    AsyncTaskProcessor processor;
    processor.setLog(log);
    processor.setExitEventLoopWhenDone(true);
    const QPointer<AsyncTask> wrong = new SyncTask(&worker, QStringLiteral("update()"), nullptr);
    processor.addTask(wrong);
    processor.addTask(new SyncTask(&worker, QStringLiteral("update"), nullptr));
    processor.startLater();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such method")));
    QTimer::singleShot(50, this, [] { QCoreApplication::exit(42); });
    QCOMPARE(QCoreApplication::exec(), 42);

    QVERIFY(wrong);
    QVERIFY(processor.isOk());
    QVERIFY(!processor.isFinished());
    QCOMPARE(worker.calls, 0);
    QCOMPARE(log.lines(),
             texts({"Start processing tasks", "Starting task: app::Worker::update()"}));
}

void TestSyncTask::aQueueOfSyncTasksRunsInOrder()
{
    TemporaryLog log;
    app::Worker worker;
    app::SpecialWorker special;
    QStringList calls;
    worker.work = [&calls] { calls.append(QStringLiteral("worker")); };
    special.work = [&calls] { calls.append(QStringLiteral("special")); };
    AsyncTaskProcessor processor;
    processor.setLog(log);
    processor.setExitEventLoopWhenDone(true);
    processor.addTask(new SyncTask(&worker, QStringLiteral("update"), nullptr));
    processor.addTask(new SyncTask(&special, QStringLiteral("update"), nullptr));
    processor.addTask(new SyncTask(&worker, QStringLiteral("update"), nullptr));
    processor.startLater();
    QCOMPARE(calls, QStringList());
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(calls, texts({"worker", "special", "worker"}));
    QCOMPARE(log.linesWithoutTimes(),
             texts({"Start processing tasks", "Starting task: app::Worker::update",
                    "Task finished in TIME", "Starting task: app::SpecialWorker::update",
                    "Task finished in TIME", "Starting task: app::Worker::update",
                    "Task finished in TIME", "Finished processing tasks in TIME"}));
}

void TestSyncTask::theMethodMayDeleteTheReceiver()
{
    const QPointer<app::Worker> worker = new app::Worker;
    worker->work = [&worker] { delete worker; };
    SyncTask task(worker, QStringLiteral("update"), nullptr);
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QVERIFY(!worker);
    QVERIFY(task.isOk());
    QCOMPARE(finished.count(), 1);
}

void TestSyncTask::theMethodMayDeleteTheTask()
{
    app::Worker worker;
    const QPointer<AsyncTask> task = new SyncTask(&worker, QStringLiteral("update"), nullptr);
    const QSignalSpy finished(task, &AsyncTask::finished);
    worker.work = [&task] { delete task; };
    task->start();
    QVERIFY(!task);
    QCOMPARE(finished.count(), 0);
}

void TestSyncTask::theMethodMayDeleteTheProcessor()
{
    TemporaryLog log;
    app::Worker worker;
    const QPointer<AsyncTaskProcessor> processor = new AsyncTaskProcessor;
    processor->setLog(log);
    const QPointer<AsyncTask> task = new SyncTask(&worker, QStringLiteral("update"), nullptr);
    const QPointer<AsyncTask> next = new SyncTask(&worker, QStringLiteral("update"), nullptr);
    processor->addTask(task);
    processor->addTask(next);
    worker.work = [&processor] { delete processor; };
    processor->startLater();
    QTRY_VERIFY(!processor);
    QVERIFY(!task);
    QVERIFY(!next);
    QCoreApplication::processEvents();
    QCOMPARE(worker.calls, 1);
    QCOMPARE(log.lines(), texts({"Start processing tasks", "Starting task: app::Worker::update"}));
}

QTEST_GUILESS_MAIN(TestSyncTask)

#include "tst_synctask.moc"
