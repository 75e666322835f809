#include "TestSystem.h"

#include <Utility/CpuCounter.h>

#include <QtTest/QtTest>

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

using namespace Vorn::Util;

static_assert(!std::is_copy_constructible<CpuCounter>::value
                  && !std::is_copy_assignable<CpuCounter>::value,
              "two counters never share a source");
static_assert(std::is_nothrow_move_constructible<CpuCounter>::value
                  && std::is_nothrow_move_assignable<CpuCounter>::value,
              "a counter can be moved");
static_assert(std::is_same<decltype(std::declval<CpuCounter &>().getValue()), long>::value,
              "a value is a long");

namespace {

bool isPercentage(long value)
{
    return value >= 0 && value <= 100;
}

// Whether there are memory counters on this system at all.
bool hasMemoryCounters()
{
    return !onWindows() || CpuCounter(CpuCounter::MemAvailKBytes).getValue() != -1;
}

// Samples \a other between two samples of \a counter that are equal, so that both values belong to
// the same moment.
bool sampleTogether(CpuCounter &counter, CpuCounter &other, long &value, long &otherValue)
{
    constexpr int MostAttempts = 100000;
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        value = counter.getValue();
        otherValue = other.getValue();
        if (counter.getValue() == value)
            return true;
    }
    return false;
}

// Where a long has 32 bits, the system truncates the number of bytes of a large memory.
bool bytesFitIntoLong(const QString &path)
{
    if (std::numeric_limits<long>::digits > 32)
        return true;
    const long value = CpuCounter(path).getValue();
    return value > 0 && value < std::numeric_limits<long>::max();
}

} // namespace

#define NEED_MEMORY_COUNTERS()                                                                     \
    do {                                                                                           \
        if (!hasMemoryCounters())                                                                  \
            QSKIP("Wine has no performance counters for memory");                                  \
    } while (false)

class TestCpuCounter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePathsAreTheNamesOfTheSystem_data();
    void thePathsAreTheNamesOfTheSystem();

    void theLoadIsAPercentage();
    void theFirstSampleIsTakenByTheConstructor();
    void theSecondSampleIsTheLoadSinceTheFirst();
    void countersAreIndependent();

    void availableKBytesAreTheBytes();
    void availableMBytesAreTheKBytes();
    void theCommitLimitIsPositive();
    void theMemoryInUseIsPositive();
    void theMemoryInUsePercentIsOfTheLimit();

    void anUnknownPathAlwaysGivesMinusOne_data();
    void anUnknownPathAlwaysGivesMinusOne();

    void aMovedCounterGoesOn();
    void aCounterThatWasMovedFromGivesMinusOne();
    void anAssignedCounterTakesTheOtherPath();
    void aCounterThatWasMovedFromCanBeAssigned();
};

void TestCpuCounter::thePathsAreTheNamesOfTheSystem_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("CpuPercent") << CpuCounter::CpuPercent
                                << QStringLiteral("\\Processor(_Total)\\% Processor Time");
    QTest::newRow("MemInUseBytes")
        << CpuCounter::MemInUseBytes << QStringLiteral("\\Memory\\Committed Bytes");
    QTest::newRow("MemAvailBytes")
        << CpuCounter::MemAvailBytes << QStringLiteral("\\Memory\\Available Bytes");
    QTest::newRow("MemAvailKBytes")
        << CpuCounter::MemAvailKBytes << QStringLiteral("\\Memory\\Available KBytes");
    QTest::newRow("MemAvailMBytes")
        << CpuCounter::MemAvailMBytes << QStringLiteral("\\Memory\\Available MBytes");
    QTest::newRow("MemInUsePercent")
        << CpuCounter::MemInUsePercent << QStringLiteral("\\Memory\\% Committed Bytes In Use");
    QTest::newRow("MemLimitBytes")
        << CpuCounter::MemLimitBytes << QStringLiteral("\\Memory\\Commit Limit");
}

void TestCpuCounter::thePathsAreTheNamesOfTheSystem()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(path, expected);
}

