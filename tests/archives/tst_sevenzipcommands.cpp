// How an archiver is run: start and end, the current folder, and what a compression reports.

#include "CurrentFolder.h"
#include "FakeArchiver.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestWithFakeArchiver.h"

#include <Utility/SevenZip.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace Vorn::Util;

namespace {

// Records the signals of an archive from now on.
struct Spies
{
    explicit Spies(const SevenZip &archive)
        : progress(&archive, &SevenZip::progress)
        , compression(&archive, &SevenZip::compressionFinished)
        , extraction(&archive, &SevenZip::extractionFinished)
        , list(&archive, &SevenZip::listFinished)
    {
    }

    // The numbers of signals: compressions, extractions, listings.
    QList<int> counts() const
    {
        return {static_cast<int>(compression.size()), static_cast<int>(extraction.size()),
                static_cast<int>(list.size())};
    }

    QSignalSpy progress;
    QSignalSpy compression;
    QSignalSpy extraction;
    QSignalSpy list;
};

QString canonical(const QString &folder)
{
    return QDir(folder).canonicalPath();
}

} // namespace

class TestSevenZipCommands : public TestWithFakeArchiver
{
    Q_OBJECT

private Q_SLOTS:
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
};

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

// The blocking call then returns false, although the operation succeeded.
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
    QCOMPARE(archive.output(), text); // unchanged
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

QTEST_GUILESS_MAIN(TestSevenZipCommands)

#include "tst_sevenzipcommands.moc"
