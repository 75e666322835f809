// CpuInfo with answers that a real system does not give on demand.

#include "FakePlatform.h"
#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestMessages.h"
#include "TestWithFolder.h"

#include <Utility/CpuInfo.h>

#include <QtTest/QtTest>

#include <optional>

using namespace Vorn::Util;

namespace {

const QString Reading = QStringLiteral("Reading CPU information from SystemInfo.xml");
const QString AskAgain
    = QStringLiteral("Hyper-threading information is not stored in XML file - query system again");
const QString CouldNotGet = QStringLiteral("Could not get CPU information");
const QString CannotSave = QStringLiteral("Cannot save CPU information to SystemInfo.xml");

Formats::ProcessorQuery answer(int packages, int cores, std::optional<bool> smt)
{
    Formats::ProcessorQuery query;
    query.ok = true;
    query.counts.packages = packages;
    query.counts.cores = cores;
    query.counts.smt = smt;
    return query;
}

Formats::ProcessorQuery failure(const QStringList &messages)
{
    // The counts of a failed query are ignored.
    Formats::ProcessorQuery query = answer(5, 50, true);
    query.ok = false;
    query.messages = messages;
    return query;
}

} // namespace

class TestCpuInfoFakePlatform : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void theAnswerIsTakenAndSaved_data();
    void theAnswerIsTakenAndSaved();
    void coresPerProcessorAreRoundedDown();
    void withoutPackagesTheDivisorIsOne();
    void anAnswerWithoutSmtLeavesHyperThreadingOff();
    void theFileSparesTheSecondQuery();
    void aBadFileSparesTheQueryToo();
    void theOlderFormSparesTheQueryToo();

    void theLastWriterWins();
    void aFileThatMayNotBeWrittenIsReported();

    void aFailedQuerySavesTheDefaults();
    void theMessagesOfTheQueryComeFirst();
    void theMessagesOfASuccessfulQueryAreWritten();
    void theMessagesGoToTheDebugChannelWithoutALog();
    void aFailedQueryAndAFailedSaveAreBothReported();

    void askingAgainReplacesTheCountsOfTheFile();
    void askingAgainInVainKeepsTheCountsOfTheFile();
    void askingAgainWithoutSmtLeavesHyperThreadingOff();

private:
    QString infoFile() const { return testFolder() + QStringLiteral("/SystemInfo.xml"); }

    void give(const Formats::ProcessorQuery &query)
    {
        fakePlatform().queryProcessors = [this, query] {
            ++queries_;
            return query;
        };
    }

    // What the file says, with its line ends as "\n".
    QByteArray saved() const { return contentOf(infoFile()).replace("\r\n", "\n"); }

    static QByteArray fileOf(const QByteArray &processors, const QByteArray &cores,
                             const QByteArray &threading)
    {
        return "<SystemInformation version=\"24.0\">\n"
               " <processorCount>"
            + processors
            + "</processorCount>\n"
              " <coresPerProcessor>"
            + cores
            + "</coresPerProcessor>\n"
              " <hyperThreading>"
            + threading
            + "</hyperThreading>\n"
              "</SystemInformation>\n";
    }

    int queries_ = 0;
};

void TestCpuInfoFakePlatform::init()
{
    TestWithFolder::init();
    fakePlatform() = FakePlatform();
    queries_ = 0;
}

void TestCpuInfoFakePlatform::cleanup()
{
    fakePlatform() = FakePlatform();
    TestWithFolder::cleanup();
}

void TestCpuInfoFakePlatform::theAnswerIsTakenAndSaved_data()
{
    QTest::addColumn<bool>("smt");
    QTest::addColumn<QByteArray>("threading");
    QTest::newRow("on") << true << QByteArray("on");
    QTest::newRow("off") << false << QByteArray("off");
}

void TestCpuInfoFakePlatform::theAnswerIsTakenAndSaved()
{
    QFETCH(bool, smt);
    QFETCH(QByteArray, threading);
    give(answer(2, 16, smt));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.processorCount(), 2);
    QCOMPARE(info.coreCount(), 16);
    QCOMPARE(info.coresPerProcessor(), 8);
    QCOMPARE(info.isHyperThreadingOn(), smt);
    QCOMPARE(saved(), fileOf("2", "8", threading));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(queries_, 1);
}

void TestCpuInfoFakePlatform::coresPerProcessorAreRoundedDown()
{
    give(answer(2, 7, false));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.coreCount(), 7);
    QCOMPARE(info.coresPerProcessor(), 3);
    QCOMPARE(saved(), fileOf("2", "3", "off"));
    QCOMPARE(CpuInfo(log, testFolder()).coreCount(), 6); // the file has no entry for the seventh
}

void TestCpuInfoFakePlatform::withoutPackagesTheDivisorIsOne()
{
    give(answer(0, 6, true));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.processorCount(), 0);
    QCOMPARE(info.coreCount(), 6);
    QCOMPARE(info.coresPerProcessor(), 6);
    QCOMPARE(info.isHyperThreadingOn(), true);
    QCOMPARE(saved(), fileOf("0", "6", "on"));
    QCOMPARE(log.lines(), QStringList());
}

void TestCpuInfoFakePlatform::anAnswerWithoutSmtLeavesHyperThreadingOff()
{
    give(answer(1, 4, std::nullopt));
    const CpuInfo info(nullptr, testFolder());
    QCOMPARE(info.coreCount(), 4);
    QCOMPARE(info.isHyperThreadingOn(), false);
    QCOMPARE(saved(), fileOf("1", "4", "off"));
}

