#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include "Noise.h"
#include "OwnTempFolder.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

#include <memory>

using namespace Vorn::Util;

namespace {

using Tree = QMap<QString, QByteArray>; // relative name and content

bool writeFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    return QDir().mkpath(QFileInfo(name).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

bool writeTree(const QString &folder, const Tree &tree)
{
    for (auto file = tree.begin(); file != tree.end(); ++file) {
        if (!writeFile(folder + QLatin1Char('/') + file.key(), file.value()))
            return false;
    }
    return true;
}

Tree readTree(const QString &folder)
{
    Tree tree;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly))
            tree.insert(QDir(folder).relativeFilePath(file.fileName()), file.readAll());
    }
    return tree;
}

QStringList absoluteNames(const QString &folder, const Tree &tree)
{
    QStringList names;
    for (auto file = tree.begin(); file != tree.end(); ++file)
        names << folder + QLatin1Char('/') + file.key();
    return names;
}

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

qint64 sizeOf(const Tree &tree)
{
    qint64 sum = 0;
    for (const QByteArray &bytes : tree)
        sum += bytes.size();
    return sum;
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

Tree mixedTree()
{
    Tree tree;
    tree.insert(QStringLiteral("text.txt"), QByteArray("a line that comes again\n").repeated(4000));
    tree.insert(QStringLiteral("noise.bin"), noise(50000));
    tree.insert(QStringLiteral("empty"), QByteArray());
    tree.insert(QStringLiteral("zero.bin"), QByteArray(3, '\0'));
    tree.insert(QStringLiteral("lines.txt"), "LF\nCR LF\r\nCR\r\x1a end");
    tree.insert(QStringLiteral("with blanks/in the name.txt"), "blanks");
    tree.insert(QStringLiteral("deep/er/and/deeper/x.txt"), "deep");
    return tree;
}

// Names that a reader may stumble over.
Tree hardNames()
{
    Tree tree;
    const QStringList names{
        QStringLiteral("12"),
        QStringLiteral("12 34 numbers"),
        QStringLiteral("2024-02-29 12:34:56").replace(QLatin1Char(':'), QLatin1Char('.')),
        QStringLiteral("two  blanks   three"),
        QStringLiteral("d/ blank first"),
        QString::fromUtf8("größe.txt"),
        QString::fromUtf8("日本 Ω 😀.txt"),
        QStringLiteral("{"),
        QStringLiteral("}"),
        QStringLiteral("d/--------"),
        QStringLiteral("Size.txt"),
        QStringLiteral("Extracting  x"),
        QStringLiteral("%PATH% ^& $HOME `x`"),
        QStringLiteral("Type = zip"),
        QStringLiteral("d/- minus"),
        QStringLiteral("d/@at"),
        QStringLiteral("*"),
        QStringLiteral("d/*.t?t")};
    for (const QString &name : names)
        tree.insert(name, name.toUtf8());
    return tree;
}

} // namespace

class TestSevenZipReal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void aRoundTripInEveryMethod_data();
    void aRoundTripInEveryMethod();
    void aRoundTripOfManyFiles_data();
    void aRoundTripOfManyFiles();
    void aRoundTripOfHardNames_data();
    void aRoundTripOfHardNames();
    void namesWithWildcardsStandForThemselvesAlone_data();
    void namesWithWildcardsStandForThemselvesAlone();
    void aRoundTripWithoutThreadsInEveryLevel_data();
    void aRoundTripWithoutThreadsInEveryLevel();
    void asynchronousOperations();
    void anExtractionOverwritesExistingFiles();
    void filesAreAddedToAnArchive();
    void compressingNoFilesTakesTheCurrentFolder();
    void compressingNothingGivesAnEmptyArchive();
    void foldersAreReportedWithTheirNames();
    void aMissingFileIsAWarning();
    void aDamagedArchiveIsAFatalError();
    void whatIsNoArchiveIsAFatalError();
    void aMissingArchiveIsAFatalError();
    void withoutItsPasswordAnArchiveIsAFatalError_data();
    void withoutItsPasswordAnArchiveIsAFatalError();
    void theNamesInAnEncryptedArchiveAreListed_data();
    void theNamesInAnEncryptedArchiveAreListed();
    void aFatalErrorDoesNotStay();

private:
    QString path(const char *name) const { return folder_->filePath(QString::fromLatin1(name)); }

    // Compresses the tree, lists and extracts it, and compares all that is reported.
    void roundTrip(SevenZip &archive, const Tree &tree);

    OwnTempFolder temp_; // of the list files
    std::unique_ptr<TestFolder> folder_;
    QString before_;
};

