// A parameter study with the limits of the system: files that cannot be written completely, as on
// a full disk, and the number of open files.

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
    void theLimitOfOpenFilesDoesNotLimitTheCases();
};

void TestClusterStudyDisk::aStudyThatCannotBeRecordedIsRefused()
{
    NEED_ARCHIVER;
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
    NEED_ARCHIVER;
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
    NEED_ARCHIVER;
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

// Each case waits until all have started. They keep the limit of the user.
void TestClusterStudyDisk::theLimitOfOpenFilesDoesNotLimitTheCases()
{
    NEED_ARCHIVER;
    constexpr int Count = 40;
    const QString script = text("echo files=$(ulimit -Sn) >result.txt; : >started\n"
                                "while [ $(ls -d ../*/started | wc -l) -lt %1 ]; do\n"
                                "    [ $((tries += 1)) -lt 600 ] || exit 1\n"
                                "    sleep 0.1\n"
                                "done");
    StudySite site;
    QByteArray csv = "x\n";
    for (int number = 1; number <= Count; ++number)
        csv += QByteArray::number(number) + '\n';
    site.writeCases(csv);
    QProcess shell;
    shell.setWorkingDirectory(site.path(QString()));
    shell.start(text("sh"),
                {text("-c"), text("ulimit -Sn 64; exec \"$@\""), text("sh"), site.program(),
                 text("--jobs"), QString::number(Count), text("cases.csv"), text("--"), text("sh"),
                 text("-c"), script.arg(Count)});
    QVERIFY(shell.waitForFinished(2 * StudyTimeLimit));
    QVERIFY2(shell.exitCode() == 0, shell.readAllStandardOutput().constData());
    QCOMPARE(site.column(text("files")).count(text("64")), Count);
}

QTEST_GUILESS_MAIN(TestClusterStudyDisk)

#include "tst_clusterstudydisk.moc"
