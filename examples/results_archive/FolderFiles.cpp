#include "FolderFiles.h"

#include "Names.h"

#include <Utility/System.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <filesystem>

using namespace Vorn::Util;

namespace ResultsArchive {

namespace {

// Returns -1 if the folder cannot be read.
qint64 countEntries(const QString &folder)
{
    using Entries = std::filesystem::directory_iterator;
    const QByteArray name = QDir::toNativeSeparators(folder).toUtf8();
    std::error_code error;
    qint64 count = 0;
    Entries entry(std::filesystem::u8path(name.constData()), error);
    for (; !error && entry != Entries(); entry.increment(error))
        ++count;
    return error ? -1 : count;
}

// Collects the files of a folder and its subfolders.
class Walk
{
public:
    explicit Walk(const QString &folder)
        : prefix_(QDir(folder).filePath(QString(QLatin1Char('x'))).size() - 1)
    {
        enter(folder, false);
        found_.names.sort();
    }

    FolderFiles found() const { return found_; }

private:
    void enter(const QString &folder, bool isHidden)
    {
        const QDir::Filters filters
            = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        QDirIterator entries(folder, filters);
        qint64 count = 0;
        for (; entries.hasNext(); ++count) {
            entries.next();
            const QFileInfo entry = entries.fileInfo();
            take(entry, isHidden || entry.isHidden());
        }
        // Qt skips names that are not valid in the encoding of the locale.
        if (countEntries(folder) != count)
            addProblem(QStringLiteral("The folder contains a name that cannot be read"));
    }

    void take(const QFileInfo &entry, bool isHidden)
    {
        const bool isLink = entry.isSymLink() || (entry.isDir() && entry.isJunction());
        if (!isLink && !entry.isReadable())
            addProblem(QStringLiteral("%1 cannot be read").arg(oneLine(nameOf(entry))));
        else if (isLink || !(entry.isFile() || entry.isDir()))
            leaveOut(entry, isHidden);
        else if (entry.isDir())
            enter(entry.filePath(), isHidden);
        else
            add(entry, isHidden);
    }

    void add(const QFileInfo &file, bool isHidden)
    {
        found_.names << nameOf(file);
        found_.bytes += file.size();
        if (isHidden)
            found_.hiddenBytes += file.size();
    }

    void leaveOut(const QFileInfo &entry, bool isHidden)
    {
        found_.leftOut << nameOf(entry);
        if (!isHidden && entry.isFile())
            found_.linkedBytes += entry.size();
    }

    void addProblem(const QString &problem)
    {
        if (found_.problem.isEmpty())
            found_.problem = problem;
    }

    QString nameOf(const QFileInfo &entry) const { return entry.filePath().mid(prefix_); }

    FolderFiles found_;
    const int prefix_;
};

} // namespace

FolderFiles filesOf(const QString &folder)
{
    return Walk(folder).found();
}

qint64 countedBytes(const QString &folder, const FolderFiles &found)
{
    // getDirectorySize() does not count hidden files, but counts the files that links lead to.
    return System::getDirectorySize(folder) + found.hiddenBytes - found.linkedBytes;
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
            return QStringLiteral("differs from the unpacked file");
        if (block.isEmpty())
            return QStringLiteral("cannot be read");
    }
    return QString();
}

} // namespace ResultsArchive
