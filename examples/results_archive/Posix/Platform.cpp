#include "Platform.h"

#include <QtCore/QFile>

#include <unistd.h>

namespace ResultsArchive {

bool isTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
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
