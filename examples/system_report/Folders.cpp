#include "CapturedOutput.h"
#include "Sections.h"

#include <Utility/Registry.h>
#include <Utility/System.h>
#include <Utility/Version.h>

#include <QtCore/QFileInfo>

#include <array>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

QStringList row(const QString &name, const QString &path)
{
    if (path.isEmpty())
        return {name, QStringLiteral("(none)"), QString()};
    return {name, path,
            QFileInfo::exists(path) ? QStringLiteral("exists") : QStringLiteral("does not exist")};
}

QString pathFrom(void (*read)(wchar_t *))
{
    std::array<wchar_t, 512> path{}; // the size that Registry requires for a folder
    read(path.data());
    return QString::fromWCharArray(path.data());
}

} // namespace

Section folders()
{
    const CapturedOutput output; // settings that are not set are reported in their own table
    const QString product = QStringLiteral("VORN ") + Version::Public;
    Section section;
    section.title = QStringLiteral("Folders");
    section.remark = QStringLiteral("The library has created the folders for documents, tutorials, "
                                    "rules, templates and flags if they did not exist.");
    section.columns
        = QStringList{QStringLiteral("Folder"), QStringLiteral("Path"), QStringLiteral("State")};
    const QVector<QStringList> paths{
        {QStringLiteral("Running program"), System::getCurrentExePath()},
        {QStringLiteral("Working folder"), System::getWorkingDirPath()},
        {QStringLiteral("Temporary files"), System::getTempDirPath()},
        {QStringLiteral("User data"), System::getUserDataPath()},
        {QStringLiteral("Data of all users"), System::getAllUsersDataPath()},
        {QStringLiteral("Program data"), System::getProgramDataPath(product)},
        {QStringLiteral("Public documents"), System::getPublicDocumentsDirPath()},
        {QStringLiteral("Tutorials"), System::getTutorialsDirPath()},
        {QStringLiteral("Rules"), System::getRuleDirPath()},
        {QStringLiteral("Templates"), System::getTemplateDirPath()},
        {QStringLiteral("Flags"), System::getFlagsDirPath()},
        {QStringLiteral("Analyses"), System::getAnalyzeDirPath()},
        {QStringLiteral("Translators"), pathFrom(Registry::readOrlithTranslatorsFolder)},
        {QStringLiteral("HLX server"), pathFrom(Registry::readOrlith_HLXServerFolder)},
        {QStringLiteral("HLX server program"), pathFrom(Registry::getOrlith_HLXServer_exe)},
    };
    // After all calls, because some of them create folders.
    for (const QStringList &path : paths)
        section.rows << row(path.at(0), path.at(1));
    return section;
}

} // namespace SystemReport
