// A parameter study whose files cannot be written completely, as on a full disk.

#include "FileSizeLimit.h"
#include "TestWithStudy.h"

#include <QtTest/QtTest>

class TestClusterStudyDisk : public TestWithStudy
{
    Q_OBJECT

private Q_SLOTS:
    void aStudyThatCannotBeRecordedIsRefused();
    void aTableThatCannotBeWrittenIsAnErrorAndCanBeResumed();
    void anOlderArchiveRemainsIfPackingFails();
};

void TestClusterStudyDisk::aStudyThatCannotBeRecordedIsRefused()
{
    NEED_STUDY_ARCHIVER;
    constexpr qint64 LessThanTheStudy = 100; // more than the lock needs
    StudySite site;
    site.writeCases("x\n1\n");
    int exitCode = -1;
    {
        const FileSizeLimit limit(LessThanTheStudy);
        exitCode = site.runCases({}, list("print x"));
    }
    QCOMPARE(exitCode, 1);
    QVERIFY2(site.errors().contains(text("study.json cannot be written: ")),
             qPrintable(site.errors()));
    QVERIFY(!QFile::exists(site.output(text("cases"))));
}

void TestClusterStudyDisk::aTableThatCannotBeWrittenIsAnErrorAndCanBeResumed()
{
    NEED_STUDY_ARCHIVER;
    constexpr int Limit = 4096;
    StudySite site;
    site.writeCases("x\n" + QByteArray(Limit, 'x') + "\n2\n");
    const QStringList actions{text("count"), site.path(text("runs-{case}"))};
    int exitCode = -1;
    {
        const FileSizeLimit limit(Limit);
        exitCode = site.runCases({}, actions);
    }
    QCOMPARE(exitCode, 1);
    QVERIFY2(site.errors().contains(text("results.csv cannot be written: ")),
             qPrintable(site.errors()));
    QVERIFY(!QFile::exists(site.output(text("results.csv"))));
    QVERIFY(!QFile::exists(site.output(text("results.7z"))));

    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QCOMPARE(site.states(), list("ok ok"));
    QCOMPARE(contentOf(site.path(text("runs-1"))), QByteArray("run\n"));
}

void TestClusterStudyDisk::anOlderArchiveRemainsIfPackingFails()
{
    NEED_STUDY_ARCHIVER;
    constexpr qint64 Limit = 60000; // less than two cases need in the archive
    StudySite site;
    site.writeCases("x\nthere\nlater\n");
    QVERIFY(writeFile(site.path(text("there")), "x"));
    const QStringList actions{text("noise"), text("4{case}"), text("fail-without"),
                              site.path(text("{x}"))};
    QCOMPARE(site.runCases({}, actions), 2);
    const QByteArray before = contentOf(site.output(text("results.7z")));
    QVERIFY(!before.isEmpty());

    QVERIFY(writeFile(site.path(text("later")), "x"));
    int exitCode = -1;
    {
        const FileSizeLimit limit(Limit);
        exitCode = site.runCases({text("--resume")}, actions);
    }
    QCOMPARE(exitCode, 1);
    QCOMPARE(site.errors(), asError(text("7-Zip could not pack the results")));
    QCOMPARE(site.states(), list("ok ok"));
    QVERIFY(contentOf(site.output(text("results.7z"))) == before);
    QVERIFY(!QFile::exists(site.output(text("results-new.7z"))));

    QCOMPARE(site.runCases({text("--resume")}, actions), 0);
    QVERIFY(contentOf(site.output(text("results.7z"))) != before);
}

QTEST_GUILESS_MAIN(TestClusterStudyDisk)

#include "tst_clusterstudydisk.moc"
