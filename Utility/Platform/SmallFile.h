#pragma once

#include <Utility/Platform/Files.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>

#include <optional>

namespace Vorn::Util::Platform {

/// The bytes of a file of settings or other small texts. Nothing for a file that cannot be read, is
/// not a plain file (reading a pipe would wait for a writer) or has more than 1 MiB.
inline std::optional<QByteArray> readSmallFile(const QString &fileName)
{
    constexpr qint64 MaxSize = 1048576;
    QFile file(fileName);
    if (!openPlainFile(file))
        return std::nullopt;
    const QByteArray content = file.read(MaxSize + 1);
    if (content.size() > MaxSize || file.error() != QFileDevice::NoError)
        return std::nullopt;
    return content;
}

} // namespace Vorn::Util::Platform
