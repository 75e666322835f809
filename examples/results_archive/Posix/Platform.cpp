#include "Platform.h"

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

} // namespace ResultsArchive
