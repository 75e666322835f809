// The versions of program files.

#include "BuildPaths.h"
#include "TestMessages.h"
#include "TestSystem.h"
#include "TestWithEntries.h"

#include <Utility/System.h>
#include <Utility/Version.h>

#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QString recorded(const char *name)
{
    return BuildPaths::testData(QStringLiteral("programs/")) + QString::fromLatin1(name);
}

} // namespace

class TestSystemFileVersion : public TestWithEntries
{
    Q_OBJECT

private Q_SLOTS:
    void versionOfTheLibrary();
    void versionOfAProgram_data();
    void versionOfAProgram();
    void aFileWithoutAVersion_data();
    void aFileWithoutAVersion();
    void theVersionIsPrinted_data();
    void theVersionIsPrinted();
};

void TestSystemFileVersion::versionOfTheLibrary()
{
    // Only programs for Windows have a version block.
    const QString number = QString::number(Version::Hotfix);
    const QString expected = onWindows() ? Version::Current.toString() + QLatin1Char('.') + number
                                         : QStringLiteral("0.0.0.0");
    const QString library = BuildPaths::library();
    QVERIFY(QFile::exists(library));
    QCOMPARE(System::getFileVersion(library), expected);
    QCOMPARE(System::getFileVersion(QDir::toNativeSeparators(library)), expected);
}

void TestSystemFileVersion::versionOfAProgram_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("version");

    QTest::newRow("64 bit") << recorded("version64.dll") << QStringLiteral("24.0.75.1");
    QTest::newRow("32 bit") << recorded("version32.dll") << QStringLiteral("65535.65534.32768.1");
}

void TestSystemFileVersion::versionOfAProgram()
{
    QFETCH(QString, file);
    QFETCH(QString, version);

    QVERIFY(QFile::exists(file));
    QCOMPARE(System::getFileVersion(file), version);
    QVERIFY(QFile::copy(file,
                        path("Gr\xC3\xB6\xC3\x9F"
                             "e %1.txt")));
    QCOMPARE(System::getFileVersion(path("Gr\xC3\xB6\xC3\x9F"
                                         "e %1.txt")),
             version);
}

void TestSystemFileVersion::aFileWithoutAVersion_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("program with other resources") << recorded("noversion.dll");
    QTest::newRow("program without resources") << recorded("noresources.dll");
    QTest::newRow("text") << QStringLiteral("text.exe");
    QTest::newRow("nothing in it") << QStringLiteral("empty.exe");
    QTest::newRow("missing") << QStringLiteral("missing.exe");
    QTest::newRow("in a missing folder") << QStringLiteral("missing/missing.exe");
    QTest::newRow("folder") << QStringLiteral(".");
    QTest::newRow("empty path") << QString();
    QTest::newRow("longer than any path") << QString(5000, QLatin1Char('x'));
}

void TestSystemFileVersion::aFileWithoutAVersion()
{
    QFETCH(QString, file);

    QVERIFY(makeFile("text.exe", "MZ is how programs begin"));
    QVERIFY(makeFile("empty.exe", ""));
    const TestMessages messages;
    QCOMPARE(System::getFileVersion(file), QStringLiteral("0.0.0.0"));
    QCOMPARE(messages.lines(), QStringList());
}

void TestSystemFileVersion::theVersionIsPrinted_data()
{
    QTest::addColumn<QString>("before"); // a call that prints
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("printed");

    const QByteArray other = "Higher: fffffffe\nLower: 80000001\nVersion: 65535.65534.32768.1\n";
    const QByteArray none = "Higher: 0\nLower: 0\nVersion: 0.0.0.0\n";
    const auto row
        = [](const char *name, const QString &before, const QString &file,
             const QByteArray &printed) { QTest::newRow(name) << before << file << printed; };
    const QByteArray version = "Higher: 180000\nLower: 4b0001\nVersion: 24.0.75.1\n";
    row("alone", QString(), recorded("version64.dll"), version);
    row("other", QString(), recorded("version32.dll"), other);
    row("none", QString(), QStringLiteral("missing.exe"), none);
    row("after text", QStringLiteral("printNarrow=a b"), recorded("version64.dll"),
        "a b\n" + version);
    row("after wide text", QStringLiteral("printWide=a b"), recorded("version64.dll"),
        "a b\n" + version);
}

void TestSystemFileVersion::theVersionIsPrinted()
{
    QFETCH(QString, before);
    QFETCH(QString, file);
    QFETCH(QByteArray, printed);

    QStringList arguments{QStringLiteral("system")};
    QByteArray after;
    if (!before.isEmpty()) {
        arguments += before;
        after = "a b\n";
    }
    arguments += QStringLiteral("getFileVersion=") + file;
    if (!before.isEmpty())
        arguments += before;
    QProcess process;
    process.start(BuildPaths::helperProgram(), arguments);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QByteArray output = process.readAllStandardOutput();
    if (onWindows())
        output.replace("\r\n", "\n");
    const QByteArray result = printed.mid(printed.lastIndexOf(' ') + 1);
    QCOMPARE(output, printed + '=' + result + after);
}

QTEST_GUILESS_MAIN(TestSystemFileVersion)

#include "tst_systemfileversion.moc"
