#pragma once

#include <Utility/Platform/ArchiverDialect.h>

#include <QtCore/QString>

namespace Vorn::Util::Platform {

struct Archiver
{
    QString program;
    ArchiverDialect dialect;
};

/// The archiver to run: that in the folder of the product, \a productFolder, or what the system
/// offers instead. When there is none, the program named does not exist.
Archiver findArchiver(const QString &productFolder);

} // namespace Vorn::Util::Platform
