#include <Utility/Platform/Processes.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>

namespace Vorn::Util::Platform {

namespace {

constexpr DWORD Access = PROCESS_QUERY_INFORMATION | PROCESS_VM_READ | PROCESS_TERMINATE;
static_assert(Access == 0x411);

class WindowsProcess : public RunningProcess
{
public:
    explicit WindowsProcess(DWORD id)
        : id_(id)
        , handle_(OpenProcess(Access, FALSE, id))
    {
        DWORD needed = 0;
        if (handle_ && !K32EnumProcessModules(handle_, &module_, sizeof module_, &needed))
            module_ = nullptr;
    }
    ~WindowsProcess() override
    {
        if (handle_)
            CloseHandle(handle_);
    }
    WindowsProcess(const WindowsProcess &) = delete;
    WindowsProcess &operator=(const WindowsProcess &) = delete;

    bool isOpen() const { return handle_ && module_; }

    long id() const override { return static_cast<long>(id_); }

    QString name() const override
    {
        wchar_t name[MAX_PATH] = L"<unknown>"; // the result if the call fails
        K32GetModuleBaseNameW(handle_, module_, name, MAX_PATH);
        return textOf(name);
    }

    QString path() const override
    {
        wchar_t path[MAX_PATH] = {};
        return K32GetModuleFileNameExW(handle_, module_, path, MAX_PATH) == 0 ? QString()
                                                                              : textOf(path);
    }

    bool terminate(int exitCode) override
    {
        return TerminateProcess(handle_, static_cast<UINT>(exitCode)) != FALSE;
    }

private:
    DWORD id_;
    HANDLE handle_; // null if the process cannot be opened
    HMODULE module_ = nullptr;
};

} // namespace

void visitProcesses(const std::function<bool(RunningProcess &)> &visit)
{
    DWORD ids[1024] = {};
    DWORD bytes = 0;
    if (!K32EnumProcesses(ids, sizeof ids, &bytes))
        return;
    const DWORD count = std::min<DWORD>(bytes / sizeof(DWORD), 1024);
    for (DWORD index = 0; index < count; ++index) {
        WindowsProcess process(ids[index]);
        if (process.isOpen() && !visit(process))
            return;
    }
}

bool isProgramRunning(const QString &name)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE)
        return false;
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    static_assert(sizeof entry == 568);
    if (!Process32FirstW(snapshot, &entry)) {
        CloseHandle(snapshot);
        return false;
    }
    // From here on the handle is not closed.
    // Kept for compatibility: see "Snapshot of processes" in docs/compatibility.md.
    do {
        if (textOf(entry.szExeFile) == name)
            return true;
    } while (Process32NextW(snapshot, &entry));
    return false;
}

QString hostName()
{
    char name[128] = {};
    return gethostname(name, sizeof name) == 0 ? QString::fromLocal8Bit(name) : QString();
}

QString userName()
{
    wchar_t name[256] = {};
    DWORD length = 256;
    return GetUserNameW(name, &length) ? textOf(name) : QString();
}

} // namespace Vorn::Util::Platform
