#include "TemporaryLog.h"
#include "TestFiles.h"
#include "TestMessages.h"
#include "TestWithFolder.h"

#include <Utility/CpuInfo.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <limits>
#include <type_traits>

using namespace Vorn::Util;

static_assert(std::is_copy_constructible<CpuInfo>::value && std::is_copy_assignable<CpuInfo>::value,
              "it is a value");
static_assert(!std::is_polymorphic<CpuInfo>::value, "it has no virtual operations");

namespace {

struct Counts
{
    int processors;
    int cores;
    int coresPerProcessor;
    bool hyperThreading;
};

bool operator==(const Counts &left, const Counts &right)
{
    return left.processors == right.processors && left.cores == right.cores
        && left.coresPerProcessor == right.coresPerProcessor
        && left.hyperThreading == right.hyperThreading;
}

char *toString(const Counts &counts)
{
    return qstrdup(
        qPrintable(QStringLiteral("%1 processors, %2 cores, %3 per processor, %4")
                       .arg(counts.processors)
                       .arg(counts.cores)
                       .arg(counts.coresPerProcessor)
                       .arg(counts.hyperThreading ? QStringLiteral("on") : QStringLiteral("off"))));
}

Counts countsOf(const CpuInfo &info)
{
    return {info.processorCount(), info.coreCount(), info.coresPerProcessor(),
            info.isHyperThreadingOn()};
}

const Counts Defaults{1, 1, 1, false};

// A number of processors that no machine has.
const QByteArray IncompleteFile = "<SystemInformation version=\"24.0\">"
                                  "<processorCount>977</processorCount>"
                                  "<coresPerProcessor>3</coresPerProcessor>%1"
                                  "</SystemInformation>";

QByteArray currentForm(const QByteArray &children)
{
    return "<SystemInformation version=\"24.0\">\n" + children + "</SystemInformation>\n";
}

QByteArray olderForm(const QByteArray &children)
{
    return "<SystemInformation>\n <Info>\n" + children + " </Info>\n</SystemInformation>\n";
}

} // namespace

Q_DECLARE_METATYPE(Counts)

class TestCpuInfo : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAFileTheSystemIsAskedAndTheFileWritten();
    void theWrittenFileIsExactlyThis();
    void theSecondConstructionReadsTheFile();
    void theFolderMayBeRelative();
    void theFolderMayEndWithASeparator();
    void theFolderMayHoldAnyCharacters();

    void theCurrentFormIsRead_data();
    void theCurrentFormIsRead();
    void theOlderFormIsRead_data();
    void theOlderFormIsRead();
    void anInfoElementThatIsNotFirstIsNotTheOlderForm_data();
    void anInfoElementThatIsNotFirstIsNotTheOlderForm();
    void numbersOfAnySizeAreSafe();
    void onlyAFileWithinTheLimitsIsRead_data();
    void onlyAFileWithinTheLimitsIsRead();
    void theDeepestFileFitsTheStackOfAThread_data();
    void theDeepestFileFitsTheStackOfAThread();

    void aFileWithoutHyperThreadingHasTheSystemAskedAgain_data();
    void aFileWithoutHyperThreadingHasTheSystemAskedAgain();

    void aFileThatCannotBeParsedIsLeftAlone_data();
    void aFileThatCannotBeParsedIsLeftAlone();
    void aFileThatCannotBeOpenedLeavesTheDefaults();
    void aMissingFolderMakesTheSaveFail();

    void withoutALogMessagesGoToTheDebugChannel_data();
    void withoutALogMessagesGoToTheDebugChannel();
    void withALogTheDebugChannelStaysSilent();

    void aCopyHasTheSameCounts();
    void anAssignmentCopiesTheCounts();

private:
    QString infoFile() const { return testFolder() + QStringLiteral("/SystemInfo.xml"); }
};

