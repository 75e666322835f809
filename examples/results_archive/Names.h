#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ResultsArchive {

/// Whether 7-Zip can be told to pack exactly the file \a name, a path relative to a folder. It
/// cannot if the path has control characters or a blank at its end, or if it has subfolders and
/// begins with "-" or "@".
bool canBePacked(const QString &name);

/// \a name, a path relative to a folder, in a form that 7-Zip reads neither as a switch nor as a
/// list file.
QString nameForArchiver(const QString &name);

/// \a text with "?" for each control character, such as a line end.
QString oneLine(QString text);

/// A number of bytes for the user: "12.3 MiB".
QString sizeText(qint64 bytes);

/// A part of a whole for the user: "12.3 %"; "-" if the whole is 0. Less than the whole is never
/// "100.0 %".
QString percentText(qint64 part, qint64 whole);

/// Compares the names \a listed in an archive with the names \a packed. Returns the first
/// difference; empty if there is none. Older versions of 7-Zip do not print every name unchanged,
/// so differences in white space, in numbers at the beginning and in letters outside ASCII do not
/// count.
QString differenceInNames(const QStringList &packed, const QStringList &listed);

} // namespace ResultsArchive