void TestCpuCounter::theLoadIsAPercentage()
{
    CpuCounter counter(CpuCounter::CpuPercent);
    const long load = counter.getValue();
    QVERIFY2(isPercentage(load), qPrintable(QString::number(load)));
}

// Between two ticks of the system's clock there is no load. Without the sample of the constructor
// each value would be the load since the system was started.
void TestCpuCounter::theFirstSampleIsTakenByTheConstructor()
{
    if (onWindows())
        QSKIP("The clock of this system has no ticks to tell the two apart");
    constexpr int Attempts = 1000;
    bool isNone = false;
    for (int attempt = 0; attempt < Attempts && !isNone; ++attempt)
        isNone = CpuCounter(CpuCounter::CpuPercent).getValue() == 0;
    QVERIFY(isNone);
}

void TestCpuCounter::theSecondSampleIsTheLoadSinceTheFirst()
{
    CpuCounter counter(CpuCounter::CpuPercent);
    // Faster than the system's clock ticks at the beginning, slower at the end.
    qint64 work = 1;
    for (int call = 0; call < 200; ++call) {
        const long load = counter.getValue();
        QVERIFY2(isPercentage(load), qPrintable(QString::number(load)));
        QVERIFY(work >= 0);
        for (int step = 0; step < call * 1000; ++step)
            work = (work * 31 + step) % 65521;
    }
}

void TestCpuCounter::countersAreIndependent()
{
    CpuCounter first(CpuCounter::CpuPercent);
    {
        CpuCounter second(CpuCounter::CpuPercent);
        QVERIFY(isPercentage(second.getValue()));
        QVERIFY(isPercentage(first.getValue()));
    }
    QVERIFY(isPercentage(first.getValue()));
    CpuCounter unknown(QStringLiteral("\\Memory\\Nothing"));
    QCOMPARE(unknown.getValue(), -1L);
    QVERIFY(isPercentage(first.getValue()));
}

void TestCpuCounter::availableKBytesAreTheBytes()
{
    NEED_MEMORY_COUNTERS();
    if (!bytesFitIntoLong(CpuCounter::MemAvailBytes))
        QSKIP("The available bytes do not fit into a long of this system");
    CpuCounter bytes(CpuCounter::MemAvailBytes);
    CpuCounter kilobytes(CpuCounter::MemAvailKBytes);
    long value = 0;
    long other = 0;
    QVERIFY(sampleTogether(bytes, kilobytes, value, other));
    QVERIFY(value > 0);
    // The memory may have changed for the moment between two equal samples.
    constexpr long Change = 64 * 1024;
    QVERIFY2(qAbs(other - value / 1024) <= Change,
             qPrintable(QStringLiteral("%1 bytes, %2 KBytes").arg(value).arg(other)));
}

void TestCpuCounter::availableMBytesAreTheKBytes()
{
    NEED_MEMORY_COUNTERS();
    CpuCounter kilobytes(CpuCounter::MemAvailKBytes);
    CpuCounter megabytes(CpuCounter::MemAvailMBytes);
    long value = 0;
    long other = 0;
    QVERIFY(sampleTogether(kilobytes, megabytes, value, other));
    QVERIFY(value > 0);
    constexpr long Change = 64;
    QVERIFY2(qAbs(other - value / 1024) <= Change,
             qPrintable(QStringLiteral("%1 KBytes, %2 MBytes").arg(value).arg(other)));
}

void TestCpuCounter::theCommitLimitIsPositive()
{
    NEED_MEMORY_COUNTERS();
    CpuCounter limit(CpuCounter::MemLimitBytes);
    QVERIFY(limit.getValue() > 0);
}

void TestCpuCounter::theMemoryInUseIsPositive()
{
    NEED_MEMORY_COUNTERS();
    CpuCounter inUse(CpuCounter::MemInUseBytes);
    QVERIFY(inUse.getValue() > 0);
}

