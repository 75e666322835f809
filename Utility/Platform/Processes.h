#pragma once

#include <QtCore/QString>

#include <functional>

namespace Vorn::Util::Platform {

/// A running process that this process may open. Valid only during the call of the visitor.
class RunningProcess
{
public:
    virtual ~RunningProcess() = default;
    virtual long id() const = 0;

    /// The file name of its program; "<unknown>" if the system does not report it.
    virtual QString name() const = 0;

    /// The full path of its program; empty if the system does not report it.
    virtual QString path() const = 0;

    /// Terminates the process and does not wait for its end. False if this is not allowed or the
    /// process has already ended. A new process that has got the same id is not terminated, if the
    /// system has handles for processes.
    virtual bool terminate(int exitCode) = 0;
};

/// Calls \a visit for the processes that this process may open, in the order of the system, until
/// \a visit returns false.
void visitProcesses(const std::function<bool(RunningProcess &)> &visit);

/// Whether a process runs a program with exactly this file name, also a process that this process
/// may not open. Linux: such a process is identified by the name that it gives itself.
bool isProgramRunning(const QString &name);

/// The name of the machine; empty if the call fails.
QString hostName();

/// The name of the user of this process; empty if the call fails.
QString userName();

} // namespace Vorn::Util::Platform
