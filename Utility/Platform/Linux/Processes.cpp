#include <Utility/Platform/Processes.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <algorithm>
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
    const QString program = QFile::decodeName(QByteArray(path.data(), static_cast<int>(length)));
    const QString deleted = QStringLiteral(" (deleted)");
    return program.endsWith(deleted) && !QFileInfo::exists(program)
        ? program.chopped(deleted.size())
        : program;
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

// The name of another user's program, as far as it is told: nothing when it may have been cut.
// What has no command line is a thread of the system or a process that has ended.
QString shortNameOf(const QString &id)
{
    constexpr int LongestName = 15; // bytes
    QByteArray name = contentOf(id, "comm");
    name.chop(1); // the line end
    const bool isTold = name.size() < LongestName && !contentOf(id, "cmdline").isEmpty();
    return isTold ? QFile::decodeName(name) : QString();
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

    // A killed process has no exit code here.
    bool terminate(int) override { return ::kill(static_cast<pid_t>(id_), SIGKILL) == 0; }

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
    // An empty name would find the processes whose name is not told.
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
