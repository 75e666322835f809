// scripts/slurm.sh, with a second cluster beside that of the other tests.
#include "TestFiles.h"
#include "TestWithCluster.h"

#include <QtCore/QTemporaryDir>

namespace {

// An ended process that nobody has waited for counts as ended.
bool isRunning(const QByteArray &process)
{
    const QString exe = QStringLiteral("/proc/%1/exe").arg(QString::fromLatin1(process));
    return !QFile::symLinkTarget(exe).isEmpty();
}

} // namespace

class TestClusterScript : public TestWithCluster
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override { TestWithCluster::initTestCase(); }
    void init() override;
    void cleanup() override;

    void stopEndsTheClusterAndItsJobs();
    void stopLeavesOtherFoldersAlone();

private:
    Answer script(const QString &action) const
    {
        return answerOf(QStringLiteral(CLUSTER_SCRIPT), {action, cluster()});
    }
    QString cluster() const { return folder_->filePath(QStringLiteral("slurm")); }
    QString pathInCluster(const char *name) const
    {
        return cluster() + QLatin1Char('/') + QLatin1String(name);
    }

    std::unique_ptr<QTemporaryDir> folder_; // with a short path, since a socket lies in it
};

void TestClusterScript::init()
{
    TestWithCluster::init();
    folder_ = std::make_unique<QTemporaryDir>(QStringLiteral("/tmp/vorn-XXXXXX"));
    QVERIFY(folder_->isValid());
    QVERIFY(QFile::setPermissions(folder_->path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
                                      | QFile::ExeGroup | QFile::ExeOther));
}

void TestClusterScript::cleanup()
{
    qputenv("SLURM_CONF", QFile::encodeName(clusterFile(QStringLiteral("slurm.conf"))));
    script(QStringLiteral("stop"));
    folder_.reset();
    TestWithCluster::cleanup();
}

void TestClusterScript::stopEndsTheClusterAndItsJobs()
{
    const Answer started = script(QStringLiteral("start"));
    QVERIFY2(started.exitCode == 0, started.errors.constData());
    qputenv("SLURM_CONF", QFile::encodeName(pathInCluster("slurm.conf")));
    QProcess bystander; // a program of the user that knows the cluster
    bystander.start(QStringLiteral("sleep"), {QStringLiteral("600")});
    QVERIFY(bystander.waitForStarted());

    // The job does not carry the configuration in its environment.
    const QString file = path("process");
    const QString job
        = QStringLiteral("echo $$ >'%1.new'; mv '%1.new' '%1'; exec env -i sleep 600").arg(file);
    QCOMPARE(answerOf(QStringLiteral("sbatch"),
                      {QStringLiteral("--output=/dev/null"), QStringLiteral("--wrap"), job})
                 .exitCode,
             0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file), 30000);
    const QList<QByteArray> processes{contentOf(file).trimmed(),
                                      contentOf(pathInCluster("munge/munged.pid")).trimmed(),
                                      contentOf(pathInCluster("slurmctld.pid")).trimmed(),
                                      contentOf(pathInCluster("slurmd-n1.pid")).trimmed(),
                                      contentOf(pathInCluster("slurmd-n3.pid")).trimmed()};
    for (const QByteArray &process : processes)
        QVERIFY(isRunning(process));

    const Answer stopped = script(QStringLiteral("stop"));
    QVERIFY2(stopped.exitCode == 0, stopped.errors.constData());
    for (const QByteArray &process : processes)
        QVERIFY(!isRunning(process));
    QVERIFY(!QFile::exists(cluster()));
    QCOMPARE(bystander.state(), QProcess::Running);
    qputenv("SLURM_CONF", QFile::encodeName(clusterFile(QStringLiteral("slurm.conf"))));
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(QStringLiteral("n1")), QStringLiteral("idle"), 30000);
    bystander.kill();
    QVERIFY(bystander.waitForFinished());
}

void TestClusterScript::stopLeavesOtherFoldersAlone()
{
    QVERIFY(writeFileInFolder(pathInCluster("slurm.conf"), "abc"));
    const Answer stopped = script(QStringLiteral("stop"));
    QCOMPARE(stopped.exitCode, 1);
    QCOMPARE(contentOf(pathInCluster("slurm.conf")), QByteArray("abc"));
}

QTEST_GUILESS_MAIN(TestClusterScript)

#include "tst_clusterscript.moc"
