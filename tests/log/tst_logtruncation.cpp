#include "BuildPaths.h"
#include "OtherFileSystem.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/Formats/TruncationOffset_p.h>
#include <Utility/Log.h>
#include <Utility/LogTruncation_p.h>
#include <Utility/Platform/FileReplacement.h>

#include <QtCore/QBuffer>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRandomGenerator>
#include <QtCore/QStorageInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

using namespace Vorn::Util;
using Formats::LogHeadSize;
using Formats::truncationOffset;

namespace {

constexpr int Limit = 5242880;
constexpr int TruncateAfter = 1048576;

// The rule in its simplest form: the log is read from its beginning by pieces of at most 255 bytes,
// none of which goes beyond a line, and a piece is kept when more than a mebibyte was read before
// it.
QByteArray keptOf(const QByteArray &log)
{
    QBuffer device;
    device.setData(log);
    device.open(QIODevice::ReadOnly);
    QByteArray kept;
    std::array<char, 256> buffer{};
    qint64 count = 0;
    while (count < log.size()) {
        const qint64 length = device.readLine(buffer.data(), buffer.size());
        if (length < 0)
            return log;
        if (count > TruncateAfter)
            kept.append(buffer.data(), static_cast<int>(length));
        count += length;
    }
    return kept;
}

// The lengths of random lines, with their line end.
struct Lines
{
    int shortest;
    int longest;
};

// Random bytes in lines; NUL, CR and bytes that are no UTF-8 among them, LF only at a line's end.
QByteArray randomLog(QRandomGenerator &random, const Lines &form, int size)
{
    std::vector<quint32> words(static_cast<std::size_t>(size) / sizeof(quint32) + 1);
    random.fillRange(words.data(), static_cast<qsizetype>(words.size()));
    QByteArray log(reinterpret_cast<const char *>(words.data()), size);
    log.replace('\n', 'n');
    int next = -1;
    while ((next += random.bounded(form.shortest, form.longest + 1)) < size)
        log[next] = '\n';
    return log;
}

// Faster than random bytes, for tests in which the content does not matter.
QByteArray logOfLines(int lineSize, int size)
{
    QByteArray log;
    log.reserve(size + lineSize);
    for (int number = 0; log.size() < size; ++number)
        log += QByteArray::number(number).leftJustified(lineSize - 1, '.') + '\n';
    log.truncate(size);
    return log;
}

// The environment of a child process whose temporary folder is \a folder.
QProcessEnvironment withTemporaryFolder(const QString &folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"TMPDIR", "TMP", "TEMP"})
        environment.insert(QString::fromLatin1(name), QDir::toNativeSeparators(folder));
    return environment;
}

bool run(const QString &program, const QStringList &arguments,
         const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

bool runHelper(const QStringList &arguments, const QString &temporaryFolder)
{
    return run(BuildPaths::helperProgram(), arguments, withTemporaryFolder(temporaryFolder));
}

} // namespace

class TestLogTruncation : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;

    void theOffsetIsWhereThePiecesSay_data();
    void theOffsetIsWhereThePiecesSay();
    void aShortHeadIsAllRemoved_data();
    void aShortHeadIsAllRemoved();
    void theHeadIsEnoughToFindTheOffset_data();
    void theHeadIsEnoughToFindTheOffset();

    void aLogIsReplacedByItsTail_data();
    void aLogIsReplacedByItsTail();
    void theLastLineEndInTheHeadIsFound_data();
    void theLastLineEndInTheHeadIsFound();
    void aShortLogIsEmptied_data();
    void aShortLogIsEmptied();
    void aLogCanBeTruncatedAgainAndAgain();
    void anyNameCanBeTruncated_data();
    void anyNameCanBeTruncated();
    void permissionsSurvive_data();
    void permissionsSurvive();
    void nothingIsLeftBehind();

    void aMissingLogIsNotCreated();
    void whatIsNoFileStaysAsItIs();
    void aLogThatAnotherHoldsOpenIsTruncatedOrStaysAsItWas();
    void whetherALogMayBeReplacedIsKnownBefore();
    void whetherAFileMayBeMadeIsKnownBefore();
    void withoutANewFileTheLogIsNotRead();
    void theSpaceIsThatOfTheFileSystem();
    void theSpaceOfAMissingFolderIsNotKnown();
    void aLogThatCannotBeReplacedStaysAsItWas();
    void withoutTemporaryFolderTheLogStaysAsItWas_data();
    void withoutTemporaryFolderTheLogStaysAsItWas();
    void aLogThatCannotBeTruncatedIsStillWritten_data();
    void aLogThatCannotBeTruncatedIsStillWritten();
    void withoutSpaceForTheTailTheLogStaysAsItWas();
    void theOffsetIsTheSameOnAnotherFileSystem_data();
    void theOffsetIsTheSameOnAnotherFileSystem();
    void onAnotherFileSystemNothingIsLeftBehind();
    void theFileThatALinkLeadsToIsTruncated_data();
    void theFileThatALinkLeadsToIsTruncated();

