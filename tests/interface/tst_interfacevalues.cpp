// Pins what clients see of the value classes and of what reports on the machine and on files.

#include "TestInterface.h"

#include <Utility/ClusterInfo.h>
#include <Utility/CpuCounter.h>
#include <Utility/CpuInfo.h>
#include <Utility/Enum.h>
#include <Utility/Log.h>
#include <Utility/NodeInfo.h>
#include <Utility/UnicodeFile.h>
#include <Utility/Version.h>

#include <QtTest/QtTest>
#include <QtXml/QDomDocument>

#include <cstddef>
#include <type_traits>
#include <utility>

using namespace Vorn::Util;

namespace {

// What classes derived from Enum may use.
struct Member : Enum
{
    using Enum::id;
    using Enum::Invalid;

    Member() = default;
    Member(const QString &type, int id)
        : Enum(type, id)
    {
    }
    Member(const QString &type, const QString &string, int value)
        : Enum(type, string, value)
    {
    }
    Member(const QString &type, const QString &string)
        : Enum(type, string)
    {
    }
    Member(const Member &other) = default;
    Member &operator=(const Member &other) = default;
};

template <typename Type>
constexpr bool isCopied = std::is_copy_constructible_v<Type> &&std::is_copy_assignable_v<Type>;

} // namespace

PRIVATE_MEMBER(Enum::type_, QString Enum::*);
PRIVATE_MEMBER(Enum::id_, int Enum::*);
PRIVATE_MEMBER(Enum::init, void (Enum::*)(const QString &, const QString &, int));
PRIVATE_MEMBER(Enum::strings, QHash<QString, QVector<QString>> &(*)());
PRIVATE_MEMBER(Enum::values, QHash<QString, QVector<int>> &(*)());
PRIVATE_OVERLOAD(Enum::count, QHash<QString, int> &(*)());
template struct InOrder<offsetof(Enum, type_), offsetof(Enum, id_)>;

PRIVATE_MEMBER(Version::major_, int Version::*);
PRIVATE_MEMBER(Version::minor_, int Version::*);
PRIVATE_MEMBER(Version::patch_, int Version::*);
PRIVATE_MEMBER(Version::developmentStage_, int Version::*);
template struct InOrder<offsetof(Version, major_), offsetof(Version, minor_),
                        offsetof(Version, patch_), offsetof(Version, developmentStage_)>;

PRIVATE_MEMBER(CpuInfo::InfoFileName, QString *);
PRIVATE_MEMBER(CpuInfo::getSystemInfo, bool (CpuInfo::*)());
PRIVATE_MEMBER(CpuInfo::loadFromXml, bool (CpuInfo::*)());
PRIVATE_MEMBER(CpuInfo::isV14Format, bool (CpuInfo::*)(const QDomElement &) const);
PRIVATE_MEMBER(CpuInfo::loadV14Format, void (CpuInfo::*)(const QDomElement &));
PRIVATE_MEMBER(CpuInfo::saveToXml, bool (CpuInfo::*)() const);
PRIVATE_MEMBER(CpuInfo::log, void (CpuInfo::*)(const QString &));
PRIVATE_MEMBER(CpuInfo::infoFilePath_, QString CpuInfo::*);
PRIVATE_MEMBER(CpuInfo::log_, Log *CpuInfo::*);
PRIVATE_MEMBER(CpuInfo::processorCount_, int CpuInfo::*);
PRIVATE_MEMBER(CpuInfo::coreCount_, int CpuInfo::*);
PRIVATE_MEMBER(CpuInfo::hyperThreading_, bool CpuInfo::*);
template struct InOrder<offsetof(CpuInfo, infoFilePath_), offsetof(CpuInfo, log_),
                        offsetof(CpuInfo, processorCount_), offsetof(CpuInfo, coreCount_),
                        offsetof(CpuInfo, hyperThreading_)>;

PRIVATE_MEMBER(ClusterInfo::init, void (ClusterInfo::*)());
PRIVATE_MEMBER(ClusterInfo::log_, Log *ClusterInfo::*);
PRIVATE_MEMBER(ClusterInfo::dir_, QString ClusterInfo::*);
PRIVATE_MEMBER(ClusterInfo::headNodes_, QList<NodeInfo> ClusterInfo::*);
PRIVATE_MEMBER(ClusterInfo::computeNodes_, QList<NodeInfo> ClusterInfo::*);
template struct InOrder<offsetof(ClusterInfo, log_), offsetof(ClusterInfo, dir_),
                        offsetof(ClusterInfo, headNodes_), offsetof(ClusterInfo, computeNodes_)>;

