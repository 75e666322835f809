#include <Utility/SevenZipCommand_p.h>

#include <Utility/ArchiverProgram_p.h>
#include <Utility/DebugMessages_p.h>
#include <Utility/Platform/Archiver.h>
#include <Utility/QtVersion_p.h>
#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QTextStream>
#include <QtCore/QThread>

namespace Vorn::Util {

namespace {

constexpr int MaxFilesOnCommandLine = 32;
constexpr int WarningCode = 1;
constexpr int FatalErrorCode = 2;

// All other exit codes mean no error.
// Kept for compatibility: see "Exit codes of the archiver" in docs/compatibility.md.
SevenZip::Error errorOf(int exitCode, QProcess::ExitStatus exitStatus)
{
    if (exitStatus == QProcess::CrashExit || exitCode == FatalErrorCode)
        return SevenZip::FatalError;
    return exitCode == WarningCode ? SevenZip::Warning : SevenZip::NoError;
}

Formats::ArchiverOperation operationOf(int kind)
{
    if (kind == SevenZipCommand::Compress)
        return Formats::ArchiverOperation::Compress;
    return kind == SevenZipCommand::Extract ? Formats::ArchiverOperation::Extract
                                            : Formats::ArchiverOperation::List;
}

bool exists(const QString &name)
{
    const QFileInfo info(name);
    return info.exists() || info.isSymLink(); // a broken link does not exist for QFileInfo
}

// Closes the file, because a network file system may report a full disk only then.
bool writeNames(QFile &file, const QStringList &names)
{
    QTextStream stream(&file);
    QtVersion::setUtf8(stream);
    for (const QString &name : names)
        stream << name << '\n';
    stream.flush();
    const bool isWritten = stream.status() == QTextStream::Ok;
    stream.setDevice(nullptr);
    file.close();
    return isWritten && file.error() == QFileDevice::NoError;
}

} // namespace

// Stores what the archiver reports in the SevenZip object.
class SevenZipCommand::Results : public Formats::ArchiverEvents
{
public:
    explicit Results(SevenZip *archive)
        : archive_(archive)
    {
    }

    void type(const QString &name) override { archive_->setType(SevenZip::toType(name)); }
    void method(const QString &name) override { archive_->setMethod(SevenZip::toMethod(name)); }
    void file(const QString &name) override { archive_->addFile(name); }
    void uncompressedSize(qint64 bytes) override { archive_->setUncompressedSize(bytes); }
    void compressedSize(qint64 bytes) override { archive_->setCompressedSize(bytes); }

private:
    SevenZip *archive_;
};

SevenZipCommand::SevenZipCommand(int kind, SevenZip *owner)
    : QObject(owner)
    , kind_(kind)
    , owner_(owner)
{
}

SevenZipCommand::~SevenZipCommand() = default;

int SevenZipCommand::kind() const
{
    return kind_;
}

void SevenZipCommand::start()
{
    owner_->setError(SevenZip::NoError);
    owner_->setOutput(QString());
    if (!owner_->currentPath().isEmpty()) {
        savedPath_ = QDir::currentPath();
        QDir::setCurrent(owner_->currentPath());
    }
    if (isRefused_) {
        // Queued, so that the signal is emitted after this call, as for a started archiver.
        QMetaObject::invokeMethod(this, &SevenZipCommand::endRefused, Qt::QueuedConnection);
        return;
    }
    process_ = Platform::makeArchiverProcess().release();
    process_->setProcessChannelMode(QProcess::MergedChannels);
    connect(process_, &QProcess::readyReadStandardOutput, this, &SevenZipCommand::readOutput);
    connect(process_, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &SevenZipCommand::handleFinished);

    const ArchiverProgram archiver = findArchiverProgram(System::getCurrentExePath());
    const Formats::ArchiverOperation operation = operationOf(kind_);
    results_ = std::make_unique<Results>(owner_);
    reader_
        = Formats::makeArchiverReader(archiver.dialect, archiver.separator, operation, *results_);
    const QStringList all = Formats::archiverArguments(archiver.dialect, operation, arguments());
    qCDebug(debugMessages).noquote() << all.join(QLatin1Char(' '));
    process_->start(archiver.path, all, QIODevice::ReadWrite);
    process_->closeWriteChannel();
}

bool SevenZipCommand::waitForFinished()
{
    if (!process_) {
        endRefused();
        return true;
    }
    // Without the pause this thread would wake up for each block of output, which makes the
    // archiver a tenth slower.
    constexpr unsigned long PauseBetweenReads = 300; // microseconds
    const QPointer<QProcess> process(process_);      // a slot may delete it
    while (process && process->waitForReadyRead(-1))
        QThread::usleep(PauseBetweenReads);
    if (process && process->state() != QProcess::NotRunning)
        process->waitForFinished(-1); // it has closed its output, but still runs
    return process && process->error() != QProcess::FailedToStart;
}

void SevenZipCommand::refuseToStart()
{
    isRefused_ = true;
}

// Ends the command only once: after waitForFinished() the queued call does nothing.
void SevenZipCommand::endRefused()
{
    if (!isRefused_)
        return;
    isRefused_ = false;
    handleFinished(FatalErrorCode, QProcess::NormalExit);
}

void SevenZipCommand::readOutput()
{
    owner_->setOutput(QtVersion::fromUtf8(process_->readAllStandardOutput()));
}

void SevenZipCommand::readLines()
{
    const QList<QByteArray> lines = lines_.add(process_->readAllStandardOutput());
    for (const QByteArray &line : lines)
        reader_->readLine(line);
}

void SevenZipCommand::handleFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    if (!owner_->currentPath().isEmpty())
        QDir::setCurrent(savedPath_);
    owner_->setError(errorOf(exitCode, exitStatus));
    owner_->setCommandFinished();
}

