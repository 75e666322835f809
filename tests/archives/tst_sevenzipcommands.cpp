#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include "FakeArchiver.h"
#include "OwnTempFolder.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace Vorn::Util;

namespace {

class Archive : public SevenZip
{
public:
    using SevenZip::setCompressedSize;
    using SevenZip::setFiles;
    using SevenZip::setUncompressedSize;
};

// The signals of an archive from its making on.
struct Spies
{
    explicit Spies(const SevenZip &archive)
        : progress(&archive, &SevenZip::progress)
        , compression(&archive, &SevenZip::compressionFinished)
        , extraction(&archive, &SevenZip::extractionFinished)
        , list(&archive, &SevenZip::listFinished)
    {
    }

    // Compressions, extractions, listings.
    QList<int> counts() const { return {compression.size(), extraction.size(), list.size()}; }

    QSignalSpy progress;
    QSignalSpy compression;
    QSignalSpy extraction;
    QSignalSpy list;
};

// Puts the current folder back, whatever a test does.
class CurrentFolder
{
public:
    explicit CurrentFolder(const QString &folder)
        : before_(QDir::currentPath())
    {
        QDir::setCurrent(folder);
    }
    ~CurrentFolder() { QDir::setCurrent(before_); }

private:
    Q_DISABLE_COPY(CurrentFolder)

    QString before_;
};

QStringList debugMessages; // NOLINT: the message handler is a plain function

class DebugMessages
{
public:
    DebugMessages()
        : before_(qInstallMessageHandler(&DebugMessages::handle))
    {
        debugMessages.clear();
    }
    ~DebugMessages() { qInstallMessageHandler(before_); }

private:
    Q_DISABLE_COPY(DebugMessages)

    static void handle(QtMsgType type, const QMessageLogContext & /*context*/, const QString &text)
    {
        if (type == QtDebugMsg)
            debugMessages << text;
    }

    QtMessageHandler before_;
};

QString canonical(const QString &folder)
{
    return QDir(folder).canonicalPath();
}

QStringList numberedFiles(int count)
{
    QStringList names;
    for (int i = 1; i <= count; ++i)
        names << QStringLiteral("file %1").arg(i);
    return names;
}

bool writeFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray recording(const char *name)
{
    QFile file(QStringLiteral(TEST_DATA "/archiver/") + QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString listFilePath(const char *name)
{
    return System::getTempDirPath() + QLatin1Char('/') + QString::fromLatin1(name);
}

QString listFileArgument(const char *name)
{
    return QLatin1Char('@') + listFilePath(name);
}

QStringList listFilesThere()
{
    return QDir(System::getTempDirPath())
        .entryList({QStringLiteral("listfile*")}, QDir::AllEntries | QDir::System);
}

QByteArray lines(const QStringList &names)
{
    QByteArray all;
    for (const QString &name : names)
        all += name.toUtf8() + (onWindows() ? "\r\n" : "\n");
    return all;
}

constexpr qint64 SizeBefore = 11; // what both sizes are until a line sets them

const char *const Ruler = "------------------- ----- ------------ ------------  ----------\n";

// A listing with this one table, in the form of the product's archiver.
QByteArray listing(const QByteArray &entries, const QByteArray &totals = QByteArray())
{
    return "Listing archive: x\n\n" + QByteArray(Ruler) + entries + Ruler + totals;
}

} // namespace

class TestSevenZipCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    // Command lines
    void theArgumentsOfACompression_data();
    void theArgumentsOfACompression();
    void aCombinationWithoutSwitchesGivesEmptyArguments_data();
    void aCombinationWithoutSwitchesGivesEmptyArguments();
    void compressingNoFilesNamesNone();
    void theArgumentsOfAnExtraction();
    void theArgumentsOfAListing();
    void argumentsArriveToTheLetter();
    void theArgumentsAreSentAsOneDebugMessage_data();
    void theArgumentsAreSentAsOneDebugMessage();
    void theInputOfTheArchiverIsAtItsEnd();

    // Names
    void namesStayWithoutACurrentPath();
    void namesBelowTheCurrentPathBecomeRelative();
    void everyOccurrenceOfTheCurrentPathIsRemoved();
    void aCurrentPathWithASlashAtItsEndRemovesNothing();

    // List files
    void upTo32FilesStandOnTheCommandLine_data();
    void upTo32FilesStandOnTheCommandLine();
    void from33FilesOnAListFileStandsOnTheCommandLine_data();
    void from33FilesOnAListFileStandsOnTheCommandLine();
    void theListFileIsWrittenAtOnce();
    void theListFileHoldsTheNamesInUtf8();
    void theListFileHoldsTheRelativeNames();
    void theListFileTakesTheFirstFreeName_data();
    void theListFileTakesTheFirstFreeName();
    void twoCompressionsAtOnceHaveTheirOwnListFiles();
    void aLinkToNowhereIsInTheWayOfAListFile();
    void theListFileIsRemovedAtTheEnd_data();
    void theListFileIsRemovedAtTheEnd();
    void aListFileThatCannotBeWrittenStaysOnTheCommandLine();

    // Start and end
    void aStartResetsErrorAndOutput_data();
    void aStartResetsErrorAndOutput();
    void aCompressionKeepsTheFilesGiven();
    void anExtractionSetsTheFolderAndClearsTheFiles();
    void exitCodesAreMapped_data();
    void exitCodesAreMapped();
    void aCrashIsAFatalError();
    void theBlockingFormsSignalBeforeTheyReturn();
    void theAsynchronousFormsReturnAtOnce_data();
    void theAsynchronousFormsReturnAtOnce();
    void theResultsStandWhenTheSignalComes();
    void anOlderCommandAnnouncesTheKindOfTheNewerOne();
    void everyCommandStaysAChild();
    void theArchiverOutlivesItsObject();
    void anArchiveMayBeDeletedInItsOwnSignals_data();
    void anArchiveMayBeDeletedInItsOwnSignals();
    void settingsStayAcrossOperations();

    // The current folder
    void theCurrentFolderIsSwitchedAndRestored_data();
    void theCurrentFolderIsSwitchedAndRestored();
    void anEmptyCurrentPathLeavesTheCurrentFolder();
    void aCurrentPathThatWasClearedMeanwhileRestoresNothing();
    void theCurrentFolderIsBackWhenTheSignalComes();
    void aCrashRestoresTheCurrentFolder();

    // What a compression reports
    void theSizesOfACompressionAreThoseOfTheFiles();
    void theSizesAreTakenInTheCurrentPath();
    void theSizesAreTakenAfterAFailureToo();
    void theOutputOfACompressionIsUtf8();
    void theOutputOfACompressionKeepsOnlyTheLastBlock();
    void standardErrorArrivesWithTheOutput();

    // What an extraction reports
    void linesOfAnExtraction_data();
    void linesOfAnExtraction();
    void aRecordedExtraction_data();
    void aRecordedExtraction();
    void aLineOfAnExtractionInTwoBlocks();
    void anExtractionReadsStandardErrorToo();

    // What a listing reports
    void headersOfAListing_data();
    void headersOfAListing();
    void unknownHeadersOfAListingFallBack_data();
    void unknownHeadersOfAListingFallBack();
    void entriesOfAListing_data();
    void entriesOfAListing();
    void totalsOfAListing_data();
    void totalsOfAListing();
    void aRecordedListing_data();
    void aRecordedListing();
    void aLineOfAListingInTwoBlocks();
    void aListingAppendsToTheFiles();
    void aSecondListingStartsWithItsHeader();

private:
    OwnTempFolder temp_;
};

void TestSevenZipCommands::initTestCase()
{
    QVERIFY(temp_.isUsed());
    QVERIFY(QFile::exists(System::getCurrentExePath() + QStringLiteral("/7z.exe")));
}

void TestSevenZipCommands::cleanup()
{
    QCOMPARE(listFilesThere(), QStringList());
}

void TestSevenZipCommands::theArgumentsOfACompression_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("threads");
    QTest::addColumn<QString>("typeSwitch");
    QTest::addColumn<QStringList>("lastSwitches");
    const auto row = [](const char *name, int type, int method, int level, int mode, bool threads,
                        const char *typeSwitch, const char *lastSwitches) {
        QTest::newRow(name) << type << method << level << mode << threads
                            << QString::fromLatin1(typeSwitch)
                            << QString::fromLatin1(lastSwitches).split(QLatin1Char(' '));
    };
    row("7z, Copy", 0, 0, 1, 0, true, "-t7z", "-m0=Copy -mx=1 -mmt=on");
    row("7z, Deflate", 0, 1, 1, 0, true, "-t7z", "-m0=Deflate -mx=1 -mmt=on");
    row("7z, LZMA", 0, 2, 1, 0, true, "-t7z", "-m0=LZMA -mx=1 -ma=0 -mmt=on");
    row("7z, LZMA2", 0, 3, 1, 0, true, "-t7z", "-m0=LZMA2 -mx=1 -ma=0 -mmt=on");
    row("7z, BZip2", 0, 4, 1, 0, true, "-t7z", "-m0=BZip2 -mx=1 -mmt=on");
    row("zip, Copy", 1, 0, 1, 0, true, "-tzip", "-mm=Copy -mx=1 -mmt=on");
    row("zip, Deflate", 1, 1, 1, 0, true, "-tzip", "-mm=Deflate -mx=1 -mmt=on");
    row("without threads", 0, 3, 1, 0, false, "-t7z", "-m0=LZMA2 -mx=1 -ma=0 -mmt=off");
    row("level and mode", 0, 2, 9, 1, true, "-t7z", "-m0=LZMA -mx=9 -ma=1 -mmt=on");
    row("numbers without a name", 0, 3, 42, 7, false, "-t7z", "-m0=LZMA2 -mx=42 -ma=7 -mmt=off");
    row("zip has no mode", 1, 1, 0, 1, false, "-tzip", "-mm=Deflate -mx=0 -mmt=off");
}

