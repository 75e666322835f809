#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace ClusterStudy {

struct Study;

/// What is run for one case.
struct CaseCommand
{
    QString program;
    QStringList arguments;            ///< with the values of the case
    QMap<QString, QString> variables; ///< of the environment, with the values of the case
};

CaseCommand commandOf(const Study &study, int number);

/// The content of the file that tells a job the command of the case \a number, and back. Returns
/// false if the file is incomplete, or of another case.
QByteArray commandFileContent(const CaseCommand &command, int number);
bool readCommandFile(const QByteArray &content, int number, CaseCommand &command);

} // namespace ClusterStudy
