// The owner and the permissions of a truncated log, and what remains when it cannot be truncated.

#include "OrdinaryUser.h"
#include "OtherFileSystem.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/Log.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <array>
#include <atomic>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

constexpr uid_t Service = 12345;
constexpr gid_t ServiceGroup = 12346;
constexpr uid_t Nobody = 65534;
constexpr gid_t NobodysGroup = 65534;
constexpr mode_t AllBits = S_IRWXU | S_IRWXG | S_IRWXO;
const char *const AccessList = "system.posix_acl_access";
const char *const DefaultAccessList = "system.posix_acl_default"; // of new files in a folder

QByteArray tooLargeLog()
{
    return QByteArray(static_cast<int>(Log::MaxLogSize) + 1, '\n');
}

QByteArray truncatedLog()
{
    return QByteArray(static_cast<int>(Log::MaxLogSize - Log::AmountToTruncate), '\n');
}

// "OWNER GROUP MODE" of a file.
QByteArray statusOf(const QString &name)
{
    struct stat status = {};
    if (stat(QFile::encodeName(name).constData(), &status) != 0)
        return "missing";
    return QByteArray::number(status.st_uid) + ' ' + QByteArray::number(status.st_gid) + ' '
        + QByteArray::number(status.st_mode & AllBits, 8);
}

bool change(const QString &name, uid_t owner, gid_t group, mode_t mode)
{
    const QByteArray file = QFile::encodeName(name);
    return chown(file.constData(), owner, group) == 0 && chmod(file.constData(), mode) == 0;
}

bool changeMode(const QString &name, mode_t mode)
{
    return chmod(QFile::encodeName(name).constData(), mode) == 0;
}

qint64 countIn(const QByteArray &counts, const QByteArray &name)
{
    const int from = counts.indexOf(name + ": ") + name.size() + 2;
    bool ok = false;
    const qint64 count = counts.mid(from, counts.indexOf('\n', from) - from).toLongLong(&ok);
    return ok ? count : -1;
}

// The bytes that this process has read and written until now; -1 when they are unknown.
qint64 bytesReadAndWritten()
{
    prctl(PR_SET_DUMPABLE, 1); // a process that has changed its user may not ask otherwise
    const QByteArray counts = contentOf(QStringLiteral("/proc/self/io"));
    const qint64 read = countIn(counts, "rchar");
    const qint64 written = countIn(counts, "wchar");
    return read < 0 || written < 0 ? -1 : read + written;
}

// From here on mounts are made in this process only, which has to be a child process.
bool ownMounts()
{
    return unshare(CLONE_NEWNS) == 0
        && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mountMemory(const QString &folder, const char *options)
{
    return ownMounts()
        && mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options) == 0;
}

// As in a container with a file from outside.
bool mountOnItself(const QString &name)
{
    const QByteArray file = QFile::encodeName(name);
    return ownMounts() && mount(file.constData(), file.constData(), nullptr, MS_BIND, nullptr) == 0;
}

void truncate(const QString &name)
{
    Log(name, Log::NoFileTimeStamp).open(true);
}

// "none", or how many bytes are read and written by attempts to truncate the log.
QByteArray bytesOfAttempts(const QString &name)
{
    constexpr int Attempts = 50;
    constexpr qint64 BytesOfCounting = 1000;
    const qint64 before = bytesReadAndWritten();
    for (int attempt = 0; attempt < Attempts; ++attempt)
        truncate(name);
    const qint64 count = bytesReadAndWritten() - before;
    if (before < 0)
        return "unknown";
    return count < BytesOfCounting ? "none" : QByteArray::number(count);
}

// How many of the attempts truncate the log, which others may read.
int truncationsOf(const QString &name, int attempts)
{
    int count = 0;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (!writeFile(name, tooLargeLog()) || !changeMode(name, 0644))
            return -1;
        truncate(name);
        count += QFileInfo(name).size() < Log::MaxLogSize ? 1 : 0;
    }
    return count;
}

// Another user who reads whatever appears in a folder, in a process of its own.
class Reader
{
public:
    explicit Reader(const QString &folder)
        : folder_(QFile::encodeName(folder))
        , counts_(mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0))
    {
        if (counts_ != MAP_FAILED)
            new (counts_) Counts;
        process_ = counts_ == MAP_FAILED ? -1 : fork();
        if (process_ == 0)
            run();
    }

    ~Reader()
    {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        munmap(counts_, sizeof(Counts));
    }

    bool waitForRounds(int count) const
    {
        const int until = counts().rounds + count;
        return QTest::qWaitFor([this, until] { return counts().rounds >= until; });
    }

    int filesRead() const { return counts().filesRead; }

