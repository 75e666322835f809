// What a parameter study refuses, before any case runs, and disks that are full.

#include "OwnTempFolder.h"
#include "TestWithStudy.h"

#include <QtTest/QtTest>

class TestClusterStudyRefusals : public TestWithStudy
{
    Q_OBJECT

private Q_SLOTS:
    void aWrongCommandLineIsRefused_data();
    void aWrongCommandLineIsRefused();
    void wrongCasesAreRefusedWithTheLine();
    void anArgumentThatIsNoTextIsRefused_data();
    void anArgumentThatIsNoTextIsRefused();
    void aBatchFileIsRefusedOnWindows_data();
    void aBatchFileIsRefusedOnWindows();
    void anOutputFolderWithContentIsRefused_data();
    void anOutputFolderWithContentIsRefused();
    void anEmptyOutputFolderIsUsed();
    void aFolderWithOnlyALockThatIsStaleIsUsed();
    void withoutATemporaryFolderNothingRuns();
    void aFolderWithoutAStudyIsNotResumed();
    void theLockOfAnotherMachineIsExplained();
    void anotherStudyIsNotResumed_data();
    void anotherStudyIsNotResumed();
    void twoRunsOnOneFolderAreRefused();
    void aStudyWithoutSlurmCanBeResumedWithoutIt();
    void aStudyWithJobsOnTheClusterIsNotResumedWithoutSlurm();
    void aCaseRunsOnlyInItsJob();
    void theHelpNamesOptionsVariablesAndFiles();
};

void TestClusterStudyRefusals::aWrongCommandLineIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const QString &arguments, const char *message) {
        QTest::newRow(name) << arguments.split(QLatin1Char(' ')) << text(message);
    };
    const char *expected = "Expected a file of cases and a program; see --help";
    row("no program", text("cases.csv"), expected);
    row("nothing after --", text("cases.csv --"), expected);
    row("no file", text("missing.csv -- p"), "The file of cases cannot be read: missing.csv");
    row("a folder", text("program -- p"), "The file of cases cannot be read: program");
    row("unknown option", text("--fast cases.csv -- p"), "Unknown option 'fast'.");
    row("unknown parameter", text("cases.csv -- p {x} {y}"), "There is no parameter {y}");
    row("no jobs", text("--jobs 0 cases.csv -- p"),
        "The number of jobs 0 is not valid: use 1 to 1000");
    row("too many jobs", text("--jobs 1001 cases.csv -- p"),
        "The number of jobs 1001 is not valid: use 1 to 1000");
    row("jobs in words", text("--jobs two cases.csv -- p"),
        "The number of jobs two is not valid: use 1 to 1000");
    row("cluster tool without Slurm", text("--cluster-tools . cases.csv -- p"),
        "The option --cluster-tools needs --slurm");
}

void TestClusterStudyRefusals::aWrongCommandLineIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    StudySite site;
    site.writeCases("x\n1\n");
    QCOMPARE(site.run(arguments), 1);
    QCOMPARE(site.errors(), asError(message));
    QCOMPARE(site.printed(), QString());
    QVERIFY(!QFile::exists(site.output()));
}

void TestClusterStudyRefusals::wrongCasesAreRefusedWithTheLine()
{
    StudySite site;
    site.writeCases("x,y\n1,2\n3\n");
    QCOMPARE(site.runCases({}, list("print x")), 1);
    QCOMPARE(site.errors(), asError(text("cases.csv: Line 3: expected 2 values, found 1")));
    QVERIFY(!QFile::exists(site.output()));
}

void TestClusterStudyRefusals::anArgumentThatIsNoTextIsRefused_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("argument") << text("cases.csv -- p a \"$(printf '\\377')\"");
    QTest::newRow("program") << text("cases.csv -- \"$(printf '\\377')\"");
    QTest::newRow("output folder") << text("--output \"$(printf '\\377')\" cases.csv -- p");
}

