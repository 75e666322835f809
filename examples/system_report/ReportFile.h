#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSaveFile>
#include <QtCore/QString>

namespace SystemReport {

/// A file that is written completely or not at all: until it is complete, it has another name. An
/// older file stays until then.
class ReportFile
{
public:
    explicit ReportFile(const QString &path);

    // These functions return an error message, empty if there is no error.
    QString open();
    QString write(const QByteArray &content);

private:
    QString problem() const;

    QSaveFile file_;
};

} // namespace SystemReport
