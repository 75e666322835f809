#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace ClusterStudy {

/// How a case ended.
struct CaseEnd
{
    enum State : int {
        Missing,   ///< not run, or not to its end
        Ok,        ///< exit code 0
        Failed,    ///< another exit code, a crash, or it could not be started
        Cancelled, ///< ended because the user cancelled the study or Slurm ended its job
    };

    State state = Missing;
    int exitCode = -1;       ///< -1 if there is none
    qint64 milliseconds = 0; ///< from start to end
    QString error;           ///< why it failed; else empty
};

/// The word for the table: "ok", "failed", "cancelled" or "missing".
QString stateName(CaseEnd::State state);

/// The content of the file that records the end of the case \a number, and back. A file that is
/// incomplete, or of another case, reads as Missing.
QByteArray endFileContent(const CaseEnd &end, int number);
CaseEnd readEndFile(const QByteArray &content, int number);

/// Names and values that a case has written as its results.
using Results = QVector<QPair<QString, QString>>;

/// Reads the lines "name=value" of a case's file of results. Lines without a "=" or without a name
/// are ignored. Of several lines with one name the last counts. The text is UTF-8. At most 1000
/// names are read; if there are more, \a ignored says so.
Results readResults(const QByteArray &content, QString &ignored);

} // namespace ClusterStudy
