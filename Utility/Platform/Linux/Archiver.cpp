#include <Utility/Platform/Archiver.h>

#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

Archiver findArchiver(const QString &productFolder)
{
    const QString own = QStringLiteral("%1/7z.exe").arg(productFolder);
    if (QFileInfo::exists(own))
        return {own, ArchiverDialect::Product};

    const QStringList names{QStringLiteral("7z"), QStringLiteral("7zz"), QStringLiteral("7za")};
    for (const QStringList &folders : {QStringList{productFolder}, QStringList()}) {
        for (const QString &name : names) {
            // An empty list of folders stands for PATH.
            const QString program = QStandardPaths::findExecutable(name, folders);
            if (!program.isEmpty())
                return {program, ArchiverDialect::Current};
        }
    }
    return {own, ArchiverDialect::Product};
}

} // namespace Vorn::Util::Platform