PRIVATE_MEMBER(UnicodeFile::rename, bool (UnicodeFile::*)(const QString &, const QString &));
PRIVATE_MEMBER(UnicodeFile::setError, void (UnicodeFile::*)(const QString &));
PRIVATE_MEMBER(UnicodeFile::ok_, bool UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::error_, QString UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::unicodeName_, QString UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::unicodePath_, QString UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::asciiName_, QString UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::asciiPath_, QString UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::nameIsUnicode_, bool UnicodeFile::*);
PRIVATE_MEMBER(UnicodeFile::pathIsUnicode_, bool UnicodeFile::*);
template struct InOrder<offsetof(UnicodeFile, ok_), offsetof(UnicodeFile, error_),
                        offsetof(UnicodeFile, unicodeName_), offsetof(UnicodeFile, unicodePath_),
                        offsetof(UnicodeFile, asciiName_), offsetof(UnicodeFile, asciiPath_),
                        offsetof(UnicodeFile, nameIsUnicode_),
                        offsetof(UnicodeFile, pathIsUnicode_)>;

class TestInterfaceValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void enumeration();
    void onlyDerivedClassesMakeAndCopyMembersOfAnEnumeration();
    void version();
    void theConstantsOfVersion();
    void theDefaultArgumentsOfVersion();
    void cpuInfo();
    void cpuCounter();
    void theConstantsOfCpuCounter();
    void aCpuCounterIsMovedNotCopied();
    void nodeInfo();
    void theMembersOfNodeInfo();
    void clusterInfo();
    void unicodeFile();

    void everyArgumentHasToBeWrittenOut();
    void noConstructorIsExplicit();
};

void TestInterfaceValues::enumeration()
{
    EXPORTED_OVERLOAD(Enum::count, int (*)(const QString &));
    EXPORTED(Enum::fromString, Enum(*)(const QString &, const QString &));
    EXPORTED(Enum::fromValue, Enum(*)(const QString &, int));
    EXPORTED(Enum::toString, QString(Enum::*)() const);
    EXPORTED(Enum::toValue, int(Enum::*)() const);
    EXPORTED(Enum::isValid, bool(Enum::*)() const);
    EXPORTED(Enum::operator==, bool(Enum::*)(const Enum &) const);
    EXPORTED(Enum::operator!=, bool(Enum::*)(const Enum &) const);

    EXPORTED(Member::id, int(Enum::*)() const);
    EXPORTED(Member::Invalid, const int *);
    QCOMPARE(Member::Invalid, -1);

    static_assert(!CLIENT_MAY_WRITE(Enum, object.id()));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.Invalid));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.init(QString(), QString(), 0)));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.strings()));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.values()));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.count()));
    static_assert(CLIENT_MAY_WRITE(Enum, object.count(QString())));
    static_assert(!std::is_polymorphic_v<Enum>);
}

void TestInterfaceValues::onlyDerivedClassesMakeAndCopyMembersOfAnEnumeration()
{
    static_assert(!std::is_default_constructible_v<Enum>);
    static_assert(!std::is_constructible_v<Enum, const QString &, int>);
    static_assert(!std::is_constructible_v<Enum, const QString &, const QString &, int>);
    static_assert(!std::is_constructible_v<Enum, const QString &, const QString &>);
    static_assert(isNeitherCopiedNorMoved<Enum>);
    static_assert(std::is_destructible_v<Enum>);

    static_assert(isCopied<Member>);
    QVERIFY(!Member().isValid());
    QCOMPARE(Member(QStringLiteral("Interface"), 3).id(), 3);
    QCOMPARE(Member(QStringLiteral("Interface"), QStringLiteral("Ten"), 10).toValue(), 10);
    QCOMPARE(Member(QStringLiteral("Interface"), QStringLiteral("One")).toValue(), 1);
}

