// Commands on a system whose interpreter cannot be started.

#include "FakePlatform.h"
#include "TemporaryLog.h"

#include <Utility/Command.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestCommandFakePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void runReturnsNothing();
    void runLReturnsOneEmptyLine();
    void runQReturnsZero();
    void runNoWaitReturnsZero();
    void theCallIsLoggedByItsDisplayedName();
    void runNoWaitIsLoggedByItsDisplayedName();
    void runGivesTheInterpreterAScriptAndRunNoWaitAText();

private:
    QTemporaryDir folder_;
    QString start_;
    QStringList asked_;
};

void TestCommandFakePlatform::initTestCase()
{
    QVERIFY(folder_.isValid());
    start_ = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder_.path()));
    const auto call = [this](const QString &argument) {
        asked_ += argument;
        return Platform::ShellCommand{folder_.filePath(QStringLiteral("missing/interpreter")),
                                      QStringLiteral("interpreter"),
                                      {QStringLiteral("/C"), QStringLiteral("<%1>").arg(argument)}};
    };
    fakePlatform().scriptCommand = call;
    fakePlatform().textCommand = call;
}

// No command leaves its script on the disk.
void TestCommandFakePlatform::cleanup()
{
    QVERIFY(QDir().isEmpty());
    asked_.clear();
}

void TestCommandFakePlatform::cleanupTestCase()
{
    QVERIFY(QDir::setCurrent(start_));
}

void TestCommandFakePlatform::runReturnsNothing()
{
    QCOMPARE(Command().run(QStringLiteral("command"), 100, false), QString());
}

// Nothing can be read, which counts as a line without text.
void TestCommandFakePlatform::runLReturnsOneEmptyLine()
{
    QCOMPARE(Command().runL(QStringLiteral("command"), 100, false), QStringList{QString()});
}

void TestCommandFakePlatform::runQReturnsZero()
{
    QCOMPARE(Command().runQ(QStringLiteral("command")), 0);
}

void TestCommandFakePlatform::runNoWaitReturnsZero()
{
    QCOMPARE(Command().runNoWait(QStringLiteral("command"), false, QString()), 0);
}

void TestCommandFakePlatform::theCallIsLoggedByItsDisplayedName()
{
    TemporaryLog log;
    Command(log).run(QStringLiteral("command"), 100, true);
    Command(log).runL(QStringLiteral("command"), 100, true);
    QCOMPARE(log.lines(),
             texts({"Command:interpreter /C <work.bat>",
                    " output:", "Command:interpreter /C <work.bat>", " output:"}));
}

void TestCommandFakePlatform::runNoWaitIsLoggedByItsDisplayedName()
{
    TemporaryLog log;
    Command(log).runNoWait(QStringLiteral("command %1 text"), true, QString());
    QCOMPARE(log.lines(), texts({"Command:interpreter /C <command %1 text>"}));
}

void TestCommandFakePlatform::runGivesTheInterpreterAScriptAndRunNoWaitAText()
{
    Command command;
    command.run(QStringLiteral("command"), 100, false);
    command.runL(QStringLiteral("command"), 100, false);
    command.runQ(QStringLiteral("command"));
    command.runNoWait(QStringLiteral("command"), false, QString());
    QCOMPARE(asked_, texts({"work.bat", "work.bat", "work.bat", "command"}));
}

QTEST_GUILESS_MAIN(TestCommandFakePlatform)

#include "tst_commandfakeplatform.moc"
