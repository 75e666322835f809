#include "FakePlatform.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>

namespace {

// A function that gives \a result, whatever it is asked.
template <typename Result> auto always(const Result &result)
{
    return [result](auto &&...) { return result; };
}

} // namespace

FakePlatform &fakePlatform()
{
    static FakePlatform platform;
    return platform;
}

FakePlatform::FakePlatform()
    : findArchiver(always(QStringLiteral("no archiver")))
    , clusterToolCommand(always(QString()))
    , openCounter(always(nullptr))
    , universalName(always(QString()))
    , driveTarget(always(QString()))
    , environmentVariable(always(QString()))
    , mayReplaceFile(always(false))
    , availableSpace(always(Q_INT64_C(0)))
    , mayCreateFileIn(always(false))
    , replaceByTail(always(false))
    , writeDirectly(always(Q_INT64_C(0)))
    , sizeOf([](const QFile &file) { return file.size(); })
    , moveFile([](const QString &source, const QString &target) {
        const bool isMoved
            = (!QFile::exists(target) || QFile::remove(target)) && QFile::rename(source, target);
        return isMoved ? Vorn::Util::Platform::MoveOutcome::Moved
                       : Vorn::Util::Platform::MoveOutcome::Failed;
    })
    , isSameFile(always(false))
    , removeFile([](const QString &path) { return QFile::remove(path); })
    , openFolderTree(always(nullptr))
    , openWithoutLink([](QFile &file) { return file.open(QIODevice::WriteOnly | QIODevice::Text); })
    , openPlainFile([](QFile &file) { return file.open(QIODevice::ReadOnly); })
    , commonApplicationDataFolder(always(QString()))
    , publicDocumentsRoot(always(QString()))
    , userDataRoot(always(QString()))
    , uniqueFileName(always(QString()))
    , programFile(always(QString()))
    , visitProcesses([](auto &&...) {})
    , isProgramRunning(always(false))
    , hostName(always(QString()))
    , userName(always(QString()))
    , queryProcessors(always(Vorn::Util::Formats::ProcessorQuery()))
    , programVersion(always(Vorn::Util::Formats::ProgramVersion()))
    , readSettingsValue(always(Vorn::Util::Platform::SettingsValue{
          Vorn::Util::Platform::SettingsValue::NoKey, QString(), 2, QStringLiteral("Not found\n")}))
    , readSettingsText(always(QString()))
    , writeSettingsText([](auto &&...) {})
    , settingsSubkeys(always(QStringList()))
    , shareFolder(always(false))
    , isFolderShared(always(false))
    , scriptCommand(always(Vorn::Util::Platform::ShellCommand()))
    , textCommand(always(Vorn::Util::Platform::ShellCommand()))
{
}

namespace Vorn::Util::Platform {

QString findArchiver(const QString &productFolder)
{
    return fakePlatform().findArchiver(productFolder);
}

std::unique_ptr<QProcess> makeArchiverProcess()
{
    return std::make_unique<QProcess>();
}

QString clusterToolCommand(const QString &dir, const QString &options)
{
    return fakePlatform().clusterToolCommand(dir, options);
}

std::unique_ptr<SysInfo> openCounter(const QString &path)
{
    return fakePlatform().openCounter(path);
}

QString universalName(const QString &path)
{
    return fakePlatform().universalName(path);
}

QString driveTarget(const QString &drive)
{
    return fakePlatform().driveTarget(drive);
}

QString environmentVariable(const char *name)
{
    return fakePlatform().environmentVariable(name);
}

bool mayReplaceFile(const QString &name)
{
    return fakePlatform().mayReplaceFile(name);
}

qint64 availableSpace(const QString &folder)
{
    return fakePlatform().availableSpace(folder);
}

bool mayCreateFileIn(const QString &folder)
{
    return fakePlatform().mayCreateFileIn(folder);
}

bool replaceByTail(QFile &file, const QString &temporaryFolder, qint64 (*tailOffset)(QFile &))
{
    return fakePlatform().replaceByTail(file, temporaryFolder, tailOffset);
}

qint64 writeDirectly(const QFile &file, const char *bytes, qint64 count)
{
    return fakePlatform().writeDirectly(file, bytes, count);
}

qint64 sizeOf(const QFile &file)
{
    return fakePlatform().sizeOf(file);
}

MoveOutcome moveFile(const QString &source, const QString &target)
{
    return fakePlatform().moveFile(source, target);
}

bool isSameFile(const QString &first, const QString &second)
{
    return fakePlatform().isSameFile(first, second);
}

bool removeFile(const QString &path)
{
    return fakePlatform().removeFile(path);
}

std::unique_ptr<FolderTree> openFolderTree(const QString &path, TreeAccess access)
{
    return fakePlatform().openFolderTree(path, access);
}

bool openWithoutLink(QFile &file)
{
    return fakePlatform().openWithoutLink(file);
}

bool openPlainFile(QFile &file)
{
    return fakePlatform().openPlainFile(file);
}

QString commonApplicationDataFolder(const QString &maker)
{
    return fakePlatform().commonApplicationDataFolder(maker);
}

QString publicDocumentsRoot(const QString &maker)
{
    return fakePlatform().publicDocumentsRoot(maker);
}

QString userDataRoot()
{
    return fakePlatform().userDataRoot();
}

QString uniqueFileName()
{
    return fakePlatform().uniqueFileName();
}

QString programFile()
{
    return fakePlatform().programFile();
}

void visitProcesses(const std::function<bool(RunningProcess &)> &visit)
{
    fakePlatform().visitProcesses(visit);
}

bool isProgramRunning(const QString &name)
{
    return fakePlatform().isProgramRunning(name);
}

QString hostName()
{
    return fakePlatform().hostName();
}

QString userName()
{
    return fakePlatform().userName();
}

Formats::ProcessorQuery queryProcessors()
{
    return fakePlatform().queryProcessors();
}

Formats::ProgramVersion programVersion(const QString &path)
{
    return fakePlatform().programVersion(path);
}

SettingsValue readSettingsValue(const QString &keyPath, const QString &name)
{
    return fakePlatform().readSettingsValue(keyPath, name);
}

QString readSettingsText(const QString &keyPath, const QString &name)
{
    return fakePlatform().readSettingsText(keyPath, name);
}

void writeSettingsText(const QString &keyPath, const QString &name, const QString &text)
{
    fakePlatform().writeSettingsText(keyPath, name, text);
}

QStringList settingsSubkeys(const QString &keyPath)
{
    return fakePlatform().settingsSubkeys(keyPath);
}

bool shareFolder(const QString &name, const QString &path)
{
    return fakePlatform().shareFolder(name, path);
}

bool isFolderShared(const QString &path)
{
    return fakePlatform().isFolderShared(path);
}

ShellCommand scriptCommand(const QString &fileName)
{
    return fakePlatform().scriptCommand(fileName);
}

ShellCommand textCommand(const QString &text)
{
    return fakePlatform().textCommand(text);
}

} // namespace Vorn::Util::Platform
