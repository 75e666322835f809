#include "Platform.h"

#include <QtCore/QRegularExpression>

#include <csignal>
#include <cstdio>
#include <io.h>
#include <windows.h>

namespace ClusterStudy {

bool isTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

bool canBePassed(const QString &)
{
    return true;
}

// A name without a suffix is no batch file: CreateProcess() adds only ".exe".
bool isRunByShell(const QString &program)
{
    // Windows ignores dots and blanks at the end of a name.
    static const QRegularExpression batchFile(QStringLiteral("\\.(bat|cmd)[. ]*$"),
                                              QRegularExpression::CaseInsensitiveOption);
    return batchFile.match(program).hasMatch();
}

QStringList namesThatAreNoText(const QString &)
{
    return {};
}

bool isRunning(qint64 process)
{
    HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(process));
    if (!handle)
        return GetLastError() == ERROR_ACCESS_DENIED;
    const bool isRunning = WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
    CloseHandle(handle);
    return isRunning;
}

void ignoreEndOfReader() { }

QVector<int> endSignals()
{
    return {SIGINT, SIGTERM, SIGBREAK}; // SIGBREAK: Ctrl-Break
}

} // namespace ClusterStudy