SevenZipCompressCommand::SevenZipCompressCommand(const QStringList &files, SevenZip *owner)
    : SevenZipCommand(Compress, owner)
{
    owner->setFiles(files);
    if (files.size() > MaxFilesOnCommandLine)
        writeListFile();
}

SevenZipCompressCommand::~SevenZipCompressCommand() = default;

QStringList SevenZipCompressCommand::arguments()
{
    const SevenZip::Type type = owner()->type();
    const SevenZip::Method method = owner()->method();
    QStringList all{QStringLiteral("a"), SevenZip::typeArg(type), owner()->archiveFile()};
    if (listFile_.isEmpty())
        all << fileNames();
    else
        all << QStringLiteral("@%1").arg(listFile_);
    all << SevenZip::methodArg(type, method) << SevenZip::levelArg(owner()->level());
    if (type == SevenZip::Type7z && (method == SevenZip::LZMA || method == SevenZip::LZMA2))
        all << SevenZip::modeArg(owner()->mode());
    all << SevenZip::multithreadArg(owner()->useThreads());
    return all;
}

// Every occurrence of the current path is removed, not only the one at the beginning.
// Kept for compatibility: see "Names below the current path" in docs/compatibility.md.
QStringList SevenZipCompressCommand::fileNames() const
{
    QStringList names = owner()->files();
    const QString currentPath = owner()->currentPath();
    if (currentPath.isEmpty())
        return names;
    const QString prefix = QDir::toNativeSeparators(currentPath + QLatin1Char('/'));
    for (QString &name : names)
        name = QDir::toNativeSeparators(name).remove(prefix);
    return names;
}

// Other users can predict the name. So the file must be a new one, and links are not followed.
//
// With an incomplete list file the archiver would leave out files without an error. Without a list
// file it ends with an exit code that does not count as an error. So it is not started if the file
// cannot be written completely.
void SevenZipCompressCommand::writeListFile()
{
    const QString folder = System::getTempDirPath();
    QFile file;
    for (int number = 0;; ++number) {
        listFile_ = number == 0
            ? QStringLiteral("%1/listfile.tmp").arg(folder)
            : QStringLiteral("%1/listfile%2.tmp").arg(folder, QString::number(number));
        if (exists(listFile_))
            continue;
        file.setFileName(listFile_);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Text))
            break;
        // Kept for compatibility: see "List file that is missing" in docs/compatibility.md.
        if (!exists(listFile_))
            return;
    }
    if (!writeNames(file, fileNames())) {
        QFile::remove(listFile_);
        listFile_.clear(); // handleFinished() must not remove a file of another process
        refuseToStart();
    }
}

void SevenZipCompressCommand::handleFinished(int exitCode, QProcess::ExitStatus exitStatus)
{
    owner()->setCompressedSize(SevenZip::fileSize(owner()->archiveFile()));
    owner()->setUncompressedSize(SevenZip::fileSizes(owner()->files()));
    if (!listFile_.isEmpty())
        QFile::remove(listFile_);
    SevenZipCommand::handleFinished(exitCode, exitStatus);
}

SevenZipExtractCommand::SevenZipExtractCommand(const QString &folder, SevenZip *owner)
    : SevenZipCommand(Extract, owner)
{
    owner->setFolder(folder);
    owner->setFiles(QStringList());
}

SevenZipExtractCommand::~SevenZipExtractCommand() = default;

QStringList SevenZipExtractCommand::arguments()
{
    return {QStringLiteral("x"), owner()->archiveFile(),
            QStringLiteral("-o%1").arg(owner()->folder()), QStringLiteral("-aoa")};
}

void SevenZipExtractCommand::readOutput()
{
    readLines();
}

SevenZipListCommand::SevenZipListCommand(SevenZip *owner)
    : SevenZipCommand(List, owner)
{
}

SevenZipListCommand::~SevenZipListCommand() = default;

QStringList SevenZipListCommand::arguments()
{
    return {QStringLiteral("l"), owner()->archiveFile()};
}

void SevenZipListCommand::readOutput()
{
    readLines();
}

} // namespace Vorn::Util
