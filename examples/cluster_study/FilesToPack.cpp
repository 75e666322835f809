#include "FilesToPack.h"

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

} // namespace

QStringList filesToPack(const QString &folder, const QString &name, QStringList &leftOut)
{
    QStringList names;
    const int prefix = folder.size() + 1;
    QDirIterator files(folder + QLatin1Char('/') + name,
                       QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QFileInfo file = files.fileInfo();
        if (!file.isFile() || file.isSymLink())
            continue; // such as a pipe
        const QString relative = path.mid(prefix);
        (canBePacked(relative) ? names : leftOut) << relative;
    }
    names.sort();
    return names;
}

} // namespace ClusterStudy
