// What a log writes: times, texts, and values that are streamed.

#include "BuildPaths.h"
#include "TestSystem.h"
#include "TestWithLog.h"

#include <Utility/Log.h>

#include <QtCore/QDateTime>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <limits>

using namespace Vorn::Util;

class TestLogLines : public TestWithLog
{
    Q_OBJECT

private Q_SLOTS:
    void withoutTimeStampALineBeginsWithOneBlank_data();
    void withoutTimeStampALineBeginsWithOneBlank();
    void timeOnlyIsTheDefault();
    void timeOnlyWritesTheLocalTime();
    void dateAndTimeWritesTheLocalDateAndTime();
    void trailingWhiteSpaceIsDropped_data();
    void trailingWhiteSpaceIsDropped();
    void aTextOfOnlyBlanksIsPrefixBlankAndLineEnd_data();
    void aTextOfOnlyBlanksIsPrefixBlankAndLineEnd();
    void placeMarkersInATextAreWrittenAsTheyStand_data();
    void placeMarkersInATextAreWrittenAsTheyStand();
    void theTextIsWrittenAsUtf8_data();
    void theTextIsWrittenAsUtf8();
    void appendWritesTheSameLineAsFastAppend();
    void everyLineIsOnDiskWhenTheCallReturns();
    void aStaticObjectMayWriteWhileItIsDestroyed_data();
    void aStaticObjectMayWriteWhileItIsDestroyed();

    void aTextIsStreamedAsItIs_data();
    void aTextIsStreamedAsItIs();
    void aCharacterIsStreamedAsLatin1_data();
    void aCharacterIsStreamedAsLatin1();
    void anIntegerIsStreamedInDecimal_data();
    void anIntegerIsStreamedInDecimal();
    void aNumberIsStreamedInTheShorterForm_data();
    void aNumberIsStreamedInTheShorterForm();
    void streamingChains();
    void aLogThatIsOpenedAgainKeepsEachLine_data();
    void aLogThatIsOpenedAgainKeepsEachLine();

private:
    // What the log holds after \a value was streamed into it.
    template <typename Value> QByteArray streamed(const Value &value) const
    {
        Log log(fileName_, Log::NoFileTimeStamp);
        const bool isChained = log.open(true) && &(log << value) == &log;
        return isChained ? written() : QByteArray("not open, or the result is not the log");
    }
};

void TestLogLines::withoutTimeStampALineBeginsWithOneBlank_data()
{
    QTest::addColumn<int>("timeStamp");

    QTest::newRow("none") << static_cast<int>(Log::NoTimeStamp);
    QTest::newRow("above the range") << 3;
    QTest::newRow("far above") << std::numeric_limits<int>::max();
    QTest::newRow("below the range") << -1;
}

void TestLogLines::withoutTimeStampALineBeginsWithOneBlank()
{
    QFETCH(int, timeStamp);
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(static_cast<Log::TimeStamp>(timeStamp));
    QCOMPARE(static_cast<int>(log.timeStamp()), timeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("text"));
    log.fastAppend(QStringLiteral("  text"));
    QCOMPARE(written(), " text" + lineEnd() + "   text" + lineEnd());
}

void TestLogLines::timeOnlyIsTheDefault()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("text"));
    const QRegularExpression form(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] text\\r?\\n$"));
    QVERIFY2(form.match(QString::fromUtf8(written())).hasMatch(), written().constData());
}

void TestLogLines::timeOnlyWritesTheLocalTime()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::DateAndTime);
    log.setTimeStamp(Log::TimeOnly);
    QCOMPARE(log.timeStamp(), Log::TimeOnly);
    QVERIFY(log.open(true));
    const QDateTime before = QDateTime::currentDateTime();
    log.append(QStringLiteral("text"));
    const QString line = QString::fromUtf8(written());
    const QString back = QStringLiteral("] text") + QString::fromLatin1(lineEnd());
    QVERIFY2(line.startsWith(QLatin1Char('[')) && line.endsWith(back), qPrintable(line));
    QVERIFY(
        isFromSince(before, line.mid(1, line.size() - 1 - back.size()), [](const QDateTime &time) {
            return time.toString(QStringLiteral("hh:mm:ss"));
        }));
}

