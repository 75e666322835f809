#include <Utility/Platform/Processes.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <array>
#include <climits>
#include <csignal>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace Vorn::Util::Platform {

namespace {

// The path of a process's program; empty for kernel threads and other users' processes. The name
// in /proc/PID/comm would be cut to 15 characters.
QString programOf(const QString &id)
{
    std::array<char, PATH_MAX> path{};
    const QByteArray link = "/proc/" + id.toLatin1() + "/exe";
    const ssize_t length = ::readlink(link.constData(), path.data(), path.size());
    if (length <= 0)
        return QString();
    QByteArray program(path.data(), static_cast<int>(length));
    const QByteArray deleted = " (deleted)";
    if (program.endsWith(deleted))
        program.chop(deleted.size());
    return QFile::decodeName(program);
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
    QString name() const override { return program_.section(QLatin1Char('/'), -1); }
    QString path() const override { return program_; }

    // A killed process has no exit code here.
    bool terminate(int) override { return ::kill(static_cast<pid_t>(id_), SIGKILL) == 0; }

private:
    long id_;
    QString program_;
};

} // namespace

void visitProcesses(const std::function<bool(RunningProcess &)> &visit)
{
    const QStringList entries
        = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString &entry : entries) {
        bool isProcess = false;
        const long id = entry.toLong(&isProcess);
        const QString program = isProcess ? programOf(entry) : QString();
        if (program.isEmpty())
            continue;
        LinuxProcess process(id, program);
        if (!visit(process))
            return;
    }
}

bool isProgramRunning(const QString &name)
{
    bool found = false;
    visitProcesses([&](RunningProcess &process) {
        found = process.name() == name;
        return !found;
    });
    return found;
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