void TestInterfaceValues::version()
{
    EXPORTED(Version::setVersion, void(Version::*)(int, int, int, int));
    EXPORTED(Version::major, int(Version::*)() const);
    EXPORTED(Version::minor, int(Version::*)() const);
    EXPORTED(Version::patch, int(Version::*)() const);
    EXPORTED(Version::developmentStage, int(Version::*)() const);
    EXPORTED(Version::setDevelopmentStage, void(Version::*)(int));
    EXPORTED(Version::isValid, bool(Version::*)() const);
    EXPORTED(Version::fromString, void(Version::*)(const QString &));
    EXPORTED(Version::toString, QString(Version::*)() const);
    EXPORTED(Version::toPublic, QString(Version::*)() const);
    EXPORTED(Version::fromElement, void(Version::*)(const QDomElement &));
    EXPORTED(Version::toElement, QDomElement(Version::*)(QDomDocument &) const);
    EXPORTED(Version::Branch, QString(*)());
    EXPORTED(Version::operator==, bool(Version::*)(const Version &) const);
    EXPORTED(Version::operator!=, bool(Version::*)(const Version &) const);
    EXPORTED(Version::operator<, bool(Version::*)(const Version &) const);
    EXPORTED(Version::operator<=, bool(Version::*)(const Version &) const);
    EXPORTED(Version::operator>, bool(Version::*)(const Version &) const);
    EXPORTED(Version::operator>=, bool(Version::*)(const Version &) const);

    static_assert(!CLIENT_MAY_WRITE(Version, object.major_));
    static_assert(!CLIENT_MAY_WRITE(Version, object.minor_));
    static_assert(!CLIENT_MAY_WRITE(Version, object.patch_));
    static_assert(!CLIENT_MAY_WRITE(Version, object.developmentStage_));

    static_assert(!std::is_polymorphic_v<Version>);
    static_assert(std::is_trivially_destructible_v<Version>);
    static_assert(isCopied<Version>);
    static_assert(sizeof(Version) == 4 * sizeof(int));
}

void TestInterfaceValues::theConstantsOfVersion()
{
    EXPORTED(Version::Major, const int *);
    EXPORTED(Version::Minor, const int *);
    EXPORTED(Version::Patch, const int *);
    EXPORTED(Version::Hotfix, const int *);
    EXPORTED(Version::DevStage, const int *);
    EXPORTED(Version::Current, const Version *);
    EXPORTED(Version::CurrentRelease, const Version *);
    EXPORTED(Version::Public, const QString *);

    // Clients may use the numbers in constant expressions.
    static_assert(Version::Major == 24);
    static_assert(Version::Minor == 0);
    static_assert(Version::Patch == 75);
    static_assert(Version::Hotfix == 1);
    static_assert(Version::DevStage == 0);
    QCOMPARE(Version::Current.toString(), QStringLiteral("24.0.75"));
    QCOMPARE(Version::Current.developmentStage(), 0);
    QCOMPARE(Version::CurrentRelease.toString(), QStringLiteral("24.0.1"));
    QCOMPARE(Version::CurrentRelease.developmentStage(), 0);
    QCOMPARE(Version::Public, QStringLiteral("2024"));
}

void TestInterfaceValues::theDefaultArgumentsOfVersion()
{
    const auto numbers = [](const Version &version) {
        return QList<int>{version.major(), version.minor(), version.patch(),
                          version.developmentStage()};
    };
    QCOMPARE(numbers(Version()), QList<int>({0, 0, 0, 0}));
    QCOMPARE(numbers(Version(1)), QList<int>({1, 0, 0, 0}));
    QCOMPARE(numbers(Version(1, 2)), QList<int>({1, 2, 0, 0}));
    QCOMPARE(numbers(Version(1, 2, 3)), QList<int>({1, 2, 3, 0}));
    QCOMPARE(numbers(Version(1, 2, 3, 4)), QList<int>({1, 2, 3, 4}));
    QCOMPARE(numbers(Version(QStringLiteral("1.2.3"))), QList<int>({1, 2, 3, 0}));
    static_assert(!std::is_constructible_v<Version, int, int, int, int, int>);
}

void TestInterfaceValues::cpuInfo()
{
    EXPORTED(CpuInfo::processorCount, int(CpuInfo::*)() const);
    EXPORTED(CpuInfo::coreCount, int(CpuInfo::*)() const);
    EXPORTED(CpuInfo::coresPerProcessor, int(CpuInfo::*)() const);
    EXPORTED(CpuInfo::isHyperThreadingOn, bool(CpuInfo::*)() const);

    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.InfoFileName));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.getSystemInfo()));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.loadFromXml()));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.isV14Format(QDomElement())));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.loadV14Format(QDomElement())));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.saveToXml()));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.log(QString())));
    static_assert(!CLIENT_MAY_WRITE(CpuInfo, object.coreCount_));

    static_assert(std::is_constructible_v<CpuInfo, Log *, const QString &>);
    static_assert(isCopied<CpuInfo>);
    static_assert(!std::is_polymorphic_v<CpuInfo>);
}

