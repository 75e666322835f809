#pragma once

#include <QtCore/QString>

#include <functional>

namespace Vorn::Util::Platform {

/// A process that this one may look into; valid during the visit.
class RunningProcess
{
public:
    virtual ~RunningProcess() = default;
    virtual long id() const = 0;

    /// The file name of its program; "<unknown>" when the system does not tell it.
    virtual QString name() const = 0;

    /// The full path of its program; empty when the system does not tell it.
    virtual QString path() const = 0;

    /// Ends it at once, without waiting. False when that is not allowed or it has ended already;
    /// where the system can hold a process, never ends another one that has got its id since.
    virtual bool terminate(int exitCode) = 0;
};

/// Hands the processes that may be opened to \a visit, in the system's order, until it returns
/// false.
void visitProcesses(const std::function<bool(RunningProcess &)> &visit);

/// Whether a process runs a program of exactly this file name, also one that may not be opened. On
/// Linux such a process is known by the name that it gives itself.
bool isProgramRunning(const QString &name);

/// The machine's name; empty when the call fails.
QString hostName();

/// The name of the user of this process; empty when the call fails.
QString userName();

} // namespace Vorn::Util::Platform
