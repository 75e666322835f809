// What is read from the output of an extraction and of a listing.

#include "BuildPaths.h"
#include "FakeArchiver.h"
#include "TestFiles.h"
#include "TestWithFakeArchiver.h"

#include <Utility/SevenZip.h>

#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QByteArray recording(const char *name)
{
    return contentOf(BuildPaths::testData(QStringLiteral("archiver/")) + QString::fromLatin1(name));
}

constexpr qint64 SizeBefore = 11; // what both sizes are until a line sets them

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

class TestSevenZipResults : public TestWithFakeArchiver
{
    Q_OBJECT

private Q_SLOTS:
    // What an extraction reports
    void linesOfAnExtraction_data();
    void linesOfAnExtraction();
    void aRecordedExtraction_data();
    void aRecordedExtraction();
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
    void aLineInTwoBlocks_data();
    void aLineInTwoBlocks();
    void aListingAppendsToTheFiles();
    void aSecondListingStartsWithItsHeader();
};

void TestSevenZipResults::linesOfAnExtraction_data()
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
    row("a null byte", QByteArray("Extracting  a\0b\n", 16), names("a"));
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

void TestSevenZipResults::linesOfAnExtraction()
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

void TestSevenZipResults::aRecordedExtraction_data()
{
    blockRows();
}

void TestSevenZipResults::aRecordedExtraction()
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

void TestSevenZipResults::anExtractionReadsStandardErrorToo()
{
    FakeArchiver fake;
    fake.printError("Extracting  a\n").print("Extracting  b\n").printError("Size: 5\n");
    SevenZip archive;
    QVERIFY(archive.extractFilesTo(QStringLiteral("to")));
    QCOMPARE(archive.files(), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(5));
}

void TestSevenZipResults::headersOfAListing_data()
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

void TestSevenZipResults::headersOfAListing()
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

void TestSevenZipResults::unknownHeadersOfAListingFallBack_data()
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

void TestSevenZipResults::unknownHeadersOfAListingFallBack()
{
#ifdef QT_NO_DEBUG
    headersOfAListing();
#else
    QSKIP("A debug build stops here with an assertion, which tst_sevenzip tests");
#endif
}

void TestSevenZipResults::entriesOfAListing_data()
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

void TestSevenZipResults::entriesOfAListing()
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

void TestSevenZipResults::totalsOfAListing_data()
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

void TestSevenZipResults::totalsOfAListing()
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

void TestSevenZipResults::aRecordedListing_data()
{
    blockRows();
}

void TestSevenZipResults::aRecordedListing()
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

void TestSevenZipResults::aLineInTwoBlocks_data()
{
    QTest::addColumn<bool>("isListing");
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("whole");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("extraction") << false << QByteArray() << QByteArray("Extracting  a\r\n")
                                << QByteArray("Extracting  b c\r\n");
    QTest::newRow("listing") << true << QByteArray(Ruler)
                             << QByteArray("2024-02-29 12:34:56 ....A 292 139 a\r\n")
                             << QByteArray("2024-02-29 12:34:56 ....A 292 139 b c\r\n");
}

// The line is divided at each of its bytes.
void TestSevenZipResults::aLineInTwoBlocks()
{
    QFETCH(bool, isListing);
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, whole);
    QFETCH(QByteArray, line);
    FakeArchiver fake;
    QStringList expected;
    if (!start.isEmpty())
        fake.print(start);
    for (int offset = 1; offset < line.size(); ++offset) {
        fake.print(whole + line.left(offset)).waitFor(QString::number(offset));
        fake.print(line.mid(offset));
    }
    SevenZip archive;
    QSignalSpy finished(&archive,
                        isListing ? &SevenZip::listFinished : &SevenZip::extractionFinished);
    if (isListing)
        archive.startListingFiles();
    else
        archive.startExtractingFilesTo(QStringLiteral("to"));
    for (int offset = 1; offset < line.size(); ++offset) {
        expected << QStringLiteral("a");
        QTRY_COMPARE(archive.files(), expected); // the first block was read
        expected << QStringLiteral("b c");
        QVERIFY(fake.goOn(QString::number(offset)));
    }
    QVERIFY(finished.wait());
    QCOMPARE(archive.files(), expected);
}

void TestSevenZipResults::aListingAppendsToTheFiles()
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

void TestSevenZipResults::aSecondListingStartsWithItsHeader()
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

QTEST_GUILESS_MAIN(TestSevenZipResults)

#include "tst_sevenzipresults.moc"
