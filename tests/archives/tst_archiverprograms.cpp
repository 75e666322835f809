// The same operations with every archiver that the library supports and this system can run.

#include <Utility/SevenZip.h>

#include "ArchiveTree.h"
#include "BuildPaths.h"
#include "OwnTempFolder.h"
#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtCore/QVector>
#include <QtTest/QtTest>

#include <algorithm>
#include <memory>

using namespace Vorn::Util;

namespace {

// An archiver: the files of its program and the folder that they are copied from, which is empty
// when the archiver is not there.
struct Program
{
    QString name;
    QString folder;
    QStringList files;
};

QVector<Program> programs()
{
    const QString archivers = qEnvironmentVariable("VORNUTILITY_ARCHIVERS");
    const auto fetched = [&archivers](const char *name, const QStringList &files) {
        const QString folder = archivers + QLatin1Char('/') + QString::fromLatin1(name);
        const bool isThere
            = !archivers.isEmpty() && QFile::exists(folder + QLatin1Char('/') + files.first());
        return Program{QString::fromLatin1(name), isThere ? folder : QString(), files};
    };
    if (onWindows()) {
        const QStringList files{QStringLiteral("7z.exe"), QStringLiteral("7z.dll")};
        return {fetched("7zip-15.05", files), fetched("7zip-16.04", files),
                fetched("7zip-21.07", {QStringLiteral("7z.exe")}), fetched("7zip-24.09", files)};
    }
    const QString installed = QStandardPaths::findExecutable(QStringLiteral("7zz"));
    return {{QStringLiteral("7zip of the system"),
             installed.isEmpty() ? QString() : QFileInfo(installed).path(),
             {QStringLiteral("7zz")}},
            fetched("p7zip-16.02", {QStringLiteral("7za")})};
}

void addProgramColumn()
{
    QTest::addColumn<QString>("program");
}

// Calls \a addRow with the name of each program.
template <typename AddRow> void forEachProgram(AddRow addRow)
{
    const QVector<Program> all = programs();
    for (const Program &program : all)
        addRow(program.name);
}

void addProgramRows()
{
    addProgramColumn();
    forEachProgram([](const QString &program) { QTest::newRow(qPrintable(program)) << program; });
}

// The library looks for the archiver in the folder of the running program.
bool putBesideThisProgram(const Program &chosen)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QVector<Program> all = programs();
    for (const Program &program : all) {
        for (const QString &file : program.files) {
            const QString path = folder.filePath(file);
            // A program that has just ended may hold its file for a moment longer.
            if (!QTest::qWaitFor([&path] { return !QFile::exists(path) || QFile::remove(path); }))
                return false;
        }
    }
    for (const QString &file : chosen.files) {
        if (!QFile::copy(chosen.folder + QLatin1Char('/') + file, folder.filePath(file)))
            return false;
    }
    return true;
}

// What an entry of a zip archive has both before its content and in the directory.
void writeZipEntry(QDataStream &out, const QByteArray &name)
{
    constexpr quint16 January1st2024 = (44 << 9) | (1 << 5) | 1;
    constexpr quint32 Checksum = 0x8cdc1683U; // of "x"
    out << quint16(10) << quint16(0) << quint16(0) << quint16(0) << January1st2024 << Checksum << 1U
        << 1U << quint16(name.size()) << quint16(0);
}

// A zip archive of the stored files "file 0", "file 1" and so on, each of which holds one "x".
QByteArray zipOfOneByteFiles(int count)
{
    QByteArray archive;
    QByteArray directory;
    QDataStream archiveOut(&archive, QIODevice::WriteOnly);
    QDataStream directoryOut(&directory, QIODevice::WriteOnly);
    archiveOut.setByteOrder(QDataStream::LittleEndian);
    directoryOut.setByteOrder(QDataStream::LittleEndian);
    for (int i = 0; i < count; ++i) {
        const QByteArray name = "file " + QByteArray::number(i);
        const auto offset = static_cast<quint32>(archive.size());
        archiveOut << 0x04034b50U;
        writeZipEntry(archiveOut, name);
        archiveOut.writeRawData(name.constData(), name.size());
        archiveOut.writeRawData("x", 1);
        directoryOut << 0x02014b50U << quint16(10);
        writeZipEntry(directoryOut, name);
        directoryOut << quint16(0) << quint16(0) << quint16(0) << 0U << offset;
        directoryOut.writeRawData(name.constData(), name.size());
    }
    const auto directoryAt = static_cast<quint64>(archive.size());
    const auto directorySize = static_cast<quint64>(directory.size());
    const auto number = static_cast<quint64>(count);
    // Too many for the 16-bit counts of the ordinary end record.
    const bool isLarge = number >= 0xffff;
    archiveOut.writeRawData(directory.constData(), directory.size());
    if (isLarge) { // the zip64 end record and its locator
        archiveOut << 0x06064b50U << quint64(44) << quint16(45) << quint16(45) << 0U << 0U << number
                   << number << directorySize << directoryAt;
        archiveOut << 0x07064b50U << 0U << directoryAt + directorySize << 1U;
    }
    const auto shortNumber = static_cast<quint16>(isLarge ? 0xffff : number);
    archiveOut << 0x06054b50U << quint16(0) << quint16(0) << shortNumber << shortNumber
               << static_cast<quint32>(directorySize) << static_cast<quint32>(directoryAt)
               << quint16(0);
    return archive;
}

