#include <Utility/Formats/ProcessorRecords_p.h>

#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtCore/QtEndian>

#include <algorithm>
#include <limits>

namespace Vorn::Util::Formats {

namespace {

constexpr quint32 CoreRecord = 0;
constexpr quint32 PackageRecord = 3;

quint32 wordAt(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

void count(ProcessorCounts &counts, quint32 kind)
{
    if (kind == CoreRecord)
        ++counts.cores;
    else if (kind == PackageRecord)
        ++counts.packages;
}

// Calls the function twice: without a buffer to get the size, then with a buffer.
CallOutcome read(const RecordsCall &call, QByteArray &records)
{
    quint32 length = 0;
    call(nullptr, &length);
    if (length > static_cast<quint32>(std::numeric_limits<int>::max()))
        return {false, 0};
    records = QByteArray(static_cast<int>(length), '\0');
    const CallOutcome outcome = call(records.data(), &length);
    if (length < static_cast<quint32>(records.size()))
        records.truncate(static_cast<int>(length));
    return outcome;
}

// An online logical processor. The same core number can occur in several packages.
struct LogicalProcessor
{
    QString package;
    QString core;
};

ProcessorCounts countLogicalProcessors(const QVector<LogicalProcessor> &processors)
{
    QSet<QString> packages;
    QStringList cores; // in the order of the system
    QHash<QString, int> threads;
    for (const LogicalProcessor &processor : processors) {
        packages.insert(processor.package);
        const QString core = processor.package + QLatin1Char('/') + processor.core;
        if (threads[core]++ == 0)
            cores.append(core);
    }
    ProcessorCounts counts;
    counts.packages = static_cast<int>(packages.size());
    counts.cores = static_cast<int>(cores.size());
    if (!cores.isEmpty())
        counts.smt = threads.value(cores.last()) > 1;
    return counts;
}

QString contentsOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()).trimmed()
                                          : QString();
}

// The number in a file; empty if the file does not exist or contains "-1".
QString idOf(const QString &fileName)
{
    const QString id = contentsOf(fileName);
    return id.startsWith(QLatin1Char('-')) ? QString() : id;
}

// Reads a list such as "0-3,8": 0, 1, 2, 3, 8.
QVector<int> numbersOf(const QString &list)
{
    constexpr int MaxProcessors = 65536;
    QVector<int> numbers;
    const QStringList ranges = list.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &range : ranges) {
        bool firstOk = false;
        bool lastOk = false;
        const int first = range.section(QLatin1Char('-'), 0, 0).toInt(&firstOk);
        const int last = range.section(QLatin1Char('-'), -1).toInt(&lastOk);
        if (!firstOk || !lastOk)
            continue;
        for (qint64 number = first; number <= last && numbers.size() < MaxProcessors; ++number)
            numbers.append(static_cast<int>(number));
    }
    return numbers;
}

} // namespace

ProcessorCounts countExtendedRecords(const QByteArray &records)
{
    constexpr int SizeAt = 4;
    constexpr int FlagsAt = 8; // after the header
    constexpr char SmtFlag = 1;
    ProcessorCounts counts;
    for (int offset = 0; offset + FlagsAt <= records.size();) {
        const quint32 kind = wordAt(records, offset);
        const quint32 size = wordAt(records, offset + SizeAt);
        const quint32 smallest = kind == CoreRecord ? FlagsAt + 1 : FlagsAt;
        if (size < smallest || size > static_cast<quint32>(records.size() - offset))
            break;
        count(counts, kind);
        // Each core overwrites the value of the previous one.
        // Kept for compatibility: see "Hyper-threading of the last core" in docs/compatibility.md.
        if (kind == CoreRecord)
            counts.smt = records.at(offset + FlagsAt) == SmtFlag;
        offset += static_cast<int>(size);
    }
    return counts;
}

ProcessorCounts countFixedRecords(const QByteArray &records)
{
    constexpr int RecordSize = 32;
    constexpr int KindAt = 8;
    ProcessorCounts counts;
    for (int offset = 0; offset + KindAt + 4 <= records.size(); offset += RecordSize)
        count(counts, wordAt(records, offset + KindAt));
    return counts;
}

ProcessorQuery queryRecords(const RecordsCall &extended, const RecordsCall &older)
{
    ProcessorQuery query;
    QByteArray records;
    if (!extended)
        query.messages << QStringLiteral("Using GetLogicalProcessorInformation");
    const CallOutcome outcome = read(extended ? extended : older, records);
    query.ok = outcome.ok;
    if (query.ok) {
        query.counts = extended ? countExtendedRecords(records) : countFixedRecords(records);
    } else {
        const QString call = extended ? QStringLiteral("GetLogicalProcessorInformationEx")
                                      : QStringLiteral("GetLogicalProcessorInformation");
        query.messages
            << QStringLiteral("%1 failed, error = %2").arg(call, QString::number(outcome.error));
    }
    return query;
}

ProcessorCounts countSysfs(const QString &folder)
{
    QVector<LogicalProcessor> processors;
    const QVector<int> numbers = numbersOf(contentsOf(folder + QStringLiteral("/online")));
    for (int number : numbers) {
        const QString topology
            = QStringLiteral("%1/cpu%2/topology/").arg(folder, QString::number(number));
        // Without a core number each logical processor counts as a core.
        const QString core = idOf(topology + QStringLiteral("core_id"));
        const QString die = idOf(topology + QStringLiteral("die_id"));
        processors.append(
            {idOf(topology + QStringLiteral("physical_package_id")),
             core.isEmpty() ? QStringLiteral("cpu%1").arg(number) : die + QLatin1Char('/') + core});
    }
    return countLogicalProcessors(processors);
}

ProcessorCounts countCpuinfo(const QString &text)
{
    QVector<LogicalProcessor> processors;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QString key = line.section(QLatin1Char(':'), 0, 0).trimmed();
        const QString value = line.section(QLatin1Char(':'), 1).trimmed();
        if (key == QLatin1String("processor"))
            processors.append({QString(), QStringLiteral("cpu%1").arg(value)});
        else if (processors.isEmpty())
            continue;
        else if (key == QLatin1String("physical id"))
            processors.last().package = value;
        else if (key == QLatin1String("core id"))
            processors.last().core = value;
    }
    return countLogicalProcessors(processors);
}

} // namespace Vorn::Util::Formats
