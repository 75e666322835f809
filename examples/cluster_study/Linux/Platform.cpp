#include "Platform.h"

#include <QtCore/QFile>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace ClusterStudy {

bool isTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

bool canBePassed(const QString &text)
{
    // fromLocal8Bit() removes a byte order mark at the beginning.
    const QString marked = QLatin1Char('x') + text;
    // Qt reads bytes that are no text as this character.
    return !text.contains(QChar(QChar::ReplacementCharacter))
        && QString::fromLocal8Bit(marked.toLocal8Bit()) == marked;
}

bool isRunByShell(const QString &)
{
    return false;
}

QStringList namesThatAreNoText(const QString &folder)
{
    using Entries = std::filesystem::recursive_directory_iterator;
    QStringList names;
    std::error_code error;
    Entries entry(QFile::encodeName(folder).toStdString(),
                  std::filesystem::directory_options::skip_permission_denied, error);
    for (; !error && entry != Entries(); entry.increment(error)) {
        const QByteArray path = QByteArray::fromStdString(entry->path().string());
        const QString text = QFile::decodeName(path);
        if (QFile::encodeName(text) != path) {
            names << text;
            entry.disable_recursion_pending();
        }
    }
    return names;
}

bool isRunning(qint64 process)
{
    return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
}

void ignoreEndOfReader()
{
    std::signal(SIGPIPE, SIG_IGN); // Qt restores it in child processes
}

QVector<int> endSignals()
{
    QVector<int> all{SIGINT, SIGTERM};
    struct sigaction hangUp = {};
    sigaction(SIGHUP, nullptr, &hangUp);
    if (hangUp.sa_handler != SIG_IGN) // nohup ignores it, so that the program runs on
        all << SIGHUP;
    return all;
}

} // namespace ClusterStudy
