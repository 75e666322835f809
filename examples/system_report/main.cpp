// Writes what the library knows about this machine, as text or as a page in HTML. Shows how to use
// the classes for the machine: versions, processors, counters, cluster, folders, settings.

#include "Cluster.h"
#include "Collect.h"
#include "HtmlReport.h"
#include "Messages.h"
#include "Options.h"
#include "ReportFile.h"
#include "Text.h"
#include "TextReport.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <cstdio>
#include <cstdlib>

using namespace SystemReport;

namespace {

int fail(const QString &problem)
{
    print(stderr, QStringLiteral("system-report: %1\n").arg(problem));
    return EXIT_FAILURE;
}

int printReport(const Options &options)
{
    if (!print(stdout, textReport(collectReport(options))))
        return fail(QStringLiteral("The report cannot be printed"));
    return EXIT_SUCCESS;
}

// The file is opened first: a folder that is not writable is reported without a wait.
int writeReport(const Options &options)
{
    ReportFile file(options.html);
    QString problem = file.open();
    if (problem.isEmpty())
        problem = file.write(htmlReport(collectReport(options)));
    if (!problem.isEmpty())
        return fail(problem);
    print(stdout,
          QStringLiteral("The report is in %1. Read it before you send it: it names this machine, "
                         "its user and folders.\n")
              .arg(shownPath(options.html)));
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("system-report"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == QLatin1String(PrintClusterOption))
        return printCluster(arguments.at(2));

    Options options;
    const QString problem = readOptions(options);
    if (!problem.isEmpty())
        return fail(problem);
    if (!QTemporaryDir().isValid()) { // which several tables need
        return fail(QStringLiteral("A temporary folder cannot be made in %1")
                        .arg(shownPath(QDir::tempPath())));
    }
    collectMessages();
    return options.html.isEmpty() ? printReport(options) : writeReport(options);
}