void TestSevenZipReal::initTestCase()
{
    QVERIFY(temp_.isUsed());
    const bool isBeside = QFile::exists(System::getCurrentExePath() + QStringLiteral("/7z.exe"));
    if (onWindows() && !isBeside)
        QSKIP("There is no 7z.exe beside this program.");
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
    folder_ = std::make_unique<TestFolder>();
    QVERIFY(folder_->isValid());
    QVERIFY(QDir().mkpath(path("in")));
}

void TestSevenZipReal::cleanup()
{
    QCOMPARE(QDir::currentPath(), before_);
    QVERIFY2(QDir(temp_.path()).isEmpty(), "A list file was left behind.");
    folder_.reset();
}

void TestSevenZipReal::roundTrip(SevenZip &archive, const Tree &tree)
{
    const SevenZip::Type type = archive.type();
    const SevenZip::Method method = archive.method();
    const qint64 size = sizeOf(tree);
    const QStringList names = absoluteNames(path("in"), tree);
    QVERIFY(writeTree(path("in"), tree));
    archive.setArchiveFile(path("archive.bin"));
    archive.setCurrentPath(path("in"));

    QVERIFY2(archive.compressFiles(names), qPrintable(archive.output()));
    const qint64 archiveSize = QFileInfo(path("archive.bin")).size();
    QVERIFY(archiveSize > 0);
    QCOMPARE(archive.files(), names);
    QCOMPARE(archive.uncompressedSize(), size);
    QCOMPARE(archive.compressedSize(), archiveSize);

    // Extracted with nothing known of it.
    SevenZip other;
    other.setArchiveFile(path("archive.bin"));
    QVERIFY(other.extractFilesTo(path("out")));
    QCOMPARE(readTree(path("out")), tree);
    QCOMPARE(other.folder(), path("out"));

    SevenZip lister;
    lister.setArchiveFile(path("archive.bin"));
    lister.setType(type == SevenZip::Type7z ? SevenZip::TypeZip : SevenZip::Type7z);
    QVERIFY(lister.listFiles());

    if (onWindows())
        return; // the readers know the output of the product's own version only
    const QStringList inside = sorted(tree.keys());
    QCOMPARE(sorted(other.files()), inside);
    QCOMPARE(other.uncompressedSize(), size);
    QCOMPARE(other.compressedSize(), archiveSize);
    QCOMPARE(sorted(lister.files()), inside);
    QCOMPARE(lister.type(), type);
    if (type == SevenZip::Type7z) // a listing of a zip archive names no method
        QCOMPARE(lister.method(), method);
    QCOMPARE(lister.uncompressedSize(), size);
    if (method == SevenZip::Copy)
        QCOMPARE(lister.compressedSize(), size);
    QVERIFY(lister.compressedSize() > 0);
    QVERIFY(lister.compressedSize() < archiveSize);
}

namespace {

void typeAndMethodRows()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::newRow("7z, Copy") << 0 << 0;
    QTest::newRow("7z, Deflate") << 0 << 1;
    QTest::newRow("7z, LZMA") << 0 << 2;
    QTest::newRow("7z, LZMA2") << 0 << 3;
    QTest::newRow("7z, BZip2") << 0 << 4;
    QTest::newRow("zip, Copy") << 1 << 0;
    QTest::newRow("zip, Deflate") << 1 << 1;
}

} // namespace

void TestSevenZipReal::aRoundTripInEveryMethod_data()
{
    typeAndMethodRows();
}

void TestSevenZipReal::aRoundTripInEveryMethod()
{
    QFETCH(int, type);
    QFETCH(int, method);
    SevenZip archive;
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    roundTrip(archive, mixedTree());
    if (QTest::currentTestFailed())
        return;
    // The type and the method were really taken.
    QFile file(path("archive.bin"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.read(2) == (type == 0 ? "7z" : "PK"));
    QCOMPARE(archive.compressedSize() < archive.uncompressedSize(), method != SevenZip::Copy);
}

void TestSevenZipReal::aRoundTripOfManyFiles_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("count");
    for (const int count : {1, 32, 33, 2000}) {
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
    roundTrip(archive, tree);
}

void TestSevenZipReal::aRoundTripOfHardNames_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<bool>("inListFile");
    QTest::newRow("7z") << 0 << 3 << false;
    QTest::newRow("zip") << 1 << 1 << false;
    QTest::newRow("7z, list file") << 0 << 3 << true;
    QTest::newRow("zip, list file") << 1 << 1 << true;
}

