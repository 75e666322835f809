#pragma once

#include <Utility/SysInfo.h> // an interface alone, which the systems implement

#include <QtCore/QString>

#include <memory>

namespace Vorn::Util::Platform {

/// The source of the values of the counter \a path, with its first sample taken. Null when there
/// is no memory for it; a source for an unknown path gives -1.
std::unique_ptr<SysInfo> openCounter(const QString &path);

} // namespace Vorn::Util::Platform
