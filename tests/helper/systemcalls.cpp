#include "systemcalls.h"

#include <Utility/Registry.h>
#include <Utility/System.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QLibrary>
#include <QtCore/QUrl>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <functional>

using namespace Vorn::Util;

namespace {

constexpr int NoSuchFunction = 98;

using Value = std::array<wchar_t, 1024>;

// Writes to the descriptor and not to stdout: once stdout was used for wide characters, it loses
// narrow ones.
void printLine(char kind, const QString &text)
{
    constexpr int Descriptor = 1;
    std::fflush(stdout);
    QFile output;
    if (output.open(Descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered))
        output.write(kind + QUrl::toPercentEncoding(text) + '\n');
}

void printMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    printLine('!', text);
}

QString readRegistryValue(const QString &arguments)
{
    const std::wstring name = arguments.section(QLatin1Char('|'), 0, 0).toStdWString();
    const std::wstring keyPath = arguments.section(QLatin1Char('|'), 1).toStdWString();
    Value value{};
    Registry::readRegistryValue(name.c_str(), value.data(),
                                arguments.contains(QLatin1Char('|')) ? keyPath.c_str() : nullptr);
    return QString::fromWCharArray(value.data());
}

QString readInstallationFolder(bool narrow)
{
    if (narrow) {
        std::array<char, 512> folder{};
        return Registry::readProductInstallationFolder(folder.data(), nullptr)
            ? QString::fromLatin1(folder.data())
            : QStringLiteral("false");
    }
    Value folder{};
    return Registry::readProductInstallationFolder(folder.data(), nullptr)
        ? QString::fromWCharArray(folder.data())
        : QStringLiteral("false");
}

QString textOf(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString startProcess(const QString &commandLine)
{
    const QStringList parts = commandLine.split(QLatin1Char('|'));
    return textOf(System::startProcess(parts.first(), parts.mid(1)));
}

// False when the system keeps no last error of Windows.
bool setLastError(quint32 code)
{
    const auto set = reinterpret_cast<void (*)(quint32)>(
        QLibrary::resolve(QStringLiteral("kernel32"), "SetLastError"));
    if (set)
        set(code);
    return set != nullptr;
}

using Function = std::function<QString(const QString &)>;

// The functions with a result.
const QHash<QString, Function> &functions()
{
    static const QHash<QString, Function> all{
        {QStringLiteral("getAllUsersDataPath"),
         [](const QString &) { return System::getAllUsersDataPath(); }},
        {QStringLiteral("getProgramDataPath"),
         [](const QString &name) { return System::getProgramDataPath(name); }},
        {QStringLiteral("getPublicDocumentsDirPath"),
         [](const QString &) { return System::getPublicDocumentsDirPath(); }},
        {QStringLiteral("getUserDataPath"),
         [](const QString &) { return System::getUserDataPath(); }},
        {QStringLiteral("getTempDirPath"),
         [](const QString &) { return System::getTempDirPath(); }},
        {QStringLiteral("getTempFileName"),
         [](const QString &name) { return System::getTempFileName(name); }},
        {QStringLiteral("getWorkingDirPath"),
         [](const QString &) { return System::getWorkingDirPath(); }},
        {QStringLiteral("getAnalyzeDirPath"),
         [](const QString &) { return System::getAnalyzeDirPath(); }},
        {QStringLiteral("getTutorialsDirPath"),
         [](const QString &) { return System::getTutorialsDirPath(); }},
        {QStringLiteral("getRuleDirPath"),
         [](const QString &) { return System::getRuleDirPath(); }},
        {QStringLiteral("getTemplateDirPath"),
         [](const QString &) { return System::getTemplateDirPath(); }},
        {QStringLiteral("getCurrentExePath"),
         [](const QString &) { return System::getCurrentExePath(); }},
        {QStringLiteral("getProgramFilesPathFromRegistry"),
         [](const QString &registryOnly) {
             return System::getProgramFilesPathFromRegistry(registryOnly == QLatin1String("true"));
         }},
        {QStringLiteral("readRegistryValue"), readRegistryValue},
        {QStringLiteral("readWideInstallationFolder"),
         [](const QString &) { return readInstallationFolder(false); }},
        {QStringLiteral("readNarrowInstallationFolder"),
         [](const QString &) { return readInstallationFolder(true); }},
        {QStringLiteral("getHostName"), [](const QString &) { return System::getHostName(); }},
        {QStringLiteral("getUserName"), [](const QString &) { return System::getUserName(); }},
        {QStringLiteral("startProcess"), startProcess},
        {QStringLiteral("getLocale"), [](const QString &) { return System::getLocale(); }},
        {QStringLiteral("getFlagsDirPath"),
         [](const QString &) { return System::getFlagsDirPath(); }},
        {QStringLiteral("isFlagSet"),
         [](const QString &flag) { return textOf(System::isFlagSet(flag)); }},
        {QStringLiteral("getFileVersion"),
         [](const QString &path) { return System::getFileVersion(path); }},
    };
    return all;
}

} // namespace

SystemCalls::SystemCalls()
{
    qInstallMessageHandler(printMessage);
}

SystemCalls::~SystemCalls()
{
    qInstallMessageHandler(nullptr);
}

bool SystemCalls::run(const QString &call)
{
    const QString name = call.section(QLatin1Char('='), 0, 0);
    const QString argument = call.section(QLatin1Char('='), 1);
    if (functions().contains(name)) {
        printLine('=', functions().value(name)(argument));
    } else if (name == QLatin1String("setWorkingDirPath")) {
        System::setWorkingDirPath(argument);
    } else if (name == QLatin1String("setLocale")) {
        System::setLocale(argument);
    } else if (name == QLatin1String("setVariable")) {
        qputenv(argument.section(QLatin1Char('='), 0, 0).toLatin1().constData(),
                argument.section(QLatin1Char('='), 1).toLocal8Bit());
    } else if (name == QLatin1String("removeFolder")) {
        QDir(argument).removeRecursively();
    } else if (name == QLatin1String("removeFile")) {
        QFile::remove(argument);
    } else if (name == QLatin1String("setLastError")) {
        return setLastError(argument.toUInt());
    } else if (name == QLatin1String("printNarrow")) {
        std::printf("%s\n", argument.toLocal8Bit().constData());
    } else if (name == QLatin1String("printWide")) {
        std::wprintf(L"%ls\n", argument.toStdWString().c_str());
    } else {
        return false;
    }
    return true;
}

int SystemCalls::run(const QStringList &calls)
{
    for (const QString &call : calls) {
        if (!run(call))
            return NoSuchFunction;
    }
    return EXIT_SUCCESS;
}
