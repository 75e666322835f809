#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/Log.h>

#include <QtCore/QDateTime>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <functional>
#include <limits>
#include <memory>
#include <type_traits>

using namespace Vorn::Util;

static_assert(!std::is_copy_constructible_v<Log> && !std::is_copy_assignable_v<Log>);
static_assert(!std::is_polymorphic_v<Log>);
static_assert(sizeof(Log::TimeStamp) == 4 && sizeof(Log::FileTimeStamp) == 4);
static_assert(std::is_same_v<decltype(Log::MaxLogSize), const qint64>);
static_assert(std::is_same_v<decltype(Log::AmountToTruncate), const qint64>);
static_assert(std::is_same_v<decltype(Log::MaxLogCount), const int>);

namespace {

constexpr int Limit = 5242880;
constexpr int Cut = 1048576;

// The end of a line that was written in text mode.
QByteArray lineEnd()
{
    return onWindows() ? "\r\n" : "\n";
}

QString stampForm()
{
    return QStringLiteral("yyyy-MM-dd-hhmmss");
}

// Bytes without a line end that tell where they are from.
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

// Whether \a prefix is what \a format makes of a time from \a before up to now.
bool isFromSince(const QDateTime &before, const QString &prefix,
                 const std::function<QString(const QDateTime &)> &format)
{
    const QDateTime now = QDateTime::currentDateTime();
    for (QDateTime time = before; time < now.addSecs(1); time = time.addSecs(1)) {
        if (prefix == format(time))
            return true;
    }
    return false;
}

// While it lives, the file cannot be deleted: an open file on Windows, elsewhere a file that the
// system is told to keep, which not everybody may do.
class KeptFile
{
public:
    explicit KeptFile(const QString &fileName)
        : file_(fileName)
    {
        kept_ = onWindows() ? file_.open(QIODevice::ReadOnly) : setImmutable(QStringLiteral("+i"));
    }
    ~KeptFile()
    {
        if (!onWindows() && kept_)
            setImmutable(QStringLiteral("-i"));
    }

    bool isKept() const { return kept_; }

private:
    Q_DISABLE_COPY(KeptFile)

    bool setImmutable(const QString &change)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("chattr"), {change, file_.fileName()});
        return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
            && process.exitCode() == 0;
    }

    QFile file_;
    bool kept_ = false;
};

// Runs something for the first message on Qt's own channel.
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

} // namespace

Q_DECLARE_METATYPE(std::function<void(Log &)>)

class TestLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

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
    void fileTimeStampStringIsEmptyAfterAnEarlierTimeStampedName();

    void openWithAppendKeepsTheFile();
    void openWithoutAppendEmptiesTheFile();
    void openCreatesTheFile();
    void openingAnOpenLogIsTrueAtOnce();
    void openFailsWhereNoFileCanBe_data();
    void openFailsWhereNoFileCanBe();
    void aLogCanBeOpenedAgain();
    void theDestructorClosesTheFileAndWritesNothing();

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
    void aLongFirstLineIsCutAtAPieceBoundary_data();
    void aLongFirstLineIsCutAtAPieceBoundary();
    void onlyAppendTakesTheLock();

    void aTimeStampedNameLeavesTheTenNewestFiles();
    void aNameWithoutTimeStampPrunesNothing();
    void afterTheStartElevenTimeStampedFilesExist();
    void pruningWorksOnTheFolderOfTheName();
    void onlyTimeStampedNamesOfThisCenturyArePruned_data();
    void onlyTimeStampedNamesOfThisCenturyArePruned();
    void foldersAreNeverPruned();
    void hiddenFilesArePruned();
    void wildcardsInABaseNameMatchThatNameOnly_data();
    void wildcardsInABaseNameMatchThatNameOnly();
    void wildcardsInASuffixMatchThatSuffixOnly_data();
    void wildcardsInASuffixMatchThatSuffixOnly();
    void emptyFilesAreDeletedEvenBelowTheCount();
    void theOldestByNameGoFirst();
    void moreThanTheCountAreDeleted_data();
    void moreThanTheCountAreDeleted();
    void pruningAMissingFolderIsFalse();
    void pruningNothingIsTrue();
    void theResultIsThatOfTheLastDeletion_data();
    void theResultIsThatOfTheLastDeletion();
    void theResultOfDeletingAnEmptyFileIsOverwrittenToo();

