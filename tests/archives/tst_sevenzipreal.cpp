#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include "ArchiveTree.h"
#include "Noise.h"
#include "OwnTempFolder.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QStringList absoluteNames(const QString &folder, const Tree &tree)
{
    QStringList names;
    for (auto file = tree.begin(); file != tree.end(); ++file)
        names << folder + QLatin1Char('/') + file.key();
    return names;
}

Tree numberedTree(int count)
{
    Tree tree;
    for (int i = 1; i <= count; ++i) {
        const QString name = i % 2 == 0 ? QStringLiteral("sub folder/file %1.txt").arg(i)
                                        : QStringLiteral("%1.dat").arg(i);
        tree.insert(name, "content " + QByteArray::number(i) + '\n');
    }
    return tree;
}

} // namespace

class TestSevenZipReal : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override;
    void cleanup() override;

    void aRoundTripOfManyFiles_data();
    void aRoundTripOfManyFiles();
    void namesWithWildcardsStandForThemselvesAlone_data();
    void namesWithWildcardsStandForThemselvesAlone();
    void aRoundTripWithoutThreadsInEveryLevel_data();
    void aRoundTripWithoutThreadsInEveryLevel();
    void asynchronousOperations();
    void anExtractionOverwritesExistingFiles();
    void filesAreAddedToAnArchive();
    void compressingNoFilesTakesTheCurrentFolder();
    void compressingNothingGivesAnEmptyArchive();
    void aMissingFileIsAWarning();
    void aDamagedArchiveIsAFatalError();
    void aMissingArchiveIsAFatalError();
    void aFatalErrorDoesNotStay();

private:
    // A round trip of the archive "archive.bin" with absolute names.
    void roundTripBelowIn(SevenZip &archive, const Tree &tree);

    OwnTempFolder temp_; // of the list files
    QString before_;
};

void TestSevenZipReal::initTestCase()
{
    QVERIFY(temp_.isUsed());
    const bool isBeside = QFile::exists(System::getCurrentExePath() + QStringLiteral("/7z.exe"));
    if (onWindows() && !isBeside)
        QSKIP("There is no 7z.exe beside this program");
    if (!isBeside) {
        const QString program = QStandardPaths::findExecutable(QStringLiteral("7z"))
            + QStandardPaths::findExecutable(QStringLiteral("7zz"))
            + QStandardPaths::findExecutable(QStringLiteral("7za"));
        QVERIFY2(!program.isEmpty(), "7-Zip is not installed.");
    }
}

void TestSevenZipReal::init()
{
    before_ = QDir::currentPath();
    TestWithFolder::init();
    QVERIFY(QDir().mkpath(path("in")));
}

void TestSevenZipReal::cleanup()
{
    QCOMPARE(QDir::currentPath(), before_);
    QVERIFY2(QDir(temp_.path()).isEmpty(), "A list file was left behind.");
    TestWithFolder::cleanup();
}

void TestSevenZipReal::roundTripBelowIn(SevenZip &archive, const Tree &tree)
{
    archive.setArchiveFile(path("archive.bin"));
    archive.setCurrentPath(path("in"));
    roundTrip(archive, path("out"), tree, absoluteNames(path("in"), tree));
}

void TestSevenZipReal::aRoundTripOfManyFiles_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("count");
    for (const int count : {1, 32, 33, 500}) {
        QTest::addRow("7z, %d", count) << 0 << 3 << count;
        QTest::addRow("zip, %d", count) << 1 << 1 << count;
    }
}

void TestSevenZipReal::aRoundTripOfManyFiles()
{
    QFETCH(int, type);
    QFETCH(int, method);
    QFETCH(int, count);
    SevenZip archive;
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    const Tree tree = numberedTree(count);
    QCOMPARE(tree.size(), count);
    roundTripBelowIn(archive, tree);
}

void TestSevenZipReal::namesWithWildcardsStandForThemselvesAlone_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("on the command line") << 1;
    QTest::newRow("in a list file") << 40;
}