private:
    void addBadTemporaryFolders();
    bool makeBadTemporaryFolder(const QString &kind);

    QString fileName_;
    QString temporary_; // a folder's name for the temporary files of child processes
};

void TestLogTruncation::init()
{
    TestWithFolder::init();
    QVERIFY(QDir(testFolder()).mkdir(QStringLiteral("logs")));
    fileName_ = path(QStringLiteral("logs/run.log"));
    temporary_ = path(QStringLiteral("temporary"));
}

void TestLogTruncation::theOffsetIsWhereThePiecesSay_data()
{
    QTest::addColumn<int>("shortest");
    QTest::addColumn<int>("longest");

    QTest::newRow("only line ends") << 1 << 1;
    QTest::newRow("very short lines") << 1 << 4;
    QTest::newRow("short lines") << 1 << 100;
    QTest::newRow("lines of about a piece") << 253 << 257;
    QTest::newRow("lines of exactly a piece") << 255 << 255;
    QTest::newRow("lines of a piece and one byte") << 256 << 256;
    QTest::newRow("lines of two pieces") << 509 << 511;
    QTest::newRow("all lengths") << 1 << 1000;
    QTest::newRow("long lines") << 10000 << 100000;
    QTest::newRow("one line beyond the mebibyte") << TruncateAfter - 600 << TruncateAfter + 600;
    QTest::newRow("lines of half a mebibyte") << TruncateAfter / 2 - 130 << TruncateAfter / 2 + 130;
    QTest::newRow("no line end at all") << 8 * TruncateAfter << 8 * TruncateAfter;
}

void TestLogTruncation::theOffsetIsWhereThePiecesSay()
{
    QFETCH(int, shortest);
    QFETCH(int, longest);
    const auto seed = static_cast<quint32>(shortest * 31 + longest);
    QRandomGenerator random(seed);
    for (int round = 0; round < 12; ++round) {
        const int size = round % 5 == 0 ? TruncateAfter + random.bounded(600)
                                        : TruncateAfter + random.bounded(TruncateAfter);
        const QByteArray log = randomLog(random, {shortest, longest}, size);
        const QByteArray kept = keptOf(log);
        const qint64 offset = truncationOffset(log.left(LogHeadSize));
        // Where nothing is kept, the offset is the size of the head.
        QVERIFY2(offset == log.size() - kept.size(),
                 qPrintable(QStringLiteral("Round %1, size %2: %3 and not %4")
                                .arg(round)
                                .arg(size)
                                .arg(offset)
                                .arg(log.size() - kept.size())));
    }
}

void TestLogTruncation::aShortHeadIsAllRemoved_data()
{
    QTest::addColumn<QByteArray>("head");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("a");
    QTest::newRow("one line end") << QByteArray("\n");
    QTest::newRow("lines") << logOfLines(10, 1000);
    QTest::newRow("a mebibyte but one") << logOfLines(64, TruncateAfter - 1);
    QTest::newRow("a mebibyte, line end last") << logOfLines(64, TruncateAfter);
    QTest::newRow("a mebibyte without line ends") << QByteArray(TruncateAfter, 'x');
    QTest::newRow("one byte more") << QByteArray(TruncateAfter + 1, 'x');
    QTest::newRow("one byte more, a line end") << QByteArray(TruncateAfter, 'x') + '\n';
    QTest::newRow("up to the next piece") << QByteArray(4113 * 255, 'x');
}

