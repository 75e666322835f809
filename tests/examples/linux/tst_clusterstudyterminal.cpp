// A parameter study on a terminal, and what becomes of the processes of its cases.

#include "BuildPaths.h"
#include "Terminal.h"
#include "TestWithStudy.h"

#include <Utility/SevenZip.h>

#include <QtTest/QtTest>

#include <csignal>
#include <sys/file.h>

using Vorn::Util::SevenZip;

namespace {

constexpr int UntilTheNextLook = 100; // milliseconds

// A process that has ended but was not waited for has no command line.
bool isRunning(const QString &numberFile)
{
    const QByteArray number = contentOf(numberFile).trimmed();
    return contentOf(QStringLiteral("/proc/%1/cmdline").arg(QString::fromLatin1(number)))
        .contains("studycase");
}

} // namespace

class TestClusterStudyTerminal : public TestWithStudy
{
    Q_OBJECT

private Q_SLOTS:
    void theProgressIsOneLineAndCtrlCEndsTheStudy();
    void ctrlCWhilePackingDoesNotLoseTheArchive();
    void aClosedTerminalEndsTheStudy();
    void aProgramStartedWithNohupDoesNotEndWithTheTerminal();
    void aReaderThatEndsDoesNotEndTheStudy();
    void aCaseEndsWithTheKilledStudy();
    void processesThatACaseLeavesBehindAreEnded();
    void aChildOfAKilledStudyDoesNotKeepTheOutputFolder();
};

void TestClusterStudyTerminal::theProgressIsOneLineAndCtrlCEndsTheStudy()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    Terminal terminal(site.program(),
                      {text("--jobs"), text("1"), site.path(text("cases.csv")), text("--"),
                       BuildPaths::studyCase(), text("count"), text("running"), text("wait"),
                       text("forever")});
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0001/running"))),
                             StudyTimeLimit);
    const auto isShown = [&] {
        return !terminal.waitForEnd(UntilTheNextLook)
            && terminal.output().contains("\r0 of 2 done, 0 failed, 1 running, time left unknown");
    };
    QTRY_VERIFY_WITH_TIMEOUT(isShown(), StudyTimeLimit);
    QVERIFY(!terminal.output().contains('\n'));
    QVERIFY(terminal.type("\x03")); // Ctrl-C
    QVERIFY(terminal.waitForEnd(StudyTimeLimit));
    QCOMPARE(site.states(), list("cancelled missing"));
    QVERIFY(terminal.output().contains("\r2 cases: 0 ok, 0 failed, 1 cancelled, 1 missing, in "));
}

void TestClusterStudyTerminal::ctrlCWhilePackingDoesNotLoseTheArchive()
{
    NEED_ARCHIVER;
    constexpr int Keys = 2; // while packing
    StudySite site;
    site.writeCases("x\nthere\nlater\n");
    QVERIFY(writeFile(site.path(text("there")), "x"));
    // The first calls for packing do not end by themselves.
    site.wrapArchiver("if [ \"$1\" = a ] && touch ../calls && [ $(wc -l <../calls) -lt "
                      + QByteArray::number(Keys)
                      + " ]; then\n"
                        "    echo half >\"$3\"\n"
                        "    echo call >>../calls\n"
                        "    exec sleep 600\n"
                        "fi\n");
    Terminal terminal(text("/usr/bin/env"),
                      {text("PATH=") + site.environment().value(text("PATH")), site.program(),
                       text("--jobs"), text("1"), site.path(text("cases.csv")), text("--"),
                       BuildPaths::studyCase(), text("count"), text("running"), text("wait"),
                       site.path(text("{x}"))});
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0002/running"))),
                             StudyTimeLimit);
    QVERIFY(terminal.type("\x03")); // Ctrl-C
    const auto isShown = [&] {
        return !terminal.waitForEnd(UntilTheNextLook)
            && terminal.output().contains("\r1 of 2 done, 0 failed, 0 running, packing 1 cases ");
    };
    for (int calls = 1; calls <= Keys; ++calls) {
        QTRY_COMPARE_WITH_TIMEOUT(contentOf(site.path(text("calls"))).count("call"), calls,
                                  StudyTimeLimit);
        QTRY_VERIFY_WITH_TIMEOUT(isShown(), StudyTimeLimit);
        QVERIFY(terminal.type("\x03"));
    }
    QVERIFY(terminal.waitForEnd(StudyTimeLimit));
    QVERIFY2(terminal.output().contains("2 cases: 1 ok, 0 failed, 1 cancelled, 0 missing"),
             terminal.output().constData());
    QCOMPARE(contentOf(site.output(text("study.log"))).count("packing again"), Keys);
    QCOMPARE(entriesOf(site.output()).filter(text(".7z")), list("results.7z"));
    SevenZip archive;
    archive.setArchiveFile(site.output(text("results.7z")));
    QVERIFY(archive.listFiles());
    QVERIFY(archive.files().contains(text("cases/0001/study-output.txt")));
}

