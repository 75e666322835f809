#include <Utility/Formats/ProcText_p.h>

#include <QtTest/QtTest>

#include <limits>

using namespace Vorn::Util::Formats;

namespace {

const QByteArray Stat = "cpu  10132153 290696 3084719 46828483 16683 0 25195 175628 1000 500\n"
                        "cpu0 1393280 32966 572056 13343292 6130 0 17875 23933 0 0\n"
                        "cpu1 1393280 32966 572056 13343292 6130 0 17875 23933 0 0\n"
                        "intr 1462898\n"
                        "ctxt 115315\n";

const QByteArray Memory = "MemTotal:       16316412 kB\n"
                          "MemFree:         1179440 kB\n"
                          "MemAvailable:    9876544 kB\n"
                          "Buffers:          520480 kB\n"
                          "SwapTotal:             0 kB\n"
                          "CommitLimit:     8158204 kB\n"
                          "Committed_AS:   12345678 kB\n"
                          "VmallocTotal:   34359738367 kB\n"
                          "HugePages_Total:       0\n";

ProcessorTime time(quint64 busy, quint64 total)
{
    ProcessorTime time;
    time.busy = busy;
    time.total = total;
    return time;
}

} // namespace

class TestProcText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theProcessorTimeIsReadFromTheFirstLine_data();
    void theProcessorTimeIsReadFromTheFirstLine();
    void waitingForDisksIsIdle();
    void guestsAreNotCountedTwice();
    void theLoadIsTheBusyShare_data();
    void theLoadIsTheBusyShare();
    void theLoadOfTwoRecordedTexts();
    void theLoadIsThatSinceTheSampleBefore_data();
    void theLoadIsThatSinceTheSampleBefore();
    void theMemoryIsReadInBytes_data();
    void theMemoryIsReadInBytes();
};

void TestProcText::theProcessorTimeIsReadFromTheFirstLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<quint64>("busy");
    QTest::addColumn<quint64>("total");

    const quint64 busy = 10132153 + 290696 + 3084719 + 0 + 25195 + 175628;
    QTest::newRow("recorded") << Stat << busy << busy + 46828483 + 16683;
    QTest::newRow("an older system with four columns")
        << QByteArray("cpu  1 2 4 8\ncpu0 100 100 100 100\n") << quint64(7) << quint64(15);
    QTest::newRow("one blank") << QByteArray("cpu 1 2 4 8") << quint64(7) << quint64(15);
    QTest::newRow("no line end") << QByteArray("cpu  1 2 4 8 16") << quint64(7) << quint64(31);
    QTest::newRow("cut off within a number")
        << Stat.left(12) << quint64(1013215) << quint64(1013215);
    QTest::newRow("the next line does not count")
        << QByteArray("cpu  1\n 2 4 8\n") << quint64(1) << quint64(1);
    QTest::newRow("letters end the line") << QByteArray("cpu  1 2 x 8") << quint64(3) << quint64(3);
    QTest::newRow("negative numbers end the line")
        << QByteArray("cpu  1 -2 4 8") << quint64(1) << quint64(1);
    QTest::newRow("empty") << QByteArray("") << quint64(0) << quint64(0);
    QTest::newRow("three letters") << QByteArray("cpu") << quint64(0) << quint64(0);
    QTest::newRow("no numbers") << QByteArray("cpu  \n") << quint64(0) << quint64(0);
    QTest::newRow("a single processor") << QByteArray("cpu0 1 2 4 8\n") << quint64(0) << quint64(0);
    QTest::newRow("another first line") << "intr 5\n" + Stat << quint64(0) << quint64(0);
    QTest::newRow("a blank first") << " " + Stat << quint64(0) << quint64(0);
}

void TestProcText::theProcessorTimeIsReadFromTheFirstLine()
{
    QFETCH(QByteArray, text);
    QFETCH(quint64, busy);
    QFETCH(quint64, total);
    const ProcessorTime read = readProcessorTime(text.constData());
    QCOMPARE(read.busy, busy);
    QCOMPARE(read.total, total);
}

