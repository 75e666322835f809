#include "Output.h"

#include <QtCore/QByteArray>

namespace ClusterStudy {

namespace {

constexpr int LineWidth = 79;

bool hasLiveLine = false;

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

} // namespace

void printLine(std::FILE *stream, const QString &line)
{
    if (hasLiveLine)
        print(stdout, QLatin1Char('\r') + QString(LineWidth, QLatin1Char(' ')) + QLatin1Char('\r'));
    hasLiveLine = false;
    print(stream, line + QLatin1Char('\n'));
}

void printLiveLine(const QString &line)
{
    hasLiveLine = true;
    print(stdout, QLatin1Char('\r') + line.leftJustified(LineWidth, QLatin1Char(' '), true));
}

} // namespace ClusterStudy