// Adds a comment to the zip archive \a bytes, which has none.
QByteArray withComment(QByteArray bytes, const QByteArray &comment)
{
    bytes.chop(2); // the length of the comment
    bytes += static_cast<char>(comment.size() % 256);
    bytes += static_cast<char>(comment.size() / 256);
    return bytes + comment;
}

} // namespace

class TestArchiverPrograms : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override;

    void typeMethodNamesAndSizesAreReported_data();
    void typeMethodNamesAndSizesAreReported();
    void namesArePassedAndReportedUnchanged_data();
    void namesArePassedAndReportedUnchanged();
    void namesInAListFileArePassedAndReportedUnchanged_data();
    void namesInAListFileArePassedAndReportedUnchanged();
    void namesThatLookLikeSwitchesArePackedWithADotInFront_data();
    void namesThatLookLikeSwitchesArePackedWithADotInFront();
    void foldersAreReportedWithoutASeparatorAtTheEnd_data();
    void foldersAreReportedWithoutASeparatorAtTheEnd();
    void aCommentIsNotTakenForEntries_data();
    void aCommentIsNotTakenForEntries();
    void anEmptyArchiveHasNoEntries_data();
    void anEmptyArchiveHasNoEntries();
    void anEncryptedArchiveIsListedButNotExtracted_data();
    void anEncryptedArchiveIsListedButNotExtracted();
    void anArchiveWithEncryptedNamesIsAFatalError_data();
    void anArchiveWithEncryptedNamesIsAFatalError();
    void whatIsNoArchiveIsAFatalErrorWithoutEntries_data();
    void whatIsNoArchiveIsAFatalErrorWithoutEntries();
    void archivesOfOtherProgramsAreRead_data();
    void archivesOfOtherProgramsAreRead();
    void aHundredThousandEntriesAreListed_data();
    void aHundredThousandEntriesAreListed();

private:
    QString archiveFile() const { return path("archive.bin"); }

    // An archive to make in archiveFile().
    std::unique_ptr<SevenZip> newArchive(int type, int method) const;

    OwnTempFolder temp_; // of the list files
    QString currentProgram_;
};

void TestArchiverPrograms::initTestCase()
{
    QVERIFY(temp_.isUsed());
}

void TestArchiverPrograms::init()
{
    QFETCH(QString, program);
    const QVector<Program> all = programs();
    const auto chosen = std::find_if(all.begin(), all.end(), [&program](const Program &candidate) {
        return candidate.name == program;
    });
    QVERIFY(chosen != all.end());
    if (chosen->folder.isEmpty())
        QSKIP("The archiver is not there: the folder VORNUTILITY_ARCHIVERS, which scripts/test.sh "
              "and scripts/test-windows.sh set, and PATH do not contain it");
    if (currentProgram_ != program)
        QVERIFY(putBesideThisProgram(*chosen));
    currentProgram_ = program;
    TestWithFolder::init();
    QVERIFY(QDir().mkpath(path("in")));
}

std::unique_ptr<SevenZip> TestArchiverPrograms::newArchive(int type, int method) const
{
    auto archive = std::make_unique<SevenZip>();
    archive->setArchiveFile(archiveFile());
    archive->setCurrentPath(path("in"));
    archive->setType(static_cast<SevenZip::Type>(type));
    archive->setMethod(static_cast<SevenZip::Method>(method));
    return archive;
}

