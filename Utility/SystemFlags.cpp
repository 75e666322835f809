// The flags that a user sets in the flags file.

#include <Utility/Platform/Files.h>
#include <Utility/QtVersion_p.h>
#include <Utility/System.h>

#include <QtCore/QFile>
#include <QtCore/QTextStream>

namespace Vorn::Util {

bool System::isFlagSet(const QString &flag)
{
    const QString folder = getFlagsDirPath();
    if (folder.isEmpty())
        return false;
    QFile file(folder + QStringLiteral("/VORN_flags.txt"));
    if (!Platform::openPlainFile(file))
        return false;
    file.setTextModeEnabled(true);
    QTextStream stream(&file);
    QtVersion::setUtf8(stream);
    constexpr int MaxLength = 1048576; // of a line, so that no file fills the memory
    QString line;
    bool isRead = true; // after a read error atEnd() stays false
    while (isRead && line.size() < MaxLength && !stream.atEnd()) {
        isRead = stream.readLineInto(&line, MaxLength);
        if (line.simplified().section(QLatin1Char(' '), 0, 0) == flag)
            return true;
    }
    return false;
}

} // namespace Vorn::Util
