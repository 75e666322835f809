#pragma once

#include "Progress.h"
#include "SlurmCommand.h"
#include "SlurmFolder.h"
#include "SlurmText.h"

#include <Utility/AsyncTask.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QTimer>

namespace ClusterStudy {

class CancelRequest;
class StudyFolder;
struct CaseEnd;
struct Study;

/// Runs cases as job arrays on Slurm. Each job runs this program again, which runs the case (see
/// RunCase.h) and writes its end file. This task submits the arrays and watches the queue and the
/// end files.
class SlurmRun : public Vorn::Util::AsyncTask
{
public:
    /// No more than \a jobs cases run at a time; 0 for no limit. The objects must outlive this
    /// task.
    SlurmRun(const Study &study, const StudyFolder &folder, const QList<int> &cases, int jobs,
             Progress &progress, const CancelRequest &cancel);

protected:
    void execute() override;

private:
    void readConfig(const SlurmCommand::Answer &answer);
    void askForQueue();
    void readAnswer(const SlurmCommand::Answer &answer);
    void goOn();
    bool canSubmit() const;
    void submit();
    QString prepare(const TaskArray &array) const;
    void readSubmitted(const SlurmCommand::Answer &answer);
    void cancelJobs(const QStringList &which);
    void checkCases();
    CaseEnd readLateEnd(int number) const;
    void caseEnded(int number, const CaseEnd &end);
    void checkCancel();
    void stop(const QString &problem);
    void end(bool areJobsGone);
    QString recordKilledCases() const;
    void logMessages();

    const Study &study_;
    const StudyFolder &folder_;
    const SlurmFolder jobs_;
    const QList<int> cases_;
    const int jobLimit_;
    Progress &progress_;
    const CancelRequest &cancel_;

    QVector<TaskArray> waiting_;     // not submitted yet
    QHash<qint64, int> offsets_;     // of the submitted arrays, by their job numbers
    QSet<int> active_;               // cases that are submitted and have not ended
    QHash<int, QElapsedTimer> gone_; // cases that have left the queue without an end file
    QVector<QueueRow> queue_;        // the last answer of squeue
    QString jobName_;
    bool mayHaveJobs_ = false;
    bool isSubmitting_ = false;
    bool isStopping_ = false;
    QSet<int> stopped_; // cases that ran when their jobs were cancelled
    QElapsedTimer stopping_;
    QElapsedTimer refused_; // valid while Slurm does not accept the next array
    bool wasSilent_ = false;
    QTimer tick_;
    QTimer cancelTimer_;
    SlurmCommand command_;
};

} // namespace ClusterStudy
