// An archiver that does not start, hangs, is killed or prints what no archiver prints, and a list
// file that another process attacks.

#include "Adversary.h"
#include "BuildPaths.h"
#include "FakeArchiver.h"
#include "OwnTempFolder.h"
#include "ProcessState.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestMessages.h"

#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <csignal>
#include <memory>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

constexpr int FloodSize = 100 / LOAD_FACTOR; // in MiB, more than one
constexpr int Operations = 3;

QString archiverFile()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/7z.exe");
}

bool run(SevenZip &archive, int operation)
{
    switch (operation) {
    case 0:
        return archive.compressFiles({QStringLiteral("f")});
    case 1:
        return archive.extractFilesTo(QStringLiteral("to"));
    default:
        return archive.listFiles();
    }
}

void start(SevenZip &archive, int operation)
{
    switch (operation) {
    case 0:
        archive.startCompressingFiles({QStringLiteral("f")});
        break;
    case 1:
        archive.startExtractingFilesTo(QStringLiteral("to"));
        break;
    default:
        archive.startListingFiles();
    }
}

// Counts the signals compressionFinished, extractionFinished and listFinished.
class Ends : public QObject
{
public:
    explicit Ends(const SevenZip &archive)
    {
        connect(&archive, &SevenZip::compressionFinished, this, [this] { ++count_; });
        connect(&archive, &SevenZip::extractionFinished, this, [this] { ++count_; });
        connect(&archive, &SevenZip::listFinished, this, [this] { ++count_; });
    }

    int count() const { return count_; }

private:
    int count_ = 0;
};

// Qt 6.4 leaves a descriptor open for each program that cannot be started.
int descriptorsLeftByQt()
{
    const int before = openDescriptors();
    {
        QProcess process;
        process.start(QStringLiteral("./missing"), QStringList());
        process.waitForFinished();
    }
    return openDescriptors() - before;
}

void addOperations()
{
    QTest::addColumn<int>("operation");
    QTest::newRow("compression") << 0;
    QTest::newRow("extraction") << 1;
    QTest::newRow("listing") << 2;
}

// Lines that every reader ignores.
QByteArray idleLines(qint64 size)
{
    QByteArray lines;
    while (lines.size() < size)
        lines += "Compressing  a file of some name, number " + QByteArray::number(lines.size())
            + '\n';
    return lines;
}

} // namespace

class TestArchiverFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void cleanupTestCase();

    void aListFileIsNotWrittenThroughALinkThatIsPutThereMeanwhile();
    void anArchiverThatCannotBeStartedGivesFalseAndNoSignal_data();
    void anArchiverThatCannotBeStartedGivesFalseAndNoSignal();
    void anObjectWorksOnWhenTheArchiverIsThereAgain();
    void aKilledArchiverIsAFatalError_data();
    void aKilledArchiverIsAFatalError();
    void aHangingArchiverLeavesTheProgramAnswerable_data();
    void aHangingArchiverLeavesTheProgramAnswerable();
    void anObjectMayBeDestroyedWhileItsArchiverHangs_data();
    void anObjectMayBeDestroyedWhileItsArchiverHangs();
    void anObjectMayBeDestroyedWhenItsArchiverPrints();
    void anObjectMayBeDestroyedInItsOwnSignal_data();
    void anObjectMayBeDestroyedInItsOwnSignal();
    void aFloodOfLinesDoesNotFillTheMemory_data();
    void aFloodOfLinesDoesNotFillTheMemory();
    void aFloodWithoutALineEndEnds();
    void bytesThatAreNoTextDoNoHarm_data();
    void bytesThatAreNoTextDoNoHarm();

private:
    OwnTempFolder temp_;
    std::unique_ptr<TestMessages> messages_;
};

void TestArchiverFaults::init()
{
    messages_ = std::make_unique<TestMessages>(); // the command lines
    QFile::remove(archiverFile());
    QVERIFY(QFile::copy(BuildPaths::fakeArchiver(), archiverFile()));
}

