#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

/// All bytes of a file, as they are; none when it cannot be read.
inline QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Creates a file of exactly these bytes.
inline bool writeFile(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

/// As writeFile(), and creates the folders that are missing.
inline bool writeFileInFolder(const QString &fileName, const QByteArray &content)
{
    return QDir().mkpath(QFileInfo(fileName).path()) && writeFile(fileName, content);
}

/// The names of all that lies in a folder, in their order.
inline QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}
