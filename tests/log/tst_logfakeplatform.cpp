// The log on a fake platform: truncations that are refused, or during which the log is written, and
// writes that are incomplete.

#include "FakePlatform.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestMessages.h"
#include "TestSystem.h"

#include <Utility/Formats/TruncationOffset_p.h>
#include <Utility/Log.h>
#include <Utility/LogTruncation_p.h>

#include <QtTest/QtTest>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Vorn::Util;

namespace {

constexpr qint64 Enough = std::numeric_limits<qint64>::max();

QByteArray tooLargeLog()
{
    return QByteArray(static_cast<int>(Log::MaxLogSize) + 1, '\n');
}

} // namespace

class TestLogFakePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theRestFollowsTheTruncationOffset();
    void aLogThatMayNotBeReplacedIsNotRead();
    void withoutARightToMakeTemporaryFilesTheLogIsNotRead();
    void withoutSpaceTheLogIsNotRead_data();
    void withoutSpaceTheLogIsNotRead();
    void eachAppendTriesAgain();
    void theLogCanBeWrittenDuringItsTruncation();
    void theLogCanBeReopenedWhileItIsWritten();
    void aSizeThatIsNotReportedIsFoundAnyway();
    void aLineThatIsWrittenInPartIsCompleted_data();
    void aLineThatIsWrittenInPartIsCompleted();

private:
    TestFolder folder_;
    QString fileName_ = folder_.filePath(QStringLiteral("run.log"));
    int attempts_ = 0;
};

// A platform on which only the replacement fails.
void TestLogFakePlatform::init()
{
    QVERIFY(writeFile(fileName_, tooLargeLog()));
    attempts_ = 0;
    fakePlatform() = FakePlatform();
    fakePlatform().mayReplaceFile = [](const QString &) { return true; };
    fakePlatform().mayCreateFileIn = [](const QString &) { return true; };
    fakePlatform().availableSpace = [](const QString &) { return Enough; };
    fakePlatform().replaceByTail = [this](QFile &, const QString &, qint64 (*)(QFile &)) {
        ++attempts_;
        return false;
    };
}

void TestLogFakePlatform::theRestFollowsTheTruncationOffset()
{
    QString name;
    qint64 position = 0;
    QString temporaryFolder;
    fakePlatform().replaceByTail
        = [&](QFile &file, const QString &folder, qint64 (*tailOffset)(QFile &)) {
              name = file.fileName();
              position = tailOffset(file);
              temporaryFolder = folder;
              return true;
          };
    truncateLogFile(fileName_);
    QCOMPARE(name, fileName_);
    QCOMPARE(position, Log::AmountToTruncate + 1);
    QCOMPARE(temporaryFolder, QDir::tempPath());
}

void TestLogFakePlatform::aLogThatMayNotBeReplacedIsNotRead()
{
    QString asked;
    fakePlatform().mayReplaceFile = [&asked](const QString &name) {
        asked = name;
        return false;
    };
    truncateLogFile(fileName_);
    QCOMPARE(asked, fileName_);
    QCOMPARE(attempts_, 0);
}

void TestLogFakePlatform::withoutARightToMakeTemporaryFilesTheLogIsNotRead()
{
    QString asked;
    fakePlatform().mayCreateFileIn = [&asked](const QString &folder) {
        asked = folder;
        return false;
    };
    truncateLogFile(fileName_);
    QCOMPARE(asked, QDir::tempPath());
    QCOMPARE(attempts_, 0);
}

void TestLogFakePlatform::withoutSpaceTheLogIsNotRead_data()
{
    QTest::addColumn<qint64>("forTemporaryFiles");
    QTest::addColumn<qint64>("besideTheLog");
    QTest::addColumn<int>("attempts");

    const qint64 least = Log::MaxLogSize + 1 - Formats::LogHeadSize; // of what is kept
    QTest::newRow("for temporary files") << least - 1 << Enough << 0;
    QTest::newRow("beside the log") << Enough << least - 1 << 0;
    QTest::newRow("nowhere") << Q_INT64_C(0) << Q_INT64_C(0) << 0;
    QTest::newRow("perhaps enough") << least << least << 1;
}

