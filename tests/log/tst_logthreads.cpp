#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/Log.h>

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <array>
#include <thread>
#include <vector>

using namespace Vorn::Util;

namespace {

constexpr int ThreadCount = 8;
constexpr int LinesPerThread = 20000;
constexpr int PrefixLength = 11; // "[hh:mm:ss] "
constexpr int PieceSize = 255;

// A text of 60 to 200 bytes that no other thread and no other number has.
QByteArray message(int thread, int number)
{
    const int length = 60 + (thread * 31 + number * 17) % 140;
    QByteArray text = QByteArray::number(thread) + ' ' + QByteArray::number(number) + " \xC3\xA4 ";
    while (text.size() < length)
        text += static_cast<char>('a' + (thread + number + text.size()) % 26);
    return text;
}

qint64 lineLength(const QByteArray &text)
{
    return PrefixLength + text.size() + (onWindows() ? 2 : 1);
}

// What one thread saw and did.
struct Share
{
    qint64 written = 0;
    qint64 largest = 0;
};

void appendLines(Log &log, const QString &fileName, int thread, Share &share)
{
    for (int number = 0; number < LinesPerThread; ++number) {
        const QByteArray text = message(thread, number);
        log.append(QString::fromUtf8(text));
        share.written += lineLength(text);
        share.largest = std::max(share.largest, QFileInfo(fileName).size());
    }
}

} // namespace

class TestLogThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void noLineIsTornOrForeign();
    void eachThreadsLastLinesAreThereInTheirOrder();
    void nothingIsLostButWhatTruncationTakes();
    void theFileIsNeverLargerThanTheLimitAndOneLine();
    void theLogGoesOnInTheSameFile();

private:
    QTemporaryDir folder_;
    QString fileName_ = folder_.filePath(QStringLiteral("run.log"));
    std::array<Share, ThreadCount> shares_;
    QList<QByteArray> lines_;
    qint64 size_ = 0;
};

// Every thread appends its lines to one log; the tests look at what is left.
void TestLogThreads::initTestCase()
{
    QVERIFY(folder_.isValid());
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(false));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < ThreadCount; ++thread) {
        threads.emplace_back(appendLines, std::ref(log), fileName_, thread,
                             std::ref(shares_.at(static_cast<std::size_t>(thread))));
    }
    for (std::thread &thread : threads)
        thread.join();
    log.close();

    const QByteArray content = contentOf(fileName_);
    size_ = content.size();
    lines_ = content.split('\n');
    QVERIFY(lines_.takeLast().isEmpty());
    QVERIFY(lines_.size() > 1000);
    if (onWindows()) {
        for (QByteArray &line : lines_) {
            QVERIFY(line.endsWith('\r'));
            line.chop(1);
        }
    }
}

void TestLogThreads::noLineIsTornOrForeign()
{
    const QRegularExpression form(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] (\\d) (\\d+) "));
    for (const QByteArray &line : lines_) {
        const QRegularExpressionMatch match = form.match(QString::fromUtf8(line));
        QVERIFY2(match.hasMatch(), line.constData());
        const QByteArray text = message(match.captured(1).toInt(), match.captured(2).toInt());
        QCOMPARE(line.mid(PrefixLength), text);
    }
}

void TestLogThreads::eachThreadsLastLinesAreThereInTheirOrder()
{
    std::array<QList<int>, ThreadCount> numbers;
    for (const QByteArray &line : lines_) {
        const QList<QByteArray> words = line.split(' ');
        const int thread = words.value(1).toInt();
        QVERIFY(thread >= 0 && thread < ThreadCount);
        numbers.at(static_cast<std::size_t>(thread)).append(words.value(2).toInt());
    }
    for (const QList<int> &ofThread : numbers) {
        for (int i = 0; i < ofThread.size(); ++i)
            QCOMPARE(ofThread.at(i), LinesPerThread - ofThread.size() + i);
    }
}

// Each truncation takes more than a mebibyte and at most one piece more than that.
void TestLogThreads::nothingIsLostButWhatTruncationTakes()
{
    qint64 written = 0;
    for (const Share &share : shares_)
        written += share.written;
    const qint64 taken = written - size_;
    const qint64 truncations = taken / Log::AmountToTruncate;
    QVERIFY2(truncations >= 5, qPrintable(QString::number(truncations)));
    QVERIFY(taken > truncations * Log::AmountToTruncate);
    QVERIFY(taken <= truncations * (Log::AmountToTruncate + PieceSize));
    // And none came too early.
    QVERIFY(size_ > Log::MaxLogSize - Log::AmountToTruncate - PieceSize);
}

void TestLogThreads::theFileIsNeverLargerThanTheLimitAndOneLine()
{
    qint64 longest = 0;
    for (int thread = 0; thread < ThreadCount; ++thread) {
        for (int number = 0; number < LinesPerThread; ++number)
            longest = std::max(longest, lineLength(message(thread, number)));
    }
    qint64 largest = 0;
    for (const Share &share : shares_)
        largest = std::max(largest, share.largest);
    QVERIFY2(largest <= Log::MaxLogSize + longest, qPrintable(QString::number(largest)));
    QVERIFY(largest >= size_); // the last line was looked at too
}

void TestLogThreads::theLogGoesOnInTheSameFile()
{
    QCOMPARE(entriesOf(folder_.path()), QStringList{QStringLiteral("run.log")});
}

QTEST_GUILESS_MAIN(TestLogThreads)

#include "tst_logthreads.moc"
