#include <Utility/AsyncTaskMonitor.h>

#include <QtTest/QtTest>

#include <memory>

using Vorn::Util::AsyncTaskMonitor;

namespace {

class CancelButton : public AsyncTaskMonitor
{
public:
    explicit CancelButton(bool *destroyed = nullptr)
        : destroyed_(destroyed)
    {
    }

    CancelButton(const CancelButton &) = default;
    CancelButton &operator=(const CancelButton &) = default;

    ~CancelButton() override
    {
        if (destroyed_)
            *destroyed_ = true;
    }

    bool isCanceled() override { return pressed; }

    bool pressed = false;

private:
    bool *destroyed_;
};

} // namespace

class TestAsyncTaskMonitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDerivedMonitorAnswersThroughTheInterface();
    void aMonitorIsDestroyedThroughTheInterface();
    void copyingCopiesOnlyWhatTheDerivedMonitorHolds();
    void assigningThroughTheInterfaceDoesNothing();
};

void TestAsyncTaskMonitor::theDerivedMonitorAnswersThroughTheInterface()
{
    CancelButton button;
    AsyncTaskMonitor &monitor = button;
    QVERIFY(!monitor.isCanceled());
    button.pressed = true;
    QVERIFY(monitor.isCanceled());
}

void TestAsyncTaskMonitor::aMonitorIsDestroyedThroughTheInterface()
{
    bool destroyed = false;
    std::unique_ptr<AsyncTaskMonitor> monitor = std::make_unique<CancelButton>(&destroyed);
    monitor.reset();
    QVERIFY(destroyed);
}

void TestAsyncTaskMonitor::copyingCopiesOnlyWhatTheDerivedMonitorHolds()
{
    CancelButton pressed;
    pressed.pressed = true;
    CancelButton copy(pressed);
    QVERIFY(copy.isCanceled());

    CancelButton assigned;
    assigned = pressed;
    QVERIFY(assigned.isCanceled());
    assigned.pressed = false;
    QVERIFY(pressed.isCanceled());
}

void TestAsyncTaskMonitor::assigningThroughTheInterfaceDoesNothing()
{
    CancelButton pressed;
    pressed.pressed = true;
    CancelButton other;
    AsyncTaskMonitor &monitor = other;
    monitor = pressed;
    QVERIFY(!monitor.isCanceled());
}

QTEST_GUILESS_MAIN(TestAsyncTaskMonitor)

#include "tst_asynctaskmonitor.moc"