void TestSevenZipReal::namesWithWildcardsStandForThemselvesAlone()
{
    if (onWindows())
        QSKIP("No file can have such a name here");
    QFETCH(int, count);
    Tree tree = numberedTree(count - 1);
    tree.insert(QStringLiteral("*"), "all");
    QVERIFY(writeTree(path("in"), tree));
    const Tree neighbours{{QStringLiteral("neighbour"), "left out"}};
    QVERIFY(writeTree(path("in"), neighbours));
    SevenZip archive;
    archive.setCurrentPath(path("in"));
    archive.setArchiveFile(path("other.7z"));
    QVERIFY(archive.compressFiles({QStringLiteral("neighbour")}));

    archive.setArchiveFile(path("*.7z"));
    QVERIFY2(archive.compressFiles(tree.keys()), qPrintable(archive.output()));
    QVERIFY(archive.extractFilesTo(path("out")));
    QCOMPARE(readTree(path("out")), tree);
    QCOMPARE(normalized(archive.files()), normalized(tree.keys()));
    SevenZip lister;
    lister.setArchiveFile(path("*.7z"));
    QVERIFY(lister.listFiles());
    QCOMPARE(normalized(lister.files()), normalized(tree.keys()));
}

void TestSevenZipReal::aRoundTripWithoutThreadsInEveryLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("mode");
    for (const int level : {0, 1, 3, 5, 7, 9})
        QTest::addRow("%d", level) << level << level % 2;
}

void TestSevenZipReal::aRoundTripWithoutThreadsInEveryLevel()
{
    QFETCH(int, level);
    QFETCH(int, mode);
    SevenZip archive;
    // Level 0 stores, whatever the method.
    archive.setMethod(level == 0 ? SevenZip::Copy : SevenZip::LZMA);
    archive.setLevel(static_cast<SevenZip::Level>(level));
    archive.setMode(static_cast<SevenZip::Mode>(mode));
    archive.setUseThreads(false);
    roundTripBelowIn(archive, mixedTree());
}

void TestSevenZipReal::asynchronousOperations()
{
    const Tree tree = mixedTree();
    QVERIFY(writeTree(path("in"), tree));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setCurrentPath(path("in"));
    QSignalSpy compressed(&archive, &SevenZip::compressionFinished);
    QSignalSpy extracted(&archive, &SevenZip::extractionFinished);
    QSignalSpy listed(&archive, &SevenZip::listFinished);

    archive.startCompressingFiles(absoluteNames(path("in"), tree));
    QVERIFY(compressed.wait(60000));
    QVERIFY(archive.isOk());
    archive.startExtractingFilesTo(path("out"));
    QVERIFY(extracted.wait(60000));
    QVERIFY(archive.isOk());
    QCOMPARE(readTree(path("out")), tree);
    QCOMPARE(normalized(archive.files()), normalized(tree.keys()));
    archive.startListingFiles();
    QVERIFY(listed.wait(60000));
    QVERIFY(archive.isOk());
    QCOMPARE(normalized(archive.files()), normalized(tree.keys() + tree.keys()));
    QCOMPARE(compressed.size() + extracted.size() + listed.size(), 3);
}

void TestSevenZipReal::anExtractionOverwritesExistingFiles()
{
    const Tree tree{{QStringLiteral("a.txt"), "new"}, {QStringLiteral("d/b.txt"), "new too"}};
    QVERIFY(writeTree(path("in"), tree));
    const Tree old{{QStringLiteral("a.txt"), "old and longer"},
                   {QStringLiteral("d/b.txt"), QByteArray()},
                   {QStringLiteral("d/other.txt"), "stays"}};
    QVERIFY(writeTree(path("out"), old));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setCurrentPath(path("in"));
    QVERIFY(archive.compressFiles(absoluteNames(path("in"), tree)));
    QVERIFY(archive.extractFilesTo(path("out")));
    Tree expected = tree;
    expected.insert(QStringLiteral("d/other.txt"), "stays");
    QCOMPARE(readTree(path("out")), expected);
}

