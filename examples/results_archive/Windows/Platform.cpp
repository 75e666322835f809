#include "Platform.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <io.h>

namespace ResultsArchive {

bool isTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

void ignoreEndOfReader() { }

QVector<int> endSignals()
{
    return {SIGINT, SIGTERM, SIGBREAK}; // SIGBREAK: Ctrl-Break
}

QString listingCommand(const QString &variable)
{
    return QStringLiteral("@dir /a /b \"%%1%\"").arg(variable);
}

void setVariable(const QString &name, const QString &value)
{
    _wputenv_s(name.toStdWString().c_str(), value.toStdWString().c_str());
}

} // namespace ResultsArchive