void TestSevenZipCommands::theArgumentsOfACompression()
{
    QFETCH(int, type);
    QFETCH(int, method);
    QFETCH(int, level);
    QFETCH(int, mode);
    QFETCH(bool, threads);
    QFETCH(QString, typeSwitch);
    QFETCH(QStringList, lastSwitches);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x/archive.bin"));
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    archive.setLevel(static_cast<SevenZip::Level>(level));
    archive.setMode(static_cast<SevenZip::Mode>(mode));
    archive.setUseThreads(threads);
    QVERIFY(archive.compressFiles({QStringLiteral("b.txt"), QStringLiteral("a.txt")}));
    const QStringList names{QStringLiteral("x/archive.bin"), QStringLiteral("b.txt"),
                            QStringLiteral("a.txt")};
    QCOMPARE(fake.arguments(),
             QStringList({QStringLiteral("a"), typeSwitch}) + names + lastSwitches);
}

void TestSevenZipCommands::aCombinationWithoutSwitchesGivesEmptyArguments_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, int type, int method, const char *expected) {
        QTest::newRow(name) << type << method
                            << QString::fromLatin1(expected).split(QLatin1Char('|'));
    };
    row("zip, LZMA", 1, 2, "a|-tzip|x|f||-mx=1|-mmt=on");
    row("zip, LZMA2", 1, 3, "a|-tzip|x|f||-mx=1|-mmt=on");
    row("zip, BZip2", 1, 4, "a|-tzip|x|f||-mx=1|-mmt=on");
    row("7z, 5", 0, 5, "a|-t7z|x|f||-mx=1|-mmt=on");
    row("another type, LZMA2", 2, 3, "a||x|f|-m0=LZMA2|-mx=1|-mmt=on");
    row("another type, Copy", 2, 0, "a||x|f|-m0=Copy|-mx=1|-mmt=on");
}

void TestSevenZipCommands::aCombinationWithoutSwitchesGivesEmptyArguments()
{
#ifdef QT_NO_DEBUG
    QFETCH(int, type);
    QFETCH(int, method);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x"));
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QTEST(fake.arguments(), "expected");
#else
    QSKIP("A debug build stops here with an assertion, which tst_sevenzip tests.");
#endif
}

void TestSevenZipCommands::compressingNoFilesNamesNone()
{
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x.7z"));
    QVERIFY(archive.compressFiles({}));
    const QStringList expected{QStringLiteral("a"),      QStringLiteral("-t7z"),
                               QStringLiteral("x.7z"),   QStringLiteral("-m0=LZMA2"),
                               QStringLiteral("-mx=1"),  QStringLiteral("-ma=0"),
                               QStringLiteral("-mmt=on")};
    QCOMPARE(fake.arguments(), expected);
}

void TestSevenZipCommands::theArgumentsOfAnExtraction()
{
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("folder/x.7z"));
    archive.setType(SevenZip::TypeZip);
    archive.setUseThreads(false);
    QVERIFY(archive.extractFilesTo(QStringLiteral("C:/to here/")));
    const QStringList expected{QStringLiteral("x"), QStringLiteral("folder/x.7z"),
                               QStringLiteral("-oC:/to here/"), QStringLiteral("-aoa")};
    QCOMPARE(fake.arguments(), expected);
}

void TestSevenZipCommands::theArgumentsOfAListing()
{
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("folder/x.7z"));
    QVERIFY(archive.listFiles());
    QCOMPARE(fake.arguments(), QStringList({QStringLiteral("l"), QStringLiteral("folder/x.7z")}));
}

void TestSevenZipCommands::argumentsArriveToTheLetter()
{
    const FakeArchiver fake;
    const QStringList names{QStringLiteral("two  blanks"),
                            QStringLiteral("a \"quoted\" word"),
                            QStringLiteral("ends with a\\"),
                            QStringLiteral("ends blank \\"),
                            QStringLiteral("%PATH% ^& $HOME `x` *"),
                            QString::fromUtf8("größe Ω 日本"),
                            QString(),
                            QStringLiteral("%1 %2")};
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("my archive's.7z"));
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.arguments().mid(2, 1 + names.size()), QStringList{archive.archiveFile()} + names);
}

void TestSevenZipCommands::theArgumentsAreSentAsOneDebugMessage_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("expected");
    QTest::newRow("compress") << QStringLiteral("compress")
                              << QString::fromUtf8("a -t7z x y.7z ä \"b\" c -m0=LZMA2 -mx=1 -ma=0 "
                                                   "-mmt=on");
    QTest::newRow("extract") << QStringLiteral("extract") << QStringLiteral("x x y.7z -oto -aoa");
    QTest::newRow("list") << QStringLiteral("list") << QStringLiteral("l x y.7z");
}

void TestSevenZipCommands::theArgumentsAreSentAsOneDebugMessage()
{
    QFETCH(QString, operation);
    QFETCH(QString, expected);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x y.7z"));
    const DebugMessages messages;
    if (operation == QLatin1String("compress"))
        archive.compressFiles({QString::fromUtf8("ä"), QStringLiteral("\"b\" c")});
    else if (operation == QLatin1String("extract"))
        archive.extractFilesTo(QStringLiteral("to"));
    else
        archive.listFiles();
    QCOMPARE(debugMessages, QStringList{expected});
}

void TestSevenZipCommands::theInputOfTheArchiverIsAtItsEnd()
{
    FakeArchiver fake;
    fake.print("read\n"); // after the input has ended
    SevenZip archive;
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QVERIFY(fake.input().isEmpty());
    QCOMPARE(archive.output(), QStringLiteral("read\n"));
}