namespace {

void addTypeAndMethodRows()
{
    addProgramColumn();
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    forEachProgram([](const QString &program) {
        QTest::addRow("%s, 7z", qPrintable(program))
            << program << int(SevenZip::Type7z) << int(SevenZip::LZMA2);
        QTest::addRow("%s, zip", qPrintable(program))
            << program << int(SevenZip::TypeZip) << int(SevenZip::Deflate);
    });
}

// Names that the archiver or the reader of its output may take for something else.
Tree hardNames()
{
    Tree tree;
    QStringList names{QStringLiteral("with blanks.txt"),
                      QStringLiteral("two  blanks   three"),
                      QStringLiteral("d/ blank first"),
                      QStringLiteral("12"),
                      QStringLiteral("12 34 numbers"),
                      QStringLiteral("2024-02-29 12.34.56 ....A 12 34 x"),
                      QString::fromUtf8("größe.txt"),
                      QString::fromUtf8("日本 Ω 😀.txt"),
                      QStringLiteral("d/--------"),
                      QStringLiteral("d/- minus"),
                      QStringLiteral("d/@at"),
                      QStringLiteral("{"),
                      QStringLiteral("}"),
                      QStringLiteral("Size.txt"),
                      QStringLiteral("Extracting  x"),
                      QStringLiteral("Type = zip"),
                      QStringLiteral("%PATH% ^& $HOME `x`")};
    if (!onWindows()) // no file can have such a name there
        names << QStringLiteral("d/*.t?t");
    for (const QString &name : qAsConst(names))
        tree.insert(name, name.toUtf8());
    return tree;
}

// A file that a name with wildcards would match. It must not be packed.
Tree neighbourOfHardNames()
{
    return {{QStringLiteral("d/neighbour.txt"), "left out"}};
}

} // namespace

void TestArchiverPrograms::typeMethodNamesAndSizesAreReported_data()
{
    addProgramColumn();
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    forEachProgram([](const QString &program) {
        const auto row = [&program](const char *text, int type, int method) {
            QTest::addRow("%s, %s", qPrintable(program), text) << program << type << method;
        };
        row("7z, Copy", SevenZip::Type7z, SevenZip::Copy);
        row("7z, Deflate", SevenZip::Type7z, SevenZip::Deflate);
        row("7z, LZMA", SevenZip::Type7z, SevenZip::LZMA);
        row("7z, LZMA2", SevenZip::Type7z, SevenZip::LZMA2);
        row("7z, BZip2", SevenZip::Type7z, SevenZip::BZip2);
        row("zip, Copy", SevenZip::TypeZip, SevenZip::Copy);
        row("zip, Deflate", SevenZip::TypeZip, SevenZip::Deflate);
    });
}

void TestArchiverPrograms::typeMethodNamesAndSizesAreReported()
{
    QFETCH(int, type);
    QFETCH(int, method);
    const Tree tree = mixedTree();
    const auto archive = newArchive(type, method);
    roundTrip(*archive, path("out"), tree, tree.keys());
    if (QTest::currentTestFailed())
        return;
    // The archive really has this type and method.
    QVERIFY(contentOf(archiveFile()).startsWith(type == SevenZip::Type7z ? "7z" : "PK"));
    QCOMPARE(archive->compressedSize() < archive->uncompressedSize(), method != SevenZip::Copy);
}

void TestArchiverPrograms::namesArePassedAndReportedUnchanged_data()
{
    addTypeAndMethodRows();
}

void TestArchiverPrograms::namesArePassedAndReportedUnchanged()
{
    QFETCH(int, type);
    QFETCH(int, method);
    Tree tree = hardNames();
    // Only on the command line: 7-Zip trims the lines of a list file.
    tree.insert(QStringLiteral(" blank first"), "blank");
    QVERIFY2(tree.size() <= 32, "More names are given in a list file.");
    QVERIFY(writeTree(path("in"), neighbourOfHardNames()));
    roundTrip(*newArchive(type, method), path("out"), tree, tree.keys());
}

void TestArchiverPrograms::namesInAListFileArePassedAndReportedUnchanged_data()
{
    addProgramRows();
}

