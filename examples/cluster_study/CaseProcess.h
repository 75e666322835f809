#pragma once

#include <QtCore/QProcess>

#include <memory>

namespace ClusterStudy {

/// A process together with the processes that it starts. If this program is killed, they end too;
/// on Linux only the process itself does.
class CaseProcess : public QProcess
{
public:
    CaseProcess();

    /// Ends the processes if the first one still runs.
    ~CaseProcess() override;

    /// Starts the program that was set. Ctrl-C on the terminal does not reach it.
    void begin();

    /// Asks the processes to end, or ends them at once if \a byForce is true. On Windows they
    /// always end at once. Call it no later than at the end of the first process: afterwards the
    /// system may give its number to another process.
    void endAll(bool byForce);

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
protected:
    void setupChildProcess() override;
#endif

private:
    struct System;
    const std::unique_ptr<System> system_;
};

/// Lets this program run as many cases at a time as it may: each needs three open files, and the
/// usual limit on Linux is 1024. The programs of the cases keep the limit that this program was
/// started with. Call it before the first of them starts.
void allowManyProcesses();

} // namespace ClusterStudy