private:
    void addSizeChecks();
    QString path(const QString &name) const { return folder_->filePath(name); }
    bool make(const QStringList &names) const;
    QByteArray written() const { return contentOf(fileName_); }

    std::unique_ptr<QTemporaryDir> folder_;
    QString fileName_;
};

void TestLog::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
    fileName_ = path(QStringLiteral("run.log"));
}

// Creates files that are not empty.
bool TestLog::make(const QStringList &names) const
{
    for (const QString &name : names) {
        if (!writeFile(path(name), "x"))
            return false;
    }
    return true;
}

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
    QCOMPARE(entriesOf(folder_->path()), QStringList());
}

void TestLog::aNameWithoutTimeStampIsUsedAsGiven_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("empty") << QString();
    QTest::newRow("name") << QStringLiteral("run.log");
    QTest::newRow("folder") << QStringLiteral("some/folder/run.log");
    QTest::newRow("untidy") << QStringLiteral("some//folder/../run.log");
    QTest::newRow("no suffix") << QStringLiteral("run");
    QTest::newRow("markers") << QStringLiteral("%1/%2_%3.%4");
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
    QTest::newRow("markers") << QStringLiteral("DIR/%2%3%4.%1") << QStringLiteral("DIR/%2%3%4_")
                             << QStringLiteral(".%1");
    QTest::newRow("markers in the folder")
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
    name.replace(QStringLiteral("DIR"), folder_->path());
    front.replace(QStringLiteral("DIR"), folder_->path());
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
    QCOMPARE(entriesOf(folder_->path()), QStringList{QStringLiteral("run_2023-01-01-000000.log")});
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
    QCOMPARE(entriesOf(folder_->path()),
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
    QCOMPARE(entriesOf(folder_->path()), QStringList());
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

void TestLog::withoutTimeStampALineBeginsWithOneBlank_data()
{
    QTest::addColumn<int>("timeStamp");

    QTest::newRow("none") << static_cast<int>(Log::NoTimeStamp);
    QTest::newRow("above the range") << 3;
    QTest::newRow("far above") << std::numeric_limits<int>::max();
    QTest::newRow("below the range") << -1;
}

void TestLog::withoutTimeStampALineBeginsWithOneBlank()
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

void TestLog::timeOnlyIsTheDefault()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("text"));
    const QRegularExpression form(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] text\\r?\\n$"));
    QVERIFY2(form.match(QString::fromUtf8(written())).hasMatch(), written().constData());
}

void TestLog::timeOnlyWritesTheLocalTime()
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

void TestLog::dateAndTimeWritesTheLocalDateAndTime()
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

void TestLog::trailingWhiteSpaceIsDropped_data()
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

void TestLog::trailingWhiteSpaceIsDropped()
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

void TestLog::aTextOfOnlyBlanksIsPrefixBlankAndLineEnd_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("null") << QString();
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("one blank") << QStringLiteral(" ");
    QTest::newRow("blanks") << QStringLiteral("     ");
    QTest::newRow("white space") << QStringLiteral("\t\r\n \u00a0\u3000");
}

void TestLog::aTextOfOnlyBlanksIsPrefixBlankAndLineEnd()
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

void TestLog::placeMarkersInATextAreWrittenAsTheyStand_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text : {"%1", "%2", "%1 %2", "%2 %1 %3 %L1 %99", "100%", "%%1", "%n", "%s %d"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void TestLog::placeMarkersInATextAreWrittenAsTheyStand()
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

void TestLog::theTextIsWrittenAsUtf8()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("\u00e4 \u20ac \U0001F600"));
    log << QStringLiteral("\u00e4 \u20ac \U0001F600");
    QCOMPARE(written(),
             QByteArray(" \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80") + lineEnd()
                 + "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80");
}

void TestLog::appendWritesTheSameLineAsFastAppend()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("  text\t"));
    log.fastAppend(QStringLiteral("  text\t"));
    const QRegularExpression form(
        QStringLiteral("^(\\[\\d\\d:\\d\\d:\\d\\d\\]   text\\r?\\n){2}$"));
    QVERIFY2(form.match(QString::fromUtf8(written())).hasMatch(), written().constData());
}

void TestLog::everyLineIsOnDiskWhenTheCallReturns()
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

void TestLog::aStaticObjectMayWriteWhileItIsDestroyed_data()
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

