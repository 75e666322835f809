#include "BuildPaths.h"
#include "TestFiles.h"

#include <Utility/Formats/VersionBlock_p.h>

#include <QtCore/QBuffer>
#include <QtCore/QRandomGenerator>
#include <QtCore/QtEndian>
#include <QtTest/QtTest>

#include <initializer_list>

using namespace Vorn::Util;

namespace {

QByteArray recorded(const char *name)
{
    return contentOf(BuildPaths::testData(QStringLiteral("programs/")) + QString::fromLatin1(name));
}

Formats::ProgramVersion versionIn(const QByteArray &bytes)
{
    QBuffer program;
    program.setData(bytes);
    program.open(QIODevice::ReadOnly);
    return Formats::versionInProgram(program);
}

QString textOf(const Formats::ProgramVersion &version)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(version.high >> 16)
        .arg(version.high & 0xffff)
        .arg(version.low >> 16)
        .arg(version.low & 0xffff);
}

QString versionTextIn(const QByteArray &bytes)
{
    return textOf(versionIn(bytes));
}

QString none()
{
    return QStringLiteral("0.0.0.0");
}

template <typename Number> void put(QByteArray &bytes, int offset, Number number)
{
    qToLittleEndian(number, bytes.data() + offset);
}

quint32 dwordAt(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

// The offset of the version after its signature.
int versionOffset(const QByteArray &bytes)
{
    return bytes.indexOf("\xbd\x04\xef\xfe") + 8;
}

// The version or a number that stands in the file: never one from elsewhere.
bool isFrom(const QByteArray &bytes, const Formats::ProgramVersion &version)
{
    QByteArray words(8, '\0');
    put(words, 0, version.high);
    put(words, 4, version.low);
    return textOf(version) == none() || bytes.contains(words);
}

void addPrograms()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<QString>("version");

    QTest::newRow("64 bit") << recorded("version64.dll") << QStringLiteral("24.0.75.1");
    QTest::newRow("32 bit") << recorded("version32.dll") << QStringLiteral("65535.65534.32768.1");
}

// The parts of the recorded programs that the tests damage.
struct Layout
{
    explicit Layout(const QByteArray &bytes)
        : header(static_cast<int>(dwordAt(bytes, 0x3c)))
        , sections(header + 24 + qFromLittleEndian<quint16>(bytes.constData() + header + 20))
        , resourceSection(bytes.indexOf(QByteArray(".rsrc\0\0\0", 8)))
        , resources(static_cast<int>(dwordAt(bytes, resourceSection + 20)))
    {
    }

    // The entry of the kind "version" in the top directory.
    int versionKind(const QByteArray &bytes) const
    {
        int entry = resources + 16;
        while (dwordAt(bytes, entry) != 16)
            entry += 8;
        return entry;
    }

    // The table that names the resources, after the number of its entries.
    int directories(const QByteArray &bytes) const
    {
        const bool isPlus = qFromLittleEndian<quint16>(bytes.constData() + header + 24) == 0x20b;
        return header + 24 + (isPlus ? 112 : 96);
    }

    int header;
    int sections;
    int resourceSection;
    int resources;
};

} // namespace

class TestVersionInProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionOfAProgram_data() { addPrograms(); }
    void versionOfAProgram();
    void aProgramWithoutAVersionHasNone_data();
    void aProgramWithoutAVersionHasNone();
    void anyVersionIsRead_data();
    void anyVersionIsRead();
    void aTruncatedProgramHasItsVersionOrNone_data() { addPrograms(); }
    void aTruncatedProgramHasItsVersionOrNone();
    void aChangedByteLeavesAVersionOfTheFile_data() { addPrograms(); }
    void aChangedByteLeavesAVersionOfTheFile();
    void damagedProgramsHaveNone_data();
    void damagedProgramsHaveNone();
    void theResourcesMayBeTheLastDirectory_data() { addPrograms(); }
    void theResourcesMayBeTheLastDirectory();
    void aSectionThatBeginsAfterTheResourcesDoesNotHoldThem_data() { addPrograms(); }
    void aSectionThatBeginsAfterTheResourcesDoesNotHoldThem();
    void theVersionOfTheFirstNameCounts_data() { addPrograms(); }
    void theVersionOfTheFirstNameCounts();
    void theBlockMayLieInAnotherSection();
    void offsetsBeyondTheSectionAreFollowedWithinTheFile_data() { addPrograms(); }
    void offsetsBeyondTheSectionAreFollowedWithinTheFile();
    void randomBytesHaveNone();
    void randomPlacesStayWithinTheFile_data() { addPrograms(); }
    void randomPlacesStayWithinTheFile();
};

