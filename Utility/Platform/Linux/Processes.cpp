#include <Utility/Platform/Processes.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace Vorn::Util::Platform {

namespace {

bool isSameFile(const QByteArray &one, const QByteArray &other)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(one.constData(), &first) == 0 && ::stat(other.constData(), &second) == 0
        && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// The path of the program of a process; empty for kernel threads and processes of other users.
// /proc/PID/comm is not used, because it has at most 15 characters. If the file of the program was
// deleted, the kernel appends " (deleted)". A file name can also end like this.
QString programOf(const QString &id)
{
    std::array<char, PATH_MAX> path{};
    const QByteArray link = "/proc/" + id.toLatin1() + "/exe";
    const ssize_t length = ::readlink(link.constData(), path.data(), path.size());
    if (length <= 0)
        return QString();
    const QByteArray mark = " (deleted)";
    QByteArray program(path.data(), static_cast<int>(length));
    if (program.endsWith(mark) && !isSameFile(link, program))
        program.chop(mark.size());
    return QFile::decodeName(program);
}

QString fileNameOf(const QString &path)
{
    return path.section(QLatin1Char('/'), -1);
}

QByteArray contentOf(const QString &id, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(id, QString::fromLatin1(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The name that a process of another user gives itself, by default that of its program. Empty if it
// may be truncated. Also empty if the process has no command line, since it is then a kernel thread
// or has ended.
QString shortNameOf(const QString &id)
{
    constexpr int MaxNameLength = 15; // bytes
    QByteArray name = contentOf(id, "comm");
    name.chop(1); // the line end
    const bool isUsable = name.size() < MaxNameLength && !contentOf(id, "cmdline").isEmpty();
    return isUsable ? QFile::decodeName(name) : QString();
}

QStringList processIds()
{
    QStringList ids = QDir(QStringLiteral("/proc"))
                          .entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    const auto isNoProcess = [](const QString &name) { return !name.at(0).isDigit(); };
    ids.erase(std::remove_if(ids.begin(), ids.end(), isNoProcess), ids.end());
    return ids;
}

class LinuxProcess : public RunningProcess
{
public:
    LinuxProcess(long id, const QString &program)
        : id_(id)
        , program_(program)
    {
    }

    long id() const override { return id_; }
    QString name() const override { return fileNameOf(program_); }
    QString path() const override { return program_; }

    // The exit code is not used, because a killed process has none on Linux.
    //
    // The process may have ended, and a new one may have its id. So open the process first, and
    // then check that it still runs the same program.
    bool terminate(int) override
    {
        const auto id = static_cast<pid_t>(id_);
        const long process = ::syscall(SYS_pidfd_open, id, 0);
        if (process < 0) {
            // The system call is missing before Linux 5.3 and can be forbidden in a container.
            const bool isUnknown = errno == ENOSYS || errno == EPERM;
            return isUnknown && ::kill(id, SIGKILL) == 0;
        }
        const auto descriptor = static_cast<int>(process);
        const bool isTerminated = programOf(QString::number(id_)) == program_
            && ::syscall(SYS_pidfd_send_signal, descriptor, SIGKILL, nullptr, 0) == 0;
        ::close(descriptor);
        return isTerminated;
    }

private:
    long id_;
    QString program_;
};

} // namespace

void visitProcesses(const std::function<bool(RunningProcess &)> &visit)
{
    const QStringList ids = processIds();
    for (const QString &id : ids) {
        const QString program = programOf(id);
        if (program.isEmpty())
            continue;
        LinuxProcess process(id.toLong(), program);
        if (!visit(process))
            return;
    }
}

bool isProgramRunning(const QString &name)
{
    const QStringList ids = processIds();
    // An empty name would match the processes whose name is not known.
    return !name.isEmpty() && std::any_of(ids.cbegin(), ids.cend(), [&name](const QString &id) {
        const QString program = programOf(id);
        return name == (program.isEmpty() ? shortNameOf(id) : fileNameOf(program));
    });
}

QString hostName()
{
    std::array<char, 128> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? QString::fromLocal8Bit(name.data())
                                                            : QString();
}

QString userName()
{
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd *found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return QString();
    return QString::fromLocal8Bit(found->pw_name);
}

} // namespace Vorn::Util::Platform
