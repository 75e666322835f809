#include <Utility/AsyncTask.h>

#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Log.h>

#include "TemporaryLog.h"
#include "TestTask.h"

#include <QtTest/QtTest>

#include <memory>

using Vorn::Util::AsyncTask;
using Vorn::Util::AsyncTaskProcessor;
using Vorn::Util::Log;

namespace {

// Works on until \a milliseconds have passed.
void passTime(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!clock.hasExpired(milliseconds)) { }
}

} // namespace

class TestAsyncTask : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewTaskHasItsNameAndTheDefaults();
    void aNewTaskBelongsToTheParentGiven();
    void ignoreErrorIsKept();

    void startExecutesTheTaskBeforeItReturns();
    void startItselfEmitsNothing();
    void startKeepsAnErrorThatWasSetBefore();
    void setFinishedEmitsFinishedOnce();
    void aTaskMayFinishInALaterTurnOfTheEventLoop();
    void aTaskThatNeverCallsSetFinishedNeverEmitsFinished();
    void progressCarriesTheText();

    void elapsedTimeIsZeroUntilTheTaskHasFinished();
    void elapsedTimeIsTakenBeforeFinishedIsEmitted();
    void elapsedTimeRunsFromStartNotFromTheConstruction();
    void elapsedTimeStandsStillAfterTheEnd();
    void aTaskThatEndsWithoutAStartTookNoTime();

    void setErrorNotesTheFailure();
    void setErrorWithAnEmptyTextIsAFailureToo();
    void theLastErrorTextStays();
    void setErrorEmitsNothingAndDoesNotFinishTheTask();
    void resetErrorMakesTheTaskOkAgain();
    void finishingLeavesTheErrorAsItIs();

    void logWritesALineToTheLog();
    void logWithoutALogDoesNothing();
    void theLogCanBeReplacedAndTakenAway();
    void logSkipsTheSizeCheck();
    void theLogIsNotOwned();

    void aTaskMayBeDeletedInsideItsFinishedSignal();
    void aTaskIsDestroyedThroughItsBase();
};

void TestAsyncTask::aNewTaskHasItsNameAndTheDefaults()
{
    const TestTask task(QStringLiteral("Mesh %1 größer"), idle());
    QCOMPARE(task.name(), QStringLiteral("Mesh %1 größer"));
    QVERIFY(task.isOk());
    QVERIFY(task.error().isEmpty());
    QVERIFY(!task.ignoreError());
    QCOMPARE(task.elapsedTime(), qint64(0));
    QVERIFY(!task.parent());
}

void TestAsyncTask::aNewTaskBelongsToTheParentGiven()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<AsyncTask> task = new TestTask(QStringLiteral("A"), idle(), parent.get());
    QCOMPARE(task->parent(), parent.get());
    parent.reset();
    QVERIFY(!task);
}

void TestAsyncTask::ignoreErrorIsKept()
{
    TestTask task(QStringLiteral("A"), idle());
    task.setIgnoreError(true);
    QVERIFY(task.ignoreError());
    QVERIFY(task.isOk());
    task.setIgnoreError(false);
    QVERIFY(!task.ignoreError());
}

void TestAsyncTask::startExecutesTheTaskBeforeItReturns()
{
    int executions = 0;
    TestTask task(QStringLiteral("A"), [&executions](TestTask &) { ++executions; });
    QCOMPARE(executions, 0);
    task.start();
    QCOMPARE(executions, 1);
}

void TestAsyncTask::startItselfEmitsNothing()
{
    TestTask task(QStringLiteral("A"), idle());
    const QSignalSpy finished(&task, &AsyncTask::finished);
    const QSignalSpy progress(&task, &AsyncTask::progress);
    task.start();
    QCOMPARE(finished.count(), 0);
    QCOMPARE(progress.count(), 0);
}

void TestAsyncTask::startKeepsAnErrorThatWasSetBefore()
{
    TestTask task(QStringLiteral("A"), succeed());
    task.setError(QStringLiteral("broken"));
    task.start();
    QVERIFY(!task.isOk());
    QCOMPARE(task.error(), QStringLiteral("broken"));
}

