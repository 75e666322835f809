#include "Display.h"

#include "Output.h"
#include "Platform.h"
#include "Progress.h"

namespace ClusterStudy {

namespace {

// In milliseconds.
constexpr int TerminalTick = 200;
constexpr int LineTick = 10000;

} // namespace

Display::Display(const Progress &progress)
    : progress_(progress)
    , isTerminal_(isTerminal())
{
    connect(&tick_, &QTimer::timeout, this, [this] { show(); });
    tick_.start(isTerminal_ ? TerminalTick : LineTick);
    time_.start();
}

void Display::show()
{
    const QString line = progressLine(progress_, time_.elapsed());
    if (isTerminal_)
        printLiveLine(line);
    else
        printLine(stdout, line);
}

} // namespace ClusterStudy
