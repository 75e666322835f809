// The category of the library's debug messages, by which a program filters them. TestMessages
// checks the category of each message in the tests that expect one.

#include "TestFiles.h"
#include "TestMessages.h"
#include "TestWithFolder.h"

#include <Utility/CpuInfo.h>
#include <Utility/System.h>

#include <QtCore/QLoggingCategory>
#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestDebugMessages : public TestInFolder
{
    Q_OBJECT

protected:
    void init() override
    {
        TestInFolder::init();
        QVERIFY(writeFile(QStringLiteral("SystemInfo.xml"), "<SystemInformation/>"));
    }

    void cleanup() override
    {
        QLoggingCategory::setFilterRules(QString());
        TestInFolder::cleanup();
    }

private Q_SLOTS:
    void theyAreWrittenByDefault();
    void aProgramFiltersThemByTheirCategory();
    void aProgramFiltersItsOwnMessagesAlone();

private:
    // Calls that write one message each.
    void writeMessages()
    {
        System::setWorkingDirPath(QStringLiteral("SystemInfo.xml"));
        const CpuInfo information(nullptr, QStringLiteral("."));
        qDebug("a message of the program");
    }

    const QStringList own_{
        QStringLiteral("Passing file name to Util::System::setWorkingDirPath \"SystemInfo.xml\""),
        QStringLiteral("Reading CPU information from SystemInfo.xml")};
    const QString ofProgram_ = QStringLiteral("0 default: a message of the program");
};

void TestDebugMessages::theyAreWrittenByDefault()
{
    const TestMessages messages;
    writeMessages();
    QCOMPARE(messages.lines().mid(0, 2), own_);
    QCOMPARE(messages.lines().last(), ofProgram_);
}

void TestDebugMessages::aProgramFiltersThemByTheirCategory()
{
    const TestMessages messages;
    QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
    writeMessages();
    QCOMPARE(messages.lines(), QStringList{ofProgram_});
    QLoggingCategory::setFilterRules(QStringLiteral("vorn.*=true"));
    writeMessages();
    QCOMPARE(messages.lines().mid(1, 2), own_);
}

void TestDebugMessages::aProgramFiltersItsOwnMessagesAlone()
{
    const TestMessages messages;
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    writeMessages();
    QCOMPARE(messages.lines().mid(0, 2), own_);
    QVERIFY(!messages.lines().contains(ofProgram_));
}

QTEST_GUILESS_MAIN(TestDebugMessages)
#include "tst_debugmessages.moc"