void TestCpuInfo::withoutAFileTheSystemIsAskedAndTheFileWritten()
{
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QVERIFY(info.processorCount() >= 1);
    QVERIFY(info.coreCount() >= info.processorCount());
    QCOMPARE(info.coresPerProcessor(), info.coreCount() / info.processorCount());
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(entriesOf(testFolder()), texts({"SystemInfo.xml"}));
}

void TestCpuInfo::theWrittenFileIsExactlyThis()
{
    const CpuInfo info(nullptr, testFolder());
    QByteArray expected = "<SystemInformation version=\"24.0\">\n"
                          " <processorCount>"
        + QByteArray::number(info.processorCount())
        + "</processorCount>\n"
          " <coresPerProcessor>"
        + QByteArray::number(info.coreCount() / info.processorCount())
        + "</coresPerProcessor>\n"
          " <hyperThreading>"
        + (info.isHyperThreadingOn() ? "on" : "off")
        + "</hyperThreading>\n"
          "</SystemInformation>\n";
    if (QDir::separator() == QLatin1Char('\\'))
        expected.replace("\n", "\r\n"); // the file is written in text mode
    QCOMPARE(contentOf(infoFile()), expected);
}

void TestCpuInfo::theSecondConstructionReadsTheFile()
{
    TemporaryLog log;
    const CpuInfo first(log, testFolder());
    const QByteArray content = contentOf(infoFile());
    const CpuInfo second(log, testFolder());
    QCOMPARE(log.lines(), texts({"Reading CPU information from SystemInfo.xml"}));
    QCOMPARE(second.processorCount(), first.processorCount());
    QCOMPARE(second.coresPerProcessor(), first.coresPerProcessor());
    QCOMPARE(second.coreCount(), first.processorCount() * first.coresPerProcessor());
    QCOMPARE(second.isHyperThreadingOn(), first.isHyperThreadingOn());
    QCOMPARE(contentOf(infoFile()), content);
}

void TestCpuInfo::theFolderMayBeRelative()
{
    QVERIFY(QDir().mkpath(QStringLiteral("relative")));
    TemporaryLog log;
    const CpuInfo info(log, QStringLiteral("relative"));
    QVERIFY(info.coreCount() >= 1);
    QCOMPARE(entriesOf(QStringLiteral("relative")), texts({"SystemInfo.xml"}));
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(QDir(QStringLiteral("relative")).removeRecursively());
}

void TestCpuInfo::theFolderMayEndWithASeparator()
{
    TemporaryLog log;
    QVERIFY(writeFile(infoFile(),
                      currentForm("<processorCount>2</processorCount>"
                                  "<coresPerProcessor>8</coresPerProcessor>"
                                  "<hyperThreading>on</hyperThreading>")));
    const CpuInfo info(log, testFolder() + QLatin1Char('/'));
    QCOMPARE(countsOf(info), (Counts{2, 16, 8, true}));
    QCOMPARE(log.lines(), texts({"Reading CPU information from SystemInfo.xml"}));
}

void TestCpuInfo::theFolderMayHoldAnyCharacters()
{
    // "%1" too: nothing may be put in its place.
    const QString other = testFolder() + QStringLiteral("/Tr\u00e4ger %1 \u65e5\u672c");
    QVERIFY(QDir().mkpath(other));
    TemporaryLog log;
    const CpuInfo first(log, other);
    const CpuInfo second(log, other);
    QCOMPARE(entriesOf(other), texts({"SystemInfo.xml"}));
    QCOMPARE(log.lines(), texts({"Reading CPU information from SystemInfo.xml"}));
}

