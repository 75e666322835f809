// The largest size of a log, and what is kept when it is truncated.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithLog.h"

#include <Utility/Log.h>

#include <QtTest/QtTest>

#include <functional>

using namespace Vorn::Util;

Q_DECLARE_METATYPE(std::function<void(Log &)>)

namespace {

constexpr int Limit = 5242880;
constexpr int AmountToTruncate = 1048576;

// Bytes without a line end whose values show their positions.
QByteArray longLine(int size)
{
    QByteArray line(size, ' ');
    for (int i = 0; i < size; ++i)
        line[i] = static_cast<char>('!' + (i + i / 93) % 93);
    return line;
}

// Lines of \a lineSize bytes each, up to \a size bytes.
QByteArray lines(int lineSize, int size)
{
    QByteArray content;
    content.reserve(size + lineSize);
    for (int number = 0; content.size() < size; ++number) {
        content += QByteArray::number(number).leftJustified(lineSize - 1, '.') + '\n';
    }
    content.truncate(size);
    return content;
}

// Calls a function when the first message arrives at Qt's message handler.
class FirstMessage
{
public:
    explicit FirstMessage(std::function<void()> action)
    {
        action_ = std::move(action);
        former_ = qInstallMessageHandler(&FirstMessage::handle);
    }
    ~FirstMessage()
    {
        qInstallMessageHandler(former_);
        action_ = nullptr;
    }

private:
    Q_DISABLE_COPY(FirstMessage)

    static void handle(QtMsgType, const QMessageLogContext &, const QString &)
    {
        const std::function<void()> action = std::move(action_);
        action_ = nullptr;
        if (action)
            action();
    }

    static inline std::function<void()> action_;
    QtMessageHandler former_;
};

// The calls that check the size, on an open and on a closed log.
void addSizeChecks()
{
    QTest::addColumn<std::function<void(Log &)>>("check");
    QTest::addColumn<bool>("isOpen");

    const QVector<QPair<const char *, std::function<void(Log &)>>> checks{
        {"append", [](Log &log) { log.append(QString()); }},
        {"text", [](Log &log) { log << QString(); }},
        {"character", [](Log &log) { log << 'a'; }},
        {"int", [](Log &log) { log << 1; }},
        {"double", [](Log &log) { log << 1.0; }}};
    for (const auto &check : checks) {
        QTest::addRow("%s, closed", check.first) << check.second << false;
        QTest::addRow("%s, open", check.first) << check.second << true;
    }
    const std::function<void(Log &)> open = [](Log &log) { log.open(true); };
    QTest::newRow("open, closed") << open << false;
    QTest::newRow("open, open") << open << true;
}

} // namespace

class TestLogSize : public TestWithLog
{
    Q_OBJECT

private Q_SLOTS:
    void aClosedLogWritesNothing();
    void aFileOfExactlyTheLimitIsKept_data() { addSizeChecks(); }
    void aFileOfExactlyTheLimitIsKept();
    void oneByteMoreThanTheLimitIsTruncated_data() { addSizeChecks(); }
    void oneByteMoreThanTheLimitIsTruncated();
    void theSizeIsCheckedBeforeTheLineIsWritten();
    void onATruncatedLogLinesAreAppended_data();
    void onATruncatedLogLinesAreAppended();
    void openChecksTheSizeOfAnOpenLog();
    void anOpenLogThatWasRenamedIsContinuedUnderItsName();
    void openWithoutAppendEmptiesATooLargeLog();
    void fastAppendNeverTruncates();
    void theKeptPartBeginsWithALine_data();
    void theKeptPartBeginsWithALine();
    void aLongFirstLineIsDividedAtAPieceBoundary_data();
    void aLongFirstLineIsDividedAtAPieceBoundary();
    void onlyAppendTakesTheLock();
};

void TestLogSize::aClosedLogWritesNothing()
{
    QVERIFY(writeFile(fileName_, "before"));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.append(QStringLiteral("a"));
    log.fastAppend(QStringLiteral("b"));
    log << QStringLiteral("c") << 'd' << 5 << 6.0;
    log.flush();
    QCOMPARE(written(), QByteArray("before"));
    QVERIFY(log.open(true));
    log.close();
    log.append(QStringLiteral("a"));
    log.fastAppend(QStringLiteral("b"));
    log << QStringLiteral("c") << 'd' << 5 << 6.0;
    QCOMPARE(written(), QByteArray("before"));
}

