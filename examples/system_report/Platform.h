#pragma once

#include <QtCore/QString>

namespace SystemReport {

/// Lets the standard output of this process go to the new file \a path. Returns a descriptor for
/// restoreStandardOutput(), or -1 if the output was not redirected.
int redirectStandardOutput(const QString &path);

/// Ends the redirection. Does nothing if \a descriptor is -1.
void restoreStandardOutput(int descriptor);

} // namespace SystemReport
