// Files that are written while the disk is full or no further file can be opened.

#include "BuildPaths.h"
#include "DescriptorLimit.h"
#include "FakeArchiver.h"
#include "FileSizeLimit.h"
#include "NumberedLines.h"
#include "OtherFileSystem.h"
#include "OwnTempFolder.h"
#include "ProcessState.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestMessages.h"

#include <Utility/Command.h>
#include <Utility/CpuInfo.h>
#include <Utility/Log.h>
#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QByteArray lineOf(int number)
{
    return ' ' + numberedLine(QStringLiteral("line"), number).toUtf8() + '\n';
}

QByteArray tooLargeLog()
{
    QByteArray log;
    for (int number = 0; log.size() <= Log::MaxLogSize; ++number)
        log += lineOf(number);
    return log;
}

// All lines are of one length, so that the first whole one after a mebibyte is easily found.
QByteArray tailOf(const QByteArray &log)
{
    const int length = lineOf(0).size();
    return log.mid((static_cast<int>(Log::AmountToTruncate) / length + 1) * length);
}

struct Counts
{
    explicit Counts(const CpuInfo &info)
        : processors(info.processorCount())
        , cores(info.coreCount())
        , threads(info.isHyperThreadingOn())
    {
    }

    bool operator==(const Counts &other) const
    {
        return processors == other.processors && cores == other.cores && threads == other.threads;
    }

    bool areDefaults() const { return processors == 1 && cores == 1 && !threads; }

    int processors;
    int cores;
    bool threads;
};

} // namespace

class TestFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void aFullDiskTakesWholeLinesOfALog();
    void aFullDiskDoesNotFillTheMemory();
    void aLogOnAFullDeviceLosesItsLines();
    void aLogThatCannotBeTruncatedIsTruncatedWhenThereIsSpaceAgain();
    void withoutSpaceBesideTheLogItStaysAsItWas();
    void aTailThatFillsTheDiskDoesNotReplaceTheLog();
    void withoutAFreeDescriptorTheLogIsStillWritten();

    void withoutAFreeDescriptorACommandPrintsNothing();
    void halfAScriptIsNeverRun_data();
    void halfAScriptIsNeverRun();
    void withoutAFreeDescriptorTheArchiverGivesFalseAndNoSignal();

    void aListFileThatIsNotWrittenWholeEndsTheCompression_data();
    void aListFileThatIsNotWrittenWholeEndsTheCompression();
    void aListFileOfSomebodyElseIsNotRemoved();
    void anArchiveWithoutAWholeListFileMayBeDestroyed();

    void aFullDiskLeavesTheCountsOfTheSystemAndNoFile();
    void aTruncatedInformationFileGivesItsCountsOrTheDefaults();
    void anInformationFileOnADeviceLeavesTheDefaults();

private:
    TestFolder folder_;
    QString fileName_ = folder_.filePath(QStringLiteral("run.log"));
    OwnTempFolder temp_; // of the list files
};

void TestFullDisk::initTestCase()
{
    QVERIFY(folder_.isValid());
    QVERIFY(temp_.isUsed());
}

void TestFullDisk::init()
{
    QFile::remove(fileName_);
}

// A line that does not fit on the disk is lost as a whole, or is written when there is space again.
void TestFullDisk::aFullDiskTakesWholeLinesOfALog()
{
    constexpr int Before = 100;
    constexpr int During = 2000;
    constexpr int After = 10;
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    int number = 0;
    for (; number < Before; ++number)
        log.append(numberedLine(QStringLiteral("line"), number));
    const int length = lineOf(0).size();
    const int bytes = Before * length + length / 2;
    QByteArray content;
    {
        const FileSizeLimit limit(bytes);
        QVERIFY(limit.isSet());
        for (; number < Before + During; ++number)
            log.append(numberedLine(QStringLiteral("line"), number));
        content = contentOf(fileName_);
    }
    QCOMPARE(content.size(), bytes);
    for (; number < Before + During + After; ++number)
        log.append(numberedLine(QStringLiteral("line"), number));
    log.close();

    content = contentOf(fileName_);
    QCOMPARE(content.size() % length, 0);
    int last = -1;
    for (int from = 0; from < content.size(); from += length) {
        const int next = content.mid(from + QByteArray(" line ").size(), 9).toInt();
        QVERIFY(next > last);
        QCOMPARE(content.mid(from, length), lineOf(next));
        last = next;
    }
    QCOMPARE(last, number - 1);
    for (int i = 0; i < Before; ++i)
        QCOMPARE(content.mid(i * length, length), lineOf(i));
    for (int i = 1; i <= After; ++i)
        QCOMPARE(content.mid(content.size() - i * length, length), lineOf(number - i));
}

