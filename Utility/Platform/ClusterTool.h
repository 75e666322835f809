#pragma once

#include <QtCore/QString>

namespace Vorn::Util::Platform {

/// The command line for the system's interpreter that runs the cluster tool in the folder \a dir
/// with \a options. Whatever the folder is called, it is one word of that line.
QString clusterToolCommand(const QString &dir, const QString &options);

} // namespace Vorn::Util::Platform
