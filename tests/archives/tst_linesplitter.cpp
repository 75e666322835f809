#include <Utility/Formats/LineSplitter_p.h>

#include <QtTest/QtTest>

using Vorn::Util::Formats::LineSplitter;

namespace {

using Lines = QList<QByteArray>;

Lines split(const QByteArray &output, int blockSize)
{
    LineSplitter splitter;
    Lines lines;
    for (int from = 0; from < output.size(); from += blockSize)
        lines += splitter.add(output.mid(from, blockSize));
    return lines;
}

} // namespace

class TestLineSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreTheSameInBlocksOfAnySize_data();
    void linesAreTheSameInBlocksOfAnySize();
    void theRestOfALongLineIsDropped_data();
    void theRestOfALongLineIsDropped();
    void theLineAfterALongOneIsWhole();
};

void TestLineSplitter::linesAreTheSameInBlocksOfAnySize_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<Lines>("lines");
    QTest::newRow("nothing") << QByteArray() << Lines();
    QTest::newRow("no line feed") << QByteArray("abc") << Lines();
    QTest::newRow("one line") << QByteArray("abc\n") << Lines{"abc\n"};
    QTest::newRow("empty lines") << QByteArray("\n\na\n\n") << Lines{"\n", "\n", "a\n", "\n"};
    QTest::newRow("rest without line feed") << QByteArray("a\nb\nrest") << Lines{"a\n", "b\n"};
    QTest::newRow("carriage return") << QByteArray("a\r\nb\rc\r\n") << Lines{"a\r\n", "b\rc\r\n"};
    QTest::newRow("zero byte") << QByteArray("a\0b\nc\n", 6)
                               << Lines{QByteArray("a\0b\n", 4), "c\n"};
}

void TestLineSplitter::linesAreTheSameInBlocksOfAnySize()
{
    QFETCH(QByteArray, output);
    QFETCH(Lines, lines);
    for (int blockSize = 1; blockSize <= output.size() + 1; ++blockSize)
        QCOMPARE(split(output, blockSize), lines);
}

void TestLineSplitter::theRestOfALongLineIsDropped_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("kept");
    constexpr int Most = LineSplitter::MaxLineLength;
    QTest::newRow("one less") << Most - 1 << Most - 1;
    QTest::newRow("exactly as long") << Most << Most;
    QTest::newRow("one more") << Most + 1 << Most;
    QTest::newRow("three times") << 3 * Most << Most;
}

void TestLineSplitter::theRestOfALongLineIsDropped()
{
    QFETCH(int, length);
    QFETCH(int, kept);
    const QByteArray output = QByteArray(length - 1, 'x') + "y\n";
    const QByteArray line = output.left(kept) + '\n';
    for (const int blockSize : {1000, 65536, static_cast<int>(output.size())})
        QVERIFY(split(output, blockSize) == Lines{line}); // too long to be shown
}

void TestLineSplitter::theLineAfterALongOneIsWhole()
{
    const QByteArray output = QByteArray(2 * LineSplitter::MaxLineLength, 'x') + "\nnext\n";
    for (const int blockSize : {1000, static_cast<int>(output.size())})
        QCOMPARE(split(output, blockSize).value(1), QByteArray("next\n"));
}

QTEST_GUILESS_MAIN(TestLineSplitter)

#include "tst_linesplitter.moc"
