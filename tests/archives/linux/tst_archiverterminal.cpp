// The archiver of a program that a user has started on a terminal.

#include "BuildPaths.h"
#include "Terminal.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/SevenZip.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

constexpr int TimeLimit = 20000; // milliseconds; the programs wait for ever when they wait

// What the helper printed as its last line; invalid when that is no report.
QJsonObject reportIn(const QByteArray &output)
{
    const QList<QByteArray> lines = output.trimmed().split('\n');
    return QJsonDocument::fromJson(lines.last()).object();
}

} // namespace

class TestArchiverTerminal : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;

    void anArchiverThatAsksOnTheTerminalGetsNoAnswer_data();
    void anArchiverThatAsksOnTheTerminalGetsNoAnswer();
    void ctrlCReachesTheArchiver();
    void p7zipDoesNotAskForAPassword_data();
    void p7zipDoesNotAskForAPassword();
    void p7zipReadsAnArchiveThatIsNotEncrypted_data();
    void p7zipReadsAnArchiveThatIsNotEncrypted();

private:
    // A shell script in the place of the archiver.
    bool writeArchiver(const QByteArray &script) const
    {
        const QString program = path(QStringLiteral("bin/7z"));
        return QDir().mkpath(path(QStringLiteral("bin")))
            && writeFile(program, "#!/bin/sh\n" + script)
            && QFile::setPermissions(program,
                                     QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QStringList call(const QString &folder, const QString &operation) const
    {
        const QString name = operation == QLatin1String("extract") ? QStringLiteral("out")
                                                                   : QStringLiteral("a.txt");
        return {QStringLiteral("sevenzip-run"), folder, operation,
                path(QStringLiteral("archive.bin")), path(name)};
    }
};

void TestArchiverTerminal::init()
{
    TestWithFolder::init();
    QVERIFY(writeFile(path(QStringLiteral("a.txt")), "secret text\n"));
}

void TestArchiverTerminal::anArchiverThatAsksOnTheTerminalGetsNoAnswer_data()
{
    QTest::addColumn<QString>("operation");
    for (const char *operation : {"compress", "extract", "list"})
        QTest::newRow(operation) << QString::fromLatin1(operation);
}

void TestArchiverTerminal::anArchiverThatAsksOnTheTerminalGetsNoAnswer()
{
    QFETCH(QString, operation);
    QVERIFY(writeArchiver("read -r answer < /dev/tty || exit 2\n"));
    Terminal terminal(BuildPaths::helperProgram(), call(path(QStringLiteral("bin")), operation));
    QVERIFY(terminal.isStarted());
    QVERIFY2(terminal.waitForEnd(TimeLimit), "The archiver waits for an answer.");
    const QJsonObject report = reportIn(terminal.output());
    QVERIFY2(!report.isEmpty(), terminal.output().constData());
    QCOMPARE(report.value(QStringLiteral("result")).toBool(true), false);
    QCOMPARE(report.value(QStringLiteral("error")).toInt(), int(SevenZip::FatalError));
}

void TestArchiverTerminal::ctrlCReachesTheArchiver()
{
    const QString started = path(QStringLiteral("started"));
    const QString interrupted = path(QStringLiteral("interrupted"));
    QVERIFY(writeArchiver("trap '' HUP\ntrap ': > \"" + QFile::encodeName(interrupted)
                          + "\"; exit 255' INT\n: > \"" + QFile::encodeName(started)
                          + "\"\nfor i in $(/usr/bin/seq 1000); do /bin/sleep 0.02; done\n"));
    Terminal terminal(BuildPaths::helperProgram(),
                      call(path(QStringLiteral("bin")), QStringLiteral("extract")));
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(started), TimeLimit);
    QVERIFY(terminal.type("\x03"));
    QVERIFY(terminal.waitForEnd(TimeLimit));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(interrupted), TimeLimit);
}

