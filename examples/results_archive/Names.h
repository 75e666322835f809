#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ResultsArchive {

/// Whether 7-Zip can be told to take the one file \a name of a folder. It takes control characters,
/// a blank at the end and a subfolder that begins with "-" or "@" for something else.
bool canBePacked(const QString &name);

/// \a name, relative to a folder, as 7-Zip takes it for a file in any case.
QString nameForArchiver(const QString &name);

/// \a text fit for one line of a message.
QString oneLine(QString text);

/// What is wrong with an archive that \a listed says was made from \a packed; empty when nothing
/// is. The two may differ where a console prints names in its own way: in white space, in numbers
/// at their beginning and in letters outside ASCII.
QString differenceInNames(const QStringList &packed, const QStringList &listed);

} // namespace ResultsArchive
