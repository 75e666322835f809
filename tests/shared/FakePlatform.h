#pragma once

#include <Utility/Platform/Archiver.h>
#include <Utility/Platform/ClusterTool.h>
#include <Utility/Platform/Counters.h>
#include <Utility/Platform/Drives.h>
#include <Utility/Platform/Environment.h>
#include <Utility/Platform/FileReplacement.h>
#include <Utility/Platform/Files.h>
#include <Utility/Platform/FolderTree.h>
#include <Utility/Platform/Folders.h>
#include <Utility/Platform/LogFile.h>
#include <Utility/Platform/Processes.h>
#include <Utility/Platform/Processors.h>
#include <Utility/Platform/ProgramVersion.h>
#include <Utility/Platform/Settings.h>
#include <Utility/Platform/Shares.h>
#include <Utility/Platform/Shell.h>

#include <functional>

/// An operating system that a test sets up: what each function of Utility/Platform does. At first
/// nothing is there and everything fails, but files can be moved and removed.
struct FakePlatform
{
    template <typename Result, typename... Arguments>
    using Function = std::function<Result(Arguments...)>;

    FakePlatform();

    Function<QString, const QString &> findArchiver;
    Function<QString, const QString &, const QString &> clusterToolCommand;
    Function<std::unique_ptr<Vorn::Util::SysInfo>, const QString &> openCounter;
    Function<QString, const QString &> universalName;
    Function<QString, const QString &> driveTarget;
    Function<QString, const char *> environmentVariable;
    Function<bool, const QString &> mayReplaceFile;
    Function<qint64, const QString &> availableSpace;
    Function<bool, const QString &> mayCreateFileIn;
    Function<bool, QFile &, const QString &, qint64 (*)(QFile &)> replaceByTail;
    Function<qint64, const QFile &, const char *, qint64> writeDirectly;
    Function<qint64, const QFile &> sizeOf;
    Function<Vorn::Util::Platform::MoveOutcome, const QString &, const QString &> moveFile;
    Function<bool, const QString &, const QString &> isSameFile;
    Function<bool, const QString &> removeFile;
    Function<std::unique_ptr<Vorn::Util::Platform::FolderTree>, const QString &,
             Vorn::Util::Platform::TreeAccess>
        openFolderTree;
    Function<bool, QFile &> openWithoutLink;
    Function<bool, QFile &> openPlainFile;
    Function<QString, const QString &> commonApplicationDataFolder;
    Function<QString, const QString &> publicDocumentsRoot;
    Function<QString> userDataRoot;
    Function<QString> uniqueFileName;
    Function<QString> programFile;
    Function<void, const std::function<bool(Vorn::Util::Platform::RunningProcess &)> &>
        visitProcesses;
    Function<bool, const QString &> isProgramRunning;
    Function<QString> hostName;
    Function<QString> userName;
    Function<Vorn::Util::Formats::ProcessorQuery> queryProcessors;
    Function<Vorn::Util::Formats::ProgramVersion, const QString &> programVersion;
    Function<Vorn::Util::Platform::SettingsValue, const QString &, const QString &>
        readSettingsValue;
    Function<QString, const QString &, const QString &> readSettingsText;
    Function<void, const QString &, const QString &, const QString &> writeSettingsText;
    Function<QStringList, const QString &> settingsSubkeys;
    Function<bool, const QString &, const QString &> shareFolder;
    Function<bool, const QString &> isFolderShared;
    Function<Vorn::Util::Platform::ShellCommand, const QString &> scriptCommand;
    Function<Vorn::Util::Platform::ShellCommand, const QString &> textCommand;
};

/// The fake platform that the library under test uses.
FakePlatform &fakePlatform();