void TestClusterStudyRefusals::anArgumentThatIsNoTextIsRefused()
{
    if (onWindows())
        QSKIP("Arguments have UTF-16 here");
    QFETCH(QString, arguments);
    StudySite site;
    site.writeCases("x\n1\n");
    QProcess shell;
    shell.setWorkingDirectory(site.path(QString()));
    shell.start(text("sh"), {text("-c"), text("exec \"$0\" ") + arguments, site.program()});
    QVERIFY(shell.waitForFinished(StudyTimeLimit));
    QCOMPARE(shell.exitCode(), 1);
    const QByteArray message = "cluster-study: The encoding of the system cannot hold this "
                               "argument; set LC_ALL to one that can, such as C.UTF-8: ";
    QVERIFY(shell.readAllStandardError().startsWith(message));
    QCOMPARE(entriesOf(site.path(QString())), list("cases.csv program"));
}

void TestClusterStudyRefusals::aBatchFileIsRefusedOnWindows_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<bool>("isRefused");
    QTest::newRow("bat") << text("tool.bat") << true;
    QTest::newRow("in a folder, with capitals") << text("./tool.BAT") << true;
    QTest::newRow("cmd") << text("TOOL.Cmd") << true;
    QTest::newRow("with an ending that the system ignores") << text("tool.bat. .") << true;
    QTest::newRow("not found without its suffix") << text("./tool") << false;
    QTest::newRow("in the middle") << text("tool.bat.exe") << false;
}

void TestClusterStudyRefusals::aBatchFileIsRefusedOnWindows()
{
    NEED_ARCHIVER;
    QFETCH(QString, program);
    QFETCH(bool, isRefused);
    StudySite site;
    site.writeCases("x\n1\n");
    QVERIFY(writeFile(site.path(text("tool.bat")), "echo started >started.txt\r\n"));
    const int exitCode = site.run({text("cases.csv"), text("--"), program, text("{x}")});
    if (onWindows() && isRefused) {
        QCOMPARE(exitCode, 1);
        QCOMPARE(site.errors(),
                 asError(text("The command interpreter of Windows would read the values of "
                              "parameters as commands: use a program instead of the batch file ")
                         + program));
        QVERIFY(!QFile::exists(site.output()));
    } else {
        QCOMPARE(exitCode, 2);
        QVERIFY2(site.printed().contains(text("Case 1 failed: Cannot be started: ")),
                 qPrintable(site.printed()));
    }
}

void TestClusterStudyRefusals::anOutputFolderWithContentIsRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("message");
    QTest::newRow("a study") << text("study.json")
                             << text("The output folder contains a study: use --resume to continue "
                                     "it, or another --output: ");
    QTest::newRow("other files") << text("mine.txt")
                                 << text("The output folder is not empty: use another --output, or "
                                         "remove its files: ");
    QTest::newRow("a hidden file") << text(".mine")
                                   << text("The output folder is not empty: use another --output, "
                                           "or remove its files: ");
}

void TestClusterStudyRefusals::anOutputFolderWithContentIsRefused()
{
    NEED_ARCHIVER;
    QFETCH(QString, file);
    QFETCH(QString, message);
    StudySite site;
    site.writeCases("x\n1\n");
    QVERIFY(writeFileInFolder(site.output(file), "x"));
    const Tree before = readTree(site.output());
    QCOMPARE(site.runCases({}, list("print x")), 1);
    QVERIFY2(site.errors().contains(message), qPrintable(site.errors()));
    QCOMPARE(readTree(site.output()), before);
    QCOMPARE(site.runCases({text("--output"), site.path(text("deep/other"))}, list("print x")), 0);
    QVERIFY(QFile::exists(site.path(text("deep/other/results.7z"))));
}

void TestClusterStudyRefusals::anEmptyOutputFolderIsUsed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    QVERIFY(QDir().mkpath(site.output()));
    QCOMPARE(site.runCases({}, list("print x")), 0);
    QCOMPARE(site.errors(), QString());
    QCOMPARE(site.states(), list("ok"));
}

