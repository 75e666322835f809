#include "Workplace.h"

#include "linux/PeakMemory.h"

#include <QtCore/QFile>

#include <malloc.h>

qint64 Workplace::memory()
{
    const auto info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

namespace {

// A number of kilobytes in /proc/self/status, in bytes.
qint64 statusValue(const QByteArray &name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    const int from = status.indexOf('\n' + name + ':') + 1;
    const QByteArray line = status.mid(from, status.indexOf('\n', from) - from);
    return line.simplified().split(' ').value(1).toLongLong() * 1024;
}

} // namespace

Workplace::PeakMemory::PeakMemory()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1 || !file.flush())
        qFatal("cannot measure the peak of the memory");
    before_ = statusValue("VmRSS");
}

qint64 Workplace::PeakMemory::growth() const
{
    return qMax(Q_INT64_C(0), statusValue("VmHWM") - before_);
}
