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

/// Shows a run on the standard output: a line for each task that has ended and, on a terminal, a
/// line about the one under way that is written again and again.
class Display : public QObject
{
    Q_OBJECT

public:
    Display(Vorn::Util::AsyncTaskProcessor &processor, const QString &archive);

    /// The text of the first task that failed; empty when none did.
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
