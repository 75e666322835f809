#pragma once

#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtTest/QtTest>

/// What a program printed, and how it ended.
struct Answer
{
    QStringList lines;
    QByteArray errors;
    int exitCode = -1; // also of a program that crashed or did not end in time
    qint64 milliseconds = 0;
};

inline Answer answerOf(const QString &program, const QStringList &arguments,
                       int timeLimit = 120000 /* milliseconds */)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start(program, arguments);
    Answer answer;
    if (process.waitForFinished(timeLimit) && process.exitStatus() == QProcess::NormalExit)
        answer.exitCode = process.exitCode();
    answer.milliseconds = timer.elapsed();
    answer.lines = QString::fromUtf8(process.readAllStandardOutput())
                       .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    answer.errors = process.readAllStandardError();
    return answer;
}

/// Whether a process with this number runs. One that has ended counts as ended, also if nobody has
/// waited for it.
inline bool isRunning(const QByteArray &process)
{
    const QString exe = QStringLiteral("/proc/%1/exe").arg(QString::fromLatin1(process));
    return !QFile::symLinkTarget(exe).isEmpty();
}

/// The base class of tests on the Slurm cluster that scripts/slurm.sh has started. Without one they
/// are skipped: no other cluster is touched.
class TestWithCluster : public TestInFolder
{
protected:
    void initTestCase() override
    {
        if (qEnvironmentVariableIsEmpty("VORNUTILITY_CLUSTER"))
            QSKIP("There is no test cluster: use scripts/test-cluster.sh");
        qputenv("SLURM_CONF", QFile::encodeName(clusterFile(QStringLiteral("slurm.conf"))));
    }

    /// A file in the folder of the cluster.
    static QString clusterFile(const QString &name)
    {
        return qEnvironmentVariable("VORNUTILITY_CLUSTER") + QLatin1Char('/') + name;
    }

    static Answer scontrol(const QStringList &arguments)
    {
        return answerOf(QStringLiteral("scontrol"), arguments);
    }

    static Answer sinfo(const QStringList &arguments)
    {
        return answerOf(QStringLiteral("sinfo"),
                        QStringList{QStringLiteral("--noheader"), QStringLiteral("--all")}
                            + arguments);
    }

    /// The state of a node, such as "idle".
    static QString stateOf(const QString &node)
    {
        const Answer answer = sinfo({QStringLiteral("--Node"), QStringLiteral("--nodes"), node,
                                     QStringLiteral("--format"), QStringLiteral("%T")});
        return answer.lines.value(0).trimmed();
    }

    static Answer tool()
    {
        return answerOf(BuildPaths::clusterTool(),
                        {QStringLiteral("-q"), QStringLiteral("-cluster")});
    }
};
