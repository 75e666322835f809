// Processes that run no program.

#include "../HelperProgram.h"
#include "../TestFiles.h"
#include "../TestFolder.h"

#include <Utility/System.h>

#include <QtCore/QUuid>
#include <QtTest/QtTest>

#include <csignal>
#include <fcntl.h>
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

} // namespace

class TestProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKilledProcessDoesNotRunBeforeItIsWaitedFor();
    void aThreadOfTheSystemIsNoProgram();
};

void TestProcesses::aKilledProcessDoesNotRunBeforeItIsWaitedFor()
{
    const TestFolder folder;
    // Short enough to be told as a whole by "comm".
    const QString name
        = QStringLiteral("vorn") + QUuid::createUuid().toString(QUuid::Id128).left(8);
    const QString program = folder.filePath(name);
    QVERIFY(QFile::copy(helperProgram(), program));
    const Child child(program);
    QVERIFY(child.isStarted());
    QTRY_VERIFY(System::isProcessRunning(name));
    QCOMPARE(System::getPID({name.toUpper()}), static_cast<long>(child.id()));

    QVERIFY(child.kill());
    // It is still there, by its name.
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

QTEST_GUILESS_MAIN(TestProcesses)

#include "tst_processes.moc"
