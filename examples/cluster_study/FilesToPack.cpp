#include "FilesToPack.h"

#include "Platform.h"
#include "Text.h"

#include <QtCore/QDirIterator>

namespace ClusterStudy {

namespace {

// 7-Zip reads many names from a list, which has one name in each line. It removes blanks and
// quotation marks at both ends of a line.
bool canBePacked(const QString &name)
{
    return oneLine(name) == name && !name.endsWith(QLatin1Char(' '))
        && !name.endsWith(QLatin1Char('"'));
}

QString withReason(const QString &name, const QString &reason)
{
    return QStringLiteral("%1: %2").arg(oneLine(name), reason);
}

} // namespace

QStringList filesToPack(const QString &folder, const QString &name, QStringList &leftOut)
{
    QStringList names;
    const int prefix = folder.size() + 1;
    const QString start = folder + QLatin1Char('/') + name;
    QDirIterator entries(
        start, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
        QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QFileInfo entry = entries.fileInfo();
        const QString relative = path.mid(prefix);
        if (entry.isSymLink())
            leftOut << withReason(relative, QStringLiteral("a link"));
        else if (!entry.isFile() && !entry.isDir()) // such as a pipe
            leftOut << withReason(relative, QStringLiteral("neither a file nor a folder"));
        else if (!entry.isReadable())
            leftOut << withReason(relative, QStringLiteral("cannot be read"));
        else if (entry.isFile() && !canBePacked(relative))
            leftOut << withReason(relative, QStringLiteral("7-Zip cannot be given this name"));
        else if (entry.isFile())
            names << relative;
    }
    const QStringList unknown = namesThatAreNoText(start); // Qt does not list them
    for (const QString &path : unknown)
        leftOut << withReason(path.mid(prefix),
                              QStringLiteral("the name is no text in the encoding of the system"));
    names.sort();
    return names;
}

} // namespace ClusterStudy