void TestCpuInfoFakePlatform::theFileSparesTheSecondQuery()
{
    give(answer(2, 16, true));
    TemporaryLog log;
    const CpuInfo first(log, testFolder());
    give(answer(1, 1, false));
    const CpuInfo second(log, testFolder());
    QCOMPARE(queries_, 1);
    QCOMPARE(second.processorCount(), 2);
    QCOMPARE(second.coreCount(), 16);
    QCOMPARE(second.isHyperThreadingOn(), true);
    QCOMPARE(log.lines(), QStringList{Reading});
}

void TestCpuInfoFakePlatform::aBadFileSparesTheQueryToo()
{
    QVERIFY(writeFile(infoFile(), "<a>"));
    give(answer(2, 16, true));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(queries_, 0);
    QCOMPARE(info.coreCount(), 1);
}

void TestCpuInfoFakePlatform::theOlderFormSparesTheQueryToo()
{
    QVERIFY(writeFile(infoFile(),
                      "<a><Info><GetNumberOfProcessors value=\"1\"/>"
                      "<GetProcessorCoreCount value=\"4\"/></Info></a>"));
    give(answer(2, 16, true));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(queries_, 0);
    QCOMPARE(info.coreCount(), 4);
    QCOMPARE(info.isHyperThreadingOn(), false);
    QCOMPARE(log.lines(), QStringList{Reading});
}

// Another process has made the file meanwhile, and still has it open.
void TestCpuInfoFakePlatform::theLastWriterWins()
{
    QFile other(infoFile());
    fakePlatform().queryProcessors = [&other] {
        other.open(QIODevice::WriteOnly);
        other.write(QByteArray(1000, 'x'));
        other.flush();
        return answer(2, 16, true);
    };
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QVERIFY(other.isOpen());
    QCOMPARE(info.coreCount(), 16);
    QCOMPARE(saved(), fileOf("2", "8", "on"));
    QCOMPARE(log.lines(), QStringList());
}

void TestCpuInfoFakePlatform::aFileThatMayNotBeWrittenIsReported()
{
    give(answer(2, 16, true));
    fakePlatform().openWithoutLink = [](QFile &) { return false; };
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.coreCount(), 16);
    QCOMPARE(log.lines(), QStringList{CannotSave});
    QVERIFY(!QFile::exists(infoFile()));
}

void TestCpuInfoFakePlatform::aFailedQuerySavesTheDefaults()
{
    give(failure({}));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.processorCount(), 1);
    QCOMPARE(info.coreCount(), 1);
    QCOMPARE(info.coresPerProcessor(), 1);
    QCOMPARE(info.isHyperThreadingOn(), false);
    QCOMPARE(log.lines(), QStringList{CouldNotGet});
    QCOMPARE(saved(), fileOf("1", "1", "off"));
}

void TestCpuInfoFakePlatform::theMessagesOfTheQueryComeFirst()
{
    const QStringList messages = texts({"Using GetLogicalProcessorInformation",
                                        "GetLogicalProcessorInformation failed, error = 122"});
    give(failure(messages));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(log.lines(), messages + QStringList{CouldNotGet});
}

void TestCpuInfoFakePlatform::theMessagesOfASuccessfulQueryAreWritten()
{
    Formats::ProcessorQuery query = answer(1, 4, std::nullopt);
    query.messages = texts({"Using GetLogicalProcessorInformation"});
    give(query);
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.coreCount(), 4);
    QCOMPARE(log.lines(), query.messages);
}

void TestCpuInfoFakePlatform::theMessagesGoToTheDebugChannelWithoutALog()
{
    const QStringList messages = texts({"GetLogicalProcessorInformationEx failed, error = 5"});
    give(failure(messages));
    const TestMessages channel;
    const CpuInfo info(nullptr, testFolder());
    QCOMPARE(channel.lines(), messages + QStringList{CouldNotGet});
}

void TestCpuInfoFakePlatform::aFailedQueryAndAFailedSaveAreBothReported()
{
    give(failure({}));
    TemporaryLog log;
    const CpuInfo info(log, testFolder() + QStringLiteral("/missing"));
    QCOMPARE(log.lines(), (QStringList{CouldNotGet, CannotSave}));
    QCOMPARE(info.coreCount(), 1);
}

void TestCpuInfoFakePlatform::askingAgainReplacesTheCountsOfTheFile()
{
    const QByteArray content = fileOf("3", "5", "");
    QVERIFY(writeFile(infoFile(), content));
    give(answer(2, 16, true));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(queries_, 1);
    QCOMPARE(info.processorCount(), 2);
    QCOMPARE(info.coreCount(), 16);
    QCOMPARE(info.isHyperThreadingOn(), true);
    QCOMPARE(log.lines(), (QStringList{Reading, AskAgain}));
    QCOMPARE(contentOf(infoFile()), content);
}

void TestCpuInfoFakePlatform::askingAgainInVainKeepsTheCountsOfTheFile()
{
    const QByteArray content = fileOf("3", "5", "");
    QVERIFY(writeFile(infoFile(), content));
    const QString message = QStringLiteral("GetLogicalProcessorInformationEx failed, error = 5");
    give(failure({message}));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.processorCount(), 3);
    QCOMPARE(info.coreCount(), 15);
    QCOMPARE(info.isHyperThreadingOn(), false);
    QCOMPARE(log.lines(), (QStringList{Reading, AskAgain, message, CouldNotGet}));
    QCOMPARE(contentOf(infoFile()), content);
}

void TestCpuInfoFakePlatform::askingAgainWithoutSmtLeavesHyperThreadingOff()
{
    QVERIFY(writeFile(infoFile(), fileOf("3", "5", "")));
    give(answer(1, 4, std::nullopt));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(info.coreCount(), 4);
    QCOMPARE(info.isHyperThreadingOn(), false);
}

QTEST_GUILESS_MAIN(TestCpuInfoFakePlatform)

#include "tst_cpuinfofakeplatform.moc"
