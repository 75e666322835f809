// Processes.

#include <Utility/Platform/Processes.h>
#include <Utility/System.h>

#include <QtCore/QProcess>

namespace Vorn::Util {

long System::getPID(const QStringList &names)
{
    long id = 0;
    Platform::visitProcesses([&](Platform::RunningProcess &process) {
        if (!names.contains(process.name().toUpper()))
            return true;
        id = process.id();
        return false;
    });
    return id;
}

bool System::isProcessRunning(const QString &exeName)
{
    return Platform::isProgramRunning(exeName);
}

QStringList System::killProcesses(const QString &pathFilter, const QStringList &names)
{
    QStringList killed;
    const auto matchesFilter = [&pathFilter](const QString &path) {
        return pathFilter.isEmpty() || path.contains(pathFilter, Qt::CaseInsensitive);
    };
    Platform::visitProcesses([&](Platform::RunningProcess &process) {
        constexpr int ExitCode = 1;
        const QString name = process.name();
        if (!names.contains(name, Qt::CaseInsensitive))
            return true;
        const QString path = process.path();
        // Kept for compatibility: see "Filter without a path" in docs/compatibility.md.
        if (matchesFilter(path.isEmpty() ? name : path) && process.terminate(ExitCode))
            killed.append(name);
        return true;
    });
    return killed;
}

bool System::startProcess(const QString &program, const QStringList &arguments)
{
    return QProcess::startDetached(program, arguments);
}

} // namespace Vorn::Util
