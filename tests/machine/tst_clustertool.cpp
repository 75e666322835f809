#include "BuildPaths.h"
#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/ClusterInfo.h>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

struct Answer
{
    QStringList output; // its lines
    QByteArray error;
    int exitCode = -1;
};

} // namespace

class TestClusterTool : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void eachNodeIsALine();
    void theHeadNodeIsFoundInTheConfiguration_data();
    void theHeadNodeIsFoundInTheConfiguration();
    void theHeadNodesComeFirst();
    void aHeadNodeMayBeAComputeNode_data();
    void aHeadNodeMayBeAComputeNode();
    void nodesOfTheSameNameInOtherDomainsAreKept();
    void addressesHaveNoDomain();
    void aNodeOfSeveralPartitionsIsListedOnce();
    void coresAreThoseOfAllSockets_data();
    void coresAreThoseOfAllSockets();
    void theMemoryIsInGiB_data();
    void theMemoryIsInGiB();
    void otherLinesAreSkipped();
    void aClusterMayHaveNoComputeNodes();
    void aClusterMayHaveNoKnownHeadNode();

    void slurmIsAskedForAllNodes();
    void theSettingsOfTheUserDoNotMatter_data();
    void theSettingsOfTheUserDoNotMatter();
    void theOptionsMayStandInAnyOrder_data();
    void theOptionsMayStandInAnyOrder();
    void otherOptionsAreRefused_data();
    void otherOptionsAreRefused();

    void withoutSlurmThereIsAnError_data();
    void withoutSlurmThereIsAnError();
    void aFailureOfSlurmIsAnError_data();
    void aFailureOfSlurmIsAnError();

    void theLibraryReadsTheNodes();
    void theLibraryReadsNoNodesWithoutSlurm();

private:
    QString inPath(const QString &name) const { return folder_.filePath(name); }
    void placeProgram(const QString &name, const QByteArray &script);
    void placeSinfo(std::initializer_list<const char *> lines, int exitCode = 0);
    void placeScontrol(std::initializer_list<const char *> lines, int exitCode = 0);
    Answer run(const QStringList &options
               = {QStringLiteral("-q"), QStringLiteral("-cluster")}) const;

    QTemporaryDir folder_; // the whole PATH
    QByteArray path_;
};

// The tool finds nothing but its few helpers and what the tests place beside them.
void TestClusterTool::initTestCase()
{
    if (onWindows())
        QSKIP("The tool is for Slurm, which does not run on Windows");
    QVERIFY(folder_.isValid());
    for (const char *name : {"awk", "sed", "timeout", "tr"}) {
        const QString program = QStandardPaths::findExecutable(QString::fromLatin1(name));
        QVERIFY2(!program.isEmpty(), name);
        QVERIFY(QFile::link(program, inPath(QString::fromLatin1(name))));
    }
    path_ = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder_.path()));
}

void TestClusterTool::init()
{
    placeSinfo({});
    placeScontrol({});
}

void TestClusterTool::cleanupTestCase()
{
    if (!path_.isNull())
        qputenv("PATH", path_);
}