void TestLogFakePlatform::withoutSpaceTheLogIsNotRead()
{
    QFETCH(qint64, forTemporaryFiles);
    QFETCH(qint64, besideTheLog);
    QFETCH(int, attempts);
    fakePlatform().availableSpace = [&](const QString &folder) {
        return folder == folder_.path() ? besideTheLog : forTemporaryFiles;
    };
    truncateLogFile(fileName_);
    QCOMPARE(attempts_, attempts);
}

void TestLogFakePlatform::eachAppendTriesAgain()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(attempts_, 1);
    log.append(QStringLiteral("one"));
    log.append(QStringLiteral("two"));
    QCOMPARE(attempts_, 3);
    QCOMPARE(contentOf(fileName_), tooLargeLog() + " one" + lineEnd() + " two" + lineEnd());
}

// As a handler of Qt's messages may do. The log is closed just then, so that nothing is written.
void TestLogFakePlatform::theLogCanBeWrittenDuringItsTruncation()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(writeFile(fileName_, QByteArray()));
    QVERIFY(log.open(true));
    QVERIFY(writeFile(fileName_, tooLargeLog()));
    QString name;
    fakePlatform().replaceByTail = [&](QFile &, const QString &, qint64 (*)(QFile &)) {
        ++attempts_;
        name = log.name();
        log.fastAppend(QStringLiteral("inside"));
        log.flush();
        return false;
    };
    {
        const TestMessages messages; // that the log is not open
        log.append(QStringLiteral("after"));
    }
    QCOMPARE(attempts_, 1);
    QCOMPARE(name, fileName_);
    QCOMPARE(contentOf(fileName_), tooLargeLog() + " after" + lineEnd());
}

// By a Qt message handler: Qt prints a warning that the log is not open.
void TestLogFakePlatform::theLogCanBeReopenedWhileItIsWritten()
{
    static Log *reopened = nullptr;
    Log log(fileName_, Log::NoFileTimeStamp);
    reopened = &log;
    const QtMessageHandler former
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {
              if (Log *target = std::exchange(reopened, nullptr)) {
                  target->open(true);
                  *target << QStringLiteral("inside"); // tries to truncate: closes and opens it
              }
          });
    log.fastAppend(QStringLiteral("not open"));
    qInstallMessageHandler(former);
    QCOMPARE(attempts_, 2);
    QCOMPARE(contentOf(fileName_), tooLargeLog() + "inside");
}

void TestLogFakePlatform::aSizeThatIsNotReportedIsFoundAnyway()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(attempts_, 1);
    fakePlatform().sizeOf = [](const QFile &) { return Q_INT64_C(-1); };
    log.append(QStringLiteral("text"));
    QCOMPARE(attempts_, 2);
}

void TestLogFakePlatform::aLineThatIsWrittenInPartIsCompleted_data()
{
    QTest::addColumn<int>("result"); // of the platform for each line
    QTest::addColumn<QByteArray>("direct");
    QTest::addColumn<QByteArray>("completed");

    QTest::newRow("failure") << -1 << QByteArray() << QByteArray(" one\n two\n");
    QTest::newRow("nothing") << 0 << QByteArray() << QByteArray(" one\n two\n");
    QTest::newRow("one byte") << 1 << QByteArray("  ") << QByteArray("one\ntwo\n");
    QTest::newRow("three bytes") << 3 << QByteArray(" on tw") << QByteArray("e\no\n");
    QTest::newRow("the whole line") << 5 << QByteArray(" one\n two\n") << QByteArray();
}

// The fake platform keeps what it writes, so that the file gets only the other bytes.
void TestLogFakePlatform::aLineThatIsWrittenInPartIsCompleted()
{
    QFETCH(int, result);
    QFETCH(QByteArray, direct);
    QFETCH(QByteArray, completed);
    QVERIFY(writeFile(fileName_, QByteArray()));
    QByteArray written;
    fakePlatform().writeDirectly = [&](const QFile &, const char *bytes, qint64) {
        written.append(bytes, std::max(result, 0));
        return static_cast<qint64>(result);
    };
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("one"));
    log.fastAppend(QStringLiteral("two"));
    QCOMPARE(written, direct);
    QCOMPARE(contentOf(fileName_), completed.replace('\n', lineEnd()));
}

QTEST_GUILESS_MAIN(TestLogFakePlatform)

#include "tst_logfakeplatform.moc"