void TestCpuCounter::theMemoryInUsePercentIsOfTheLimit()
{
    NEED_MEMORY_COUNTERS();
    if (!bytesFitIntoLong(CpuCounter::MemInUseBytes)
        || !bytesFitIntoLong(CpuCounter::MemLimitBytes))
        QSKIP("The bytes of the memory do not fit into a long of this system");
    CpuCounter inUse(CpuCounter::MemInUseBytes);
    CpuCounter percent(CpuCounter::MemInUsePercent);
    long bytes = 0;
    long value = 0;
    QVERIFY(sampleTogether(inUse, percent, bytes, value));
    const long limit = CpuCounter(CpuCounter::MemLimitBytes).getValue();
    QVERIFY(limit > 0);
    const double expected = 100.0 * static_cast<double>(bytes) / static_cast<double>(limit);
    QVERIFY(value >= 0);
    QVERIFY2(qAbs(static_cast<double>(value) - expected) <= 2,
             qPrintable(QStringLiteral("%1 percent, not %2").arg(value).arg(expected)));
}

void TestCpuCounter::anUnknownPathAlwaysGivesMinusOne_data()
{
    QTest::addColumn<QString>("path");
    constexpr int Long = 5000;
    QTest::newRow("empty") << QString();
    QTest::newRow("no path") << QStringLiteral("CpuPercent");
    QTest::newRow("unknown counter") << QStringLiteral("\\Memory\\Nothing");
    QTest::newRow("unknown object") << QStringLiteral("\\Nothing\\Available Bytes");
    QTest::newRow("slashes") << QStringLiteral("/Memory/Available Bytes");
    QTest::newRow("more than a path")
        << CpuCounter::CpuPercent + QStringLiteral("\\% Processor Time");
    QTest::newRow("any characters") << QStringLiteral("\\M\u00e9moire\\\u65e5\u672c");
    QTest::newRow("a long text") << QString(Long, QLatin1Char('x'));
    QTest::newRow("a long text after a path")
        << CpuCounter::CpuPercent + QString(Long, QLatin1Char('x'));
    QTest::newRow("as long as the system takes") << QString(2047, QLatin1Char('x'));
    QTest::newRow("one longer") << QString(2048, QLatin1Char('x'));
}

void TestCpuCounter::anUnknownPathAlwaysGivesMinusOne()
{
    QFETCH(QString, path);
    CpuCounter counter(path);
    for (int call = 0; call < 3; ++call)
        QCOMPARE(counter.getValue(), -1L);
}

void TestCpuCounter::aMovedCounterGoesOn()
{
    CpuCounter counter(CpuCounter::CpuPercent);
    CpuCounter other(std::move(counter));
    QVERIFY(isPercentage(other.getValue()));
}

void TestCpuCounter::aCounterThatWasMovedFromGivesMinusOne()
{
    CpuCounter counter(CpuCounter::CpuPercent);
    const CpuCounter other(std::move(counter));
    QCOMPARE(counter.getValue(), -1L); // NOLINT(bugprone-use-after-move)
    QCOMPARE(counter.getValue(), -1L);
}

void TestCpuCounter::anAssignedCounterTakesTheOtherPath()
{
    CpuCounter counter(QStringLiteral("\\Memory\\Nothing"));
    QCOMPARE(counter.getValue(), -1L);
    CpuCounter other(CpuCounter::CpuPercent);
    counter = std::move(other);
    QVERIFY(isPercentage(counter.getValue()));
    QCOMPARE(other.getValue(), -1L); // NOLINT(bugprone-use-after-move)
}

void TestCpuCounter::aCounterThatWasMovedFromCanBeAssigned()
{
    CpuCounter counter(CpuCounter::CpuPercent);
    {
        const CpuCounter other(std::move(counter));
    }
    counter = CpuCounter(CpuCounter::CpuPercent);
    QVERIFY(isPercentage(counter.getValue()));
}

QTEST_GUILESS_MAIN(TestCpuCounter)

#include "tst_cpucounter.moc"
