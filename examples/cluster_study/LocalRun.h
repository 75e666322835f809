#pragma once

#include "CaseEnd.h"
#include "Progress.h"

#include <Utility/AsyncTask.h>

#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QTimer>

#include <memory>
#include <vector>

namespace Vorn::Util {
class AsyncTaskProcessor;
class Log;
} // namespace Vorn::Util

namespace ClusterStudy {

class CancelRequest;
class CaseTask;
class StudyFolder;
struct Study;

/// Runs cases on this machine, several at a time: each processor runs one case after the other.
class LocalRun : public Vorn::Util::AsyncTask
{
public:
    /// The objects must outlive this task. \a log may be null.
    LocalRun(const Study &study, const StudyFolder &folder, const QList<int> &cases, int processors,
             Progress &progress, const CancelRequest &cancel, Vorn::Util::Log *log);
    ~LocalRun() override;

protected:
    void execute() override;

private:
    bool addNextCase(Vorn::Util::AsyncTaskProcessor &processor);
    void caseEnded(CaseTask *task);
    void checkCancel();
    void checkEnd();

    const Study &study_;
    const StudyFolder &folder_;
    QList<int> waiting_;
    const int processorCount_;
    Progress &progress_;
    const CancelRequest &cancel_;
    Vorn::Util::Log *log_;
    QSet<CaseTask *> running_;
    QTimer cancelTimer_;
    std::vector<std::unique_ptr<Vorn::Util::AsyncTaskProcessor>> processors_;
};

} // namespace ClusterStudy
