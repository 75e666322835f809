// Flags, folder trees, shares and program files.

#include <Utility/Platform/ProgramVersion.h>
#include <Utility/Platform/Shares.h>
#include <Utility/StandardOutput.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

namespace Vorn::Util {

namespace {

bool isLink(const QFileInfo &info)
{
    return info.isSymLink() || info.isJunction();
}

// A link to a folder is a file to some systems and a folder to others.
bool removeLink(const QString &path)
{
    return QFile::remove(path) || QDir().rmdir(path);
}

// Not with the iterator's own way into subfolders, which takes junctions too and so may never end.
qint64 sizeBelow(const QString &folder)
{
    qint64 size = 0;
    QDirIterator entries(folder, QDir::AllEntries | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo info = entries.fileInfo();
        if (!info.isDir())
            size += info.size();
        else if (!isLink(info))
            size += sizeBelow(info.filePath());
    }
    return size;
}

// By a name that can be removed: "link/" and "link/." would be the folder that the link points to.
QFileInfo folderNamed(const QString &path)
{
    QString name = QDir::fromNativeSeparators(path);
    while (!QFileInfo(name).isRoot()
           && (name.endsWith(QLatin1Char('/')) || name.endsWith(QLatin1String("/."))))
        name.chop(1);
    const QFileInfo folder(name);
    const bool isNameless
        = folder.fileName() == QLatin1String(".") || folder.fileName() == QLatin1String("..");
    return isNameless && folder.exists() ? QFileInfo(folder.canonicalFilePath()) : folder;
}

bool removeEntry(const QFileInfo &info)
{
    // Not the absolute path, in which Qt takes "link/.." out as text.
    const QString path = info.filePath();
    if (isLink(info))
        return removeLink(path);
    if (info.isDir())
        return System::removeDir(path, false, QStringList());
    return !info.isFile() || QFile::remove(path);
}

} // namespace

QString System::getFlagsDirPath()
{
    if (flagsDirPath_.isEmpty())
        flagsDirPath_ = makeAndGetNativePath(QStringLiteral("%1/Flags").arg(getUserDataPath()));
    return flagsDirPath_;
}

bool System::isFlagSet(const QString &flag)
{
    const QString folder = getFlagsDirPath();
    if (folder.isEmpty())
        return false;
    QFile file(folder + QLatin1Char('/') + QStringLiteral("VORN_flags.txt"));
    // A pipe of that name would keep the caller waiting.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    while (!stream.atEnd()) {
        if (stream.readLine().simplified().section(QLatin1Char(' '), 0, 0) == flag)
            return true;
    }
    return false;
}

qint64 System::getDirectorySize(const QString &path)
{
    const QDir folder(path);
    if (!folder.exists())
        return 0;
    return sizeBelow(folder.absolutePath());
}

bool System::removeDir(const QString &path, bool keepFolder, const QStringList &exceptions)
{
    if (path.isEmpty())
        return false;
    const bool keep = keepFolder || !exceptions.isEmpty();
    const QFileInfo folder = folderNamed(path);
    if (isLink(folder))
        return keep || removeLink(folder.filePath());

    bool ok = true;
    const QFileInfoList entries
        = QDir(folder.filePath())
              .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                             QDir::Unsorted);
    for (const QFileInfo &entry : entries) {
        if (!exceptions.contains(entry.fileName()))
            ok = removeEntry(entry) && ok;
    }
    if (!keep)
        ok = QDir().rmdir(folder.filePath()) && ok;
    return ok;
}

bool System::shareFolder(const QString &shareName, const QString &path)
{
    return Platform::shareFolder(shareName, path);
}

bool System::isFolderShared(const QString &path)
{
    return Platform::isFolderShared(path);
}

QString System::getFileVersion(const QString &filePath)
{
    const Platform::ProgramVersion version = Platform::programVersion(filePath);
    const auto highPart = [](quint32 word) { return QString::number(word >> 16); };
    const auto lowPart = [](quint32 word) { return QString::number(word & 0xffff); };
    QString text = QStringLiteral("%1.%2.%3.%4")
                       .arg(highPart(version.high), lowPart(version.high), highPart(version.low),
                            lowPart(version.low));
    printToStandardOutput(
        QStringLiteral("Higher: %1\nLower: %2\nVersion: %3\n")
            .arg(QString::number(version.high, 16), QString::number(version.low, 16), text));
    return text;
}

} // namespace Vorn::Util
