#include "Platform.h"

#include <cstdio>
#include <io.h>

namespace ResultsArchive {

bool isTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

QString listingCommand(const QString &variable)
{
    return QStringLiteral("@dir \"%%1%\"").arg(variable);
}

} // namespace ResultsArchive