void TestAsyncTask::setFinishedEmitsFinishedOnce()
{
    TestTask task(QStringLiteral("A"), succeed());
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QCOMPARE(finished.count(), 1);
    QVERIFY(task.isOk());
}

void TestAsyncTask::aTaskMayFinishInALaterTurnOfTheEventLoop()
{
    TestTask task(QStringLiteral("A"), later(fail()));
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    QCOMPARE(finished.count(), 0);
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(!task.isOk());
}

void TestAsyncTask::aTaskThatNeverCallsSetFinishedNeverEmitsFinished()
{
    TestTask task(QStringLiteral("A"), idle());
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.start();
    bool timerFired = false;
    QTimer::singleShot(20, this, [&timerFired] { timerFired = true; });
    QTRY_VERIFY(timerFired);
    QCOMPARE(finished.count(), 0);
    QCOMPARE(task.elapsedTime(), qint64(0));
    QVERIFY(task.isOk());
}

void TestAsyncTask::progressCarriesTheText()
{
    TestTask task(QStringLiteral("A"), [](TestTask &self) {
        Q_EMIT self.progress(QStringLiteral("half"));
        Q_EMIT self.progress(QString());
        self.setFinished();
    });
    QSignalSpy progress(&task, &AsyncTask::progress);
    task.start();
    QCOMPARE(progress.count(), 2);
    QCOMPARE(progress.at(0).at(0).toString(), QStringLiteral("half"));
    QCOMPARE(progress.at(1).at(0).toString(), QString());
}

void TestAsyncTask::elapsedTimeIsZeroUntilTheTaskHasFinished()
{
    qint64 whileRunning = -1;
    TestTask task(QStringLiteral("A"), [&whileRunning](TestTask &self) {
        passTime(5);
        whileRunning = self.elapsedTime();
        self.setFinished();
    });
    task.start();
    QCOMPARE(whileRunning, qint64(0));
    QVERIFY2(task.elapsedTime() >= 5, qPrintable(QString::number(task.elapsedTime())));
}

void TestAsyncTask::elapsedTimeIsTakenBeforeFinishedIsEmitted()
{
    TestTask task(QStringLiteral("A"), [](TestTask &self) {
        passTime(5);
        self.setFinished();
    });
    qint64 inSlot = -1;
    connect(&task, &AsyncTask::finished, this, [&] { inSlot = task.elapsedTime(); });
    task.start();
    QVERIFY(inSlot >= 5);
    QCOMPARE(task.elapsedTime(), inSlot);
}

void TestAsyncTask::elapsedTimeRunsFromStartNotFromTheConstruction()
{
    TestTask task(QStringLiteral("A"), succeed());
    passTime(50);
    QElapsedTimer clock;
    clock.start();
    task.start();
    const qint64 atMost = clock.elapsed() + 1; // the clocks round down at different moments
    QVERIFY2(task.elapsedTime() <= atMost, qPrintable(QString::number(task.elapsedTime())));
}

void TestAsyncTask::elapsedTimeStandsStillAfterTheEnd()
{
    TestTask task(QStringLiteral("A"), succeed());
    task.start();
    const qint64 atTheEnd = task.elapsedTime();
    passTime(5);
    QCOMPARE(task.elapsedTime(), atTheEnd);
}

void TestAsyncTask::aTaskThatEndsWithoutAStartTookNoTime()
{
    TestTask task(QStringLiteral("A"), idle());
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.setFinished();
    QCOMPARE(finished.count(), 1);
    QCOMPARE(task.elapsedTime(), qint64(0));
}

void TestAsyncTask::setErrorNotesTheFailure()
{
    TestTask task(QStringLiteral("A"), idle());
    task.setError(QStringLiteral("No mesh"));
    QVERIFY(!task.isOk());
    QCOMPARE(task.error(), QStringLiteral("No mesh"));
    QVERIFY(!task.ignoreError());
}

void TestAsyncTask::setErrorWithAnEmptyTextIsAFailureToo()
{
    TestTask task(QStringLiteral("A"), idle());
    task.setError(QString());
    QVERIFY(!task.isOk());
    QVERIFY(task.error().isEmpty());
}

void TestAsyncTask::theLastErrorTextStays()
{
    TestTask task(QStringLiteral("A"), idle());
    task.setError(QStringLiteral("first"));
    task.setError(QStringLiteral("second"));
    QVERIFY(!task.isOk());
    QCOMPARE(task.error(), QStringLiteral("second"));
}

