#pragma once

#include <Utility/AsyncTask.h>
#include <Utility/SevenZip.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

namespace ClusterStudy {

/// Calls a function that does all of the work. It returns an error message, empty if it succeeded.
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

/// Packs files into a new archive in their folder. An older archive is replaced, and an incomplete
/// one is removed.
class PackTask : public Vorn::Util::AsyncTask
{
public:
    /// The function returns the names of the files relative to \a folder. It is called when the
    /// task starts.
    using Names = std::function<QStringList()>;

    PackTask(const QString &archive, const QString &folder, const Names &names);

protected:
    void execute() override;

private:
    void end();

    const QString file_;
    const QString folder_;
    const Names names_;
    Vorn::Util::SevenZip archive_;
};

} // namespace ClusterStudy