void TestClusterTool::placeProgram(const QString &name, const QByteArray &script)
{
    if (!writeFile(inPath(name), "#!/bin/sh\n" + script)
        || !QFile::setPermissions(inPath(name),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        qFatal("A program cannot be placed");
}

// Prints the lines, and records its arguments and what the user has set for it.
void TestClusterTool::placeSinfo(std::initializer_list<const char *> lines, int exitCode)
{
    QByteArray script = "printf '%s\\n' \"$@\" \"set ${SINFO_PARTITION-}${SINFO_SORT-}"
                        "${SINFO_FEDERATION-}${SLURM_CLUSTERS-}.\" > '"
        + QFile::encodeName(inPath(QStringLiteral("record"))) + "'\n";
    for (const char *line : lines)
        script += "printf '%s\\n' '" + QByteArray(line) + "'\n";
    placeProgram(QStringLiteral("sinfo"), script + "exit " + QByteArray::number(exitCode) + '\n');
}

// Answers the one call that is expected.
void TestClusterTool::placeScontrol(std::initializer_list<const char *> lines, int exitCode)
{
    QByteArray script = "[ \"$*\" = 'show config' ] || exit 9\n";
    for (const char *line : lines)
        script += "printf '%s\\n' '" + QByteArray(line) + "'\n";
    placeProgram(QStringLiteral("scontrol"),
                 script + "exit " + QByteArray::number(exitCode) + '\n');
}

Answer TestClusterTool::run(const QStringList &options) const
{
    QProcess tool;
    tool.start(BuildPaths::clusterTool(), options);
    if (!tool.waitForFinished() || tool.exitStatus() != QProcess::NormalExit)
        return Answer();
    Answer answer;
    answer.output = QString::fromUtf8(tool.readAllStandardOutput()).split(QLatin1Char('\n'));
    if (!answer.output.takeLast().isEmpty())
        return Answer();
    answer.error = tool.readAllStandardError();
    answer.exitCode = tool.exitCode();
    return answer;
}

void TestClusterTool::eachNodeIsALine()
{
    placeScontrol({"Configuration data as of 2024-05-02T09:12:44", "AccountingStorageHost   = db1",
                   "ClusterName             = big", "ControlAddr             = 10.0.0.2",
                   "SlurmctldAddr           = (null)", "SlurmctldHost[0]        = head1(10.0.0.1)",
                   "SlurmctldPort           = 6817", "", "Slurmctld(primary) at head1 is UP"});
    placeSinfo({"cn01 2 16 257000", "cn02 2 16 257024", "fat01 4 24 1536000"});
    const Answer answer = run();
    QCOMPARE(answer.output,
             texts({"head1:0:0:0:HeadNodes", "cn01:32:2:250.977:ComputeNodes",
                    "cn02:32:2:251:ComputeNodes", "fat01:96:4:1500:ComputeNodes"}));
    QCOMPARE(answer.exitCode, 0);
    QCOMPARE(answer.error, QByteArray());
}

void TestClusterTool::theHeadNodeIsFoundInTheConfiguration_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("name");

    const auto row = [](const char *line, const char *name) {
        QTest::newRow(line) << QString::fromLatin1(line) << QString::fromLatin1(name);
    };
    row("SlurmctldHost[0]        = head1(10.0.0.1)", "head1");
    row("SlurmctldHost[0]        = head1", "head1");
    row("SlurmctldHost           = head1(head1.local)", "head1");
    row("SlurmctldHost           = head1", "head1");
    row("SlurmctldHost=head1", "head1");
    row("SlurmctldHost[10]=head1 (10.0.0.1)", "head1");
    row("SlurmctldHost[0] = head1.example.com(10.0.0.1)", "head1.example.com");
    row("ControlMachine          = head1", "head1");
    row("ControlMachine = head1(10.0.0.1)", "head1");
    row("ControlMachine=head1", "head1");
}

void TestClusterTool::theHeadNodeIsFoundInTheConfiguration()
{
    QFETCH(QString, line);
    QFETCH(QString, name);
    placeScontrol({"BackupController        = other", line.toLatin1().constData(),
                   "SlurmctldHostless       = other", "NoSlurmctldHost[0]      = other"});
    placeSinfo({"cn1 1 4 1024"});
    QCOMPARE(run().output,
             QStringList() << name + QStringLiteral(":0:0:0:HeadNodes")
                           << QStringLiteral("cn1:4:1:1:ComputeNodes"));
}

// In the order of the configuration, the primary one before its backups.
void TestClusterTool::theHeadNodesComeFirst()
{
    placeScontrol({"ControlMachine   = old", "SlurmctldHost[0] = cn3(10.0.0.3)",
                   "SlurmctldHost[1] = head1", "SlurmctldHost[2] = (null)",
                   "SlurmctldHost[3] = cn1", "SlurmctldHost[4] = head1(10.0.0.9)"});
    placeSinfo({"cn1 1 4 1024", "cn2 1 4 1024", "cn3 1 4 1024"});
    QCOMPARE(run().output,
             texts({"cn3:4:1:1:HeadNodes,ComputeNodes", "head1:0:0:0:HeadNodes",
                    "cn1:4:1:1:HeadNodes,ComputeNodes", "cn2:4:1:1:ComputeNodes"}));
}

void TestClusterTool::aHeadNodeMayBeAComputeNode_data()
{
    QTest::addColumn<QString>("head");
    QTest::addColumn<QString>("node");

    QTest::newRow("same name") << QStringLiteral("cn1") << QStringLiteral("cn1");
    QTest::newRow("head node with domain")
        << QStringLiteral("cn1.example.com") << QStringLiteral("cn1");
    QTest::newRow("compute node with domain")
        << QStringLiteral("cn1") << QStringLiteral("cn1.example.com");
    QTest::newRow("both with domain")
        << QStringLiteral("cn1.example.com") << QStringLiteral("cn1.example.com");
}

void TestClusterTool::aHeadNodeMayBeAComputeNode()
{
    QFETCH(QString, head);
    QFETCH(QString, node);
    const QByteArray host = "SlurmctldHost[0] = " + head.toLatin1() + "(10.0.0.1)";
    const QByteArray line = node.toLatin1() + " 2 8 65536";
    placeScontrol({host.constData()});
    placeSinfo({"cn0 1 4 1024", line.constData(), "cn10 1 4 1024"});
    QCOMPARE(run().output,
             QStringList() << node + QStringLiteral(":16:2:64:HeadNodes,ComputeNodes")
                           << QStringLiteral("cn0:4:1:1:ComputeNodes")
                           << QStringLiteral("cn10:4:1:1:ComputeNodes"));
}

void TestClusterTool::nodesOfTheSameNameInOtherDomainsAreKept()
{
    placeScontrol({"SlurmctldHost[0] = cn1.west"});
    placeSinfo({"cn1.east 1 2 1024", "cn1.west 1 4 1024"});
    QCOMPARE(run().output,
             texts({"cn1.west:4:1:1:HeadNodes,ComputeNodes", "cn1.east:2:1:1:ComputeNodes"}));
}

void TestClusterTool::addressesHaveNoDomain()
{
    placeScontrol({"SlurmctldHost[0] = 10.0.0.1"});
    placeSinfo({"10.0.0.2 1 4 1024"});
    QCOMPARE(run().output, texts({"10.0.0.1:0:0:0:HeadNodes", "10.0.0.2:4:1:1:ComputeNodes"}));
}

void TestClusterTool::aNodeOfSeveralPartitionsIsListedOnce()
{
    placeSinfo({"cn1 1 4 1024", "cn1 1 4 1024", "cn2 1 4 1024", "cn1 1 4 1024"});
    QCOMPARE(run().output, texts({"cn1:4:1:1:ComputeNodes", "cn2:4:1:1:ComputeNodes"}));
}

void TestClusterTool::coresAreThoseOfAllSockets_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("line");

    const auto row = [](const char *node, const char *line) {
        QTest::newRow(node) << QString::fromLatin1(node) << QString::fromLatin1(line);
    };
    row("cn1 1 1 1024", "cn1:1:1:1:ComputeNodes");
    row("cn1 2 64 1024", "cn1:128:2:1:ComputeNodes");
    row("cn1 8 3 1024", "cn1:24:8:1:ComputeNodes");
    row("cn1 2+ 16+ 1024+", "cn1:32:2:1:ComputeNodes");
    row("cn1 0 0 0", "cn1:0:0:0:ComputeNodes");
}

