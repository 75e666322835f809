#include <Utility/Formats/CommandOutput_p.h>

#include <QtCore/QBuffer>
#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <array>
#include <limits>

using namespace Vorn::Util::Formats;

namespace {

constexpr int Least = std::numeric_limits<int>::min();
constexpr int Most = std::numeric_limits<int>::max();

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

// The rule in its simplest form: reads lines into a buffer of 200 bytes, and stops after the line
// before which more than maxLines lines were already read.
QStringList linesByTheSimpleRule(const QByteArray &output, int maxLines)
{
    QBuffer device;
    device.setData(output);
    device.open(QIODevice::ReadOnly);
    QStringList lines;
    std::array<char, 200> buffer{};
    qint64 counter = 0;
    while (device.readLine(buffer.data(), buffer.size()) != 0) {
        lines.append(QString::fromUtf8(buffer.data()));
        const bool isEnough = counter > maxLines;
        ++counter;
        if (isEnough || device.atEnd())
            break;
    }
    return lines;
}

QByteArray randomOutput(QRandomGenerator &random)
{
    QByteArray output(random.bounded(3000), 'x');
    const int longest = 1 + random.bounded(500);
    for (int i = random.bounded(longest); i < output.size(); i += 1 + random.bounded(longest))
        output[i] = "\n\r\0\xC3\xA4"[random.bounded(5)];
    return output;
}

} // namespace

class TestCommandOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLinesAreThoseThatAreRead_data();
    void theLinesAreThoseThatAreRead();
    void theNeededBytesGiveAllLines_data();
    void theNeededBytesGiveAllLines();
    void theNeededNumberOfBytes_data();
    void theNeededNumberOfBytes();
};

void TestCommandOutput::theLinesAreThoseThatAreRead_data()
{
    QTest::addColumn<int>("maxLines");
    for (const int maxLines : {Least, -2, -1, 0, 1, 5, 1000, Most})
        QTest::newRow(QByteArray::number(maxLines).constData()) << maxLines;
}

void TestCommandOutput::theLinesAreThoseThatAreRead()
{
    QFETCH(int, maxLines);
    QCOMPARE(outputLines({}, maxLines), QStringList{QString()});
    QRandomGenerator random(static_cast<quint32>(maxLines));
    for (int round = 0; round < 1000; ++round) {
        const QByteArray output = randomOutput(random);
        QVERIFY2(outputLines(viewOf(output), maxLines) == linesByTheSimpleRule(output, maxLines),
                 output.toHex().constData());
    }
}

void TestCommandOutput::theNeededBytesGiveAllLines_data()
{
    theLinesAreThoseThatAreRead_data();
}

void TestCommandOutput::theNeededBytesGiveAllLines()
{
    QFETCH(int, maxLines);
    QRandomGenerator random(static_cast<quint32>(maxLines));
    for (int round = 0; round < 1000; ++round) {
        const QByteArray output = randomOutput(random);
        const qint64 length = std::min<qint64>(output.size(), neededOutput(maxLines));
        const QByteArray needed = output.left(static_cast<int>(length));
        QVERIFY2(outputLines(viewOf(needed), maxLines) == linesByTheSimpleRule(output, maxLines),
                 output.toHex().constData());
    }
}

void TestCommandOutput::theNeededNumberOfBytes_data()
{
    QTest::addColumn<int>("maxLines");
    QTest::addColumn<qint64>("needed");
    QTest::newRow("the least") << Least << Q_INT64_C(199);
    QTest::newRow("-1") << -1 << Q_INT64_C(199);
    QTest::newRow("0") << 0 << Q_INT64_C(398);
    QTest::newRow("30") << 30 << Q_INT64_C(6368);
    QTest::newRow("the most") << Most << Q_INT64_C(2147483649) * 199;
}

void TestCommandOutput::theNeededNumberOfBytes()
{
    QFETCH(int, maxLines);
    QFETCH(qint64, needed);
    QCOMPARE(neededOutput(maxLines), needed);
}

QTEST_GUILESS_MAIN(TestCommandOutput)

#include "tst_commandoutput.moc"
