// Processes without a program, with reused ids, or with a name that they set themselves.

#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestFolder.h"

#include "OrdinaryUser.h"

#include <Utility/CpuCounter.h>
#include <Utility/Platform/FolderTree.h>
#include <Utility/Platform/Processes.h>
#include <Utility/System.h>

#include <QtCore/QFileInfo>
#include <QtCore/QUuid>
#include <QtTest/QtTest>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <memory>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

// The file in /proc of a process.
QString fileOf(pid_t id, const char *name)
{
    return QStringLiteral("/proc/%1/%2").arg(id).arg(QString::fromLatin1(name));
}

// A running program, which goes on until its standard input ends.
class Child
{
public:
    explicit Child(const QString &program)
    {
        const QByteArray name = QFile::encodeName(program);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            return;
        id_ = fork();
        if (id_ == 0) {
            dup2(ends[0], STDIN_FILENO);
            execl(name.constData(), name.constData(), "hang", static_cast<char *>(nullptr));
            _exit(EXIT_FAILURE);
        }
        close(ends[0]);
        input_ = ends[1];
    }

    ~Child()
    {
        close(input_);
        if (id_ > 0)
            waitpid(id_, nullptr, 0);
    }

    bool isStarted() const { return id_ > 0; }
    pid_t id() const { return id_; }

    // It leaves the system's list; its id can be used again.
    void vanish()
    {
        ::kill(id_, SIGKILL);
        waitpid(id_, nullptr, 0);
        id_ = -1;
    }

    // It stays in the system's list, until the object is destroyed.
    bool kill() const
    {
        siginfo_t info{};
        return ::kill(id_, SIGKILL) == 0
            && waitid(P_PID, static_cast<id_t>(id_), &info, WEXITED | WNOWAIT) == 0
            && info.si_code == CLD_KILLED;
    }

private:
    Q_DISABLE_COPY(Child)

    pid_t id_ = -1;
    int input_ = -1;
};

// Another process of this program with a given id, until the object is destroyed.
class ProcessWithId
{
public:
    explicit ProcessWithId(pid_t id)
    {
        clone_args arguments = {};
        arguments.exit_signal = SIGCHLD;
        arguments.set_tid = reinterpret_cast<quintptr>(&id);
        arguments.set_tid_size = 1;
        id_ = static_cast<pid_t>(syscall(SYS_clone3, &arguments, sizeof arguments));
        while (id_ == 0)
            pause();
    }
    ~ProcessWithId()
    {
        if (id_ > 0) {
            ::kill(id_, SIGKILL);
            waitpid(id_, nullptr, 0);
        }
    }

    bool isStarted() const { return id_ > 0; }
    bool isRunning() const { return waitpid(id_, nullptr, WNOHANG) == 0; }

private:
    Q_DISABLE_COPY(ProcessWithId)

    pid_t id_ = -1;
};

// From now on a system call fails with this error in this process.
bool failCall(long call, int error)
{
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<quint32>(call), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<quint32>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{4, steps};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

QString uniqueName()
{
    return QStringLiteral("vorn") + QUuid::createUuid().toString(QUuid::Id128).left(8);
}

// The files that are open in this process and that a program which it starts would have open, too.
QStringList inheritedFiles()
{
    QStringList files;
    const QStringList numbers = entriesOf(QStringLiteral("/proc/self/fd"));
    for (const QString &number : numbers) {
        const int flags = fcntl(number.toInt(), F_GETFD);
        if (flags >= 0 && !(flags & FD_CLOEXEC))
            files += QFileInfo(QStringLiteral("/proc/self/fd/") + number).symLinkTarget();
    }
    return files;
}

} // namespace

class TestProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKilledProcessDoesNotRunBeforeItIsWaitedFor();
    void aThreadOfTheSystemIsNoProgram();
    void aReusedIdIsNeverEnded();
    void withoutPidfdsTheProcessWithTheIdIsEnded_data();
    void withoutPidfdsTheProcessWithTheIdIsEnded();
    void aProgramNameMayEndWithDeleted();
    void aDeletedProgramIsNotTheFileNamedDeleted();
    void anotherUsersProgramIsFoundByTheNameThatItGivesItself();
    void countersAreNotInheritedByStartedPrograms();
    void foldersAreNotInheritedByStartedPrograms();
};

void TestProcesses::aKilledProcessDoesNotRunBeforeItIsWaitedFor()
{
    const TestFolder folder;
    // Short enough to stand in "comm" as a whole.
    const QString name = uniqueName();
    const QString program = folder.filePath(name);
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), program));
    const Child child(program);
    QVERIFY(child.isStarted());
    QTRY_VERIFY(System::isProcessRunning(name));
    QCOMPARE(System::getPID({name.toUpper()}), static_cast<long>(child.id()));

    QVERIFY(child.kill());
    // It is still listed in /proc, by its name.
    QCOMPARE(contentOf(fileOf(child.id(), "comm")).trimmed(), name.toLatin1());
    QVERIFY(!System::isProcessRunning(name));
    QCOMPARE(System::getPID({name.toUpper()}), 0L);
    QCOMPARE(System::killProcesses(QString(), {name}), QStringList());
}