void TestClusterTool::coresAreThoseOfAllSockets()
{
    QFETCH(QString, node);
    QFETCH(QString, line);
    placeSinfo({node.toLatin1().constData()});
    QCOMPARE(run().output, QStringList{line});
}

void TestClusterTool::theMemoryIsInGiB_data()
{
    QTest::addColumn<int>("memory"); // MiB
    QTest::addColumn<QString>("quantity");

    QTest::newRow("1") << 1 << QStringLiteral("0.000976562");
    QTest::newRow("512") << 512 << QStringLiteral("0.5");
    QTest::newRow("64000") << 64000 << QStringLiteral("62.5");
    QTest::newRow("65536") << 65536 << QStringLiteral("64");
    QTest::newRow("12582912") << 12582912 << QStringLiteral("12288");
}

void TestClusterTool::theMemoryIsInGiB()
{
    QFETCH(int, memory);
    QFETCH(QString, quantity);
    // Also where numbers are written with a comma.
    qputenv("LC_ALL", "de_DE.UTF-8");
    placeSinfo({("cn1 1 4 " + QByteArray::number(memory)).constData()});
    const Answer answer = run();
    qputenv("LC_ALL", "C.UTF-8");
    QCOMPARE(answer.output, QStringList{QStringLiteral("cn1:4:1:%1:ComputeNodes").arg(quantity)});
}