void TestCpuInfo::theCurrentFormIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Counts>("counts");

    const QByteArray two = " <processorCount>2</processorCount>\n";
    const QByteArray eight = " <coresPerProcessor>8</coresPerProcessor>\n";
    const QByteArray on = " <hyperThreading>on</hyperThreading>\n";
    const QByteArray off = " <hyperThreading>off</hyperThreading>\n";
    const auto threading
        = [](const QByteArray &text) { return "<hyperThreading>" + text + "</hyperThreading>"; };

    QTest::newRow("two processors with eight cores each")
        << currentForm(two + eight + on) << Counts{2, 16, 8, true};
    QTest::newRow("off") << currentForm(two + eight + off) << Counts{2, 16, 8, false};
    QTest::newRow("only \"on\" is on: On")
        << currentForm(two + eight + threading("On")) << Counts{2, 16, 8, false};
    QTest::newRow("only \"on\" is on: ON")
        << currentForm(two + eight + threading("ON")) << Counts{2, 16, 8, false};
    QTest::newRow("only \"on\" is on: true")
        << currentForm(two + eight + threading("true")) << Counts{2, 16, 8, false};
    QTest::newRow("only \"on\" is on: with a blank")
        << currentForm(two + eight + threading("on ")) << Counts{2, 16, 8, false};
    QTest::newRow("any order") << currentForm(on + eight + two) << Counts{2, 16, 8, true};
    QTest::newRow("no processor count is 1") << currentForm(eight + on) << Counts{1, 8, 8, true};
    QTest::newRow("no core count is 1 for each") << currentForm(two + on) << Counts{2, 2, 1, true};
    QTest::newRow("hyper-threading only") << currentForm(on) << Counts{1, 1, 1, true};
    QTest::newRow("not a number: 0 processors, but 1 as divisor")
        << currentForm("<processorCount>two</processorCount>" + eight + on)
        << Counts{0, 0, 0, true};
    QTest::newRow("not a number is 0 cores")
        << currentForm(two + "<coresPerProcessor>many</coresPerProcessor>" + on)
        << Counts{2, 0, 0, true};
    QTest::newRow("an empty element is no number")
        << currentForm("<processorCount/>" + eight + on) << Counts{0, 0, 0, true};
    QTest::newRow("a fraction is no number")
        << currentForm(two + "<coresPerProcessor>1.5</coresPerProcessor>" + on)
        << Counts{2, 0, 0, true};
    QTest::newRow("processor count 0")
        << currentForm("<processorCount>0</processorCount>" + eight + off)
        << Counts{0, 0, 0, false};
    QTest::newRow("nested elements do not count")
        << currentForm("<a>" + two + eight + "</a>" + on) << Counts{1, 1, 1, true};
    QTest::newRow("the root's name and version do not matter")
        << QByteArray("<Other version=\"1.0\">" + two + eight + on + "</Other>")
        << Counts{2, 16, 8, true};
    QTest::newRow("no version") << QByteArray("<SystemInformation>" + two + eight + on
                                              + "</SystemInformation>")
                                << Counts{2, 16, 8, true};
    QTest::newRow("with a declaration") << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                      + currentForm(two + eight + on))
                                        << Counts{2, 16, 8, true};
    QTest::newRow("other elements and comments in UTF-8")
        << currentForm("<!-- Tr\xc3\xa4ger -->" + two + "<a>\xe6\x97\xa5</a>" + eight + on)
        << Counts{2, 16, 8, true};
    QTest::newRow("Windows line ends")
        << currentForm(two + eight + on).replace("\n", "\r\n") << Counts{2, 16, 8, true};
}

void TestCpuInfo::theCurrentFormIsRead()
{
    QFETCH(QByteArray, content);
    QFETCH(Counts, counts);
    QVERIFY(writeFile(infoFile(), content));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(countsOf(info), counts);
    QCOMPARE(log.lines(), texts({"Reading CPU information from SystemInfo.xml"}));
    QCOMPARE(contentOf(infoFile()), content);
}

