#pragma once

#include <Utility/AsyncTask.h>
#include <Utility/SevenZip.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

namespace ClusterStudy {

class CancelRequest;

/// Calls a function that does all of the work. It returns an error message, empty if it succeeded.
/// The library's SyncTask calls a slot of an object by its name, which needs a class with slots and
/// is not checked by the compiler.
class StepTask : public Vorn::Util::AsyncTask
{
public:
    using Work = std::function<QString()>;

    StepTask(const QString &name, const Work &work);

protected:
    void execute() override;

private:
    const Work work_;
};

/// Packs files into a new archive in their folder. An older archive is replaced when the new one is
/// complete.
class PackTask : public Vorn::Util::AsyncTask
{
public:
    /// Returns the names of the files relative to the folder. It is called when the task starts.
    using Names = std::function<QStringList()>;

    /// The archive is \a name with the extension "7z". \a cancel must outlive this task.
    PackTask(const QString &folder, const QString &name, const Names &names,
             const CancelRequest &cancel);

protected:
    void execute() override;

private:
    void pack();
    void end();
    QString replaceArchive() const;
    void finish(const QString &problem);

    const QString folder_;
    const QString file_;
    const QString newFile_; // until it is complete
    const Names names_;
    const CancelRequest &cancel_;
    QStringList paths_;
    int signalsBefore_ = 0;
    Vorn::Util::SevenZip archive_;
};

} // namespace ClusterStudy
