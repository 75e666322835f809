// A log that cannot be written for a while. The limit on the size of the process's files stands for
// a full disk: it too lets a write fail after some bytes.

#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/Log.h>

#include <QtTest/QtTest>

#include <csignal>
#include <sys/resource.h>

using namespace Vorn::Util;

namespace {

// Limits the size of files to \a bytes as long as it exists.
class SizeLimit
{
public:
    explicit SizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    Q_DISABLE_COPY(SizeLimit)

    rlimit before_ = {};
};

} // namespace

class TestLogFullDisk : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void linesThatDoNotFitAreWrittenLater_data();
    void linesThatDoNotFitAreWrittenLater();
    void longLinesThatDoNotFitKeepTheirOrder();
    void aLogWithLinesThatDoNotFitIsNotTruncated();
};

void TestLogFullDisk::initTestCase()
{
    std::signal(SIGXFSZ, SIG_IGN);
}

void TestLogFullDisk::linesThatDoNotFitAreWrittenLater_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("withCheck");

    for (const bool withCheck : {false, true}) {
        const char *function = withCheck ? "append" : "fastAppend";
        QTest::addRow("%s, no byte fits", function) << 0 << withCheck;
        QTest::addRow("%s, a part of a line fits", function) << 3 << withCheck;
        QTest::addRow("%s, one line fits", function) << 5 << withCheck;
        QTest::addRow("%s, one line and a part fit", function) << 8 << withCheck;
    }
}

void TestLogFullDisk::linesThatDoNotFitAreWrittenLater()
{
    QFETCH(int, limit);
    QFETCH(bool, withCheck);
    const QString fileName = path(QStringLiteral("run.log"));
    Log log(fileName, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    const auto write
        = [&](const QString &text) { withCheck ? log.append(text) : log.fastAppend(text); };
    QByteArray meanwhile;
    {
        const SizeLimit full(static_cast<rlim_t>(limit));
        write(QStringLiteral("one"));
        write(QStringLiteral("two"));
        log << QStringLiteral("-");
        meanwhile = contentOf(fileName);
    }
    const QByteArray all = " one\n two\n- six\n ten\n";
    QCOMPARE(meanwhile, all.left(limit));
    write(QStringLiteral("six"));
    write(QStringLiteral("ten"));
    QCOMPARE(contentOf(fileName), all);
}

// A flush of QFile writes only the first block of its buffer. With these lengths "c" is in a second
// block.
void TestLogFullDisk::longLinesThatDoNotFitKeepTheirOrder()
{
    const QString fileName = path(QStringLiteral("run.log"));
    Log log(fileName, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    {
        const SizeLimit full(0);
        log.fastAppend(QString(12000, QLatin1Char('a')));
    }
    {
        const SizeLimit full(11000);
        log.fastAppend(QStringLiteral("b"));
    }
    log.fastAppend(QString(8000, QLatin1Char('c')));
    log.fastAppend(QStringLiteral("d"));
    QCOMPARE(contentOf(fileName),
             ' ' + QByteArray(12000, 'a') + "\n b\n " + QByteArray(8000, 'c') + "\n d\n");
}

// A truncation closes the log, so these lines would be lost.
void TestLogFullDisk::aLogWithLinesThatDoNotFitIsNotTruncated()
{
    const QString fileName = path(QStringLiteral("run.log"));
    const QByteArray content = QByteArray("1234\n").repeated(static_cast<int>(Log::MaxLogSize) / 5);
    QVERIFY(writeFile(fileName, content));
    Log log(fileName, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    {
        const SizeLimit full(static_cast<rlim_t>(Log::MaxLogSize) + 2);
        log.append(QStringLiteral("one"));
        log.append(QStringLiteral("two"));
    }
    log.fastAppend(QStringLiteral("six"));
    QVERIFY(contentOf(fileName) == content + " one\n two\n six\n");
}

QTEST_GUILESS_MAIN(TestLogFullDisk)

#include "tst_logfulldisk.moc"