void TestLogTruncation::aShortHeadIsAllRemoved()
{
    QFETCH(QByteArray, head);
    QCOMPARE(truncationOffset(head), static_cast<qint64>(head.size()));
    QCOMPARE(keptOf(head), QByteArray());
}

// Line ends just around the mebibyte and around the piece that follows.
void TestLogTruncation::theHeadIsEnoughToFindTheOffset_data()
{
    QTest::addColumn<int>("lineEnd");

    for (const int around : {TruncateAfter - 255, TruncateAfter - 16, TruncateAfter, 4113 * 255,
                             TruncateAfter + 255}) {
        for (int lineEnd = around - 3; lineEnd <= around + 3; ++lineEnd)
            QTest::addRow("%d", lineEnd - TruncateAfter) << lineEnd;
    }
}

void TestLogTruncation::theHeadIsEnoughToFindTheOffset()
{
    QFETCH(int, lineEnd);
    QByteArray log(TruncateAfter + 3 * 255, 'x');
    log[lineEnd] = '\n';
    const qint64 offset = truncationOffset(log.left(LogHeadSize));
    QCOMPARE(offset, static_cast<qint64>(log.size() - keptOf(log).size()));
    QCOMPARE(offset, truncationOffset(log));
    QVERIFY(offset > Log::AmountToTruncate);
    QVERIFY(offset < LogHeadSize);
}

void TestLogTruncation::aLogIsReplacedByItsTail_data()
{
    QTest::addColumn<int>("shortest");
    QTest::addColumn<int>("longest");
    QTest::addColumn<int>("size");

    QTest::newRow("short lines") << 1 << 120 << Limit + 1;
    QTest::newRow("all lengths") << 1 << 2000 << Limit + 77;
    QTest::newRow("lines of about a piece") << 250 << 260 << Limit + 5000;
    QTest::newRow("long lines") << 100000 << 3000000 << Limit + 300000;
    QTest::newRow("no line end at all") << 8 * TruncateAfter << 8 * TruncateAfter << Limit + 1;
    QTest::newRow("large") << 1 << 500 << 4 * Limit;
    QTest::newRow("just above the mebibyte") << 1 << 120 << TruncateAfter + 1000;
}

void TestLogTruncation::aLogIsReplacedByItsTail()
{
    QFETCH(int, shortest);
    QFETCH(int, longest);
    QFETCH(int, size);
    QRandomGenerator random(static_cast<quint32>(size));
    const QByteArray log = randomLog(random, {shortest, longest}, size);
    QVERIFY(writeFile(fileName_, log));
    truncateLogFile(fileName_);
    const QByteArray kept = keptOf(log);
    QVERIFY(!kept.isEmpty());
    QVERIFY(contentOf(fileName_) == kept);
}

// A log with one line end, at any distance from the mebibyte.
void TestLogTruncation::theLastLineEndInTheHeadIsFound_data()
{
    QTest::addColumn<int>("lineEnd");

    for (const int distance : {0, 255, 1000, 4096, 16384}) {
        for (const int around : {-1, 0, 1}) {
            const int lineEnd = TruncateAfter - distance + around;
            QTest::addRow("%d", lineEnd - TruncateAfter) << lineEnd;
        }
    }
    QTest::newRow("first byte") << 0;
}

void TestLogTruncation::theLastLineEndInTheHeadIsFound()
{
    QFETCH(int, lineEnd);
    QByteArray log(TruncateAfter + 3 * 255, 'x');
    log[lineEnd] = '\n';
    QVERIFY(writeFile(fileName_, log));
    truncateLogFile(fileName_);
    QVERIFY(contentOf(fileName_) == keptOf(log));
}