void TestLogSize::aFileOfExactlyTheLimitIsKept()
{
    QFETCH(std::function<void(Log &)>, check);
    QFETCH(bool, isOpen);
    const QByteArray content = lines(100, Limit);
    QVERIFY(writeFile(fileName_, content));
    Log log(fileName_, Log::NoFileTimeStamp);
    if (isOpen)
        QVERIFY(log.open(true));
    check(log);
    QVERIFY(written().startsWith(content));
}

void TestLogSize::oneByteMoreThanTheLimitIsTruncated()
{
    QFETCH(std::function<void(Log &)>, check);
    QFETCH(bool, isOpen);
    const QByteArray content = lines(100, Limit + 1);
    // open() and operator<< check the size before they write: until the last byte is written, the
    // file is not larger than the limit.
    QVERIFY(writeFile(fileName_, isOpen ? content.left(Limit) : content));
    Log log(fileName_, Log::NoFileTimeStamp);
    if (isOpen) {
        QVERIFY(log.open(true));
        log << QString::fromLatin1(content.mid(Limit));
    }
    QCOMPARE(written(), content);
    check(log);
    const QByteArray kept = content.mid(1048600);
    const QByteArray left = written();
    QVERIFY(left.startsWith(kept));
    QVERIFY(left.size() - kept.size() < 20);
    QCOMPARE(log.name(), fileName_);
    QCOMPARE(entriesOf(testFolder()), QStringList{QStringLiteral("run.log")});
}

void TestLogSize::theSizeIsCheckedBeforeTheLineIsWritten()
{
    const QByteArray content = lines(100, Limit);
    QVERIFY(writeFile(fileName_, content));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("above"));
    QByteArray expected = content + " above" + lineEnd();
    QCOMPARE(written(), expected);
    log.append(QStringLiteral("cut"));
    expected = expected.mid(1048600) + " cut" + lineEnd();
    QCOMPARE(written(), expected);
    log.append(QStringLiteral("small again"));
    QCOMPARE(written(), expected + " small again" + lineEnd());
}

void TestLogSize::onATruncatedLogLinesAreAppended_data()
{
    QTest::addColumn<bool>("append");

    QTest::newRow("opened to append") << true;
    QTest::newRow("opened emptied") << false;
}

void TestLogSize::onATruncatedLogLinesAreAppended()
{
    QFETCH(bool, append);
    const QByteArray content = lines(100, Limit + 100);
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(append));
    // Written directly and not through the log, so that line ends are one byte on every system.
    QVERIFY(writeFile(fileName_, content));
    log.append(QStringLiteral("one"));
    log.append(QStringLiteral("two"));
    log << QStringLiteral("three\n");
    log.close();
    QCOMPARE(written(),
             content.mid(1048600) + " one" + lineEnd() + " two" + lineEnd() + "three" + lineEnd());
}

void TestLogSize::openChecksTheSizeOfAnOpenLog()
{
    const QByteArray content = lines(100, Limit + 100);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QVERIFY(writeFile(fileName_, content));
    QVERIFY(log.open(false));
    QCOMPARE(written(), content.mid(1048600));
}

// The size of the open file counts, not that of another file that has its name by now.
void TestLogSize::anOpenLogThatWasRenamedIsContinuedUnderItsName()
{
    if (onWindows())
        QSKIP("An open file cannot be renamed here");
    const QString renamed = path(QStringLiteral("renamed.log"));
    QByteArray content = lines(100, Limit);
    QVERIFY(writeFile(fileName_, content));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    QVERIFY(QFile::rename(fileName_, renamed));
    log.append(QStringLiteral("at the limit")); // follows the file
    content += " at the limit\n";
    QVERIFY(contentOf(renamed) == content);
    QVERIFY(!QFile::exists(fileName_));

    log.append(QStringLiteral("above"));
    log.append(QStringLiteral("small again"));
    QCOMPARE(written(), QByteArray(" above\n small again\n"));
    QVERIFY(contentOf(renamed) == content);
}

