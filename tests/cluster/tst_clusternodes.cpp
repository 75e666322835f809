// The cluster tool and the library beside what Slurm itself says about its nodes. scripts/slurm.sh
// has the configuration of the cluster.
#include "BuildPaths.h"
#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestWithCluster.h"

#include <Utility/ClusterInfo.h>

#include <QtCore/QSysInfo>

using namespace Vorn::Util;

namespace {

QString hostName()
{
    return QSysInfo::machineHostName().section(QLatin1Char('.'), 0, 0);
}

QStringList allLines()
{
    return QStringList{hostName() + QStringLiteral(":0:0:0:HeadNodes")}
    + texts({"n1:2:2:2:ComputeNodes", "n2:2:1:1.5:ComputeNodes", "n3:4:2:3.90625:ComputeNodes",
             "n4:64:4:256:ComputeNodes"});
}

QStringList namesIn(const QStringList &lines)
{
    QStringList names;
    for (const QString &line : lines)
        names += line.section(QLatin1Char(':'), 0, 0);
    return names;
}

} // namespace

class TestClusterNodes : public TestWithCluster
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override { TestWithCluster::initTestCase(); }
    void init() override { TestWithCluster::init(); }
    void cleanup() override;

    void theToolListsAllNodes();
    void theToolAgreesWithSinfo();
    void theNodesOfEachPartitionAreListedOnce_data();
    void theNodesOfEachPartitionAreListedOnce();
    void aNodeThatCannotBeUsedIsListed_data();
    void aNodeThatCannotBeUsedIsListed();
    void aNodeWithoutItsDaemonIsListed();
    void aNodeInNoPartitionIsNotListed();

    void theLibraryReadsTheCluster();
    void resultsArchiveLogsTheCluster();
};

void TestClusterNodes::cleanup()
{
    scontrol(texts({"update", "NodeName=n1", "State=RESUME"}));
    TestWithCluster::cleanup();
}

void TestClusterNodes::theToolListsAllNodes()
{
    const Answer answer = tool();
    QCOMPARE(answer.lines, allLines());
    QCOMPARE(answer.errors, QByteArray());
    QCOMPARE(answer.exitCode, 0);
}

void TestClusterNodes::theToolAgreesWithSinfo()
{
    const Answer answer
        = sinfo(texts({"--Node", "--Format", "NodeList:16,SocketCoreThread:16,Memory:16"}));
    QCOMPARE(answer.exitCode, 0);
    QStringList expected;
    for (const QString &line : answer.lines) {
        // "n2  1:2:2  1536": sockets, cores of each, threads of each; MiB
        const QStringList words = line.simplified().split(QLatin1Char(' '));
        QCOMPARE(words.size(), 3);
        const QStringList counts = words[1].split(QLatin1Char(':'));
        QCOMPARE(counts.size(), 3);
        const int sockets = counts[0].toInt();
        expected += QStringLiteral("%1:%2:%3:%4:ComputeNodes")
                        .arg(words[0], QString::number(sockets * counts[1].toInt()),
                             QString::number(sockets), QString::number(words[2].toDouble() / 1024));
    }
    expected.removeDuplicates();
    QCOMPARE(expected.size(), 4);
    QStringList lines = tool().lines;
    QCOMPARE(lines.takeFirst(), hostName() + QStringLiteral(":0:0:0:HeadNodes"));
    lines.sort();
    expected.sort();
    QCOMPARE(lines, expected);
}

void TestClusterNodes::theNodesOfEachPartitionAreListedOnce_data()
{
    QTest::addColumn<QStringList>("nodes");

    QTest::newRow("short") << texts({"n1", "n2"});
    QTest::newRow("long") << texts({"n2", "n4"}); // n2 again
    QTest::newRow("hidden") << texts({"n3"});
}

void TestClusterNodes::theNodesOfEachPartitionAreListedOnce()
{
    QFETCH(QStringList, nodes);
    const QString partition = QString::fromUtf8(QTest::currentDataTag());
    QStringList inPartition;
    const Answer answer = sinfo(texts({"--Node", "--format", "%P %N"}));
    for (const QString &line : answer.lines) {
        const QStringList words = line.simplified().split(QLatin1Char(' '));
        if (QString(words.first()).remove(QLatin1Char('*'))
            == partition) // the default has an asterisk
            inPartition += words.last();
    }
    QCOMPARE(inPartition, nodes);
    const QStringList names = namesIn(tool().lines);
    for (const QString &name : qAsConst(nodes))
        QCOMPARE(names.count(name), 1);
}

