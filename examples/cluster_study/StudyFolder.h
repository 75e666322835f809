#pragma once

#include "CaseEnd.h"
#include "Study.h"

#include <QtCore/QLockFile>
#include <QtCore/QString>

#include <memory>

namespace ClusterStudy {

/// The output folder of a study. Functions that return a text return an error message, empty if
/// they succeeded. Each file is complete or not there, also if the disk is full or the program is
/// killed.
class StudyFolder
{
public:
    explicit StudyFolder(const QString &path);

    /// Creates the folder and locks it as long as this object exists. An existing folder must be
    /// empty.
    QString create(const Study &study);

    /// Locks the folder, which must contain the same study.
    QString resume(const Study &study);

    /// Only for a job of the study: the folder is in use by the run that has submitted the job.
    QString open();

    QString path() const;
    QString file(const QString &name) const;

    /// The folder of the case \a number, relative to path(). It has at least four digits.
    QString caseName(int number) const;
    QString caseFolder(int number) const;

    /// Creates the folder of a case. An earlier one is removed with its content, and the file that
    /// tells how the case ended.
    QString prepareCase(int number) const;

    /// The file that tells how the case ended, relative to path().
    QString endFile(int number) const;
    QString writeEnd(int number, const CaseEnd &end) const;
    CaseEnd readEnd(int number) const;
    QString removeEnd(int number) const;

    /// What the case has written into "result.txt". What is not read is described in \a ignored.
    Results readResults(int number, QString &ignored) const;

    QString writeFile(const QString &name, const QByteArray &content) const;

    /// Empty if the file cannot be read or is too large for a file of this program.
    QByteArray readFile(const QString &name) const;

private:
    QString lock();
    bool removeLockOfEndedProcess() const;

    const QString path_;
    int digits_ = 4;
    std::unique_ptr<QLockFile> lock_;
};

} // namespace ClusterStudy
