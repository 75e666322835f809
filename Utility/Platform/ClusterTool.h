#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The command line that runs the cluster tool in the folder \a dir with \a options.
///
/// Linux: \a dir can contain any characters. Windows: the interpreter replaces "%NAME%" in \a dir
/// by the value of a variable, and characters outside Latin-1 are lost when the command line is
/// written to a script.
QString clusterToolCommand(const QString &dir, const QString &options);

} // namespace Vorn::Util::Platform
