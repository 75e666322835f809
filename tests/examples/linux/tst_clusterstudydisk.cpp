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

QTEST_GUILESS_MAIN(TestClusterStudyDisk)

#include "tst_clusterstudydisk.moc"