// No test leaves a process, not even one that has ended.
void TestArchiverFaults::cleanup()
{
    messages_.reset();
    QTRY_VERIFY(childProcesses().isEmpty());
}

void TestArchiverFaults::cleanupTestCase()
{
    QVERIFY(QFile::remove(archiverFile()));
}

// The archiver does not start, so that a round takes little time. Then nobody removes the list
// file.
void TestArchiverFaults::aListFileIsNotWrittenThroughALinkThatIsPutThereMeanwhile()
{
    constexpr int Rounds = 200;
    QVERIFY(temp_.isUsed());
    QVERIFY(QFile::setPermissions(archiverFile(), QFile::ReadOwner | QFile::WriteOwner));
    QStringList names;
    for (int number = 0; number < 33; ++number)
        names.append(QString::number(number));
    const QByteArray listFile = QFile::encodeName(temp_.filePath(QStringLiteral("listfile.tmp")));
    const QString target = temp_.filePath(QStringLiteral("target"));
    const QByteArray targetName = QFile::encodeName(target);
    const Adversary adversary([&](std::atomic<int> &count) {
        if (symlink(targetName.constData(), listFile.constData()) == 0) {
            unlink(listFile.constData());
            ++count;
        }
    });
    QVERIFY(adversary.isRunning());
    QDir folder(temp_.path());
    for (int round = 0; round < Rounds; ++round) {
        SevenZip archive;
        QVERIFY(!archive.compressFiles(names));
        QVERIFY(!QFile::exists(target));
        for (const QString &name : folder.entryList(QDir::Files | QDir::System))
            folder.remove(name);
        adversary.waitForWork();
    }
    QVERIFY(adversary.count() >= Rounds);
}

void TestArchiverFaults::anArchiverThatCannotBeStartedGivesFalseAndNoSignal_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"not executable", "empty", "no program", "a folder"})
        QTest::newRow(fault) << QString::fromLatin1(fault);
}

void TestArchiverFaults::anArchiverThatCannotBeStartedGivesFalseAndNoSignal()
{
    QFETCH(QString, fault);
    const QFile::Permissions permissions = QFile::permissions(archiverFile());
    if (fault == QLatin1String("not executable")) {
        QVERIFY(QFile::setPermissions(archiverFile(), QFile::ReadOwner | QFile::WriteOwner));
    } else {
        QVERIFY(QFile::remove(archiverFile()));
        if (fault == QLatin1String("a folder")) {
            QVERIFY(QDir().mkdir(archiverFile()));
        } else {
            QVERIFY(writeFile(archiverFile(),
                              fault == QLatin1String("empty") ? QByteArray() : "no program"));
            QVERIFY(QFile::setPermissions(archiverFile(), permissions));
        }
    }
    const FakeArchiver fake;
    SevenZip archive;
    const Ends ends(archive);
    const int leftByQt = 2 * Operations * descriptorsLeftByQt();
    const int descriptors = openDescriptors() + leftByQt;
    for (int operation = 0; operation < Operations; ++operation) {
        QVERIFY(!run(archive, operation));
        start(archive, operation);
    }
    bool isLater = false;
    QTimer::singleShot(100, this, [&isLater] { isLater = true; });
    QTRY_VERIFY(isLater);
    QCOMPARE(ends.count(), 0);
    QVERIFY(!fake.wasCalled());
    QCOMPARE(openDescriptors(), descriptors);
    QDir().rmdir(archiverFile());
}

