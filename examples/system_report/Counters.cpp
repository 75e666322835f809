#include "Sections.h"
#include "Text.h"

#include <Utility/CpuCounter.h>

#include <limits>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

QStringList rangeRow(const QString &name, const QVector<Sample> &samples, qint64 Sample::*value,
                     const QString &unit)
{
    qint64 lowest = -1;
    qint64 highest = -1;
    for (const Sample &sample : samples) {
        const qint64 number = sample.*value;
        if (number >= 0 && (lowest < 0 || number < lowest))
            lowest = number;
        highest = qMax(highest, number);
    }
    return {name, measure(lowest, unit), measure(average(samples, value), unit),
            measure(highest, unit)};
}

// The counter gives bytes. They do not fit where "long" has 32 bits: the value is not known there.
QStringList bytesRow(const QString &name, const QString &path)
{
    constexpr qint64 Mebibyte = 1 << 20;
    constexpr bool Fits = std::numeric_limits<long>::digits > 32;
    const qint64 bytes = Fits ? CpuCounter(path).getValue() : -1;
    const QString value = measure(bytes < 0 ? -1 : bytes / Mebibyte, QStringLiteral("MiB"));
    return {name, value, value, value};
}

} // namespace

Section counters(const QVector<Sample> &samples)
{
    const QString percent = QStringLiteral("%");
    Section section;
    section.title = QStringLiteral("Counters");
    section.remark
        = QStringLiteral("%1 samples in %2 s. The committed memory and its limit "
                         "are those at the end.")
              .arg(QString::number(samples.size()),
                   QString::number(samples.isEmpty() ? 0 : samples.last().milliseconds / 1000));
    section.columns = QStringList{QStringLiteral("Counter"), QStringLiteral("Lowest"),
                                  QStringLiteral("Average"), QStringLiteral("Highest")};
    section.rows = {
        rangeRow(QStringLiteral("Processor load"), samples, &Sample::load, percent),
        rangeRow(QStringLiteral("Memory available"), samples, &Sample::available,
                 QStringLiteral("MiB")),
        rangeRow(QStringLiteral("Memory committed, of the limit"), samples, &Sample::committed,
                 percent),
        bytesRow(QStringLiteral("Memory committed"), CpuCounter::MemInUseBytes),
        bytesRow(QStringLiteral("Limit of committed memory"), CpuCounter::MemLimitBytes),
    };
    return section;
}

} // namespace SystemReport
