#include <Utility/System.h>

#include <Utility/Formats/AsciiText_p.h>
#include <Utility/Platform/Environment.h>
#include <Utility/Platform/Folders.h>
#include <Utility/Registry.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>

namespace Vorn::Util {

QString System::hostName_;
QString System::programFilesPath_;
QString System::workingDirPath_;
QString System::flagsDirPath_;
QString System::programDataPath_;
QString System::analyzeDirPath_;
QString System::userDataPath_;
QString System::allUsersDataPath_;
QString System::tempDirPath_;
QString System::publicDocumentsPath_;
QString System::tutorialsPath_;

namespace {

QString maker()
{
    return QStringLiteral("Vantorel");
}

QString productFolder()
{
    return QStringLiteral("VORN 2024");
}

bool isSeparator(QChar character)
{
    return character == QLatin1Char('/') || character == QLatin1Char('\\');
}

QString withoutLastSeparator(const QString &path)
{
    return !path.isEmpty() && isSeparator(path.back()) ? path.chopped(1) : path;
}

QString readSetting(const wchar_t *name)
{
    std::array<wchar_t, 1024> value{};
    Registry::readRegistryValue(name, value.data(), nullptr);
    return QString::fromWCharArray(value.data());
}

void createOnce(const QString &path)
{
    if (!QDir(path).exists() && !QDir().mkpath(path))
        qDebug() << "Serious: Unable to create the folder: " << path;
}

// The folder of the application if the product's main program lies there.
QString folderOfMainProgram()
{
    const QString folder = QCoreApplication::applicationDirPath();
    if (folder.isEmpty())
        return QString();
    const QDir absolute(QDir(folder).absolutePath());
    const QStringList programs
        = absolute.entryList({QStringLiteral("VORN.exe")}, QDir::Files, QDir::Unsorted);
    return programs.isEmpty() ? QString() : QDir::toNativeSeparators(absolute.path());
}

QString folderOfRunningProgram()
{
    const QString program = Platform::programFile();
    return program.isEmpty() ? QString()
                             : QDir::toNativeSeparators(QFileInfo(program).absolutePath());
}

} // namespace

QString System::getAllUsersDataPath()
{
    if (allUsersDataPath_.isEmpty()) {
        allUsersDataPath_
            = Platform::publicDocumentsRoot(maker()) + maker() + QLatin1Char('/') + productFolder();
    }
    return QDir::toNativeSeparators(allUsersDataPath_);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the exported interface takes a copy.
QString System::getProgramDataPath(QString name)
{
    // Kept for compatibility: see "One program-data folder for all names" in docs/compatibility.md.
    if (programDataPath_.isEmpty() || programDataPath_.indexOf(name) < 0) {
        const QChar separator = QDir::separator();
        QString root = Platform::commonApplicationDataFolder(maker());
        if (root.isEmpty())
            root = QDir::rootPath() + QStringLiteral("ProgramData");
        programDataPath_
            = withoutLastSeparator(QStringList{root, maker(), name, QString()}.join(separator));
    }
    return QDir::toNativeSeparators(programDataPath_);
}

QString System::getPublicDocumentsDirPath()
{
    if (publicDocumentsPath_.isEmpty()) {
        const QString publicFolder = Platform::environmentVariable("PUBLIC");
        // Kept for compatibility: see "Doubled public documents" in docs/compatibility.md.
        const QString base = publicFolder.isEmpty() ? getProgramDataPath(productFolder())
                                                    : publicFolder + QStringLiteral("/Documents");
        const QString path = QDir::toNativeSeparators(
            QStringList{base, maker(), productFolder()}.join(QLatin1Char('/')));
        createOnce(path);
        publicDocumentsPath_ = path;
    }
    return publicDocumentsPath_;
}

QString System::getUserDataPath()
{
    if (userDataPath_.isEmpty())
        userDataPath_ = Platform::userDataRoot() + maker() + QLatin1Char('/') + productFolder();
    return QDir::toNativeSeparators(userDataPath_);
}

QString System::getTempDirPath()
{
    if (tempDirPath_.isEmpty()) {
        tempDirPath_ = QDir::tempPath();
        if (Formats::isUnicodeText(tempDirPath_))
            tempDirPath_ = getProgramDataPath(productFolder());
    }
    return tempDirPath_;
}

QString System::getTempFileName(const QString &fileName)
{
    QString name = Platform::uniqueFileName();
    if (name.isEmpty())
        return QString();
    if (!name.endsWith(QLatin1Char('.')))
        name += QLatin1Char('.');
    name += QFileInfo(fileName).suffix();
    return isSeparator(name.front()) ? name.mid(1) : name;
}

QString System::getWorkingDirPath()
{
    if (workingDirPath_.isEmpty())
        workingDirPath_ = QDir::currentPath();
    return workingDirPath_;
}

void System::setWorkingDirPath(const QString &path)
{
    workingDirPath_ = path;
    const QFileInfo info(path);
    if (info.isFile()) {
        qDebug() << "Passing file name to Util::System::setWorkingDirPath" << path;
        workingDirPath_ = info.absolutePath();
    }
}

QString System::getAnalyzeDirPath()
{
    if (analyzeDirPath_.isEmpty())
        analyzeDirPath_ = readSetting(L"AnalyzeDirectory");
    return QDir::toNativeSeparators(analyzeDirPath_);
}

QString System::getTutorialsDirPath()
{
    if (tutorialsPath_.isEmpty()) {
        tutorialsPath_
            = QDir::toNativeSeparators(getPublicDocumentsDirPath() + QStringLiteral("/Tutorials"));
        createOnce(tutorialsPath_);
    }
    return tutorialsPath_;
}

QString System::getRuleDirPath()
{
    return makeAndGetNativePath(QStringLiteral("%1/Rule").arg(getUserDataPath()));
}

QString System::getTemplateDirPath()
{
    return makeAndGetNativePath(QStringLiteral("%1/Template").arg(getUserDataPath()));
}

QString System::getCurrentExePath()
{
    if (programFilesPath_.isEmpty())
        programFilesPath_ = folderOfMainProgram();
    if (programFilesPath_.isEmpty())
        programFilesPath_ = folderOfRunningProgram();
    if (programFilesPath_.isEmpty())
        programFilesPath_ = withoutLastSeparator(getProgramFilesPathFromRegistry(true));
    return programFilesPath_;
}

QString System::getProgramFilesPathFromRegistry(bool registryOnly)
{
    if (programFilesPath_.isEmpty()) {
        programFilesPath_ = readSetting(L"InstallationDirectory");
        if (programFilesPath_.isEmpty() && !registryOnly)
            programFilesPath_ = Platform::environmentVariable("TAVELINE2024DIR");
        programFilesPath_ = QDir::toNativeSeparators(withoutLastSeparator(programFilesPath_));
    }
    return programFilesPath_;
}

bool System::makePath(const QString &path)
{
    QString candidate = path;
    QStringList missing; // shortest first
    while (!QDir(candidate).exists()) {
        missing.prepend(candidate);
        const int separator = std::max(candidate.lastIndexOf(QLatin1Char('/')),
                                       candidate.lastIndexOf(QLatin1Char('\\')));
        if (separator < 0)
            return false;
        candidate.truncate(separator);
    }
    QDir folder(candidate);
    for (const QString &name : qAsConst(missing)) {
        folder.mkdir(name);
        if (!folder.cd(name))
            return false;
    }
    return true;
}

QString System::makeAndGetNativePath(const QString &path)
{
    return QDir().mkpath(path) ? QDir::toNativeSeparators(path) : QString();
}

QString System::getElapsedTimeString(qint64 milliseconds)
{
    const auto twoDigits
        = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    const qint64 hours = milliseconds / 3600000;
    qint64 rest = milliseconds - hours * 3600000;
    const qint64 minutes = rest / 60000;
    rest -= minutes * 60000;
    const qint64 seconds = rest / 1000;
    const qint64 hundredths = (rest - seconds * 1000) / 10;

    if (hours >= 1) {
        return QStringLiteral("%1:%2:%3.%4")
            .arg(QString::number(hours), twoDigits(minutes), twoDigits(seconds),
                 twoDigits(hundredths));
    }
    if (minutes >= 1) {
        return QStringLiteral("%1:%2.%3")
            .arg(QString::number(minutes), twoDigits(seconds), twoDigits(hundredths));
    }
    if (seconds >= 1)
        return QStringLiteral("%1.%2 sec").arg(QString::number(seconds), twoDigits(hundredths));
    return QStringLiteral("0.%1 sec").arg(twoDigits(hundredths));
}

} // namespace Vorn::Util