void TestArchiverFaults::anObjectWorksOnWhenTheArchiverIsThereAgain()
{
    QVERIFY(QFile::setPermissions(archiverFile(), QFile::ReadOwner | QFile::WriteOwner));
    FakeArchiver fake;
    fake.print("Extracting  a\n");
    SevenZip archive;
    const Ends ends(archive);
    QVERIFY(!archive.extractFilesTo(QStringLiteral("to")));
    QVERIFY(QFile::setPermissions(archiverFile(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QCOMPARE(archive.files(), QStringList{QStringLiteral("a")});
    QCOMPARE(ends.count(), 1);
}

void TestArchiverFaults::aKilledArchiverIsAFatalError_data()
{
    addOperations();
}

void TestArchiverFaults::aKilledArchiverIsAFatalError()
{
    QFETCH(int, operation);
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("never"));
    SevenZip archive;
    const Ends ends(archive);
    start(archive, operation);
    QTRY_VERIFY(fake.wasCalled());
    const QList<pid_t> children = childProcesses();
    QCOMPARE(children.size(), 1);
    QCOMPARE(ends.count(), 0);
    QCOMPARE(kill(children.first(), SIGKILL), 0);
    QTRY_COMPARE(ends.count(), 1);
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(!archive.isOk());
}

void TestArchiverFaults::aHangingArchiverLeavesTheProgramAnswerable_data()
{
    addOperations();
}

void TestArchiverFaults::aHangingArchiverLeavesTheProgramAnswerable()
{
    QFETCH(int, operation);
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("go on"));
    SevenZip archive;
    const Ends ends(archive);
    start(archive, operation);
    QTRY_VERIFY(fake.wasCalled());
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&turns] { ++turns; });
    timer.start(0);
    QTRY_VERIFY(turns >= 1000);
    QCOMPARE(ends.count(), 0);
    QVERIFY(archive.isOk());
    {
        const FakeArchiver other; // the script for the archivers started from here on
        SevenZip second;
        for (int i = 0; i < Operations; ++i)
            QVERIFY(run(second, i));
        QVERIFY(other.wasCalled());
    }
    QCOMPARE(ends.count(), 0);
    QVERIFY(fake.goOn(QStringLiteral("go on")));
    QTRY_COMPARE(ends.count(), 1);
    QVERIFY(archive.isOk());
}

void TestArchiverFaults::anObjectMayBeDestroyedWhileItsArchiverHangs_data()
{
    addOperations();
}

void TestArchiverFaults::anObjectMayBeDestroyedWhileItsArchiverHangs()
{
    QFETCH(int, operation);
    FakeArchiver fake;
    fake.print("Extracting  a\nhalf a line").waitFor(QStringLiteral("never"));
    auto archive = std::make_unique<SevenZip>();
    start(*archive, operation);
    QTRY_VERIFY(fake.wasCalled());
    archive.reset();
    const QList<pid_t> children = childProcesses();
    QCOMPARE(children.size(), 1);
    QCOMPARE(kill(children.first(), SIGKILL), 0);
}

void TestArchiverFaults::anObjectMayBeDestroyedWhenItsArchiverPrints()
{
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("go on")).flood(idleLines(MiB), 5).exit(2);
    auto archive = std::make_unique<SevenZip>();
    archive->startExtractingFilesTo(QStringLiteral("to"));
    QTRY_VERIFY(fake.wasCalled());
    archive.reset();
    QVERIFY(fake.goOn(QStringLiteral("go on")));
    QTRY_VERIFY(childProcesses().isEmpty()); // it was not held up by a full pipe
}

void TestArchiverFaults::anObjectMayBeDestroyedInItsOwnSignal_data()
{
    addOperations();
}

void TestArchiverFaults::anObjectMayBeDestroyedInItsOwnSignal()
{
    QFETCH(int, operation);
    FakeArchiver fake;
    fake.print("Extracting  a\nrest").crash();
    auto *archive = new SevenZip;
    bool isGone = false;
    const auto destroy = [&archive, &isGone] {
        delete archive;
        isGone = true;
    };
    connect(archive, &SevenZip::compressionFinished, this, destroy);
    connect(archive, &SevenZip::extractionFinished, this, destroy);
    connect(archive, &SevenZip::listFinished, this, destroy);
    start(*archive, operation);
    QTRY_VERIFY(isGone);
}

