#pragma once

#include <QtCore/QString>

#include <memory>

class QProcess;

namespace Vorn::Util::Platform {

/// The path of the archiver to run: "7z.exe" in the folder of the product, \a productFolder, or
/// what the system offers instead. If none is found, the path of that "7z.exe", which does not
/// exist.
QString findArchiver(const QString &productFolder);

/// A process in which the archiver cannot ask the user on a terminal: it would wait for ever. It is
/// interrupted with this program all the same (Ctrl-C).
std::unique_ptr<QProcess> makeArchiverProcess();

} // namespace Vorn::Util::Platform
