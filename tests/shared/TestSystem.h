#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>

/// Whether the test runs on Windows, for the few places where the required behaviour differs.
inline bool onWindows()
{
    return QDir::separator() == QLatin1Char('\\');
}

/// The end of a line that was written in text mode.
inline QByteArray lineEnd()
{
    return onWindows() ? "\r\n" : "\n";
}
