#include "BuildPaths.h"
#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/Command.h>
#include <Utility/Log.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <limits>

using namespace Vorn::Util;

namespace {

constexpr int LongestWait = 30000; // milliseconds, for programs that nobody waits for

QString scriptName()
{
    return QStringLiteral("work.bat");
}

// A line of a script that runs the helper program. cmd.exe prints the lines that it runs unless
// told not to.
QString helperCall(const QString &arguments)
{
    const QString call = QStringLiteral("\"%1\" %2")
                             .arg(QDir::toNativeSeparators(BuildPaths::helperProgram()), arguments);
    return onWindows() ? QLatin1Char('@') + call : call;
}

QString printCall(const QByteArray &bytes)
{
    return helperCall(QStringLiteral("print ") + QString::fromLatin1(bytes.toHex()));
}

QString printLinesCall(int count)
{
    return helperCall(QStringLiteral("print-lines %1").arg(count));
}

// The command line that makes the interpreter run the script \a fileName in the current folder.
QString scriptCall(const QString &fileName)
{
    return onWindows() ? fileName : QStringLiteral(". ./") + fileName;
}

QString commandLine()
{
    return onWindows() ? QStringLiteral("Command:cmd.exe /C work.bat")
                       : QStringLiteral("Command:/bin/sh work.bat");
}

} // namespace

class TestCommand : public TestInFolder
{
    Q_OBJECT

private Q_SLOTS:
    void runReturnsTheOutputAsRead();
    void runLReturnsEachLineWithItsEnd();
    void theLastLineNeedsNoEnd();
    void aSilentCommandGivesOneEmptyLine();
    void anEmptyCommandRuns();
    void atMostTwoLinesMoreThanAskedForAreReturned_data();
    void atMostTwoLinesMoreThanAskedForAreReturned();
    void aLongLineComesInPiecesOf199Bytes();
    void aPieceHolds199Bytes_data();
    void aPieceHolds199Bytes();
    void eachPieceCountsAsALine();
    void theOutputIsReadAsUtf8();
    void eachPieceIsDecodedByItself();
    void aLineEndsAtItsFirstNullByte();
    void standardErrorIsNotReturned();
    void moreIsReadThanAPipeHolds();
    void theExitCodeDoesNotChangeTheOutput();
    void aCommandThatCannotBeRunPrintsNothing();

    void runQReturnsTheExitCode_data();
    void runQReturnsTheExitCode();
    void runQWaitsForTheCommand();
    void runQLogsNothing();

    void theScriptIsTheCommandInLatin1();
    void otherCharactersAreReplacedBeforeTheCommandRuns();
    void theScriptRunsInTheCurrentFolder();
    void aProgramNamedAsTheInterpreterIsNotRun();
    void theScriptInheritsTheEnvironment();
    void anExistingScriptIsReplaced_data();
    void anExistingScriptIsReplaced();
    void aLinkInThePlaceOfTheScriptIsNotFollowed();
    void noScriptIsLeft_data();
    void noScriptIsLeft();
    void withoutItsScriptACommandIsNotRun();
    void aScriptThatCannotBeDeletedIsOverwritten();

    void theCallAndEachTrimmedLineAreLogged();
    void theLinesOfRunLAreLoggedToo();
    void eachPieceIsLogged();
    void onlyReturnedLinesAreLogged();
    void nothingIsLoggedUnlessAsked();
    void nothingIsLoggedWithoutALog();
    void theLogOutlivesTheCommand();
    void aCopyUsesTheSameLog();

    void runNoWaitRunsInTheCurrentFolder();
    void runNoWaitRunsInTheGivenFolder();
    void runNoWaitDoesNotWait();
    void runNoWaitDoesNotHoldUpACommandThatPrints();
    void runNoWaitWritesNoScript();
    void runNoWaitLogsTheCommand();
    void runNoWaitLogsNothingUnlessAsked();
    void runNoWaitReturnsZeroWhenNothingIsStarted();
};

void TestCommand::runReturnsTheOutputAsRead()
{
    const QString output = QStringLiteral("  first \t\r\n\r\nsecond\nthird\r\n");
    QCOMPARE(Command().run(printCall(output.toUtf8()), 100, false), output);
}

void TestCommand::runLReturnsEachLineWithItsEnd()
{
    const QStringList lines{QStringLiteral("  first \t\r\n"), QStringLiteral("\r\n"),
                            QStringLiteral("second\n"), QStringLiteral("third\r\n")};
    QCOMPARE(Command().runL(printCall(lines.join(QString()).toUtf8()), 100, false), lines);
}