void TestVersionInProgram::versionOfAProgram()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, version);

    QVERIFY(!program.isEmpty());
    QCOMPARE(versionTextIn(program), version);
    QCOMPARE(versionTextIn(program + QByteArray(1000, 'x')), version);
}

void TestVersionInProgram::aProgramWithoutAVersionHasNone_data()
{
    QTest::addColumn<QByteArray>("program");

    QTest::newRow("other resources") << recorded("noversion.dll");
    QTest::newRow("no resources") << recorded("noresources.dll");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("text") << QByteArray("#!/bin/sh\nexit 0\n");
    QTest::newRow("other system's") << QByteArray("\x7f"
                                                  "ELF\x02\x01\x01")
            + QByteArray(500, '\0');
    QTest::newRow("DOS") << QByteArray("MZ") + QByteArray(500, '\0');
    QTest::newRow("zeros") << QByteArray(5000, '\0');
    QTest::newRow("ones") << QByteArray(5000, '\xff');
    QTest::newRow("signature alone") << QByteArray("\xbd\x04\xef\xfe") + QByteArray(48, '\1');
}

void TestVersionInProgram::aProgramWithoutAVersionHasNone()
{
    QFETCH(QByteArray, program);

    QVERIFY(!program.isNull());
    QCOMPARE(versionTextIn(program), none());
}

void TestVersionInProgram::anyVersionIsRead_data()
{
    QTest::addColumn<quint32>("high");
    QTest::addColumn<quint32>("low");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero") << 0u << 0u << none();
    QTest::newRow("greatest") << 0xffffffffu << 0xffffffffu
                              << QStringLiteral("65535.65535.65535.65535");
    QTest::newRow("each half") << 0x00010002u << 0x00030004u << QStringLiteral("1.2.3.4");
    QTest::newRow("sign") << 0x80007fffu << 0x7fff8000u
                          << QStringLiteral("32768.32767.32767.32768");
}

void TestVersionInProgram::anyVersionIsRead()
{
    QFETCH(quint32, high);
    QFETCH(quint32, low);
    QFETCH(QString, expected);

    QByteArray program = recorded("version64.dll");
    put(program, versionOffset(program), high);
    put(program, versionOffset(program) + 4, low);
    QCOMPARE(versionTextIn(program), expected);
}

void TestVersionInProgram::aTruncatedProgramHasItsVersionOrNone()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, version);

    const int end = versionOffset(program) + 8;
    for (int size = 0; size <= program.size(); ++size) {
        const QString read = versionTextIn(program.left(size));
        QVERIFY2(read == (size < end ? none() : version),
                 qPrintable(QStringLiteral("%1 bytes: %2").arg(size).arg(read)));
    }
}

void TestVersionInProgram::aChangedByteLeavesAVersionOfTheFile()
{
    QFETCH(QByteArray, program);

    QRandomGenerator random(2024);
    for (int offset = 0; offset < program.size(); ++offset) {
        const char original = program.at(offset);
        for (const int byte :
             {0, 0xff, 0x80, 0x01, random.bounded(256), random.bounded(256), random.bounded(256)}) {
            program[offset] = static_cast<char>(byte);
            const Formats::ProgramVersion version = versionIn(program);
            QVERIFY2(
                isFrom(program, version),
                qPrintable(
                    QStringLiteral("%1 at %2: %3").arg(byte).arg(offset).arg(textOf(version))));
        }
        program[offset] = original;
    }
}

