// The name of a log and its file: constants, time stamps in names, opening and closing.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithLog.h"

#include <Utility/Log.h>

#include <QtCore/QDateTime>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <functional>
#include <type_traits>

using namespace Vorn::Util;

static_assert(!std::is_copy_constructible_v<Log> && !std::is_copy_assignable_v<Log>);
static_assert(!std::is_polymorphic_v<Log>);
static_assert(sizeof(Log::TimeStamp) == 4 && sizeof(Log::FileTimeStamp) == 4);
static_assert(std::is_same_v<decltype(Log::MaxLogSize), const qint64>);
static_assert(std::is_same_v<decltype(Log::AmountToTruncate), const qint64>);
static_assert(std::is_same_v<decltype(Log::MaxLogCount), const int>);

namespace {

QString stampForm()
{
    return QStringLiteral("yyyy-MM-dd-hhmmss");
}

} // namespace

class TestLog : public TestWithLog
{
    Q_OBJECT

private Q_SLOTS:
    void theConstantsAreFixed();
    void theEnumeratorsAreFixed();

    void aNewLogHasNoName();
    void aNamedLogIsNeitherOpenedNorCreated();
    void aNameWithoutTimeStampIsUsedAsGiven_data();
    void aNameWithoutTimeStampIsUsedAsGiven();
    void aTimeStampIsPutIntoTheName_data();
    void aTimeStampIsPutIntoTheName();
    void theTimeStampIsTheCurrentLocalTime();
    void setNameDoesTheSameAsTheConstructor();
    void fileTimeStampStringIsTheStampInTheName();
    void fileTimeStampStringIsEmptyWithoutTimeStamp();
    void anyOtherValueMeansNoTimeStamp();
    void fileTimeStampStringIsEmptyAfterAnEarlierTimeStampedName();

    void openWithAppendKeepsTheFile();
    void openWithoutAppendEmptiesTheFile();
    void openCreatesTheFile();
    void openingAnOpenLogIsTrueAtOnce();
    void openFailsWhereNoFileCanBe_data();
    void openFailsWhereNoFileCanBe();
    void aLogCanBeOpenedAgain();
    void theDestructorClosesTheFileAndWritesNothing();
};

void TestLog::theConstantsAreFixed()
{
    QCOMPARE(Log::MaxLogSize, Q_INT64_C(5242880));
    QCOMPARE(Log::AmountToTruncate, Q_INT64_C(1048576));
    QCOMPARE(Log::MaxLogCount, 10);
}

void TestLog::theEnumeratorsAreFixed()
{
    QCOMPARE(static_cast<int>(Log::NoTimeStamp), 0);
    QCOMPARE(static_cast<int>(Log::TimeOnly), 1);
    QCOMPARE(static_cast<int>(Log::DateAndTime), 2);
    QCOMPARE(static_cast<int>(Log::NoFileTimeStamp), 0);
    QCOMPARE(static_cast<int>(Log::WithFileTimeStamp), 1);
}

void TestLog::aNewLogHasNoName()
{
    Log log;
    QCOMPARE(log.name(), QString());
    QCOMPARE(log.timeStamp(), Log::TimeOnly);
    QCOMPARE(log.fileTimeStampString(), QString());
    QVERIFY(!log.open(true));
    QVERIFY(!log.open(false));
    log.append(QStringLiteral("nowhere"));
    log.fastAppend(QStringLiteral("nowhere"));
    log << QStringLiteral("nowhere");
    log.flush();
    log.close();
}

