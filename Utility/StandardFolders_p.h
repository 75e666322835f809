#pragma once

#include <QtCore/QString>

/// Works out where the standard folders are. Each call asks the system again. No folder is created,
/// except by the system itself. System keeps the results.
namespace Vorn::Util::StandardFolders {

/// \a path without the separator at its end, if there is one, of either kind.
QString withoutLastSeparator(const QString &path);

QString allUsersData();

/// The folder \a name of the product in the machine's application data, with mixed separators.
QString programData(const QString &name);

/// The documents in the folder that the variable "PUBLIC" names; empty when it is not set.
QString documentsOfPublic();

/// The product's folder in \a folder, with native separators.
QString productFolderIn(const QString &folder);

QString userData();

/// The folder for analyses in the product's settings, as it is stored there; empty without it.
QString analyses();

/// The folder of this application if the product's main program lies there, else empty; with native
/// separators.
QString ofMainProgram();

/// The folder of the running program file, with native separators; empty when the system does not
/// tell it.
QString ofRunningProgram();

/// The product's installation folder in its settings, with native separators and without one at the
/// end. When the settings have none and \a orVariable is true, the value of the variable
/// "TAVELINE2024DIR".
QString installation(bool orVariable);

} // namespace Vorn::Util::StandardFolders
