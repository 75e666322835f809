#include <Utility/Platform/Folders.h>

#include <Utility/Platform/Linux/Folders_p.h>

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

QString writableDataFolder(const QString &common, const QString &maker, const QString &own)
{
    const QString makers = common + QLatin1Char('/') + maker;
    const QString written = QFileInfo::exists(makers) ? makers : common;
    return ::access(QFile::encodeName(written).constData(), W_OK) == 0 ? common : own;
}

QString commonApplicationDataFolder(const QString &maker)
{
    return writableDataFolder(QStringLiteral("/var/lib"), maker, userDataFolder());
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
