#include "Platform.h"

#include <QtCore/QFile>

#include <csignal>
#include <unistd.h>

namespace ResultsArchive {

bool isTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
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

QString listingCommand(const QString &variable)
{
    return QStringLiteral("ls -l \"$%1\"").arg(variable);
}

void setVariable(const QString &name, const QString &value)
{
    qputenv(name.toLatin1().constData(), QFile::encodeName(value));
}

} // namespace ResultsArchive