void TestVersionInProgram::damagedProgramsHaveNone_data()
{
    QTest::addColumn<QByteArray>("program");

    const QByteArray intact = recorded("version64.dll");
    const Layout layout(intact);
    const int kind = layout.versionKind(intact);
    const int names = layout.resources + static_cast<int>(dwordAt(intact, kind + 4) & 0x7fffffff);
    const int languages
        = layout.resources + static_cast<int>(dwordAt(intact, names + 16 + 4) & 0x7fffffff);
    const int place = layout.resources + static_cast<int>(dwordAt(intact, languages + 16 + 4));
    const int directory = layout.header + 24 + 112 + 2 * 8;
    const auto row = [&intact](const char *name, int offset, auto number) {
        QByteArray program = intact;
        put(program, offset, number);
        QTest::newRow(name) << program;
    };
    row("no DOS signature", 0, quint16(0x5a4e));
    row("no program signature", layout.header, quint32(0x4551));
    row("header beyond the end", 0x3c, 0xffffffffu);
    row("header at the end", 0x3c, quint32(intact.size()));
    row("header in the DOS header", 0x3c, 0u);
    row("no sections", layout.header + 6, quint16(0));
    row("sections beyond the end", layout.header + 20, quint16(0xffff));
    row("no resources", directory, 0u);
    row("two directories, none of them the resources'", directory - 2 * 8 - 4, 2u);
    row("resources in no section", directory, 0x7fffffffu);
    row("resources at the greatest address", directory, 0xffffffffu);
    row("empty section", layout.resourceSection + 16, 0u);
    row("section beyond the end", layout.resourceSection + 20, 0xffffff00u);
    row("section at the end", layout.resourceSection + 20, quint32(intact.size()));
    row("no entries", layout.resources + 12, 0u);
    row("other kind", kind, 17u);
    row("named kind", kind, 0x80000010u);
    row("kind that is no directory", kind + 4, dwordAt(intact, kind + 4) & 0x7fffffffu);
    row("names beyond the end", kind + 4, 0xffffffffu);
    row("no names", names + 12, 0u);
    row("name that is no directory", names + 16 + 4, 0x7ffffff0u);
    row("directory in itself", kind + 4, 0x80000000u);
    row("no languages", languages + 12, 0u);
    row("language that is a directory", languages + 16 + 4, 0x80000000u);
    row("language beyond the end", languages + 16 + 4, 0x7fffffffu);
    row("no language", languages + 16 + 4, 0u);
    row("block before the section", place, 1u);
    row("block at the greatest address", place, 0xffffffffu);
    row("block beyond the end", place, dwordAt(intact, place) + 0x10000u);
    row("other signature", versionOffset(intact) - 8, 0xfeef04beu);
    // Every directory claims more entries than fit into it; none is the right one.
    QByteArray crowded = intact;
    put(crowded, layout.resources + 12, 0xffffffffu);
    put(crowded, kind, 17u);
    QTest::newRow("more entries than fit") << crowded;
    QByteArray sections = intact;
    put(sections, layout.header + 6, quint16(0xffff));
    put(sections, directory, 0x7fffffffu);
    QTest::newRow("more sections than fit") << sections;
}

void TestVersionInProgram::damagedProgramsHaveNone()
{
    QFETCH(QByteArray, program);

    QCOMPARE(versionTextIn(program), none());
}

void TestVersionInProgram::theResourcesMayBeTheLastDirectory()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, version);

    const Layout layout(program);
    put(program, layout.directories(program) - 4, 3u);
    QCOMPARE(versionTextIn(program), version);
}

// Not even when the size overflows the address space.
void TestVersionInProgram::aSectionThatBeginsAfterTheResourcesDoesNotHoldThem()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, version);

    const Layout layout(program);
    QVERIFY(layout.sections < layout.resourceSection);
    put(program, layout.sections + 12, 0xfffff000u);
    put(program, layout.sections + 16, 0xffffffffu);
    QCOMPARE(versionTextIn(program), version);
}