void TestSevenZipCommands::namesStayWithoutACurrentPath()
{
    const FakeArchiver fake;
    const QStringList names{QStringLiteral("/a/b.txt"), QStringLiteral("C:/a\\b.txt"),
                            QStringLiteral("./c//d")};
    SevenZip archive;
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.arguments().mid(3, names.size()), names);
}

void TestSevenZipCommands::namesBelowTheCurrentPathBecomeRelative()
{
    const TestFolder folder;
    const FakeArchiver fake;
    const QString other = folder.path().toUpper() + QStringLiteral("/e.txt");
    SevenZip archive;
    archive.setCurrentPath(folder.path());
    const QStringList names{folder.path() + QStringLiteral("/a/b.txt"),
                            folder.path() + QStringLiteral("-2/c.txt"), QStringLiteral("d/e.txt"),
                            folder.path(), other};
    QVERIFY(archive.compressFiles(names));
    const QStringList expected{
        QDir::toNativeSeparators(QStringLiteral("a/b.txt")), QDir::toNativeSeparators(names.at(1)),
        QDir::toNativeSeparators(QStringLiteral("d/e.txt")),
        QDir::toNativeSeparators(folder.path()), QDir::toNativeSeparators(other)}; // case counts
    QCOMPARE(fake.arguments().mid(3, names.size()), expected);
    QCOMPARE(archive.files(), names);
}

void TestSevenZipCommands::everyOccurrenceOfTheCurrentPathIsRemoved()
{
    const TestFolder folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("w")));
    const CurrentFolder current(folder.path());
    const FakeArchiver fake;
    SevenZip archive;
    archive.setCurrentPath(QStringLiteral("w"));
    QVERIFY(archive.compressFiles({QStringLiteral("w/a/w/b.txt"), QStringLiteral("new/c.txt")}));
    const QStringList expected{QDir::toNativeSeparators(QStringLiteral("a/b.txt")),
                               QStringLiteral("nec.txt")};
    QCOMPARE(fake.arguments().mid(3, 2), expected);
}

void TestSevenZipCommands::aCurrentPathWithASlashAtItsEndRemovesNothing()
{
    const TestFolder folder;
    const FakeArchiver fake;
    const QString name = folder.path() + QStringLiteral("/a.txt");
    SevenZip archive;
    archive.setCurrentPath(folder.path() + QLatin1Char('/'));
    QVERIFY(archive.compressFiles({name}));
    QCOMPARE(fake.arguments().value(3), QDir::toNativeSeparators(name));
}

void TestSevenZipCommands::upTo32FilesStandOnTheCommandLine_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("1") << 1;
    QTest::newRow("31") << 31;
    QTest::newRow("32") << 32;
}

void TestSevenZipCommands::upTo32FilesStandOnTheCommandLine()
{
    QFETCH(int, count);
    const FakeArchiver fake;
    SevenZip archive;
    QVERIFY(archive.compressFiles(numberedFiles(count)));
    QCOMPARE(fake.arguments().size(), 7 + count);
    QCOMPARE(fake.arguments().mid(3, count), numberedFiles(count));
    QVERIFY(!fake.hasListFile());
}

void TestSevenZipCommands::from33FilesOnAListFileStandsOnTheCommandLine_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("33") << 33;
    QTest::newRow("34") << 34;
    QTest::newRow("2000") << 2000;
}

void TestSevenZipCommands::from33FilesOnAListFileStandsOnTheCommandLine()
{
    QFETCH(int, count);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x.7z"));
    QVERIFY(archive.compressFiles(numberedFiles(count)));
    const QStringList expected{QStringLiteral("a"),         QStringLiteral("-t7z"),
                               QStringLiteral("x.7z"),      listFileArgument("listfile.tmp"),
                               QStringLiteral("-m0=LZMA2"), QStringLiteral("-mx=1"),
                               QStringLiteral("-ma=0"),     QStringLiteral("-mmt=on")};
    QCOMPARE(fake.arguments(), expected);
    QVERIFY(fake.hasListFile());
    QCOMPARE(fake.listFile(), lines(numberedFiles(count)));
    QCOMPARE(archive.files(), numberedFiles(count));
}

void TestSevenZipCommands::theListFileIsWrittenAtOnce()
{
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end"));
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    archive.startCompressingFiles(numberedFiles(33));
    QFile file(listFilePath("listfile.tmp"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), lines(numberedFiles(33)));
    file.close();
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
}

void TestSevenZipCommands::theListFileHoldsTheNamesInUtf8()
{
    const FakeArchiver fake;
    QStringList names = numberedFiles(30);
    names << QString::fromUtf8("größe.txt") << QString::fromUtf8("日本 Ω") << QString::fromUtf8("😀")
          << QStringLiteral("-minus") << QStringLiteral("@at") << QStringLiteral("\"quoted\" x");
    SevenZip archive;
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.listFile(), lines(names)); // and no byte-order mark
}

void TestSevenZipCommands::theListFileHoldsTheRelativeNames()
{
    const TestFolder folder;
    const FakeArchiver fake;
    QStringList names;
    QStringList expected;
    for (int i = 0; i < 33; ++i) {
        const QString name = QStringLiteral("sub/%1.txt").arg(i);
        names << folder.path() + QLatin1Char('/') + name;
        expected << QDir::toNativeSeparators(name);
    }
    SevenZip archive;
    archive.setCurrentPath(folder.path());
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.listFile(), lines(expected));
    QCOMPARE(archive.files(), names);
}

void TestSevenZipCommands::theListFileTakesTheFirstFreeName_data()
{
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("expected");
    const QString first = QStringLiteral("listfile.tmp");
    const QString second = QStringLiteral("listfile1.tmp");
    const QString third = QStringLiteral("listfile2.tmp");
    QTest::newRow("none taken") << QStringList() << first;
    QTest::newRow("first taken") << QStringList{first} << second;
    QTest::newRow("two taken") << QStringList{first, second} << third;
    QTest::newRow("later taken") << QStringList{second, third} << first;
    QTest::newRow("gap") << QStringList{first, third} << second;
    QStringList many{first};
    for (int i = 1; i <= 10; ++i)
        many << QStringLiteral("listfile%1.tmp").arg(i);
    QTest::newRow("eleven taken") << many << QStringLiteral("listfile11.tmp");
}