void TestProcText::waitingForDisksIsIdle()
{
    const ProcessorTime read = readProcessorTime("cpu  0 0 0 5 7 0 0 0 0 0\n");
    QCOMPARE(read.busy, quint64(0));
    QCOMPARE(read.total, quint64(12));
}

void TestProcText::guestsAreNotCountedTwice()
{
    const ProcessorTime read = readProcessorTime("cpu  9 9 1 1 0 0 0 0 9 9\n");
    QCOMPARE(read.busy, quint64(19));
    QCOMPARE(read.total, quint64(20));
}

void TestProcText::theLoadIsTheBusyShare_data()
{
    QTest::addColumn<quint64>("busyBefore");
    QTest::addColumn<quint64>("totalBefore");
    QTest::addColumn<quint64>("busyAfter");
    QTest::addColumn<quint64>("totalAfter");
    QTest::addColumn<int>("load");

    const auto row = [](const char *name, quint64 busyBefore, quint64 totalBefore,
                        quint64 busyAfter, quint64 totalAfter, int load) {
        QTest::newRow(name) << busyBefore << totalBefore << busyAfter << totalAfter << load;
    };
    row("idle", 50, 100, 50, 200, 0);
    row("busy", 50, 100, 150, 200, 100);
    row("half", 50, 100, 100, 200, 50);
    row("rounded down", 0, 0, 2, 3, 66);
    row("almost all is not all", 0, 0, 999, 1000, 99);
    row("almost nothing is nothing", 0, 0, 9, 1000, 0);
    row("no time has passed", 50, 100, 50, 100, -1);
    row("nothing is known", 0, 0, 0, 0, -1);
    row("time runs backwards", 50, 100, 40, 90, -1);
    row("the busy time runs backwards", 50, 100, 49, 110, 0);
    row("more busy than time has passed", 50, 100, 70, 110, 100);
    row("months of many processors", Q_UINT64_C(1) << 50, Q_UINT64_C(1) << 51, Q_UINT64_C(3) << 50,
        Q_UINT64_C(3) << 51, 50);
}

void TestProcText::theLoadIsTheBusyShare()
{
    QFETCH(quint64, busyBefore);
    QFETCH(quint64, totalBefore);
    QFETCH(quint64, busyAfter);
    QFETCH(quint64, totalAfter);
    QFETCH(int, load);
    QCOMPARE(loadBetween(time(busyBefore, totalBefore), time(busyAfter, totalAfter)),
             static_cast<long>(load));
}

void TestProcText::theLoadOfTwoRecordedTexts()
{
    const ProcessorTime before = readProcessorTime("cpu  100 10 50 800 20 1 2 3 40 0\n");
    const ProcessorTime after = readProcessorTime("cpu  130 10 60 850 25 1 4 6 50 0\n");
    QCOMPARE(loadBetween(before, after), 45L); // 45 of 100
}

void TestProcText::theLoadIsThatSinceTheSampleBefore_data()
{
    QTest::addColumn<QList<QByteArray>>("samples");
    QTest::addColumn<QList<long>>("loads");

    using Samples = QList<QByteArray>;
    using Loads = QList<long>;
    const auto sample = [](int busy, int idle) {
        return "cpu  " + QByteArray::number(busy) + " 0 0 " + QByteArray::number(idle) + '\n';
    };
    QTest::newRow("rising") << Samples{sample(0, 100), sample(50, 150), sample(140, 160),
                                       sample(140, 260)}
                            << Loads{50, 90, 0};
    // Not since the start of the machine.
    QTest::newRow("the first interval begins with the object")
        << Samples{sample(900, 100), sample(900, 200)} << Loads{0};
    QTest::newRow("no tick has passed since the first sample")
        << Samples{sample(900, 100), sample(900, 100), sample(960, 140)} << Loads{0, 60};
    QTest::newRow("within one tick the load is that of the interval before")
        << Samples{sample(0, 100), sample(70, 130), sample(70, 130), sample(70, 130),
                   sample(80, 220)}
        << Loads{70, 70, 70, 10};
    QTest::newRow("the count begins anew")
        << Samples{sample(500, 500), sample(540, 560), sample(10, 90), sample(40, 160)}
        << Loads{40, 40, 30};
    QTest::newRow("what cannot be read does not end the interval")
        << Samples{sample(0, 100), sample(50, 150), QByteArray(), QByteArray("cpu  x"),
                   sample(80, 220)}
        << Loads{50, -1, -1, 30};
    QTest::newRow("after a failed read, no tick has passed: the load before")
        << Samples{sample(0, 100), sample(50, 150), QByteArray(), sample(50, 150)}
        << Loads{50, -1, 50};
}

