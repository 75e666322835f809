#include "BuildPaths.h"
#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/ClusterInfo.h>
#include <Utility/Log.h>

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <limits>

using namespace Vorn::Util;

namespace {

QString toolName()
{
    return QStringLiteral("NodeInformation.exe");
}

QString toolNameWithoutSuffix()
{
    return QStringLiteral("NodeInformation");
}

QStringList textsOf(const QList<NodeInfo> &nodes)
{
    QStringList all;
    for (const NodeInfo &node : nodes)
        all += node.toString();
    return all;
}

// Returns the value for this system.
template <typename Value> Value onThisSystem(const Value &windows, const Value &others)
{
    return onWindows() ? windows : others;
}

} // namespace

class TestClusterInfo : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void nodesAreListedByTheirRoles();
    void nodesKeepTheOrderOfTheTool();
    void aNodeWithBothRolesStandsInBothLists();
    void aNodeWithoutARoleIsDropped();
    void theListsAreCopies();
    void countsAndNames_data();
    void countsAndNames();
    void theSumOfManyCoresIsFormed();
    void theSumOfTooManyCoresIsSafe();

    void theToolIsAskedForTheClusterOnce();
    void theToolMayLieInAnyFolder_data();
    void theToolMayLieInAnyFolder();
    void theFolderMayEndWithASeparator();
    void theFolderMayBeRelative();
    void theToolWithoutSuffixIsTakenElsewhereThanOnWindows();
    void theToolWithSuffixComesFirst();

    void anErrorEndsTheReading_data();
    void anErrorEndsTheReading();
    void atMost32LinesAreRead();
    void aLongLineIsReadInPieces();
    void namesAreReadAsUtf8();

    void theCallAndEachLineAreLogged();
    void theTextOfAnErrorIsLoggedAsOutputOnly();
    void aLogIsNotNeeded();
    void theLogOutlivesTheObject();

    void withoutAToolThereAreNoNodes();
    void withoutAFolderThereAreNoNodes();
    void aSilentToolGivesNoNodes();
    void noScriptIsLeft();

    void aCopyHasTheSameNodesAndRunsNoTool();
    void assigningTakesTheNodes();

private:
    QString path(const QString &name) const
    {
        return QDir::toNativeSeparators(TestWithFolder::path(name));
    }
    QString placeTool(const QString &folder, const QString &name = toolName());
    ClusterInfo clusterOf(std::initializer_list<const char *> lines, Log *log = nullptr);
    bool print(const QByteArray &output)
    {
        return writeFile(path(QStringLiteral("nodes")), output);
    }
    QStringList calls() const;

    std::unique_ptr<CurrentFolder> current_;
};

// Each function has folders of its own: one is current, one holds the tool.
void TestClusterInfo::init()
{
    TestWithFolder::init();
    QVERIFY(QDir(testFolder()).mkdir(QStringLiteral("current")));
    current_ = std::make_unique<CurrentFolder>(path(QStringLiteral("current")));
    QVERIFY(current_->isUsed());
    qputenv("FAKE_NODES", QFile::encodeName(path(QStringLiteral("nodes"))));
    qputenv("FAKE_NODES_RECORD", QFile::encodeName(path(QStringLiteral("record"))));
}

void TestClusterInfo::cleanup()
{
    current_.reset();
    TestWithFolder::cleanup();
}

// The folder below that of the test, with the tool in it.
QString TestClusterInfo::placeTool(const QString &folder, const QString &name)
{
    const QString dir = path(folder);
    const QString tool = dir + QDir::separator() + name;
    if (!QDir().mkpath(dir) || !QFile::copy(BuildPaths::fakeClusterTool(), tool))
        qFatal("The tool cannot be placed");
    return dir;
}

ClusterInfo TestClusterInfo::clusterOf(std::initializer_list<const char *> lines, Log *log)
{
    if (!print(texts(lines).join(QStringLiteral("\r\n")).toUtf8() + "\r\n"))
        qFatal("The nodes cannot be written");
    return ClusterInfo(log, placeTool(QStringLiteral("tools")));
}