// After the end of main(), and of what a thread keeps for itself.
void TestLog::aStaticObjectMayWriteWhileItIsDestroyed()
{
    QFETCH(int, timeStamp);
    QFETCH(QString, prefix);
    QProcess helper;
    helper.setProcessChannelMode(QProcess::ForwardedChannels);
    helper.start(QStringLiteral(HELPER_PROGRAM),
                 {QStringLiteral("log-at-exit"), fileName_, QString::number(timeStamp)});
    QVERIFY(helper.waitForFinished());
    QCOMPARE(helper.exitStatus(), QProcess::NormalExit);
    QCOMPARE(helper.exitCode(), 0);
    const QRegularExpression expected(QRegularExpression::anchoredPattern(
        QStringLiteral("%1 made\r?\n%1 destroyed\r?\n").arg(prefix)));
    const QString content = QString::fromUtf8(written());
    QVERIFY2(expected.match(content).hasMatch(), qPrintable(content));
}

void TestLog::aTextIsStreamedAsItIs_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << QString();
    QTest::newRow("plain") << QStringLiteral("text");
    QTest::newRow("blanks") << QStringLiteral("  text \t ");
    QTest::newRow("only blanks") << QStringLiteral("   ");
    QTest::newRow("line ends") << QStringLiteral("a\nb\n\n");
    QTest::newRow("markers") << QStringLiteral("%1 %2");
    QTest::newRow("long") << QString(100000, QLatin1Char('x'));
}

void TestLog::aTextIsStreamedAsItIs()
{
    QFETCH(QString, text);
    QByteArray expected = text.toUtf8();
    expected.replace('\n', lineEnd());
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(&(log << text), &log);
    QCOMPARE(written(), expected);
}

void TestLog::aCharacterIsStreamedAsLatin1_data()
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

void TestLog::aCharacterIsStreamedAsLatin1()
{
    QFETCH(char, character);
    QFETCH(QByteArray, expected);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(&(log << character), &log);
    QCOMPARE(written(), expected);
}

void TestLog::anIntegerIsStreamedInDecimal_data()
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

void TestLog::anIntegerIsStreamedInDecimal()
{
    QFETCH(int, number);
    QFETCH(QByteArray, expected);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(&(log << number), &log);
    QCOMPARE(written(), expected);
}

void TestLog::aNumberIsStreamedInTheShorterForm_data()
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

void TestLog::aNumberIsStreamedInTheShorterForm()
{
    QFETCH(double, number);
    QFETCH(QByteArray, expected);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QCOMPARE(&(log << number), &log);
    QCOMPARE(written(), expected);
}

void TestLog::streamingChains()
{
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log << QStringLiteral("t = ") << 1.5 << ' ' << 2 << '\n' << QStringLiteral("end ");
    log.append(QStringLiteral("line"));
    QCOMPARE(written(), "t = 1.5 2" + lineEnd() + "end  line" + lineEnd());
}

void TestLog::aClosedLogWritesNothing()
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

// What checks the size, on an open and on a closed log.
void TestLog::addSizeChecks()
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

void TestLog::aFileOfExactlyTheLimitIsKept()
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

void TestLog::oneByteMoreThanTheLimitIsTruncated()
{
    QFETCH(std::function<void(Log &)>, check);
    QFETCH(bool, isOpen);
    const QByteArray content = lines(100, Limit + 1);
    // An open log passes the limit by what is written without a check.
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
    QCOMPARE(entriesOf(folder_->path()), QStringList{QStringLiteral("run.log")});
}

void TestLog::theSizeIsCheckedBeforeTheLineIsWritten()
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

void TestLog::onATruncatedLogLinesAreAppended_data()
{
    QTest::addColumn<bool>("append");

    QTest::newRow("opened to append") << true;
    QTest::newRow("opened emptied") << false;
}

void TestLog::onATruncatedLogLinesAreAppended()
{
    QFETCH(bool, append);
    const QByteArray content = lines(100, Limit + 100);
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(append));
    // Written past the log, for one line end on every system.
    QVERIFY(writeFile(fileName_, content));
    log.append(QStringLiteral("one"));
    log.append(QStringLiteral("two"));
    log << QStringLiteral("three\n");
    log.close();
    QCOMPARE(written(),
             content.mid(1048600) + " one" + lineEnd() + " two" + lineEnd() + "three" + lineEnd());
}