void TestCpuInfo::theOlderFormIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Counts>("counts");

    const QByteArray processors = "  <GetNumberOfProcessors value=\"2\"/>\n";
    const QByteArray cores = "  <GetProcessorCoreCount value=\"4\"/>\n";

    QTest::newRow("one processor with four cores")
        << olderForm("<GetNumberOfProcessors value=\"1\"/>" + cores) << Counts{1, 4, 4, false};
    QTest::newRow("two processors with four cores each")
        << olderForm(processors + cores) << Counts{2, 8, 4, false};
    QTest::newRow("the other order") << olderForm(cores + processors) << Counts{2, 8, 4, false};
    QTest::newRow("no core count is 0 cores") << olderForm(processors) << Counts{2, 0, 0, false};
    QTest::newRow("no processor count is 1") << olderForm(cores) << Counts{1, 4, 4, false};
    QTest::newRow("an empty element") << olderForm("") << Counts{1, 0, 0, false};
    QTest::newRow("the last of a name wins")
        << olderForm("<GetNumberOfProcessors value=\"9\"/><GetProcessorCoreCount value=\"7\"/>"
                     + processors + cores)
        << Counts{2, 8, 4, false};
    QTest::newRow("other nodes are skipped") << olderForm(
        "<!-- x -->" + processors + "text<GetClockRate value=\"3\"/>" + cores + "<?pi?>")
                                             << Counts{2, 8, 4, false};
    QTest::newRow("nested elements do not count")
        << olderForm("<a><GetNumberOfProcessors value=\"9\"/></a>" + processors + cores)
        << Counts{2, 8, 4, false};
    QTest::newRow("the case of a name matters")
        << olderForm("<getNumberOfProcessors value=\"9\"/>" + cores) << Counts{1, 4, 4, false};
    QTest::newRow("not a number: 0 processors, but 1 as divisor")
        << olderForm("<GetNumberOfProcessors value=\"two\"/>" + cores) << Counts{0, 0, 0, false};
    QTest::newRow("not a number is 0 cores")
        << olderForm(processors + "<GetProcessorCoreCount value=\"\"/>") << Counts{2, 0, 0, false};
    QTest::newRow("the number is in the attribute")
        << olderForm("<GetNumberOfProcessors>5</GetNumberOfProcessors>" + cores)
        << Counts{0, 0, 0, false};
    QTest::newRow("hyper-threading stays off")
        << olderForm(processors + cores + "<hyperThreading>on</hyperThreading>")
               .replace("</SystemInformation>",
                        "<hyperThreading>on</hyperThreading></SystemInformation>")
        << Counts{2, 8, 4, false};
    QTest::newRow("what stands after \"Info\" does not count")
        << olderForm(processors + cores)
               .replace("</SystemInformation>",
                        "<processorCount>7</processorCount></SystemInformation>")
        << Counts{2, 8, 4, false};
    QTest::newRow("any root and a declaration")
        << QByteArray("<?xml version=\"1.0\"?><Root><Info>" + processors + cores + "</Info></Root>")
        << Counts{2, 8, 4, false};
}

void TestCpuInfo::theOlderFormIsRead()
{
    theCurrentFormIsRead();
}

