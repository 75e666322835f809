#include <Utility/UnicodeFile.h>

#include <Utility/AsciiText.h>
#include <Utility/Platform/Files.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryFile>

namespace Vorn::Util {

namespace {

using Platform::MoveOutcome;

// The name of a new file in the folder of path that only this user may read. An empty name and no
// file when it cannot be made or fill fails.
template <typename Fill> QString makeFileBeside(const QString &path, const Fill &fill)
{
    QTemporaryFile file(QFileInfo(path).path() + QStringLiteral("/vorn-XXXXXX"));
    if (!file.open() || !fill(file))
        return QString();
    file.setAutoRemove(false);
    return file.fileName();
}

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

bool isMoved(const QString &from, const QString &to)
{
    return Platform::moveFile(from, to) == MoveOutcome::Moved;
}

// The file is put aside, not removed, before the copy takes its place: only that tells whether it
// can be taken away, and it can be taken back.
bool replaceByCopy(const QString &from, const QString &copy, const QString &to)
{
    const QString aside = makeFileBeside(from, [](QFile &) { return true; });
    if (aside.isEmpty())
        return false;
    if (!isMoved(from, aside)) {
        QFile::remove(aside);
        return false;
    }
    if (!isMoved(copy, to)) {
        isMoved(aside, from);
        return false;
    }
    QFile::remove(aside);
    return true;
}

bool moveToOtherFileSystem(const QString &from, const QString &to)
{
    if (!QFileInfo(from).isFile()) // a pipe could keep the caller waiting
        return false;
    const QString copy = makeFileBeside(to, [&from](QFile &file) {
        QFile source(from);
        return source.open(QIODevice::ReadOnly) && copyContent(source, file)
            && file.setPermissions(source.permissions());
    });
    if (copy.isEmpty())
        return false;
    const bool ok = replaceByCopy(from, copy, to);
    if (!ok)
        QFile::remove(copy);
    return ok;
}

// Leaves both as they were when it fails.
bool moveFile(const QString &from, const QString &to)
{
    const MoveOutcome outcome = Platform::moveFile(from, to);
    return outcome == MoveOutcome::OtherFileSystem ? moveToOtherFileSystem(from, to)
                                                   : outcome == MoveOutcome::Moved;
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

// The system's unique names hold for the current folder.
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
    if (!isUnicode() || !QFile::exists(from))
        return true;
    // Without a name the plain path is that of its folder, which must not be moved.
    const bool isPath = !asciiPath_.isEmpty() && !asciiName_.isEmpty();
    if (isPath && moveFile(from, to))
        return true;
    if (QFile::exists(to))
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
    return isUnicodeText(text);
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
