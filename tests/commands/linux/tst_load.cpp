// What remains after long use: memory, descriptors, processes and files.

#include "FakeArchiver.h"
#include "ProcessState.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestMessages.h"
#include "TestTask.h"

#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Command.h>
#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

// Has a processor run many tasks, of which only a batch waits at any time.
class TaskSource : public QObject
{
public:
    TaskSource(AsyncTaskProcessor &processor, int count)
        : processor_(processor)
        , count_(count)
    {
        connect(&processor, &AsyncTaskProcessor::finished, this, [this] {
            ++finished_;
            if (finished_ == count_ / 10)
                early_ = residentMemory();
            if (processor_.isFinished())
                addBatch();
        });
        addBatch();
    }

    int finished() const { return finished_; }
    int order() const { return order_; }
    qint64 earlyMemory() const { return early_; }

private:
    void addBatch()
    {
        constexpr int BatchSize = 1000;
        for (int i = 0; i < BatchSize && added_ < count_; ++i) {
            const int number = added_++;
            const auto work = [this, number](TestTask &task) {
                if (number == order_)
                    ++order_; // equals the number of tasks as long as they run in order
                Q_EMIT task.progress(QStringLiteral("half"));
                task.setFinished();
            };
            processor_.addTask(new TestTask(QStringLiteral("Task %1").arg(number), work));
        }
    }

    AsyncTaskProcessor &processor_;
    int count_;
    int added_ = 0;
    int finished_ = 0;
    int order_ = 0;
    qint64 early_ = 0;
};

} // namespace

class TestLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void manyTasksDoNotFillTheMemory();
    void manyCommandsLeaveNothingBehind_data();
    void manyCommandsLeaveNothingBehind();
    void commandsThatAreNotWaitedForLeaveNoProcess();
    void outputThatIsNotReturnedIsNotKept_data();
    void outputThatIsNotReturnedIsNotKept();
    void manyArchiveOperationsLeaveNoProcess_data();
    void manyArchiveOperationsLeaveNoProcess();

private:
    TestFolder folder_;
    QString start_;
};

void TestLoad::initTestCase()
{
    start_ = QDir::currentPath();
    QVERIFY(QFile::exists(System::getCurrentExePath() + QStringLiteral("/7z.exe")));
}

void TestLoad::init()
{
    QVERIFY(QDir::setCurrent(folder_.path()));
}

void TestLoad::cleanup()
{
    QCOMPARE(entriesOf(folder_.path()), QStringList());
}

void TestLoad::cleanupTestCase()
{
    QVERIFY(QDir::setCurrent(start_));
}

void TestLoad::manyTasksDoNotFillTheMemory()
{
    constexpr int Count = 1000000 / LOAD_FACTOR;
    constexpr qint64 Most = 4 * MiB;
    AsyncTaskProcessor processor;
    processor.setExitEventLoopWhenDone(true);
    const TaskSource source(processor, Count);
    QElapsedTimer timer;
    timer.start();
    processor.startLater();
    QCOMPARE(QCoreApplication::exec(), 0);
    const qint64 late = residentMemory();
    qInfo("Load factor 1/%d: %d tasks in %lld ms, %lld KiB held after a tenth, %lld KiB at the end",
          LOAD_FACTOR, Count, timer.elapsed(), source.earlyMemory() / 1024, late / 1024);
    QCOMPARE(source.finished(), Count);
    QCOMPARE(source.order(), Count);
    QVERIFY(processor.isOk());
    QVERIFY(processor.children().isEmpty());
    if (LOAD_FACTOR == 1) // a sanitizer keeps what was freed
        QVERIFY(late - source.earlyMemory() <= Most);
}

void TestLoad::manyCommandsLeaveNothingBehind_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("count");
    QTest::newRow("read to its end")
        << QStringLiteral("echo text") << QStringLiteral("text\n") << 1000 / LOAD_FACTOR;
    QTest::newRow("not read to its end") << QStringLiteral("echo a; echo b; echo c; echo d >&2")
                                         << QStringLiteral("a\nb\n") << 300 / LOAD_FACTOR;
    QTest::newRow("ended by a signal")
        << QStringLiteral("echo a; kill -9 $$") << QStringLiteral("a\n") << 300 / LOAD_FACTOR;
}

void TestLoad::manyCommandsLeaveNothingBehind()
{
    QFETCH(QString, text);
    QFETCH(QString, output);
    QFETCH(int, count);
    Command command;
    // The first call creates what is kept for later calls.
    QCOMPARE(command.run(text, 0, false), output);
    const int descriptors = openDescriptors();
    const int children = childProcesses().size();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        if (i % 3 == 0)
            QCOMPARE(command.run(text, 0, false), output);
        else if (i % 3 == 1)
            QCOMPARE(command.runL(text, 0, false).join(QString()), output);
        else
            command.runQ(text);
    }
    qInfo("Load factor 1/%d: %d commands in %lld ms", LOAD_FACTOR, count, timer.elapsed());
    QCOMPARE(openDescriptors(), descriptors);
    QCOMPARE(childProcesses().size(), children);
}