private:
    Q_DISABLE_COPY(Reader)

    struct Counts
    {
        std::atomic<int> rounds{0};
        std::atomic<int> filesRead{0};
    };

    Counts &counts() const { return *static_cast<Counts *>(counts_); }

    [[noreturn]] void run()
    {
        if (setgid(NobodysGroup) != 0 || setuid(Nobody) != 0)
            _exit(EXIT_FAILURE);
        for (;; ++counts().rounds) {
            DIR *directory = opendir(folder_.constData());
            while (const dirent *entry = directory ? readdir(directory) : nullptr) {
                const int file = openat(dirfd(directory), entry->d_name, O_RDONLY | O_NOFOLLOW);
                char byte = 0;
                if (file >= 0 && read(file, &byte, 1) == 1)
                    ++counts().filesRead;
                close(file);
            }
            closedir(directory);
        }
    }

    const QByteArray folder_;
    void *counts_;
    pid_t process_;
};

} // namespace

class TestTruncatedLogs : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override;
    void cleanup() override;

    void nobodyElseReadsAPrivateLog_data();
    void nobodyElseReadsAPrivateLog();
    void theSuperuserLeavesALogToItsOwner_data();
    void theSuperuserLeavesALogToItsOwner();
    void aLogOfAnotherUserIsTruncated_data();
    void aLogOfAnotherUserIsTruncated();
    void anOpenLogThatBecomesReadOnlyIsContinued();
    void theAccessListIsKept();
    void noAccessListIsInherited_data();
    void noAccessListIsInherited();
    void anAttemptThatMustFailCopiesNothing_data();
    void anAttemptThatMustFailCopiesNothing();
    void anAttemptOnAProtectedLogCopiesNothing();
    void anAttemptOnAMountPointCopiesNothing();
    void anAttemptWithoutSpaceCopiesNothing_data();
    void anAttemptWithoutSpaceCopiesNothing();
    void withoutProcALogIsTruncated_data();
    void withoutProcALogIsTruncated();
    void signalsDoNotStopATruncation_data();
    void signalsDoNotStopATruncation();

private:
    void addFileSystems();
    bool useTemporaryFolder(bool isOnAnotherFileSystem);

    std::unique_ptr<QTemporaryDir> temporary_;
    QString log_;
    QByteArray variable_;
};

void TestTruncatedLogs::initTestCase()
{
    if (geteuid() != 0)
        QSKIP("This account cannot act for several users");
    variable_ = qgetenv("TMPDIR");
    umask(022);
}

void TestTruncatedLogs::init()
{
    TestWithFolder::init();
    QVERIFY(changeMode(testFolder(), 0755));
    QVERIFY(QDir().mkdir(path("logs")));
    log_ = path("logs/run.log");
    QVERIFY(writeFile(log_, tooLargeLog()));
}

