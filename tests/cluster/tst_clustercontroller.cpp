// The cluster tool and the library while the controller of Slurm does not answer.
#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestWithCluster.h"

#include <Utility/ClusterInfo.h>

#include <csignal>
#include <future>

using namespace Vorn::Util;

namespace {

constexpr int Limit = 30000; // milliseconds; then the library no longer waits for the tool

bool isAnsweredByController()
{
    return answerOf(QStringLiteral("timeout"),
                    {QStringLiteral("2"), QStringLiteral("scontrol"), QStringLiteral("show"),
                     QStringLiteral("config")})
               .exitCode
        == 0;
}

} // namespace

class TestClusterController : public TestWithCluster
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override { TestWithCluster::initTestCase(); }
    void init() override;
    void cleanup() override;

    void withoutAControllerThereAreAnErrorAndNoNodesInTime_data();
    void withoutAControllerThereAreAnErrorAndNoNodesInTime();
    void withoutItsKeyServiceThereIsAnError();

private:
    static QString configuration() { return clusterFile(QStringLiteral("slurm.conf")); }
    static QByteArray process()
    {
        return contentOf(clusterFile(QStringLiteral("slurmctld.pid"))).trimmed();
    }
    static pid_t controller() { return process().toInt(); }
    bool useConfiguration(const QByteArray &added);
};

void TestClusterController::init()
{
    TestWithCluster::init();
    QVERIFY(controller() > 0);
    QTRY_VERIFY_WITH_TIMEOUT(isAnsweredByController(), 30000);
}

// The controller runs again after each function.
void TestClusterController::cleanup()
{
    qputenv("SLURM_CONF", QFile::encodeName(configuration()));
    if (controller() > 0)
        kill(controller(), SIGCONT);
    if (!isRunning(process()))
        answerOf(QStringLiteral("/usr/sbin/slurmctld"), {QStringLiteral("-f"), configuration()});
    QTRY_VERIFY_WITH_TIMEOUT(isAnsweredByController(), 30000);
    TestWithCluster::cleanup();
}

// The commands of Slurm use the configuration with other lines at its end.
bool TestClusterController::useConfiguration(const QByteArray &added)
{
    const QString file = path("slurm.conf");
    qputenv("SLURM_CONF", QFile::encodeName(file));
    return writeFile(file, contentOf(configuration()) + added)
        && writeFile(path("cgroup.conf"), "CgroupAutomount=no\n");
}

void TestClusterController::withoutAControllerThereAreAnErrorAndNoNodesInTime_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QByteArray>("added");

    QTest::newRow("dead") << SIGKILL << QByteArray();
    QTest::newRow("stopped, long time limit of Slurm")
        << SIGSTOP << QByteArray("MessageTimeout=90\n");
}

void TestClusterController::withoutAControllerThereAreAnErrorAndNoNodesInTime()
{
    QFETCH(int, signal);
    QFETCH(QByteArray, added);
    QVERIFY(useConfiguration(added));
    QCOMPARE(kill(controller(), signal), 0);
    // The tool, and the library, which runs it too; at the same time because both wait long.
    QElapsedTimer timer;
    timer.start();
    std::future<Answer> toolAnswer = std::async(std::launch::async, tool);
    const ClusterInfo cluster(nullptr, QFileInfo(BuildPaths::clusterTool()).path());
    QVERIFY2(timer.elapsed() < Limit, QByteArray::number(timer.elapsed()).constData());
    QVERIFY(cluster.headNode().isEmpty());
    QCOMPARE(cluster.computeNodeCount(), 0);
    QCOMPARE(cluster.computeCoreCount(), 0);

    const Answer answer = toolAnswer.get();
    QCOMPARE(answer.lines,
             QStringList(QStringLiteral("Error: scontrol cannot show the configuration of Slurm")));
    QCOMPARE(answer.exitCode, 1);
    QVERIFY2(answer.milliseconds < Limit, QByteArray::number(answer.milliseconds).constData());
}

void TestClusterController::withoutItsKeyServiceThereIsAnError()
{
    QVERIFY(useConfiguration("AuthInfo=socket=" + QFile::encodeName(path("nothing")) + '\n'));
    const Answer answer = tool();
    QCOMPARE(answer.lines.size(), 1);
    QVERIFY(answer.lines.first().startsWith(QStringLiteral("Error: ")));
    QCOMPARE(answer.exitCode, 1);
    QVERIFY2(answer.milliseconds < Limit, QByteArray::number(answer.milliseconds).constData());
}

QTEST_GUILESS_MAIN(TestClusterController)

#include "tst_clustercontroller.moc"