void TestArchiverPrograms::namesInAListFileArePassedAndReportedUnchanged()
{
    Tree tree = hardNames();
    // This version takes no list file with a letter that is two units of UTF-16: exit code 7.
    if (currentProgram_ == QLatin1String("7zip-21.07"))
        tree.remove(QString::fromUtf8("日本 Ω 😀.txt"));
    for (int i = 0; tree.size() < 40; ++i)
        tree.insert(QStringLiteral("more %1").arg(i), "more");
    QVERIFY(writeTree(path("in"), neighbourOfHardNames()));
    roundTrip(*newArchive(SevenZip::Type7z, SevenZip::LZMA2), path("out"), tree, tree.keys());
}

void TestArchiverPrograms::namesThatLookLikeSwitchesArePackedWithADotInFront_data()
{
    addProgramRows();
}

void TestArchiverPrograms::namesThatLookLikeSwitchesArePackedWithADotInFront()
{
    const Tree tree{{QStringLiteral("-sdel"), "minus"}, {QStringLiteral("@list"), "at"}};
    roundTrip(*newArchive(SevenZip::Type7z, SevenZip::LZMA2), path("out"), tree,
              {QStringLiteral("./-sdel"), QStringLiteral("./@list")});
    QCOMPARE(readTree(path("in")), tree);
}

void TestArchiverPrograms::foldersAreReportedWithoutASeparatorAtTheEnd_data()
{
    addTypeAndMethodRows();
}

void TestArchiverPrograms::foldersAreReportedWithoutASeparatorAtTheEnd()
{
    QFETCH(int, type);
    QFETCH(int, method);
    const Tree tree{{QStringLiteral("a folder/x.txt"), "x"}};
    QVERIFY(writeTree(path("in"), tree));
    QVERIFY(QDir().mkpath(path("in/a folder/empty one")));
    QVERIFY(newArchive(type, method)->compressFiles({path("in/a folder")}));
    compareWithArchive(archiveFile(), path("out"), static_cast<SevenZip::Type>(type),
                       static_cast<SevenZip::Method>(method), tree,
                       {QStringLiteral("a folder"), QStringLiteral("a folder/empty one")});
    QVERIFY(QFileInfo(path("out/a folder/empty one")).isDir());
}

void TestArchiverPrograms::aCommentIsNotTakenForEntries_data()
{
    addProgramColumn();
    QTest::addColumn<QByteArray>("comment");
    forEachProgram([](const QString &program) {
        const auto row = [&program](const char *text, const QByteArray &comment) {
            QTest::addRow("%s, %s", qPrintable(program), text) << program << comment;
        };
        row("braces", "first\n{\nin braces\n}\n\nlast\n");
        row("open brace", "first\n{\nlast");
        row("brace after an empty line", "\n{\nlast");
        row("closing brace", "first\n}\nlast");
        row("type", "first\nType = 7z\nMethod = Copy\n");
        row("ruler", "first\n--------\nlast");
        row("name and totals", "first\n- name\nSize: 12\nCompressed: 34\nlast");
    });
}

void TestArchiverPrograms::aCommentIsNotTakenForEntries()
{
    QFETCH(QByteArray, comment);
    const QByteArray bytes = zipOfOneByteFiles(3);
    QVERIFY(writeFile(archiveFile(), withComment(bytes, comment)));
    const Tree tree{{QStringLiteral("file 0"), "x"},
                    {QStringLiteral("file 1"), "x"},
                    {QStringLiteral("file 2"), "x"}};
    compareWithArchive(archiveFile(), path("out"), SevenZip::TypeZip, SevenZip::Copy, tree);
}

void TestArchiverPrograms::anEmptyArchiveHasNoEntries_data()
{
    addTypeAndMethodRows();
}

void TestArchiverPrograms::anEmptyArchiveHasNoEntries()
{
    QFETCH(int, type);
    const QByteArray empty7z
        = QByteArray::fromHex("377abcaf271c00048d9bd50f0000000000000000000000000000000000000000");
    const QByteArray emptyZip = QByteArray::fromHex("504b0506").append(QByteArray(18, '\0'));
    QVERIFY(writeFile(archiveFile(), type == SevenZip::Type7z ? empty7z : emptyZip));
    SevenZip archive;
    archive.setArchiveFile(archiveFile());
    archive.setType(type == SevenZip::Type7z ? SevenZip::TypeZip : SevenZip::Type7z);
    QVERIFY(archive.listFiles());
    QCOMPARE(int(archive.type()), type);
    QCOMPARE(archive.method(), SevenZip::LZMA2); // as before: the listing has none
    QVERIFY(archive.files().isEmpty());
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(0));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(0));
    QVERIFY(archive.extractFilesTo(path("out")));
    QVERIFY(archive.files().isEmpty());
    QVERIFY(entriesOf(path("out")).isEmpty());
}

