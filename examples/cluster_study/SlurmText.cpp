#include "SlurmText.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtCore/QUuid>

namespace ClusterStudy {

namespace {

constexpr int LargestTask = 4000000; // Slurm allows no larger task number

bool readRange(const QString &text, QVector<int> &tasks)
{
    static const QRegularExpression form(
        QStringLiteral("\\A([0-9]{1,7})(?:-([0-9]{1,7})(?::([0-9]{1,7}))?)?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return false;
    const int first = match.captured(1).toInt();
    const int last = match.captured(2).isEmpty() ? first : match.captured(2).toInt();
    const int step = match.captured(3).isEmpty() ? 1 : match.captured(3).toInt();
    if (last < first || last > LargestTask || step < 1)
        return false;
    for (int task = first; task <= last; task += step)
        tasks << task;
    return true;
}

} // namespace

QVector<TaskArray> splitIntoArrays(const QList<int> &cases, int maxTask)
{
    QVector<TaskArray> arrays;
    for (const int number : cases) {
        if (arrays.isEmpty() || number - arrays.last().offset > maxTask) {
            arrays << TaskArray();
            arrays.last().offset = number - 1;
        }
        arrays.last().cases << number;
    }
    return arrays;
}

QString taskList(const TaskArray &array, int jobs)
{
    QStringList ranges;
    for (int first = 0; first < array.cases.size();) {
        int last = first;
        while (last + 1 < array.cases.size()
               && array.cases.at(last + 1) == array.cases.at(last) + 1)
            ++last;
        QString range = QString::number(array.cases.at(first) - array.offset);
        if (last > first)
            range += QLatin1Char('-') + QString::number(array.cases.at(last) - array.offset);
        ranges << range;
        first = last + 1;
    }
    const QString list = ranges.join(QLatin1Char(','));
    return jobs > 0 ? list + QLatin1Char('%') + QString::number(jobs) : list;
}

QVector<int> readTaskList(const QString &text)
{
    QVector<int> tasks;
    const QStringList ranges = text.section(QLatin1Char('%'), 0, 0).split(QLatin1Char(','));
    for (const QString &range : ranges) {
        if (!readRange(range, tasks))
            return QVector<int>();
    }
    return tasks;
}

int maxArraySize(const QString &config)
{
    static const QRegularExpression form(QStringLiteral("^MaxArraySize\\s*=\\s*([0-9]+)\\s*$"),
                                         QRegularExpression::MultilineOption);
    return form.match(config).captured(1).toInt();
}

qint64 submittedJob(const QString &output)
{
    // "NUMBER" or "NUMBER;CLUSTER"
    return output.trimmed().section(QLatin1Char(';'), 0, 0).toLongLong();
}

QString queueFormat()
{
    return QStringLiteral("%F|%K|%t");
}

bool readQueue(const QString &output, QVector<QueueRow> &rows)
{
    rows.clear();
    const QStringList lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('|'));
        QueueRow row;
        row.array = fields.first().trimmed().toLongLong();
        row.tasks = readTaskList(fields.value(1).trimmed());
        row.state = fields.value(2).trimmed();
        if (fields.size() != 3 || row.array <= 0 || row.tasks.isEmpty() || row.state.isEmpty())
            return false;
        rows << row;
    }
    return true;
}

bool isJobName(const QString &name)
{
    static const QRegularExpression form(QStringLiteral("\\Acluster-study-[0-9a-f]{32}\\z"));
    return form.match(name).hasMatch();
}

QString newJobName()
{
    return QStringLiteral("cluster-study-") + QUuid::createUuid().toString(QUuid::Id128);
}

} // namespace ClusterStudy
