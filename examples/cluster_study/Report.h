#pragma once

#include "CaseEnd.h"

#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace Vorn::Util {
class Log;
} // namespace Vorn::Util

namespace ClusterStudy {

class StudyFolder;
struct Cases;

/// What is made of the ends of all cases. The objects given to the constructor must outlive it.
class Report
{
public:
    Report(const Cases &cases, const StudyFolder &folder, Vorn::Util::Log &log);

    /// Reads the ends of the cases and writes the table and the picture. Returns an error message,
    /// empty if it succeeded.
    QString write();

    /// The files for the archive: those of the cases that have ended by themselves, the table and
    /// the picture. Call it after write().
    QStringList filesForArchive();

    int count(CaseEnd::State state) const;

    /// The number of cases with files in the archive.
    int packedCount() const;

    /// A line about the result of the study.
    QString summary(qint64 milliseconds) const;

private:
    const Cases &cases_;
    const StudyFolder &folder_;
    Vorn::Util::Log &log_;
    QVector<CaseEnd> ends_;
    int notPacked_ = 0;
};

} // namespace ClusterStudy