void TestCommand::theLastLineNeedsNoEnd()
{
    const QStringList lines{QStringLiteral("first\r\n"), QStringLiteral("second")};
    QCOMPARE(Command().runL(printCall("first\r\nsecond"), 100, false), lines);
    QCOMPARE(Command().run(printCall("first\r\nsecond"), 100, false), lines.join(QString()));
}

// Nothing can be read, which counts as a line without text.
void TestCommand::aSilentCommandGivesOneEmptyLine()
{
    const QString silent = helperCall(QStringLiteral("exit 0"));
    QCOMPARE(Command().run(silent, 100, false), QString());
    QCOMPARE(Command().runL(silent, 100, false), QStringList{QString()});
}

void TestCommand::anEmptyCommandRuns()
{
    QCOMPARE(Command().run(QString(), 100, false), QString());
    QCOMPARE(Command().runL(QString(), 100, false), QStringList{QString()});
    QCOMPARE(Command().runQ(QString()), 0);
    QVERIFY(!QFile::exists(scriptName()));
}

void TestCommand::atMostTwoLinesMoreThanAskedForAreReturned_data()
{
    QTest::addColumn<int>("maxLines");
    QTest::addColumn<int>("returned");

    QTest::newRow("the least") << std::numeric_limits<int>::min() << 1;
    QTest::newRow("-2") << -2 << 1;
    QTest::newRow("-1") << -1 << 1;
    QTest::newRow("0") << 0 << 2;
    QTest::newRow("1") << 1 << 3;
    QTest::newRow("2") << 2 << 4;
    QTest::newRow("one line is lost") << 7 << 9;
    QTest::newRow("exactly all") << 8 << 10;
    QTest::newRow("as many as there are") << 10 << 10;
    QTest::newRow("many") << 1000 << 10;
    QTest::newRow("the most") << std::numeric_limits<int>::max() << 10;
}

void TestCommand::atMostTwoLinesMoreThanAskedForAreReturned()
{
    QFETCH(int, maxLines);
    QFETCH(int, returned);

    QStringList lines;
    for (int number = 1; number <= returned; ++number)
        lines += QStringLiteral("line %1\r\n").arg(number);
    QCOMPARE(Command().runL(printLinesCall(10), maxLines, false), lines);
    QCOMPARE(Command().run(printLinesCall(10), maxLines, false), lines.join(QString()));
}

void TestCommand::aLongLineComesInPiecesOf199Bytes()
{
    QByteArray line;
    for (int column = 0; column < 450; ++column)
        line += static_cast<char>('a' + column % 26);
    line += "\r\n";
    const QString text = QString::fromLatin1(line);
    const QStringList pieces{text.left(199), text.mid(199, 199), text.mid(398)};
    QCOMPARE(pieces.last().size(), 54);
    QCOMPARE(Command().runL(printCall(line), 100, false), pieces);
    QCOMPARE(Command().run(printCall(line), 100, false), text);
}

void TestCommand::aPieceHolds199Bytes_data()
{
    QTest::addColumn<int>("length"); // without the line end
    QTest::addColumn<QList<int>>("pieces");

    QTest::newRow("fits with its end") << 197 << QList<int>{199};
    QTest::newRow("the end is split") << 198 << QList<int>{199, 1};
    QTest::newRow("fits without its end") << 199 << QList<int>{199, 2};
    QTest::newRow("one more") << 200 << QList<int>{199, 3};
    QTest::newRow("two pieces") << 396 << QList<int>{199, 199};
    QTest::newRow("two pieces and the end") << 398 << QList<int>{199, 199, 2};
}

void TestCommand::aPieceHolds199Bytes()
{
    QFETCH(int, length);
    QFETCH(QList<int>, pieces);

    const QStringList lines
        = Command().runL(printCall(QByteArray(length, 'x') + "\r\nnext\r\n"), 100, false);
    QList<int> sizes;
    for (const QString &line : lines)
        sizes += line.size();
    QCOMPARE(sizes, pieces << 6);
    QCOMPARE(lines.last(), QStringLiteral("next\r\n"));
}

