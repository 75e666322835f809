#pragma once

#include "TestFiles.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QList>
#include <QtCore/QString>

#include <unistd.h>

/// The number of open descriptors, including the one that counting needs.
inline int openDescriptors()
{
    return entriesOf(QStringLiteral("/proc/self/fd")).size();
}

/// The processes that this one has started and not waited for, ended ones among them.
inline QList<pid_t> childProcesses()
{
    QList<pid_t> children;
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &name : names) {
        // "PID (NAME) STATE PARENT ..."
        const QByteArray stat = contentOf(QStringLiteral("/proc/%1/stat").arg(name));
        const QList<QByteArray> words = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (words.value(1).toInt() == getpid())
            children.append(name.toInt());
    }
    return children;
}

/// The bytes of memory that this process holds.
inline qint64 residentMemory()
{
    const QList<QByteArray> pages = contentOf(QStringLiteral("/proc/self/statm")).split(' ');
    return pages.value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// Starts the measurement of peakMemory() anew.
inline bool restartPeakMemory()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly) && file.write("5") == 1 && file.flush();
}

inline qint64 peakMemory()
{
    const QByteArray status = contentOf(QStringLiteral("/proc/self/status"));
    const int from = status.indexOf("VmHWM:");
    return status.mid(from, status.indexOf('\n', from) - from)
               .simplified()
               .split(' ')
               .value(1)
               .toLongLong()
        * 1024;
}

constexpr qint64 MiB = 1048576;