void TestCpuInfo::onlyAFileWithinTheLimitsIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isRead");

    const QByteArray three
        = "<processorCount>3</processorCount><hyperThreading>on</hyperThreading>";
    const auto root = [&](const QByteArray &rest) { return "<Root>" + three + rest + "</Root>"; };
    const auto ofSize = [&](int size) { return root(QByteArray(size - root("").size(), 'x')); };
    constexpr int MaxSize = 1024 * 1024;
    QTest::newRow("1 MiB") << ofSize(MaxSize) << true;
    QTest::newRow("a byte more than 1 MiB") << ofSize(MaxSize + 1) << false;
    QTest::newRow("carriage returns count") << root(QByteArray(MaxSize, '\r')) << false;

    const auto withBrackets
        = [&](int count) { return root(QByteArray("<a/>").repeated(count - root("").count('<'))); };
    QTest::newRow("2,000 <") << withBrackets(2000) << true;
    QTest::newRow("2,001 <") << withBrackets(2001) << false;
    QTest::newRow("1,000 elements in each other")
        << root(QByteArray("<a>").repeated(997) + QByteArray("</a>").repeated(997)) << true;
    QTest::newRow("references to <") << root(QByteArray("&lt;").repeated(5000)) << true;
    QTest::newRow("> and parentheses") << root(QByteArray("((>").repeated(5000)) << true;

    QTest::newRow("document type") << "<!DOCTYPE Root>" + root("") << false;
    QTest::newRow("document type with an element")
        << "<!DOCTYPE Root [<!ELEMENT Root (a,(b|c))>]>" + root("") << false;
    QTest::newRow("document type with an entity")
        << "<?xml version=\"1.0\"?>\n<!DOCTYPE Root [<!ENTITY e \"<a></a>\">]>" + root("&e;")
        << false;
    QTest::newRow("document type in a comment") << root("<!-- <!DOCTYPE a> -->") << false;
    QTest::newRow("entity in a comment") << root("<!-- <!ENTITY e \"a\"> -->") << true;
    QTest::newRow("unknown entity") << root("<b>&unknown;</b>") << false;
    QTest::newRow("one attribute twice") << root("<b a=\"1\" a=\"2\"/>") << false;
    QTest::newRow("two colons in a name") << root("<a:b:c/>") << false;
    QTest::newRow("XML 1.1") << "<?xml version=\"1.1\"?>\n" + root("") << false;
    QTest::newRow("unknown encoding") << "<?xml version=\"1.0\" encoding=\"unknown\"?>\n"
            + root("") << (QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)); // which takes it as UTF-8
    QTest::newRow("undeclared prefix") << root("<a:b a:c=\"1\"/>") << true;
}

void TestCpuInfo::onlyAFileWithinTheLimitsIsRead()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isRead);

    QVERIFY(writeFile(infoFile(), content));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(countsOf(info), isRead ? (Counts{3, 3, 1, true}) : Defaults);
    QStringList expected = texts({"Reading CPU information from SystemInfo.xml"});
    if (!isRead)
        expected += texts({"Cannot read CPU information from SystemInfo.xml"});
    QCOMPARE(log.lines(), expected);
    QVERIFY(contentOf(infoFile()) == content);
}

// Elements in each other are deleted recursively.
void TestCpuInfo::theDeepestFileFitsTheStackOfAThread_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("closed") << QByteArray("<a>").repeated(1000) + QByteArray("</a>").repeated(1000);
    QTest::newRow("not closed") << QByteArray("<a>").repeated(2000);
}

void TestCpuInfo::theDeepestFileFitsTheStackOfAThread()
{
    QFETCH(QByteArray, content);

    constexpr uint StackSize = 1024 * 1024; // what a thread has by default on Windows
    QVERIFY(writeFile(infoFile(), content));
    TemporaryLog log;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { const CpuInfo info(log, testFolder()); }));
    thread->setStackSize(StackSize);
    thread->start();
    QVERIFY(thread->wait());
    QCOMPARE(log.lines().value(0), QStringLiteral("Reading CPU information from SystemInfo.xml"));
}

void TestCpuInfo::anInfoElementThatIsNotFirstIsNotTheOlderForm_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::newRow("after an element") << QByteArray("<a/>");
    QTest::newRow("after a comment") << QByteArray("<!-- Info -->");
    QTest::newRow("after a text") << QByteArray("Info");
    QTest::newRow("after another case") << QByteArray("<info/>");
}

void TestCpuInfo::anInfoElementThatIsNotFirstIsNotTheOlderForm()
{
    QFETCH(QByteArray, first);
    QVERIFY(writeFile(infoFile(),
                      currentForm(first
                                  + "<Info><GetNumberOfProcessors value=\"5\"/>"
                                    "<GetProcessorCoreCount value=\"5\"/></Info>"
                                    "<processorCount>2</processorCount>"
                                    "<coresPerProcessor>8</coresPerProcessor>"
                                    "<hyperThreading>on</hyperThreading>")));
    QCOMPARE(countsOf(CpuInfo(nullptr, testFolder())), (Counts{2, 16, 8, true}));
}

