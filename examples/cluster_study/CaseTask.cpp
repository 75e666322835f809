#include "CaseTask.h"

#include "StudyFolder.h"

#include <QtCore/QDir>
#include <QtCore/QProcessEnvironment>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

QProcessEnvironment environmentWith(const QMap<QString, QString> &variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto item = variables.cbegin(); item != variables.cend(); ++item)
        environment.insert(item.key(), item.value());
    return environment;
}

} // namespace

CaseTask::CaseTask(int number, const CaseCommand &command, const StudyFolder &folder)
    : AsyncTask(QStringLiteral("Case %1").arg(number), nullptr)
    , number_(number)
    , command_(command)
    , folder_(folder)
{
    // Queued: the process is deleted with this task, which must not happen while it emits a signal.
    connect(
        &process_, &QProcess::errorOccurred, this, [this] { processEnded(); },
        Qt::QueuedConnection);
    connect(
        &process_, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [this] { processEnded(); }, Qt::QueuedConnection);
    force_.setSingleShot(true);
    connect(&force_, &QTimer::timeout, this, [this] { process_.endAll(true); });
}

void CaseTask::setTimeForSignal(int milliseconds)
{
    timeForSignal_ = milliseconds;
}

void CaseTask::cancel()
{
    isCancelled_ = true;
    const bool isRunning = process_.state() != QProcess::NotRunning;
    wasAskedToEnd_ = isRunning || isWaitingForSignal_; // else not started, or ended by itself
    if (isRunning) {
        process_.endAll(false);
        force_.start(TimeToEnd);
    }
}

int CaseTask::number() const
{
    return number_;
}

CaseEnd CaseTask::end() const
{
    return end_;
}

QString CaseTask::problem() const
{
    return problem_;
}

void CaseTask::execute()
{
    if (isCancelled_) {
        setFinished();
        return;
    }
    end_.error = folder_.prepareCase(number_);
    if (!end_.error.isEmpty()) {
        end_.state = CaseEnd::Failed;
        writeEnd(); // fails too if the disk is full
        return;
    }
    const QString folder = folder_.caseFolder(number_);
    process_.setProgram(command_.program);
    process_.setArguments(command_.arguments);
    process_.setProcessEnvironment(environmentWith(command_.variables));
    process_.setWorkingDirectory(folder);
    process_.setStandardInputFile(QProcess::nullDevice());
    // The output goes directly to the file, so that its amount does not matter.
    process_.setStandardOutputFile(folder + QStringLiteral("/study-output.txt"));
    process_.setStandardErrorFile(folder + QStringLiteral("/study-errors.txt"));
    time_.start();
    process_.begin();
}

void CaseTask::processEnded()
{
    if (process_.state() != QProcess::NotRunning || isWaitingForSignal_)
        return; // finished() will follow, or has come
    end_.milliseconds = time_.elapsed();
    force_.stop();
    process_.endAll(true); // processes that the case has started may still run
    isWaitingForSignal_ = true;
    QTimer::singleShot(timeForSignal_, this, [this] { recordEnd(); });
}

void CaseTask::recordEnd()
{
    if (process_.error() == QProcess::FailedToStart) {
        end_.error = QStringLiteral("Cannot be started: %1").arg(process_.errorString());
    } else if (process_.exitStatus() == QProcess::CrashExit) {
        end_.error = QStringLiteral("Ended abnormally");
    } else {
        end_.exitCode = process_.exitCode();
        if (end_.exitCode != 0)
            end_.error = QStringLiteral("Exit code %1").arg(end_.exitCode);
    }
    // A case that was asked to end has not done all of its work, whatever its exit code is.
    end_.state = wasAskedToEnd_ ? CaseEnd::Cancelled
        : end_.error.isEmpty()  ? CaseEnd::Ok
                                : CaseEnd::Failed;
    writeEnd();
}

void CaseTask::writeEnd()
{
    problem_ = folder_.writeEnd(number_, end_);
    if (!problem_.isEmpty())
        setError(problem_);
    else if (!end_.error.isEmpty())
        setError(end_.error);
    setFinished();
}

} // namespace ClusterStudy
