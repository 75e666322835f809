#include "Workplace.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <string>

// With the option --folder=FOLDER the benchmarks use this folder, so that several runs can share
// the files there.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::AddCustomContext("qt", qVersion());
    const std::string option = "--folder=";
    const std::string argument = argc == 2 ? argv[1] : "";
    QTemporaryDir temporary;
    if (argument.compare(0, option.size(), option) == 0)
        Workplace::setFolder(
            QDir(QString::fromLocal8Bit(argument.c_str() + option.size())).absolutePath());
    else if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    else
        Workplace::setFolder(temporary.path());
    // The folder for temporary files is on the same file system, so that a truncation copies once.
    qputenv("TMPDIR", QFile::encodeName(Workplace::path(QString())));
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
