#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

/// The full path of the helper program, whatever the current folder. HELPER_PROGRAM may have no
/// drive letter (as under Wine); it is on the drive of the test program.
inline QString helperProgram()
{
    return QDir(QCoreApplication::applicationDirPath())
        .absoluteFilePath(QStringLiteral(HELPER_PROGRAM));
}
