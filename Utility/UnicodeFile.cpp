#include <Utility/UnicodeFile.h>

#include <Utility/AsciiText.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Vorn::Util {

UnicodeFile::UnicodeFile(const QString &filePath)
{
    const QFileInfo info(filePath);
    unicodePath_ = info.path();
    if (unicodePath_.isEmpty())
        unicodePath_ = QDir::currentPath();
    pathIsUnicode_ = isUnicode(unicodePath_);
    unicodeName_ = info.fileName();
    nameIsUnicode_ = isUnicode(unicodeName_);
    asciiPath_ = pathIsUnicode_ ? System::getTempDirPath() : unicodePath_;
    if (chooseAsciiName())
        renameToAscii();
}

UnicodeFile::UnicodeFile(const UnicodeFile &) = default;
UnicodeFile &UnicodeFile::operator=(const UnicodeFile &) = default;

UnicodeFile::~UnicodeFile()
{
    renameToUnicode();
}

// The system's unique names hold for the current folder.
bool UnicodeFile::chooseAsciiName()
{
    if (!nameIsUnicode_) {
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
    stayed_ = !rename(unicodeFilePath(), asciiFilePath());
    return !stayed_;
}

bool UnicodeFile::renameToUnicode()
{
    // Else what could not be removed from the plain path would take the place of this file.
    return stayed_ || rename(asciiFilePath(), unicodeFilePath());
}

bool UnicodeFile::rename(const QString &from, const QString &to)
{
    if (!isUnicode() || !QFile::exists(from))
        return true;
    // One file under two spellings: to make room for it would be to delete it.
    if (QFileInfo(from).canonicalFilePath() == QFileInfo(to).canonicalFilePath())
        return true;
    // Without a plain name the plain path is that of a folder, and without a temporary folder one
    // in the root: nothing may go there or leave from there.
    const bool isKnown = !asciiPath_.isEmpty() && !asciiName_.isEmpty();
    if (QFile::exists(to) && (!isKnown || !QFile::remove(to))) {
        setError(QStringLiteral("Unable to remove existing file: %1").arg(to));
        return false;
    }
    if (!isKnown || !QFile::rename(from, to)) {
        setError(QStringLiteral("Unable to rename %1 to %2").arg(from, to));
        return false;
    }
    return true;
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
