#include <Utility/Platform/Archiver.h>

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringList>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Vorn::Util::Platform {

namespace {

// p7zip opens the terminal to ask for the password of an archive that it adds files to, whatever
// its standard input is. Without a controlling terminal it reads the standard input, which is at
// its end. The process stays in its session and process group, to which the terminal sends its
// signals.
class ProcessWithoutTerminal : public QProcess
{
protected:
    void setupChildProcess() override
    {
        const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (terminal < 0)
            return; // there is none
        ioctl(terminal, TIOCNOTTY);
        ::close(terminal);
    }
};

} // namespace

QString findArchiver(const QString &productFolder)
{
    QString own = QStringLiteral("%1/7z.exe").arg(productFolder);
    if (QFileInfo::exists(own))
        return own;

    const QStringList names{QStringLiteral("7z"), QStringLiteral("7zz"), QStringLiteral("7za")};
    for (const QStringList &folders : {QStringList{productFolder}, QStringList()}) {
        for (const QString &name : names) {
            // An empty list of folders stands for PATH.
            QString program = QStandardPaths::findExecutable(name, folders);
            if (!program.isEmpty())
                return program;
        }
    }
    return own;
}

std::unique_ptr<QProcess> makeArchiverProcess()
{
    return std::make_unique<ProcessWithoutTerminal>();
}

} // namespace Vorn::Util::Platform
