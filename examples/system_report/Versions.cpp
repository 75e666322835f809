#include "CapturedOutput.h"
#include "Sections.h"

#include <Utility/System.h>
#include <Utility/Version.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSysInfo>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

QString orNone(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("none") : text;
}

QString productVersion()
{
    const QString program = QDir(System::getCurrentExePath()).filePath(QStringLiteral("VORN.exe"));
    if (!QFileInfo(program).isFile())
        return QStringLiteral("there is no VORN.exe in the folder of this program");
    CapturedOutput output; // the version is printed, too
    return System::getFileVersion(program);
}

} // namespace

Section versions()
{
    const Version compiled(Version::Major, Version::Minor, Version::Patch);
    Section section;
    section.title = QStringLiteral("Versions");
    section.rows = {
        {QStringLiteral("Library, running"), Version::Current.toString()},
        {QStringLiteral("Library, compiled with"), compiled.toString()},
        {QStringLiteral("Release"),
         QStringLiteral("%1 (%2)").arg(Version::Public, Version::CurrentRelease.toString())},
        {QStringLiteral("Source branch"), orNone(Version::Branch())},
        {QStringLiteral("Qt, running"), QString::fromLatin1(qVersion())},
        {QStringLiteral("Qt, compiled with"), QStringLiteral(QT_VERSION_STR)},
        {QStringLiteral("Product"), productVersion()},
        {QStringLiteral("Operating system"), QSysInfo::prettyProductName()},
        {QStringLiteral("Kernel"),
         QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion()},
        {QStringLiteral("Architecture"), QSysInfo::currentCpuArchitecture()},
        {QStringLiteral("Machine"), System::getHostName()},
        {QStringLiteral("User"), System::getUserName()},
    };
    return section;
}

} // namespace SystemReport
