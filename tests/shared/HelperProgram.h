#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

/// The helper program by its full path, whatever the current folder. It lies on the drive of the
/// test program; the path that the build knows need not name one.
inline QString helperProgram()
{
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral(HELPER_PROGRAM));
}
