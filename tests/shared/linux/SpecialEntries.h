#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

#include <cstdio>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/// Entries of a folder that are neither files nor folders nor links to them.
constexpr const char *SpecialEntries[]
    = {"pipe", "socket", "link to nowhere", "link to a device", "link to a pipe", "link to itself"};

inline bool makeSocket(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", name.constData());
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isMade
        = bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    close(descriptor);
    return isMade;
}

/// Makes an entry of \a kind, one of SpecialEntries. The pipe that a link leads to is made at
/// \a pipe.
inline bool makeSpecialEntry(const QString &path, const QString &kind, const QString &pipe)
{
    if (kind == QLatin1String("pipe"))
        return mkfifo(QFile::encodeName(path).constData(), 0666) == 0;
    if (kind == QLatin1String("socket"))
        return makeSocket(path);
    if (kind == QLatin1String("link to nowhere"))
        return QFile::link(path + QStringLiteral(" of nothing"), path);
    if (kind == QLatin1String("link to a device"))
        return QFile::link(QStringLiteral("/dev/null"), path);
    if (kind == QLatin1String("link to itself"))
        return QFile::link(path, path);
    return mkfifo(QFile::encodeName(pipe).constData(), 0666) == 0 && QFile::link(pipe, path);
}
