#pragma once

#include <QtCore/QDir>

/// Whether the test runs on Windows, for the few places where the contract differs.
inline bool onWindows()
{
    return QDir::separator() == QLatin1Char('\\');
}