void TestClusterStudyRefusals::aFolderWithOnlyALockThatIsStaleIsUsed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    site.start(site.commandLine({}, list("count running wait forever")));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0001/running"))),
                             StudyTimeLimit);
    site.process().kill();
    QVERIFY(site.process().waitForFinished(StudyTimeLimit)
            || site.process().state() == QProcess::NotRunning);
    QTRY_VERIFY(QDir(site.output(text("cases"))).removeRecursively());
    QVERIFY(QFile::remove(site.output(text("study.json"))));
    QVERIFY(QFile::remove(site.output(text("study.log"))));
    QCOMPARE(entriesOf(site.output()), list("study.lock"));
    QCOMPARE(site.runCases({}, list("print x")), 0);
    QCOMPARE(site.states(), list("ok"));
}

void TestClusterStudyRefusals::withoutATemporaryFolderNothingRuns()
{
    StudySite site;
    site.writeCases("x\n1\n");
    const QString temp = QDir::toNativeSeparators(site.path(text("file")));
    QVERIFY(writeFile(temp, "no folder"));
    for (const char *variable : TempVariables)
        site.environment().insert(text(variable), temp);
    QCOMPARE(site.runCases({}, list("print x")), 1);
    QCOMPARE(site.errors(), asError(text("A temporary folder cannot be made in ") + temp));
    QVERIFY(!QFile::exists(site.output()));
}

void TestClusterStudyRefusals::aFolderWithoutAStudyIsNotResumed()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QString message = text("There is no study to resume, start it without --resume: ");
    QCOMPARE(site.runCases({text("--resume")}, list("print x")), 1);
    QVERIFY(site.errors().contains(message));
    QVERIFY(!QFile::exists(site.output()));
    QVERIFY(writeFileInFolder(site.output(text("mine.txt")), "x"));
    QCOMPARE(site.runCases({text("--resume")}, list("print x")), 1);
    QVERIFY(site.errors().contains(message));
    QCOMPARE(entriesOf(site.output()), list("mine.txt"));
}

void TestClusterStudyRefusals::theLockOfAnotherMachineIsExplained()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QString lock = site.output(text("study.lock"));
    QVERIFY(writeFileInFolder(lock, "4711\ncluster-study\nelsewhere\n"));
    QCOMPARE(site.runCases({}, list("print x")), 1);
    QVERIFY2(site.errors().startsWith(text("cluster-study: Another run uses the output folder: "
                                           "process 4711 on elsewhere. If it has ended, remove ")),
             qPrintable(site.errors()));
    QVERIFY(site.errors().endsWith(QDir::toNativeSeparators(text("/cases-results/study.lock\n"))));
    QVERIFY(QFile::remove(lock));
    QCOMPARE(site.runCases({}, list("print x")), 0);
}

void TestClusterStudyRefusals::anotherStudyIsNotResumed_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("actions");
    QTest::addColumn<bool>("isSame");
    QTest::newRow("same") << QByteArray("x\n1\n2\n") << text("print {x}") << true;
    QTest::newRow("same in other bytes")
        << QByteArray("\"x\"\r\n\r\n1\r\n2") << text("print {x}") << true;
    QTest::newRow("other value") << QByteArray("x\n1\n3\n") << text("print {x}") << false;
    QTest::newRow("other name") << QByteArray("X\n1\n2\n") << text("print {X}") << false;
    QTest::newRow("more cases") << QByteArray("x\n1\n2\n3\n") << text("print {x}") << false;
    QTest::newRow("other arguments") << QByteArray("x\n1\n2\n") << text("print {case}") << false;
}

