#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <cstdio>

namespace Vorn::Util {
class AsyncTask;
class AsyncTaskProcessor;
} // namespace Vorn::Util

namespace ResultsArchive {

void printLine(std::FILE *stream, const QString &line);

/// Shows a run on the standard output: one line for each task that has finished and, on a terminal,
/// a line about the current task, which is updated while it runs.
class Display : public QObject
{
    Q_OBJECT

public:
    Display(Vorn::Util::AsyncTaskProcessor &processor, const QString &archive);

    /// The error of the first task that failed; empty if none has failed.
    QString error() const;

private:
    void showStart(Vorn::Util::AsyncTask *task);
    void showEnd(Vorn::Util::AsyncTask *task);
    void showLiveLine();
    void clearLiveLine();

    QString archive_;
    QString error_;
    QString name_;
    QString progress_;
    QElapsedTimer time_;
    QTimer tick_;
    bool isTerminal_;
};

} // namespace ResultsArchive
