#pragma once

#include "CaseEnd.h"
#include "CaseProcess.h"

#include <Utility/AsyncTask.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

namespace ClusterStudy {

class StudyFolder;
struct Study;

/// Runs one case in its folder and records its end there.
class CaseTask : public Vorn::Util::AsyncTask
{
public:
    CaseTask(int number, const Study &study, const StudyFolder &folder);

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

    const int number_;
    const Study &study_;
    const StudyFolder &folder_;
    CaseEnd end_;
    QString problem_;
    bool isCancelled_ = false;
    bool wasAskedToEnd_ = false;
    QElapsedTimer time_;
    QTimer force_;
    CaseProcess process_;
};

} // namespace ClusterStudy