void TestLogSize::openWithoutAppendEmptiesATooLargeLog()
{
    QVERIFY(writeFile(fileName_, lines(100, Limit + 100)));
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(false));
    QCOMPARE(written(), QByteArray());
}

void TestLogSize::fastAppendNeverTruncates()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.fastAppend(QString(Limit, QLatin1Char('x')));
    log.fastAppend(QStringLiteral("one"));
    log.fastAppend(QStringLiteral("two"));
    const QByteArray expected
        = ' ' + QByteArray(Limit, 'x') + lineEnd() + " one" + lineEnd() + " two" + lineEnd();
    QCOMPARE(written(), expected);
    log.close();
    log.fastAppend(QStringLiteral("three"));
    QCOMPARE(written(), expected);
}

void TestLogSize::theKeptPartBeginsWithALine_data()
{
    QTest::addColumn<int>("lineSize");
    QTest::addColumn<int>("cut");

    QTest::newRow("straddles the boundary") << 100 << 1048600;
    QTest::newRow("starts at the boundary") << 64 << AmountToTruncate + 64;
    QTest::newRow("starts one byte later") << 51 << 20561 * 51; // 1048611
    QTest::newRow("one byte each") << 1 << AmountToTruncate + 1;
    QTest::newRow("of a whole piece") << 255 << 4113 * 255;
}

void TestLogSize::theKeptPartBeginsWithALine()
{
    QFETCH(int, lineSize);
    QFETCH(int, cut);
    const QByteArray content
        = lineSize == 1 ? QByteArray(Limit + 1, '\n') : lines(lineSize, Limit + 1);
    QVERIFY(writeFile(fileName_, content));
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(written(), content.mid(cut));
}

void TestLogSize::aLongFirstLineIsDividedAtAPieceBoundary_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("cut");

    const QByteArray rest = lines(100, 4300000);
    const int boundary = 4113 * 255; // 1048815
    QTest::newRow("ends long after") << longLine(1100000) + '\n' + rest << boundary;
    QTest::newRow("never ends") << longLine(Limit + 1) << boundary;
    QTest::newRow("ends just before the boundary")
        << longLine(boundary - 2) + '\n' + rest << boundary - 1;
    QTest::newRow("ends at the boundary") << longLine(boundary - 1) + '\n' + rest << boundary;
    QTest::newRow("ends just after the boundary") << longLine(boundary) + '\n' + rest << boundary;
    QTest::newRow("ends at the mebibyte")
        << longLine(AmountToTruncate - 1) + '\n' + rest << AmountToTruncate + 100;
    QTest::newRow("ends just after the mebibyte")
        << longLine(AmountToTruncate) + '\n' + rest << AmountToTruncate + 1;
    QTest::newRow("begins on the second line")
        << QByteArray("first\n") + longLine(1100000) + '\n' + rest << 6 + boundary;
    QTest::newRow("within a character")
        << QByteArray("\xC3\xA4").repeated(600000) + '\n' + rest << boundary;
}

void TestLogSize::aLongFirstLineIsDividedAtAPieceBoundary()
{
    QFETCH(QByteArray, content);
    QFETCH(int, cut);
    QVERIFY(content.size() > Limit);
    QVERIFY(writeFile(fileName_, content));
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(written(), content.mid(cut));
}

// Qt's warning that the log is not open comes while append() holds the lock. Whoever takes the
// lock there waits for ever.
void TestLogSize::onlyAppendTakesTheLock()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    bool called = false;
    {
        const FirstMessage message([&log, &called] {
            log.setName(log.name(), Log::NoFileTimeStamp);
            called = log.open(true);
            log.fastAppend(QStringLiteral("inside"));
            log << QStringLiteral("streamed") << ' ' << 1 << 2.5;
            log.flush();
            log.close();
        });
        log.append(QStringLiteral("not open"));
    }
    QVERIFY(called);
    QCOMPARE(written(), " inside" + lineEnd() + "streamed 12.5");
    // The lock is free again.
    QVERIFY(log.open(false));
    log.append(QStringLiteral("after"));
    QCOMPARE(written(), " after" + lineEnd());
}

QTEST_GUILESS_MAIN(TestLogSize)

#include "tst_logsize.moc"