void TestCommand::eachPieceCountsAsALine()
{
    const QByteArray output = QByteArray(450, 'x') + "\r\nnext\r\n";
    QCOMPARE(Command().runL(printCall(output), 0, false).size(), 2);
    QCOMPARE(Command().runL(printCall(output), 1, false).size(), 3);
    QCOMPARE(Command().runL(printCall(output), 2, false).size(), 4);
    QCOMPARE(Command().run(printCall(output), 0, false), QString(398, QLatin1Char('x')));
}

void TestCommand::theOutputIsReadAsUtf8()
{
    const QString text = QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                           "e 5 \xE2\x82\xAC \xF0\x9F\x94\xA9\r\n");
    QCOMPARE(Command().run(printCall(text.toUtf8()), 100, false), text);
    QCOMPARE(Command().run(printCall("Gr\xF6"
                                     "e"),
                           100, false),
             QString::fromUtf8("Gr\xF6"
                               "e"));
}

void TestCommand::eachPieceIsDecodedByItself()
{
    const QByteArray line = QByteArray(198, 'x') + "\xC3\xB6\r\n";
    const QStringList pieces{QString::fromUtf8(line.left(199)), QString::fromUtf8(line.mid(199))};
    QVERIFY(pieces.join(QString()) != QString::fromUtf8(line));
    QCOMPARE(Command().runL(printCall(line), 100, false), pieces);
}

void TestCommand::aLineEndsAtItsFirstNullByte()
{
    const QStringList lines{QStringLiteral("before"), QStringLiteral("next\r\n")};
    QCOMPARE(Command().runL(printCall(QByteArray("before\0after\r\nnext\r\n", 20)), 100, false),
             lines);
}

void TestCommand::standardErrorIsNotReturned()
{
    const QString complain = helperCall(QStringLiteral("print-error ")
                                        + QString::fromLatin1(QByteArray("bad").toHex()));
    QCOMPARE(Command().run(complain, 100, false), QString());
    const QString lineEnd = QStringLiteral("\n");
    QCOMPARE(
        Command().runL(complain + lineEnd + printCall("good") + lineEnd + complain, 100, false),
        QStringList{QStringLiteral("good")});
}

void TestCommand::moreIsReadThanAPipeHolds()
{
    const QStringList lines = Command().runL(printLinesCall(50000), 100000, false);
    QCOMPARE(lines.size(), 50000);
    QCOMPARE(lines.last(), QStringLiteral("line 50000\r\n"));
}

void TestCommand::theExitCodeDoesNotChangeTheOutput()
{
    const QString command
        = printCall("text") + QLatin1Char('\n') + helperCall(QStringLiteral("exit 3"));
    QCOMPARE(Command().run(command, 100, false), QStringLiteral("text"));
    QCOMPARE(Command().runQ(command), 3);
}

void TestCommand::aCommandThatCannotBeRunPrintsNothing()
{
    const QString silently = onWindows() ? QStringLiteral("@") : QString();
    QCOMPARE(Command().run(silently + QStringLiteral("no-such-program-anywhere"), 100, false),
             QString());
}

void TestCommand::runQReturnsTheExitCode_data()
{
    QTest::addColumn<int>("exitCode");

    for (const int exitCode : {0, 1, 2, 3, 77, 127, 255})
        QTest::newRow(QByteArray::number(exitCode).constData()) << exitCode;
}

void TestCommand::runQReturnsTheExitCode()
{
    QFETCH(int, exitCode);

    QCOMPARE(Command().runQ(helperCall(QStringLiteral("exit %1").arg(exitCode))), exitCode);
}

void TestCommand::runQWaitsForTheCommand()
{
    QCOMPARE(Command().runQ(helperCall(QStringLiteral("copy work.bat done.txt"))), 0);
    QVERIFY(QFile::exists(QStringLiteral("done.txt")));
}

void TestCommand::runQLogsNothing()
{
    TemporaryLog log;
    QCOMPARE(Command(log).runQ(printLinesCall(3)), 0);
    QCOMPARE(log.lines(), QStringList());
}

// The script has nothing but the command: no line end, no line that switches echoing off.
void TestCommand::theScriptIsTheCommandInLatin1()
{
    const QString command = helperCall(QStringLiteral("copy work.bat copy.txt "))
        + QString::fromUtf8("\xC3\xA9\xC3\x9F\xE2\x82\xAC\xE6\x97\xA5");
    QByteArray expected = command.toLatin1();
    QVERIFY(expected.endsWith(" \xE9\xDF??"));
    Command().run(command, 100, false);
    QCOMPARE(contentOf(QStringLiteral("copy.txt")), expected);

    QVERIFY(QFile::remove(QStringLiteral("copy.txt")));
    QCOMPARE(Command().runQ(command), 0);
    QCOMPARE(contentOf(QStringLiteral("copy.txt")), expected);
}