// Not the directory with a name before it.
void TestVersionInProgram::theVersionOfTheFirstNameCounts()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, version);

    const Layout layout(program);
    const auto append = [&program, &layout](std::initializer_list<quint32> numbers) {
        const auto offset = static_cast<quint32>(program.size() - layout.resources);
        for (const quint32 number : numbers) {
            program.append(QByteArray(4, '\0'));
            put(program, program.size() - 4, number);
        }
        return offset;
    };
    constexpr quint32 Directory = 0x80000000u;
    constexpr quint32 OneEntry = 0x00010000u;
    constexpr quint32 TwoEntries = 0x00020000u;
    constexpr quint32 English = 0x409;
    // Another version takes the place of what lies in the first section.
    constexpr int BlockSize = 40 + 52;
    const int target = static_cast<int>(dwordAt(program, layout.sections + 20));
    program.replace(target, BlockSize, program.mid(versionOffset(program) - 48, BlockSize));
    put(program, target + 48, 0x00010002u);
    put(program, target + 52, 0x00030004u);
    const quint32 place = append({dwordAt(program, layout.sections + 12), BlockSize, 0, 0});
    const quint32 languages = append({0, 0, 0, OneEntry, English, place});
    const int kind = layout.versionKind(program);
    const quint32 oldNames = dwordAt(program, kind + 4);
    const quint32 oldLanguages
        = dwordAt(program, layout.resources + static_cast<int>(oldNames & ~Directory) + 20);
    const auto setNames = [&](quint32 first, quint32 second) {
        const quint32 names
            = append({0, 0, 0, TwoEntries, first, languages | Directory, second, oldLanguages});
        put(program, kind + 4, names | Directory);
    };
    setNames(2, 1);
    QCOMPARE(versionTextIn(program), version);
    setNames(1, 2); // the other version can be found
    QCOMPARE(versionTextIn(program), QStringLiteral("1.2.3.4"));
}

// Only the directories need to lie with the other resources.
void TestVersionInProgram::theBlockMayLieInAnotherSection()
{
    QByteArray program = recorded("version64.dll");
    const Layout layout(program);
    const int fixed = versionOffset(program) - 8;
    const int block = fixed - 40;
    constexpr int BlockSize = 40 + 52;
    const int target = static_cast<int>(dwordAt(program, layout.sections + 20));
    program.replace(target, BlockSize, program.mid(block, BlockSize));
    put(program, fixed, 0u);
    QCOMPARE(versionTextIn(program), none());

    const auto oldPlace = dwordAt(program, layout.resourceSection + 12)
        + static_cast<quint32>(block - layout.resources);
    QByteArray place(4, '\0');
    put(place, 0, oldPlace);
    const int entry = program.indexOf(place, layout.resources);
    QVERIFY(entry > 0);
    put(program, entry, dwordAt(program, layout.sections + 12));
    QCOMPARE(versionTextIn(program), QStringLiteral("24.0.75.1"));
}

// A size larger than the file is harmless.
void TestVersionInProgram::offsetsBeyondTheSectionAreFollowedWithinTheFile()
{
    QFETCH(QByteArray, program);
    QFETCH(QString, version);

    const Layout layout(program);
    put(program, layout.resourceSection + 16, 0xffffffffu);
    QCOMPARE(versionTextIn(program), version);
    put(program, layout.resources + 12, 0xffffffffu);
    QCOMPARE(versionTextIn(program), version);
    put(program, layout.header + 6, quint16(0xffff));
    QCOMPARE(versionTextIn(program), version);
}

void TestVersionInProgram::randomBytesHaveNone()
{
    QRandomGenerator random(2024);
    for (int run = 0; run < 2000; ++run) {
        QByteArray bytes(random.bounded(600), '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random.bounded(256));
        QCOMPARE(versionTextIn(bytes), none());
        if (bytes.size() < 0x80)
            continue;
        put(bytes, 0, quint16(0x5a4d));
        put(bytes, 0x3c, 0x40u);
        put(bytes, 0x40, 0x4550u);
        QCOMPARE(versionTextIn(bytes), none());
    }
}

// Puts random numbers into the tables of a program.
void TestVersionInProgram::randomPlacesStayWithinTheFile()
{
    QFETCH(QByteArray, program);

    const Layout layout(program);
    QRandomGenerator random(75);
    for (int run = 0; run < 20000; ++run) {
        QByteArray damaged = program;
        for (int change = random.bounded(1, 4); change > 0; --change) {
            const bool inHeader = random.bounded(2) == 0;
            const int start = inHeader ? layout.header : layout.resources;
            const int end = inHeader ? layout.resourceSection + 40 : damaged.size() - 4;
            const quint32 number = random.bounded(2) == 0
                ? random.generate()
                : static_cast<quint32>(random.bounded(program.size())) | (random.generate() << 31);
            put(damaged, random.bounded(start, end), number);
        }
        QVERIFY(isFrom(damaged, versionIn(damaged)));
    }
}

QTEST_GUILESS_MAIN(TestVersionInProgram)

#include "tst_versioninprogram.moc"
