#pragma once

#include <Utility/Platform/Files.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>

#include <optional>

namespace Vorn::Util::Platform {

/// Reads a small file, such as a settings file. Nothing if it cannot be read, is not a regular file
/// (reading a pipe would wait for a writer) or has more than 1 MiB.
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