void TestLogLines::dateAndTimeWritesTheLocalDateAndTime()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::DateAndTime);
    QCOMPARE(log.timeStamp(), Log::DateAndTime);
    QVERIFY(log.open(true));
    const QDateTime before = QDateTime::currentDateTime();
    log.append(QStringLiteral("text"));
    const QString line = QString::fromUtf8(written());
    const QString back = QStringLiteral("] text") + QString::fromLatin1(lineEnd());
    QVERIFY2(line.startsWith(QLatin1Char('[')) && line.endsWith(back), qPrintable(line));
    const QString prefix = line.mid(1, line.size() - 1 - back.size());
    // The names of days and months are those of Qt's text date.
    QVERIFY2(QRegularExpression(QStringLiteral("^\\S+ \\S+ \\d{1,2} \\d\\d:\\d\\d:\\d\\d \\d{4}$"))
                 .match(prefix)
                 .hasMatch(),
             qPrintable(prefix));
    QVERIFY(isFromSince(before, prefix,
                        [](const QDateTime &time) { return time.toString(Qt::TextDate); }));
}

void TestLogLines::trailingWhiteSpaceIsDropped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");

    QTest::newRow("none") << QStringLiteral("a") << QStringLiteral("a");
    QTest::newRow("blanks") << QStringLiteral("a   ") << QStringLiteral("a");
    QTest::newRow("line end") << QStringLiteral("a\n") << QStringLiteral("a");
    QTest::newRow("Windows line ends") << QStringLiteral("a\r\n\r\n") << QStringLiteral("a");
    QTest::newRow("every kind") << QStringLiteral("a \t\n\v\f\r") << QStringLiteral("a");
    QTest::newRow("no-break space") << QStringLiteral("a\u00a0") << QStringLiteral("a");
    QTest::newRow("wide spaces") << QStringLiteral("a\u2003\u3000\u2028") << QStringLiteral("a");
    QTest::newRow("zero-width space") << QStringLiteral("a\u200b") << QStringLiteral("a\u200b");
    QTest::newRow("leading") << QStringLiteral(" \t a b ") << QStringLiteral(" \t a b");
    QTest::newRow("inner line breaks")
        << QStringLiteral("\na\n\n b\n") << QStringLiteral("\na\n\n b");
    QTest::newRow("one character") << QStringLiteral("a ") << QStringLiteral("a");
}

void TestLogLines::trailingWhiteSpaceIsDropped()
{
    QFETCH(QString, text);
    QFETCH(QString, kept);
    QByteArray line = ' ' + kept.toUtf8() + '\n';
    line.replace('\n', lineEnd());
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(text);
    QCOMPARE(written(), line);
    log.fastAppend(text);
    QCOMPARE(written(), line + line);
}

void TestLogLines::aTextOfOnlyBlanksIsPrefixBlankAndLineEnd_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("null") << QString();
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("one blank") << QStringLiteral(" ");
    QTest::newRow("blanks") << QStringLiteral("     ");
    QTest::newRow("white space") << QStringLiteral("\t\r\n \u00a0\u3000");
}

void TestLogLines::aTextOfOnlyBlanksIsPrefixBlankAndLineEnd()
{
    QFETCH(QString, text);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(text);
    const QByteArray withTime = written();
    QVERIFY2(QRegularExpression(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] \\r?\\n$"))
                 .match(QString::fromUtf8(withTime))
                 .hasMatch(),
             withTime.constData());
    log.setTimeStamp(Log::NoTimeStamp);
    log.append(text);
    QCOMPARE(written(), withTime + ' ' + lineEnd());
}

