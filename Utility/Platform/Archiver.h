#pragma once

#include <QtCore/QString>

#include <memory>

class QProcess;

namespace Vorn::Util::Platform {

/// The path of the archiver: "7z.exe" in \a productFolder or, depending on the system, another
/// program. If none is found, the path of "7z.exe" in \a productFolder, which does not exist.
QString findArchiver(const QString &productFolder);

/// A process object for the archiver. The archiver cannot use the terminal to ask the user a
/// question, which nobody would answer. Ctrl-C in the terminal still interrupts it.
std::unique_ptr<QProcess> makeArchiverProcess();

} // namespace Vorn::Util::Platform