void TestClusterNodes::aNodeThatCannotBeUsedIsListed_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("state");

    QTest::newRow("drained") << QStringLiteral("State=DRAIN") << QStringLiteral("drained");
    QTest::newRow("down") << QStringLiteral("State=DOWN") << QStringLiteral("down");
}

void TestClusterNodes::aNodeThatCannotBeUsedIsListed()
{
    QFETCH(QString, wanted);
    QFETCH(QString, state);
    const QString node = QStringLiteral("n1");
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(node), QStringLiteral("idle"), 30000);
    QCOMPARE(scontrol(QStringList{QStringLiteral("update"), QStringLiteral("NodeName=n1"), wanted,
                                  QStringLiteral("Reason=test")})
                 .exitCode,
             0);
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(node), state, 30000);
    const Answer answer = tool();
    QCOMPARE(answer.lines, allLines());
    QCOMPARE(answer.exitCode, 0);
}

void TestClusterNodes::aNodeWithoutItsDaemonIsListed()
{
    const QString state = stateOf(QStringLiteral("n4"));
    QVERIFY2(state.startsWith(QStringLiteral("unknown"))
                 || state.startsWith(QStringLiteral("down")),
             qPrintable(state));
    QVERIFY(tool().lines.contains(QStringLiteral("n4:64:4:256:ComputeNodes")));
}

void TestClusterNodes::aNodeInNoPartitionIsNotListed()
{
    QCOMPARE(scontrol(texts({"show", "node", "n5"})).exitCode, 0);
    QVERIFY(!namesIn(tool().lines).contains(QStringLiteral("n5")));
}

void TestClusterNodes::theLibraryReadsTheCluster()
{
    TemporaryLog log;
    const ClusterInfo cluster(log, BuildPaths::installedTools());
    QCOMPARE(cluster.headNode(), hostName());
    QCOMPARE(cluster.headNodes().size(), 1);
    QCOMPARE(cluster.isHeadNodeAComputeNode(), false);
    QStringList nodes;
    const QList<NodeInfo> computeNodes = cluster.computeNodes();
    for (const NodeInfo &node : computeNodes)
        nodes += node.toString() + QStringLiteral(":ComputeNodes");
    QCOMPARE(nodes, allLines().mid(1));
    QCOMPARE(cluster.computeNodeCount(), 4);
    QCOMPARE(cluster.computeCoreCount(), 2 + 2 + 4 + 64);
    QCOMPARE(cluster.coresPerComputeNode(), 2);
    QCOMPARE(cluster.socketsPerComputeNode(), 2);
    QVERIFY(log.lines().join(QLatin1Char('\n')).contains(allLines().last()));
}

void TestClusterNodes::resultsArchiveLogsTheCluster()
{
    QVERIFY(writeFileInFolder(path("data/a.txt"), "abc"));
    QVERIFY(QDir(testFolder()).mkdir(QStringLiteral("log")));
    const Answer answer
        = answerOf(BuildPaths::resultsArchive(),
                   {QStringLiteral("--cluster-tools"), BuildPaths::installedTools(),
                    QStringLiteral("--archive"), path("results.7z"), QStringLiteral("--log"),
                    path("log/run.log"), QStringLiteral("--"), path("data")});
    QVERIFY2(answer.exitCode == 0, answer.errors.constData());
    const QStringList logs = entriesOf(path("log"));
    QCOMPARE(logs.size(), 1);
    const QByteArray log = contentOf(path(QStringLiteral("log/") + logs.first()));
    const QString line
        = QStringLiteral(" Head node: %1, compute nodes: 4, cores: 72\n").arg(hostName());
    QVERIFY2(log.contains(line.toUtf8()), log.constData());
}

QTEST_GUILESS_MAIN(TestClusterNodes)

#include "tst_clusternodes.moc"
