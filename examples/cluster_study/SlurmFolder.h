#pragma once

#include <QtCore/QString>

namespace ClusterStudy {

class StudyFolder;
struct CaseCommand;

/// The folder "slurm" in the output folder of a study. It exists as long as jobs of the study may
/// run on the cluster, also after this program was killed. Functions that return a text return an
/// error message, empty if they succeeded.
class SlurmFolder
{
public:
    /// The object must outlive this one.
    explicit SlurmFolder(const StudyFolder &folder);

    bool exists() const;

    /// Creates the folder. If it exists already, its name for the jobs remains.
    QString create() const;
    QString remove() const;

    QString path() const;

    /// The name of all jobs of this study, which no other study has. Empty if the folder does not
    /// exist, or is damaged.
    QString jobName() const;

    /// The command of the case \a number for its job.
    QString writeCommand(int number, const CaseCommand &command) const;
    bool readCommand(int number, CaseCommand &command) const;

    /// The name of the file in path() for what the jobs print. The cases have files of their own
    /// for it, so these are errors.
    static QString messagesName();
    QString messages() const;

private:
    QString nameIn(const QString &name) const;

    const StudyFolder &folder_;
};

} // namespace ClusterStudy
