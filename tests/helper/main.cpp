// The child process of the tests: "helper BEHAVIOUR [ARGUMENT...]".

#include "commands.h"
#include "enum.h"
#include "log.h"
#include "sevenzip.h"
#include "systemcalls.h"
#include "unicodefile.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace {

int usage()
{
    std::fputs("helper: no such behaviour\n", stderr);
    return 99;
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray behaviour = argc > 1 ? argv[1] : "";
    if (behaviour == "exit" && argc > 2)
        return std::atoi(argv[2]);
    if (behaviour == "system-without-application") {
        QStringList calls;
        for (int index = 2; index < argc; ++index)
            calls += QString::fromLocal8Bit(argv[index]);
        return SystemCalls().run(calls);
    }
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(2);
    if (behaviour == "enum-at-exit")
        return printEnumAtExit();
    if (behaviour == "log-append")
        return logAppend(arguments);
    if (behaviour == "log-append-lines")
        return logAppendLines(arguments);
    if (behaviour == "log-at-exit")
        return logAtExit(arguments);
    if (behaviour == "log-check")
        return logCheck(arguments);
    if (behaviour == "log-truncate-endlessly")
        return logTruncateEndlessly(arguments);
    if (behaviour == "sevenzip-convert")
        return sevenZipConvert(arguments);
    if (behaviour == "sevenzip-missing")
        return sevenZipMissing(arguments);
    if (behaviour == "sevenzip-run")
        return sevenZipRun(arguments);
    if (behaviour == "system")
        return SystemCalls().run(arguments);
    if (behaviour == "unicode-file")
        return unicodeFile(arguments);
    if (runCommandBehaviour(behaviour, arguments))
        return EXIT_SUCCESS;
    return usage();
}
