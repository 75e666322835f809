#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The command line for the system's interpreter that runs the cluster tool in the folder \a dir
/// with \a options. Whatever the folder is called, it is one word
/// of that line; on Windows the interpreter still puts the value of a variable in the place of
/// "%NAME%".
QString clusterToolCommand(const QString &dir, const QString &options);

} // namespace Vorn::Util::Platform
