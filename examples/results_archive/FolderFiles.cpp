#include "FolderFiles.h"

#include "Names.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <filesystem>

namespace ResultsArchive {

namespace {

// Qt passes over names that it cannot read as text; so the count of what is there tells whether
// it has shown everything. -1 when that cannot be told.
qint64 countEntries(const QString &folder)
{
    using Entries = std::filesystem::recursive_directory_iterator;
    const QByteArray name = QDir::toNativeSeparators(folder).toUtf8();
    std::error_code error;
    qint64 count = 0;
    Entries entry(std::filesystem::u8path(name.constData()), error);
    for (; !error && entry != Entries(); entry.increment(error)) {
        if (!std::filesystem::is_directory(entry->symlink_status(error)))
            ++count;
    }
    return error ? -1 : count;
}

} // namespace

FolderFiles filesOf(const QString &folder)
{
    FolderFiles found;
    const QDir::Filters filters
        = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QDirIterator entries(folder, filters, QDirIterator::Subdirectories);
    const int prefix = QDir(folder).filePath(QString(QLatin1Char('x'))).size() - 1;
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo entry = entries.fileInfo();
        const QString name = entry.filePath().mid(prefix);
        if (!entry.isSymLink() && !entry.isReadable()) {
            if (found.problem.isEmpty())
                found.problem = QStringLiteral("%1 cannot be read").arg(oneLine(name));
        } else if (entry.isSymLink() || !(entry.isFile() || entry.isDir())) {
            found.leftOut << name;
        } else if (entry.isFile()) {
            found.names << name;
            found.bytes += entry.size();
        }
    }
    if (found.problem.isEmpty()
        && countEntries(folder) != found.names.size() + found.leftOut.size())
        found.problem = QStringLiteral("The folder holds a name that cannot be read");
    found.names.sort();
    return found;
}

QString differenceInFiles(const QString &original, const QString &copy)
{
    constexpr qint64 BlockSize = 1 << 16;
    QFile first(original);
    QFile second(copy);
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot be read");
    while (!first.atEnd() || !second.atEnd()) {
        const QByteArray block = first.read(BlockSize);
        if (block != second.read(BlockSize))
            return QStringLiteral("differs from its packed form");
        if (block.isEmpty())
            return QStringLiteral("cannot be read");
    }
    return QString();
}

} // namespace ResultsArchive
