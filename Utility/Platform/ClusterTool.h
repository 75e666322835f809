#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The command line for the system's interpreter that runs the cluster tool in the folder \a dir
/// with \a options. On Linux the folder is one word of that line, whatever it is called; on Windows
/// the interpreter puts the value of a variable in the place of "%NAME%", and the script that holds
/// the line loses what is not Latin-1.
QString clusterToolCommand(const QString &dir, const QString &options);

} // namespace Vorn::Util::Platform
