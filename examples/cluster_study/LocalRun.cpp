#include "LocalRun.h"

#include "CancelRequest.h"
#include "CaseCommand.h"
#include "CaseTask.h"
#include "Output.h"
#include "Study.h"
#include "StudyFolder.h"

#include <Utility/AsyncTaskProcessor.h>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

constexpr int CancelTick = 100; // milliseconds

} // namespace

LocalRun::LocalRun(const Study &study, const StudyFolder &folder, const QList<int> &cases,
                   int processors, Progress &progress, const CancelRequest &cancel, Log *log)
    : AsyncTask(QStringLiteral("Run the cases"), nullptr)
    , study_(study)
    , folder_(folder)
    , waiting_(cases)
    , processorCount_(processors)
    , progress_(progress)
    , cancel_(cancel)
    , log_(log)
{
    connect(&cancelTimer_, &QTimer::timeout, this, [this] { checkCancel(); });
}

LocalRun::~LocalRun() = default;

void LocalRun::execute()
{
    for (int index = 0; index < processorCount_ && !waiting_.isEmpty(); ++index) {
        auto processor = std::make_unique<AsyncTaskProcessor>();
        processor->setLog(log_);
        processor->setExitOnError(false);
        connect(processor.get(), &AsyncTaskProcessor::finished, this,
                [this, runner = processor.get()](AsyncTask *task) {
                    caseEnded(static_cast<CaseTask *>(task));
                    // The processor continues with a task that is added here.
                    if (!addNextCase(*runner))
                        checkEnd();
                });
        addNextCase(*processor);
        processor->startLater();
        processors_.push_back(std::move(processor));
    }
    cancelTimer_.start(CancelTick);
    checkEnd();
}

bool LocalRun::addNextCase(AsyncTaskProcessor &processor)
{
    if (waiting_.isEmpty())
        return false;
    const int number = waiting_.takeFirst();
    auto *task = new CaseTask(number, commandOf(study_, number), folder_);
    running_.insert(task);
    progress_.running = running_.size();
    processor.addTask(task);
    return true;
}

void LocalRun::caseEnded(CaseTask *task)
{
    running_.remove(task);
    progress_.running = running_.size();
    if (task->end().state == CaseEnd::Ok)
        ++progress_.ok;
    if (task->end().state == CaseEnd::Failed) {
        ++progress_.failed;
        printLine(stdout, QStringLiteral("%1 failed: %2").arg(task->name(), task->error()));
    }
    if (!task->problem().isEmpty() && isOk()) {
        // A disk that is full for this case is full for the next one too.
        setError(task->problem());
        waiting_.clear();
    }
}

void LocalRun::checkCancel()
{
    if (!cancel_.isRequested())
        return;
    cancelTimer_.stop();
    progress_.step = QStringLiteral("cancelling");
    waiting_.clear();
    const QSet<CaseTask *> running = running_;
    for (CaseTask *task : running)
        task->cancel();
}

void LocalRun::checkEnd()
{
    // Queued: this task owns the processors, which may be emitting a signal now.
    if (waiting_.isEmpty() && running_.isEmpty())
        QMetaObject::invokeMethod(
            this, [this] { setFinished(); }, Qt::QueuedConnection);
}

} // namespace ClusterStudy
