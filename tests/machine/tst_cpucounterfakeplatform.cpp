// A counter whose values come from a fake source of the test.

#include "FakePlatform.h"

#include <Utility/CpuCounter.h>

#include <QtTest/QtTest>

#include <limits>
#include <utility>

using namespace Vorn::Util;

namespace {

class CountingSource : public SysInfo
{
public:
    CountingSource(long first, int &alive)
        : value_(first)
        , alive_(alive)
    {
        ++alive_;
    }
    ~CountingSource() override { --alive_; }

    long getValue() override { return value_++; }

private:
    long value_;
    int &alive_;
};

} // namespace

class TestCpuCounterFakePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { fakePlatform() = FakePlatform(); }

    void withoutASourceTheValueIsMinusOne();
    void thePathIsGivenAsItIs();
    void everyCallTakesASample();
    void theSourceLivesAsLongAsTheCounter();
    void anAssignmentDestroysTheFormerSource();
    void anAssignmentToItselfIsHarmless();
};

void TestCpuCounterFakePlatform::withoutASourceTheValueIsMinusOne()
{
    fakePlatform().openCounter = [](const QString &) { return nullptr; };
    CpuCounter counter(CpuCounter::CpuPercent);
    QCOMPARE(counter.getValue(), -1L);
    QCOMPARE(counter.getValue(), -1L);
}

void TestCpuCounterFakePlatform::thePathIsGivenAsItIs()
{
    QStringList paths;
    fakePlatform().openCounter = [&paths](const QString &path) {
        paths += path;
        return nullptr;
    };
    const QStringList given{CpuCounter::MemInUsePercent, QStringLiteral(" \\a/%1\\\\b "),
                            QString(5000, QLatin1Char('x'))};
    for (const QString &path : given)
        CpuCounter(path).getValue();
    QCOMPARE(paths, given); // once each
}

void TestCpuCounterFakePlatform::everyCallTakesASample()
{
    int alive = 0;
    const long largest = std::numeric_limits<long>::max();
    fakePlatform().openCounter
        = [&](const QString &) { return std::make_unique<CountingSource>(largest - 2, alive); };
    CpuCounter counter(CpuCounter::MemAvailBytes);
    QCOMPARE(counter.getValue(), largest - 2);
    QCOMPARE(counter.getValue(), largest - 1);
}

void TestCpuCounterFakePlatform::theSourceLivesAsLongAsTheCounter()
{
    int alive = 0;
    fakePlatform().openCounter
        = [&](const QString &) { return std::make_unique<CountingSource>(7, alive); };
    {
        CpuCounter counter(CpuCounter::CpuPercent);
        QCOMPARE(alive, 1);
        CpuCounter other(std::move(counter));
        QCOMPARE(alive, 1);
        QCOMPARE(other.getValue(), 7L);
        QCOMPARE(counter.getValue(), -1L); // NOLINT(bugprone-use-after-move)
    }
    QCOMPARE(alive, 0);
}

void TestCpuCounterFakePlatform::anAssignmentDestroysTheFormerSource()
{
    int alive = 0;
    long first = 1;
    fakePlatform().openCounter
        = [&](const QString &) { return std::make_unique<CountingSource>(first, alive); };
    CpuCounter counter(CpuCounter::CpuPercent);
    first = 100;
    counter = CpuCounter(CpuCounter::CpuPercent);
    QCOMPARE(alive, 1);
    QCOMPARE(counter.getValue(), 100L);
}

void TestCpuCounterFakePlatform::anAssignmentToItselfIsHarmless()
{
    int alive = 0;
    fakePlatform().openCounter
        = [&](const QString &) { return std::make_unique<CountingSource>(7, alive); };
    CpuCounter counter(CpuCounter::CpuPercent);
    CpuCounter &same = counter;
    counter = std::move(same);
    QCOMPARE(alive, 1);
    QCOMPARE(counter.getValue(), 7L);
}

QTEST_GUILESS_MAIN(TestCpuCounterFakePlatform)

#include "tst_cpucounterfakeplatform.moc"
