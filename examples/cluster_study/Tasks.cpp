#include "Tasks.h"

#include "CancelRequest.h"
#include "Output.h"
#include "Text.h"

#include <QtCore/QFile>

#include <filesystem>
#include <system_error>

using namespace Vorn::Util;

namespace ClusterStudy {

StepTask::StepTask(const QString &name, const Work &work)
    : AsyncTask(name, nullptr)
    , work_(work)
{
}

void StepTask::execute()
{
    const QString problem = work_();
    if (!problem.isEmpty())
        setError(problem);
    setFinished();
}

PackTask::PackTask(const QString &folder, const QString &name, const Names &names,
                   const CancelRequest &cancel)
    : AsyncTask(QStringLiteral("Pack"), nullptr)
    , folder_(folder)
    , file_(QStringLiteral("%1/%2.7z").arg(folder, name))
    , newFile_(QStringLiteral("%1/%2-new.7z").arg(folder, name))
    , names_(names)
    , cancel_(cancel)
{
    // Queued: the archive is deleted with this task, which must not happen while it emits a signal.
    connect(
        &archive_, &SevenZip::compressionFinished, this, [this] { end(); }, Qt::QueuedConnection);
}

void PackTask::execute()
{
    // SevenZip removes every occurrence of the current path from a name. With "/." at its end the
    // path occurs only at the beginning.
    const QString currentPath = folder_ + QStringLiteral("/.");
    const QStringList names = names_();
    for (const QString &name : names)
        paths_ << currentPath + QLatin1Char('/') + name;
    archive_.setArchiveFile(newFile_);
    archive_.setCurrentPath(currentPath);
    pack();
}

void PackTask::pack()
{
    // 7-Zip would add the files to an archive that a killed run has left.
    if (QFile::exists(newFile_) && !QFile::remove(newFile_)) {
        finish(QStringLiteral("%1 cannot be removed").arg(shown(newFile_)));
        return;
    }
    signalsBefore_ = cancel_.count();
    archive_.startCompressingFiles(paths_);
}

void PackTask::end()
{
    if (cancel_.count() != signalsBefore_) {
        // Ctrl-C on the terminal ends 7-Zip too.
        log(QStringLiteral("A signal arrived while packing: packing again"));
        pack();
        return;
    }
    if (!archive_.isOk())
        log(archive_.output());
    if (archive_.error() == SevenZip::FatalError || archive_.compressedSize() <= 0) {
        QFile::remove(newFile_);
        finish(QStringLiteral("7-Zip could not pack the results"));
    } else {
        if (archive_.error() == SevenZip::Warning)
            printLine(stdout, QStringLiteral("Some files could not be packed, see study.log"));
        finish(replaceArchive());
    }
}

// Returns an error message, empty if it succeeded.
QString PackTask::replaceArchive() const
{
    std::error_code error;
    std::filesystem::rename(std::filesystem::u8path(newFile_.toStdString()),
                            std::filesystem::u8path(file_.toStdString()), error);
    return error ? QStringLiteral("%1 cannot be replaced; the new archive is %2")
                       .arg(shown(file_), shown(newFile_))
                 : QString();
}

void PackTask::finish(const QString &problem)
{
    if (!problem.isEmpty())
        setError(problem);
    setFinished();
}

} // namespace ClusterStudy
