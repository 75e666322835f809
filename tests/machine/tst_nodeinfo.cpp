#include <Utility/NodeInfo.h>

#include <QtTest/QtTest>

#include <functional>
#include <limits>
#include <type_traits>

using Vorn::Util::NodeInfo;

static_assert(std::is_same_v<decltype(NodeInfo::name), QString>);
static_assert(std::is_same_v<decltype(NodeInfo::cores), int>);
static_assert(std::is_same_v<decltype(NodeInfo::sockets), int>);
static_assert(std::is_same_v<decltype(NodeInfo::quantity), double>);
static_assert(std::is_same_v<decltype(NodeInfo::isHeadNode), bool>);
static_assert(std::is_same_v<decltype(NodeInfo::isComputeNode), bool>);

namespace {

NodeInfo node()
{
    NodeInfo node;
    node.name = QStringLiteral("cn1");
    node.cores = 16;
    node.sockets = 2;
    node.quantity = 62.5;
    node.isComputeNode = true;
    return node;
}

bool liesBefore(const void *left, const void *right)
{
    return std::less<>()(left, right);
}

} // namespace

Q_DECLARE_METATYPE(NodeInfo)

class TestNodeInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNodeIsEmptyByDefault();
    void theMembersLieInOrder();
    void copyingCopiesAllMembers();
    void nodesAreEqualWhenAllMembersAre_data();
    void nodesAreEqualWhenAllMembersAre();
    void toStringPrintsFourMembers_data();
    void toStringPrintsFourMembers();
    void toStringPrintsNoRoles();
    void theNameIsPrintedAsItStands();
};

void TestNodeInfo::aNodeIsEmptyByDefault()
{
    const NodeInfo node;
    QVERIFY(node.name.isNull());
    QCOMPARE(node.cores, 0);
    QCOMPARE(node.sockets, 0);
    QVERIFY(node.quantity == 0.0);
    QCOMPARE(node.isHeadNode, false);
    QCOMPARE(node.isComputeNode, false);
    QCOMPARE(node.toString(), QStringLiteral(":0:0:0"));
}

void TestNodeInfo::theMembersLieInOrder()
{
    const NodeInfo node;
    QVERIFY(liesBefore(&node.name, &node.cores));
    QVERIFY(liesBefore(&node.cores, &node.sockets));
    QVERIFY(liesBefore(&node.sockets, &node.quantity));
    QVERIFY(liesBefore(&node.quantity, &node.isHeadNode));
    QVERIFY(liesBefore(&node.isHeadNode, &node.isComputeNode));
}

void TestNodeInfo::copyingCopiesAllMembers()
{
    NodeInfo original = node();
    original.isHeadNode = true;
    const NodeInfo copy(original);
    NodeInfo assigned;
    assigned = original;
    for (const NodeInfo &other : {copy, assigned}) {
        QCOMPARE(other.name, QStringLiteral("cn1"));
        QCOMPARE(other.cores, 16);
        QCOMPARE(other.sockets, 2);
        QVERIFY(other.quantity == 62.5);
        QCOMPARE(other.isHeadNode, true);
        QCOMPARE(other.isComputeNode, true);
    }
    original.name = QStringLiteral("cn2");
    QCOMPARE(copy.name, QStringLiteral("cn1"));
}

void TestNodeInfo::nodesAreEqualWhenAllMembersAre_data()
{
    QTest::addColumn<NodeInfo>("other");
    QTest::addColumn<bool>("equal");

    const auto row = [](const char *name, bool equal, void (*change)(NodeInfo &)) {
        NodeInfo other = node();
        change(other);
        QTest::newRow(name) << other << equal;
    };
    row("nothing", true, [](NodeInfo &) {});
    row("name", false, [](NodeInfo &other) { other.name = QStringLiteral("cn2"); });
    row("case of the name", false, [](NodeInfo &other) { other.name = QStringLiteral("CN1"); });
    row("blank after the name", false, [](NodeInfo &other) { other.name += QLatin1Char(' '); });
    row("cores", false, [](NodeInfo &other) { other.cores = 17; });
    row("sockets", false, [](NodeInfo &other) { other.sockets = 1; });
    row("quantity", false, [](NodeInfo &other) { other.quantity = 62.25; });
    row("the last bit of the quantity", false,
        [](NodeInfo &other) { other.quantity += 62.5 * std::numeric_limits<double>::epsilon(); });
    row("head node", false, [](NodeInfo &other) { other.isHeadNode = true; });
    row("compute node", false, [](NodeInfo &other) { other.isComputeNode = false; });
}

void TestNodeInfo::nodesAreEqualWhenAllMembersAre()
{
    QFETCH(NodeInfo, other);
    QFETCH(bool, equal);
    QCOMPARE(node() == other, equal);
    QCOMPARE(other == node(), equal);
    QVERIFY(other == other);
}

void TestNodeInfo::toStringPrintsFourMembers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("cores");
    QTest::addColumn<int>("sockets");
    QTest::addColumn<double>("quantity");
    QTest::addColumn<QString>("text");

    const auto row
        = [](const char *name, int cores, int sockets, double quantity, const char *text) {
              QTest::newRow(text) << QString::fromLatin1(name) << cores << sockets << quantity
                                  << QString::fromLatin1(text);
          };
    row("cn1", 16, 2, 62.5, "cn1:16:2:62.5");
    row("node01", 16, 2, 64, "node01:16:2:64");
    row("", 0, 0, 0, ":0:0:0");
    row("a", -1, -2, -0.5, "a:-1:-2:-0.5");
    row("a", std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 1,
        "a:2147483647:-2147483648:1");
    row("six digits", 1, 1, 1.0 / 3, "six digits:1:1:0.333333");
    row("rounded", 1, 1, 123456.78, "rounded:1:1:123457");
    row("large", 1, 1, 1234567, "large:1:1:1.23457e+06");
    row("small", 1, 1, 0.00001, "small:1:1:1e-05");
    row("no last zeros", 1, 1, 0.1 + 0.2, "no last zeros:1:1:0.3");
    row("infinite", 1, 1, std::numeric_limits<double>::infinity(), "infinite:1:1:inf");
}

void TestNodeInfo::toStringPrintsFourMembers()
{
    NodeInfo node;
    QFETCH(QString, name);
    QFETCH(int, cores);
    QFETCH(int, sockets);
    QFETCH(double, quantity);
    node.name = name;
    node.cores = cores;
    node.sockets = sockets;
    node.quantity = quantity;
    QTEST(node.toString(), "text");
}

void TestNodeInfo::toStringPrintsNoRoles()
{
    NodeInfo other = node();
    other.isHeadNode = true;
    other.isComputeNode = false;
    QCOMPARE(other.toString(), node().toString());
}

void TestNodeInfo::theNameIsPrintedAsItStands()
{
    NodeInfo other = node();
    for (const QString &name : {QStringLiteral("%1%2%3%4"), QStringLiteral(" a:b "),
                                QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                                  "e")}) {
        other.name = name;
        QCOMPARE(other.toString(), name + QStringLiteral(":16:2:62.5"));
    }
}

QTEST_GUILESS_MAIN(TestNodeInfo)

#include "tst_nodeinfo.moc"