void TestClusterStudyTerminal::aClosedTerminalEndsTheStudy()
{
    NEED_ARCHIVER;
    std::signal(SIGHUP, SIG_DFL); // nohup may have started this test
    StudySite site;
    site.writeCases("x\n1\n2\n");
    Terminal terminal(site.program(),
                      {text("--jobs"), text("1"), site.path(text("cases.csv")), text("--"),
                       BuildPaths::studyCase(), text("count"), text("running"), text("wait"),
                       text("forever")});
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0001/running"))),
                             StudyTimeLimit);
    terminal.hangUp();
    QVERIFY(terminal.waitForEnd(StudyTimeLimit));
    QCOMPARE(site.states(), list("cancelled missing"));
    QVERIFY(QFile::exists(site.output(text("results.7z"))));
}

void TestClusterStudyTerminal::aProgramStartedWithNohupDoesNotEndWithTheTerminal()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QString go = site.path(text("go"));
    Terminal terminal(text("/usr/bin/nohup"),
                      {site.program(), site.path(text("cases.csv")), text("--"),
                       BuildPaths::studyCase(), text("count"), text("running"), text("wait"), go});
    QVERIFY(terminal.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0001/running"))),
                             StudyTimeLimit);
    terminal.hangUp();
    QVERIFY(!terminal.waitForEnd(500));
    QVERIFY(writeFile(go, "x"));
    QVERIFY(terminal.waitForEnd(StudyTimeLimit));
    QCOMPARE(site.states(), list("ok"));
}

void TestClusterStudyTerminal::aReaderThatEndsDoesNotEndTheStudy()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n3\n");
    QProcess shell;
    shell.setWorkingDirectory(site.path(QString()));
    shell.start(text("/bin/sh"),
                QStringList{text("-c"), text("\"$@\" | head -n 1"), text("sh"), site.program()}
                    + site.commandLine({text("--jobs"), text("1")}, list("exit 1")));
    QVERIFY(shell.waitForFinished(StudyTimeLimit));
    QCOMPARE(shell.readAllStandardOutput(), QByteArray("Case 1 failed: Exit code 1\n"));
    QCOMPARE(site.states(), list("failed failed failed"));
    QVERIFY(QFile::exists(site.output(text("results.7z"))));
}

void TestClusterStudyTerminal::aCaseEndsWithTheKilledStudy()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QString number = site.path(text("number"));
    site.start(site.commandLine(
        {}, {text("deaf"), text("-"), text("process"), number, text("wait"), text("forever")}));
    QTRY_VERIFY_WITH_TIMEOUT(isRunning(number), StudyTimeLimit);
    site.process().kill();
    QTRY_VERIFY(!isRunning(number));
}

void TestClusterStudyTerminal::processesThatACaseLeavesBehindAreEnded()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QString number = site.path(text("number"));
    QCOMPARE(site.runCases({}, {text("child"), number}), 0);
    QVERIFY(!contentOf(number).isEmpty());
    QTRY_VERIFY(!isRunning(number));
}

// The child of a study that is killed before the child becomes another program holds the lock's
// file open.
void TestClusterStudyTerminal::aChildOfAKilledStudyDoesNotKeepTheOutputFolder()
{
    NEED_ARCHIVER;
    QProcess ended;
    ended.start(text("true"), QStringList());
    const qint64 process = ended.processId();
    QVERIFY(ended.waitForFinished());

    StudySite site;
    site.writeCases("x\n1\n");
    const QString lock = site.output(text("study.lock"));
    QVERIFY(writeFileInFolder(lock,
                              QByteArray::number(process) + "\ncluster-study\n"
                                  + QSysInfo::machineHostName().toLocal8Bit() + '\n'));
    QFile held(lock);
    QVERIFY(held.open(QIODevice::ReadWrite));
    QCOMPARE(flock(held.handle(), LOCK_EX | LOCK_NB), 0);
    QCOMPARE(site.runCases({}, list("print x")), 0);
    QCOMPARE(site.states(), list("ok"));
    QCOMPARE(entriesOf(site.output()).filter(text("lock")), QStringList());
}

QTEST_GUILESS_MAIN(TestClusterStudyTerminal)

#include "tst_clusterstudyterminal.moc"