void TestCpuInfo::numbersOfAnySizeAreSafe()
{
    // Their product is 2^31, which wraps to the smallest number.
    QVERIFY(writeFile(infoFile(),
                      currentForm("<processorCount>-1</processorCount>"
                                  "<coresPerProcessor>-2147483648</coresPerProcessor>"
                                  "<hyperThreading>off</hyperThreading>")));
    const int smallest = std::numeric_limits<int>::min();
    QCOMPARE(countsOf(CpuInfo(nullptr, testFolder())), (Counts{-1, smallest, smallest, false}));

    QVERIFY(writeFile(infoFile(),
                      olderForm("<GetNumberOfProcessors value=\"2147483647\"/>"
                                "<GetProcessorCoreCount value=\"2147483647\"/>")));
    const CpuInfo info(nullptr, testFolder());
    QCOMPARE(info.processorCount(), std::numeric_limits<int>::max());
}

void TestCpuInfo::aFileWithoutHyperThreadingHasTheSystemAskedAgain_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("empty") << QByteArray("<hyperThreading></hyperThreading>");
    QTest::newRow("closed at once") << QByteArray("<hyperThreading/>");
    QTest::newRow("another case") << QByteArray("<HyperThreading>on</HyperThreading>");
}

void TestCpuInfo::aFileWithoutHyperThreadingHasTheSystemAskedAgain()
{
    QFETCH(QByteArray, element);
    const QTemporaryDir other;
    const CpuInfo system(nullptr, other.path());

    const QByteArray content = QByteArray(IncompleteFile).replace("%1", element);
    QVERIFY(writeFile(infoFile(), content));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(countsOf(info), countsOf(system));
    QVERIFY(info.processorCount() != 977);
    QCOMPARE(log.lines(),
             texts({"Reading CPU information from SystemInfo.xml",
                    "Hyper-threading information is not stored in XML file - query system again"}));
    QCOMPARE(contentOf(infoFile()), content);
}

void TestCpuInfo::aFileThatCannotBeParsedIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("processorCount=2\n");
    QTest::newRow("not closed") << QByteArray(
        "<SystemInformation><processorCount>2</processorCount>"
        "<coresPerProcessor>8</coresPerProcessor>"
        "<hyperThreading>on</hyperThreading>");
    QTest::newRow("cut off") << QByteArray("<SystemInformation version=\"24.0\">\n <processorCou");
    QTest::newRow("two roots") << QByteArray("<a/><b/>");
    QTest::newRow("any bytes") << QByteArray("\x00\xff\xfe\x01<\x80>", 7);
}

void TestCpuInfo::aFileThatCannotBeParsedIsLeftAlone()
{
    QFETCH(QByteArray, content);
    QVERIFY(writeFile(infoFile(), content));
    TemporaryLog log;
    QStringList expected;
    for (int construction = 1; construction <= 2; ++construction) {
        const CpuInfo info(log, testFolder());
        QCOMPARE(countsOf(info), Defaults);
        expected += texts({"Reading CPU information from SystemInfo.xml",
                           "Cannot read CPU information from SystemInfo.xml"});
        QCOMPARE(log.lines(), expected);
        QCOMPARE(contentOf(infoFile()), content);
    }
    QCOMPARE(entriesOf(testFolder()), texts({"SystemInfo.xml"}));
}

void TestCpuInfo::aFileThatCannotBeOpenedLeavesTheDefaults()
{
    QVERIFY(QDir().mkpath(infoFile()));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QCOMPARE(countsOf(info), Defaults);
    QCOMPARE(log.lines(),
             texts({"Reading CPU information from SystemInfo.xml",
                    "Cannot read CPU information from SystemInfo.xml"}));
    QVERIFY(QFileInfo(infoFile()).isDir());
}