void TestSevenZipCommands::theListFileTakesTheFirstFreeName()
{
    QFETCH(QStringList, taken);
    QFETCH(QString, expected);
    const FakeArchiver fake;
    for (const QString &name : qAsConst(taken))
        QVERIFY(writeFile(listFilePath(qPrintable(name)), "mine"));
    SevenZip archive;
    QVERIFY(archive.compressFiles(numberedFiles(33)));
    QCOMPARE(fake.arguments().value(3), listFileArgument(qPrintable(expected)));
    QCOMPARE(fake.listFile(), lines(numberedFiles(33)));

    QStringList left = listFilesThere();
    left.sort();
    taken.sort();
    QCOMPARE(left, taken);
    for (const QString &name : qAsConst(taken)) {
        QFile file(listFilePath(qPrintable(name)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("mine"));
        QVERIFY(file.remove());
    }
}

void TestSevenZipCommands::twoCompressionsAtOnceHaveTheirOwnListFiles()
{
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    FakeArchiver first;
    first.waitFor(QStringLiteral("end"));
    archive.startCompressingFiles(numberedFiles(33));
    FakeArchiver second;
    second.waitFor(QStringLiteral("end"));
    archive.startCompressingFiles(numberedFiles(40));
    QTRY_VERIFY(first.wasCalled() && second.wasCalled());
    QCOMPARE(first.arguments().value(3), listFileArgument("listfile.tmp"));
    QCOMPARE(second.arguments().value(3), listFileArgument("listfile1.tmp"));
    QCOMPARE(first.listFile(), lines(numberedFiles(33)));
    QCOMPARE(second.listFile(), lines(numberedFiles(40)));

    QVERIFY(first.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
    QCOMPARE(listFilesThere(), QStringList{QStringLiteral("listfile1.tmp")});
    QVERIFY(second.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
}

void TestSevenZipCommands::aLinkToNowhereIsInTheWayOfAListFile()
{
    const QString link = listFilePath("listfile.tmp");
    const QString target = temp_.path() + QStringLiteral("/target");
    if (!QFile::link(target, link) || !QFileInfo(link).isSymLink()) {
        QFile::remove(link);
        QSKIP("This system has no links with names of that kind.");
    }
    const FakeArchiver fake;
    SevenZip archive;
    QVERIFY(archive.compressFiles(numberedFiles(33)));
    QCOMPARE(fake.arguments().value(3), listFileArgument("listfile1.tmp"));
    QCOMPARE(fake.listFile(), lines(numberedFiles(33)));
    QVERIFY(!QFile::exists(target));
    QVERIFY(QFileInfo(link).isSymLink());
    QVERIFY(QFile::remove(link));
}

void TestSevenZipCommands::theListFileIsRemovedAtTheEnd_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::newRow("success") << 0;
    QTest::newRow("failure") << 2;
    QTest::newRow("crash") << -1;
}

void TestSevenZipCommands::theListFileIsRemovedAtTheEnd()
{
    QFETCH(int, exitCode);
    FakeArchiver fake;
    if (exitCode < 0)
        fake.crash();
    else
        fake.exit(exitCode);
    SevenZip archive;
    bool wasThere = true;
    connect(&archive, &SevenZip::compressionFinished, &archive,
            [&wasThere] { wasThere = QFile::exists(listFilePath("listfile.tmp")); });
    QCOMPARE(archive.compressFiles(numberedFiles(33)), exitCode == 0);
    QVERIFY(fake.hasListFile());
    QVERIFY(!wasThere);
    QCOMPARE(listFilesThere(), QStringList());
}

// A folder that is gone cannot be written to by any user.
void TestSevenZipCommands::aListFileThatCannotBeWrittenStaysOnTheCommandLine()
{
    const QString folder = temp_.path();
    const QString away = folder + QStringLiteral(" away");
    FakeArchiver fake;
    fake.exit(2);
    QVERIFY(QDir().rename(folder, away));
    SevenZip archive;
    const bool result = archive.compressFiles(numberedFiles(33));
    QVERIFY(QDir().rename(away, folder));
    QVERIFY(!result);
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QCOMPARE(fake.arguments().value(3), listFileArgument("listfile.tmp"));
    QCOMPARE(fake.arguments().size(), 8);
    QVERIFY(!fake.hasListFile());
}

void TestSevenZipCommands::aStartResetsErrorAndOutput_data()
{
    QTest::addColumn<QString>("operation");
    for (const char *operation : {"compress", "extract", "list"})
        QTest::newRow(operation) << QString::fromLatin1(operation);
}

void TestSevenZipCommands::aStartResetsErrorAndOutput()
{
    QFETCH(QString, operation);
    SevenZip archive;
    {
        FakeArchiver fake;
        fake.print("complaint").exit(2);
        QVERIFY(!archive.compressFiles({QStringLiteral("f")}));
    }
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QCOMPARE(archive.output(), QStringLiteral("complaint"));

    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end"));
    const Spies spies(archive);
    if (operation == QLatin1String("compress"))
        archive.startCompressingFiles({QStringLiteral("f")});
    else if (operation == QLatin1String("extract"))
        archive.startExtractingFilesTo(QStringLiteral("folder"));
    else
        archive.startListingFiles();
    QCOMPARE(archive.error(), SevenZip::NoError);
    QVERIFY(archive.isOk());
    QVERIFY(archive.output().isEmpty());
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QTRY_COMPARE(spies.compression.size() + spies.extraction.size() + spies.list.size(), 1);
}

void TestSevenZipCommands::aCompressionKeepsTheFilesGiven()
{
    FakeArchiver fake;
    fake.print("Compressing  other.txt\n- another\nExtracting  third\n");
    SevenZip archive;
    const QStringList files{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b")};
    QVERIFY(archive.compressFiles(files));
    QCOMPARE(archive.files(), files);
    QVERIFY(archive.compressFiles({QStringLiteral("c")}));
    QCOMPARE(archive.files(), QStringList{QStringLiteral("c")});
}

void TestSevenZipCommands::anExtractionSetsTheFolderAndClearsTheFiles()
{
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end")).print("Extracting  new\n");
    Archive archive;
    archive.setFiles({QStringLiteral("old")});
    QSignalSpy finished(&archive, &SevenZip::extractionFinished);
    archive.startExtractingFilesTo(QStringLiteral("to/folder"));
    QVERIFY(archive.files().isEmpty());
    QCOMPARE(archive.folder(), QStringLiteral("to/folder"));
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
    QCOMPARE(archive.files(), QStringList{QStringLiteral("new")});
}

void TestSevenZipCommands::exitCodesAreMapped_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<int>("error");
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("1, a warning") << 1 << 1;
    QTest::newRow("2, fatal") << 2 << 2;
    QTest::newRow("3") << 3 << 0;
    QTest::newRow("7, a wrong command line") << 7 << 0;
    QTest::newRow("8, out of memory") << 8 << 0;
    QTest::newRow("255, stopped") << 255 << 0;
}

void TestSevenZipCommands::exitCodesAreMapped()
{
    QFETCH(int, exitCode);
    QFETCH(int, error);
    FakeArchiver fake;
    fake.exit(exitCode);
    SevenZip archive;
    const std::function<bool()> operations[]
        = {[&archive] { return archive.compressFiles({QStringLiteral("f")}); },
           [&archive] { return archive.extractFilesTo(QStringLiteral("to")); },
           [&archive] { return archive.listFiles(); }};
    for (const auto &operation : operations) {
        QCOMPARE(operation(), error == 0);
        QCOMPARE(static_cast<int>(archive.error()), error);
        QCOMPARE(archive.isOk(), error == 0);
    }
}

void TestSevenZipCommands::aCrashIsAFatalError()
{
    FakeArchiver fake;
    fake.print("Extracting  a\n").crash();
    SevenZip archive;
    const Spies spies(archive);
    QVERIFY(!archive.extractFilesTo(QStringLiteral("to")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QCOMPARE(archive.files(), QStringList{QStringLiteral("a")});
    QCOMPARE(spies.counts(), QList<int>({0, 1, 0}));
}

void TestSevenZipCommands::theBlockingFormsSignalBeforeTheyReturn()
{
    const FakeArchiver fake;
    SevenZip archive;
    const Spies spies(archive);
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QCOMPARE(spies.counts(), QList<int>({1, 0, 0}));
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QCOMPARE(spies.counts(), QList<int>({1, 1, 0}));
    QVERIFY(archive.listFiles());
    QCOMPARE(spies.counts(), QList<int>({1, 1, 1}));
    QCoreApplication::processEvents();
    QCOMPARE(spies.counts(), QList<int>({1, 1, 1}));
    QVERIFY(spies.progress.isEmpty());
}

void TestSevenZipCommands::theAsynchronousFormsReturnAtOnce_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("compression") << 0;
    QTest::newRow("extraction") << 1;
    QTest::newRow("listing") << 2;
}

void TestSevenZipCommands::theAsynchronousFormsReturnAtOnce()
{
    QFETCH(int, kind);
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end")).exit(1);
    SevenZip archive;
    const Spies spies(archive);
    if (kind == 0)
        archive.startCompressingFiles({QStringLiteral("f")});
    else if (kind == 1)
        archive.startExtractingFilesTo(QStringLiteral("to"));
    else
        archive.startListingFiles();
    QTRY_VERIFY(fake.wasCalled());
    QCOMPARE(spies.counts(), QList<int>({0, 0, 0}));
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QList<int> expected{0, 0, 0};
    expected[kind] = 1;
    QTRY_COMPARE(spies.counts(), expected);
    QCOMPARE(archive.error(), SevenZip::Warning);
    QVERIFY(spies.progress.isEmpty());
}

void TestSevenZipCommands::theResultsStandWhenTheSignalComes()
{
    FakeArchiver fake;
    fake.print("Type = zip\nMethod = Deflate\n" + listing("1 2 3 4 5 name\n", "6 7 1 files\n"))
        .exit(1);
    SevenZip archive;
    int signalsSeen = 0;
    connect(&archive, &SevenZip::listFinished, &archive, [&] {
        ++signalsSeen;
        QCOMPARE(archive.error(), SevenZip::Warning);
        QCOMPARE(archive.type(), SevenZip::TypeZip);
        QCOMPARE(archive.method(), SevenZip::Deflate);
        QCOMPARE(archive.files(), QStringList{QStringLiteral("name")});
        QCOMPARE(archive.uncompressedSize(), Q_INT64_C(6));
        QCOMPARE(archive.compressedSize(), Q_INT64_C(7));
    });
    QVERIFY(!archive.listFiles());
    QCOMPARE(signalsSeen, 1);
}

void TestSevenZipCommands::anOlderCommandAnnouncesTheKindOfTheNewerOne()
{
    SevenZip archive;
    const Spies spies(archive);
    FakeArchiver older;
    older.waitFor(QStringLiteral("end")).exit(2);
    archive.startCompressingFiles({QStringLiteral("f")});
    FakeArchiver newer;
    newer.waitFor(QStringLiteral("end"));
    archive.startListingFiles();
    QTRY_VERIFY(older.wasCalled() && newer.wasCalled());

    QVERIFY(older.goOn(QStringLiteral("end")));
    QTRY_COMPARE(spies.counts(), QList<int>({0, 0, 1}));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(newer.goOn(QStringLiteral("end")));
    QTRY_COMPARE(spies.counts(), QList<int>({0, 0, 2}));
    QCOMPARE(archive.error(), SevenZip::NoError);
}

void TestSevenZipCommands::everyCommandStaysAChild()
{
    const FakeArchiver fake;
    auto archive = std::make_unique<SevenZip>();
    QVERIFY(archive->listFiles());
    QVERIFY(archive->compressFiles({QStringLiteral("f")}));
    QVERIFY(archive->extractFilesTo(QStringLiteral("to")));
    QList<QPointer<QObject>> commands;
    QList<QByteArray> classes;
    for (QObject *command : archive->children()) {
        commands << command;
        classes << command->metaObject()->className();
    }
    const QList<QByteArray> expected{"Vorn::Util::SevenZipListCommand",
                                     "Vorn::Util::SevenZipCompressCommand",
                                     "Vorn::Util::SevenZipExtractCommand"};
    QCOMPARE(classes, expected);
    archive.reset();
    for (const QPointer<QObject> &command : qAsConst(commands))
        QVERIFY(command.isNull());
}

void TestSevenZipCommands::theArchiverOutlivesItsObject()
{
    const TestFolder folder;
    const QString end = folder.filePath(QStringLiteral("end"));
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("go on")).writeFile(end, "ended");
    auto archive = std::make_unique<SevenZip>();
    archive->startCompressingFiles({QStringLiteral("f")});
    QTRY_VERIFY(fake.wasCalled());
    archive.reset();
    QVERIFY(fake.goOn(QStringLiteral("go on")));
    QTRY_VERIFY(QFile::exists(end));
}

void TestSevenZipCommands::anArchiveMayBeDeletedInItsOwnSignals_data()
{
    theAsynchronousFormsReturnAtOnce_data();
}

// The blocking call then tells of no success, although there was one.
void TestSevenZipCommands::anArchiveMayBeDeletedInItsOwnSignals()
{
    QFETCH(int, kind);
    const FakeArchiver fake;
    const QPointer<SevenZip> archive = new SevenZip;
    const auto deleteArchive = [&archive] { delete archive; };
    bool result = true;
    if (kind == 0) {
        connect(archive, &SevenZip::compressionFinished, this, deleteArchive);
        result = archive->compressFiles(numberedFiles(33)); // with a list file to take away
    } else if (kind == 1) {
        connect(archive, &SevenZip::extractionFinished, this, deleteArchive);
        result = archive->extractFilesTo(QStringLiteral("to"));
    } else {
        connect(archive, &SevenZip::listFinished, this, deleteArchive);
        result = archive->listFiles();
    }
    QVERIFY(!archive);
    QVERIFY(!result);
    QVERIFY(fake.wasCalled());
}

void TestSevenZipCommands::settingsStayAcrossOperations()
{
    const FakeArchiver fake;
    const TestFolder folder;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x.bin"));
    archive.setCurrentPath(folder.path());
    archive.setType(SevenZip::TypeZip);
    archive.setMethod(SevenZip::Deflate);
    archive.setLevel(SevenZip::Maximum);
    archive.setMode(SevenZip::NormalMode);
    archive.setUseThreads(false);
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QVERIFY(archive.listFiles()); // prints no type and no method
    QCOMPARE(archive.archiveFile(), QStringLiteral("x.bin"));
    QCOMPARE(archive.currentPath(), folder.path());
    QCOMPARE(archive.type(), SevenZip::TypeZip);
    QCOMPARE(archive.method(), SevenZip::Deflate);
    QCOMPARE(archive.level(), SevenZip::Maximum);
    QCOMPARE(archive.mode(), SevenZip::NormalMode);
    QVERIFY(!archive.useThreads());
    QCOMPARE(archive.folder(), QStringLiteral("to"));
}

void TestSevenZipCommands::theCurrentFolderIsSwitchedAndRestored_data()
{
    theAsynchronousFormsReturnAtOnce_data();
}

void TestSevenZipCommands::theCurrentFolderIsSwitchedAndRestored()
{
    QFETCH(int, kind);
    const TestFolder folder;
    const QString before = QDir::currentPath();
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end")).exit(2);
    SevenZip archive;
    const Spies spies(archive);
    archive.setCurrentPath(folder.path());
    if (kind == 0)
        archive.startCompressingFiles({QStringLiteral("f")});
    else if (kind == 1)
        archive.startExtractingFilesTo(QStringLiteral("to"));
    else
        archive.startListingFiles();
    QCOMPARE(QDir::currentPath(), canonical(folder.path()));
    QTRY_VERIFY(fake.wasCalled());
    QCOMPARE(fake.folder(), canonical(folder.path()));
    QCOMPARE(QDir::currentPath(), canonical(folder.path()));
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QTRY_COMPARE(QDir::currentPath(), before);
    QCOMPARE(spies.counts().at(kind), 1);
}

void TestSevenZipCommands::anEmptyCurrentPathLeavesTheCurrentFolder()
{
    const TestFolder folder;
    const CurrentFolder current(folder.path());
    const QString before = QDir::currentPath();
    const FakeArchiver fake;
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::listFinished);
    archive.startListingFiles();
    QCOMPARE(QDir::currentPath(), before);
    QVERIFY(finished.wait());
    QCOMPARE(fake.folder(), before);
    QCOMPARE(QDir::currentPath(), before);
}

void TestSevenZipCommands::aCurrentPathThatWasClearedMeanwhileRestoresNothing()
{
    const CurrentFolder current(QDir::currentPath());
    const TestFolder folder;
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end"));
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::listFinished);
    archive.setCurrentPath(folder.path());
    archive.startListingFiles();
    archive.setCurrentPath(QString());
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
    QCOMPARE(QDir::currentPath(), canonical(folder.path()));
    QDir::setCurrent(canonical(temp_.path())); // a folder in use cannot be removed everywhere
}

