#include "TemporaryLog.h"

#include <Utility/Formats/NodeLines_p.h>

#include <QtTest/QtTest>

using namespace Vorn::Util::Formats;

namespace {

// Everything that is read of a node, with H and C for its roles.
QString textOf(const NodeLine &node)
{
    return QStringLiteral("%1:%2:%3:%4:")
               .arg(node.name, QString::number(node.cores), QString::number(node.sockets),
                    QString::number(node.quantity))
        + (node.isHeadNode ? QStringLiteral("H") : QString())
        + (node.isComputeNode ? QStringLiteral("C") : QString());
}

QStringList nodesIn(const QStringList &lines)
{
    QStringList all;
    const QList<NodeLine> nodes = parseNodeLines(lines);
    for (const NodeLine &node : nodes)
        all += textOf(node);
    return all;
}

} // namespace

class TestNodeLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noLinesGiveNoNodes();
    void nodesKeepTheirOrder();
    void aLineIsRead_data();
    void aLineIsRead();
    void aLineIsSkipped_data();
    void aLineIsSkipped();
    void anErrorEndsTheReading_data();
    void anErrorEndsTheReading();
    void otherWordsAreNoError_data();
    void otherWordsAreNoError();
    void theQuantityIsRead_data();
    void theQuantityIsRead();
    void aNodeMayBeListedTwice();
};

void TestNodeLines::noLinesGiveNoNodes()
{
    QVERIFY(parseNodeLines(QStringList()).isEmpty());
}

void TestNodeLines::nodesKeepTheirOrder()
{
    QCOMPARE(nodesIn(texts({"b:1:1:1:ComputeNodes\r\n", "c:2:1:1:HeadNodes\r\n",
                            "a:3:1:1:ComputeNodes\r\n"})),
             texts({"b:1:1:1:C", "c:2:1:1:H", "a:3:1:1:C"}));
}

void TestNodeLines::aLineIsRead_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("node");

    const auto row = [](const char *name, const char *line, const char *node) {
        QTest::newRow(name) << QString::fromUtf8(line) << QString::fromUtf8(node);
    };
    row("both roles", "node01:16:2:64:HeadNodes,ComputeNodes", "node01:16:2:64:HC");
    row("head node", "headnode1:8:1:32:HeadNodes", "headnode1:8:1:32:H");
    row("compute node", "cn1:16:2:62.5:ComputeNodes", "cn1:16:2:62.5:C");
    row("line end", "cn1:16:2:64:ComputeNodes\r\n", "cn1:16:2:64:C");
    row("white space around", " \t cn1:16:2:64:ComputeNodes \t\n", "cn1:16:2:64:C");
    row("lower case", "hn:12:2:48:headnodes,computenodes", "hn:12:2:48:HC");
    row("upper case", "hn:12:2:48:HEADNODES COMPUTENODES", "hn:12:2:48:HC");
    row("other order", "hn:12:2:48:ComputeNodes,HeadNodes", "hn:12:2:48:HC");
    row("within other words", "hn:12:2:48:AllHeadNodesAndcomputenodesX", "hn:12:2:48:HC");
    row("other roles beside", "hn:12:2:48:WorkstationNodes,ComputeNodes", "hn:12:2:48:C");
    row("empty parts in front", "::hn:12:2:48:HeadNodes", "hn:12:2:48:H");
    row("empty parts between", "hn::12:::2:48::HeadNodes", "hn:12:2:48:H");
    row("empty parts at the end", "hn:12:2:48:HeadNodes:::", "hn:12:2:48:H");
    row("more parts", "hn:12:2:48:HeadNodes:ComputeNodes:7", "hn:12:2:48:H");
    row("cores that are no number", "cn1:many:2:64:ComputeNodes", "cn1:0:2:64:C");
    row("a real number of cores", "cn1:1.5:2:64:ComputeNodes", "cn1:0:2:64:C");
    row("cores in base 16", "cn1:0x10:2:64:ComputeNodes", "cn1:0:2:64:C");
    row("leading zeros", "cn1:010:02:064:ComputeNodes", "cn1:10:2:64:C");
    row("too many cores", "cn1:2147483648:2:64:ComputeNodes", "cn1:0:2:64:C");
    row("negative numbers", "cn1:-16:-2:-64:ComputeNodes", "cn1:-16:-2:-64:C");
    row("sockets that are no number", "cn1:16:x:64:ComputeNodes", "cn1:16:0:64:C");
    row("a quantity that is no number", "cn1:16:2:64 GiB:ComputeNodes", "cn1:16:2:0:C");
    row("zeros", "cn1:0:0:0:ComputeNodes", "cn1:0:0:0:C");
    row("the name as it stands", "My Node\t:16:2:64:ComputeNodes", "My Node\t:16:2:64:C");
    row("a name that is a role", "HeadNodes:16:2:64:ComputeNodes", "HeadNodes:16:2:64:C");
    row("letters beyond ASCII",
        "Gr\xC3\xB6\xC3\x9F"
        "e:16:2:64:ComputeNodes",
        "Gr\xC3\xB6\xC3\x9F"
        "e:16:2:64:C");
}

