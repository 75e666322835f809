#include <Utility/UnicodeFile.h>

#include <Utility/Formats/AsciiText_p.h>
#include <Utility/Platform/FileReplacement.h>
#include <Utility/Platform/Files.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryFile>

namespace Vorn::Util {

namespace {

using Platform::MoveOutcome;

bool copyContent(QFile &from, QFile &to)
{
    constexpr qint64 BlockSize = 1 << 18;
    for (;;) {
        const QByteArray block = from.read(BlockSize);
        if (block.isEmpty())
            return from.atEnd() && from.error() == QFile::NoError && to.flush();
        if (to.write(block) != block.size())
            return false;
    }
}

// Copies the file \a original to the folder of \a path. Until the copy is complete, only this user
// can read it. Returns the path of the copy, which is empty after a failure.
QString makeCopyBeside(const QString &path, const QString &original)
{
    QFile from(original);
    QTemporaryFile copy(QFileInfo(path).path() + QStringLiteral("/vorn-XXXXXX"));
    if (!from.open(QIODevice::ReadOnly) || !copy.open() || !copyContent(from, copy)
        || !copy.setPermissions(from.permissions()))
        return QString();
    copy.setAutoRemove(false);
    return copy.fileName();
}

// The complete file is always at one of the two paths. If it is known in advance that the source
// cannot be removed, a file at the target is not replaced.
bool moveToOtherFileSystem(const QString &from, const QString &to)
{
    const bool isFile = QFileInfo(from).isFile(); // reading a pipe could block
    if (!isFile || (QFile::exists(to) && !Platform::mayReplaceFile(from)))
        return false;
    const QString copy = makeCopyBeside(to, from);
    if (copy.isEmpty())
        return false;
    if (Platform::moveFile(copy, to) != MoveOutcome::Moved) {
        Platform::removeFile(copy);
        return false;
    }
    if (Platform::removeFile(from))
        return true;
    Platform::removeFile(to);
    return false;
}

bool moveFile(const QString &from, const QString &to)
{
    const MoveOutcome outcome = Platform::moveFile(from, to);
    return outcome == MoveOutcome::OtherFileSystem ? moveToOtherFileSystem(from, to)
                                                   : outcome == MoveOutcome::Moved;
}

bool isFolder(const QString &path)
{
    const QFileInfo info(path);
    return info.isDir() && !info.isSymLink();
}

} // namespace

UnicodeFile::UnicodeFile(const QString &filePath)
{
    const QFileInfo info(filePath);
    unicodePath_ = info.path();
    if (unicodePath_.isEmpty())
        unicodePath_ = QDir::currentPath();
    unicodeName_ = info.fileName();
    asciiPath_ = isUnicode(unicodePath_) ? System::getTempDirPath() : unicodePath_;
    if (chooseAsciiName())
        renameToAscii();
}

UnicodeFile::UnicodeFile(const UnicodeFile &) = default;
UnicodeFile &UnicodeFile::operator=(const UnicodeFile &) = default;

UnicodeFile::~UnicodeFile()
{
    if (nameIsUnicode_ || pathIsUnicode_)
        renameToUnicode();
}

// The name that System::getTempFileName() returns may be unique only in the current folder. So the
// ASCII folder is the current folder during the call.
bool UnicodeFile::chooseAsciiName()
{
    if (!isUnicode(unicodeName_)) {
        asciiName_ = unicodeName_;
        return true;
    }
    const QString before = QDir::currentPath();
    if (!QDir::setCurrent(asciiPath_)) {
        setError(QStringLiteral("Cannot set current path to %1").arg(asciiPath_));
        return false;
    }
    asciiName_ = QFileInfo(System::getTempFileName(unicodeName_)).fileName();
    if (!QDir::setCurrent(before)) {
        setError(QStringLiteral("Cannot set current path back to %1").arg(before));
        return false;
    }
    return true;
}

bool UnicodeFile::renameToAscii()
{
    if (!rename(unicodeFilePath(), asciiFilePath()))
        return false;
    nameIsUnicode_ = isUnicode(unicodeName_);
    pathIsUnicode_ = isUnicode(unicodePath_);
    return true;
}

bool UnicodeFile::renameToUnicode()
{
    return rename(asciiFilePath(), unicodeFilePath());
}

bool UnicodeFile::rename(const QString &from, const QString &to)
{
    // A relative link at the ASCII path may be broken, because its target is relative to the old
    // folder. It is moved back all the same.
    const bool sourceExists
        = QFile::exists(from) || (from == asciiFilePath() && QFileInfo(from).isSymLink());
    if (!isUnicode() || !sourceExists || Platform::isSameFile(from, to))
        return true;
    // If the ASCII name is empty, the ASCII path is that of a folder, which must not be moved.
    const bool isPath = !asciiPath_.isEmpty() && !asciiName_.isEmpty();
    if (isPath && !isFolder(to) && moveFile(from, to))
        return true;
    if (QFile::exists(to) && (isFolder(to) || !Platform::mayReplaceFile(to)))
        setError(QStringLiteral("Unable to remove existing file: %1").arg(to));
    else
        setError(QStringLiteral("Unable to rename %1 to %2").arg(from, to));
    return false;
}

bool UnicodeFile::exists() const
{
    return QFile::exists(unicodeFilePath()) || QFile::exists(asciiFilePath());
}

bool UnicodeFile::isOk() const
{
    return ok_;
}

QString UnicodeFile::error() const
{
    return error_;
}

bool UnicodeFile::isUnicode() const
{
    return unicodePath_ != asciiPath_ || unicodeName_ != asciiName_;
}

bool UnicodeFile::isUnicode(const QString &text)
{
    return Formats::isUnicodeText(text);
}

QString UnicodeFile::asciiName() const
{
    return asciiName_;
}

QString UnicodeFile::asciiPath() const
{
    return asciiPath_;
}

QString UnicodeFile::unicodeName() const
{
    return unicodeName_;
}

QString UnicodeFile::unicodePath() const
{
    return unicodePath_;
}

QString UnicodeFile::asciiFilePath() const
{
    return QStringLiteral("%1/%2").arg(asciiPath_, asciiName_);
}

QString UnicodeFile::unicodeFilePath() const
{
    return QStringLiteral("%1/%2").arg(unicodePath_, unicodeName_);
}

void UnicodeFile::setError(const QString &text)
{
    ok_ = false;
    error_ = text;
}

} // namespace Vorn::Util