void TestArchiverFaults::aFloodOfLinesDoesNotFillTheMemory_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<bool>("blocking");
    for (const bool blocking : {true, false}) {
        const char *form = blocking ? "blocking" : "asynchronous";
        QTest::addRow("compression, %s", form) << 0 << blocking;
        QTest::addRow("extraction, %s", form) << 1 << blocking;
        QTest::addRow("listing, %s", form) << 2 << blocking;
    }
}

void TestArchiverFaults::aFloodOfLinesDoesNotFillTheMemory()
{
    QFETCH(int, operation);
    QFETCH(bool, blocking);
    constexpr qint64 Most = 24 * MiB;
    FakeArchiver fake;
    constexpr int BlocksPerMiB = 64; // small, so that the freed memory can be used again
    fake.flood(idleLines(MiB / BlocksPerMiB), FloodSize * BlocksPerMiB);
    SevenZip archive;
    const Ends ends(archive);
    if (!restartPeakMemory())
        QSKIP("This system does not measure the peak of the memory anew");
    const qint64 before = residentMemory();
    QElapsedTimer timer;
    timer.start();
    if (blocking) {
        QVERIFY(run(archive, operation));
    } else {
        start(archive, operation);
        QTRY_COMPARE_WITH_TIMEOUT(ends.count(), 1, 60000);
    }
    const qint64 more = peakMemory() - before;
    messages_.reset();
    qInfo("Load factor 1/%d: %d MiB printed, read in %lld ms, %lld KiB of memory more at most",
          LOAD_FACTOR, FloodSize, timer.elapsed(), more / 1024);
    QVERIFY(archive.isOk());
    if (LOAD_FACTOR == 1) // a sanitizer keeps what was freed
        QVERIFY2(more < Most, qPrintable(QString::number(more)));
    QCOMPARE(archive.files().size(), operation == 0 ? 1 : 0);
}

// Of a line only the beginning is kept.
void TestArchiverFaults::aFloodWithoutALineEndEnds()
{
    constexpr qint64 Most = 24 * MiB;
    FakeArchiver fake;
    fake.print("Extracting  ").flood(QByteArray(1024, 'x'), FloodSize * 1024);
    fake.print("\nExtracting  a\n");
    SevenZip archive;
    if (!restartPeakMemory())
        QSKIP("This system does not measure the peak of the memory anew");
    const qint64 before = residentMemory();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    const qint64 more = peakMemory() - before;
    messages_.reset();
    qInfo("Load factor 1/%d: a line of %d MiB read in %lld ms, %lld KiB of memory more at most",
          LOAD_FACTOR, FloodSize, timer.elapsed(), more / 1024);
    if (LOAD_FACTOR == 1) // a sanitizer keeps what was freed
        QVERIFY2(more < Most, qPrintable(QString::number(more)));
    QCOMPARE(archive.files().size(), 2);
    QCOMPARE(archive.files().first().size(), int(MiB - qstrlen("Extracting  ")));
    QCOMPARE(archive.files().last(), QStringLiteral("a"));
}

void TestArchiverFaults::bytesThatAreNoTextDoNoHarm_data()
{
    addOperations();
}

void TestArchiverFaults::bytesThatAreNoTextDoNoHarm()
{
    QFETCH(int, operation);
    constexpr quint32 Seed = 20240305;
    QRandomGenerator random(Seed);
    QByteArray noise;
    while (noise.size() < MiB) // one word in three ends a line or a field
        noise += static_cast<char>(random.bounded(3) == 0 ? "\n \0\r\t-"[random.bounded(6)]
                                                          : random.bounded(256));
    FakeArchiver fake;
    fake.flood(noise, 1).print("\nExtracting  a\n");
    fake.print("\n--------\n").flood(noise, 1).print("\n--------\n").flood(noise, 1);
    SevenZip archive;
    QVERIFY(run(archive, operation));
    QVERIFY(archive.isOk());
    if (operation == 1)
        QCOMPARE(archive.files(), QStringList{QStringLiteral("a")});
}

QTEST_GUILESS_MAIN(TestArchiverFaults)

#include "tst_archiverfaults.moc"