void TestCommand::otherCharactersAreReplacedBeforeTheCommandRuns()
{
    const QString command
        = helperCall(QStringLiteral("print-arguments ")) + QString::fromUtf8("5\xE2\x82\xAC");
    QCOMPARE(Command().run(command, 100, false), QStringLiteral("5?\r\n"));
}

void TestCommand::theScriptRunsInTheCurrentFolder()
{
    QVERIFY(writeFile(QStringLiteral("here.txt"), "text"));
    Command().run(helperCall(QStringLiteral("copy here.txt copy.txt")), 100, false);
    QCOMPARE(contentOf(QStringLiteral("copy.txt")), QByteArray("text"));
}

void TestCommand::aProgramNamedAsTheInterpreterIsNotRun()
{
    const QString decoy = onWindows() ? QStringLiteral("cmd.exe") : QStringLiteral("sh");
    QVERIFY(QFile::copy(BuildPaths::helperProgram(), decoy));
    const QByteArray folders = qgetenv("PATH");
    qputenv("PATH",
            QFile::encodeName(QDir::toNativeSeparators(QDir::currentPath()))
                + (onWindows() ? ';' : ':') + folders);
    const QString output = Command().run(QStringLiteral("echo here"), 100, false);
    qputenv("PATH", folders);
    QVERIFY2(output.contains(QLatin1String("here")), qPrintable(output));
}

void TestCommand::theScriptInheritsTheEnvironment()
{
    qputenv("TST_COMMAND", "value");
    const QString output
        = Command().run(helperCall(QStringLiteral("print-variable TST_COMMAND")), 100, false);
    qunsetenv("TST_COMMAND");
    QCOMPARE(output, QStringLiteral("value"));
}

void TestCommand::anExistingScriptIsReplaced_data()
{
    QTest::addColumn<QString>("operation");

    for (const char *operation : {"run", "runL", "runQ"})
        QTest::newRow(operation) << QString::fromLatin1(operation);
}

void TestCommand::anExistingScriptIsReplaced()
{
    QFETCH(QString, operation);

    const QByteArray older
        = helperCall(QStringLiteral("copy work.bat older.txt\n")).toLatin1().repeated(20);
    QVERIFY(writeFile(scriptName(), older));
    const QString command = helperCall(QStringLiteral("copy work.bat copy.txt"));
    if (operation == QLatin1String("run"))
        Command().run(command, 100, false);
    else if (operation == QLatin1String("runL"))
        Command().runL(command, 100, false);
    else
        Command().runQ(command);
    QCOMPARE(contentOf(QStringLiteral("copy.txt")), command.toLatin1());
    QVERIFY(!QFile::exists(QStringLiteral("older.txt")));
    QVERIFY(!QFile::exists(scriptName()));
}

void TestCommand::aLinkInThePlaceOfTheScriptIsNotFollowed()
{
    QVERIFY(writeFile(QStringLiteral("other.txt"), "not mine"));
    QVERIFY(QFile::link(QStringLiteral("other.txt"), scriptName()));
    QCOMPARE(Command().run(printCall("text"), 100, false), QStringLiteral("text"));
    QCOMPARE(contentOf(QStringLiteral("other.txt")), QByteArray("not mine"));
    QVERIFY(!QFileInfo(scriptName()).isSymLink());
    QVERIFY(!QFile::exists(scriptName()));
}

void TestCommand::noScriptIsLeft_data()
{
    anExistingScriptIsReplaced_data();
}

void TestCommand::noScriptIsLeft()
{
    QFETCH(QString, operation);

    const QString command = helperCall(QStringLiteral("exit 5"));
    if (operation == QLatin1String("run"))
        Command().run(command, 100, false);
    else if (operation == QLatin1String("runL"))
        Command().runL(command, 100, false);
    else
        QCOMPARE(Command().runQ(command), 5);
    QVERIFY(QDir().isEmpty());
}

