#include <Utility/SevenZip.h>

#include <Utility/SevenZipCommand_p.h>

#include <QtCore/QFileInfo>
#include <QtCore/QPointer>

namespace Vorn::Util {

SevenZip::SevenZip(QObject *parent)
    : QObject(parent)
{
}

SevenZip::~SevenZip() = default;

QString SevenZip::archiveFile() const
{
    return archiveFile_;
}

void SevenZip::setArchiveFile(const QString &archiveFile)
{
    archiveFile_ = archiveFile;
}

QString SevenZip::currentPath() const
{
    return currentPath_;
}

void SevenZip::setCurrentPath(const QString &currentPath)
{
    currentPath_ = currentPath;
}

SevenZip::Type SevenZip::type() const
{
    return type_;
}

void SevenZip::setType(Type type)
{
    type_ = type;
}

SevenZip::Method SevenZip::method() const
{
    return method_;
}

void SevenZip::setMethod(Method method)
{
    method_ = method;
}

SevenZip::Level SevenZip::level() const
{
    return level_;
}

void SevenZip::setLevel(Level level)
{
    level_ = level;
}

SevenZip::Mode SevenZip::mode() const
{
    return mode_;
}

void SevenZip::setMode(Mode mode)
{
    mode_ = mode;
}

bool SevenZip::useThreads() const
{
    return useThreads_;
}

void SevenZip::setUseThreads(bool useThreads)
{
    useThreads_ = useThreads;
}

void SevenZip::enableProgressUpdates(bool enable)
{
    progressUpdates_ = enable;
}

SevenZip::Error SevenZip::error() const
{
    return error_;
}

bool SevenZip::isOk() const
{
    return error_ == NoError;
}

QString SevenZip::output() const
{
    return output_;
}

QStringList SevenZip::files() const
{
    return files_;
}

QString SevenZip::folder() const
{
    return folder_;
}

qint64 SevenZip::compressedSize() const
{
    return compressedSize_;
}

qint64 SevenZip::uncompressedSize() const
{
    return uncompressedSize_;
}

bool SevenZip::compressFiles(const QStringList &files)
{
    return run(new SevenZipCompressCommand(files, this));
}

void SevenZip::startCompressingFiles(const QStringList &files)
{
    start(new SevenZipCompressCommand(files, this));
}

bool SevenZip::extractFilesTo(const QString &folder)
{
    return run(new SevenZipExtractCommand(folder, this));
}

void SevenZip::startExtractingFilesTo(const QString &folder)
{
    start(new SevenZipExtractCommand(folder, this));
}

bool SevenZip::listFiles()
{
    return run(new SevenZipListCommand(this));
}

void SevenZip::startListingFiles()
{
    start(new SevenZipListCommand(this));
}

void SevenZip::start(SevenZipCommand *command)
{
    currentCommand_ = command;
    command->start();
}

bool SevenZip::run(SevenZipCommand *command)
{
    const QPointer<SevenZip> self(this);
    start(command);
    const bool ended = command->waitForFinished(); // a slot may delete this object
    return self && ended && isOk();
}

void SevenZip::setError(Error error)
{
    error_ = error;
}

void SevenZip::setOutput(const QString &output)
{
    output_ = output;
}

void SevenZip::setFiles(const QStringList &files)
{
    files_ = files;
}

void SevenZip::addFile(const QString &file)
{
    files_.append(file);
}

void SevenZip::setFolder(const QString &folder)
{
    folder_ = folder;
}

void SevenZip::setCompressedSize(qint64 size)
{
    compressedSize_ = size;
}

void SevenZip::setUncompressedSize(qint64 size)
{
    uncompressedSize_ = size;
}

void SevenZip::setCommandFinished()
{
    // The command that was started last decides, even if an earlier one has finished.
    // Kept for compatibility: see "Signal of the latest operation" in docs/compatibility.md.
    switch (currentCommand_ ? currentCommand_->kind() : -1) {
    case SevenZipCommand::Compress:
        Q_EMIT compressionFinished();
        break;
    case SevenZipCommand::Extract:
        Q_EMIT extractionFinished();
        break;
    case SevenZipCommand::List:
        Q_EMIT listFinished();
        break;
    default:
        Q_ASSERT(false);
    }
}

// Kept for compatibility: see "Unknown types and methods" in docs/compatibility.md.
QString SevenZip::typeArg(Type type)
{
    switch (type) {
    case Type7z:
        return QStringLiteral("-t7z");
    case TypeZip:
        return QStringLiteral("-tzip");
    }
    Q_ASSERT(false);
    return QString();
}

QString SevenZip::methodArg(Type type, Method method)
{
    const bool isZip = type == TypeZip;
    switch (method) {
    case Copy:
        return isZip ? QStringLiteral("-mm=Copy") : QStringLiteral("-m0=Copy");
    case Deflate:
        return isZip ? QStringLiteral("-mm=Deflate") : QStringLiteral("-m0=Deflate");
    case LZMA:
        if (!isZip)
            return QStringLiteral("-m0=LZMA");
        break;
    case LZMA2:
        if (!isZip)
            return QStringLiteral("-m0=LZMA2");
        break;
    case BZip2:
        if (!isZip)
            return QStringLiteral("-m0=BZip2");
        break;
    }
    Q_ASSERT(false);
    return QString();
}

QString SevenZip::levelArg(Level level)
{
    return QStringLiteral("-mx=%1").arg(static_cast<int>(level));
}

QString SevenZip::modeArg(Mode mode)
{
    return QStringLiteral("-ma=%1").arg(static_cast<int>(mode));
}

QString SevenZip::multithreadArg(bool useThreads)
{
    return useThreads ? QStringLiteral("-mmt=on") : QStringLiteral("-mmt=off");
}

QString SevenZip::fileExt(Type type)
{
    switch (type) {
    case Type7z:
        return QStringLiteral("7z");
    case TypeZip:
        return QStringLiteral("zip");
    }
    Q_ASSERT(false);
    return QString();
}

SevenZip::Type SevenZip::toType(const QString &text)
{
    if (text == QLatin1String("7z"))
        return Type7z;
    if (text == QLatin1String("zip"))
        return TypeZip;
    Q_ASSERT(false);
    return Type7z;
}

SevenZip::Method SevenZip::toMethod(const QString &text)
{
    if (text == QLatin1String("Copy"))
        return Copy;
    if (text == QLatin1String("Deflate"))
        return Deflate;
    if (text == QLatin1String("LZMA"))
        return LZMA;
    if (text == QLatin1String("LZMA2"))
        return LZMA2;
    if (text == QLatin1String("BZip2"))
        return BZip2;
    Q_ASSERT(false);
    return LZMA2;
}

qint64 SevenZip::fileSize(const QString &path)
{
    return QFileInfo(path).size();
}

qint64 SevenZip::fileSizes(const QStringList &paths)
{
    qint64 sum = 0;
    for (const QString &path : paths)
        sum += fileSize(path);
    return sum;
}

} // namespace Vorn::Util
