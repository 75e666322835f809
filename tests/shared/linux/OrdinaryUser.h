#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <cstdlib>
#include <functional>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

/// What \a work returns in a child process, after whatever it prints to the standard output; Qt's
/// messages are not shown. Ends with "died" when it does not return.
inline QByteArray inChildProcess(const std::function<QByteArray()> &work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        const QByteArray result = work();
        const bool isWritten
            = write(ends[1], result.constData(), static_cast<std::size_t>(result.size()))
            == result.size();
        _exit(isWritten ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    close(ends[1]);
    QByteArray printed;
    char block[4096];
    for (ssize_t size = 0; (size = read(ends[0], block, sizeof block)) > 0;)
        printed.append(block, static_cast<int>(size));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS ? printed : printed + "died";
}

/// As inChildProcess(), but never as root, for whom permissions do not count.
inline QByteArray asOrdinaryUser(const std::function<QByteArray()> &work)
{
    return inChildProcess([&work] {
        constexpr unsigned int Nobody = 65534;
        const bool isRoot = geteuid() == 0;
        if (isRoot && (setgroups(0, nullptr) != 0 || setgid(Nobody) != 0 || setuid(Nobody) != 0))
            _exit(EXIT_FAILURE);
        return work();
    });
}