void TestSevenZipCommands::theCurrentFolderIsBackWhenTheSignalComes()
{
    const TestFolder folder;
    const QString before = QDir::currentPath();
    const FakeArchiver fake;
    SevenZip archive;
    archive.setCurrentPath(folder.path());
    QString seen;
    connect(&archive, &SevenZip::compressionFinished, &archive,
            [&seen] { seen = QDir::currentPath(); });
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QCOMPARE(seen, before);
    QCOMPARE(fake.folder(), canonical(folder.path()));
}

void TestSevenZipCommands::aCrashRestoresTheCurrentFolder()
{
    const TestFolder folder;
    const QString before = QDir::currentPath();
    FakeArchiver fake;
    fake.crash();
    SevenZip archive;
    archive.setCurrentPath(folder.path());
    QVERIFY(!archive.listFiles());
    QCOMPARE(QDir::currentPath(), before);
}

void TestSevenZipCommands::theSizesOfACompressionAreThoseOfTheFiles()
{
    const TestFolder folder;
    const QString archiveFile = folder.filePath(QStringLiteral("x.7z"));
    const QString ten = folder.filePath(QStringLiteral("ten"));
    QVERIFY(writeFile(ten, "0123456789"));
    FakeArchiver fake;
    fake.writeFile(archiveFile, QByteArray(77, 'x'))
        .print("Size: 1\nCompressed: 2\n"); // means nothing here
    SevenZip archive;
    archive.setArchiveFile(archiveFile);
    QVERIFY(archive.compressFiles({ten, folder.filePath(QStringLiteral("missing")), ten}));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(77));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(20));
}

