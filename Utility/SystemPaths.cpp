// Forms of paths, and the creation of paths.

#include <Utility/Platform/Drives.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <algorithm>

namespace Vorn::Util {

namespace {

// Kept for compatibility: see "Vertical bar as a drive letter" in docs/compatibility.md.
bool isDriveLetter(QChar character)
{
    return (character >= QLatin1Char('A') && character <= QLatin1Char('Z'))
        || (character >= QLatin1Char('a') && character <= QLatin1Char('z'))
        || character == QLatin1Char('|');
}

} // namespace

bool System::isWslPath(const QString &path)
{
    return path.startsWith(QLatin1String("/mnt"));
}

bool System::isWindowsPath(const QString &path)
{
    return !isWslPath(path);
}

QString System::toWindowsPath(const QString &path)
{
    // "/mnt/c/": a small letter between two slashes.
    if (!path.startsWith(QLatin1String("/mnt/")) || path.size() < 7 || path.at(5) < QLatin1Char('a')
        || path.at(5) > QLatin1Char('z') || path.at(6) != QLatin1Char('/'))
        return path;
    const QString letter = path.at(5);
    // Kept for compatibility: see "Every occurrence of a drive" in docs/compatibility.md.
    return QString(path)
        .replace(QStringLiteral("/mnt/%1").arg(letter), letter.toUpper() + QLatin1Char(':'))
        .replace(QLatin1Char('/'), QLatin1Char('\\'));
}

QString System::toWslPath(const QString &path)
{
    if (path.size() < 2 || !isDriveLetter(path.at(0)) || path.at(1) != QLatin1Char(':'))
        return path;
    const QString letter = path.at(0);
    // Kept for compatibility: see "Every occurrence of a drive" in docs/compatibility.md.
    return QString(path)
        .replace(letter + QLatin1Char(':'), QStringLiteral("/mnt/%1").arg(letter.toLower()))
        .replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString System::getUniversalPath(const QString &path)
{
    if (path.startsWith(QLatin1String("c:"), Qt::CaseInsensitive))
        return path; // the system drive is never mapped
    QString universal = Platform::universalName(QDir::toNativeSeparators(path));
    if (!universal.isEmpty())
        return universal;
    const QString prefix = QStringLiteral("\\??\\"); // the target of a substituted drive has it
    const QString target = Platform::driveTarget(path.left(2));
    return target.startsWith(prefix) ? target.mid(prefix.size()) + path.mid(2) : path;
}

bool System::makePath(const QString &path)
{
    QString candidate = path;
    QStringList missing; // shortest first
    while (!QDir(candidate).exists()) {
        missing.prepend(candidate);
        const auto separator = std::max(candidate.lastIndexOf(QLatin1Char('/')),
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

} // namespace Vorn::Util
