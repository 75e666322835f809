#include "log.h"

#include <Utility/Log.h>

#include <cstdlib>

using namespace Vorn::Util;

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
