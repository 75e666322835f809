#pragma once

#include <QtCore/QString>

/// Full paths of what the build makes and of the tests' data, whatever the current folder.
namespace BuildPaths {

QString helperProgram(); ///< The child process of the tests.
QString fakeArchiver();
QString fakeClusterTool();
QString studyCase(); ///< The program that a parameter study runs.
QString library();   ///< The file of the shared library.
QString firstModule();
QString secondModule();

QString resultsArchive();
QString clusterStudy();
QString systemReport();
QString smallExample(const QString &name);

QString beamStudy(); ///< The folder of the study of beams.
QString samples();   ///< The folder of the samples in the documentation.
QString clusterTool();
QString clusterScript();
QString installedTools(); ///< The folder that the cluster tool is installed in.
QString testData(const QString &name);

} // namespace BuildPaths
