#pragma once

#include <QtCore/QStorageInfo>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/// The first of the usual folders that lies on another file system than \a folder, can be written
/// to and has more than 40 MiB free; empty if there is no such folder.
inline QString folderOnAnotherFileSystem(const QString &folder)
{
    constexpr qint64 Needed = 40 << 20;
    const QByteArray device = QStorageInfo(folder).device();
    for (const char *name : {"/dev/shm", "/run/user", "/run", "/tmp", "/var/tmp"}) {
        const QStorageInfo storage(QString::fromLatin1(name));
        if (storage.isValid() && storage.isReady() && !storage.isReadOnly()
            && storage.device() != device && storage.bytesAvailable() > Needed
            && QTemporaryDir(QString::fromLatin1(name) + QStringLiteral("/log-XXXXXX")).isValid())
            return QString::fromLatin1(name);
    }
    return QString();
}