void TestSevenZipCommands::theSizesAreTakenInTheCurrentPath()
{
    const TestFolder folder;
    QVERIFY(writeFile(folder.filePath(QStringLiteral("only here")), "0123456789"));
    FakeArchiver fake;
    fake.writeFile(QStringLiteral("x.7z"), QByteArray(5, 'x'));
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x.7z"));
    archive.setCurrentPath(folder.path());
    QVERIFY(archive.compressFiles({QStringLiteral("only here")}));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(5));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(10));
}

void TestSevenZipCommands::theSizesAreTakenAfterAFailureToo()
{
    const TestFolder folder;
    const QString ten = folder.filePath(QStringLiteral("ten"));
    QVERIFY(writeFile(ten, "0123456789"));
    FakeArchiver fake;
    fake.exit(2);
    Archive archive;
    archive.setCompressedSize(99);
    archive.setArchiveFile(folder.filePath(QStringLiteral("missing.7z")));
    QVERIFY(!archive.compressFiles({ten}));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(0));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(10));
}

void TestSevenZipCommands::theOutputOfACompressionIsUtf8()
{
    const QString text = QString::fromUtf8("größe  日本 😀\r\nand\n\ta line without an end");
    FakeArchiver fake;
    fake.print(text.toUtf8());
    SevenZip archive;
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QCOMPARE(archive.output(), text); // to the letter
}

void TestSevenZipCommands::theOutputOfACompressionKeepsOnlyTheLastBlock()
{
    FakeArchiver fake;
    fake.print("first\nblock").waitFor(QStringLiteral("second"));
    fake.print(" second\n").waitFor(QStringLiteral("end"));
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    archive.startCompressingFiles({QStringLiteral("f")});
    QTRY_COMPARE(archive.output(), QStringLiteral("first\nblock"));
    QVERIFY(fake.goOn(QStringLiteral("second")));
    QTRY_COMPARE(archive.output(), QStringLiteral(" second\n"));
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
    QCOMPARE(archive.output(), QStringLiteral(" second\n"));
}

void TestSevenZipCommands::standardErrorArrivesWithTheOutput()
{
    FakeArchiver fake;
    fake.printError("ERROR: ").waitFor(QStringLiteral("more"));
    fake.print("between").waitFor(QStringLiteral("end"));
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    archive.startCompressingFiles({QStringLiteral("f")});
    QTRY_COMPARE(archive.output(), QStringLiteral("ERROR: "));
    QVERIFY(fake.goOn(QStringLiteral("more")));
    QTRY_COMPARE(archive.output(), QStringLiteral("between"));
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
}

void TestSevenZipCommands::linesOfAnExtraction_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<qint64>("uncompressed");
    QTest::addColumn<qint64>("compressed");
    const auto row = [](const char *name, const QByteArray &output, const QStringList &files,
                        qint64 uncompressed = SizeBefore, qint64 compressed = SizeBefore) {
        QTest::newRow(name) << output << files << uncompressed << compressed;
    };
    const auto names
        = [](const char *text) { return QString::fromUtf8(text).split(QLatin1Char('|')); };
    row("nothing", "", {});
    row("one name", "Extracting  a.txt\n", names("a.txt"));
    row("names in order", "Extracting  b\nExtracting  a\nExtracting  b\n", names("b|a|b"));
    row("CR LF", "Extracting  b\r\nExtracting  a\r\n", names("b|a"));
    row("blanks in a name", "Extracting  a b c.txt\n", names("a b c.txt"));
    row("runs of blanks shrink", "Extracting  a   b\t c.txt  \n", names("a b c.txt"));
    row("white space before", " \t Extracting  a.txt\n", names("a.txt"));
    row("backslashes", "Extracting  d\\e\\f.txt\n", names("d\\e\\f.txt"));
    row("Latin-1",
        "Extracting  gr\xf6\xdf"
        "e.txt\n",
        names("größe.txt"));
    row("UTF-8 is not decoded", "Extracting  \xc3\xb6.txt\n", names("Ã¶.txt"));
    row("a newer program's archive line", "Extracting archive: x.7z\n", names("archive: x.7z"));
    row("a longer first word", "ExtractingSome more words\n", names("more words"));
    row("no name", "Extracting\n", {QString()});
    row("other case", "extracting  a\nEXTRACTING  b\nsize: 1\nCOMPRESSED: 2\n", {});
    row("other lines", "Processing archive: x\n\nEverything is Ok\nFolders: 1\nFiles: 2\n", {});
    row("words in the middle", "Not Extracting  a\nThe Size: 5\n", {});
    row("a line without an end", "Extracting  a\nExtracting  b", names("a"));
    row("sizes without an end", "Size: 5\nCompressed: 6", {}, 5);
    row("sizes", "Size:       2569\nCompressed: 616\n", {}, 2569, 616);
    row("size alone", "Size: 5\n", {}, 5);
    row("compressed size alone", "Compressed: 5\n", {}, SizeBefore, 5);
    row("the last sizes hold", "Size: 1\nSize: 2\nCompressed: 3\nCompressed: 4\n", {}, 2, 4);
    row("beyond 32 bits", "Size: 5000000000\nCompressed: 4294967296\n", {}, Q_INT64_C(5000000000),
        Q_INT64_C(4294967296));
    row("beyond 64 bits", "Size: 99999999999999999999\nCompressed: 1\n", {}, 0, 1);
    row("no numbers", "Size: many\nCompressed: 12 KiB\n", {}, 0, 0);
    row("no blank", "Size:12\nCompressed:\n", {}, 0, 0);
    row("not decimal", "Size: 0x10\nCompressed: 1.5\n", {}, 0, 0);
    row("more than a number", "Size: 12 13\nCompressed: 1e3\n", {}, 0, 0);
    row("sizes before names", "Size: 7\nExtracting  a\n", names("a"), 7);
}

void TestSevenZipCommands::linesOfAnExtraction()
{
    QFETCH(QByteArray, output);
    FakeArchiver fake;
    fake.print(output);
    Archive archive;
    archive.setUncompressedSize(SizeBefore);
    archive.setCompressedSize(SizeBefore);
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QTEST(archive.files(), "files");
    QTEST(archive.uncompressedSize(), "uncompressed");
    QTEST(archive.compressedSize(), "compressed");
    QVERIFY(archive.output().isEmpty());
}

