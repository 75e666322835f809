#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The folder of the machine's common application data, below which the product keeps the folder
/// \a maker, which is not created. Empty when the system does not name one.
QString commonApplicationDataFolder(const QString &maker);

/// The root of the public documents, with its last separator; \a maker as above.
QString publicDocumentsRoot(const QString &maker);

/// The root of the user's own application data, with its last separator.
QString userDataRoot();

/// A name that no file has, in the system's rooted form ("\s1ko."), or an empty text.
QString uniqueFileName();

/// The program file of this process; empty when the system does not tell.
QString programFile();

} // namespace Vorn::Util::Platform