void TestFullDisk::aFullDiskDoesNotFillTheMemory()
{
    constexpr int Lines = 200000 / LOAD_FACTOR; // 20 MB
    Log log(fileName_, Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    qint64 before = 0;
    qint64 after = 0;
    {
        const FileSizeLimit limit(1000);
        for (int number = 0; number < Lines; ++number) {
            log.append(numberedLine(QStringLiteral("line"), number));
            if (number == Lines / 10)
                before = residentMemory();
        }
        after = residentMemory();
    }
    if (LOAD_FACTOR == 1) // a sanitizer keeps what was freed
        QVERIFY2(after - before < 2 * MiB, qPrintable(QString::number(after - before)));
    QCOMPARE(QFileInfo(fileName_).size(), Q_INT64_C(1000));
}

void TestFullDisk::aLogOnAFullDeviceLosesItsLines()
{
    Log log(QStringLiteral("/dev/full"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("line"));
    log.fastAppend(QString(100000, QLatin1Char('x')));
    log << QStringLiteral("text") << 'c' << 1 << 2.5;
    log.flush();
    log.close();
    QVERIFY(log.open(true)); // and closed by the destructor
    log.append(QStringLiteral("line"));
}

void TestFullDisk::aLogThatCannotBeTruncatedIsTruncatedWhenThereIsSpaceAgain()
{
    const QByteArray before = tooLargeLog();
    QVERIFY(writeFile(fileName_, before));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QByteArray content;
    bool isOpen = false;
    {
        const FileSizeLimit limit(Log::MaxLogSize / 2);
        isOpen = log.open(true);
        log.append(QStringLiteral("lost or late"));
        content = contentOf(fileName_);
    }
    QVERIFY(isOpen);
    QVERIFY(content == before);
    log.append(QStringLiteral("again"));
    content = contentOf(fileName_);
    QVERIFY(content.startsWith(tailOf(before)));
    const QByteArray rest = content.mid(tailOf(before).size());
    QVERIFY2(rest == " again\n" || rest == " lost or late\n again\n", rest.constData());
}

// On a file system of its own, which has space for the log but not for its tail beside it.
void TestFullDisk::withoutSpaceBesideTheLogItStaysAsItWas()
{
    const QString mount = folder_.filePath(QStringLiteral("mount"));
    const QString copy = folder_.filePath(QStringLiteral("copy.log"));
    const QString names = folder_.filePath(QStringLiteral("names"));
    QVERIFY(QDir().mkpath(mount));
    const QByteArray log = tooLargeLog();
    QVERIFY(writeFile(fileName_, log));
    constexpr int Failed = 5;
    const QString script = QStringLiteral(
        "mount -t tmpfs -o size=8m tmpfs \"$1\" || exit 1\n"
        "cp \"$2\" \"$1/run.log\" && \"$0\" log-check \"$1/run.log\" 2> /dev/null || exit 5\n"
        "cp \"$1/run.log\" \"$3\" && ls -A \"$1\" > \"$4\" || exit 5\n");
    const int exitCode = QProcess::execute(
        QStringLiteral("unshare"),
        {QStringLiteral("--map-root-user"), QStringLiteral("--mount"), QStringLiteral("sh"),
         QStringLiteral("-c"), script, BuildPaths::helperProgram(), mount, fileName_, copy, names});
    if (exitCode != 0 && exitCode != Failed)
        QSKIP("This account cannot mount a file system of its own");
    QCOMPARE(exitCode, 0);
    QVERIFY(contentOf(copy) == log);
    QCOMPARE(contentOf(names), QByteArray("run.log\n"));
}

// The limit on the size of a file is reached in the last bytes of the tail.
void TestFullDisk::aTailThatFillsTheDiskDoesNotReplaceTheLog()
{
    constexpr int Space = 16 << 18; // for all of the tail but its last bytes
    constexpr int Rest = 1000;
    const int offset = tooLargeLog().size() - tailOf(tooLargeLog()).size();
    const QByteArray log = tooLargeLog().leftJustified(offset + Space + Rest, '.', true);
    QVERIFY(log.size() > Log::MaxLogSize);
    QVERIFY(writeFile(fileName_, log));
    const TestMessages messages;
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(temp_.path()));
    {
        const FileSizeLimit limit(Space + Rest / 2);
        Log(fileName_, Log::NoFileTimeStamp).append(QStringLiteral("lost"));
    }
    const QByteArray content = contentOf(fileName_);
    const QStringList left = entriesOf(temp_.path());
    Log(fileName_, Log::NoFileTimeStamp).append(QStringLiteral("lost"));
    if (before.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", before);
    QVERIFY(content == log);
    QCOMPARE(left, QStringList());
    QVERIFY(contentOf(fileName_) == log.mid(offset)); // with enough space
}

void TestFullDisk::withoutAFreeDescriptorTheLogIsStillWritten()
{
    if (LOAD_FACTOR > 1)
        QSKIP("The sanitizer needs a descriptor (a pipe) when it checks the type of an object");
    const QByteArray before = tooLargeLog();
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    QVERIFY(log.open(true));
    log.fastAppend(QString::fromUtf8(before.mid(1))); // fastAppend() adds the blank

    bool isSet = false;
    {
        const DescriptorLimit limit;
        isSet = limit.isSet();
        log.append(QStringLiteral("more"));
    }
    QVERIFY(isSet);
    QVERIFY(contentOf(fileName_) == before + " more\n");
    log.append(QStringLiteral("again"));
    QVERIFY(contentOf(fileName_) == tailOf(before) + " more\n again\n");
}

void TestFullDisk::withoutAFreeDescriptorACommandPrintsNothing()
{
    if (LOAD_FACTOR > 1)
        QSKIP("The sanitizer needs a descriptor (a pipe) when it checks the type of an object");
    const QString start = QDir::currentPath();
    const TestFolder folder;
    QVERIFY(QDir::setCurrent(folder.path()));
    const TestMessages messages; // of Qt, about the pipes
    const QString text = QStringLiteral("echo text");
    const int descriptors = openDescriptors();
    QStringList outcome;
    bool isSet = false;
    {
        const DescriptorLimit limit;
        isSet = limit.isSet();
        outcome += Command().run(text, 100, false);
        outcome += Command().runL(text, 100, false);
        outcome += QString::number(Command().runQ(text));
        outcome += QString::number(Command().runNoWait(text, false, QString()));
    }
    const QStringList left = entriesOf(folder.path());
    QVERIFY(QDir::setCurrent(start));
    QVERIFY(isSet);
    QCOMPARE(outcome,
             QStringList({QString(), QString(), QStringLiteral("0"), QStringLiteral("0")}));
    QCOMPARE(left, QStringList());
    QCOMPARE(openDescriptors(), descriptors);
}

void TestFullDisk::halfAScriptIsNeverRun_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("length");
    for (const char *operation : {"run", "runL", "runQ"}) {
        QTest::addRow("%s, a short script", operation) << QString::fromLatin1(operation) << 100;
        QTest::addRow("%s, a long script", operation) << QString::fromLatin1(operation) << 100000;
    }
}

// The first half would be another command.
void TestFullDisk::halfAScriptIsNeverRun()
{
    QFETCH(QString, operation);
    QFETCH(int, length);
    const QString start = QDir::currentPath();
    const TestFolder folder;
    QVERIFY(QDir::setCurrent(folder.path()));
    const QString text
        = QStringLiteral("> run.txt; exit 5 ").leftJustified(length, QLatin1Char('x'));
    QStringList outcome;
    bool isSet = false;
    {
        const FileSizeLimit limit(length / 2);
        isSet = limit.isSet();
        if (operation == QLatin1String("run"))
            outcome.append(Command().run(text, 100, false));
        else if (operation == QLatin1String("runL"))
            outcome = Command().runL(text, 100, false);
        else
            outcome.append(QString::number(Command().runQ(text)));
    }
    const QStringList left = entriesOf(folder.path());
    QVERIFY(QDir::setCurrent(start));
    QVERIFY(isSet);
    QCOMPARE(outcome,
             QStringList{operation == QLatin1String("runQ") ? QStringLiteral("0") : QString()});
    QCOMPARE(left, QStringList());
}

void TestFullDisk::withoutAFreeDescriptorTheArchiverGivesFalseAndNoSignal()
{
    if (LOAD_FACTOR > 1)
        QSKIP("The sanitizer needs a descriptor (a pipe) when it checks the type of an object");
    const TestMessages messages;
    const FakeArchiver fake;
    SevenZip archive;
    int ends = 0;
    connect(&archive, &SevenZip::extractionFinished, this, [&ends] { ++ends; });
    const int descriptors = openDescriptors();
    bool isSet = false;
    bool result = true;
    {
        const DescriptorLimit limit;
        isSet = limit.isSet();
        result = archive.extractFilesTo(QStringLiteral("to"));
    }
    QVERIFY(isSet);
    QVERIFY(!result);
    QCOMPARE(ends, 0);
    QVERIFY(!fake.wasCalled());
    QCOMPARE(openDescriptors(), descriptors);
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QCOMPARE(ends, 1);
}

void TestFullDisk::aListFileThatIsNotWrittenWholeEndsTheCompression_data()
{
    QTest::addColumn<int>("nameLength");
    QTest::addColumn<bool>("blocking");
    for (const bool blocking : {true, false}) {
        const char *form = blocking ? "blocking" : "asynchronous";
        QTest::addRow("all names in one buffer, %s", form) << 10 << blocking;
        QTest::addRow("names of many buffers, %s", form) << 3000 << blocking;
    }
}

// An archiver that got only some of the names would leave files out.
void TestFullDisk::aListFileThatIsNotWrittenWholeEndsTheCompression()
{
    QFETCH(int, nameLength);
    QFETCH(bool, blocking);
    const TestMessages messages;
    QStringList files;
    for (int number = 0; number < 40; ++number)
        files += QStringLiteral("%1 %2").arg(number).arg(QString(nameLength, QLatin1Char('x')));
    const QByteArray list = files.join(QLatin1Char('\n')).toUtf8() + '\n';
    const QString before = QDir::currentPath();
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("archive.7z"));
    archive.setCurrentPath(folder_.path());
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    const int size = static_cast<int>(list.size());
    for (const int bytes : {0, 1, size / 2, size - 1}) {
        finished.clear();
        bool result = false;
        {
            const FileSizeLimit limit(bytes);
            if (blocking)
                result = archive.compressFiles(files);
            else
                archive.startCompressingFiles(files);
        }
        QVERIFY(!result);
        if (!blocking) {
            QCOMPARE(finished.size(), 0); // callers connect or wait after the start
            QTRY_COMPARE(finished.size(), 1);
        }
        QCoreApplication::processEvents();
        QCOMPARE(finished.size(), 1);
        QCOMPARE(archive.error(), SevenZip::FatalError);
        QCOMPARE(QDir::currentPath(), before);
        QVERIFY(!fake.wasCalled());
        QCOMPARE(entriesOf(temp_.path()), QStringList());
    }
    archive.setCurrentPath(QString());
    QVERIFY(archive.compressFiles(files)); // there is space again
    QCOMPARE(fake.listFile(), list);
}