// The results are those of an interpreter that cannot be started.
void TestCommand::withoutItsScriptACommandIsNotRun()
{
    QVERIFY(QDir().mkdir(scriptName()));
    TemporaryLog log;
    Command command(log);
    QCOMPARE(command.run(printCall("text"), 100, true), QString());
    QCOMPARE(command.runL(printCall("text"), 100, true), QStringList{QString()});
    QCOMPARE(command.runQ(printCall("text")), 0);
    const QStringList call = QStringList{commandLine()} + texts({" output:"});
    QCOMPARE(log.lines(), call + call);
    QVERIFY(QFileInfo(scriptName()).isDir());
}

// On Windows a file that somebody holds open can be written, but not deleted.
void TestCommand::aScriptThatCannotBeDeletedIsOverwritten()
{
    if (!onWindows())
        QSKIP("tst_readonly shows it with the permissions of a folder");
    QVERIFY(writeFile(scriptName(), printCall("older").toLatin1() + "\r\n"));
    QFile other(scriptName());
    QVERIFY(other.open(QIODevice::ReadOnly));
    QCOMPARE(Command().run(printCall("newer"), 100, false), QStringLiteral("newer"));
    QVERIFY(QFile::exists(scriptName()));
}

void TestCommand::theCallAndEachTrimmedLineAreLogged()
{
    TemporaryLog log;
    Command(log).run(printCall("  two words \t\r\n\r\nl\xC3\xB6schen\r\n"), 100, true);
    QCOMPARE(log.lines(),
             QStringList{commandLine()}
                 + texts({" output:two words", " output:", " output:l\xC3\xB6schen"}));
}

void TestCommand::theLinesOfRunLAreLoggedToo()
{
    TemporaryLog log;
    Command command(log);
    command.runL(printLinesCall(2), 100, true);
    command.runL(helperCall(QStringLiteral("exit 0")), 100, true);
    QCOMPARE(log.lines(),
             QStringList{commandLine()} + texts({" output:line 1", " output:line 2"})
                 + QStringList{commandLine()} + texts({" output:"}));
}

void TestCommand::eachPieceIsLogged()
{
    TemporaryLog log;
    Command(log).run(printCall(QByteArray(250, 'x') + "\r\n"), 100, true);
    const QString prefix = QStringLiteral(" output:");
    QCOMPARE(log.lines(),
             (QStringList{commandLine(), prefix + QString(199, QLatin1Char('x')),
                          prefix + QString(51, QLatin1Char('x'))}));
}

void TestCommand::onlyReturnedLinesAreLogged()
{
    TemporaryLog log;
    Command(log).run(printLinesCall(10), 0, true);
    QCOMPARE(log.lines(), QStringList{commandLine()} + texts({" output:line 1", " output:line 2"}));
}

void TestCommand::nothingIsLoggedUnlessAsked()
{
    TemporaryLog log;
    Command command(log);
    QCOMPARE(command.run(printLinesCall(1), 100, false), QStringLiteral("line 1\r\n"));
    QCOMPARE(command.runL(printLinesCall(1), 100, false),
             QStringList{QStringLiteral("line 1\r\n")});
    QCOMPARE(log.lines(), QStringList());
}

void TestCommand::nothingIsLoggedWithoutALog()
{
    Command command;
    QCOMPARE(command.run(printLinesCall(1), 100, true), QStringLiteral("line 1\r\n"));
    QCOMPARE(command.runL(printLinesCall(1), 100, true), QStringList{QStringLiteral("line 1\r\n")});
    QCOMPARE(Command(nullptr).run(printLinesCall(1), 100, true), QStringLiteral("line 1\r\n"));
}

void TestCommand::theLogOutlivesTheCommand()
{
    TemporaryLog log;
    Command(log).run(printLinesCall(1), 100, true);
    static_cast<Log *>(log)->append(QStringLiteral("after"));
    QCOMPARE(log.lines(), QStringList{commandLine()} + texts({" output:line 1", "after"}));
}

void TestCommand::aCopyUsesTheSameLog()
{
    TemporaryLog log;
    const Command command(log);
    Command copy(command);
    copy.run(printLinesCall(1), 100, true);
    QCOMPARE(log.lines(), QStringList{commandLine()} + texts({" output:line 1"}));
}

void TestCommand::runNoWaitRunsInTheCurrentFolder()
{
    QCOMPARE(Command().runNoWait(QStringLiteral("echo here> done.txt"), false, QString()), 0);
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(QStringLiteral("done.txt")).trimmed(), QByteArray("here"),
                              LongestWait);
}