void TestSevenZipReal::filesAreAddedToAnArchive()
{
    const Tree tree{{QStringLiteral("a.txt"), "first"}, {QStringLiteral("b.txt"), "second"}};
    QVERIFY(writeTree(path("in"), tree));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setCurrentPath(path("in"));
    QVERIFY(archive.compressFiles({QStringLiteral("a.txt")}));
    QVERIFY(archive.compressFiles({QStringLiteral("b.txt")}));
    QCOMPARE(archive.files(), QStringList{QStringLiteral("b.txt")});
    QVERIFY(archive.extractFilesTo(path("out")));
    QCOMPARE(readTree(path("out")), tree);
}

// Without file names the archiver packs everything in its current folder.
void TestSevenZipReal::compressingNoFilesTakesTheCurrentFolder()
{
    const Tree tree{{QStringLiteral("a.txt"), "one"}, {QStringLiteral("d/b.txt"), "two"}};
    QVERIFY(writeTree(path("in"), tree));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setCurrentPath(path("in"));
    QVERIFY(archive.compressFiles({}));
    QVERIFY(archive.files().isEmpty());
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(0));
    QCOMPARE(archive.compressedSize(), QFileInfo(path("archive.7z")).size());
    QVERIFY(archive.extractFilesTo(path("out")));
    QCOMPARE(readTree(path("out")), tree);
}

void TestSevenZipReal::compressingNothingGivesAnEmptyArchive()
{
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    QVERIFY(QDir::setCurrent(path("in"))); // empty, and no current path is set
    const bool compressed = archive.compressFiles({});
    QVERIFY(QDir::setCurrent(before_));
    QVERIFY(compressed);
    QVERIFY(archive.listFiles());
    QVERIFY(archive.files().isEmpty());
    QCOMPARE(archive.type(), SevenZip::Type7z);
    QCOMPARE(archive.method(), SevenZip::LZMA2); // the archive names none
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(0));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(0));
    QVERIFY(archive.extractFilesTo(path("out")));
    QVERIFY(readTree(path("out")).isEmpty());
    QVERIFY(archive.files().isEmpty());
}

void TestSevenZipReal::aMissingFileIsAWarning()
{
    QVERIFY(writeFile(path("in/a.txt"), "there"));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setCurrentPath(path("in"));
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    QVERIFY(!archive.compressFiles({path("in/a.txt"), path("in/missing.txt")}));
    QCOMPARE(archive.error(), SevenZip::Warning);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(5));
    QVERIFY(archive.extractFilesTo(path("out")));
    QCOMPARE(readTree(path("out")).keys(), QStringList{QStringLiteral("a.txt")});
}

void TestSevenZipReal::aDamagedArchiveIsAFatalError()
{
    const QByteArray bytes = noise(50000);
    QVERIFY(writeFile(path("in/noise.bin"), bytes));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setMethod(SevenZip::Copy);
    archive.setCurrentPath(path("in"));
    QVERIFY(archive.compressFiles({path("in/noise.bin")}));
    QFile file(path("archive.7z"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(1000));
    QCOMPARE(file.write("damage"), Q_INT64_C(6));
    file.close();

    QSignalSpy finished(&archive, &SevenZip::extractionFinished);
    QVERIFY(!archive.extractFilesTo(path("out")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QCOMPARE(finished.size(), 1);
    QVERIFY(archive.listFiles()); // the list of the files is whole
}

void TestSevenZipReal::aMissingArchiveIsAFatalError()
{
    SevenZip archive;
    archive.setArchiveFile(path("missing.7z"));
    QSignalSpy extracted(&archive, &SevenZip::extractionFinished);
    QSignalSpy listed(&archive, &SevenZip::listFinished);
    QVERIFY(!archive.listFiles());
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(!archive.extractFilesTo(path("out")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(readTree(path("out")).isEmpty());
    QCOMPARE(listed.size(), 1);
    QCOMPARE(extracted.size(), 1);
}

void TestSevenZipReal::aFatalErrorDoesNotStay()
{
    QVERIFY(writeFile(path("in/a.txt"), "there"));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    QVERIFY(!archive.listFiles());
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(archive.compressFiles({path("in/a.txt")}));
    QCOMPARE(archive.error(), SevenZip::NoError);
    QVERIFY(archive.listFiles());
}

QTEST_GUILESS_MAIN(TestSevenZipReal)

#include "tst_sevenzipreal.moc"