void TestLog::openChecksTheSizeOfAnOpenLog()
{
    const QByteArray content = lines(100, Limit + 100);
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QVERIFY(writeFile(fileName_, content));
    QVERIFY(log.open(false));
    QCOMPARE(written(), content.mid(1048600));
}

// The size that counts is the open file's, not that of what bears its name meanwhile.
void TestLog::anOpenLogThatWasRenamedIsContinuedUnderItsName()
{
    if (onWindows())
        QSKIP("An open file cannot be renamed here.");
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

void TestLog::openWithoutAppendEmptiesATooLargeLog()
{
    QVERIFY(writeFile(fileName_, lines(100, Limit + 100)));
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(false));
    QCOMPARE(written(), QByteArray());
}

void TestLog::fastAppendNeverTruncates()
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

void TestLog::theKeptPartBeginsWithALine_data()
{
    QTest::addColumn<int>("lineSize");
    QTest::addColumn<int>("cut");

    QTest::newRow("straddles the boundary") << 100 << 1048600;
    QTest::newRow("starts at the boundary") << 64 << Cut + 64;
    QTest::newRow("starts one byte later") << 51 << 20561 * 51; // 1048611
    QTest::newRow("one byte each") << 1 << Cut + 1;
    QTest::newRow("of a whole piece") << 255 << 4113 * 255;
}

void TestLog::theKeptPartBeginsWithALine()
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

void TestLog::aLongFirstLineIsCutAtAPieceBoundary_data()
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
    QTest::newRow("ends at the mebibyte") << longLine(Cut - 1) + '\n' + rest << Cut + 100;
    QTest::newRow("ends just after the mebibyte") << longLine(Cut) + '\n' + rest << Cut + 1;
    QTest::newRow("begins on the second line")
        << QByteArray("first\n") + longLine(1100000) + '\n' + rest << 6 + boundary;
    QTest::newRow("within a character")
        << QByteArray("\xC3\xA4").repeated(600000) + '\n' + rest << boundary;
}

void TestLog::aLongFirstLineIsCutAtAPieceBoundary()
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
void TestLog::onlyAppendTakesTheLock()
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

void TestLog::aTimeStampedNameLeavesTheTenNewestFiles()
{
    const QStringList others{QStringLiteral("other_2023-01-01-000000.log"),
                             QStringLiteral("run.log"), QStringLiteral("run_1999-01-01-000000.log"),
                             QStringLiteral("run_old.log")};
    QVERIFY(make(others));
    QVERIFY(writeFile(path(QStringLiteral("run_1999-02-02-000000.log")), QByteArray()));
    // Made from the newest to the oldest, so that the order of making does not help.
    QStringList kept;
    for (int month = 12; month >= 1; --month) {
        const QString name
            = QStringLiteral("run_2023-%1-01-000000.log").arg(month, 2, 10, QLatin1Char('0'));
        QVERIFY(writeFile(path(name), month == 7 ? QByteArray() : QByteArray("x")));
        if (month != 7 && month != 1)
            kept.append(name);
    }
    QCOMPARE(kept.size(), 10);
    const Log log(fileName_, Log::WithFileTimeStamp);
    QStringList expected = others + kept + QStringList{QStringLiteral("run_1999-02-02-000000.log")};
    QStringList found = entriesOf(folder_->path());
    expected.sort();
    found.sort();
    QCOMPARE(found, expected);
}

void TestLog::aNameWithoutTimeStampPrunesNothing()
{
    QStringList names;
    for (int day = 10; day < 25; ++day)
        names.append(QStringLiteral("run_2023-01-%1-000000.log").arg(day));
    QVERIFY(make(names));
    QVERIFY(writeFile(path(names.first()), QByteArray()));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setName(fileName_, Log::NoFileTimeStamp);
    QCOMPARE(entriesOf(folder_->path()), names);
}

void TestLog::afterTheStartElevenTimeStampedFilesExist()
{
    QStringList names;
    for (int day = 10; day < 25; ++day)
        names.append(QStringLiteral("run_2023-01-%1-000000.log").arg(day));
    QVERIFY(make(names));
    Log log(fileName_, Log::WithFileTimeStamp);
    QCOMPARE(entriesOf(folder_->path()), names.mid(5));
    QVERIFY(log.open(true));
    QCOMPARE(entriesOf(folder_->path()),
             names.mid(5)
                 + QStringList{QStringLiteral("run_%1.log").arg(log.fileTimeStampString())});
}

