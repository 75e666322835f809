#include "CaseProcess.h"

#include <windows.h>

namespace ClusterStudy {

struct CaseProcess::System
{
    HANDLE job = nullptr;
    PROCESS_INFORMATION *process = nullptr; // owned by QProcess
};

CaseProcess::CaseProcess()
    : system_(std::make_unique<System>())
{
    system_->job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(system_->job, JobObjectExtendedLimitInformation, &limits,
                            sizeof limits);
    setCreateProcessArgumentsModifier([this](CreateProcessArguments *arguments) {
        // Suspended until it is in the job, so that no process is started outside the job. Without
        // this program's console, so that neither Ctrl-C nor Ctrl-Break reaches it.
        arguments->flags |= CREATE_SUSPENDED | CREATE_NO_WINDOW;
        system_->process = arguments->processInformation;
    });
}

CaseProcess::~CaseProcess()
{
    CloseHandle(system_->job); // ends the processes
}

void CaseProcess::begin()
{
    start();
    if (state() == NotRunning)
        return;
    AssignProcessToJobObject(system_->job, system_->process->hProcess);
    ResumeThread(system_->process->hThread);
}

void CaseProcess::endAll(bool)
{
    TerminateJobObject(system_->job, 1);
}

void CaseProcess::setupChildProcess() { }

void allowManyProcesses() { } // the number of handles has no such limit

} // namespace ClusterStudy
