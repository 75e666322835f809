#pragma once

#include <QtCore/QString>
#include <QtCore/QVector>

namespace ResultsArchive {

/// Whether the standard output is a terminal.
bool isTerminal();

/// Lets the program go on when the reader of its output ends.
void ignoreEndOfReader();

/// The signals that ask this program to end.
QVector<int> endSignals();

/// A command line that lists the file whose path is in the environment variable \a variable. The
/// path itself cannot be part of a command line, which has letters of Latin-1 only.
QString listingCommand(const QString &variable);

/// Sets the environment variable \a name for the programs that are started afterwards. \a value may
/// have any characters.
void setVariable(const QString &name, const QString &value);

} // namespace ResultsArchive