void TestLog::pruningWorksOnTheFolderOfTheName()
{
    const QString name = QStringLiteral("run_2023-01-01-000000.log");
    QVERIFY(QDir(folder_->path()).mkdir(QStringLiteral("deeper")));
    QVERIFY(writeFile(path(name), QByteArray()));
    QVERIFY(writeFile(path(QStringLiteral("deeper/") + name), QByteArray()));
    const Log log(path(QStringLiteral("deeper/run.log")), Log::WithFileTimeStamp);
    QVERIFY(QFile::exists(path(name)));
    QVERIFY(!QFile::exists(path(QStringLiteral("deeper/") + name)));
}

void TestLog::onlyTimeStampedNamesOfThisCenturyArePruned_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("pruned");

    QTest::newRow("time stamp") << QStringLiteral("run_2023-01-01-000000.log") << true;
    QTest::newRow("the first year") << QStringLiteral("run_2000-01-01-000000.log") << true;
    QTest::newRow("the last year") << QStringLiteral("run_2099-12-31-235959.log") << true;
    QTest::newRow("any stamp from 20") << QStringLiteral("run_20x.log") << true;
    QTest::newRow("only 20") << QStringLiteral("run_20.log") << true;
    QTest::newRow("with a dot") << QStringLiteral("run_2023.old.log") << true;
    QTest::newRow("suffix in capitals") << QStringLiteral("run_2023-01-01-000000.LOG") << true;
    QTest::newRow("base name in capitals") << QStringLiteral("RUN_2023-01-01-000000.log") << true;
    QTest::newRow("old") << QStringLiteral("run_old.log") << false;
    QTest::newRow("last century") << QStringLiteral("run_1999-01-01-000000.log") << false;
    QTest::newRow("next century") << QStringLiteral("run_2100-01-01-000000.log") << false;
    QTest::newRow("no stamp") << QStringLiteral("run.log") << false;
    QTest::newRow("no underscore") << QStringLiteral("run2023-01-01-000000.log") << false;
    QTest::newRow("longer base name") << QStringLiteral("my_run_2023-01-01-000000.log") << false;
    QTest::newRow("other base name") << QStringLiteral("run_a_2023-01-01-000000.log") << false;
    QTest::newRow("other suffix") << QStringLiteral("run_2023-01-01-000000.txt") << false;
    QTest::newRow("longer suffix") << QStringLiteral("run_2023-01-01-000000.logs") << false;
    QTest::newRow("second suffix") << QStringLiteral("run_2023-01-01-000000.log.bak") << false;
    QTest::newRow("no suffix") << QStringLiteral("run_2023-01-01-000000") << false;
    QTest::newRow("no dot") << QStringLiteral("run_2023-01-01-000000log") << false;
}

void TestLog::onlyTimeStampedNamesOfThisCenturyArePruned()
{
    QFETCH(QString, name);
    QFETCH(bool, pruned);
    for (const QByteArray &content : {QByteArray(), QByteArray("x")}) {
        QVERIFY(writeFile(path(name), content));
        QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                                  QStringLiteral("log"), 0));
        QCOMPARE(QFile::exists(path(name)), !pruned);
    }
}

