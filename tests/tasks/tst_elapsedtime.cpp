#include <Utility/System.h>

#include <QtTest/QtTest>

#include <limits>

using Vorn::Util::System;

class TestElapsedTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDurationIsWrittenInTheFormOfItsGreatestUnit_data();
    void aDurationIsWrittenInTheFormOfItsGreatestUnit();
    void theLastMillisecondDigitIsDroppedNotRounded_data();
    void theLastMillisecondDigitIsDroppedNotRounded();
    void aNegativeDurationIsWrittenAsNegativeHundredths_data();
    void aNegativeDurationIsWrittenAsNegativeHundredths();
};

namespace {

void compare()
{
    QFETCH(qint64, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(System::getElapsedTimeString(milliseconds), text);
}

void addRow(qint64 milliseconds, const char *text)
{
    QTest::addRow("%lld", static_cast<long long>(milliseconds))
        << milliseconds << QString::fromLatin1(text);
}

void addColumns()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
}

} // namespace

void TestElapsedTime::aDurationIsWrittenInTheFormOfItsGreatestUnit_data()
{
    addColumns();
    // below a second
    addRow(0, "0.00 sec");
    addRow(10, "0.01 sec");
    addRow(70, "0.07 sec");
    addRow(100, "0.10 sec");
    addRow(990, "0.99 sec");
    // seconds
    addRow(1000, "1.00 sec");
    addRow(9070, "9.07 sec");
    addRow(10000, "10.00 sec");
    addRow(59990, "59.99 sec");
    // minutes
    addRow(60000, "1:00.00");
    addRow(61010, "1:01.01");
    addRow(309070, "5:09.07");
    addRow(600000, "10:00.00");
    addRow(3599990, "59:59.99");
    // hours
    addRow(3600000, "1:00:00.00");
    addRow(3601000, "1:00:01.00");
    addRow(3909070, "1:05:09.07");
    addRow(36000000, "10:00:00.00");
    addRow(86399990, "23:59:59.99");
    addRow(90000000, "25:00:00.00");
    addRow(360000000, "100:00:00.00");
    addRow(3600000LL * 123456789, "123456789:00:00.00");
    addRow(std::numeric_limits<qint64>::max(), "2562047788015:12:55.80");
}

void TestElapsedTime::aDurationIsWrittenInTheFormOfItsGreatestUnit()
{
    compare();
}

void TestElapsedTime::theLastMillisecondDigitIsDroppedNotRounded_data()
{
    addColumns();
    addRow(9, "0.00 sec");
    addRow(19, "0.01 sec");
    addRow(999, "0.99 sec");
    addRow(9079, "9.07 sec");
    addRow(59999, "59.99 sec");
    addRow(61019, "1:01.01");
    addRow(3599999, "59:59.99");
    addRow(3600009, "1:00:00.00");
}

void TestElapsedTime::theLastMillisecondDigitIsDroppedNotRounded()
{
    compare();
}

void TestElapsedTime::aNegativeDurationIsWrittenAsNegativeHundredths_data()
{
    addColumns();
    addRow(-1, "0.00 sec");
    addRow(-9, "0.00 sec");
    addRow(-70, "0.-7 sec");
    addRow(-100, "0.-10 sec");
    addRow(-999, "0.-99 sec");
    addRow(-1000, "0.00 sec");
    addRow(-1500, "0.-50 sec");
    addRow(-61010, "0.-1 sec");
    addRow(-3600000, "0.00 sec");
    addRow(std::numeric_limits<qint64>::min(), "0.-80 sec");
}

void TestElapsedTime::aNegativeDurationIsWrittenAsNegativeHundredths()
{
    compare();
}

QTEST_GUILESS_MAIN(TestElapsedTime)

#include "tst_elapsedtime.moc"
