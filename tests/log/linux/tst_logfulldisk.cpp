// A log that cannot be written for a while. The limit on the size of the process's files stands for
// a full disk: it too lets a write fail after some bytes.

#include "FileSizeLimit.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/Log.h>

#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestLogFullDisk : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void linesThatDoNotFitAreWrittenLater_data();
    void linesThatDoNotFitAreWrittenLater();
    void longLinesThatDoNotFitKeepTheirOrder();
    void aLogWithLinesThatDoNotFitIsNotTruncated();
};

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
        const FileSizeLimit full(limit);
        QVERIFY(full.isSet());
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
        const FileSizeLimit full(0);
        QVERIFY(full.isSet());
        log.fastAppend(QString(12000, QLatin1Char('a')));
    }
    {
        const FileSizeLimit full(11000);
        QVERIFY(full.isSet());
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
        const FileSizeLimit full(Log::MaxLogSize + 2);
        QVERIFY(full.isSet());
        log.append(QStringLiteral("one"));
        log.append(QStringLiteral("two"));
    }
    log.fastAppend(QStringLiteral("six"));
    QVERIFY(contentOf(fileName) == content + " one\n two\n six\n");
}

QTEST_GUILESS_MAIN(TestLogFullDisk)

#include "tst_logfulldisk.moc"