void TestCommand::runNoWaitRunsInTheGivenFolder()
{
    QVERIFY(QDir().mkdir(QStringLiteral("other")));
    const QString folder = QDir().filePath(QStringLiteral("other"));
    QCOMPARE(Command().runNoWait(QStringLiteral("echo there> done.txt"), false, folder), 0);
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(QStringLiteral("other/done.txt")).trimmed(),
                              QByteArray("there"), LongestWait);
    QVERIFY(!QFile::exists(QStringLiteral("done.txt")));
}

// Nobody reads what it prints: this thread's event loop does not run.
void TestCommand::runNoWaitDoesNotHoldUpACommandThatPrints()
{
    const QString script = printLinesCall(50000) + QLatin1Char('\n')
        + helperCall(QStringLiteral("copy later.bat done.txt"));
    QVERIFY(writeFile(QStringLiteral("later.bat"), script.toLatin1()));
    QCOMPARE(Command().runNoWait(scriptCall(QStringLiteral("later.bat")), false, QString()), 0);
    const QDeadlineTimer deadline(LongestWait);
    while (!QFile::exists(QStringLiteral("done.txt")) && !deadline.hasExpired())
        QThread::msleep(5);
    QVERIFY(QFile::exists(QStringLiteral("done.txt")));
}

// The command waits for what is done after the call has returned and its object is gone.
void TestCommand::runNoWaitDoesNotWait()
{
    const QString script = helperCall(QStringLiteral("wait-for go.txt")) + QLatin1Char('\n')
        + helperCall(QStringLiteral("copy go.txt done.txt"));
    QVERIFY(writeFile(QStringLiteral("later.bat"), script.toLatin1()));
    QElapsedTimer timer;
    timer.start();
    {
        Command command;
        QCOMPARE(command.runNoWait(scriptCall(QStringLiteral("later.bat")), false, QString()), 0);
    }
    QVERIFY(timer.elapsed() < LongestWait / 2);
    QVERIFY(writeFile(QStringLiteral("go.new"), "go"));
    QVERIFY(QFile::rename(QStringLiteral("go.new"), QStringLiteral("go.txt")));
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(QStringLiteral("done.txt")), QByteArray("go"), LongestWait);
}

void TestCommand::runNoWaitWritesNoScript()
{
    QCOMPARE(Command().runNoWait(QStringLiteral("echo 1> first.txt"), false, QString()), 0);
    QVERIFY(!QFile::exists(scriptName()));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("first.txt")), LongestWait);
    QVERIFY(!QFile::exists(scriptName()));

    QVERIFY(writeFile(scriptName(), "not mine"));
    QCOMPARE(Command().runNoWait(QStringLiteral("echo 2> second.txt"), false, QString()), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("second.txt")), LongestWait);
    QCOMPARE(contentOf(scriptName()), QByteArray("not mine"));
}

void TestCommand::runNoWaitLogsTheCommand()
{
    TemporaryLog log;
    Command(log).runNoWait(QStringLiteral("echo here> done.txt"), true, QString());
    const QStringList lines = texts({onWindows() ? "Command:cmd.exe /C echo here> done.txt"
                                                 : "Command:/bin/sh -c echo here> done.txt"});
    QCOMPARE(log.lines(), lines);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("done.txt")), LongestWait);
    QCOMPARE(log.lines(), lines);
}

void TestCommand::runNoWaitLogsNothingUnlessAsked()
{
    TemporaryLog log;
    QCOMPARE(Command(log).runNoWait(QStringLiteral("echo 1> first.txt"), false, QString()), 0);
    QCOMPARE(Command().runNoWait(QStringLiteral("echo 2> second.txt"), true, QString()), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("first.txt")), LongestWait);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("second.txt")), LongestWait);
    QCOMPARE(log.lines(), QStringList());
}

// Two later commands have ended before the test checks that the first one was never run.
void TestCommand::runNoWaitReturnsZeroWhenNothingIsStarted()
{
    const QString missing = QDir().filePath(QStringLiteral("missing"));
    Command command;
    QCOMPARE(command.runNoWait(QStringLiteral("echo 1> done.txt"), false, missing), 0);
    QCOMPARE(command.runNoWait(QStringLiteral("echo 2> second.txt"), false, QString()), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("second.txt")), LongestWait);
    QCOMPARE(command.runQ(helperCall(QStringLiteral("exit 3"))), 3);
    QCOMPARE(entriesOf(QDir::currentPath()), QStringList{QStringLiteral("second.txt")});
}

QTEST_GUILESS_MAIN(TestCommand)

#include "tst_command.moc"
