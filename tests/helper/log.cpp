#include "log.h"

#include "NumberedLines.h"

#include <Utility/Log.h>

#include <QtCore/QFileInfo>

#include <cstdio>
#include <cstdlib>

using namespace Vorn::Util;

namespace {

void tell(int number)
{
    std::printf("%d\n", number);
    std::fflush(stdout);
}

class Farewell
{
public:
    Farewell(const QString &name, Log::TimeStamp timeStamp)
        : log_(name, Log::NoFileTimeStamp)
    {
        log_.setTimeStamp(timeStamp);
        log_.open(true);
        log_.append(QStringLiteral("made"));
    }
    ~Farewell() { log_.append(QStringLiteral("destroyed")); }

private:
    Q_DISABLE_COPY(Farewell)

    Log log_;
};

} // namespace

int logCheck(const QStringList &arguments)
{
    Log log(arguments.value(0), Log::NoFileTimeStamp);
    log.append(QString());
    return EXIT_SUCCESS;
}

int logAppend(const QStringList &arguments)
{
    Log log(arguments.value(0), Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    if (!log.open(true))
        return EXIT_FAILURE;
    log.append(arguments.value(1));
    return EXIT_SUCCESS;
}

int logAppendLines(const QStringList &arguments)
{
    Log log(arguments.value(0), Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    if (!log.open(true))
        return EXIT_FAILURE;
    const int count = arguments.value(2).toInt();
    tell(count);
    while (std::getchar() != '\n') { }
    for (int number = 0; number < count; ++number)
        log.append(numberedLine(arguments.value(1), number));
    return EXIT_SUCCESS;
}

int logAtExit(const QStringList &arguments)
{
    static const Farewell farewell(arguments.value(0),
                                   static_cast<Log::TimeStamp>(arguments.value(1).toInt()));
    return EXIT_SUCCESS;
}

int logTruncateEndlessly(const QStringList &arguments)
{
    constexpr int LinesAtOnce = 1000;
    Log log(arguments.value(0), Log::NoFileTimeStamp);
    log.setTimeStamp(Log::NoTimeStamp);
    if (!log.open(true))
        return EXIT_FAILURE;
    int number = arguments.value(1).toInt();
    for (;;) {
        log.append(numberedLine(QStringLiteral("line"), number));
        tell(number++);
        while (QFileInfo(log.name()).size() <= Log::MaxLogSize) {
            QStringList lines;
            for (int i = 0; i < LinesAtOnce; ++i)
                lines += numberedLine(QStringLiteral("line"), number++);
            log.fastAppend(lines.join(QStringLiteral("\n ")));
            tell(number - 1);
        }
    }
}
