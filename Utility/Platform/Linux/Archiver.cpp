#include <Utility/Platform/Archiver.h>

#include <Utility/QtVersion_p.h>

#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringList>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Vorn::Util::Platform {

namespace {

// When p7zip adds files to an encrypted archive, it opens the terminal to ask for the password,
// even if its standard input is closed. Without a controlling terminal it reads the standard input
// instead. The process stays in its session and process group, so that Ctrl-C still reaches it.
void leaveTerminal()
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal < 0)
        return; // there is no terminal
    ioctl(terminal, TIOCNOTTY);
    ::close(terminal);
}

} // namespace

QString findArchiver(const QString &productFolder)
{
    QString own = QStringLiteral("%1/7z.exe").arg(productFolder);
    if (QFileInfo::exists(own))
        return own;

    const QStringList names{QStringLiteral("7z"), QStringLiteral("7zz"), QStringLiteral("7za")};
    for (const QStringList &folders : {QStringList{productFolder}, QStringList()}) {
        for (const QString &name : names) {
            // With an empty list findExecutable() searches PATH.
            QString program = QStandardPaths::findExecutable(name, folders);
            if (!program.isEmpty())
                return program;
        }
    }
    return own;
}

std::unique_ptr<QProcess> makeArchiverProcess()
{
    return std::make_unique<QtVersion::ProcessWithChildFunction>(leaveTerminal);
}

} // namespace Vorn::Util::Platform
