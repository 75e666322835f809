#pragma once

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <memory>

namespace Vorn::Util {

/// The source of one sampled value of the system. Each system implements it.
class SysInfo
{
public:
    virtual ~SysInfo() = default;

    /// Takes a sample; -1 when there is none.
    virtual long getValue() = 0;

protected:
    SysInfo() = default;

private:
    Q_DISABLE_COPY(SysInfo)
};

namespace Platform {

/// The source of the values of the counter \a path, with its first sample taken. Null when there
/// is no memory for it; a source for an unknown path gives -1.
std::unique_ptr<SysInfo> openCounter(const QString &path);

} // namespace Platform

} // namespace Vorn::Util