QStringList TestClusterInfo::calls() const
{
    return QString::fromUtf8(contentOf(path(QStringLiteral("record"))))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void TestClusterInfo::nodesAreListedByTheirRoles()
{
    const ClusterInfo cluster
        = clusterOf({"headnode1:8:1:32:HeadNodes", "cn1:16:2:64:ComputeNodes"});
    QCOMPARE(textsOf(cluster.headNodes()), texts({"headnode1:8:1:32"}));
    QCOMPARE(textsOf(cluster.computeNodes()), texts({"cn1:16:2:64"}));
    QVERIFY(cluster.headNodes().first().isHeadNode);
    QVERIFY(!cluster.headNodes().first().isComputeNode);
    QVERIFY(!cluster.computeNodes().first().isHeadNode);
    QVERIFY(cluster.computeNodes().first().isComputeNode);
    QCOMPARE(cluster.headNode(), QStringLiteral("headnode1"));
    QCOMPARE(cluster.isHeadNodeAComputeNode(), false);
    QCOMPARE(cluster.computeNodeCount(), 1);
    QCOMPARE(cluster.computeCoreCount(), 16);
    QCOMPARE(cluster.coresPerComputeNode(), 16);
    QCOMPARE(cluster.socketsPerComputeNode(), 2);
}

void TestClusterInfo::nodesKeepTheOrderOfTheTool()
{
    const ClusterInfo cluster = clusterOf(
        {"b:1:1:1:ComputeNodes", "z:2:1:1:HeadNodes", "a:3:1:1:ComputeNodes", "y:4:1:1:HeadNodes"});
    QCOMPARE(textsOf(cluster.headNodes()), texts({"z:2:1:1", "y:4:1:1"}));
    QCOMPARE(textsOf(cluster.computeNodes()), texts({"b:1:1:1", "a:3:1:1"}));
}

void TestClusterInfo::aNodeWithBothRolesStandsInBothLists()
{
    const ClusterInfo cluster = clusterOf({"hn:12:2:48:headnodes,computenodes"});
    QCOMPARE(textsOf(cluster.headNodes()), texts({"hn:12:2:48"}));
    QCOMPARE(textsOf(cluster.computeNodes()), texts({"hn:12:2:48"}));
    QVERIFY(cluster.headNodes().first() == cluster.computeNodes().first());
}

void TestClusterInfo::aNodeWithoutARoleIsDropped()
{
    const ClusterInfo cluster = clusterOf({"w:1:1:1:WorkstationNodes", "cn1:16:2:64:ComputeNodes"});
    QVERIFY(cluster.headNodes().isEmpty());
    QCOMPARE(textsOf(cluster.computeNodes()), texts({"cn1:16:2:64"}));
}

void TestClusterInfo::theListsAreCopies()
{
    const ClusterInfo cluster = clusterOf({"hn:12:2:48:headnodes,computenodes"});
    cluster.headNodes().clear();
    QList<NodeInfo> nodes = cluster.computeNodes();
    nodes.first().cores = 99;
    QCOMPARE(cluster.computeCoreCount(), 12);
    QCOMPARE(cluster.headNode(), QStringLiteral("hn"));
}

void TestClusterInfo::countsAndNames_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("headNode");
    QTest::addColumn<bool>("headNodeIsAComputeNode");
    QTest::addColumn<int>("nodes");
    QTest::addColumn<int>("allCores");
    QTest::addColumn<int>("cores");
    QTest::addColumn<int>("sockets");

    QTest::newRow("head node only")
        << texts({"h:8:1:32:HeadNodes"}) << QStringLiteral("h") << false << 0 << 0 << 0 << 0;
    QTest::newRow("compute node only")
        << texts({"c:16:2:64:ComputeNodes"}) << QString() << false << 1 << 16 << 16 << 2;
    QTest::newRow("head and compute node: its sockets are the number of cores")
        << texts({"h:12:2:48:HeadNodes,ComputeNodes"}) << QStringLiteral("h") << true << 1 << 12
        << 2 << 2;
    QTest::newRow("only head and compute nodes: the first one's sockets are the number of cores")
        << texts({"h:12:3:48:HeadNodes,ComputeNodes", "i:16:4:48:HeadNodes,ComputeNodes"})
        << QStringLiteral("h") << true << 2 << 28 << 3 << 3;
    QTest::newRow("cores and sockets are those of the first node that is no head node")
        << texts({"h:12:3:48:HeadNodes,ComputeNodes", "c:16:4:64:ComputeNodes",
                  "d:32:5:64:ComputeNodes"})
        << QStringLiteral("h") << true << 3 << 60 << 16 << 4;
    QTest::newRow("if it reports no cores: cores = sockets of the first node")
        << texts({"h:12:3:48:HeadNodes,ComputeNodes", "c:0:4:64:ComputeNodes",
                  "d:32:5:64:ComputeNodes"})
        << QStringLiteral("h") << true << 3 << 44 << 3 << 4;
    QTest::newRow("if it reports no sockets: sockets of the first node")
        << texts({"h:12:3:48:HeadNodes,ComputeNodes", "c:16:0:64:ComputeNodes",
                  "d:32:5:64:ComputeNodes"})
        << QStringLiteral("h") << true << 3 << 60 << 16 << 3;
    QTest::newRow("a single node without cores: its sockets")
        << texts({"c:0:4:64:ComputeNodes"}) << QString() << false << 1 << 0 << 4 << 4;
    QTest::newRow("a single node without cores and sockets")
        << texts({"c:0:0:0:ComputeNodes"}) << QString() << false << 1 << 0 << 0 << 0;
    QTest::newRow("negative numbers are numbers")
        << texts({"c:-4:-2:64:ComputeNodes", "d:16:2:64:ComputeNodes"}) << QString() << false << 2
        << 12 << -4 << -2;
    QTest::newRow("only the first head node is looked at")
        << texts({"h:8:1:32:HeadNodes", "i:8:1:32:HeadNodes,ComputeNodes"}) << QStringLiteral("h")
        << false << 1 << 8 << 1 << 1;
    QTest::newRow("a head node of the same name is another node")
        << texts({"h:8:1:32:HeadNodes", "h:8:2:32:ComputeNodes"}) << QStringLiteral("h") << false
        << 1 << 8 << 8 << 2;
}