void TestClusterTool::otherLinesAreSkipped()
{
    placeSinfo({"CLUSTER: big", "", "cn1 1 4 1024", "cn2 1 4"});
    QCOMPARE(run().output, texts({"cn1:4:1:1:ComputeNodes"}));
}

void TestClusterTool::aClusterMayHaveNoComputeNodes()
{
    placeScontrol({"SlurmctldHost[0] = head1"});
    const Answer answer = run();
    QCOMPARE(answer.output, texts({"head1:0:0:0:HeadNodes"}));
    QCOMPARE(answer.exitCode, 0);
}

void TestClusterTool::aClusterMayHaveNoKnownHeadNode()
{
    placeScontrol({"ControlMachine   = (null)", "SlurmctldHost[0] = (null)"});
    placeSinfo({"cn1 1 4 1024"});
    const Answer answer = run();
    QCOMPARE(answer.output, texts({"cn1:4:1:1:ComputeNodes"}));
    QCOMPARE(answer.exitCode, 0);
}

void TestClusterTool::slurmIsAskedForAllNodes()
{
    run();
    QCOMPARE(contentOf(inPath(QStringLiteral("record"))),
             QByteArray("--noheader\n--Node\n--all\n--local\n--format\n%N %X %Y %m\nset .\n"));
}

void TestClusterTool::theSettingsOfTheUserDoNotMatter_data()
{
    QTest::addColumn<QByteArray>("variable");

    for (const char *name : {"SINFO_PARTITION", "SINFO_SORT", "SINFO_FEDERATION", "SLURM_CLUSTERS"})
        QTest::newRow(name) << QByteArray(name);
}

void TestClusterTool::theSettingsOfTheUserDoNotMatter()
{
    QFETCH(QByteArray, variable);

    qputenv(variable.constData(), "small");
    run();
    qunsetenv(variable.constData());
    QVERIFY(contentOf(inPath(QStringLiteral("record"))).endsWith("\nset .\n"));
}

void TestClusterTool::theOptionsMayStandInAnyOrder_data()
{
    QTest::addColumn<QStringList>("options");

    QTest::newRow("-q -cluster") << texts({"-q", "-cluster"});
    QTest::newRow("-cluster -q") << texts({"-cluster", "-q"});
    QTest::newRow("-cluster") << texts({"-cluster"});
}

void TestClusterTool::theOptionsMayStandInAnyOrder()
{
    QFETCH(QStringList, options);
    placeSinfo({"cn1 1 4 1024"});
    const Answer answer = run(options);
    QCOMPARE(answer.output, texts({"cn1:4:1:1:ComputeNodes"}));
    QCOMPARE(answer.exitCode, 0);
}

void TestClusterTool::otherOptionsAreRefused_data()
{
    QTest::addColumn<QStringList>("options");

    QTest::newRow("none") << QStringList();
    QTest::newRow("-q") << texts({"-q"});
    QTest::newRow("unknown") << texts({"-q", "-cluster", "-x"});
    QTest::newRow("unknown first") << texts({"-x", "-q", "-cluster"});
    QTest::newRow("empty") << texts({"-cluster", ""});
    QTest::newRow("word") << texts({"cluster"});
}