void TestLog::foldersAreNeverPruned()
{
    const QString name = QStringLiteral("run_2023-01-01-000000.log");
    QVERIFY(QDir(folder_->path()).mkdir(name));
    QVERIFY(make({QStringLiteral("run_2023-01-02-000000.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), 1));
    QCOMPARE(entriesOf(folder_->path()),
             (QStringList{name, QStringLiteral("run_2023-01-02-000000.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), 0));
    QCOMPARE(entriesOf(folder_->path()), QStringList{name});
}

void TestLog::hiddenFilesArePruned()
{
    QVERIFY(make({QStringLiteral(".run_2023-01-01-000000.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral(".run"),
                                              QStringLiteral("log"), 0));
    QCOMPARE(entriesOf(folder_->path()), QStringList());
}

void TestLog::wildcardsInABaseNameMatchThatNameOnly_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QStringList>("others");

    // Each base name with names that it would match as a pattern. A row stands there only where
    // the system has such names.
    const QVector<QPair<const char *, QVector<const char *>>> rows{
        {"run[1]", {"run1"}},
        {"run[0-9]", {"run0", "run5", "run-"}},
        {"run[!a]", {"runb", "run!"}},
        {"run[^a]", {"runb", "run^"}},
        {"[run]", {"r", "u", "n"}},
        {"[]run]", {"]", "r"}},
        {"run[", {"run"}},
        {"run]", {"run"}},
        {"run[]", {"run"}},
        {"run[[]", {"run["}},
        {"run[]]", {"run]"}},
        {"][", {"]"}},
        {"run*", {"run", "runa", "run_a"}},
        {"*", {"run", "a"}},
        {"run?", {"runa", "run1"}},
        {"???", {"run"}},
        {"run[*]", {"run*", "run"}},
        {"run[?]", {"run?", "run"}},
        {"[*]", {"*", "a"}},
        {"run\\", {"run"}},
        {"run\\*", {"run*", "runa"}},
        {"run\\d", {"run1", "rund"}},
        {"run.", {"runa", "run"}},
        {"run+", {"runn", "run"}},
        {"(run)", {"run"}},
        {"run|a", {"run", "a"}},
        {"run{1}", {"run"}},
        {"^run$", {"run"}},
        {"run%1", {"run", "runlog"}},
        {"%2", {"log"}},
    };
    QTemporaryDir folder;
    for (const auto &row : rows) {
        const QString base = QString::fromLatin1(row.first);
        const QString probe = base + QStringLiteral("_20.log");
        // The system may deny the name or read a folder's name or another one in it.
        const bool possible = !base.contains(QDir::separator())
            && writeFile(folder.filePath(probe), "x")
            && entriesOf(folder.path()) == QStringList{probe};
        for (const QString &entry : entriesOf(folder.path()))
            QVERIFY(QFile::remove(folder.filePath(entry)));
        if (!possible)
            continue;
        QStringList others;
        for (const char *other : row.second) {
            const QString name = QString::fromLatin1(other);
            if (writeFile(folder.filePath(name), "x") && QFile::remove(folder.filePath(name)))
                others.append(name);
        }
        QTest::newRow(row.first) << base << others;
    }
}

void TestLog::wildcardsInABaseNameMatchThatNameOnly()
{
    QFETCH(QString, base);
    QFETCH(QStringList, others);
    QStringList kept;
    for (const QString &other : others)
        kept.append(other + QStringLiteral("_2023-01-01-000000.log"));
    QVERIFY(make(kept));
    QVERIFY(make({base + QStringLiteral("_2022-01-01-000000.log"),
                  base + QStringLiteral("_2023-01-01-000000.log")}));
    QVERIFY(writeFile(path(base + QStringLiteral("_2024-01-01-000000.log")), QByteArray()));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), base, QStringLiteral("log"), 1));
    QStringList found = entriesOf(folder_->path());
    QStringList expected = kept + QStringList{base + QStringLiteral("_2023-01-01-000000.log")};
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
}

void TestLog::wildcardsInASuffixMatchThatSuffixOnly_data()
{
    QTest::addColumn<QString>("suffix");

    QTemporaryDir folder;
    for (const char *suffix : {"l[o]g", "l?g", "l*g", "*", "[!x]og"}) {
        if (writeFile(folder.filePath(QLatin1Char('a') + QString::fromLatin1(suffix)), "x"))
            QTest::newRow(suffix) << QString::fromLatin1(suffix);
    }
}

void TestLog::wildcardsInASuffixMatchThatSuffixOnly()
{
    QFETCH(QString, suffix);
    const QString other = QStringLiteral("run_2023-01-01-000000.log");
    QVERIFY(make({other, QStringLiteral("run_2023-01-01-000000.") + suffix}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"), suffix, 0));
    QCOMPARE(entriesOf(folder_->path()), QStringList{other});
}

void TestLog::emptyFilesAreDeletedEvenBelowTheCount()
{
    const QStringList names{QStringLiteral("run_2023-01-01-000000.log"),
                            QStringLiteral("run_2023-01-02-000000.log"),
                            QStringLiteral("run_2023-01-03-000000.log")};
    QVERIFY(make(names));
    QVERIFY(writeFile(path(names.at(0)), QByteArray()));
    QVERIFY(writeFile(path(names.at(2)), QByteArray()));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), 10));
    QCOMPARE(entriesOf(folder_->path()), QStringList{names.at(1)});
}

void TestLog::theOldestByNameGoFirst()
{
    const QStringList names{
        QStringLiteral("run_2022-12-31-235959.log"), QStringLiteral("run_2023-01-01-000000.log"),
        QStringLiteral("run_2023-01-01-000001.log"), QStringLiteral("run_2023-01-01-095959.log"),
        QStringLiteral("run_2023-01-01-100000.log"), QStringLiteral("run_2023-10-01-000000.log")};
    // The age of the files says the opposite.
    for (int i = names.size() - 1; i >= 0; --i)
        QVERIFY(make({names.at(i)}));
    for (int left = names.size() - 1; left >= 0; --left) {
        QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                                  QStringLiteral("log"), left));
        QCOMPARE(entriesOf(folder_->path()), names.mid(names.size() - left));
    }
}

void TestLog::moreThanTheCountAreDeleted_data()
{
    QTest::addColumn<int>("maxCount");
    QTest::addColumn<int>("left");

    QTest::newRow("more") << 6 << 5;
    QTest::newRow("as many") << 5 << 5;
    QTest::newRow("one less") << 4 << 4;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("negative") << -1 << 0;
}

void TestLog::moreThanTheCountAreDeleted()
{
    QFETCH(int, maxCount);
    QFETCH(int, left);
    QStringList names;
    for (int day = 1; day <= 5; ++day)
        names.append(QStringLiteral("run_2023-01-0%1-000000.log").arg(day));
    QVERIFY(make(names));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), maxCount));
    QCOMPARE(entriesOf(folder_->path()), names.mid(5 - left));
}

