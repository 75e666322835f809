// Pipes and links where files are expected.

#include "Fifo.h"
#include "OrdinaryUser.h"
#include "ProcessState.h"
#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestWithFolder.h"

#include <Utility/CpuInfo.h>
#include <Utility/System.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

constexpr qint64 HugeSize = 3LL * 1024 * 1024 * 1024;

// A process that repeats its work until the object is destroyed.
class ChildProcess
{
public:
    explicit ChildProcess(const std::function<void()> &work)
        : id_(fork())
    {
        if (id_ == 0) {
            work();
            _exit(EXIT_SUCCESS);
        }
    }
    ~ChildProcess()
    {
        if (isStarted()) {
            kill(id_, SIGKILL);
            waitpid(id_, nullptr, 0);
        }
    }

    bool isStarted() const { return id_ > 0; }

private:
    Q_DISABLE_COPY(ChildProcess)

    const pid_t id_;
};

} // namespace

class TestSpecialFiles : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;

    void aPipeIsNoticedWhenItIsRead();
    void aPipeInThePlaceOfTheInformationFileIsNotWaitedFor();
    void aPipeInThePlaceOfTheFlagsFileIsNotWaitedFor();

    void aPipeThatTakesThePlaceOfAFileIsNotWaitedFor();

    void aHugeInformationFileCannotBeRead();
    void aHugeFlagsFileIsReadUpToItsLongLine();
    void aFlagsFileThatEndsBeforeItsSizeIsReadToItsEnd();
    void aLargeFileIsNotReadIntoMemory();

    void nothingIsWrittenThroughALinkToNothing();
    void nothingIsWrittenThroughALinkThatIsPutThereMeanwhile();
    void anInformationFileMayBeALink();

private:
    TestFolder userData_;
};

// System keeps the flags folder for the whole process, so it is set before the first call.
void TestSpecialFiles::initTestCase()
{
    QVERIFY(userData_.isValid());
    qputenv("XDG_DATA_HOME", QFile::encodeName(userData_.path()));
    QVERIFY(System::getFlagsDirPath().startsWith(userData_.path()));
}

// Checks the pipe itself: the other tests rely on wasRead().
void TestSpecialFiles::aPipeIsNoticedWhenItIsRead()
{
    Fifo pipe(path("pipe"));
    QVERIFY(pipe.isMade());
    QCOMPARE(contentOf(path("pipe")), QByteArray());
    QVERIFY(pipe.wasRead());
}

void TestSpecialFiles::aPipeInThePlaceOfTheInformationFileIsNotWaitedFor()
{
    Fifo pipe(path("SystemInfo.xml"));
    QVERIFY(pipe.isMade());
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QVERIFY(!pipe.wasRead());
    QCOMPARE(info.processorCount(), 1);
    QCOMPARE(info.coreCount(), 1);
    QCOMPARE(log.lines(),
             texts({"Reading CPU information from SystemInfo.xml",
                    "Cannot read CPU information from SystemInfo.xml"}));
}

void TestSpecialFiles::aPipeInThePlaceOfTheFlagsFileIsNotWaitedFor()
{
    const QString fileName = System::getFlagsDirPath() + QStringLiteral("/VORN_flags.txt");
    {
        Fifo pipe(fileName);
        QVERIFY(pipe.isMade());
        QVERIFY(!System::isFlagSet(QStringLiteral("DebugMode")));
        QVERIFY(!pipe.wasRead());
    }
    QVERIFY(QFile::remove(fileName));
    // The path is right: a plain file there is read.
    QVERIFY(writeFile(fileName, "DebugMode on\n"));
    QVERIFY(System::isFlagSet(QStringLiteral("DebugMode")));
    QVERIFY(QFile::remove(fileName));
}

// Another process exchanges the file for a pipe and back all the time.
void TestSpecialFiles::aPipeThatTakesThePlaceOfAFileIsNotWaitedFor()
{
    const QString fileName = System::getFlagsDirPath() + QStringLiteral("/VORN_flags.txt");
    const QByteArray file = QFile::encodeName(fileName);
    const QByteArray pipe = file + ".pipe";
    QVERIFY(writeFile(fileName, "DebugMode\n"));
    QVERIFY(mkfifo(pipe.constData(), S_IRUSR | S_IWUSR) == 0);
    const ChildProcess adversary([&] {
        for (;;)
            renameat2(AT_FDCWD, file.constData(), AT_FDCWD, pipe.constData(), RENAME_EXCHANGE);
    });
    QVERIFY(adversary.isStarted());

    const QByteArray outcome = inChildProcess([] {
        constexpr unsigned int LongestWait = 20; // seconds
        alarm(LongestWait);                      // ends the process
        constexpr int LeastOfEach = 2000;
        int reads = 0;
        int misses = 0;
        while (reads < LeastOfEach || misses < LeastOfEach)
            ++(System::isFlagSet(QStringLiteral("DebugMode")) ? reads : misses);
        return QByteArray("done");
    });
    QCOMPARE(outcome, QByteArray("done"));
    QVERIFY(QFile::remove(fileName));
    QVERIFY(QFile::remove(fileName + QStringLiteral(".pipe")));
}