void TestLogTruncation::aShortLogIsEmptied_data()
{
    QTest::addColumn<int>("size");

    QTest::newRow("empty") << 0;
    QTest::newRow("short") << 1000;
    QTest::newRow("a mebibyte") << TruncateAfter;
}

void TestLogTruncation::aShortLogIsEmptied()
{
    QFETCH(int, size);
    QVERIFY(writeFile(fileName_, logOfLines(64, size)));
    truncateLogFile(fileName_);
    QVERIFY(QFile::exists(fileName_));
    QCOMPARE(contentOf(fileName_), QByteArray());
}

void TestLogTruncation::aLogCanBeTruncatedAgainAndAgain()
{
    QByteArray log = logOfLines(77, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    while (!log.isEmpty()) {
        truncateLogFile(fileName_);
        log = keptOf(log);
        QVERIFY(contentOf(fileName_) == log);
    }
}

void TestLogTruncation::anyNameCanBeTruncated_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("blanks") << QStringLiteral("my run.log");
    QTest::newRow("beyond ASCII") << QStringLiteral("Tr\u00e4ger \u20ac.log");
    QTest::newRow("no suffix") << QStringLiteral("run");
    QTest::newRow("template characters") << QStringLiteral("XXXXXX.log");
    QTest::newRow("place markers") << QStringLiteral("%1 %2.log");
    QTest::newRow("hidden") << QStringLiteral(".run.log");
}

void TestLogTruncation::anyNameCanBeTruncated()
{
    QFETCH(QString, name);
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(path(QStringLiteral("logs/") + name), log));
    truncateLogFile(path(QStringLiteral("logs/") + name));
    QVERIFY(contentOf(path(QStringLiteral("logs/") + name)) == keptOf(log));
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{name});
}

void TestLogTruncation::permissionsSurvive_data()
{
    QTest::addColumn<int>("permissions");

    const QFile::Permissions owner = QFile::ReadOwner | QFile::WriteOwner;
    QTest::newRow("owner") << static_cast<int>(owner);
    QTest::newRow("group reads") << static_cast<int>(owner | QFile::ReadGroup);
    QTest::newRow("group writes") << static_cast<int>(owner | QFile::ReadGroup | QFile::WriteGroup);
    QTest::newRow("others read") << static_cast<int>(owner | QFile::ReadGroup | QFile::ReadOther);
    QTest::newRow("all write") << static_cast<int>(owner | QFile::ReadGroup | QFile::WriteGroup
                                                   | QFile::ReadOther | QFile::WriteOther);
}

void TestLogTruncation::permissionsSurvive()
{
    QFETCH(int, permissions);
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(QFile::setPermissions(fileName_, QFile::Permissions(permissions)));
    const QFile::Permissions before = QFile::permissions(fileName_);
    truncateLogFile(fileName_);
    QVERIFY(contentOf(fileName_) == keptOf(log));
    QCOMPARE(QFile::permissions(fileName_), before);
}

void TestLogTruncation::nothingIsLeftBehind()
{
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(QDir().mkdir(temporary_));
    QVERIFY(runHelper({QStringLiteral("log-check"), fileName_}, temporary_));
    QVERIFY(contentOf(fileName_) == keptOf(log));
    QCOMPARE(entriesOf(temporary_), QStringList());
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

void TestLogTruncation::aMissingLogIsNotCreated()
{
    truncateLogFile(fileName_);
    truncateLogFile(path(QStringLiteral("missing/run.log")));
    truncateLogFile(QString());
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList());
    QCOMPARE(entriesOf(testFolder()), QStringList{QStringLiteral("logs")});
}

void TestLogTruncation::whatIsNoFileStaysAsItIs()
{
    QVERIFY(writeFile(fileName_, "x"));
    truncateLogFile(path(QStringLiteral("logs")));
    QCOMPARE(contentOf(fileName_), QByteArray("x"));
    QCOMPARE(entriesOf(testFolder()), QStringList{QStringLiteral("logs")});
}