void TestLog::pruningAMissingFolderIsFalse()
{
    QVERIFY(!Log::removeOldTimeStampedLogFiles(path(QStringLiteral("missing")),
                                               QStringLiteral("run"), QStringLiteral("log"), 10));
    QVERIFY(!QFile::exists(path(QStringLiteral("missing"))));
    QVERIFY(make({QStringLiteral("file")}));
    QVERIFY(!Log::removeOldTimeStampedLogFiles(path(QStringLiteral("file")), QStringLiteral("run"),
                                               QStringLiteral("log"), 10));
}

void TestLog::pruningNothingIsTrue()
{
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), 10));
    QVERIFY(make({QStringLiteral("run_2023-01-01-000000.log"), QStringLiteral("run_old.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), 1));
    QCOMPARE(entriesOf(folder_->path()).size(), 2);
}

void TestLog::theResultIsThatOfTheLastDeletion_data()
{
    QTest::addColumn<int>("kept");
    QTest::addColumn<bool>("result");

    QTest::newRow("the first fails") << 0 << true;
    QTest::newRow("one between fails") << 1 << true;
    QTest::newRow("the last fails") << 2 << false;
}

void TestLog::theResultIsThatOfTheLastDeletion()
{
    QFETCH(int, kept);
    QFETCH(bool, result);
    const QStringList names{
        QStringLiteral("run_2023-01-01-000000.log"), QStringLiteral("run_2023-01-02-000000.log"),
        QStringLiteral("run_2023-01-03-000000.log"), QStringLiteral("run_2023-01-04-000000.log")};
    QVERIFY(make(names));
    const KeptFile file(path(names.at(kept)));
    if (!file.isKept())
        QSKIP("This account cannot protect a file from being deleted");
    QCOMPARE(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                               QStringLiteral("log"), 1),
             result);
    QCOMPARE(entriesOf(folder_->path()), (QStringList{names.at(kept), names.at(3)}));
}

void TestLog::theResultOfDeletingAnEmptyFileIsOverwrittenToo()
{
    const QString empty = QStringLiteral("run_2023-01-02-000000.log");
    const QStringList names{QStringLiteral("run_2023-01-01-000000.log"), empty,
                            QStringLiteral("run_2023-01-03-000000.log")};
    QVERIFY(make(names));
    QVERIFY(writeFile(path(empty), QByteArray()));
    const KeptFile file(path(empty));
    if (!file.isKept())
        QSKIP("This account cannot protect a file from being deleted");
    // Nothing but the empty file is to be deleted.
    QVERIFY(!Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                               QStringLiteral("log"), 10));
    QCOMPARE(entriesOf(folder_->path()), names);
    // It still counts, and the deletion of the oldest comes after it.
    QVERIFY(Log::removeOldTimeStampedLogFiles(folder_->path(), QStringLiteral("run"),
                                              QStringLiteral("log"), 2));
    QCOMPARE(entriesOf(folder_->path()), names.mid(1));
}

QTEST_GUILESS_MAIN(TestLog)

#include "tst_log.moc"
