#include "unicodefile.h"

#include <Utility/UnicodeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cstdio>
#include <cstdlib>

using namespace Vorn::Util;

int unicodeFile(const QStringList &arguments)
{
    const QString folder = QDir::currentPath();
    const UnicodeFile file(arguments.value(0));
    const QJsonObject report{
        {QStringLiteral("isOk"), file.isOk()},
        {QStringLiteral("error"), file.error()},
        {QStringLiteral("asciiPath"), file.asciiPath()},
        {QStringLiteral("asciiName"), file.asciiName()},
        {QStringLiteral("isAtOwnPath"), QFile::exists(file.unicodeFilePath())},
        {QStringLiteral("folderIsTheSame"), QDir::currentPath() == folder},
    };
    std::fputs(QJsonDocument(report).toJson().constData(), stdout);
    return EXIT_SUCCESS;
}