void TestLogLines::placeMarkersInATextAreWrittenAsTheyStand_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text : {"%1", "%2", "%1 %2", "%2 %1 %3 %L1 %99", "100%", "%%1", "%n", "%s %d"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void TestLogLines::placeMarkersInATextAreWrittenAsTheyStand()
{
    QFETCH(QString, text);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(text);
    const QByteArray withTime = written();
    QCOMPARE(withTime.mid(QByteArray("[hh:mm:ss]").size()), ' ' + text.toUtf8() + lineEnd());
    log.setTimeStamp(Log::NoTimeStamp);
    log.append(text);
    QCOMPARE(written(), withTime + ' ' + text.toUtf8() + lineEnd());
}

void TestLogLines::theTextIsWrittenAsUtf8_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");

    const auto characters = [](const QVector<ushort> &units) {
        QString text;
        for (const ushort unit : units)
            text += QChar(unit);
        return text;
    };
    QTest::newRow("null character") << characters({'a', 0, 'b'}) << QByteArray("a\0b", 3);
    QTest::newRow("last of ASCII") << characters({0x7f}) << QByteArray("\x7F");
    QTest::newRow("first after ASCII") << characters({0x80}) << QByteArray("\xC2\x80");
    QTest::newRow("umlaut") << characters({0xe4}) << QByteArray("\xC3\xA4");
    QTest::newRow("euro sign") << characters({0x20ac}) << QByteArray("\xE2\x82\xAC");
    QTest::newRow("pair of surrogates")
        << characters({0xd83d, 0xde00}) << QByteArray("\xF0\x9F\x98\x80");
    QTest::newRow("all lengths") << characters({0xe4, ' ', 0x20ac, ' ', 0xd83d, 0xde00})
                                 << QByteArray("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
    QTest::newRow("byte order mark") << characters({0xfeff, '-'}) << QByteArray("\xEF\xBB\xBF-");
    QTest::newRow("high surrogate alone") << characters({'a', 0xd83d}) << QByteArray("a?");
    QTest::newRow("low surrogate alone") << characters({0xde00, 'a'}) << QByteArray("?a");
    QTest::newRow("longer than the usual line")
        << QString(3000, QLatin1Char('a')) + QChar(0xe4) << QByteArray(3000, 'a') + "\xC3\xA4";
}

void TestLogLines::theTextIsWrittenAsUtf8()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(text);
    log << QStringLiteral("\u00e4 \u20ac \U0001F600");
    QCOMPARE(written(), ' ' + bytes + lineEnd() + "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
}

void TestLogLines::appendWritesTheSameLineAsFastAppend()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("  text\t"));
    log.fastAppend(QStringLiteral("  text\t"));
    const QRegularExpression form(
        QStringLiteral("^(\\[\\d\\d:\\d\\d:\\d\\d\\]   text\\r?\\n){2}$"));
    QVERIFY2(form.match(QString::fromUtf8(written())).hasMatch(), written().constData());
}

void TestLogLines::everyLineIsOnDiskWhenTheCallReturns()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    QByteArray expected;
    for (int i = 0; i < 100; ++i) {
        log.append(QStringLiteral("a"));
        expected += " a" + lineEnd();
        QCOMPARE(written(), expected);
        log.fastAppend(QStringLiteral("b"));
        expected += " b" + lineEnd();
        QCOMPARE(written(), expected);
        log << QStringLiteral("c");
        expected += "c";
        QCOMPARE(written(), expected);
    }
}

void TestLogLines::aStaticObjectMayWriteWhileItIsDestroyed_data()
{
    QTest::addColumn<int>("timeStamp");
    QTest::addColumn<QString>("prefix");

    QTest::newRow("none") << static_cast<int>(Log::NoTimeStamp) << QString();
    QTest::newRow("time") << static_cast<int>(Log::TimeOnly)
                          << QStringLiteral("\\[\\d\\d:\\d\\d:\\d\\d\\]");
    QTest::newRow("date and time")
        << static_cast<int>(Log::DateAndTime)
        << QStringLiteral("\\[\\S+ \\S+ \\d+ \\d\\d:\\d\\d:\\d\\d \\d{4}\\]");
}

// Even after the end of main(), when thread-local objects are gone.
void TestLogLines::aStaticObjectMayWriteWhileItIsDestroyed()
{
    QFETCH(int, timeStamp);
    QFETCH(QString, prefix);
    QProcess helper;
    helper.setProcessChannelMode(QProcess::ForwardedChannels);
    helper.start(BuildPaths::helperProgram(),
                 {QStringLiteral("log-at-exit"), fileName_, QString::number(timeStamp)});
    QVERIFY(helper.waitForFinished());
    QCOMPARE(helper.exitStatus(), QProcess::NormalExit);
    QCOMPARE(helper.exitCode(), 0);
    const QRegularExpression expected(QRegularExpression::anchoredPattern(
        QStringLiteral("%1 made\r?\n%1 destroyed\r?\n").arg(prefix)));
    const QString content = QString::fromUtf8(written());
    QVERIFY2(expected.match(content).hasMatch(), qPrintable(content));
}

void TestLogLines::aTextIsStreamedAsItIs_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << QString();
    QTest::newRow("plain") << QStringLiteral("text");
    QTest::newRow("blanks") << QStringLiteral("  text \t ");
    QTest::newRow("only blanks") << QStringLiteral("   ");
    QTest::newRow("line ends") << QStringLiteral("a\nb\n\n");
    QTest::newRow("place markers") << QStringLiteral("%1 %2");
    QTest::newRow("long") << QString(100000, QLatin1Char('x'));
}

