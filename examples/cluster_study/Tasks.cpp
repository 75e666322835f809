#include "Tasks.h"

#include "Output.h"
#include "Text.h"

#include <QtCore/QFile>

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

PackTask::PackTask(const QString &archive, const QString &folder, const Names &names)
    : AsyncTask(QStringLiteral("Pack"), nullptr)
    , file_(archive)
    , folder_(folder)
    , names_(names)
{
    // Queued: the archive is deleted with this task, which must not happen while it emits a signal.
    connect(
        &archive_, &SevenZip::compressionFinished, this, [this] { end(); }, Qt::QueuedConnection);
}

void PackTask::execute()
{
    // 7-Zip would add the files to an existing archive.
    if (QFile::exists(file_) && !QFile::remove(file_)) {
        setError(QStringLiteral("%1 cannot be removed").arg(shown(file_)));
        setFinished();
        return;
    }
    // SevenZip removes every occurrence of the current path from a name. With "/." at its end the
    // path occurs only at the beginning.
    const QString currentPath = folder_ + QStringLiteral("/.");
    QStringList paths;
    for (const QString &name : names_())
        paths << currentPath + QLatin1Char('/') + name;
    archive_.setArchiveFile(file_);
    archive_.setCurrentPath(currentPath);
    archive_.startCompressingFiles(paths);
}

void PackTask::end()
{
    if (!archive_.isOk())
        log(archive_.output());
    if (archive_.error() == SevenZip::FatalError || archive_.compressedSize() <= 0) {
        QFile::remove(file_);
        setError(QStringLiteral("7-Zip could not pack the results"));
    } else if (archive_.error() == SevenZip::Warning) {
        printLine(stdout, QStringLiteral("Some files could not be packed, see study.log"));
    }
    setFinished();
}

} // namespace ClusterStudy