// Somebody else may use the name before the end of the operation is handled.
void TestFullDisk::aListFileOfSomebodyElseIsNotRemoved()
{
    const TestMessages messages;
    const FakeArchiver fake;
    QStringList files;
    for (int number = 0; number < 40; ++number)
        files += QString::number(number);
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    {
        const FileSizeLimit limit(0);
        archive.startCompressingFiles(files);
    }
    const QString listFile = temp_.path() + QStringLiteral("/listfile.tmp");
    QVERIFY(writeFile(listFile, "other"));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(contentOf(listFile), QByteArray("other"));
    QVERIFY(QFile::remove(listFile));
}

void TestFullDisk::anArchiveWithoutAWholeListFileMayBeDestroyed()
{
    const TestMessages messages;
    QStringList files;
    for (int number = 0; number < 40; ++number)
        files += QString::number(number);
    const FakeArchiver fake;
    {
        SevenZip archive;
        const FileSizeLimit limit(0);
        archive.startCompressingFiles(files);
    }
    QCoreApplication::processEvents();
    auto *archive = new SevenZip;
    bool isGone = false;
    connect(archive, &SevenZip::compressionFinished, this, [archive, &isGone] {
        delete archive;
        isGone = true;
    });
    bool result = true;
    {
        const FileSizeLimit limit(0);
        result = archive->compressFiles(files);
    }
    QVERIFY(isGone);
    QVERIFY(!result);
    QVERIFY(!fake.wasCalled());
    QCOMPARE(entriesOf(temp_.path()), QStringList());
}