void TestLogLines::aTextIsStreamedAsItIs()
{
    QFETCH(QString, text);
    QByteArray expected = text.toUtf8();
    expected.replace('\n', lineEnd());
    QCOMPARE(streamed(text), expected);
}

void TestLogLines::aCharacterIsStreamedAsLatin1_data()
{
    QTest::addColumn<char>("character");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("letter") << 'a' << QByteArray("a");
    QTest::newRow("digit") << '7' << QByteArray("7");
    QTest::newRow("blank") << ' ' << QByteArray(" ");
    QTest::newRow("line end") << '\n' << lineEnd();
    QTest::newRow("umlaut") << '\xE4' << QByteArray("\xC3\xA4");
    QTest::newRow("last") << '\xFF' << QByteArray("\xC3\xBF");
}

void TestLogLines::aCharacterIsStreamedAsLatin1()
{
    QFETCH(char, character);
    QFETCH(QByteArray, expected);
    QCOMPARE(streamed(character), expected);
}

void TestLogLines::anIntegerIsStreamedInDecimal_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("zero") << 0 << QByteArray("0");
    QTest::newRow("letter code") << 65 << QByteArray("65");
    QTest::newRow("negative") << -7 << QByteArray("-7");
    QTest::newRow("thousands") << 1234567 << QByteArray("1234567");
    QTest::newRow("largest") << std::numeric_limits<int>::max() << QByteArray("2147483647");
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << QByteArray("-2147483648");
}

void TestLogLines::anIntegerIsStreamedInDecimal()
{
    QFETCH(int, number);
    QFETCH(QByteArray, expected);
    QCOMPARE(streamed(number), expected);
}

void TestLogLines::aNumberIsStreamedInTheShorterForm_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("zero") << 0.0 << QByteArray("0");
    QTest::newRow("whole") << 2.0 << QByteArray("2");
    QTest::newRow("half") << -2.5 << QByteArray("-2.5");
    QTest::newRow("six digits") << 3.14159265 << QByteArray("3.14159");
    QTest::newRow("rounded up") << 2.7182818 << QByteArray("2.71828");
    QTest::newRow("largest fixed") << 123456.0 << QByteArray("123456");
    QTest::newRow("too many digits") << 1234567.0 << QByteArray("1.23457e+06");
    QTest::newRow("large") << 1e10 << QByteArray("1e+10");
    QTest::newRow("smallest fixed") << 0.0001 << QByteArray("0.0001");
    QTest::newRow("small") << 0.00001 << QByteArray("1e-05");
    QTest::newRow("very large") << 1.5e300 << QByteArray("1.5e+300");
}

void TestLogLines::aNumberIsStreamedInTheShorterForm()
{
    QFETCH(double, number);
    QFETCH(QByteArray, expected);
    QCOMPARE(streamed(number), expected);
}

void TestLogLines::streamingChains()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log << QStringLiteral("t = ") << 1.5 << ' ' << 2 << '\n' << QStringLiteral("end ");
    log.append(QStringLiteral("line"));
    QCOMPARE(written(), "t = 1.5 2" + lineEnd() + "end  line" + lineEnd());
}

void TestLogLines::aLogThatIsOpenedAgainKeepsEachLine_data()
{
    QTest::addColumn<bool>("append");
    QTest::addColumn<bool>("appendAgain");

    QTest::newRow("emptied twice") << false << false;
    QTest::newRow("emptied, appended to") << false << true;
    QTest::newRow("appended to, emptied") << true << false;
    QTest::newRow("appended to twice") << true << true;
}

void TestLogLines::aLogThatIsOpenedAgainKeepsEachLine()
{
    QFETCH(bool, append);
    QFETCH(bool, appendAgain);
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(append));
    log << QStringLiteral("before\n");
    log.close();
    QVERIFY(log.open(appendAgain));
    log.fastAppend(QStringLiteral("one"));
    log << QStringLiteral("two\n");
    log.append(QStringLiteral("three"));
    log << QStringLiteral("four\n");
    QByteArray expected = " one\ntwo\n three\nfour\n";
    if (appendAgain)
        expected.prepend("before\n");
    QCOMPARE(written(), expected.replace('\n', lineEnd()));
}

QTEST_GUILESS_MAIN(TestLogLines)

#include "tst_loglines.moc"
