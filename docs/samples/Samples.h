// The samples of the documentation. The headers show the parts between the marks "//! [name]". The
// test tst_samples runs each sample and checks what it does.

#pragma once

#include <Utility/Version.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QThreadPool>

#include <string>

class QCoreApplication;
class QDomDocument;

namespace Vorn::Util {
class AsyncTask;
class ClusterInfo;
class Log;
class SevenZip;
} // namespace Vorn::Util

namespace Samples {

/// Does the work of some samples.
class Worker : public QObject
{
    Q_OBJECT

public:
    QStringList done;

public Q_SLOTS:
    void mesh() { done += QStringLiteral("mesh"); }
    void solve() { done += QStringLiteral("solve"); }
    void update() { done += QStringLiteral("update"); }
    void cleanUp() { done += QStringLiteral("cleanUp"); }
};

void writeLog(const QString &folder);

int runTasks(QCoreApplication &app, Worker &worker, Vorn::Util::Log &log);
Vorn::Util::AsyncTask *makeRunProgram(const QString &program, const QStringList &arguments);
int runTask(QCoreApplication &app, Vorn::Util::AsyncTask *task, Vorn::Util::Log &log);
int runUpdate(QCoreApplication &app, Worker &worker);
int cancelAtOnce(QCoreApplication &app, Worker &worker, Vorn::Util::Log &log);

QStringList runCommand(Vorn::Util::Log &log);
bool compress(const QString &folder);

int setThreadCount(QThreadPool &pool, Vorn::Util::Log &log, const QString &folder);
long measureLoad();
QString submitToCluster(Vorn::Util::Log &log, const QString &toolFolder);
void logNodes(const Vorn::Util::ClusterInfo &cluster, Vorn::Util::Log &log);

QString makeScratchFile();
QString readInstallationFolder();
QString solveInAscii(const QString &folder);

bool needsConversion(const Vorn::Util::Version &version);
int valueOfGreen();
int readCores(QDomDocument &document);
QString convertText(std::string &name);

} // namespace Samples
