// A parameter study on a terminal.

#include "Terminal.h"
#include "TestWithStudy.h"

#include <QtTest/QtTest>

class TestClusterStudyTerminal : public TestWithStudy
{
    Q_OBJECT

private Q_SLOTS:
    void theProgressIsOneLineAndCtrlCEndsTheStudy();
};

void TestClusterStudyTerminal::theProgressIsOneLineAndCtrlCEndsTheStudy()
{
    NEED_STUDY_ARCHIVER;
    constexpr int UntilTheLineIsThere = 500; // milliseconds
    StudySite site;
    site.writeCases("x\n1\n2\n");
    Terminal terminal(site.program(),
                      {text("--jobs"), text("1"), site.path(text("cases.csv")), text("--"),
                       builtProgram(STUDY_CASE), text("count"), text("running"), text("wait"),
                       text("forever")});
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0001/running"))),
                             StudyTimeLimit);
    QVERIFY(!terminal.waitForEnd(UntilTheLineIsThere));
    QVERIFY(terminal.output().contains("\r0 of 2 done, 0 failed, 1 running, time left unknown"));
    QVERIFY(!terminal.output().contains('\n'));
    QVERIFY(terminal.type("\x03")); // Ctrl-C
    QVERIFY(terminal.waitForEnd(StudyTimeLimit));
    QCOMPARE(site.states(), list("cancelled missing"));
    QVERIFY(terminal.output().contains("\r2 cases: 0 ok, 0 failed, 1 cancelled, 1 missing, in "));
}

QTEST_GUILESS_MAIN(TestClusterStudyTerminal)

#include "tst_clusterstudyterminal.moc"