void TestSevenZipReal::aRoundTripOfHardNames()
{
    if (onWindows())
        QSKIP("The program on Windows takes other characters only in its own code page.");
    QFETCH(int, type);
    QFETCH(int, method);
    QFETCH(bool, inListFile);
    SevenZip archive;
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    Tree tree = hardNames();
    QVERIFY(tree.size() <= 32);
    if (inListFile) {
        const Tree more = numberedTree(33);
        for (auto file = more.begin(); file != more.end(); ++file)
            tree.insert(file.key(), file.value());
    } else {
        tree.insert(QStringLiteral(" blank first"), "blank"); // the lines of a list are trimmed
    }
    roundTrip(archive, tree);
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
        QSKIP("No file can have such a name here.");
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
    QCOMPARE(sorted(archive.files()), sorted(tree.keys()));
    SevenZip lister;
    lister.setArchiveFile(path("*.7z"));
    QVERIFY(lister.listFiles());
    QCOMPARE(sorted(lister.files()), sorted(tree.keys()));
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
    roundTrip(archive, mixedTree());
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
    if (!onWindows())
        QCOMPARE(sorted(archive.files()), sorted(tree.keys()));
    archive.startListingFiles();
    QVERIFY(listed.wait(60000));
    QVERIFY(archive.isOk());
    if (!onWindows())
        QCOMPARE(sorted(archive.files()), sorted(tree.keys() + tree.keys()));
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

// The archiver packs everything where it stands when no file is named.
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
    if (!onWindows()) // the readers know the output of the product's own version only
        QVERIFY(archive.files().isEmpty());
}

void TestSevenZipReal::foldersAreReportedWithTheirNames()
{
    QVERIFY(QDir().mkpath(path("in/a folder/empty one")));
    QVERIFY(writeFile(path("in/a folder/x.txt"), "x"));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    archive.setCurrentPath(path("in"));
    QVERIFY(archive.compressFiles({path("in/a folder")}));
    QVERIFY(archive.extractFilesTo(path("out")));
    QVERIFY(QFileInfo(path("out/a folder/empty one")).isDir());
    if (onWindows())
        return; // the readers know the output of the product's own version only
    const QStringList expected{QStringLiteral("a folder"), QStringLiteral("a folder/empty one"),
                               QStringLiteral("a folder/x.txt")};
    QCOMPARE(sorted(archive.files()), expected);
    QVERIFY(archive.listFiles());
    QCOMPARE(sorted(archive.files()), sorted(expected + expected));
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

void TestSevenZipReal::whatIsNoArchiveIsAFatalError()
{
    QVERIFY(writeFile(path("archive.7z"), "this is no archive\n"));
    SevenZip archive;
    archive.setArchiveFile(path("archive.7z"));
    QVERIFY(!archive.listFiles());
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(!archive.extractFilesTo(path("out")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    if (!onWindows()) // the readers know the output of the product's own version only
        QVERIFY(archive.files().isEmpty());
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

void TestSevenZipReal::withoutItsPasswordAnArchiveIsAFatalError_data()
{
    QTest::addColumn<QString>("archive");
    for (const char *archive : {"encrypted.7z", "encrypted-names.7z", "encrypted.zip"})
        QTest::newRow(archive) << QString::fromLatin1(archive);
}

void TestSevenZipReal::withoutItsPasswordAnArchiveIsAFatalError()
{
    QFETCH(QString, archive);
    SevenZip unpacker;
    unpacker.setArchiveFile(QStringLiteral(TEST_DATA "/archives/") + archive);
    QVERIFY(!unpacker.extractFilesTo(path("out")));
    QCOMPARE(unpacker.error(), SevenZip::FatalError);
    QVERIFY(!readTree(path("out")).values().contains("secret text\n")); // empty files may be there
    if (archive != QLatin1String("encrypted-names.7z"))
        return;
    QVERIFY(!unpacker.listFiles());
    QCOMPARE(unpacker.error(), SevenZip::FatalError);
}

void TestSevenZipReal::theNamesInAnEncryptedArchiveAreListed_data()
{
    QTest::addColumn<QString>("archive");
    for (const char *archive : {"encrypted.7z", "encrypted.zip"})
        QTest::newRow(archive) << QString::fromLatin1(archive);
}

void TestSevenZipReal::theNamesInAnEncryptedArchiveAreListed()
{
    QFETCH(QString, archive);
    SevenZip lister;
    lister.setArchiveFile(QStringLiteral(TEST_DATA "/archives/") + archive);
    QVERIFY(lister.listFiles());
    if (!onWindows()) // the readers know the output of the product's own version only
        QCOMPARE(lister.files(), (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt")}));
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
