#include <Utility/Platform/Folders.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>
#include <QtCore/QStandardPaths>

#include <array>
#include <climits>
#include <unistd.h>

namespace Vorn::Util::Platform {

namespace {

QString userDataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

} // namespace

QString commonApplicationDataFolder(const QString &maker)
{
    const QString common = QStringLiteral("/var/lib");
    const QString own = common + QLatin1Char('/') + maker;
    const QString written = QFileInfo::exists(own) ? own : common;
    return ::access(QFile::encodeName(written).constData(), W_OK) == 0 ? common : userDataFolder();
}

QString publicDocumentsRoot(const QString &maker)
{
    return commonApplicationDataFolder(maker) + QLatin1Char('/');
}

QString userDataRoot()
{
    return userDataFolder() + QLatin1Char('/');
}

QString uniqueFileName()
{
    const quint64 number = QRandomGenerator::system()->generate64();
    return QStringLiteral("/s") + QString::number(number, 36);
}

QString programFile()
{
    std::array<char, PATH_MAX> path{};
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    return length < 0 ? QString()
                      : QFile::decodeName(QByteArray(path.data(), static_cast<int>(length)));
}

} // namespace Vorn::Util::Platform
