#include <Utility/StandardFolders_p.h>

#include <Utility/Platform/Environment.h>
#include <Utility/Platform/Folders.h>
#include <Utility/Platform/Settings.h>
#include <Utility/Product_p.h>
#include <Utility/Registry.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <array>

namespace Vorn::Util::StandardFolders {

QString withoutLastSeparator(const QString &path)
{
    const bool hasSeparator = path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('\\'));
    return hasSeparator ? path.chopped(1) : path;
}

QString allUsersData()
{
    return Platform::publicDocumentsRoot(Product::maker()) + Product::maker() + QLatin1Char('/')
        + Product::folder();
}

QString programData(const QString &name)
{
    QString root = Platform::commonApplicationDataFolder(Product::maker());
    if (root.isEmpty())
        root = QDir::rootPath() + QStringLiteral("ProgramData");
    const QStringList parts{root, Product::maker(), name, QString()};
    return withoutLastSeparator(parts.join(QDir::separator()));
}

QString publicDocuments()
{
    const QString folder = Platform::environmentVariable("PUBLIC");
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/Documents");
}

QString productFolderIn(const QString &folder)
{
    return QDir::toNativeSeparators(
        QStringList{folder, Product::maker(), Product::folder()}.join(QLatin1Char('/')));
}

QString userData()
{
    return Platform::userDataRoot() + Product::maker() + QLatin1Char('/') + Product::folder();
}

QString analyses()
{
    std::array<wchar_t, Platform::SettingsValueSize> setting{};
    Registry::readRegistryValue(L"AnalyzeDirectory", setting.data(), nullptr);
    return QString::fromWCharArray(setting.data());
}

QString mainProgram()
{
    const QString folder = QCoreApplication::applicationDirPath();
    if (folder.isEmpty())
        return QString();
    const QDir absolute(QDir(folder).absolutePath());
    const QStringList programs
        = absolute.entryList({QStringLiteral("VORN.exe")}, QDir::Files, QDir::Unsorted);
    return programs.isEmpty() ? QString() : QDir::toNativeSeparators(absolute.path());
}

QString runningProgram()
{
    const QString program = Platform::programFile();
    return program.isEmpty() ? QString()
                             : QDir::toNativeSeparators(QFileInfo(program).absolutePath());
}

QString installation(bool orVariable)
{
    std::array<wchar_t, Platform::SettingsValueSize> setting{};
    Registry::readProductInstallationFolder(setting.data(), nullptr);
    QString folder = QString::fromWCharArray(setting.data());
    if (folder.isEmpty() && orVariable)
        folder = Platform::environmentVariable("TAVELINE2024DIR");
    return QDir::toNativeSeparators(withoutLastSeparator(folder));
}

} // namespace Vorn::Util::StandardFolders