void TestProcesses::aThreadOfTheSystemIsNoProgram()
{
    constexpr pid_t FirstThread = 2;
    if (contentOf(fileOf(FirstThread, "comm")) != "kthreadd\n")
        QSKIP("The system's threads are not listed here");
    QVERIFY(!System::isProcessRunning(QStringLiteral("kthreadd")));
    QCOMPARE(System::getPID({QStringLiteral("KTHREADD")}), 0L);
}

// The process ends after it was found, and another one gets its id before it is to be ended.
void TestProcesses::aReusedIdIsNeverEnded()
{
    const TestFolder folder;
    const QString program = folder.filePath(uniqueName());
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), program));
    Child child(program);
    QVERIFY(child.isStarted());
    QTRY_VERIFY(System::isProcessRunning(QFileInfo(program).fileName()));
    const pid_t id = child.id();
    std::unique_ptr<ProcessWithId> other;
    bool isFound = false;
    bool isEnded = false;
    Platform::visitProcesses([&](Platform::RunningProcess &process) {
        if (process.id() != id)
            return true;
        isFound = process.path() == program;
        child.vanish();
        other = std::make_unique<ProcessWithId>(id);
        isEnded = process.terminate(1);
        return false;
    });
    QVERIFY(isFound);
    if (!other->isStarted())
        QSKIP("No process can be given an id here: this takes privileges and Linux 5.5");
    QVERIFY(!isEnded);
    QVERIFY(other->isRunning());
}

void TestProcesses::withoutPidfdsTheProcessWithTheIdIsEnded_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("a kernel without pidfd_open") << ENOSYS;
    QTest::newRow("a filter that refuses pidfd_open") << EPERM;
}

void TestProcesses::withoutPidfdsTheProcessWithTheIdIsEnded()
{
    QFETCH(int, error);
    const TestFolder folder;
    const QString name = uniqueName();
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), folder.filePath(name)));
    const Child child(folder.filePath(name));
    QVERIFY(child.isStarted());
    QTRY_VERIFY(System::isProcessRunning(name));
    const pid_t killer = fork();
    if (killer == 0) {
        const bool isEnded = failCall(SYS_pidfd_open, error)
            && System::killProcesses(QString(), {name}) == QStringList{name};
        _exit(isEnded ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    QCOMPARE(waitpid(killer, &status, 0), killer);
    QCOMPARE(status, 0);
    QTRY_VERIFY(!System::isProcessRunning(name));
}

// Linux adds " (deleted)" to the path of a program whose file was removed.
void TestProcesses::aProgramNameMayEndWithDeleted()
{
    const TestFolder folder;
    const QString name = uniqueName() + QStringLiteral(" (deleted)");
    const QString program = folder.filePath(name);
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), program));
    const Child child(program);
    QVERIFY(child.isStarted());
    QTRY_COMPARE(System::getPID({name.toUpper()}), static_cast<long>(child.id()));
    QVERIFY(System::isProcessRunning(name));
    QVERIFY(!System::isProcessRunning(name.section(QLatin1Char(' '), 0, 0)));
    QVERIFY(QFile::remove(program));
    QVERIFY(System::isProcessRunning(name));
    QCOMPARE(System::killProcesses(program, {name}), QStringList{name});
}

void TestProcesses::aDeletedProgramIsNotTheFileNamedDeleted()
{
    const TestFolder folder;
    const QString name = uniqueName();
    const QString program = folder.filePath(name);
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), program));
    const Child child(program);
    QVERIFY(child.isStarted());
    QTRY_VERIFY(System::isProcessRunning(name));
    QVERIFY(QFile::remove(program));
    QVERIFY(writeFile(program + QStringLiteral(" (deleted)"), "another file"));
    QVERIFY(System::isProcessRunning(name));
    QVERIFY(!System::isProcessRunning(name + QStringLiteral(" (deleted)")));
}

// Any program can take any name, so this answer is not reliable.
void TestProcesses::anotherUsersProgramIsFoundByTheNameThatItGivesItself()
{
    if (geteuid() != 0)
        QSKIP("This takes two users");
    const QByteArray name = uniqueName().toLatin1();
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_NAME, name.constData());
        for (;;)
            pause();
    }
    QTRY_COMPARE(contentOf(fileOf(child, "comm")).trimmed(), name);
    const QByteArray found = asOrdinaryUser([&name] {
        const QString text = QString::fromLatin1(name);
        return QByteArray(System::isProcessRunning(text) ? "running" : "not running")
            + QByteArray::number(static_cast<int>(System::getPID({text.toUpper()})));
    });
    ::kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    QCOMPARE(found, QByteArray("running0"));
}

void TestProcesses::countersAreNotInheritedByStartedPrograms()
{
    const QStringList before = inheritedFiles();
    const CpuCounter load(CpuCounter::CpuPercent);
    const CpuCounter memory(CpuCounter::MemAvailBytes);
    QVERIFY(!before.isEmpty()); // such as the standard output
    QCOMPARE(inheritedFiles(), before);
}

void TestProcesses::foldersAreNotInheritedByStartedPrograms()
{
    const TestFolder folder;
    QVERIFY(QDir().mkpath(folder.filePath(QStringLiteral("sub"))));
    const QStringList before = inheritedFiles();
    const auto tree = Platform::openFolderTree(folder.path(), Platform::TreeAccess::Remove);
    QVERIFY(tree && tree->enter(QStringLiteral("sub")));
    QCOMPARE(inheritedFiles(), before);
}

QTEST_GUILESS_MAIN(TestProcesses)

#include "tst_processes.moc"