void TestClusterInfo::countsAndNames()
{
    QFETCH(QStringList, lines);
    QVERIFY(print(lines.join(QLatin1Char('\n')).toUtf8()));
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools")));
    QTEST(cluster.headNode(), "headNode");
    QTEST(cluster.isHeadNodeAComputeNode(), "headNodeIsAComputeNode");
    QTEST(cluster.computeNodeCount(), "nodes");
    QTEST(cluster.computeCoreCount(), "allCores");
    QTEST(cluster.coresPerComputeNode(), "cores");
    QTEST(cluster.socketsPerComputeNode(), "sockets");
}

void TestClusterInfo::theSumOfManyCoresIsFormed()
{
    const ClusterInfo cluster = clusterOf(
        {"a:1000000000:1:1:ComputeNodes", "h:5:1:1:HeadNodes", "b:1000000000:1:1:ComputeNodes"});
    QCOMPARE(cluster.computeCoreCount(), 2000000000);
}

// The largest int plus one wraps to the smallest.
void TestClusterInfo::theSumOfTooManyCoresIsSafe()
{
    const ClusterInfo cluster
        = clusterOf({"a:2147483647:1:1:ComputeNodes", "b:1:1:1:ComputeNodes"});
    QCOMPARE(cluster.computeCoreCount(), std::numeric_limits<int>::min());
}