// A file without content takes no space on the disk, but all its bytes would be read.
void TestSpecialFiles::aHugeInformationFileCannotBeRead()
{
    QFile file(path("SystemInfo.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(HugeSize));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.processorCount(), 1);
    QCOMPARE(log.lines(),
             texts({"Reading CPU information from SystemInfo.xml",
                    "Cannot read CPU information from SystemInfo.xml"}));
    QCOMPARE(file.size(), HugeSize);
}

void TestSpecialFiles::aHugeFlagsFileIsReadUpToItsLongLine()
{
    QFile file(System::getFlagsDirPath() + QStringLiteral("/VORN_flags.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("DebugMode\n") > 0 && file.flush());
    QVERIFY(file.resize(HugeSize));
    QVERIFY(System::isFlagSet(QStringLiteral("DebugMode")));
    QVERIFY(!System::isFlagSet(QStringLiteral("Other")));
    QVERIFY(file.remove());
}

void TestSpecialFiles::aFlagsFileThatEndsBeforeItsSizeIsReadToItsEnd()
{
    const QString shortFile = QStringLiteral("/sys/kernel/uevent_seqnum");
    const QByteArray number = contentOf(shortFile).trimmed();
    if (number.isEmpty())
        QSKIP("There is no file here that is shorter than its size");
    const QString flagsFile = System::getFlagsDirPath() + QStringLiteral("/VORN_flags.txt");
    QVERIFY(QFile::link(shortFile, flagsFile));
    QVERIFY(System::isFlagSet(QString::fromLatin1(number)));
    QVERIFY(!System::isFlagSet(QStringLiteral("Other")));
    QVERIFY(QFile::remove(flagsFile));
}

// Less than 2 GiB, so that the whole file would fit a byte array.
void TestSpecialFiles::aLargeFileIsNotReadIntoMemory()
{
    constexpr qint64 LargeSize = 256 * MiB;
    constexpr qint64 Most = 32 * MiB;
    const QString flagsFile = System::getFlagsDirPath() + QStringLiteral("/VORN_flags.txt");
    for (const QString &fileName : {path("SystemInfo.xml"), flagsFile}) {
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(LargeSize));
    }
    const qint64 before = residentMemory();
    QVERIFY(restartPeakMemory());
    QCOMPARE(CpuInfo(nullptr, testFolder()).processorCount(), 1);
    QVERIFY(!System::isFlagSet(QStringLiteral("DebugMode")));
    const qint64 held = peakMemory() - before;
    QVERIFY2(held < Most, qPrintable(QString::number(held)));
    QVERIFY(QFile::remove(flagsFile));
}

// Somebody may have planted it so that another file is created or overwritten.
void TestSpecialFiles::nothingIsWrittenThroughALinkToNothing()
{
    const TestFolder whole;
    const CpuInfo system(nullptr, whole.path());
    QVERIFY(QFile::link(path("target"), path("SystemInfo.xml")));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.processorCount(), system.processorCount());
    QCOMPARE(info.coreCount(), system.coreCount());
    QCOMPARE(log.lines(), texts({"Cannot save CPU information to SystemInfo.xml"}));
    QCOMPARE(entriesOf(testFolder()), texts({"SystemInfo.xml"}));
    QCOMPARE(QFileInfo(path("SystemInfo.xml")).symLinkTarget(), path("target"));
}

// Another process puts links there, with and without a file at their end, while the system is
// asked.
void TestSpecialFiles::nothingIsWrittenThroughALinkThatIsPutThereMeanwhile()
{
    const QByteArray content = "somebody's file";
    QVERIFY(writeFile(path("target"), content));
    const QByteArray target = QFile::encodeName(path("target"));
    const QByteArray nothing = QFile::encodeName(path("nothing"));
    const QByteArray name = QFile::encodeName(path("SystemInfo.xml"));
    const ChildProcess adversary([&] {
        for (;;) {
            for (const QByteArray &end : {target, nothing}) {
                if (symlink(end.constData(), name.constData()) == 0)
                    unlink(name.constData());
            }
            if (link(target.constData(), name.constData()) == 0)
                unlink(name.constData());
        }
    });
    QVERIFY(adversary.isStarted());

    constexpr int LeastRounds = 1000;
    constexpr int LongestTime = 120; // seconds
    const QDeadlineTimer deadline(std::chrono::seconds{LongestTime});
    const QString refused = QStringLiteral("Cannot save CPU information to SystemInfo.xml");
    bool wasRefused = false; // because the link was there
    for (int round = 0; round < LeastRounds || (!wasRefused && !deadline.hasExpired()); ++round) {
        TemporaryLog log;
        const CpuInfo info(log, testFolder());
        wasRefused = wasRefused || log.lines().contains(refused);
        QVERIFY(contentOf(path("target")) == content);
        QVERIFY(!QFileInfo::exists(path("nothing")));
        unlink(name.constData());
    }
    QVERIFY(wasRefused);
}

void TestSpecialFiles::anInformationFileMayBeALink()
{
    QVERIFY(writeFile(path("target"),
                      "<Root><processorCount>977</processorCount>"
                      "<hyperThreading>on</hyperThreading></Root>"));
    QVERIFY(QFile::link(path("target"), path("SystemInfo.xml")));
    QCOMPARE(CpuInfo(nullptr, testFolder()).processorCount(), 977);
}

QTEST_GUILESS_MAIN(TestSpecialFiles)

#include "tst_specialfiles.moc"