void TestLog::aNamedLogIsNeitherOpenedNorCreated()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    QCOMPARE(log.timeStamp(), Log::TimeOnly);
    const Log stamped(path(QStringLiteral("other.log")), Log::WithFileTimeStamp);
    Log renamed;
    renamed.setName(path(QStringLiteral("third.log")), Log::NoFileTimeStamp);
    log.append(QStringLiteral("not open"));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestLog::aNameWithoutTimeStampIsUsedAsGiven_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("empty") << QString();
    QTest::newRow("name") << QStringLiteral("run.log");
    QTest::newRow("folder") << QStringLiteral("some/folder/run.log");
    QTest::newRow("untidy") << QStringLiteral("some//folder/../run.log");
    QTest::newRow("no suffix") << QStringLiteral("run");
    QTest::newRow("place markers") << QStringLiteral("%1/%2_%3.%4");
    QTest::newRow("beyond ASCII") << QStringLiteral("Tr\u00e4ger.log");
}

void TestLog::aNameWithoutTimeStampIsUsedAsGiven()
{
    QFETCH(QString, name);
    const Log log(name, Log::NoFileTimeStamp);
    QCOMPARE(log.name(), name);
}

void TestLog::aTimeStampIsPutIntoTheName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("front");
    QTest::addColumn<QString>("back");

    QTest::newRow("plain") << QStringLiteral("DIR/run.log") << QStringLiteral("DIR/run_")
                           << QStringLiteral(".log");
    QTest::newRow("several dots") << QStringLiteral("DIR/run.1.old.log")
                                  << QStringLiteral("DIR/run.1.old_") << QStringLiteral(".log");
    QTest::newRow("no suffix") << QStringLiteral("DIR/run") << QStringLiteral("DIR/run_")
                               << QStringLiteral(".");
    QTest::newRow("no base name") << QStringLiteral("DIR/.log") << QStringLiteral("DIR/_")
                                  << QStringLiteral(".log");
    QTest::newRow("no folder") << QStringLiteral("run.log") << QStringLiteral("./run_")
                               << QStringLiteral(".log");
    QTest::newRow("place markers") << QStringLiteral("DIR/%2%3%4.%1")
                                   << QStringLiteral("DIR/%2%3%4_") << QStringLiteral(".%1");
    QTest::newRow("place markers in the folder")
        << QStringLiteral("DIR/%2%4/%3.log") << QStringLiteral("DIR/%2%4/%3_")
        << QStringLiteral(".log");
    QTest::newRow("blanks") << QStringLiteral("DIR/my run.log") << QStringLiteral("DIR/my run_")
                            << QStringLiteral(".log");
}

void TestLog::aTimeStampIsPutIntoTheName()
{
    QFETCH(QString, name);
    QFETCH(QString, front);
    QFETCH(QString, back);
    name.replace(QStringLiteral("DIR"), testFolder());
    front.replace(QStringLiteral("DIR"), testFolder());
    const Log log(name, Log::WithFileTimeStamp);
    QVERIFY2(log.name().startsWith(front), qPrintable(log.name()));
    QVERIFY2(log.name().endsWith(back), qPrintable(log.name()));
    const QString stamp
        = log.name().mid(front.size(), log.name().size() - front.size() - back.size());
    QVERIFY2(
        QRegularExpression(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}-\\d{6}$")).match(stamp).hasMatch(),
        qPrintable(stamp));
}

void TestLog::theTimeStampIsTheCurrentLocalTime()
{
    const QDateTime before = QDateTime::currentDateTime();
    const Log log(fileName_, Log::WithFileTimeStamp);
    QVERIFY(isFromSince(before, log.fileTimeStampString(),
                        [](const QDateTime &time) { return time.toString(stampForm()); }));
}

void TestLog::setNameDoesTheSameAsTheConstructor()
{
    QVERIFY(make({QStringLiteral("run_2023-01-01-000000.log")}));
    QVERIFY(writeFile(path(QStringLiteral("run_2023-01-02-000000.log")), QByteArray()));
    Log log;
    log.setName(fileName_, Log::WithFileTimeStamp);
    QCOMPARE(log.name(), path(QStringLiteral("run_%1.log").arg(log.fileTimeStampString())));
    QCOMPARE(entriesOf(testFolder()), QStringList{QStringLiteral("run_2023-01-01-000000.log")});
    QVERIFY(log.open(true));
    QVERIFY(QFile::exists(log.name()));
}

