// Folder trees, shares and files.

#include <Utility/Platform/FolderTree.h>
#include <Utility/Platform/Folders.h>
#include <Utility/Platform/ProgramVersion.h>
#include <Utility/Platform/Shares.h>
#include <Utility/StandardOutput_p.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Vorn::Util {

namespace {

bool isLink(const QFileInfo &info)
{
    return info.isSymLink() || info.isJunction();
}

// On some systems a link to a folder is removed like a file, on others like a folder.
bool removeLink(const QString &path)
{
    return QFile::remove(path) || QDir().rmdir(path);
}

// The folder \a path with a path that can be removed. "/" and "/." at the end are dropped, because
// "link/" and "link/." refer to the target of the link. "." and ".." are replaced by the real path.
QFileInfo folderAt(const QString &path)
{
    QString name = QDir::fromNativeSeparators(path);
    while (!QFileInfo(name).isRoot()
           && (name.endsWith(QLatin1Char('/')) || name.endsWith(QLatin1String("/."))))
        name.chop(1);
    const QFileInfo folder(name);
    const bool isDotName
        = folder.fileName() == QLatin1String(".") || folder.fileName() == QLatin1String("..");
    return isDotName && folder.exists() ? QFileInfo(folder.canonicalFilePath()) : folder;
}

// The folder or, if it is a link, its target. A Windows shortcut is a file, not a link.
QString realPath(const QFileInfo &folder)
{
    return isLink(folder) && !folder.isShortcut() ? folder.canonicalFilePath() : folder.filePath();
}

struct TreeWalk
{
    // Called for each folder before its entries are visited.
    std::function<void(bool isAtTop)> enter;
    // Called for each entry of a folder. Returns whether to enter the entry.
    std::function<bool(const Platform::FolderEntry &entry, bool isAtTop)> visit;
    // Called in the parent folder after the entries of a folder, also if it could not be entered.
    std::function<void(const QString &folder)> leave;
};

// Depth first. Not recursive, so that there is no limit of the depth. Returns false if the walk
// could not be finished.
bool walkTree(Platform::FolderTree &tree, const TreeWalk &walk)
{
    std::vector<QStringList> remaining; // per level of the current path: the folders still to enter
    const auto visitCurrent = [&] {
        QStringList folders;
        const bool isAtTop = remaining.empty();
        walk.enter(isAtTop);
        tree.visitEntries([&](const Platform::FolderEntry &entry) {
            if (walk.visit(entry, isAtTop))
                folders.append(entry.name);
        });
        remaining.push_back(std::move(folders));
    };
    visitCurrent();
    for (;;) {
        if (remaining.back().isEmpty()) {
            remaining.pop_back();
            if (remaining.empty())
                return true;
            if (!tree.leave())
                return false;
        } else if (tree.enter(remaining.back().constLast())) {
            visitCurrent();
            continue;
        }
        walk.leave(remaining.back().takeLast());
    }
}

qint64 sizeBelow(const QString &folder)
{
    const std::unique_ptr<Platform::FolderTree> tree
        = Platform::openFolderTree(folder, Platform::TreeAccess::Measure);
    if (!tree)
        return 0;
    qint64 size = 0;
    TreeWalk sum;
    sum.enter = [](bool) {};
    sum.visit = [&size](const Platform::FolderEntry &entry, bool) {
        if (entry.isHidden)
            return false;
        if (entry.kind == Platform::FolderEntry::Folder)
            return !entry.isLink;
        size += entry.size;
        return false;
    };
    sum.leave = [](const QString &) {};
    walkTree(*tree, sum);
    return size;
}

// Kept for compatibility: see "What removeDir leaves" and "Missing folder to keep" in
// docs/compatibility.md.
bool emptyFolder(const QString &path, const QStringList &exceptions)
{
    const std::unique_ptr<Platform::FolderTree> tree
        = Platform::openFolderTree(path, Platform::TreeAccess::Remove);
    if (!tree)
        return true; // nothing to remove
    bool ok = true;
    const auto stays = [&exceptions](const Platform::FolderEntry &entry, bool isAtTop) {
        return entry.kind == Platform::FolderEntry::Other
            || (isAtTop && exceptions.contains(entry.name));
    };
    TreeWalk removal;
    // Links come first. When their targets in the same folder are removed, they are broken links,
    // which stay.
    removal.enter = [&](bool isAtTop) {
        QStringList links;
        tree->visitLinks([&](const Platform::FolderEntry &entry) {
            if (!stays(entry, isAtTop))
                links.append(entry.name);
        });
        for (const QString &link : qAsConst(links))
            ok = tree->removeFile(link) && ok;
    };
    removal.visit = [&](const Platform::FolderEntry &entry, bool isAtTop) {
        if (stays(entry, isAtTop))
            return false;
        if (entry.kind == Platform::FolderEntry::Folder && !entry.isLink)
            return true;
        ok = tree->removeFile(entry.name) && ok;
        return false;
    };
    removal.leave = [&](const QString &folder) { ok = tree->removeFolder(folder) && ok; };
    return walkTree(*tree, removal) && ok;
}

} // namespace

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
    const QFileInfo folder = folderAt(path);
    if (keep)
        return emptyFolder(realPath(folder), exceptions);
    if (isLink(folder))
        return removeLink(folder.filePath());
    const bool isEmptied = emptyFolder(folder.filePath(), exceptions);
    return QDir().rmdir(folder.filePath()) && isEmptied;
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
    const Formats::ProgramVersion version = Platform::programVersion(filePath);
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

QString System::getTempFileName(const QString &fileName)
{
    QString name = Platform::uniqueFileName();
    if (name.isEmpty())
        return QString();
    if (!name.endsWith(QLatin1Char('.')))
        name += QLatin1Char('.');
    name += QFileInfo(fileName).suffix();
    const bool isRooted = name.startsWith(QLatin1Char('/')) || name.startsWith(QLatin1Char('\\'));
    return isRooted ? name.mid(1) : name;
}

} // namespace Vorn::Util
