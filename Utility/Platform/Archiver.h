#pragma once

#include <Utility/Platform/ArchiverDialect.h>

#include <QtCore/QString>

#include <memory>

class QProcess;

namespace Vorn::Util::Platform {

struct Archiver
{
    QString program;
    ArchiverDialect dialect;
};

/// The archiver to run: that in the folder of the product, \a productFolder, or what the system
/// offers instead. When there is none, the program named does not exist.
Archiver findArchiver(const QString &productFolder);

/// A process in which the archiver cannot ask the user on a terminal: it would wait for ever. It is
/// interrupted with this program all the same (Ctrl-C).
std::unique_ptr<QProcess> makeArchiverProcess();

} // namespace Vorn::Util::Platform
