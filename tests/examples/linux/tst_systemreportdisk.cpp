// A system report that cannot be written completely, as on a full disk.

#include "BuildPaths.h"
#include "FileSizeLimit.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <QtCore/QProcess>
#include <QtTest/QtTest>

class TestSystemReportDisk : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void anOlderPageStaysIfTheNewOneDoesNotFit_data();
    void anOlderPageStaysIfTheNewOneDoesNotFit();
    void aTextThatCannotBePrintedIsAnError();

private:
    static void run(QProcess &process, const QStringList &arguments)
    {
        process.start(BuildPaths::systemReport(),
                      QStringList{QStringLiteral("--seconds"), QStringLiteral("1")} + arguments);
        process.waitForFinished();
    }
};

void TestSystemReportDisk::anOlderPageStaysIfTheNewOneDoesNotFit_data()
{
    QTest::addColumn<int>("limit"); // bytes; the page has more than 12 KiB
    QTest::newRow("nothing fits") << 0;
    QTest::newRow("a part fits") << 10000;
}

void TestSystemReportDisk::anOlderPageStaysIfTheNewOneDoesNotFit()
{
    QFETCH(int, limit);

    QVERIFY(writeFile(path("page.html"), "older"));
    QProcess process;
    {
        const FileSizeLimit fullDisk(limit);
        run(process, {QStringLiteral("--html"), path("page.html")});
    }
    QCOMPARE(process.exitCode(), 1);
    const QByteArray errors = process.readAllStandardError();
    QVERIFY2(errors.startsWith("system-report: The page cannot be written: "), errors.constData());
    QCOMPARE(contentOf(path("page.html")), QByteArray("older"));
    QCOMPARE(entriesOf(testFolder()), QStringList(QStringLiteral("page.html")));
}

void TestSystemReportDisk::aTextThatCannotBePrintedIsAnError()
{
    QProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    run(process, {});
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("system-report: The report cannot be printed\n"));
}

QTEST_GUILESS_MAIN(TestSystemReportDisk)
#include "tst_systemreportdisk.moc"
