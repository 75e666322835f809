// Many threads and several programs write to one log.

#include "BuildPaths.h"
#include "NumberedLines.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <Utility/Log.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <array>
#include <memory>
#include <thread>
#include <vector>

using namespace Vorn::Util;

namespace {

constexpr int ThreadCount = 8;
constexpr int LinesPerThread = 200000 / LOAD_FACTOR;
constexpr int ProgramCount = 2;
constexpr int LinesPerProgram = 20000 / LOAD_FACTOR;
constexpr int PieceSize = 255;

QString nameOf(int writer)
{
    return QStringLiteral("writer%1").arg(writer);
}

// The content of a log: per writer, the number of its first line and how many follow without a
// gap and in their order.
struct Share
{
    int first = -1;
    int count = 0;
};

// False when a line is none of those that the writers wrote, or out of its order.
template <std::size_t Count>
bool readShares(const QByteArray &log, std::array<Share, Count> &shares)
{
    const int length = NumberedLineLength + lineEnd().size();
    if (log.size() % length != 0)
        return false;
    for (int from = 0; from < log.size(); from += length) {
        const int writer = log.at(from + QByteArray(" writer").size()) - '0';
        const int number = log.mid(from + QByteArray(" writerN ").size(), 9).toInt();
        if (writer < 0 || writer >= static_cast<int>(Count))
            return false;
        Share &share = shares.at(static_cast<std::size_t>(writer));
        if (share.first < 0)
            share.first = number;
        if (number != share.first + share.count
            || log.mid(from, length)
                != ' ' + numberedLine(nameOf(writer), number).toUtf8() + lineEnd())
            return false;
        ++share.count;
    }
    return true;
}

} // namespace

class TestLogLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threadsLoseNoLineButThoseThatTruncationTakes();
    void programsLoseNoLineBelowTheLimit();
};

void TestLogLoad::threadsLoseNoLineButThoseThatTruncationTakes()
{
    const TestFolder folder;
    Log log(folder.filePath(QStringLiteral("run.log")), Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(false));
    QElapsedTimer timer;
    timer.start();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < ThreadCount; ++thread) {
        threads.emplace_back([&log, thread] {
            for (int number = 0; number < LinesPerThread; ++number)
                log.append(numberedLine(nameOf(thread), number));
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    qInfo("Load factor 1/%d: %d threads wrote %d lines each in %lld ms", LOAD_FACTOR, ThreadCount,
          LinesPerThread, timer.elapsed());

    const QByteArray content = contentOf(log.name());
    std::array<Share, ThreadCount> shares;
    QVERIFY(readShares(content, shares));
    for (const Share &share : shares) {
        // A thread that ended early may have no line left after the truncation.
        if (share.count > 0)
            QCOMPARE(share.first + share.count, LinesPerThread);
    }
    const qint64 written
        = static_cast<qint64>(NumberedLineLength + lineEnd().size()) * ThreadCount * LinesPerThread;
    const qint64 taken = written - content.size();
    const qint64 truncations = taken / Log::AmountToTruncate;
    QVERIFY(truncations >= 5);
    QVERIFY(taken > truncations * Log::AmountToTruncate);
    QVERIFY(taken <= truncations * (Log::AmountToTruncate + PieceSize));
    QVERIFY(content.size() > Log::MaxLogSize - Log::AmountToTruncate - PieceSize);
    QCOMPARE(entriesOf(folder.path()), QStringList{QStringLiteral("run.log")});
}

void TestLogLoad::programsLoseNoLineBelowTheLimit()
{
    if (onWindows())
        QSKIP("On Windows Qt appends where the file ended when it was opened");
    const TestFolder folder;
    const QString fileName = folder.filePath(QStringLiteral("run.log"));
    std::array<QProcess, ProgramCount> programs;
    for (int writer = 0; writer < ProgramCount; ++writer) {
        QProcess &program = programs.at(static_cast<std::size_t>(writer));
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(BuildPaths::helperProgram(),
                      {QStringLiteral("log-append-lines"), fileName, nameOf(writer),
                       QString::number(LinesPerProgram)});
        QVERIFY(program.waitForReadyRead()); // it has the log open
    }
    for (QProcess &program : programs) {
        program.write("\n");
        QVERIFY(program.waitForBytesWritten());
    }
    for (QProcess &program : programs) {
        QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
    }
    const QByteArray content = contentOf(fileName);
    QVERIFY(content.size() <= Log::MaxLogSize);
    std::array<Share, ProgramCount> shares;
    QVERIFY(readShares(content, shares));
    for (const Share &share : shares) {
        QCOMPARE(share.first, 0);
        QCOMPARE(share.count, LinesPerProgram);
    }
    qInfo("Load factor 1/%d: %d programs wrote %d lines each", LOAD_FACTOR, ProgramCount,
          LinesPerProgram);
}

QTEST_GUILESS_MAIN(TestLogLoad)

#include "tst_logload.moc"