namespace {

// The folder of the program; empty when there is none to test with.
QString p7zip()
{
    const QString archivers = qEnvironmentVariable("VORNUTILITY_ARCHIVERS");
    return archivers.isEmpty() ? QString() : archivers + QStringLiteral("/p7zip-16.02");
}

constexpr char NoP7zip[]
    = "The variable VORNUTILITY_ARCHIVERS names no folder; scripts/test.sh sets it";

} // namespace

void TestArchiverTerminal::p7zipDoesNotAskForAPassword_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("operation");
    const auto row = [](const char *archive, const char *operation) {
        QTest::addRow("%s, %s", operation, archive)
            << QString::fromLatin1(archive) << QString::fromLatin1(operation);
    };
    row("encrypted.7z", "compress"); // packs one of two files again
    row("encrypted.7z", "extract");
    row("encrypted-names.7z", "compress");
    row("encrypted-names.7z", "extract");
    row("encrypted-names.7z", "list");
    row("encrypted.zip", "extract");
}

void TestArchiverTerminal::p7zipDoesNotAskForAPassword()
{
    if (p7zip().isEmpty())
        QSKIP(NoP7zip);
    QFETCH(QString, archive);
    QFETCH(QString, operation);
    const QString copy = path(QStringLiteral("archive.bin"));
    QVERIFY(QFile::copy(BuildPaths::testData(QStringLiteral("archives/") + archive), copy));
    const QByteArray before = contentOf(copy);
    Terminal terminal(BuildPaths::helperProgram(), call(p7zip(), operation));
    QVERIFY(terminal.isStarted());
    QVERIFY2(terminal.waitForEnd(TimeLimit), "The archiver waits for an answer.");
    const QJsonObject report = reportIn(terminal.output());
    QVERIFY2(!report.isEmpty(), terminal.output().constData());
    QCOMPARE(report.value(QStringLiteral("result")).toBool(true), false);
    QCOMPARE(report.value(QStringLiteral("error")).toInt(), int(SevenZip::FatalError));
    QCOMPARE(contentOf(copy), before);
}

void TestArchiverTerminal::p7zipReadsAnArchiveThatIsNotEncrypted_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("operation");
    QTest::newRow("compress") << QStringLiteral("plain.7z") << QStringLiteral("compress");
    QTest::newRow("extract") << QStringLiteral("plain.7z") << QStringLiteral("extract");
    QTest::newRow("list") << QStringLiteral("plain.7z") << QStringLiteral("list");
    QTest::newRow("list of encrypted files")
        << QStringLiteral("encrypted.7z") << QStringLiteral("list");
    QTest::newRow("list of encrypted files, zip")
        << QStringLiteral("encrypted.zip") << QStringLiteral("list");
}

void TestArchiverTerminal::p7zipReadsAnArchiveThatIsNotEncrypted()
{
    if (p7zip().isEmpty())
        QSKIP(NoP7zip);
    QFETCH(QString, archive);
    QFETCH(QString, operation);
    QVERIFY(QFile::copy(BuildPaths::testData(QStringLiteral("archives/") + archive),
                        path(QStringLiteral("archive.bin"))));
    Terminal terminal(BuildPaths::helperProgram(), call(p7zip(), operation));
    QVERIFY(terminal.isStarted());
    QVERIFY(terminal.waitForEnd(TimeLimit));
    const QJsonObject report = reportIn(terminal.output());
    QVERIFY2(!report.isEmpty(), terminal.output().constData());
    QCOMPARE(report.value(QStringLiteral("result")).toBool(false), true);
    const QJsonArray files = operation == QLatin1String("compress")
        ? QJsonArray{path(QStringLiteral("a.txt"))}
        : QJsonArray{QStringLiteral("a.txt"), QStringLiteral("b.txt")};
    QCOMPARE(report.value(QStringLiteral("files")).toArray(), files);
    if (operation == QLatin1String("extract"))
        QCOMPARE(contentOf(path(QStringLiteral("out/a.txt"))), QByteArray("secret text\n"));
}

QTEST_GUILESS_MAIN(TestArchiverTerminal)

#include "tst_archiverterminal.moc"
