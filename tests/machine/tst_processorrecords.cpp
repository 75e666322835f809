#include "BuildPaths.h"
#include "TestFiles.h"

#include <Utility/Formats/ProcessorRecords_p.h>
#include <Utility/Platform/Processors.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtCore/QtEndian>
#include <QtTest/QtTest>

#include <cstring>
#include <vector>

using namespace Vorn::Util::Formats;

namespace Vorn::Util::Formats {

static bool operator==(const ProcessorCounts &left, const ProcessorCounts &right)
{
    return left.packages == right.packages && left.cores == right.cores && left.smt == right.smt;
}

static char *toString(const ProcessorCounts &counts)
{
    return qstrdup(qPrintable(QStringLiteral("%1 packages, %2 cores, SMT %3")
                                  .arg(counts.packages)
                                  .arg(counts.cores)
                                  .arg(!counts.smt       ? QStringLiteral("unknown")
                                           : *counts.smt ? QStringLiteral("on")
                                                         : QStringLiteral("off"))));
}

} // namespace Vorn::Util::Formats

Q_DECLARE_METATYPE(ProcessorCounts)

namespace {

constexpr bool Smt = true;
constexpr bool NoSmt = false;

ProcessorCounts counts(int packages, int cores, bool smt)
{
    return {packages, cores, smt};
}

ProcessorCounts countsWithoutSmt(int packages, int cores)
{
    return {packages, cores, std::nullopt};
}

template <typename Number> QByteArray littleEndian(Number number)
{
    QByteArray bytes(static_cast<int>(sizeof(Number)), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

QByteArray zeros(int count)
{
    return QByteArray(count, '\0');
}

// The records of the extended query, as 64-bit Windows lays them out.

constexpr quint32 Core = 0;
constexpr quint32 NumaNode = 1;
constexpr quint32 Cache = 2;
constexpr quint32 Package = 3;
constexpr quint32 Group = 4;
constexpr quint32 Die = 5;
constexpr quint32 Module = 7;

QByteArray record(quint32 kind, const QByteArray &body)
{
    return littleEndian(kind) + littleEndian(static_cast<quint32>(8 + body.size())) + body;
}

struct GroupMask
{
    quint16 group;
    quint64 mask;
};

using GroupMasks = std::vector<GroupMask>;

QByteArray bytesOf(const GroupMasks &masks)
{
    QByteArray bytes;
    for (const GroupMask &mask : masks)
        bytes += littleEndian(mask.mask) + littleEndian(mask.group) + zeros(6);
    return bytes;
}

QByteArray processorRecord(quint32 kind, char flags, char efficiencyClass, const GroupMasks &masks)
{
    return record(kind,
                  QByteArray(1, flags) + QByteArray(1, efficiencyClass) + zeros(20)
                      + littleEndian(static_cast<quint16>(masks.size())) + bytesOf(masks));
}

QByteArray core(bool smt, const GroupMasks &masks = {{0, 1}}, char efficiencyClass = 0)
{
    return processorRecord(Core, smt ? 1 : 0, efficiencyClass, masks);
}

QByteArray package(const GroupMasks &masks = {{0, 0xFF}})
{
    return processorRecord(Package, 0, 0, masks);
}

QByteArray numaNode()
{
    return record(NumaNode, littleEndian<quint32>(0) + zeros(20) + bytesOf({{0, 0xFF}}));
}

QByteArray cache()
{
    return record(Cache,
                  QByteArray("\x03\x10", 2) + littleEndian<quint16>(64)
                      + littleEndian<quint32>(36 << 20) + littleEndian<quint32>(0) + zeros(20)
                      + bytesOf({{0, 0xFF}}));
}

QByteArray groups()
{
    return record(Group,
                  littleEndian<quint16>(1) + littleEndian<quint16>(1) + zeros(20)
                      + QByteArray("\x40\x08", 2) + zeros(38) + littleEndian<quint64>(0xFF));
}

QByteArray times(int count, const QByteArray &bytes)
{
    return bytes.repeated(count);
}

// A record of the older query, as 64-bit Windows lays it out.
QByteArray fixedRecord(quint32 kind, char flags = 0)
{
    return littleEndian<quint64>(1) + littleEndian(kind) + zeros(4) + QByteArray(1, flags)
        + zeros(15);
}

// A fake call of Windows: returns these records however often it is called, and records the buffer
// length of each call (-1 without a buffer).
class FakeCall
{
public:
    explicit FakeCall(const QByteArray &records)
        : announced(static_cast<quint32>(records.size()))
        , records_(records)
    {
    }

    RecordsCall call()
    {
        return [this](char *buffer, quint32 *length) -> CallOutcome {
            lengths.append(buffer ? static_cast<qint64>(*length) : -1);
            if (!buffer) {
                *length = announced;
                return {false, TooSmall}; // ignored: this call asks for the length
            }
            const int size = qMin(records_.size(), static_cast<int>(*length));
            std::memcpy(buffer, records_.constData(), static_cast<std::size_t>(size));
            *length = static_cast<quint32>(size);
            return outcome;
        };
    }

    quint32 announced;
    CallOutcome outcome{true, 0};
    QList<qint64> lengths;

private:
    static constexpr quint32 TooSmall = 122;

    QByteArray records_;
};

// Both calls of Windows.
void addCalls()
{
    QTest::addColumn<bool>("isExtended");
    QTest::newRow("extended") << true;
    QTest::newRow("older") << false;
}

ProcessorQuery query(bool isExtended, FakeCall &fake)
{
    return isExtended ? queryRecords(fake.call(), RecordsCall())
                      : queryRecords(RecordsCall(), fake.call());
}

QStringList messagesOf(bool isExtended, const QStringList &messages)
{
    return isExtended
        ? messages
        : QStringList{QStringLiteral("Using GetLogicalProcessorInformation")} + messages;
}

// A folder such as /sys/devices/system/cpu.
class SysfsTree
{
public:
    void setOnline(const QByteArray &list) { write(QStringLiteral("online"), list); }

    SysfsTree &add(int processor, int package, int core)
    {
        addId(processor, QStringLiteral("physical_package_id"), package);
        addId(processor, QStringLiteral("core_id"), core);
        return *this;
    }

    SysfsTree &addDie(int processor, int die)
    {
        addId(processor, QStringLiteral("die_id"), die);
        return *this;
    }

    ProcessorCounts count() const { return countSysfs(folder_.path()); }

private:
    void addId(int processor, const QString &name, int id)
    {
        const QString topology = QStringLiteral("cpu%1/topology/").arg(processor);
        if (!QDir(folder_.path()).mkpath(topology))
            qFatal("The test's folder cannot be made");
        write(topology + name, QByteArray::number(id));
    }

    void write(const QString &name, const QByteArray &text)
    {
        if (!writeFile(folder_.filePath(name), text + '\n'))
            qFatal("The test's file cannot be written");
    }

    QTemporaryDir folder_;
};

} // namespace

class TestProcessorRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRecordsHaveTheSizesOfTheSystem();
    void extendedRecordsAreCounted_data();
    void extendedRecordsAreCounted();
    void extendedRecordsMayEndAnywhere();
    void theBytesAfterAnExtendedRecordAreNotRead();
    void fixedRecordsAreCounted_data();
    void fixedRecordsAreCounted();
    void aTruncatedLastFixedRecordCounts();

    void theExtendedCallIsAskedAlone();
    void theOlderCallIsAskedWhereThereIsNoOther();
    void theLengthIsAskedForFirst_data();
    void theLengthIsAskedForFirst();
    void aFailedCallIsNamedWithItsError_data();
    void aFailedCallIsNamedWithItsError();
    void onlyWhatTheCallHasWrittenCounts_data();
    void onlyWhatTheCallHasWrittenCounts();
    void aCallWithoutRecordsCountsNothing_data();
    void aCallWithoutRecordsCountsNothing();
    void moreThanABufferCanHoldIsAFailure();

    void sysfsCoresOfOnePackage();
    void sysfsThreadsOfACoreAreOneCore_data();
    void sysfsThreadsOfACoreAreOneCore();
    void sysfsCoreNumbersRepeatInEveryPackage();
    void sysfsCoreNumbersRepeatInEveryDie();
    void sysfsCoreNumbersMayHaveGaps();
    void sysfsOfflineProcessorsDoNotCount();
    void sysfsWithItsThreadsOfflineACoreHasNoSmt();
    void sysfsTheLastCoreDecidesOnSmt();
    void sysfsWithoutTopologyEveryProcessorIsACore();
    void sysfsUnknownNumbersAreNoNumbers();
    void sysfsUnknownCoresOfKnownPackages();
    void sysfsThatSaysNothingHasNoPackages_data();
    void sysfsThatSaysNothingHasNoPackages();
    void sysfsListsOfAnyKindAreSafe_data();
    void sysfsListsOfAnyKindAreSafe();

    void cpuinfoIsCounted_data();
    void cpuinfoIsCounted();
    void cpuinfoThatSaysNothingHasNoPackages_data();
    void cpuinfoThatSaysNothingHasNoPackages();

    void thisMachineHasAProcessorAndACore();
};

void TestProcessorRecords::theRecordsHaveTheSizesOfTheSystem()
{
    // Checks the test's own records: with wrong sizes the other tests prove nothing.
    QCOMPARE(core(NoSmt).size(), 48);
    QCOMPARE(package({{0, 1}, {1, 1}}).size(), 64);
    QCOMPARE(numaNode().size(), 48);
    QCOMPARE(cache().size(), 56);
    QCOMPARE(groups().size(), 80);
    QCOMPARE(fixedRecord(Core).size(), 32);
}

void TestProcessorRecords::extendedRecordsAreCounted_data()
{
    QTest::addColumn<QByteArray>("records");
    QTest::addColumn<ProcessorCounts>("expected");

    QTest::newRow("none") << QByteArray() << countsWithoutSmt(0, 0);
    QTest::newRow("one core") << package() + core(NoSmt) << counts(1, 1, NoSmt);
    QTest::newRow("four cores with SMT") << package() + times(4, core(Smt)) << counts(1, 4, Smt);
    QTest::newRow("two packages, as a system tells them") << times(2, core(Smt)) + cache()
            + package() + times(2, core(Smt)) + cache() + package() + numaNode()
            + groups() << counts(2, 4, Smt);
    QTest::newRow("two packages without SMT")
        << times(2, package()) + times(12, core(NoSmt)) << counts(2, 12, NoSmt);
    QTest::newRow("efficiency cores last: the last core decides")
        << package() + times(8, core(Smt, {{0, 3}}, 1)) + times(4, core(NoSmt))
        << counts(1, 12, NoSmt);
    QTest::newRow("efficiency cores first")
        << package() + times(4, core(NoSmt)) + times(8, core(Smt, {{0, 3}}, 1))
        << counts(1, 12, Smt);
    QTest::newRow("a package after the last core decides nothing")
        << core(Smt) + package() << counts(1, 1, Smt);
    QTest::newRow("the flags must equal that of SMT")
        << package() + processorRecord(Core, 3, 0, {{0, 3}}) << counts(1, 1, NoSmt);
    QTest::newRow("more than 64 logical processors: two group masks in one record")
        << package({{0, ~quint64(0)}, {1, 0xFFFFFFFF}}) + times(32, core(Smt, {{0, 3}}))
            + times(16, core(Smt, {{1, 3}}))
        << counts(1, 48, Smt);
    QTest::newRow("two group masks in a core") << package({{0, 1}, {1, 1}})
            + core(Smt, {{0, 1}, {1, 1}}) + core(NoSmt, {{0, 2}, {1, 2}, {2, 2}})
            + package({{0, 2}, {1, 2}, {2, 2}}) << counts(2, 2, NoSmt);
    QTest::newRow("other kinds are skipped")
        << numaNode() + cache() + groups() + processorRecord(Die, 1, 0, {{0, 1}}) + core(NoSmt)
            + processorRecord(Module, 1, 0, {{0, 1}}) + record(0x1234, QByteArray(100, '\1'))
            + record(0xFFFFFFFF, QByteArray(1, '\1')) + package() + core(NoSmt)
        << counts(1, 2, NoSmt);
    QTest::newRow("a record of its header only is skipped")
        << package() + record(99, QByteArray()) + core(Smt) << counts(1, 1, Smt);
    QTest::newRow("such a record at the end")
        << core(Smt) + record(99, QByteArray()) << counts(0, 1, Smt);
    QTest::newRow("packages only") << times(2, package()) << countsWithoutSmt(2, 0);
    QTest::newRow("cores only") << times(2, core(Smt)) << counts(0, 2, Smt);
    QTest::newRow("a core without its flags ends the walk")
        << package() + core(Smt) + record(Core, QByteArray()) + core(NoSmt) << counts(1, 1, Smt);

    const auto header
        = [](quint32 kind, quint32 size) { return littleEndian(kind) + littleEndian(size); };
    const QByteArray good = package() + core(Smt);
    for (const quint32 size : {0U, 1U, 4U, 7U}) {
        QTest::newRow(qPrintable(QStringLiteral("a size of %1 ends the walk").arg(size)))
            << good + header(Core, size) + zeros(40) + core(NoSmt) << counts(1, 1, Smt);
    }
    for (const quint32 size : {49U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        QTest::newRow(qPrintable(QStringLiteral("a size of %1 is beyond the end").arg(size)))
            << good + header(Core, size) + zeros(40) << counts(1, 1, Smt);
    }
    QTest::newRow("a hostile record at the beginning")
        << header(Package, 0) + good << countsWithoutSmt(0, 0);
}

void TestProcessorRecords::extendedRecordsAreCounted()
{
    QFETCH(QByteArray, records);
    QFETCH(ProcessorCounts, expected);
    QCOMPARE(countExtendedRecords(records), expected);
}

void TestProcessorRecords::extendedRecordsMayEndAnywhere()
{
    const QList<QByteArray> all{
        package({{0, 1}, {1, 1}}), core(Smt), cache(), core(NoSmt), groups(), package(), core(Smt)};
    const QByteArray records = all.join();
    for (int length = 0; length <= records.size(); ++length) {
        int packages = 0;
        int cores = 0;
        bool smt = false;
        int end = 0;
        for (const QByteArray &each : all) {
            end += each.size();
            if (end > length)
                break;
            packages += each.at(0) == char(Package) ? 1 : 0;
            if (each.at(0) == char(Core)) {
                ++cores;
                smt = each.at(8) == 1;
            }
        }
        QCOMPARE(countExtendedRecords(records.left(length)),
                 cores > 0 ? counts(packages, cores, smt) : countsWithoutSmt(packages, cores));
    }
}

void TestProcessorRecords::theBytesAfterAnExtendedRecordAreNotRead()
{
    const QByteArray records = package() + core(Smt) + core(NoSmt);
    // More bytes follow the ones that are passed.
    const int length = records.size() - core(NoSmt).size();
    QCOMPARE(countExtendedRecords(QByteArray::fromRawData(records.constData(), length)),
             counts(1, 1, Smt));
}

void TestProcessorRecords::fixedRecordsAreCounted_data()
{
    QTest::addColumn<QByteArray>("records");
    QTest::addColumn<ProcessorCounts>("expected");
    QTest::newRow("none") << QByteArray() << countsWithoutSmt(0, 0);
    QTest::newRow("one package, four cores")
        << times(4, fixedRecord(Core)) + fixedRecord(Package) << countsWithoutSmt(1, 4);
    QTest::newRow("the flags of SMT are not looked at")
        << fixedRecord(Core, 1) + fixedRecord(Package) << countsWithoutSmt(1, 1);
    QTest::newRow("two packages among other kinds") << fixedRecord(Core) + fixedRecord(Cache)
            + fixedRecord(Package) + fixedRecord(Cache) + fixedRecord(NumaNode) + fixedRecord(Core)
            + fixedRecord(Package) + fixedRecord(99) + fixedRecord(0xFFFFFFFF)
            + fixedRecord(Core) << countsWithoutSmt(2, 3);
    QTest::newRow("no package") << fixedRecord(Core) << countsWithoutSmt(0, 1);
}

void TestProcessorRecords::fixedRecordsAreCounted()
{
    QFETCH(QByteArray, records);
    QFETCH(ProcessorCounts, expected);
    QCOMPARE(countFixedRecords(records), expected);
}

void TestProcessorRecords::aTruncatedLastFixedRecordCounts()
{
    const QByteArray whole = fixedRecord(Package) + fixedRecord(Core);
    const QByteArray last = fixedRecord(Core);
    constexpr int EndOfKind = 12;
    for (int length = 0; length <= last.size(); ++length) {
        // Counts if its kind is complete.
        const int cores = length < EndOfKind ? 1 : 2;
        QCOMPARE(countFixedRecords(whole + last.left(length)), countsWithoutSmt(1, cores));
    }
}

void TestProcessorRecords::theExtendedCallIsAskedAlone()
{
    FakeCall extended(package() + times(2, core(Smt)));
    FakeCall older(fixedRecord(Package) + fixedRecord(Core));
    const ProcessorQuery read = queryRecords(extended.call(), older.call());
    QVERIFY(read.ok);
    QCOMPARE(read.counts, counts(1, 2, Smt));
    QCOMPARE(read.messages, QStringList());
    QCOMPARE(older.lengths, QList<qint64>());

    // Also when it fails.
    extended.outcome = {false, 5};
    const ProcessorQuery failed = queryRecords(extended.call(), older.call());
    QVERIFY(!failed.ok);
    QCOMPARE(failed.messages,
             QStringList{QStringLiteral("GetLogicalProcessorInformationEx failed, error = 5")});
    QCOMPARE(older.lengths, QList<qint64>());
}

void TestProcessorRecords::theOlderCallIsAskedWhereThereIsNoOther()
{
    FakeCall older(fixedRecord(Package) + times(3, fixedRecord(Core, 1)));
    const ProcessorQuery read = queryRecords(RecordsCall(), older.call());
    QVERIFY(read.ok);
    QCOMPARE(read.counts, countsWithoutSmt(1, 3));
    QCOMPARE(read.messages, QStringList{QStringLiteral("Using GetLogicalProcessorInformation")});
}

void TestProcessorRecords::theLengthIsAskedForFirst_data()
{
    addCalls();
}

void TestProcessorRecords::theLengthIsAskedForFirst()
{
    QFETCH(bool, isExtended);
    const QByteArray records = isExtended ? package() + core(NoSmt) : fixedRecord(Core);
    FakeCall fake(records);
    QVERIFY(query(isExtended, fake).ok);
    QCOMPARE(fake.lengths, (QList<qint64>{-1, records.size()}));
}

void TestProcessorRecords::aFailedCallIsNamedWithItsError_data()
{
    QTest::addColumn<bool>("isExtended");
    QTest::addColumn<quint32>("error");
    QTest::addColumn<QString>("message");

    const auto row = [](bool isExtended, quint32 error, const char *message) {
        QTest::newRow(message) << isExtended << error << QString::fromLatin1(message);
    };
    row(true, 5, "GetLogicalProcessorInformationEx failed, error = 5");
    row(true, 0, "GetLogicalProcessorInformationEx failed, error = 0");
    row(true, 0xFFFFFFFF, "GetLogicalProcessorInformationEx failed, error = 4294967295");
    row(false, 122, "GetLogicalProcessorInformation failed, error = 122");
    row(false, 0, "GetLogicalProcessorInformation failed, error = 0");
}

void TestProcessorRecords::aFailedCallIsNamedWithItsError()
{
    QFETCH(bool, isExtended);
    QFETCH(quint32, error);
    QFETCH(QString, message);
    FakeCall fake(isExtended ? package() + core(Smt) : fixedRecord(Package) + fixedRecord(Core));
    fake.outcome = {false, error};
    const ProcessorQuery failed = query(isExtended, fake);
    QVERIFY(!failed.ok);
    QCOMPARE(failed.counts, countsWithoutSmt(0, 0));
    QCOMPARE(failed.messages, messagesOf(isExtended, {message}));
}

void TestProcessorRecords::onlyWhatTheCallHasWrittenCounts_data()
{
    addCalls();
}

// The rest of the buffer is zeros, which would be cores to the older call.
void TestProcessorRecords::onlyWhatTheCallHasWrittenCounts()
{
    QFETCH(bool, isExtended);
    const QByteArray records
        = isExtended ? package() + core(Smt) : fixedRecord(Package) + fixedRecord(Core);
    FakeCall fake(records);
    fake.announced += 320;
    const ProcessorQuery read = query(isExtended, fake);
    QVERIFY(read.ok);
    QCOMPARE(read.counts, isExtended ? counts(1, 1, Smt) : countsWithoutSmt(1, 1));
    QCOMPARE(fake.lengths, (QList<qint64>{-1, records.size() + 320}));
}

void TestProcessorRecords::aCallWithoutRecordsCountsNothing_data()
{
    addCalls();
}

void TestProcessorRecords::aCallWithoutRecordsCountsNothing()
{
    QFETCH(bool, isExtended);
    FakeCall fake{QByteArray()};
    const ProcessorQuery read = query(isExtended, fake);
    QVERIFY(read.ok);
    QCOMPARE(read.counts, countsWithoutSmt(0, 0));
    QCOMPARE(read.messages, messagesOf(isExtended, {}));
    QCOMPARE(fake.lengths, (QList<qint64>{-1, 0}));
}

void TestProcessorRecords::moreThanABufferCanHoldIsAFailure()
{
    FakeCall fake(package());
    fake.announced = 0x80000000U;
    const ProcessorQuery failed = query(true, fake);
    QVERIFY(!failed.ok);
    QCOMPARE(failed.messages,
             QStringList{QStringLiteral("GetLogicalProcessorInformationEx failed, error = 0")});
    QCOMPARE(fake.lengths, QList<qint64>{-1});
}

void TestProcessorRecords::sysfsCoresOfOnePackage()
{
    SysfsTree tree;
    tree.setOnline("0-3");
    for (int number = 0; number < 4; ++number)
        tree.add(number, 0, number).addDie(number, 0);
    QCOMPARE(tree.count(), counts(1, 4, NoSmt));
}

void TestProcessorRecords::sysfsThreadsOfACoreAreOneCore_data()
{
    QTest::addColumn<bool>("neighbours");
    QTest::newRow("the threads of a core are neighbours") << true;
    QTest::newRow("the second threads follow all the first ones") << false;
}

void TestProcessorRecords::sysfsThreadsOfACoreAreOneCore()
{
    QFETCH(bool, neighbours);
    SysfsTree tree;
    tree.setOnline("0-7");
    for (int number = 0; number < 8; ++number)
        tree.add(number, 0, neighbours ? number / 2 : number % 4);
    QCOMPARE(tree.count(), counts(1, 4, Smt));
}

void TestProcessorRecords::sysfsCoreNumbersRepeatInEveryPackage()
{
    SysfsTree tree;
    tree.setOnline("0-3");
    for (int number = 0; number < 4; ++number)
        tree.add(number, number / 2, number % 2).addDie(number, 0);
    QCOMPARE(tree.count(), counts(2, 4, NoSmt));
}

void TestProcessorRecords::sysfsCoreNumbersRepeatInEveryDie()
{
    SysfsTree tree;
    tree.setOnline("0-7");
    for (int number = 0; number < 8; ++number)
        tree.add(number, 0, number / 2 % 2).addDie(number, number / 4);
    QCOMPARE(tree.count(), counts(1, 4, Smt));
}

void TestProcessorRecords::sysfsCoreNumbersMayHaveGaps()
{
    SysfsTree tree;
    tree.setOnline("0-2");
    // "1" and "11" beside "11" and "1": the numbers do not run together.
    tree.add(0, 1, 11).add(1, 11, 1).add(2, 1, 1);
    QCOMPARE(tree.count(), counts(2, 3, NoSmt));

    SysfsTree dies;
    dies.setOnline("0-1");
    dies.add(0, 1, 5).addDie(0, 11).add(1, 11, 5).addDie(1, 1);
    QCOMPARE(dies.count(), counts(2, 2, NoSmt));
}

void TestProcessorRecords::sysfsOfflineProcessorsDoNotCount()
{
    SysfsTree tree;
    tree.setOnline("0,2-3,5");
    for (int number = 0; number < 6; ++number)
        tree.add(number, number / 4, number);
    QCOMPARE(tree.count(), counts(2, 4, NoSmt));

    tree.setOnline("0-3"); // the second package is off
    QCOMPARE(tree.count(), counts(1, 4, NoSmt));
}

void TestProcessorRecords::sysfsWithItsThreadsOfflineACoreHasNoSmt()
{
    SysfsTree tree;
    tree.setOnline("0,2");
    for (int number = 0; number < 4; ++number)
        tree.add(number, 0, number / 2);
    QCOMPARE(tree.count(), counts(1, 2, NoSmt));
}

void TestProcessorRecords::sysfsTheLastCoreDecidesOnSmt()
{
    SysfsTree efficiencyLast;
    efficiencyLast.setOnline("0-5");
    efficiencyLast.add(0, 0, 0).add(1, 0, 0).add(2, 0, 4).add(3, 0, 4).add(4, 0, 8).add(5, 0, 9);
    QCOMPARE(efficiencyLast.count(), counts(1, 4, NoSmt));

    SysfsTree efficiencyFirst;
    efficiencyFirst.setOnline("0-5");
    efficiencyFirst.add(0, 0, 8).add(1, 0, 9).add(2, 0, 0).add(3, 0, 0).add(4, 0, 4).add(5, 0, 4);
    QCOMPARE(efficiencyFirst.count(), counts(1, 4, Smt));
}

void TestProcessorRecords::sysfsWithoutTopologyEveryProcessorIsACore()
{
    SysfsTree tree;
    tree.setOnline("0-3");
    QCOMPARE(tree.count(), counts(1, 4, NoSmt));
}

void TestProcessorRecords::sysfsUnknownNumbersAreNoNumbers()
{
    SysfsTree tree;
    tree.setOnline("0-3");
    for (int number = 0; number < 4; ++number)
        tree.add(number, -1, -1).addDie(number, -1);
    QCOMPARE(tree.count(), counts(1, 4, NoSmt));
}

void TestProcessorRecords::sysfsUnknownCoresOfKnownPackages()
{
    SysfsTree tree;
    tree.setOnline("0-3");
    for (int number = 0; number < 4; ++number)
        tree.add(number, number / 2, -1);
    QCOMPARE(tree.count(), counts(2, 4, NoSmt));
}

void TestProcessorRecords::sysfsThatSaysNothingHasNoPackages_data()
{
    QTest::addColumn<QByteArray>("online");
    QTest::newRow("no list") << QByteArray();
    QTest::newRow("an empty list") << QByteArray("");
    QTest::newRow("blanks") << QByteArray("  \n");
    QTest::newRow("no numbers") << QByteArray("all,none-some");
    QTest::newRow("no last number") << QByteArray("0-x");
    QTest::newRow("no first number") << QByteArray("x-0");
    QTest::newRow("backwards") << QByteArray("3-1");
    QTest::newRow("below 0") << QByteArray("-1");
    QTest::newRow("beyond all numbers") << QByteArray("99999999999999999999");
}

void TestProcessorRecords::sysfsThatSaysNothingHasNoPackages()
{
    QFETCH(QByteArray, online);
    SysfsTree tree;
    tree.add(0, 0, 0);
    if (!online.isNull())
        tree.setOnline(online);
    QCOMPARE(tree.count(), countsWithoutSmt(0, 0));
    QCOMPARE(countSysfs(QStringLiteral("no such folder")), countsWithoutSmt(0, 0));
}

void TestProcessorRecords::sysfsListsOfAnyKindAreSafe_data()
{
    QTest::addColumn<QByteArray>("online");
    QTest::addColumn<int>("cores");
    QTest::newRow("one") << QByteArray("7") << 1;
    QTest::newRow("bad parts are left out") << QByteArray("x,0,,2-y,4-5,3-1,-,") << 3;
    QTest::newRow("the largest numbers") << QByteArray("2147483646-2147483647") << 2;
    QTest::newRow("more numbers than there are processors") << QByteArray("0-2147483647") << 65536;
}

void TestProcessorRecords::sysfsListsOfAnyKindAreSafe()
{
    QFETCH(QByteArray, online);
    QFETCH(int, cores);
    SysfsTree tree;
    tree.setOnline(online);
    QCOMPARE(tree.count(), counts(1, cores, NoSmt));
}

void TestProcessorRecords::cpuinfoIsCounted_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<ProcessorCounts>("expected");
    QTest::newRow("one package without SMT")
        << QStringLiteral("one-package.txt") << counts(1, 4, NoSmt);
    QTest::newRow("two packages with the same core numbers and SMT")
        << QStringLiteral("two-packages-smt.txt") << counts(2, 4, Smt);
    QTest::newRow("efficiency cores last: the last core decides")
        << QStringLiteral("efficiency-cores-last.txt") << counts(1, 4, NoSmt);
    QTest::newRow("packages without core numbers")
        << QStringLiteral("virtual-machine.txt") << counts(3, 3, NoSmt);
    QTest::newRow("no numbers at all") << QStringLiteral("arm-64-bit.txt") << counts(1, 4, NoSmt);
    QTest::newRow("a description that begins like a processor")
        << QStringLiteral("arm-32-bit.txt") << counts(1, 2, NoSmt);
}

void TestProcessorRecords::cpuinfoIsCounted()
{
    QFETCH(QString, file);
    QFETCH(ProcessorCounts, expected);
    const QByteArray text = contentOf(BuildPaths::testData(QStringLiteral("processors/") + file));
    QVERIFY(!text.isEmpty());
    QCOMPARE(countCpuinfo(QString::fromLatin1(text)), expected);
}

void TestProcessorRecords::cpuinfoThatSaysNothingHasNoPackages_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("other lines") << QStringLiteral("Hardware : Board\nSerial : 0\n");
    QTest::newRow("numbers before a processor") << QStringLiteral("physical id : 0\ncore id : 0\n");
    QTest::newRow("no lines at all") << QStringLiteral(":::::");
}

void TestProcessorRecords::cpuinfoThatSaysNothingHasNoPackages()
{
    QFETCH(QString, text);
    QCOMPARE(countCpuinfo(text), countsWithoutSmt(0, 0));
}

void TestProcessorRecords::thisMachineHasAProcessorAndACore()
{
    const ProcessorQuery query = Vorn::Util::Platform::queryProcessors();
    QVERIFY(query.ok);
    QVERIFY(query.counts.packages >= 1);
    QVERIFY(query.counts.cores >= query.counts.packages);
    QCOMPARE(query.messages, QStringList());
}

QTEST_GUILESS_MAIN(TestProcessorRecords)

#include "tst_processorrecords.moc"
