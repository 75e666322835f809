#pragma once

#include <QtCore/QStringList>

/// "log-check FILE": calls append() of a log that is not open: it checks the size and writes no
/// line.
int logCheck(const QStringList &arguments);

/// "log-append FILE TEXT": opens the log and appends a line without a time.
int logAppend(const QStringList &arguments);

/// "log-append-lines FILE NAME COUNT": opens the log, prints a line, waits for one and appends
/// lines of NumberedLines.h.
int logAppendLines(const QStringList &arguments);

/// "log-at-exit FILE FORM": a static object appends "made" when it is made and "destroyed" after
/// the end of main(). FORM is the number of the Log time-stamp form.
int logAtExit(const QStringList &arguments);

/// "log-truncate-endlessly FILE FIRST": appends lines of NumberedLines.h, from the one of this
/// number on, so that the log is truncated again and again, and prints the number of the last one
/// that is written.
int logTruncateEndlessly(const QStringList &arguments);