void TestTruncatedLogs::cleanup()
{
    QCOMPARE(entriesOf(path("logs")), QStringList{QStringLiteral("run.log")});
    if (temporary_)
        QCOMPARE(entriesOf(temporary_->path()), QStringList());
    temporary_.reset();
    if (variable_.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", variable_);
}

void TestTruncatedLogs::addFileSystems()
{
    QTest::addColumn<bool>("isOnAnotherFileSystem");
    QTest::newRow("temporary files on the log's file system") << false;
    QTest::newRow("temporary files on another file system") << true;
}

// A folder for temporary files that all users share. False without another file system.
bool TestTruncatedLogs::useTemporaryFolder(bool isOnAnotherFileSystem)
{
    const QString parent
        = isOnAnotherFileSystem ? folderOnAnotherFileSystem(testFolder()) : testFolder();
    temporary_ = std::make_unique<QTemporaryDir>(parent + QStringLiteral("/log-XXXXXX"));
    qputenv("TMPDIR", QFile::encodeName(temporary_->path()));
    return !parent.isEmpty() && changeMode(temporary_->path(), 01777);
}

void TestTruncatedLogs::nobodyElseReadsAPrivateLog_data()
{
    addFileSystems();
}

// The folder of the log is closed to others, but the permission bits of the log would let them read
// it.
void TestTruncatedLogs::nobodyElseReadsAPrivateLog()
{
    constexpr int Rounds = 100;
    QFETCH(bool, isOnAnotherFileSystem);
    if (!useTemporaryFolder(isOnAnotherFileSystem))
        QSKIP("There is no other file system for the temporary files");
    QVERIFY(changeMode(path("logs"), 0700));
    const Reader reader(temporary_->path());
    QVERIFY(reader.waitForRounds(1));
    QCOMPARE(truncationsOf(log_, Rounds), Rounds);
    QVERIFY(reader.waitForRounds(2));
    QVERIFY2(reader.filesRead() == 0, qPrintable(QString::number(reader.filesRead())));
}

void TestTruncatedLogs::theSuperuserLeavesALogToItsOwner_data()
{
    addFileSystems();
}

void TestTruncatedLogs::theSuperuserLeavesALogToItsOwner()
{
    QFETCH(bool, isOnAnotherFileSystem);
    if (!useTemporaryFolder(isOnAnotherFileSystem))
        QSKIP("There is no other file system for the temporary files");
    QVERIFY(change(log_, Service, ServiceGroup, 0640));
    const QByteArray before = statusOf(log_);
    truncate(log_);
    QCOMPARE(statusOf(log_), before);
    QVERIFY(contentOf(log_) == truncatedLog());
}

void TestTruncatedLogs::aLogOfAnotherUserIsTruncated_data()
{
    QTest::addColumn<uint>("group");
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("the same group") << uint(NobodysGroup) << QByteArray("65534 65534 664");
    QTest::newRow("another group") << uint(ServiceGroup) << QByteArray("65534 65534 644");
}

// If the process may not give the new log the old one's group, the group's rights are dropped, so
// that its own group does not get them.
void TestTruncatedLogs::aLogOfAnotherUserIsTruncated()
{
    QFETCH(uint, group);
    QFETCH(QByteArray, status);
    QVERIFY(useTemporaryFolder(false));
    QVERIFY(changeMode(path("logs"), 0777));
    QVERIFY(change(log_, Service, group, 0664));
    const QByteArray outcome = asOrdinaryUser([this] {
        truncate(log_);
        return statusOf(log_);
    });
    QCOMPARE(outcome, status);
    QVERIFY(contentOf(log_) == truncatedLog());
}

void TestTruncatedLogs::anOpenLogThatBecomesReadOnlyIsContinued()
{
    QVERIFY(useTemporaryFolder(false));
    QVERIFY(changeMode(path("logs"), 0777));
    QVERIFY(QFile::remove(log_));
    const QByteArray outcome = asOrdinaryUser([this] {
        Log log(log_, Log::NoFileTimeStamp);
        log.setTimeStamp(Log::NoTimeStamp);
        if (!log.open(true))
            return QByteArray("not opened");
        log << QString::fromLatin1(tooLargeLog());
        if (!changeMode(log_, 0440))
            return QByteArray("not read-only");
        log.append(QStringLiteral("last"));
        log.close();
        return statusOf(log_);
    });
    QCOMPARE(outcome, QByteArray("65534 65534 640"));
    QVERIFY(contentOf(log_) == truncatedLog() + " last\n");
}

// With an access list, the group's permission bits are the upper limit for all of its entries.
void TestTruncatedLogs::theAccessListIsKept()
{
    // Version 2; owner rw, user 12345 r, group nothing, mask r, others nothing.
    const QByteArray list = QByteArray::fromHex("02000000"
                                                "01000600ffffffff"
                                                "0200040039300000"
                                                "04000000ffffffff"
                                                "10000400ffffffff"
                                                "20000000ffffffff");
    const QByteArray file = QFile::encodeName(log_);
    QVERIFY(useTemporaryFolder(false));
    if (setxattr(file.constData(), AccessList, list.constData(),
                 static_cast<std::size_t>(list.size()), 0)
        != 0)
        QSKIP("The file system knows no access lists");
    truncate(log_);
    QVERIFY(contentOf(log_) == truncatedLog());
    std::array<char, 200> kept{};
    const ssize_t size = getxattr(file.constData(), AccessList, kept.data(), kept.size());
    QCOMPARE(QByteArray(kept.data(), static_cast<int>(size)), list);
    QCOMPARE(statusOf(log_), QByteArray("0 0 640"));
}

void TestTruncatedLogs::noAccessListIsInherited_data()
{
    QTest::addColumn<bool>("isOnAnotherFileSystem");
    QTest::addColumn<bool>("isOfTemporaryFolder");
    for (const bool another : {false, true}) {
        const char *suffix = another ? ", temporary files elsewhere" : "";
        QTest::addRow("of the folder for temporary files%s", suffix) << another << true;
        QTest::addRow("of the log's folder%s", suffix) << another << false;
    }
}

// A list for the new files of a folder would let another user read a log that has no list.
void TestTruncatedLogs::noAccessListIsInherited()
{
    QFETCH(bool, isOnAnotherFileSystem);
    QFETCH(bool, isOfTemporaryFolder);
    // Version 2; owner rwx, user 65534 rwx, group r-x, mask rwx, others nothing.
    const QByteArray list = QByteArray::fromHex("02000000"
                                                "01000700ffffffff"
                                                "02000700feff0000"
                                                "04000500ffffffff"
                                                "10000700ffffffff"
                                                "20000000ffffffff");
    if (!useTemporaryFolder(isOnAnotherFileSystem))
        QSKIP("There is no other file system for the temporary files");
    QVERIFY(changeMode(log_, 0640));
    const QString folder = isOfTemporaryFolder ? temporary_->path() : path("logs");
    if (setxattr(QFile::encodeName(folder).constData(), DefaultAccessList, list.constData(),
                 static_cast<std::size_t>(list.size()), 0)
        != 0)
        QSKIP("The file system knows no access lists");
    truncate(log_);
    QVERIFY(contentOf(log_) == truncatedLog());
    QVERIFY(getxattr(QFile::encodeName(log_).constData(), AccessList, nullptr, 0) < 0);
    QCOMPARE(statusOf(log_), QByteArray("0 0 640"));
    const QByteArray outcome
        = asOrdinaryUser([this] { return QFile(log_).open(QFile::ReadOnly) ? "read" : "refused"; });
    QCOMPARE(outcome, QByteArray("refused"));
}

void TestTruncatedLogs::anAttemptThatMustFailCopiesNothing_data()
{
    QTest::addColumn<uint>("mode");
    QTest::addColumn<uint>("modeOfTemporaryFolder");
    QTest::newRow("the log's folder is not writable") << 0755U << 01777U;
    QTest::newRow("a file belongs to its owner") << 01777U << 01777U;
    QTest::newRow("the folder for temporary files is not writable") << 0777U << 0755U;
    QTest::newRow("the folder for temporary files is closed") << 0777U << 0700U;
}

void TestTruncatedLogs::anAttemptThatMustFailCopiesNothing()
{
    QFETCH(uint, mode);
    QVERIFY(useTemporaryFolder(false));
    QFETCH(uint, modeOfTemporaryFolder);
    QVERIFY(changeMode(temporary_->path(), modeOfTemporaryFolder));
    QVERIFY(changeMode(path("logs"), mode));
    QVERIFY(changeMode(log_, 0666));
    QCOMPARE(asOrdinaryUser([this] { return bytesOfAttempts(log_); }), QByteArray("none"));
    QVERIFY(contentOf(log_) == tooLargeLog());
}

// It can be written only at its end, and not be replaced.
void TestTruncatedLogs::anAttemptOnAProtectedLogCopiesNothing()
{
    QVERIFY(useTemporaryFolder(false));
    const QString chattr = QStringLiteral("chattr");
    if (QProcess::execute(chattr, {QStringLiteral("+a"), log_}) != 0)
        QSKIP("This account cannot protect a file");
    const QByteArray outcome = bytesOfAttempts(log_);
    QCOMPARE(QProcess::execute(chattr, {QStringLiteral("-a"), log_}), 0);
    QCOMPARE(outcome, QByteArray("none"));
    QVERIFY(contentOf(log_) == tooLargeLog());
}

void TestTruncatedLogs::anAttemptOnAMountPointCopiesNothing()
{
    QVERIFY(useTemporaryFolder(false));
    const QByteArray outcome = inChildProcess([this]() -> QByteArray {
        return mountOnItself(log_) ? bytesOfAttempts(log_) : "not mounted";
    });
    if (outcome == "not mounted")
        QSKIP("This account cannot mount a file");
    QCOMPARE(outcome, QByteArray("none"));
    QVERIFY(contentOf(log_) == tooLargeLog());
}

void TestTruncatedLogs::anAttemptWithoutSpaceCopiesNothing_data()
{
    QTest::addColumn<bool>("isTemporaryFolderFull");
    QTest::addColumn<QByteArray>("options"); // of a file system for the log alone
    QTest::newRow("for temporary files") << true << QByteArray("size=8m");
    QTest::newRow("beside the log") << false << QByteArray("size=8m");
    QTest::newRow("for one more temporary file") << true << QByteArray("size=100m,nr_inodes=2");
    QTest::newRow("for one more file beside the log")
        << false << QByteArray("size=100m,nr_inodes=2");
}

// On a small file system, which only the child process sees.
void TestTruncatedLogs::anAttemptWithoutSpaceCopiesNothing()
{
    QFETCH(bool, isTemporaryFolderFull);
    QFETCH(QByteArray, options);
    QVERIFY(useTemporaryFolder(false));
    QVERIFY(QDir().mkdir(path("mount")));
    const QByteArray outcome
        = inChildProcess([this, isTemporaryFolderFull, options]() -> QByteArray {
              QString log = path("mount/run.log");
              if (!mountMemory(path("mount"), options.constData()))
                  return "not mounted";
              if (!writeFile(log, tooLargeLog()))
                  return "not written";
              if (isTemporaryFolderFull) {
                  qputenv("TMPDIR", QFile::encodeName(path("mount")));
                  log = log_;
              }
              const QByteArray written = bytesOfAttempts(log);
              return contentOf(log) == tooLargeLog() ? written : "truncated";
          });
    QVERIFY(QDir().rmdir(path("mount")));
    if (outcome == "not mounted")
        QSKIP("This account cannot mount a file system of its own");
    QCOMPARE(outcome, QByteArray("none"));
}

void TestTruncatedLogs::withoutProcALogIsTruncated_data()
{
    addFileSystems();
}

// The copies have names there, but are as private.
void TestTruncatedLogs::withoutProcALogIsTruncated()
{
    QFETCH(bool, isOnAnotherFileSystem);
    if (!useTemporaryFolder(isOnAnotherFileSystem))
        QSKIP("There is no other file system for the temporary files");
    constexpr int Rounds = 30;
    QVERIFY(changeMode(path("logs"), 0700));
    QVERIFY(change(log_, Service, ServiceGroup, 0644));
    const QByteArray before = statusOf(log_);
    const Reader reader(temporary_->path());
    QVERIFY(reader.waitForRounds(1));
    const QByteArray outcome = inChildProcess([this]() -> QByteArray {
        if (!mountMemory(QStringLiteral("/proc"), "size=1m"))
            return "not mounted";
        return QByteArray::number(truncationsOf(log_, Rounds));
    });
    QVERIFY(reader.waitForRounds(2));
    if (outcome == "not mounted")
        QSKIP("This account cannot mount a file system of its own");
    QCOMPARE(outcome, QByteArray::number(Rounds));
    QVERIFY(contentOf(log_) == truncatedLog());
    QCOMPARE(statusOf(log_), before);
    QVERIFY2(reader.filesRead() == 0, qPrintable(QString::number(reader.filesRead())));
}

void TestTruncatedLogs::signalsDoNotStopATruncation_data()
{
    addFileSystems();
}

// Signals of a timer whose handler does not restart interrupted system calls.
void TestTruncatedLogs::signalsDoNotStopATruncation()
{
    constexpr int Rounds = 50;
    QFETCH(bool, isOnAnotherFileSystem);
    if (!useTemporaryFolder(isOnAnotherFileSystem))
        QSKIP("There is no other file system for the temporary files");
    const QByteArray outcome = inChildProcess([this] {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        constexpr suseconds_t Microseconds = 100;
        const itimerval timer = {{0, Microseconds}, {0, Microseconds}};
        sigaction(SIGALRM, &action, nullptr);
        setitimer(ITIMER_REAL, &timer, nullptr);
        return QByteArray::number(truncationsOf(log_, Rounds));
    });
    QCOMPARE(outcome, QByteArray::number(Rounds));
    QVERIFY(contentOf(log_) == truncatedLog());
}

QTEST_GUILESS_MAIN(TestTruncatedLogs)

#include "tst_truncatedlogs.moc"