void TestClusterTool::otherOptionsAreRefused()
{
    QFETCH(QStringList, options);
    placeSinfo({"cn1 1 4 1024"});
    const Answer answer = run(options);
    QCOMPARE(answer.output, QStringList());
    QCOMPARE(answer.error, QByteArray("usage: NodeInformation [-q] -cluster\n"));
    QCOMPARE(answer.exitCode, 2);
}

void TestClusterTool::withoutSlurmThereIsAnError_data()
{
    QTest::addColumn<QStringList>("missing");
    QTest::addColumn<QString>("named");

    QTest::newRow("both") << texts({"sinfo", "scontrol"}) << QStringLiteral("sinfo");
    QTest::newRow("sinfo") << texts({"sinfo"}) << QStringLiteral("sinfo");
    QTest::newRow("scontrol") << texts({"scontrol"}) << QStringLiteral("scontrol");
}

void TestClusterTool::withoutSlurmThereIsAnError()
{
    QFETCH(QStringList, missing);
    QFETCH(QString, named);
    for (const QString &program : qAsConst(missing))
        QVERIFY(QFile::remove(inPath(program)));
    const Answer answer = run();
    QCOMPARE(answer.output,
             QStringList{QStringLiteral("Error: Slurm is not installed: %1 not found").arg(named)});
    QCOMPARE(answer.exitCode, 1);
}

void TestClusterTool::aFailureOfSlurmIsAnError_data()
{
    QTest::addColumn<int>("exitCodeOfSinfo");
    QTest::addColumn<int>("exitCodeOfScontrol");
    QTest::addColumn<QString>("message");

    const QString noNodes = QStringLiteral("Error: sinfo cannot list the nodes of Slurm");
    const QString noConfiguration
        = QStringLiteral("Error: scontrol cannot show the configuration of Slurm");
    QTest::newRow("sinfo") << 1 << 0 << noNodes;
    QTest::newRow("scontrol") << 0 << 1 << noConfiguration;
    QTest::newRow("both") << 1 << 1 << noConfiguration;
}

void TestClusterTool::aFailureOfSlurmIsAnError()
{
    QFETCH(int, exitCodeOfSinfo);
    QFETCH(int, exitCodeOfScontrol);
    QFETCH(QString, message);
    placeScontrol({"SlurmctldHost[0] = head1"}, exitCodeOfScontrol);
    placeSinfo({"cn1 1 4 1024"}, exitCodeOfSinfo);
    const Answer answer = run();
    QCOMPARE(answer.output, QStringList{message});
    QCOMPARE(answer.exitCode, 1);
}

void TestClusterTool::theLibraryReadsTheNodes()
{
    placeScontrol({"SlurmctldHost[0] = head1(10.0.0.1)"});
    placeSinfo({"cn1 2 16 64000", "cn2 2 16 64000"});
    const ClusterInfo cluster(nullptr, QFileInfo(BuildPaths::clusterTool()).path());
    QCOMPARE(cluster.headNode(), QStringLiteral("head1"));
    QCOMPARE(cluster.isHeadNodeAComputeNode(), false);
    QCOMPARE(cluster.computeNodeCount(), 2);
    QCOMPARE(cluster.computeCoreCount(), 64);
    QCOMPARE(cluster.coresPerComputeNode(), 32);
    QCOMPARE(cluster.socketsPerComputeNode(), 2);
    QCOMPARE(cluster.computeNodes().first().toString(), QStringLiteral("cn1:32:2:62.5"));
}

void TestClusterTool::theLibraryReadsNoNodesWithoutSlurm()
{
    QVERIFY(QFile::remove(inPath(QStringLiteral("sinfo"))));
    const ClusterInfo cluster(nullptr, QFileInfo(BuildPaths::clusterTool()).path());
    QVERIFY(cluster.headNodes().isEmpty());
    QVERIFY(cluster.computeNodes().isEmpty());
}

QTEST_GUILESS_MAIN(TestClusterTool)

#include "tst_clustertool.moc"