// Their objects stay, but once the event loop has seen their end they hold nothing else.
void TestLoad::commandsThatAreNotWaitedForLeaveNoProcess()
{
    constexpr int Count = 100 / LOAD_FACTOR;
    Command command;
    const int descriptors = openDescriptors();
    const int children = childProcesses().size();
    for (int i = 0; i < Count; ++i)
        QCOMPARE(command.runNoWait(QStringLiteral("exit 3"), false, QString()), 0);
    const int most = openDescriptors();
    QTRY_COMPARE(childProcesses().size(), children);
    QTRY_COMPARE(openDescriptors(), descriptors);
    qInfo("Load factor 1/%d: %d commands held %d descriptors before the event loop ran, none after",
          LOAD_FACTOR, Count, most - descriptors);
}

void TestLoad::outputThatIsNotReturnedIsNotKept_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("channel");
    QTest::newRow("run, standard output") << QStringLiteral("run") << QString();
    QTest::newRow("run, standard error") << QStringLiteral("run") << QStringLiteral(">&2");
    QTest::newRow("runL, standard output") << QStringLiteral("runL") << QString();
    QTest::newRow("runQ, standard output") << QStringLiteral("runQ") << QString();
    QTest::newRow("runQ, standard error") << QStringLiteral("runQ") << QStringLiteral(">&2");
}

void TestLoad::outputThatIsNotReturnedIsNotKept()
{
    QFETCH(QString, operation);
    QFETCH(QString, channel);
    constexpr qint64 Printed = 200 * MiB / LOAD_FACTOR;
    constexpr qint64 Most = 4 * MiB;
    constexpr int MaxLines = 30;
    const QString text = QStringLiteral("yes | head -c %1 %2; echo last").arg(Printed).arg(channel);
    const qint64 before = residentMemory();
    QVERIFY(restartPeakMemory());
    QElapsedTimer timer;
    timer.start();
    if (operation == QLatin1String("runQ"))
        QCOMPARE(Command().runQ(text), 0);
    else if (operation == QLatin1String("runL"))
        QCOMPARE(Command().runL(text, MaxLines, false).size(), MaxLines + 2);
    else
        QVERIFY(
            Command()
                .run(text, MaxLines, false)
                .endsWith(channel.isEmpty() ? QStringLiteral("y\n") : QStringLiteral("last\n")));
    const qint64 kept = peakMemory() - before;
    qInfo("Load factor 1/%d: %lld MiB printed in %lld ms, %lld KiB held at most", LOAD_FACTOR,
          Printed / MiB, timer.elapsed(), kept / 1024);
    if (LOAD_FACTOR == 1) // a sanitizer keeps what was freed
        QVERIFY2(kept <= Most, qPrintable(QString::number(kept)));
}

void TestLoad::manyArchiveOperationsLeaveNoProcess_data()
{
    QTest::addColumn<bool>("blocking");
    QTest::newRow("blocking") << true;
    QTest::newRow("asynchronous") << false;
}

// The commands stay children of the object, but those that have ended hold nothing else.
void TestLoad::manyArchiveOperationsLeaveNoProcess()
{
    QFETCH(bool, blocking);
    constexpr int Count = 200 / LOAD_FACTOR;
    constexpr int LongestWait = 30; // seconds
    QStringList files;
    for (int number = 0; number < 33; ++number) // in a list file
        files += QStringLiteral("file %1").arg(number);
    auto messages = std::make_unique<TestMessages>(); // the command lines
    const FakeArchiver fake;
    SevenZip archive;
    int ended = 0;
    QTestEventLoop loop;
    const auto end = [&ended, &loop] {
        ++ended;
        loop.exitLoop();
    };
    connect(&archive, &SevenZip::compressionFinished, this, end);
    connect(&archive, &SevenZip::extractionFinished, this, end);
    connect(&archive, &SevenZip::listFinished, this, end);
    const int descriptors = openDescriptors();
    const int children = childProcesses().size();
    const qint64 memory = residentMemory();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < Count; ++i) {
        if (blocking) {
            QVERIFY(i % 3 == 0       ? archive.compressFiles(files)
                        : i % 3 == 1 ? archive.extractFilesTo(QStringLiteral("to"))
                                     : archive.listFiles());
            continue;
        }
        if (i % 3 == 0)
            archive.startCompressingFiles(files);
        else if (i % 3 == 1)
            archive.startExtractingFilesTo(QStringLiteral("to"));
        else
            archive.startListingFiles();
        loop.enterLoop(LongestWait);
        QCOMPARE(ended, i + 1);
        QVERIFY(archive.isOk());
    }
    messages.reset();
    const int descriptorsLeft = openDescriptors() - descriptors;
    const int childrenLeft = childProcesses().size() - children;
    qInfo("Load factor 1/%d: %d operations in %lld ms leave %d descriptors, %d processes and %lld "
          "KiB of memory",
          LOAD_FACTOR, Count, timer.elapsed(), descriptorsLeft, childrenLeft,
          (residentMemory() - memory) / 1024);
    QCOMPARE(ended, Count);
    QCOMPARE(archive.children().size(), Count);
    QCOMPARE(descriptorsLeft, 0);
    QCOMPARE(childrenLeft, 0);
}

QTEST_GUILESS_MAIN(TestLoad)

#include "tst_load.moc"