void TestClusterInfo::theToolIsAskedForTheClusterOnce()
{
    const ClusterInfo cluster = clusterOf({"h:8:1:32:HeadNodes,ComputeNodes"});
    cluster.headNodes();
    cluster.computeNodes();
    cluster.computeCoreCount();
    cluster.headNode();
    QCOMPARE(calls(), texts({"NodeInformation.exe|-q|-cluster"}));
}

void TestClusterInfo::theToolMayLieInAnyFolder_data()
{
    QTest::addColumn<QString>("folder");

    const auto row = [](const char *name, const char *folder) {
        QTest::newRow(name) << QString::fromUtf8(folder);
    };
    row("plain", "tools");
    row("blanks", "the  cluster's tools");
    row("variable of a shell", "$HOME ${x}");
    row("command of a shell", "$(exit 3) `x`");
    row("operators", "a & b; (c)");
    row("comment", "# tools");
    row("brackets", "[a-z] {a,b}");
    row("tilde", "~");
    row("apostrophes", "'a' 'b");
    if (onWindows())
        return; // no other names are allowed there, or the interpreter replaces what they hold
    row("quotes", "\"a\" \"b");
    row("percent", "100%PATH% %s");
    row("patterns", "* ?");
    row("backslash", "a\\b\\");
    row("caret", "a^b");
    row("line break", "a\nb");
    row("leading blank", " a ");
    row("letters of Latin-1",
        "Gr\xC3\xB6\xC3\x9F"
        "e");
    row("letters beyond Latin-1", "\xE6\xB5\x8B\xE8\xAF\x95 \xE2\x82\xAC\xF0\x9F\x94\xA9");
    row("letters, quotes and variables", "\xC3\xB6 'a' \"b\" $HOME %d \\101");
}

void TestClusterInfo::theToolMayLieInAnyFolder()
{
    QFETCH(QString, folder);
    QVERIFY(print("h:8:1:32:HeadNodes\n"));
    const ClusterInfo cluster(nullptr, placeTool(folder));
    QCOMPARE(cluster.headNode(), QStringLiteral("h"));
    QCOMPARE(calls(), texts({"NodeInformation.exe|-q|-cluster"}));
}

void TestClusterInfo::theFolderMayEndWithASeparator()
{
    QVERIFY(print("h:8:1:32:HeadNodes\n"));
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools")) + QDir::separator());
    QCOMPARE(cluster.headNode(), QStringLiteral("h"));
}

void TestClusterInfo::theFolderMayBeRelative()
{
    QVERIFY(print("h:8:1:32:HeadNodes\n"));
    placeTool(QStringLiteral("tools"));
    const QString dir = QDir::toNativeSeparators(QStringLiteral("../tools"));
    QCOMPARE(ClusterInfo(nullptr, dir).headNode(), QStringLiteral("h"));
}

void TestClusterInfo::theToolWithoutSuffixIsTakenElsewhereThanOnWindows()
{
    QVERIFY(print("h:8:1:32:HeadNodes\n"));
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools"), toolNameWithoutSuffix()));
    QCOMPARE(cluster.headNode(), onThisSystem(QString(), QStringLiteral("h")));
    QCOMPARE(calls(), onThisSystem(QStringList(), texts({"NodeInformation|-q|-cluster"})));
}

void TestClusterInfo::theToolWithSuffixComesFirst()
{
    QVERIFY(print("h:8:1:32:HeadNodes\n"));
    placeTool(QStringLiteral("tools"), toolNameWithoutSuffix());
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools")));
    QCOMPARE(cluster.headNode(), QStringLiteral("h"));
    QCOMPARE(calls(), texts({"NodeInformation.exe|-q|-cluster"}));
}

