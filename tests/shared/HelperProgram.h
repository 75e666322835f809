#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

/// The full path of the helper program, whatever the current folder. The path that the build knows
/// may lack the drive, which is that of the test program.
inline QString helperProgram()
{
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral(HELPER_PROGRAM));
}
