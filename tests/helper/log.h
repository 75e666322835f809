#pragma once

#include <QtCore/QStringList>

/// "log-check FILE": has a log that is not open check its size, which writes nothing else.
int logCheck(const QStringList &arguments);

/// "log-append FILE TEXT": opens the log and appends a line without a time.
int logAppend(const QStringList &arguments);
