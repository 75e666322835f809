#pragma once

#include <QtCore/QString>

/// Finds the standard folders. Each call asks the system again; the class System keeps the results.
/// The functions create no folders, but the system may.
namespace Vorn::Util::StandardFolders {

/// Removes one "/" or "\" at the end of \a path.
QString withoutLastSeparator(const QString &path);

/// The data folder for all users.
QString allUsersData();

/// The folder \a name of the product in the application data of the machine. The path can contain
/// both kinds of separators.
QString programData(const QString &name);

/// The folder "Documents" in the folder in the environment variable "PUBLIC"; empty if the variable
/// is not set.
QString publicDocuments();

/// The product's folder in \a folder, with native separators.
QString productFolderIn(const QString &folder);

/// The data folder of the user.
QString userData();

/// The setting "AnalyzeDirectory" of the product, unchanged; empty if it is not set.
QString analyses();

/// The folder of this application, with native separators; empty if it does not contain the
/// product's main program.
QString mainProgram();

/// The folder of the running program, with native separators; empty if the system does not report
/// it.
QString runningProgram();

/// The setting "InstallationDirectory" of the product. If it is not set and \a orVariable is true,
/// the environment variable "TAVELINE2024DIR". With native separators, without one at the end.
QString installation(bool orVariable);

} // namespace Vorn::Util::StandardFolders