void TestClusterInfo::anErrorEndsTheReading_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("nodes");

    QTest::newRow("first line") << texts({"Error: cluster not reachable", "h:8:1:32:HeadNodes"})
                                << QStringList();
    QTest::newRow("after two nodes")
        << texts({"h:8:1:32:HeadNodes", "c:16:2:64:ComputeNodes", "Error: cluster not reachable",
                  "d:16:2:64:HeadNodes"})
        << texts({"h:8:1:32", "c:16:2:64"});
    QTest::newRow("another case") << texts({"error: no", "h:8:1:32:HeadNodes"})
                                  << texts({"h:8:1:32"});
}

void TestClusterInfo::anErrorEndsTheReading()
{
    QFETCH(QStringList, lines);
    QVERIFY(print(lines.join(QLatin1Char('\n')).toUtf8()));
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools")));
    QTEST(textsOf(cluster.headNodes() + cluster.computeNodes()), "nodes");
}

// The interpreter of Windows prints the command too, which counts.
void TestClusterInfo::atMost32LinesAreRead()
{
    QByteArray output;
    QStringList nodes;
    for (int number = 1; number <= 40; ++number) {
        nodes += QStringLiteral("n%1:1:1:1").arg(number);
        output += nodes.last().toUtf8() + ":ComputeNodes\r\n";
    }
    QVERIFY(print(output));
    TemporaryLog log;
    const ClusterInfo cluster(log, placeTool(QStringLiteral("tools")));
    const QStringList logged = log.lines().filter(QStringLiteral(" output:"));
    QCOMPARE(logged.size(), 32);
    const int read = logged.filter(QStringLiteral(":ComputeNodes")).size();
    QVERIFY(onWindows() ? read < 32 && read > 20 : read == 32);
    QCOMPARE(textsOf(cluster.computeNodes()), QStringList(nodes.mid(0, read)));
}

// The first piece has no separator and is skipped; the second piece begins within the name.
void TestClusterInfo::aLongLineIsReadInPieces()
{
    QVERIFY(print(QByteArray(199, 'x') + "end:16:2:64:ComputeNodes\n"));
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools")));
    QCOMPARE(textsOf(cluster.computeNodes()), texts({"end:16:2:64"}));
}

void TestClusterInfo::namesAreReadAsUtf8()
{
    const ClusterInfo cluster = clusterOf({"Gr\xC3\xB6\xC3\x9F"
                                           "e-\xE2\x82\xAC:16:2:64:HeadNodes"});
    QCOMPARE(cluster.headNode(),
             QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                               "e-\xE2\x82\xAC"));
}

// On Windows the interpreter's own lines are logged too.
void TestClusterInfo::theCallAndEachLineAreLogged()
{
    TemporaryLog log;
    clusterOf({" h:8:1:32:HeadNodes ", "no node", "c:16:2:64:ComputeNodes"}, log);
    QStringList lines = log.lines();
    QCOMPARE(lines.takeFirst(),
             onThisSystem(QStringLiteral("Command:cmd.exe /C work.bat"),
                          QStringLiteral("Command:/bin/sh work.bat")));
    QCOMPARE(lines.filter(QStringLiteral(" output:")), lines);
    const QStringList output = texts(
        {" output:h:8:1:32:HeadNodes", " output:no node", " output:c:16:2:64:ComputeNodes"});
    if (!onWindows())
        QCOMPARE(lines, output);
    const int first = lines.indexOf(output.first());
    QVERIFY(first >= 0);
    QCOMPARE(QStringList(lines.mid(first, 3)), output);
}

void TestClusterInfo::theTextOfAnErrorIsLoggedAsOutputOnly()
{
    TemporaryLog log;
    clusterOf({"Error: cluster not reachable"}, log);
    const QStringList lines = log.lines().filter(QStringLiteral("reachable"));
    QCOMPARE(lines, texts({" output:Error: cluster not reachable"}));
    QCOMPARE(log.lines().filter(QStringLiteral(" output:")).size() + 1, log.lines().size());
}

