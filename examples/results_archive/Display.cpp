#include "Display.h"

#include "Names.h"
#include "Platform.h"

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/System.h>

#include <QtCore/QByteArray>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

namespace ResultsArchive {

namespace {

constexpr int LineWidth = 79;
constexpr int Tick = 200; // milliseconds

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

} // namespace

void printLine(std::FILE *stream, const QString &line)
{
    print(stream, line + QLatin1Char('\n'));
}

Display::Display(AsyncTaskProcessor &processor, const QString &archive)
    : archive_(archive)
    , isTerminal_(isTerminal())
{
    connect(&processor, &AsyncTaskProcessor::started, this, &Display::showStart);
    connect(&processor, &AsyncTaskProcessor::finished, this, &Display::showEnd);
    connect(&processor, &AsyncTaskProcessor::progress, this,
            [this](AsyncTask *, const QString &text) { progress_ = text; });
    connect(&tick_, &QTimer::timeout, this, &Display::showLiveLine);
    if (isTerminal_)
        tick_.start(Tick);
}

QString Display::error() const
{
    return error_;
}

void Display::showStart(AsyncTask *task)
{
    name_ = task->name();
    progress_.clear();
    time_.start();
    showLiveLine();
}

void Display::showEnd(AsyncTask *task)
{
    if (!task->isOk() && error_.isEmpty())
        error_ = task->error();
    clearLiveLine();
    const QString result = task->isOk() ? QStringLiteral("done") : QStringLiteral("failed");
    printLine(stdout,
              QStringLiteral("%1: %2 in %3")
                  .arg(task->name(), result, System::getElapsedTimeString(task->elapsedTime())));
}

void Display::showLiveLine()
{
    if (!isTerminal_)
        return;
    const QString line = QStringLiteral("%1  %2  archive: %3  %4")
                             .arg(name_, System::getElapsedTimeString(time_.elapsed()),
                                  sizeText(QFileInfo(archive_).size()), progress_);
    print(stdout, QLatin1Char('\r') + line.leftJustified(LineWidth, QLatin1Char(' '), true));
}

void Display::clearLiveLine()
{
    if (isTerminal_)
        print(stdout, QLatin1Char('\r') + QString(LineWidth, QLatin1Char(' ')) + QLatin1Char('\r'));
}

} // namespace ResultsArchive