void TestCpuInfo::aMissingFolderMakesTheSaveFail()
{
    const CpuInfo system(nullptr, testFolder());
    TemporaryLog log;
    const CpuInfo info(log, testFolder() + QStringLiteral("/missing/folder"));
    QCOMPARE(countsOf(info), countsOf(system));
    QCOMPARE(log.lines(), texts({"Cannot save CPU information to SystemInfo.xml"}));
    QCOMPARE(entriesOf(testFolder()), texts({"SystemInfo.xml"}));
}

void TestCpuInfo::withoutALogMessagesGoToTheDebugChannel_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("subfolder");
    QTest::addColumn<QStringList>("messages");
    const QString reading = QStringLiteral("Reading CPU information from SystemInfo.xml");
    QTest::newRow("a good file") << currentForm("<hyperThreading>on</hyperThreading>") << QString()
                                 << QStringList{reading};
    QTest::newRow("a bad file")
        << QByteArray("<a>") << QString()
        << QStringList{reading, QStringLiteral("Cannot read CPU information from SystemInfo.xml")};
    QTest::newRow("no hyper-threading")
        << currentForm("") << QString()
        << QStringList{reading,
                       QStringLiteral("Hyper-threading information is not stored in XML file - "
                                      "query system again")};
    QTest::newRow("no folder") << QByteArray() << QStringLiteral("/missing")
                               << QStringList{QStringLiteral(
                                      "Cannot save CPU information to SystemInfo.xml")};
}

void TestCpuInfo::withoutALogMessagesGoToTheDebugChannel()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, subfolder);
    QFETCH(QStringList, messages);
    QVERIFY(writeFile(infoFile(), content));
    const TestMessages channel;
    const CpuInfo info(nullptr, testFolder() + subfolder);
    QCOMPARE(channel.lines(), messages);
}

void TestCpuInfo::withALogTheDebugChannelStaysSilent()
{
    QVERIFY(writeFile(infoFile(), "<a>"));
    TemporaryLog log;
    const TestMessages channel;
    const CpuInfo bad(log, testFolder());
    const CpuInfo lost(log, testFolder() + QStringLiteral("/missing"));
    QCOMPARE(channel.lines(), QStringList());
    QCOMPARE(log.lines().size(), 3);
}

void TestCpuInfo::aCopyHasTheSameCounts()
{
    QVERIFY(writeFile(infoFile(),
                      currentForm("<processorCount>2</processorCount>"
                                  "<coresPerProcessor>8</coresPerProcessor>"
                                  "<hyperThreading>on</hyperThreading>")));
    TemporaryLog log;
    const CpuInfo info(log, testFolder());
    QVERIFY(QFile::remove(infoFile()));
    const CpuInfo copy(info);
    QCOMPARE(countsOf(copy), (Counts{2, 16, 8, true}));
    // Neither read nor asked again.
    QCOMPARE(log.lines(), texts({"Reading CPU information from SystemInfo.xml"}));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestCpuInfo::anAssignmentCopiesTheCounts()
{
    QVERIFY(writeFile(infoFile(),
                      currentForm("<processorCount>2</processorCount>"
                                  "<coresPerProcessor>8</coresPerProcessor>"
                                  "<hyperThreading>on</hyperThreading>")));
    const CpuInfo info(nullptr, testFolder());
    QVERIFY(writeFile(infoFile(), "<a>"));
    CpuInfo other(nullptr, testFolder());
    QCOMPARE(countsOf(other), Defaults);
    other = info;
    QCOMPARE(countsOf(other), (Counts{2, 16, 8, true}));
    other = *&other;
    QCOMPARE(countsOf(other), (Counts{2, 16, 8, true}));
}

QTEST_GUILESS_MAIN(TestCpuInfo)

#include "tst_cpuinfo.moc"
