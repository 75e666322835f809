#pragma once

#include <QtCore/QString>

namespace ResultsArchive {

/// Whether the standard output is a terminal.
bool isTerminal();

/// The command line that lists the file whose path is in the environment variable \a variable.
/// The path stays out of the text: a command line takes no letters outside Latin-1.
QString listingCommand(const QString &variable);

/// Sets the variable \a name for programs started from now on, whatever characters \a value holds.
void setVariable(const QString &name, const QString &value);

} // namespace ResultsArchive