namespace {

void blockRows()
{
    QTest::addColumn<int>("blockSize");
    QTest::addColumn<bool>("crLf");
    for (const int blockSize : {1, 3, 17, 64, 0}) {
        for (const bool crLf : {true, false}) {
            QTest::addRow("%s, %s",
                          blockSize == 0 ? "whole" : QByteArray::number(blockSize).constData(),
                          crLf ? "CR LF" : "LF")
                << blockSize << crLf;
        }
    }
}

QByteArray recordingWithLineEnds(const char *name, bool crLf)
{
    QByteArray bytes = recording(name);
    return crLf ? bytes : bytes.replace("\r\n", "\n");
}

} // namespace

void TestSevenZipCommands::aRecordedExtraction_data()
{
    blockRows();
}

void TestSevenZipCommands::aRecordedExtraction()
{
    QFETCH(int, blockSize);
    QFETCH(bool, crLf);
    const QByteArray output = recordingWithLineEnds("product-extract-7z.txt", crLf);
    QCOMPARE(output.contains('\r'), crLf);
    FakeArchiver fake;
    fake.print(output, blockSize);
    SevenZip archive;
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    const QStringList expected{
        QStringLiteral("12"),         QStringLiteral("12 34 numbers"),
        QStringLiteral("d\\a b.txt"), QString::fromUtf8("d\\2023 two blanks ü.txt"),
        QStringLiteral("d"),          QStringLiteral("d\\empty")};
    QCOMPARE(archive.files(), expected);
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(2271));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(616));
}

void TestSevenZipCommands::aLineOfAnExtractionInTwoBlocks()
{
    const QByteArray line = "Extracting  b c\r\n";
    FakeArchiver fake;
    QStringList expected;
    for (int cut = 1; cut < line.size(); ++cut) {
        fake.print("Extracting  a\r\n" + line.left(cut)).waitFor(QString::number(cut));
        fake.print(line.mid(cut));
    }
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::extractionFinished);
    archive.startExtractingFilesTo(QStringLiteral("to"));
    for (int cut = 1; cut < line.size(); ++cut) {
        expected << QStringLiteral("a");
        QTRY_COMPARE(archive.files(), expected); // the first block was read
        expected << QStringLiteral("b c");
        QVERIFY(fake.goOn(QString::number(cut)));
    }
    QVERIFY(finished.wait());
    QCOMPARE(archive.files(), expected);
}

void TestSevenZipCommands::anExtractionReadsStandardErrorToo()
{
    FakeArchiver fake;
    fake.printError("Extracting  a\n").print("Extracting  b\n").printError("Size: 5\n");
    SevenZip archive;
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QCOMPARE(archive.files(), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(5));
}

void TestSevenZipCommands::headersOfAListing_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    constexpr int Zip = 1;
    constexpr int BZip2 = 4; // the settings before the listing
    const auto row = [](const char *name, const QByteArray &output, int type, int method) {
        QTest::newRow(name) << output << type << method;
    };
    row("nothing", "", Zip, BZip2);
    row("type 7z", "Type = 7z\n", 0, BZip2);
    row("type zip", "Type = 7z\nType = zip\n", 1, BZip2);
    row("method Copy", "Method = Copy\n", Zip, 0);
    row("method Deflate", "Method = Deflate\n", Zip, 1);
    row("method LZMA", "Method = LZMA\n", Zip, 2);
    row("method LZMA2", "Method = LZMA2\n", Zip, 3);
    row("method BZip2", "Method = Copy\nMethod = BZip2\n", Zip, 4);
    row("CR LF", "Type = 7z\r\nMethod = Copy\r\n", 0, 0);
    row("white space", " Type\t=  7z \n   Method   =   Copy\n", 0, 0);
    row("longer first words", "Types are 7z\nMethods: are Copy\n", 0, 0);
    row("other case", "type = 7z\nMETHOD = Copy\n", Zip, BZip2);
    row("words in the middle", "Physical Type = 7z\nThe Method = Copy\n", Zip, BZip2);
    row("a line without an end", "Type = 7z\nMethod = Copy", 0, BZip2);
    row("short rulers", "--\n-------\nType = 7z\n", 0, BZip2);
    row("after the first ruler", QByteArray(Ruler) + "Type = 7z\nMethod = Copy\n", Zip, BZip2);
    row("after the second ruler", listing("", "Type = 7z\nMethod = Copy\n"), Zip, BZip2);
    row("ruler of eight", "--------\nType = 7z\n", Zip, BZip2);
}

void TestSevenZipCommands::headersOfAListing()
{
    QFETCH(QByteArray, output);
    QFETCH(int, type);
    QFETCH(int, method);
    FakeArchiver fake;
    fake.print(output);
    SevenZip archive;
    archive.setType(SevenZip::TypeZip);
    archive.setMethod(SevenZip::BZip2);
    QVERIFY(archive.listFiles());
    QCOMPARE(static_cast<int>(archive.type()), type);
    QCOMPARE(static_cast<int>(archive.method()), method);
    QVERIFY(archive.output().isEmpty());
}

void TestSevenZipCommands::unknownHeadersOfAListingFallBack_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::newRow("another type") << QByteArray("Type = rar\n") << 0 << 4;
    QTest::newRow("no type") << QByteArray("Type\n") << 0 << 4;
    QTest::newRow("more than the type") << QByteArray("Type = zip archive\n") << 0 << 4;
    QTest::newRow("a method with parameters") << QByteArray("Method = LZMA:16\n") << 1 << 3;
    QTest::newRow("two methods") << QByteArray("Method = Copy BCJ\n") << 1 << 3;
    QTest::newRow("another method") << QByteArray("Method = PPMd\n") << 1 << 3;
}

void TestSevenZipCommands::unknownHeadersOfAListingFallBack()
{
#ifdef QT_NO_DEBUG
    headersOfAListing();
#else
    QSKIP("A debug build stops here with an assertion, which tst_sevenzip tests.");
#endif
}

