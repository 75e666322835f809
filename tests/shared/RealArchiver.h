#pragma once

#include "TestSystem.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>

/// The 7-Zip that the library finds on PATH on Linux. Empty if there is none.
inline QString archiverOnPath()
{
    for (const char *name : {"7z", "7zz", "7za"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!found.isEmpty())
            return found;
    }
    return QString();
}

/// Whether there is a 7-Zip: on PATH, or on Windows beside this test.
inline bool haveArchiver()
{
    if (onWindows())
        return QFile::exists(QCoreApplication::applicationDirPath() + QStringLiteral("/7z.exe"));
    return !archiverOnPath().isEmpty();
}

#define NEED_ARCHIVER                                                                              \
    if (!haveArchiver())                                                                           \
    QSKIP("There is no 7-Zip on PATH, or on Windows 7z.exe beside this test")
