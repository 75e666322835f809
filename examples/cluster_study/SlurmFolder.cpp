#include "SlurmFolder.h"

#include "CaseCommand.h"
#include "SlurmText.h"
#include "StudyFolder.h"
#include "Text.h"

#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

const QString NameFile = QStringLiteral("job-name.txt");

QString commandFile(int number)
{
    return QString::number(number) + QStringLiteral(".json");
}

} // namespace

SlurmFolder::SlurmFolder(const StudyFolder &folder)
    : folder_(folder)
{
}

bool SlurmFolder::exists() const
{
    return QFileInfo(path()).isDir();
}

QString SlurmFolder::create() const
{
    if (!QDir().mkpath(path()))
        return QStringLiteral("%1 cannot be created").arg(shown(path()));
    return jobName().isEmpty() ? folder_.writeFile(nameIn(NameFile), newJobName().toUtf8())
                               : QString();
}

QString SlurmFolder::remove() const
{
    if (exists() && !System::removeDir(path(), false, QStringList()))
        return QStringLiteral("%1 cannot be removed").arg(shown(path()));
    return QString();
}

QString SlurmFolder::path() const
{
    return folder_.file(QStringLiteral("slurm"));
}

QString SlurmFolder::jobName() const
{
    const QString name = QString::fromUtf8(folder_.readFile(nameIn(NameFile))).trimmed();
    return isJobName(name) ? name : QString();
}

QString SlurmFolder::writeCommand(int number, const CaseCommand &command) const
{
    return folder_.writeFile(nameIn(commandFile(number)), commandFileContent(command, number));
}

bool SlurmFolder::readCommand(int number, CaseCommand &command) const
{
    return readCommandFile(folder_.readFile(nameIn(commandFile(number))), number, command);
}

QString SlurmFolder::messagesName()
{
    return QStringLiteral("messages.txt");
}

QString SlurmFolder::messages() const
{
    return QString::fromLocal8Bit(folder_.readFile(nameIn(messagesName())));
}

QString SlurmFolder::nameIn(const QString &name) const
{
    return QStringLiteral("slurm/") + name;
}

} // namespace ClusterStudy