void TestAsyncTask::setErrorEmitsNothingAndDoesNotFinishTheTask()
{
    TestTask task(QStringLiteral("A"), [](TestTask &self) { self.setError(QStringLiteral("x")); });
    const QSignalSpy finished(&task, &AsyncTask::finished);
    const QSignalSpy progress(&task, &AsyncTask::progress);
    task.start();
    QVERIFY(!task.isOk());
    QCOMPARE(finished.count(), 0);
    QCOMPARE(progress.count(), 0);
    QCOMPARE(task.elapsedTime(), qint64(0));
}

void TestAsyncTask::resetErrorMakesTheTaskOkAgain()
{
    TestTask task(QStringLiteral("A"), idle());
    const QSignalSpy finished(&task, &AsyncTask::finished);
    task.setError(QStringLiteral("No mesh"));
    task.resetError();
    QVERIFY(task.isOk());
    QVERIFY(task.error().isEmpty());
    QCOMPARE(finished.count(), 0);
}

void TestAsyncTask::finishingLeavesTheErrorAsItIs()
{
    TestTask task(QStringLiteral("A"), fail(QStringLiteral("No mesh")));
    task.start();
    QVERIFY(!task.isOk());
    QCOMPARE(task.error(), QStringLiteral("No mesh"));
}

void TestAsyncTask::logWritesALineToTheLog()
{
    TemporaryLog log;
    TestTask task(QStringLiteral("A"), idle());
    task.setLog(log);
    task.log(QStringLiteral("100 %1 elements"));
    task.log(QStringLiteral("done"));
    QCOMPARE(log.lines(), texts({"100 %1 elements", "done"}));
}

void TestAsyncTask::logWithoutALogDoesNothing()
{
    TestTask task(QStringLiteral("A"), idle());
    task.log(QStringLiteral("nowhere"));
    QVERIFY(task.isOk());
}

void TestAsyncTask::theLogCanBeReplacedAndTakenAway()
{
    TemporaryLog first;
    TemporaryLog second;
    TestTask task(QStringLiteral("A"), idle());
    task.setLog(first);
    task.log(QStringLiteral("one"));
    task.setLog(second);
    task.log(QStringLiteral("two"));
    task.setLog(nullptr);
    task.log(QStringLiteral("three"));
    QCOMPARE(first.lines(), texts({"one"}));
    QCOMPARE(second.lines(), texts({"two"}));
}

void TestAsyncTask::logSkipsTheSizeCheck()
{
    TemporaryLog log;
    {
        QFile file(log.fileName());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
        const QByteArray tooLarge(static_cast<int>(Log::MaxLogSize) + 1, 'x');
        QCOMPARE(file.write(tooLarge), qint64(tooLarge.size()));
    }
    TestTask task(QStringLiteral("A"), idle());
    task.setLog(log);
    task.log(QStringLiteral("one more line"));
    QVERIFY(QFileInfo(log.fileName()).size() > Log::MaxLogSize);
}

void TestAsyncTask::theLogIsNotOwned()
{
    TemporaryLog log;
    {
        TestTask task(QStringLiteral("A"), idle());
        task.setLog(log);
    }
    static_cast<Log *>(log)->fastAppend(QStringLiteral("still there"));
    QCOMPARE(log.lines(), texts({"still there"}));
}

void TestAsyncTask::aTaskMayBeDeletedInsideItsFinishedSignal()
{
    const QPointer<AsyncTask> task = new TestTask(QStringLiteral("A"), succeed());
    connect(task, &AsyncTask::finished, this, [&task] { delete task; });
    task->start();
    QVERIFY(!task);
}

void TestAsyncTask::aTaskIsDestroyedThroughItsBase()
{
    const auto held = std::make_shared<int>(0);
    auto *task = new TestTask(QStringLiteral("A"), [held](TestTask &) {});
    QCOMPARE(held.use_count(), 2L);
    std::unique_ptr<AsyncTask>(task).reset();
    QCOMPARE(held.use_count(), 1L);
}

QTEST_GUILESS_MAIN(TestAsyncTask)

#include "tst_asynctask.moc"
