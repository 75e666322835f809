// A program that is killed while it writes and truncates its log.

#include "BuildPaths.h"
#include "NumberedLines.h"
#include "OtherFileSystem.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <Utility/Log.h>

#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRandomGenerator>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <algorithm>
#include <cstring>

using namespace Vorn::Util;

namespace {

constexpr int PieceSize = 255;

QByteArray lineOf(int number)
{
    return ' ' + numberedLine(QStringLiteral("line"), number).toUtf8() + lineEnd();
}

int lineLength()
{
    return NumberedLineLength + lineEnd().size();
}

// Lines from number 0 on, up to the first size that has a log truncated.
QByteArray tooLargeLog()
{
    QByteArray log;
    for (int number = 0; log.size() <= Log::MaxLogSize; ++number)
        log += lineOf(number);
    return log;
}

// The number of the last whole line of a log that holds nothing but lines without a gap, the
// last of which may be torn; -1 for any other.
int lastNumberOf(const QByteArray &log)
{
    const int numberAt = QByteArray(" line ").size();
    constexpr int NumberLength = 9;
    QByteArray expected = lineOf(0);
    bool ok = false;
    const int first = log.mid(numberAt, NumberLength).toInt(&ok);
    if (!ok)
        return -1;
    const int count = log.size() / lineLength();
    for (int i = 0; i <= count; ++i) {
        expected.replace(numberAt, NumberLength,
                         QByteArray::number(first + i).rightJustified(NumberLength, '0'));
        const int from = i * expected.size();
        const int length = std::min(expected.size(), log.size() - from);
        if (std::memcmp(log.constData() + from, expected.constData(),
                        static_cast<std::size_t>(length))
            != 0)
            return -1;
    }
    return first + count - 1;
}

} // namespace

class TestLogKilled : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKilledProgramLeavesTheWholeLogOrTheTruncatedOne_data();
    void aKilledProgramLeavesTheWholeLogOrTheTruncatedOne();
};

void TestLogKilled::aKilledProgramLeavesTheWholeLogOrTheTruncatedOne_data()
{
    QTest::addColumn<bool>("elsewhere");
    QTest::addColumn<quint32>("seed");

    QTest::newRow("temporary files on the log's file system") << false << 20240305U;
    QTest::newRow("temporary files on another file system") << true << 20240306U;
}

// No line that was reported as written is lost but those that a truncation removes, and the log is
// never only in a file of another name.
void TestLogKilled::aKilledProgramLeavesTheWholeLogOrTheTruncatedOne()
{
    QFETCH(bool, elsewhere);
    QFETCH(quint32, seed);
    constexpr int LongestLife = 12000; // microseconds, about two truncations
    constexpr int MostCopies = 5;      // a program that is killed at a certain moment leaves one
    const int rounds = (onWindows() ? 20 : 100) / LOAD_FACTOR;
    const TestFolder folder;
    const QString otherFileSystem
        = elsewhere ? folderOnAnotherFileSystem(folder.path()) : folder.path();
    if (otherFileSystem.isEmpty())
        QSKIP("There is no other file system for the temporary files");

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QRandomGenerator random(seed);
    const QByteArray before = tooLargeLog();
    const QString logFolder = folder.filePath(QStringLiteral("logs"));
    const QString fileName = logFolder + QStringLiteral("/run.log");
    QVERIFY(QDir().mkdir(logFolder));
    int truncations = 0;
    int temporaryFiles = 0;
    int copiesBesideTheLog = 0;
    for (int round = 0; round < rounds; ++round) {
        const QTemporaryDir temporary(otherFileSystem + QStringLiteral("/log-XXXXXX"));
        for (const char *variable : {"TMPDIR", "TMP", "TEMP"}) {
            environment.insert(QString::fromLatin1(variable),
                               QDir::toNativeSeparators(temporary.path()));
        }
        QVERIFY(writeFile(fileName, before));
        const int delay = random.bounded(LongestLife);
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(BuildPaths::helperProgram(),
                      {QStringLiteral("log-truncate-endlessly"), fileName,
                       QString::number(before.size() / lineLength())});
        if (random.bounded(4) == 0)
            QVERIFY(program.waitForStarted()); // killed before the first truncation
        else
            QVERIFY(program.waitForReadyRead());
        QThread::usleep(static_cast<unsigned long>(delay));
        program.kill();
        QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);

        const QByteArray where = QStringLiteral("seed %1, round %2, killed after %3 us")
                                     .arg(seed)
                                     .arg(round)
                                     .arg(delay)
                                     .toUtf8();
        const QByteArray log = contentOf(fileName);
        QVERIFY2(log.size() > Log::MaxLogSize - Log::AmountToTruncate - PieceSize,
                 where.constData());
        const int last = lastNumberOf(log);
        QVERIFY2(last >= 0, where.constData());
        const QList<QByteArray> told = program.readAllStandardOutput().split('\n');
        if (told.size() > 1)
            QVERIFY2(last >= told.at(told.size() - 2).trimmed().toInt(), where.constData());
        truncations += log.startsWith(before.left(lineLength())) ? 0 : 1;
        temporaryFiles += entriesOf(temporary.path()).size();
        QVERIFY(QFile::remove(fileName));
        const QStringList copies = entriesOf(logFolder);
        copiesBesideTheLog += copies.size();
        for (const QString &copy : copies)
            QVERIFY(QFile::remove(logFolder + QLatin1Char('/') + copy));
    }
    qInfo("Load factor 1/%d, seed %u: %d programs killed, %d of them after a truncation; %d "
          "temporary files and %d copies beside the log are left",
          LOAD_FACTOR, seed, rounds, truncations, temporaryFiles, copiesBesideTheLog);
    if (!onWindows()) {
        QCOMPARE(temporaryFiles, 0);
        QVERIFY(copiesBesideTheLog <= MostCopies);
    }
}

QTEST_GUILESS_MAIN(TestLogKilled)

#include "tst_logkilled.moc"