void TestLog::fileTimeStampStringIsTheStampInTheName()
{
    const Log log(fileName_, Log::WithFileTimeStamp);
    QCOMPARE(log.fileTimeStampString().size(), 17);
    QCOMPARE(log.name(), path(QStringLiteral("run_%1.log").arg(log.fileTimeStampString())));
}

void TestLog::fileTimeStampStringIsEmptyWithoutTimeStamp()
{
    const Log log(fileName_, Log::NoFileTimeStamp);
    QCOMPARE(log.fileTimeStampString(), QString());
}

void TestLog::anyOtherValueMeansNoTimeStamp()
{
    const Log log(fileName_, static_cast<Log::FileTimeStamp>(2));
    QCOMPARE(log.name(), fileName_);
    QCOMPARE(log.fileTimeStampString(), QString());
}

void TestLog::fileTimeStampStringIsEmptyAfterAnEarlierTimeStampedName()
{
    Log log(fileName_, Log::WithFileTimeStamp);
    QVERIFY(!log.fileTimeStampString().isEmpty());
    log.setName(fileName_, Log::NoFileTimeStamp);
    QCOMPARE(log.fileTimeStampString(), QString());
    QCOMPARE(log.name(), fileName_);
    log.setName(fileName_, Log::WithFileTimeStamp);
    QVERIFY(!log.fileTimeStampString().isEmpty());
}

void TestLog::openWithAppendKeepsTheFile()
{
    QVERIFY(writeFile(fileName_, "before\n"));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("after"));
    QCOMPARE(written(), QByteArray("before\n after") + lineEnd());
}

void TestLog::openWithoutAppendEmptiesTheFile()
{
    QVERIFY(writeFile(fileName_, "before\n"));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(false));
    QCOMPARE(written(), QByteArray());
    log.append(QStringLiteral("after"));
    QCOMPARE(written(), QByteArray(" after") + lineEnd());
}

void TestLog::openCreatesTheFile()
{
    Log appended(fileName_, Log::NoFileTimeStamp);
    QVERIFY(appended.open(true));
    Log emptied(path(QStringLiteral("other.log")), Log::NoFileTimeStamp);
    QVERIFY(emptied.open(false));
    QCOMPARE(entriesOf(testFolder()),
             (QStringList{QStringLiteral("other.log"), QStringLiteral("run.log")}));
}

void TestLog::openingAnOpenLogIsTrueAtOnce()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("one"));
    QVERIFY(log.open(false));
    QVERIFY(log.open(true));
    log.append(QStringLiteral("two"));
    QCOMPARE(written(), " one" + lineEnd() + " two" + lineEnd());
}

void TestLog::openFailsWhereNoFileCanBe_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("missing folder") << QStringLiteral("missing/run.log");
    QTest::newRow("a folder") << QStringLiteral(".");
}

void TestLog::openFailsWhereNoFileCanBe()
{
    QFETCH(QString, name);
    Log log(path(name), Log::NoFileTimeStamp);
    QVERIFY(!log.open(true));
    QVERIFY(!log.open(false));
    log.append(QStringLiteral("nowhere"));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestLog::aLogCanBeOpenedAgain()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("one"));
    log.close();
    QVERIFY(log.open(true));
    log.append(QStringLiteral("two"));
    log.close();
    QCOMPARE(written(), " one" + lineEnd() + " two" + lineEnd());
    QVERIFY(log.open(false));
    QCOMPARE(written(), QByteArray());
}

void TestLog::theDestructorClosesTheFileAndWritesNothing()
{
    {
        Log log(fileName_, Log::NoFileTimeStamp);
        QVERIFY(log.open(true));
        log << QStringLiteral("all");
    }
    QCOMPARE(written(), QByteArray("all"));
    QVERIFY(QFile::remove(fileName_)); // which Windows denies for an open file
}

QTEST_GUILESS_MAIN(TestLog)

#include "tst_log.moc"
