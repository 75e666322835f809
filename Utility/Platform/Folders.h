#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The folder for the application data of the machine, in which the product needs the folder
/// \a maker. \a maker is not created. Empty if the system does not report the folder.
QString commonApplicationDataFolder(const QString &maker);

/// The folder of the public documents, with a separator at its end. \a maker is as above.
QString publicDocumentsRoot(const QString &maker);

/// The folder for the application data of the user, with a separator at its end.
QString userDataRoot();

/// A new file name with a separator at its beginning (such as "\s1ko."); very probably no file has
/// it. Empty if the system provides none.
QString uniqueFileName();

/// The path of the program file of this process; empty if the system does not report it.
QString programFile();

} // namespace Vorn::Util::Platform
