#include "CaseProcess.h"

#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace ClusterStudy {

namespace {

rlimit filesOfCases = {};
bool isFileLimitRaised = false;

} // namespace

struct CaseProcess::System
{
    pid_t group = 0; // of the started process; 0 if there is none
    pid_t parent = 0;

    // Runs in the child process, before the program starts.
    void prepareChild() const
    {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(1); // the parent has ended before prctl()
        if (isFileLimitRaised)
            setrlimit(RLIMIT_NOFILE, &filesOfCases);
    }
};

CaseProcess::CaseProcess()
    : system_(std::make_unique<System>())
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    setChildProcessModifier([this] { system_->prepareChild(); });
#endif
}

CaseProcess::~CaseProcess()
{
    if (state() != NotRunning)
        endAll(true);
}

void CaseProcess::begin()
{
    system_->parent = getpid();
    start();
    system_->group = static_cast<pid_t>(processId());
    // In both processes: each may be the first that needs the group.
    if (system_->group > 0)
        setpgid(system_->group, system_->group);
}

void CaseProcess::endAll(bool byForce)
{
    if (system_->group > 0)
        ::kill(-system_->group, byForce ? SIGKILL : SIGTERM);
}

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
void CaseProcess::setupChildProcess()
{
    system_->prepareChild();
}
#endif

void allowManyProcesses()
{
    if (getrlimit(RLIMIT_NOFILE, &filesOfCases) != 0)
        return;
    rlimit raised = filesOfCases;
    raised.rlim_cur = raised.rlim_max;
    isFileLimitRaised = setrlimit(RLIMIT_NOFILE, &raised) == 0;
}

} // namespace ClusterStudy
