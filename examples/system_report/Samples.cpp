#include "Samples.h"

#include <Utility/CpuCounter.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

using namespace Vorn::Util;

namespace SystemReport {

QVector<Sample> takeSamples(int seconds)
{
    constexpr qint64 ShortestStep = 250; // milliseconds
    constexpr qint64 MaxSamples = 240;
    const qint64 total = qint64(seconds) * 1000;
    const qint64 step = qMax(ShortestStep, (total + MaxSamples - 1) / MaxSamples);

    CpuCounter load(CpuCounter::CpuPercent);
    CpuCounter available(CpuCounter::MemAvailMBytes);
    CpuCounter committed(CpuCounter::MemInUsePercent);
    QElapsedTimer time;
    time.start();
    QVector<Sample> samples;
    for (qint64 next = step; next <= total; next += step) {
        QThread::msleep(static_cast<unsigned long>(qMax<qint64>(0, next - time.elapsed())));
        Sample sample;
        sample.load = load.getValue();
        sample.available = available.getValue();
        sample.committed = committed.getValue();
        sample.milliseconds = time.elapsed();
        samples << sample;
    }
    return samples;
}

qint64 average(const QVector<Sample> &samples, qint64 Sample::*value)
{
    qint64 sum = 0;
    qint64 count = 0;
    for (const Sample &sample : samples) {
        if (sample.*value >= 0) {
            sum += sample.*value;
            ++count;
        }
    }
    return count == 0 ? -1 : (sum + count / 2) / count;
}

} // namespace SystemReport