void TestInterfaceValues::cpuCounter()
{
    EXPORTED(CpuCounter::getValue, long(CpuCounter::*)());

    static_assert(!CLIENT_MAY_WRITE(CpuCounter, object.sysInfo_));
    static_assert(std::is_constructible_v<CpuCounter, const QString &>);
    static_assert(std::is_destructible_v<CpuCounter>);
    static_assert(!std::is_polymorphic_v<CpuCounter>);
    static_assert(sizeof(CpuCounter) == sizeof(void *));
}

void TestInterfaceValues::theConstantsOfCpuCounter()
{
    EXPORTED(CpuCounter::CpuPercent, const QString *);
    EXPORTED(CpuCounter::MemInUseBytes, const QString *);
    EXPORTED(CpuCounter::MemAvailBytes, const QString *);
    EXPORTED(CpuCounter::MemAvailKBytes, const QString *);
    EXPORTED(CpuCounter::MemAvailMBytes, const QString *);
    EXPORTED(CpuCounter::MemInUsePercent, const QString *);
    EXPORTED(CpuCounter::MemLimitBytes, const QString *);
    QCOMPARE(CpuCounter::CpuPercent, QStringLiteral("\\Processor(_Total)\\% Processor Time"));
    QCOMPARE(CpuCounter::MemInUseBytes, QStringLiteral("\\Memory\\Committed Bytes"));
    QCOMPARE(CpuCounter::MemAvailBytes, QStringLiteral("\\Memory\\Available Bytes"));
    QCOMPARE(CpuCounter::MemAvailKBytes, QStringLiteral("\\Memory\\Available KBytes"));
    QCOMPARE(CpuCounter::MemAvailMBytes, QStringLiteral("\\Memory\\Available MBytes"));
    QCOMPARE(CpuCounter::MemInUsePercent, QStringLiteral("\\Memory\\% Committed Bytes In Use"));
    QCOMPARE(CpuCounter::MemLimitBytes, QStringLiteral("\\Memory\\Commit Limit"));
}

void TestInterfaceValues::aCpuCounterIsMovedNotCopied()
{
    static_assert(!std::is_copy_constructible_v<CpuCounter>);
    static_assert(!std::is_copy_assignable_v<CpuCounter>);
    static_assert(std::is_nothrow_move_constructible_v<CpuCounter>);
    static_assert(std::is_nothrow_move_assignable_v<CpuCounter>);

    // Both moves are exported: what was moved from counts nothing.
    CpuCounter first(CpuCounter::CpuPercent);
    CpuCounter second(std::move(first));
    QCOMPARE(first.getValue(), -1L); // NOLINT(bugprone-use-after-move)
    CpuCounter third(QString{});
    third = std::move(second);
    QCOMPARE(second.getValue(), -1L); // NOLINT(bugprone-use-after-move)
}

void TestInterfaceValues::nodeInfo()
{
    EXPORTED(NodeInfo::operator==, bool(NodeInfo::*)(const NodeInfo &) const);
    EXPORTED(NodeInfo::toString, QString(NodeInfo::*)() const);

    static_assert(std::is_default_constructible_v<NodeInfo>);
    static_assert(isCopied<NodeInfo>);
    static_assert(!std::is_polymorphic_v<NodeInfo>);
}

void TestInterfaceValues::theMembersOfNodeInfo()
{
    static_assert(std::is_same_v<decltype(&NodeInfo::name), QString NodeInfo::*>);
    static_assert(std::is_same_v<decltype(&NodeInfo::cores), int NodeInfo::*>);
    static_assert(std::is_same_v<decltype(&NodeInfo::sockets), int NodeInfo::*>);
    static_assert(std::is_same_v<decltype(&NodeInfo::quantity), double NodeInfo::*>);
    static_assert(std::is_same_v<decltype(&NodeInfo::isHeadNode), bool NodeInfo::*>);
    static_assert(std::is_same_v<decltype(&NodeInfo::isComputeNode), bool NodeInfo::*>);

    struct Layout
    {
        QString name;
        int cores;
        int sockets;
        double quantity;
        bool isHeadNode;
        bool isComputeNode;
    };
    static_assert(std::is_standard_layout_v<NodeInfo>);
    static_assert(offsetof(NodeInfo, name) == offsetof(Layout, name));
    static_assert(offsetof(NodeInfo, cores) == offsetof(Layout, cores));
    static_assert(offsetof(NodeInfo, sockets) == offsetof(Layout, sockets));
    static_assert(offsetof(NodeInfo, quantity) == offsetof(Layout, quantity));
    static_assert(offsetof(NodeInfo, isHeadNode) == offsetof(Layout, isHeadNode));
    static_assert(offsetof(NodeInfo, isComputeNode) == offsetof(Layout, isComputeNode));
    static_assert(sizeof(NodeInfo) == sizeof(Layout));

    const NodeInfo node;
    QVERIFY(node.name.isNull());
    QCOMPARE(node.cores, 0);
    QCOMPARE(node.sockets, 0);
    QVERIFY(qIsNull(node.quantity));
    QVERIFY(!node.isHeadNode);
    QVERIFY(!node.isComputeNode);
}

