#pragma once

#include "CaseCommand.h"
#include "CaseEnd.h"
#include "CaseProcess.h"

#include <Utility/AsyncTask.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

namespace ClusterStudy {

class StudyFolder;

/// The milliseconds that a cancelled case has to end before it is killed.
constexpr int TimeToEnd = 10000;

/// Runs one case in its folder and records its end there.
class CaseTask : public Vorn::Util::AsyncTask
{
public:
    /// \a folder must outlive this task.
    CaseTask(int number, const CaseCommand &command, const StudyFolder &folder);

    /// How long after the end of the process cancel() still counts. 0 by default. Slurm sends its
    /// signal to the processes of a job one after the other, so that this program may get it after
    /// the case has ended.
    void setTimeForSignal(int milliseconds);

    /// Ends the case. A case that has not started yet does not start.
    void cancel();

    int number() const;
    CaseEnd end() const;

    /// An error message if the case cannot have results, such as for a full disk; else empty.
    QString problem() const;

protected:
    void execute() override;

private:
    void processEnded();
    void recordEnd();
    void writeEnd();

    const int number_;
    const CaseCommand command_;
    const StudyFolder &folder_;
    CaseEnd end_;
    QString problem_;
    bool isCancelled_ = false;
    bool wasAskedToEnd_ = false;
    bool isWaitingForSignal_ = false;
    int timeForSignal_ = 0;
    QElapsedTimer time_;
    QTimer force_;
    CaseProcess process_;
};

} // namespace ClusterStudy