void TestClusterStudyRefusals::anotherStudyIsNotResumed()
{
    NEED_ARCHIVER;
    QFETCH(QByteArray, csv);
    QFETCH(QString, actions);
    QFETCH(bool, isSame);
    StudySite site;
    site.writeCases("x\n1\n2\n");
    QCOMPARE(site.runCases({}, list("print {x}")), 0);
    const Tree before = readTree(site.output());
    site.writeCases(csv);
    QCOMPARE(site.runCases({text("--resume")}, actions.split(QLatin1Char(' '))), isSame ? 0 : 1);
    if (isSame)
        return;
    QVERIFY(
        site.errors().contains(text("The cases or the command are not those of the study in ")));
    QCOMPARE(readTree(site.output()), before);
}

void TestClusterStudyRefusals::twoRunsOnOneFolderAreRefused()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    const QStringList actions{text("count"), text("running"), text("wait"),
                              site.path(text("later"))};
    site.start(site.commandLine({}, actions));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(site.output(text("cases/0001/running"))),
                             StudyTimeLimit);
    QProcess second;
    second.setWorkingDirectory(site.path(QString()));
    second.start(site.program(), site.commandLine({text("--resume")}, actions));
    QVERIFY(second.waitForFinished(StudyTimeLimit));
    QCOMPARE(second.exitCode(), 1);
    QVERIFY(second.readAllStandardError().contains("Another run uses the output folder: "));
    QVERIFY(writeFile(site.path(text("later")), "x"));
    QCOMPARE(site.finish(), 0);
    QCOMPARE(site.states(), list("ok"));
}

void TestClusterStudyRefusals::aStudyWithoutSlurmCanBeResumedWithoutIt()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n2\n");
    // Slurm is either not installed, or fails without its configuration.
    site.environment().insert(text("SLURM_CONF"), site.path(text("missing.conf")));
    QCOMPARE(site.runCases({text("--slurm")}, list("print {x}")), 1);
    QVERIFY2(site.errors().startsWith(text("cluster-study: scontrol ")), qPrintable(site.errors()));
    QCOMPARE(site.states(), list("missing missing"));
    QVERIFY(!QFile::exists(site.output(text("slurm"))));
    QCOMPARE(site.runCases({text("--resume")}, list("print {x}")), 0);
    QCOMPARE(site.states(), list("ok ok"));
}

void TestClusterStudyRefusals::aStudyWithJobsOnTheClusterIsNotResumedWithoutSlurm()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    QCOMPARE(site.runCases({}, list("exit 1")), 2);
    QVERIFY(QDir().mkpath(site.output(text("slurm"))));
    QCOMPARE(site.runCases({text("--resume")}, list("exit 1")), 1);
    QCOMPARE(site.errors(),
             asError(text("Jobs of this study may still run on the cluster: use --slurm to end "
                          "them")));
}

void TestClusterStudyRefusals::aCaseRunsOnlyInItsJob()
{
    NEED_ARCHIVER;
    StudySite site;
    site.writeCases("x\n1\n");
    QCOMPARE(site.run({text("--run-case")}), 1);
    QCOMPARE(site.errors(), asError(text("--run-case is only for jobs of a study")));

    QCOMPARE(site.runCases({}, list("exit 0")), 0);
    site.environment().insert(text("CLUSTER_STUDY_FOLDER"), site.output());
    site.environment().insert(text("SLURM_ARRAY_TASK_ID"), text("1"));
    QCOMPARE(site.run({text("--run-case")}), 1);
    QCOMPARE(site.errors(), asError(text("Case 1: its command cannot be read")));
}

void TestClusterStudyRefusals::theHelpNamesOptionsVariablesAndFiles()
{
    StudySite site;
    QCOMPARE(site.run({text("--help")}), 0);
    for (const char *option :
         {"--jobs", "--resume", "--output", "--slurm", "--cluster-tools", "STUDY_NAME", "exit_code",
          "result.txt", "study-output.txt", "study-errors.txt", "cases/0001.json"})
        QVERIFY2(site.printed().contains(text(option)), option);
}

QTEST_GUILESS_MAIN(TestClusterStudyRefusals)

#include "tst_clusterstudyrefusals.moc"
