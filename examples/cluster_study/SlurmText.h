#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace ClusterStudy {

/// Cases that become one job array. The task number of a case in the array is its number minus the
/// offset.
struct TaskArray
{
    int offset = 0;
    QList<int> cases;
};

/// Splits \a cases, which are in ascending order, into arrays with task numbers from 1 to
/// \a maxTask.
QVector<TaskArray> splitIntoArrays(const QList<int> &cases, int maxTask);

/// The task numbers as sbatch expects them, such as "1-3,7". If \a jobs is not 0, no more tasks run
/// at a time.
QString taskList(const TaskArray &array, int jobs);

/// The task numbers in a text such as "1-3,7" or "1-9:2%4"; empty if the text is not valid.
QVector<int> readTaskList(const QString &text);

/// The value of MaxArraySize in the output of "scontrol show config": the largest task number plus
/// 1. Returns 0 if job arrays are disabled or the value is missing.
int maxArraySize(const QString &config);

/// The number of the job in the output of "sbatch --parsable"; 0 if there is none.
qint64 submittedJob(const QString &output);

/// A line of squeue.
struct QueueRow
{
    qint64 array = 0; ///< the number of the job array
    QVector<int> tasks;
    QString state; ///< in the compact form, such as "PD"

    bool isPending() const { return state == QLatin1String("PD"); }
    bool isRunning() const { return state == QLatin1String("R"); }
};

/// The format for squeue that readQueue() reads.
QString queueFormat();

/// Reads the output of squeue. Returns false if it is not valid.
bool readQueue(const QString &output, QVector<QueueRow> &rows);

/// Whether \a name is a name of jobs that newJobName() makes.
bool isJobName(const QString &name);
QString newJobName();

} // namespace ClusterStudy