void TestSevenZipCommands::entriesOfAListing_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<QStringList>("files");
    const auto row = [](const char *name, const QByteArray &entries, const char *files) {
        QTest::newRow(name) << entries << QString::fromUtf8(files).split(QLatin1Char('|'));
    };
    QTest::newRow("none") << QByteArray() << QStringList();
    row("a file", "2024-02-29 12:34:56 ....A          292          139  a.txt\n", "a.txt");
    row("a folder", "2024-02-29 12:34:56 D....            0            0  d\n", "d");
    row("in order",
        "2024-02-29 12:34:56 ....A 1 2 b\n2024-02-29 12:34:56 ....A 1 2 a\n"
        "2024-02-29 12:34:56 ....A 1 2 b\n",
        "b|a|b");
    row("CR LF", "2024-02-29 12:34:56 ....A          292          139  a.txt\r\n", "a.txt");
    row("blanks", "2024-02-29 12:34:56 ....A          292          139  a b c.txt\n", "a b c.txt");
    row("runs of blanks", "2024-02-29 12:34:56 ....A          292          139  a  b \t c\n",
        "a b c");
    row("no packed size", "2024-02-29 12:34:56 ....A          292               a.txt\n", "a.txt");
    row("no packed size, blanks", "2024-02-29 12:34:56 ....A          292               a b c\n",
        "a b c");
    row("no packed size, a number first",
        "2024-02-29 12:34:56 ....A           81               12 34 numbers\n", "34 numbers");
    row("no packed size, only a number",
        "2024-02-29 12:34:56 ....A          292               12\n", "12");
    row("no packed size, nearly a number",
        "2024-02-29 12:34:56 ....A          292               12a 34\n", "12a 34");
    row("a number for a name", "2024-02-29 12:34:56 ....A          292          139  12\n", "12");
    row("numbers for a name", "2024-02-29 12:34:56 ....A          292          139  12 34\n",
        "12 34");
    row("a number of 64 bits", "2024-02-29 12:34:56 ....A 9000000000 8000000000 a b\n", "a b");
    row("sizes beyond 63 bits",
        "2024-02-29 12:34:56 ....A 9223372036854775808 9223372036854775808 a b\n", "a b");
    row("sizes beyond 64 bits",
        "2024-02-29 12:34:56 ....A 36893488147419103232 36893488147419103232 a b\n", "a b");
    row("no packed size, a sign first", "2024-02-29 12:34:56 ....A 292               -5 b\n",
        "-5 b");
    row("Latin-1",
        "2024-02-29 12:34:56 ....A 1 2 gr\xf6\xdf"
        "e\n",
        "größe");
    row("UTF-8 is not decoded", "2024-02-29 12:34:56 ....A 1 2 \xc3\xb6\n", "Ã¶");
    row("no date", "                    .....          292          160  number\n", "");
    row("no date, blanks", "                    .....          292          160  a b c d\n",
        "b c d");
    row("no date and no sizes", "                    .....                            12.txt\n",
        "");
    row("an empty line", "2024-02-29 12:34:56 ....A 1 2 a\n\n2024-02-29 12:34:56 ....A 1 2 b\n",
        "a||b");
    row("short rulers are entries", "-------\n2024-02-29 12:34:56 ....A 1 2 a\n", "|a");
    row("a short line", "1 2 3 4\n", "");
    row("words of the header", "Type = 7z is an entry here\n", "an entry here");
}

void TestSevenZipCommands::entriesOfAListing()
{
    QFETCH(QByteArray, entries);
    FakeArchiver fake;
    fake.print(listing(entries, "5 6 totals are no entry\n"));
    SevenZip archive;
    archive.setType(SevenZip::TypeZip);
    QVERIFY(archive.listFiles());
    QTEST(archive.files(), "files");
    QCOMPARE(archive.type(), SevenZip::TypeZip);
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(5));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(6));
}

void TestSevenZipCommands::totalsOfAListing_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<qint64>("uncompressed");
    QTest::addColumn<qint64>("compressed");
    const auto row
        = [](const char *name, const QByteArray &output, qint64 uncompressed, qint64 compressed) {
              QTest::newRow(name) << output << uncompressed << compressed;
          };
    row("none", listing(""), SizeBefore, SizeBefore);
    row("totals", listing("", "                      2569          305  9 files, 2 folders\n"),
        2569, 305);
    row("CR LF", listing("", "     2569          305  9 files\r\n"), 2569, 305);
    row("beyond 32 bits", listing("", "5000000000 4294967296 1 files\n"), Q_INT64_C(5000000000),
        Q_INT64_C(4294967296));
    row("one number", listing("", "2569\n"), 2569, 0);
    row("no numbers", listing("", "many few files\n"), 0, 0);
    row("second not a number", listing("", "2569 few\n"), 2569, 0);
    row("a date first", listing("", "2024-02-29 12:34:56         2569   305  9 files\n"), 0, 0);
    row("a later line", listing("", "1 2 files\n3 4 files\n"), 3, 4);
    row("a later text", listing("", "1 2 files\nErrors: 1\n"), 0, 1);
    row("a later empty line", listing("", "1 2 files\n\n"), 0, 0);
    row("a later ruler", listing("", "1 2 files\n" + QByteArray(Ruler)), 0, 0);
    row("the state stays", listing("", QByteArray(Ruler) + "5 6 files\n"), 5, 6);
    row("a line without an end", listing("", "1 2 files\n3 4 files"), 1, 2);
    row("before the table", "1 2 files\n", SizeBefore, SizeBefore);
    row("in the table", QByteArray(Ruler) + "1 2 3 4 5 files\n", SizeBefore, SizeBefore);
    row("words of an extraction", "Size: 5\nCompressed: 6\n", SizeBefore, SizeBefore);
}

void TestSevenZipCommands::totalsOfAListing()
{
    QFETCH(QByteArray, output);
    FakeArchiver fake;
    fake.print(output);
    Archive archive;
    archive.setUncompressedSize(SizeBefore);
    archive.setCompressedSize(SizeBefore);
    QVERIFY(archive.listFiles());
    QTEST(archive.uncompressedSize(), "uncompressed");
    QTEST(archive.compressedSize(), "compressed");
}

void TestSevenZipCommands::aRecordedListing_data()
{
    blockRows();
}

void TestSevenZipCommands::aRecordedListing()
{
    QFETCH(int, blockSize);
    QFETCH(bool, crLf);
    const QByteArray output = recordingWithLineEnds("product-list-7z.txt", crLf);
    QCOMPARE(output.contains('\r'), crLf);
    FakeArchiver fake;
    fake.print(output, blockSize);
    SevenZip archive;
    archive.setType(SevenZip::TypeZip);
    QVERIFY(archive.listFiles());
    const QStringList expected{
        QStringLiteral("12"),         QStringLiteral("34 numbers"),
        QStringLiteral("d\\a b.txt"), QString::fromUtf8("d\\2023 two blanks ü.txt"),
        QStringLiteral("d"),          QStringLiteral("d\\empty")};
    QCOMPARE(archive.files(), expected);
    QCOMPARE(archive.type(), SevenZip::Type7z);
    QCOMPARE(archive.method(), SevenZip::LZMA);
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(2271));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(305));
}

void TestSevenZipCommands::aLineOfAListingInTwoBlocks()
{
    const QByteArray whole = "2024-02-29 12:34:56 ....A 292 139 a\r\n";
    const QByteArray line = "2024-02-29 12:34:56 ....A 292 139 b c\r\n";
    FakeArchiver fake;
    QStringList expected;
    fake.print(Ruler);
    for (int cut = 1; cut < line.size(); ++cut) {
        fake.print(whole + line.left(cut)).waitFor(QString::number(cut));
        fake.print(line.mid(cut));
    }
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::listFinished);
    archive.startListingFiles();
    for (int cut = 1; cut < line.size(); ++cut) {
        expected << QStringLiteral("a");
        QTRY_COMPARE(archive.files(), expected); // the first block was read
        expected << QStringLiteral("b c");
        QVERIFY(fake.goOn(QString::number(cut)));
    }
    QVERIFY(finished.wait());
    QCOMPARE(archive.files(), expected);
}

void TestSevenZipCommands::aListingAppendsToTheFiles()
{
    FakeArchiver fake;
    fake.print(listing("1 2 3 4 5 c\n1 2 3 4 5 a\n"));
    SevenZip archive;
    QVERIFY(archive.compressFiles({QStringLiteral("a"), QStringLiteral("b")}));
    QVERIFY(archive.listFiles());
    const QStringList once{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                           QStringLiteral("a")};
    QCOMPARE(archive.files(), once);
    QVERIFY(archive.listFiles());
    QCOMPARE(archive.files(), once + QStringList({QStringLiteral("c"), QStringLiteral("a")}));
}

void TestSevenZipCommands::aSecondListingStartsWithItsHeader()
{
    FakeArchiver fake;
    fake.print("Type = zip\n" + listing("1 2 3 4 5 a\n", "1 2 files\n"));
    SevenZip archive;
    QVERIFY(archive.listFiles());
    archive.setType(SevenZip::Type7z);
    QVERIFY(archive.listFiles());
    QCOMPARE(archive.type(), SevenZip::TypeZip);
    QCOMPARE(archive.files(), QStringList({QStringLiteral("a"), QStringLiteral("a")}));
}

QTEST_GUILESS_MAIN(TestSevenZipCommands)

#include "tst_sevenzipcommands.moc"