void TestInterfaceValues::clusterInfo()
{
    EXPORTED(ClusterInfo::headNodes, QList<NodeInfo>(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::computeNodes, QList<NodeInfo>(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::computeNodeCount, int(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::computeCoreCount, int(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::coresPerComputeNode, int(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::socketsPerComputeNode, int(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::headNode, QString(ClusterInfo::*)() const);
    EXPORTED(ClusterInfo::isHeadNodeAComputeNode, bool(ClusterInfo::*)() const);

    static_assert(!CLIENT_MAY_WRITE(ClusterInfo, object.init()));
    static_assert(!CLIENT_MAY_WRITE(ClusterInfo, object.computeNodes_));
    static_assert(std::is_constructible_v<ClusterInfo, Log *, const QString &>);
    static_assert(isCopied<ClusterInfo>);
    static_assert(!std::is_polymorphic_v<ClusterInfo>);
}

void TestInterfaceValues::unicodeFile()
{
    EXPORTED(UnicodeFile::renameToAscii, bool(UnicodeFile::*)());
    EXPORTED(UnicodeFile::renameToUnicode, bool(UnicodeFile::*)());
    EXPORTED(UnicodeFile::exists, bool(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::isOk, bool(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::error, QString(UnicodeFile::*)() const);
    EXPORTED_OVERLOAD(UnicodeFile::isUnicode, bool(UnicodeFile::*)() const);
    EXPORTED_OVERLOAD(UnicodeFile::isUnicode, bool (*)(const QString &));
    EXPORTED(UnicodeFile::asciiName, QString(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::asciiPath, QString(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::unicodeName, QString(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::unicodePath, QString(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::asciiFilePath, QString(UnicodeFile::*)() const);
    EXPORTED(UnicodeFile::unicodeFilePath, QString(UnicodeFile::*)() const);

    static_assert(!CLIENT_MAY_WRITE(UnicodeFile, object.rename(QString(), QString())));
    static_assert(!CLIENT_MAY_WRITE(UnicodeFile, object.setError(QString())));
    static_assert(!CLIENT_MAY_WRITE(UnicodeFile, object.ok_));
    static_assert(std::is_constructible_v<UnicodeFile, const QString &>);
    static_assert(isCopied<UnicodeFile>);
    static_assert(!std::is_polymorphic_v<UnicodeFile>);
}

void TestInterfaceValues::everyArgumentHasToBeWrittenOut()
{
    static_assert(!std::is_constructible_v<Member, QString>);
    static_assert(!std::is_default_constructible_v<CpuInfo>);
    static_assert(!std::is_constructible_v<CpuInfo, Log *>);
    static_assert(!std::is_default_constructible_v<CpuCounter>);
    static_assert(!std::is_default_constructible_v<ClusterInfo>);
    static_assert(!std::is_constructible_v<ClusterInfo, Log *>);
    static_assert(!std::is_default_constructible_v<UnicodeFile>);
    static_assert(!CLIENT_MAY_WRITE(Version, object.setVersion(1, 2, 3)));
    static_assert(CLIENT_MAY_WRITE(Version, object.setVersion(1, 2, 3, 4)));
    static_assert(!CLIENT_MAY_WRITE(Version, object.setDevelopmentStage()));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.fromString(QString())));
    static_assert(!CLIENT_MAY_WRITE(Enum, object.fromValue(QString())));
}

void TestInterfaceValues::noConstructorIsExplicit()
{
    QVERIFY((isImplicit<Version>(0)));
    QVERIFY((isImplicit<Version, int>(0)));
    QVERIFY((isImplicit<Version, int, int, int, int>(0)));
    QVERIFY((isImplicit<Version, QString>(0)));
    QVERIFY((isImplicit<CpuInfo, Log *, QString>(0)));
    QVERIFY((isImplicit<CpuCounter, QString>(0)));
    QVERIFY((isImplicit<NodeInfo>(0)));
    QVERIFY((isImplicit<ClusterInfo, Log *, QString>(0)));
    QVERIFY((isImplicit<UnicodeFile, QString>(0)));
}

QTEST_GUILESS_MAIN(TestInterfaceValues)

#include "tst_interfacevalues.moc"