void TestClusterInfo::aLogIsNotNeeded()
{
    QCOMPARE(clusterOf({"h:8:1:32:HeadNodes"}, nullptr).headNode(), QStringLiteral("h"));
}

void TestClusterInfo::theLogOutlivesTheObject()
{
    TemporaryLog log;
    clusterOf({"h:8:1:32:HeadNodes"}, log);
    static_cast<Log *>(log)->append(QStringLiteral("still open"));
    QCOMPARE(log.lines().last(), QStringLiteral("still open"));
}

void TestClusterInfo::withoutAToolThereAreNoNodes()
{
    QVERIFY(print("h:8:1:32:HeadNodes,ComputeNodes\n"));
    QVERIFY(QDir(testFolder()).mkdir(QStringLiteral("empty")));
    TemporaryLog log;
    for (const QString &folder : {QStringLiteral("empty"), QStringLiteral("missing")}) {
        const ClusterInfo cluster(log, path(folder));
        QVERIFY(cluster.headNodes().isEmpty());
        QVERIFY(cluster.computeNodes().isEmpty());
        QCOMPARE(cluster.headNode(), QString());
        QCOMPARE(cluster.isHeadNodeAComputeNode(), false);
        QCOMPARE(cluster.computeNodeCount(), 0);
        QCOMPARE(cluster.computeCoreCount(), 0);
        QCOMPARE(cluster.coresPerComputeNode(), 0);
        QCOMPARE(cluster.socketsPerComputeNode(), 0);
    }
    // No message of its own.
    const QStringList lines = log.lines();
    for (const QString &line : lines)
        QVERIFY(line.startsWith(QStringLiteral(" output:"))
                || line.startsWith(QStringLiteral("Command:")));
}

void TestClusterInfo::withoutAFolderThereAreNoNodes()
{
    QVERIFY(print("h:8:1:32:HeadNodes\n"));
    QVERIFY(QFile::copy(BuildPaths::fakeClusterTool(), toolName()));
    QVERIFY(ClusterInfo(nullptr, QString()).headNodes().isEmpty()); // not the current folder
    QVERIFY(calls().isEmpty());
}

void TestClusterInfo::aSilentToolGivesNoNodes()
{
    QVERIFY(print(QByteArray()));
    const ClusterInfo cluster(nullptr, placeTool(QStringLiteral("tools")));
    QVERIFY(cluster.headNodes().isEmpty());
    QVERIFY(cluster.computeNodes().isEmpty());
    QCOMPARE(calls().size(), 1);
}

void TestClusterInfo::noScriptIsLeft()
{
    clusterOf({"h:8:1:32:HeadNodes"});
    QCOMPARE(entriesOf(QDir::currentPath()), QStringList());
}

void TestClusterInfo::aCopyHasTheSameNodesAndRunsNoTool()
{
    const ClusterInfo cluster = clusterOf({"h:8:1:32:HeadNodes", "c:16:2:64:ComputeNodes"});
    const ClusterInfo copy(cluster);
    QVERIFY(copy.headNodes() == cluster.headNodes());
    QVERIFY(copy.computeNodes() == cluster.computeNodes());
    QCOMPARE(copy.headNode(), QStringLiteral("h"));
    QCOMPARE(copy.computeCoreCount(), 16);
    QCOMPARE(calls().size(), 1);
}

void TestClusterInfo::assigningTakesTheNodes()
{
    const ClusterInfo cluster = clusterOf({"h:8:1:32:HeadNodes", "c:16:2:64:ComputeNodes"});
    ClusterInfo other(nullptr, path(QStringLiteral("missing")));
    other = cluster;
    QCOMPARE(other.headNode(), QStringLiteral("h"));
    QCOMPARE(other.computeNodeCount(), 1);
    QCOMPARE(calls().size(), 1);
}

QTEST_GUILESS_MAIN(TestClusterInfo)

#include "tst_clusterinfo.moc"
