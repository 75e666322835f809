#pragma once

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <memory>

namespace Vorn::Util {

/// An open performance counter. Each system implements it.
class SysInfo
{
public:
    virtual ~SysInfo() = default;

    /// Takes a sample and returns the value; -1 if it cannot be read.
    virtual long getValue() = 0;

protected:
    SysInfo() = default;

private:
    Q_DISABLE_COPY(SysInfo)
};

namespace Platform {

/// Opens the counter \a path and takes the first sample. The value of an unknown counter is -1.
/// Null if there is not enough memory.
std::unique_ptr<SysInfo> openCounter(const QString &path);

} // namespace Platform

} // namespace Vorn::Util