void TestProcText::theLoadIsThatSinceTheSampleBefore()
{
    QFETCH(QList<QByteArray>, samples);
    QFETCH(QList<long>, loads);
    LoadMeter meter(samples.takeFirst().constData());
    QList<long> measured;
    for (const QByteArray &sample : qAsConst(samples))
        measured.append(meter.load(sample.constData()));
    QCOMPARE(measured, loads);
}

void TestProcText::theMemoryIsReadInBytes_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<qint64>("bytes");

    const QByteArray available = "MemAvailable:";
    QTest::newRow("in the middle") << Memory << available << Q_INT64_C(9876544) * 1024;
    QTest::newRow("the first line")
        << Memory << QByteArray("MemTotal:") << Q_INT64_C(16316412) * 1024;
    QTest::newRow("limit") << Memory << QByteArray("CommitLimit:") << Q_INT64_C(8158204) * 1024;
    QTest::newRow("committed") << Memory << QByteArray("Committed_AS:")
                               << Q_INT64_C(12345678) * 1024;
    QTest::newRow("more than 32 bits")
        << Memory << QByteArray("VmallocTotal:") << Q_INT64_C(34359738367) * 1024;
    QTest::newRow("nothing") << Memory << QByteArray("SwapTotal:") << Q_INT64_C(0);
    QTest::newRow("no line end") << QByteArray("MemAvailable: 7") << available << Q_INT64_C(7168);
    QTest::newRow("the first of two")
        << QByteArray("MemAvailable: 1 kB\nMemAvailable: 2 kB\n") << available << Q_INT64_C(1024);
    QTest::newRow("after empty lines")
        << QByteArray("\n\n\nMemAvailable: 1 kB\n") << available << Q_INT64_C(1024);
    QTest::newRow("not there") << Memory << QByteArray("MemShared:") << Q_INT64_C(-1);
    QTest::newRow("an older system")
        << QByteArray("MemTotal: 5 kB\nMemFree: 3 kB\n") << available << Q_INT64_C(-1);
    QTest::newRow("empty") << QByteArray("") << available << Q_INT64_C(-1);
    QTest::newRow("only line ends") << QByteArray("\n\n") << available << Q_INT64_C(-1);
    QTest::newRow("not at the beginning of a line")
        << QByteArray("XMemAvailable: 5 kB\n MemAvailable: 6 kB\n") << available << Q_INT64_C(-1);
    QTest::newRow("cut off within the key") << QByteArray("MemAvail") << available << Q_INT64_C(-1);
    QTest::newRow("no number") << QByteArray("MemAvailable: kB\n") << available << Q_INT64_C(-1);
    QTest::newRow("the number of the next line does not count")
        << QByteArray("MemAvailable:\n 5 kB\n") << available << Q_INT64_C(-1);
    QTest::newRow("negative") << QByteArray("MemAvailable: -5 kB\n") << available << Q_INT64_C(-1);
    QTest::newRow("cut off after the key")
        << QByteArray("MemAvailable:") << available << Q_INT64_C(-1);
    QTest::newRow("the largest number") << QByteArray("MemAvailable: 9007199254740991 kB\n")
                                        << available << std::numeric_limits<qint64>::max() - 1023;
    QTest::newRow("too large a number")
        << QByteArray("MemAvailable: 9007199254740992 kB\n") << available << Q_INT64_C(-1);
    QTest::newRow("far too large a number")
        << QByteArray("MemAvailable: 99999999999999999999999 kB\n") << available << Q_INT64_C(-1);
}

void TestProcText::theMemoryIsReadInBytes()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, key);
    QFETCH(qint64, bytes);
    QCOMPARE(readMemoryBytes(text.constData(), key.constData()), bytes);
}

QTEST_GUILESS_MAIN(TestProcText)

#include "tst_proctext.moc"