void TestNodeLines::aLineIsRead()
{
    QFETCH(QString, line);
    QFETCH(QString, node);
    QCOMPARE(nodesIn({line}), QStringList{node});
}

void TestNodeLines::aLineIsSkipped_data()
{
    QTest::addColumn<QString>("line");

    const auto row = [](const char *name, const char *line) {
        QTest::newRow(name) << QString::fromLatin1(line);
    };
    row("empty", "");
    row("blank", " \t\r\n");
    row("heading", "Nodes of the cluster");
    row("separators only", "::::::::");
    row("four parts", "cn1:16:2:ComputeNodes");
    row("four parts that are not empty", "a::b:c:d");
    row("four parts and empty ones", ":cn1:16:2::ComputeNodes:");
    row("no role", "cn1:16:2:64:WorkstationNodes");
    row("half a role", "cn1:16:2:64:HeadNode,ComputeNode");
    row("blank role", "cn1:16:2:64: :x");
    row("the roles in the sixth part", "cn1:16:2:64:x:HeadNodes,ComputeNodes");
    row("the roles in the name", "HeadNodes:16:2:64:x");
    row("command line", "C:\\Work>\"C:\\Tools\\NodeLinermation.exe\" -q -cluster");
}

void TestNodeLines::aLineIsSkipped()
{
    QFETCH(QString, line);
    QCOMPARE(nodesIn({QStringLiteral("a:1:1:1:HeadNodes"), line,
                      QStringLiteral("b:2:1:1:ComputeNodes")}),
             texts({"a:1:1:1:H", "b:2:1:1:C"}));
}

void TestNodeLines::anErrorEndsTheReading_data()
{
    QTest::addColumn<QString>("line");

    const auto row = [](const char *line) { QTest::newRow(line) << QString::fromLatin1(line); };
    row("Error: cluster not reachable");
    row("Error:");
    row("  Error: after blanks\r\n");
    row("Fatal Error: within");
    row("MyError:");
    row("c:1:1:1:HeadNodes Error:");
    row("Error:1:1:1:ComputeNodes");
}

void TestNodeLines::anErrorEndsTheReading()
{
    QFETCH(QString, line);
    const QString before = QStringLiteral("a:1:1:1:HeadNodes,ComputeNodes");
    const QString alsoBefore = QStringLiteral("b:2:1:1:ComputeNodes");
    const QString after = QStringLiteral("d:3:1:1:HeadNodes");
    QCOMPARE(nodesIn({before, alsoBefore, line, after}), texts({"a:1:1:1:HC", "b:2:1:1:C"}));
    QCOMPARE(nodesIn({line, before, after}), QStringList());
}

void TestNodeLines::otherWordsAreNoError_data()
{
    QTest::addColumn<QString>("line");

    const auto row = [](const char *line) { QTest::newRow(line) << QString::fromLatin1(line); };
    row("error: cluster not reachable");
    row("ERROR: cluster not reachable");
    row("Error : cluster not reachable");
    row("Error");
    row("Errors: 0");
}

void TestNodeLines::otherWordsAreNoError()
{
    QFETCH(QString, line);
    QCOMPARE(nodesIn({line, QStringLiteral("a:1:1:1:HeadNodes")}), texts({"a:1:1:1:H"}));
}

void TestNodeLines::theQuantityIsRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("quantity");

    QTest::newRow("whole") << QStringLiteral("64") << 64.0;
    QTest::newRow("real") << QStringLiteral("62.5") << 62.5;
    QTest::newRow("exact") << QStringLiteral("0.1234567890123") << 0.1234567890123;
    QTest::newRow("exponent") << QStringLiteral("1e3") << 1000.0;
    QTest::newRow("comma") << QStringLiteral("62,5") << 0.0;
    QTest::newRow("no number") << QStringLiteral("much") << 0.0;
    for (const char *text : {"nan", "+nan", "-nan"})
        QTest::newRow(text) << QString::fromLatin1(text) << 0.0;
    for (const char *text : {"inf", "+inf", "1e999"})
        QTest::newRow(text) << QString::fromLatin1(text) << qInf();
    for (const char *text : {"-inf", "-1e999"})
        QTest::newRow(text) << QString::fromLatin1(text) << -qInf();
    QTest::newRow("infinity") << QStringLiteral("infinity") << 0.0;
}

void TestNodeLines::theQuantityIsRead()
{
    QFETCH(QString, text);
    QFETCH(double, quantity);
    const QList<NodeLine> nodes = parseNodeLines({QStringLiteral("a:1:1:%1:HeadNodes").arg(text)});
    QCOMPARE(nodes.size(), 1);
    QVERIFY(nodes.first().quantity == quantity);
}

void TestNodeLines::aNodeMayBeListedTwice()
{
    QCOMPARE(nodesIn(texts({"a:1:1:1:HeadNodes", "a:1:1:1:HeadNodes"})),
             texts({"a:1:1:1:H", "a:1:1:1:H"}));
}

QTEST_GUILESS_MAIN(TestNodeLines)

#include "tst_nodelines.moc"