void TestArchiverPrograms::anEncryptedArchiveIsListedButNotExtracted_data()
{
    addTypeAndMethodRows();
}

void TestArchiverPrograms::anEncryptedArchiveIsListedButNotExtracted()
{
    QFETCH(int, type);
    SevenZip archive;
    archive.setArchiveFile(type == SevenZip::Type7z
                               ? BuildPaths::testData(QStringLiteral("archives/encrypted.7z"))
                               : BuildPaths::testData(QStringLiteral("archives/encrypted.zip")));
    QVERIFY(archive.listFiles());
    QCOMPARE(int(archive.type()), type);
    QCOMPARE(archive.files(), (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt")}));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(22));
    QVERIFY(!archive.extractFilesTo(path("out")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(!readTree(path("out")).values().contains("secret text\n"));
}

void TestArchiverPrograms::anArchiveWithEncryptedNamesIsAFatalError_data()
{
    addProgramRows();
}

void TestArchiverPrograms::anArchiveWithEncryptedNamesIsAFatalError()
{
    SevenZip archive;
    archive.setArchiveFile(BuildPaths::testData(QStringLiteral("archives/encrypted-names.7z")));
    QVERIFY(!archive.listFiles());
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(!archive.extractFilesTo(path("out")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(archive.files().isEmpty());
    QVERIFY(!readTree(path("out")).values().contains("secret text\n"));
}

void TestArchiverPrograms::whatIsNoArchiveIsAFatalErrorWithoutEntries_data()
{
    addProgramRows();
}

void TestArchiverPrograms::whatIsNoArchiveIsAFatalErrorWithoutEntries()
{
    QVERIFY(writeFile(archiveFile(), "this is no archive\n"));
    SevenZip archive;
    archive.setArchiveFile(archiveFile());
    QVERIFY(!archive.listFiles());
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(archive.files().isEmpty());
    QVERIFY(!archive.extractFilesTo(path("out")));
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QVERIFY(archive.files().isEmpty());
}

void TestArchiverPrograms::archivesOfOtherProgramsAreRead_data()
{
    addProgramColumn();
    QTest::addColumn<QString>("archive");
    forEachProgram([](const QString &program) {
        for (const char *maker :
             {"7zip-15.05", "7zip-16.04", "7zip-24.09", "7zip-26.02", "p7zip-16.02"}) {
            for (const char *suffix : {"7z", "zip"}) {
                QTest::addRow("%s, %s of %s", qPrintable(program), suffix, maker)
                    << program << QString::asprintf("made-by-%s.%s", maker, suffix);
            }
        }
    });
}

void TestArchiverPrograms::archivesOfOtherProgramsAreRead()
{
    QFETCH(QString, archive);
    const Tree tree{
        {QStringLiteral("a b.txt"), QByteArray("a line that comes again\n").repeated(40)},
        {QString::fromUtf8("größe 日本.txt"), "Unicode"},
        {QStringLiteral("d/12 34"), "numbers\n"},
        {QStringLiteral("d/empty"), QByteArray()}};
    const SevenZip::Type type
        = archive.endsWith(QLatin1String(".7z")) ? SevenZip::Type7z : SevenZip::TypeZip;
    compareWithArchive(BuildPaths::testData(QStringLiteral("archives/") + archive), path("out"),
                       type, SevenZip::LZMA2, tree, {QStringLiteral("d")});
}

void TestArchiverPrograms::aHundredThousandEntriesAreListed_data()
{
    addProgramRows();
}

void TestArchiverPrograms::aHundredThousandEntriesAreListed()
{
    constexpr int Count = 100000;
    QVERIFY(writeFile(archiveFile(), zipOfOneByteFiles(Count)));
    SevenZip lister;
    lister.setArchiveFile(archiveFile());
    QVERIFY(lister.listFiles());
    QStringList names;
    for (int i = 0; i < Count; ++i)
        names << QStringLiteral("file %1").arg(i);
    QVERIFY(lister.files() == names);
    QCOMPARE(lister.uncompressedSize(), qint64(Count));
    QCOMPARE(lister.compressedSize(), qint64(Count));
    QCOMPARE(lister.type(), SevenZip::TypeZip);
}

QTEST_GUILESS_MAIN(TestArchiverPrograms)

#include "tst_archiverprograms.moc"
