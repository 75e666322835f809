#include "Workplace.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>

#include <cstdlib>

namespace Workplace {

namespace {

QString root;

QString fileName(const QString &folder, int index)
{
    return QStringLiteral("%1/%2/%3.dat").arg(folder).arg(index / 100).arg(index);
}

void writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
}

void writeFiles(const QString &folder, int count, int size)
{
    QRandomGenerator random(1);
    QByteArray content(size, '\0');
    for (int index = 0; index < count; ++index) {
        if (index % 100 == 0)
            QDir().mkpath(QStringLiteral("%1/%2").arg(folder).arg(index / 100));
        for (char &byte : content)
            byte = static_cast<char>('0' + random.bounded(10));
        writeFile(fileName(folder, index), content);
    }
}

} // namespace

void setFolder(const QString &folder)
{
    root = folder;
}

QString path(const QString &name)
{
    return root + QLatin1Char('/') + name;
}

QStringList makeFiles(const QString &name, int count, int size)
{
    const QString folder = path(name);
    if (!QFileInfo::exists(folder)) {
        // Renamed when it is complete, so that an interrupted run leaves no incomplete folder.
        const QString incomplete = folder + QStringLiteral(".new");
        QDir(incomplete).removeRecursively();
        writeFiles(incomplete, count, size);
        QDir().rename(incomplete, folder);
    }
    QStringList files;
    for (int index = 0; index < count; ++index)
        files.append(fileName(folder, index));
    return files;
}

void shell(const QString &command)
{
    if (std::system(qPrintable(command + QStringLiteral(" >/dev/null 2>&1 </dev/null"))) != 0)
        qFatal("failed: %s", qPrintable(command));
}

} // namespace Workplace
