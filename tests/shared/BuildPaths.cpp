#include "BuildPaths.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

namespace {

// The build may know a path without a drive, as under Wine: it is on the drive of the test program.
QString fullPath(const char *path)
{
    return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QString::fromUtf8(path));
}

} // namespace

namespace BuildPaths {

QString helperProgram()
{
    return fullPath(HELPER_PROGRAM);
}

QString fakeArchiver()
{
    return fullPath(FAKE_ARCHIVER);
}

QString fakeClusterTool()
{
    return fullPath(FAKE_CLUSTER_TOOL);
}

QString studyCase()
{
    return fullPath(STUDY_CASE);
}

QString library()
{
    return fullPath(LIBRARY);
}

QString firstModule()
{
    return fullPath(FIRST_MODULE);
}

QString secondModule()
{
    return fullPath(SECOND_MODULE);
}

QString resultsArchive()
{
    return fullPath(EXAMPLES "/build/results-archive" PROGRAM_SUFFIX);
}

QString clusterStudy()
{
    return fullPath(EXAMPLES "/cluster-study/cluster-study" PROGRAM_SUFFIX);
}

QString systemReport()
{
    return fullPath(EXAMPLES "/system-report/system-report" PROGRAM_SUFFIX);
}

QString smallExample(const QString &name)
{
    return fullPath(EXAMPLES "/small/") + name + QStringLiteral(PROGRAM_SUFFIX);
}

QString beamStudy()
{
    return fullPath(SOURCES "/examples/cluster_study/beam");
}

QString samples()
{
    return fullPath(SOURCES "/docs/samples");
}

QString clusterTool()
{
    return fullPath(SOURCES "/tools/NodeInformation");
}

QString clusterScript()
{
    return fullPath(SOURCES "/scripts/slurm.sh");
}

QString installedTools()
{
    return fullPath(EXAMPLES "/stage/" TOOLS_FOLDER);
}

QString testData(const QString &name)
{
    return fullPath(SOURCES "/tests/data/") + name;
}

} // namespace BuildPaths