// Windows does not replace a file that somebody has open; other systems do.
void TestLogTruncation::aLogThatAnotherHoldsOpenIsTruncatedOrStaysAsItWas()
{
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QFile other(fileName_);
    QVERIFY(other.open(QIODevice::ReadOnly));
    truncateLogFile(fileName_);
    QVERIFY(other.readAll() == log);
    QVERIFY(contentOf(fileName_) == (onWindows() ? log : keptOf(log)));
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

void TestLogTruncation::whetherALogMayBeReplacedIsKnownBefore()
{
    QVERIFY(writeFile(fileName_, "x"));
    QVERIFY(Platform::mayReplaceFile(fileName_));
    {
        QFile other(fileName_);
        QVERIFY(other.open(QIODevice::ReadOnly));
        QCOMPARE(Platform::mayReplaceFile(fileName_), !onWindows());
    }
    const QFile::Permissions before = QFile::permissions(fileName_);
    QVERIFY(QFile::setPermissions(fileName_, QFile::ReadOwner));
    QCOMPARE(Platform::mayReplaceFile(fileName_), !onWindows());
    QVERIFY(QFile::setPermissions(fileName_, before));
    QVERIFY(Platform::mayReplaceFile(fileName_));
    QVERIFY(!Platform::mayReplaceFile(path(QStringLiteral("missing/run.log"))));
    QCOMPARE(contentOf(fileName_), QByteArray("x"));
}

void TestLogTruncation::whetherAFileMayBeMadeIsKnownBefore()
{
    QVERIFY(Platform::mayCreateFileIn(testFolder()));
    QVERIFY(!Platform::mayCreateFileIn(path(QStringLiteral("missing"))));
    QVERIFY(!Platform::mayCreateFileIn(QString())); // the path that Qt gives a missing folder
    QVERIFY(writeFile(fileName_, "x"));
    QVERIFY(
        QFile::setPermissions(fileName_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(!Platform::mayCreateFileIn(fileName_));
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

// Here the folder is missing, but the reason does not matter.
void TestLogTruncation::withoutANewFileTheLogIsNotRead()
{
    QVERIFY(writeFile(fileName_, "a log"));
    QFile log(fileName_);
    QVERIFY(log.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    static bool isRead = false;
    isRead = false;
    const auto tailOffset = [](QFile &) {
        isRead = true;
        return Q_INT64_C(2);
    };
    QVERIFY(!Platform::replaceByTail(log, path(QStringLiteral("missing")), tailOffset));
    QVERIFY(!isRead);
    log.close();
    QCOMPARE(contentOf(fileName_), QByteArray("a log"));

    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(Platform::replaceByTail(log, testFolder(), tailOffset));
    QVERIFY(isRead);
    QCOMPARE(contentOf(fileName_), QByteArray("log"));
}

void TestLogTruncation::theSpaceIsThatOfTheFileSystem()
{
    const qint64 space = Platform::availableSpace(testFolder());
    QVERIFY(space > 0);
    const QStorageInfo storage(testFolder());
    if (!storage.isValid())
        QSKIP("Qt does not find the file system of the folder, as in a changed root folder");
    constexpr qint64 Tolerance = 1 << 30; // other programs write, too
    QVERIFY2(space >= storage.bytesAvailable() - Tolerance, qPrintable(QString::number(space)));
    QVERIFY2(space <= storage.bytesTotal(), qPrintable(QString::number(space)));
}

void TestLogTruncation::theSpaceOfAMissingFolderIsNotKnown()
{
    QCOMPARE(Platform::availableSpace(path(QStringLiteral("missing"))),
             std::numeric_limits<qint64>::max());
}

// The log is replaced neither by the tail nor by a copy of it.
void TestLogTruncation::aLogThatCannotBeReplacedStaysAsItWas()
{
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(QDir().mkdir(temporary_));
    QProcess keep;
    if (!onWindows()) {
        keep.start(QStringLiteral("chattr"), {QStringLiteral("+i"), fileName_});
        if (!keep.waitForFinished() || keep.exitCode() != 0)
            QSKIP("This account cannot protect a file from being replaced");
    } else {
        QVERIFY(QFile::setPermissions(fileName_, QFile::ReadOwner | QFile::ReadUser));
    }
    const bool finished = runHelper({QStringLiteral("log-check"), fileName_}, temporary_);
    const QByteArray content = contentOf(fileName_);
    if (onWindows())
        QFile::setPermissions(fileName_, QFile::ReadOwner | QFile::WriteOwner);
    else
        QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-i"), fileName_});
    QVERIFY(finished);
    if (onWindows() && content == keptOf(log))
        QSKIP("Wine replaces a write-protected file, which Windows refuses to");
    QVERIFY(content == log);
    QCOMPARE(entriesOf(temporary_), QStringList());
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

void TestLogTruncation::addBadTemporaryFolders()
{
    QTest::addColumn<QString>("kind");

    for (const char *kind : {"missing", "a file", "below a file", "not writable"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

// False where the system lets this account write anyway.
bool TestLogTruncation::makeBadTemporaryFolder(const QString &kind)
{
    if (kind == QLatin1String("a file"))
        return writeFile(temporary_, "x");
    if (kind == QLatin1String("below a file")) {
        const bool made = writeFile(temporary_, "x");
        temporary_ += QStringLiteral("/folder");
        return made;
    }
    if (kind == QLatin1String("not writable")) {
        QFile probe(temporary_ + QStringLiteral("/probe"));
        return QDir().mkdir(temporary_)
            && QFile::setPermissions(temporary_, QFile::ReadOwner | QFile::ExeOwner)
            && !probe.open(QIODevice::WriteOnly);
    }
    return true;
}

void TestLogTruncation::withoutTemporaryFolderTheLogStaysAsItWas_data()
{
    addBadTemporaryFolders();
}

void TestLogTruncation::withoutTemporaryFolderTheLogStaysAsItWas()
{
    QFETCH(QString, kind);
    if (!makeBadTemporaryFolder(kind))
        QSKIP("This account can write to a folder that is not writable");
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(runHelper({QStringLiteral("log-check"), fileName_}, temporary_));
    QVERIFY(contentOf(fileName_) == log);
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

void TestLogTruncation::aLogThatCannotBeTruncatedIsStillWritten_data()
{
    addBadTemporaryFolders();
}

void TestLogTruncation::aLogThatCannotBeTruncatedIsStillWritten()
{
    QFETCH(QString, kind);
    if (!makeBadTemporaryFolder(kind))
        QSKIP("This account can write to a folder that is not writable");
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(
        runHelper({QStringLiteral("log-append"), fileName_, QStringLiteral("more")}, temporary_));
    QVERIFY(contentOf(fileName_) == log + " more" + lineEnd());
}

// As on a full disk: no file may grow beyond half of what is kept.
void TestLogTruncation::withoutSpaceForTheTailTheLogStaysAsItWas()
{
    if (onWindows())
        QSKIP("Windows has no limit on the size of a process's files");
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(QDir().mkdir(temporary_));
    const QString script
        = QStringLiteral("trap '' XFSZ; ulimit -f 4096; exec \"$0\" log-check \"$1\"");
    QVERIFY(run(QStringLiteral("sh"),
                {QStringLiteral("-c"), script, BuildPaths::helperProgram(), fileName_},
                withTemporaryFolder(temporary_)));
    QVERIFY(contentOf(fileName_) == log);
    QCOMPARE(entriesOf(temporary_), QStringList());
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

void TestLogTruncation::theOffsetIsTheSameOnAnotherFileSystem_data()
{
    permissionsSurvive_data();
}

void TestLogTruncation::theOffsetIsTheSameOnAnotherFileSystem()
{
    QFETCH(int, permissions);
    const QString elsewhere = folderOnAnotherFileSystem(testFolder());
    if (elsewhere.isEmpty())
        QSKIP("There is no other file system for the temporary files");
    const QTemporaryDir temporary(elsewhere + QStringLiteral("/log-XXXXXX"));
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(writeFile(fileName_, log));
    QVERIFY(QFile::setPermissions(fileName_, QFile::Permissions(permissions)));
    const QFile::Permissions before = QFile::permissions(fileName_);
    QVERIFY(runHelper({QStringLiteral("log-check"), fileName_}, temporary.path()));
    QVERIFY(contentOf(fileName_) == keptOf(log));
    QCOMPARE(QFile::permissions(fileName_), before);
    QVERIFY(runHelper({QStringLiteral("log-append"), fileName_, QStringLiteral("more")},
                      temporary.path()));
    QVERIFY(contentOf(fileName_) == keptOf(log) + " more" + lineEnd());
}

void TestLogTruncation::onAnotherFileSystemNothingIsLeftBehind()
{
    const QString elsewhere = folderOnAnotherFileSystem(testFolder());
    if (elsewhere.isEmpty())
        QSKIP("There is no other file system for the temporary files");
    const QTemporaryDir temporary(elsewhere + QStringLiteral("/log-XXXXXX"));
    QVERIFY(writeFile(fileName_, logOfLines(100, Limit + 1)));
    QVERIFY(runHelper({QStringLiteral("log-check"), fileName_}, temporary.path()));
    QCOMPARE(entriesOf(temporary.path()), QStringList());
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
}

void TestLogTruncation::theFileThatALinkLeadsToIsTruncated_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("isAbsolute");
    QTest::addColumn<bool>("isOnAnotherFileSystem");

    for (const bool another : {false, true}) {
        const char *suffix = another ? ", temporary files elsewhere" : "";
        QTest::addRow("relative%s", suffix)
            << QStringLiteral("../files/real.log") << false << another;
        QTest::addRow("absolute%s", suffix)
            << QStringLiteral("../files/real.log") << true << another;
        QTest::addRow("through a linked folder%s", suffix)
            << QStringLiteral("../linked/real.log") << false << another;
        QTest::addRow("to a link%s", suffix) << QStringLiteral("../link.log") << false << another;
    }
}

// In its own folder, where nothing but it lies afterwards; the link stays as it was.
void TestLogTruncation::theFileThatALinkLeadsToIsTruncated()
{
    if (onWindows())
        QSKIP("A link is a file of its own here");
    QFETCH(QString, target);
    QFETCH(bool, isAbsolute);
    QFETCH(bool, isOnAnotherFileSystem);
    QString folder = testFolder();
    if (isOnAnotherFileSystem) {
        folder = folderOnAnotherFileSystem(folder);
        if (folder.isEmpty())
            QSKIP("There is no other file system for the temporary files");
    }
    const QTemporaryDir temporary(folder + QStringLiteral("/log-XXXXXX"));
    const QString real = path(QStringLiteral("files/real.log"));
    const QByteArray log = logOfLines(100, Limit + 1);
    QVERIFY(QDir().mkdir(path(QStringLiteral("files"))));
    QVERIFY(writeFile(real, log));
    QVERIFY(QFile::link(QStringLiteral("files"), path(QStringLiteral("linked"))));
    QVERIFY(QFile::link(QStringLiteral("files/real.log"), path(QStringLiteral("link.log"))));
    QVERIFY(QFile::link(isAbsolute ? real : target, fileName_));
    const QString linkTarget = QFileInfo(fileName_).symLinkTarget();
    const QStringList before = entriesOf(testFolder());

    QVERIFY(runHelper({QStringLiteral("log-append"), fileName_, QStringLiteral("more")},
                      temporary.path()));
    QVERIFY(contentOf(real) == keptOf(log) + " more\n");
    QVERIFY(!QFileInfo(real).isSymLink());
    QVERIFY(!linkTarget.isEmpty());
    QCOMPARE(QFileInfo(fileName_).symLinkTarget(), linkTarget);
    QVERIFY(QFileInfo(path(QStringLiteral("link.log"))).isSymLink());
    QCOMPARE(entriesOf(temporary.path()), QStringList());
    QCOMPARE(entriesOf(path(QStringLiteral("files"))), QStringList{QStringLiteral("real.log")});
    QCOMPARE(entriesOf(path(QStringLiteral("logs"))), QStringList{QStringLiteral("run.log")});
    QCOMPARE(entriesOf(testFolder()), before);
}

QTEST_GUILESS_MAIN(TestLogTruncation)

#include "tst_logtruncation.moc"