// A truncated information file cannot be read.
void TestFullDisk::aFullDiskLeavesTheCountsOfTheSystemAndNoFile()
{
    const TestFolder whole;
    const Counts counts{CpuInfo(nullptr, whole.path())};
    const qint64 size = QFileInfo(whole.filePath(QStringLiteral("SystemInfo.xml"))).size();
    QVERIFY(size > 0);
    for (qint64 bytes = 0; bytes < size; ++bytes) {
        const TestFolder folder;
        const auto construct = [&folder, bytes] {
            const FileSizeLimit limit(bytes);
            return Counts(CpuInfo(nullptr, folder.path()));
        };
        const TestMessages messages;
        const bool isTheSystems = construct() == counts;
        QVERIFY2(isTheSystems, qPrintable(QString::number(bytes)));
        QCOMPARE(messages.lines(),
                 QStringList{QStringLiteral("Cannot save CPU information to SystemInfo.xml")});
        QCOMPARE(entriesOf(folder.path()), QStringList());
    }
}

void TestFullDisk::aTruncatedInformationFileGivesItsCountsOrTheDefaults()
{
    const TestMessages messages;
    const TestFolder folder;
    const Counts counts{CpuInfo(nullptr, folder.path())};
    const QString infoFile = folder.filePath(QStringLiteral("SystemInfo.xml"));
    const QByteArray whole = contentOf(infoFile);
    for (int size = 0; size < whole.size(); ++size) {
        QVERIFY(writeFile(infoFile, whole.left(size)));
        const Counts read{CpuInfo(nullptr, folder.path())};
        QVERIFY2(read == counts || read.areDefaults(), qPrintable(QString::number(size)));
        QCOMPARE(contentOf(infoFile), whole.left(size));
    }
}

void TestFullDisk::anInformationFileOnADeviceLeavesTheDefaults()
{
    const TestMessages messages;
    const TestFolder folder;
    const QString infoFile = folder.filePath(QStringLiteral("SystemInfo.xml"));
    for (const char *device : {"/dev/full", "/dev/zero", "/dev/null"}) {
        QVERIFY(QFile::link(QString::fromLatin1(device), infoFile));
        QVERIFY(Counts(CpuInfo(nullptr, folder.path())).areDefaults());
        QVERIFY(QFile::remove(infoFile));
    }
}

QTEST_GUILESS_MAIN(TestFullDisk)

#include "tst_fulldisk.moc"
