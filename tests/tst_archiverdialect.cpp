#include <Utility/Platform/Archiver.h>
#include <Utility/Platform/ArchiverDialect.h>

#include "TestSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util::Platform;

namespace {

QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

// One line each, with the line ends as they come.
QList<QByteArray> linesOf(const QByteArray &output)
{
    QList<QByteArray> lines;
    for (int from = 0; from < output.size();) {
        const int end = output.indexOf('\n', from);
        const int next = end < 0 ? output.size() : end + 1;
        lines << output.mid(from, next - from);
        from = next;
    }
    return lines;
}

// What is left of an output for the readers.
QStringList decoded(ArchiverDialect dialect, ArchiverOperation operation, const QByteArray &output)
{
    ArchiverLineDecoder decoder(dialect, operation);
    QStringList texts;
    const QList<QByteArray> lines = linesOf(output);
    for (const QByteArray &line : lines) {
        const QString text = decoder.decode(line);
        if (!text.isNull())
            texts << text;
    }
    return texts;
}

QStringList currentListing(const QByteArray &output)
{
    return decoded(ArchiverDialect::Current, ArchiverOperation::List, output);
}

QStringList currentExtraction(const QByteArray &output)
{
    return decoded(ArchiverDialect::Current, ArchiverOperation::Extract, output);
}

QByteArray recording(const QString &name)
{
    QFile file(QStringLiteral(TEST_DATA "/archiver/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const char *const Ruler
    = "------------------- ----- ------------ ------------  ------------------------";

QByteArray table(const QByteArray &entries, const QByteArray &totals)
{
    return QByteArray(Ruler) + '\n' + entries + Ruler + '\n' + totals;
}

} // namespace

Q_DECLARE_METATYPE(Vorn::Util::Platform::ArchiverOperation)

class TestArchiverDialect : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theProductsArgumentsStay_data();
    void theProductsArgumentsStay();
    void theCurrentProgramIsToldHowToTakeAndPrintNames_data();
    void theCurrentProgramIsToldHowToTakeAndPrintNames();

    void theProductsLinesAreSimplifiedLatin1_data();
    void theProductsLinesAreSimplifiedLatin1();
    void theProductsLinesAreAllThere_data();
    void theProductsLinesAreAllThere();
    void aRecordedOutputOfTheProduct_data();
    void aRecordedOutputOfTheProduct();

    void aRecordedListing_data();
    void aRecordedListing();
    void aRecordedExtraction_data();
    void aRecordedExtraction();
    void lineEndsDoNotCount_data();
    void lineEndsDoNotCount();
    void methodsLoseTheirParameters_data();
    void methodsLoseTheirParameters();
    void rowsOfAListing_data();
    void rowsOfAListing();
    void whatTheReadersTakeForARulerEndsTheTable();
    void totalsOfAListing_data();
    void totalsOfAListing();
    void linesOfAnExtraction_data();
    void linesOfAnExtraction();
    void commentsAreSkipped_data();
    void commentsAreSkipped();
    void aDecoderKeepsNothingOfAnotherRun();

    void theArchiverIsFound_data();
    void theArchiverIsFound();
};

namespace {

void operationRows()
{
    QTest::addColumn<ArchiverOperation>("operation");
    QTest::addColumn<QStringList>("added");
    const QString utf8Console = QStringLiteral("-sccUTF-8");
    const QString noWildcards = QStringLiteral("-spd");
    QTest::newRow("compress") << ArchiverOperation::Compress << QStringList{noWildcards};
    const QString emptyPassword = QStringLiteral("-p");
    QTest::newRow("extract") << ArchiverOperation::Extract
                             << QStringList{noWildcards, utf8Console, emptyPassword,
                                            QStringLiteral("-bb1")};
    QTest::newRow("list") << ArchiverOperation::List
                          << QStringList{noWildcards, utf8Console, emptyPassword};
}

QStringList someArguments()
{
    return {QStringLiteral("x"), QStringLiteral("my archive.7z"), QString(),
            QStringLiteral("-oto here")};
}

} // namespace

void TestArchiverDialect::theProductsArgumentsStay_data()
{
    operationRows();
}

void TestArchiverDialect::theProductsArgumentsStay()
{
    QFETCH(ArchiverOperation, operation);
    QCOMPARE(archiverArguments(ArchiverDialect::Product, operation, someArguments()),
             someArguments());
    QCOMPARE(archiverArguments(ArchiverDialect::Product, operation, {}), QStringList());
}

void TestArchiverDialect::theCurrentProgramIsToldHowToTakeAndPrintNames_data()
{
    operationRows();
}

void TestArchiverDialect::theCurrentProgramIsToldHowToTakeAndPrintNames()
{
    QFETCH(ArchiverOperation, operation);
    QFETCH(QStringList, added);
    QCOMPARE(archiverArguments(ArchiverDialect::Current, operation, someArguments()),
             someArguments() + added);
}

void TestArchiverDialect::theProductsLinesAreSimplifiedLatin1_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    QTest::newRow("line end") << QByteArray("Everything is Ok\n") << utf8("Everything is Ok");
    QTest::newRow("CR LF") << QByteArray("Everything is Ok\r\n") << utf8("Everything is Ok");
    QTest::newRow("white space") << QByteArray(" \t Extracting  a \t b  \r\n")
                                 << utf8("Extracting a b");
    QTest::newRow("Latin-1") << QByteArray("gr\xf6\xdf\n") << utf8("größ");
    QTest::newRow("UTF-8") << QByteArray("\xc3\xb6\n") << utf8("Ã¶");
    QTest::newRow("newer form") << QByteArray("- a  b\n") << utf8("- a b");
    QTest::newRow("brace") << QByteArray("{\n") << utf8("{");
    QTest::newRow("method") << QByteArray("Method = LZMA2:12\n") << utf8("Method = LZMA2:12");
}

void TestArchiverDialect::theProductsLinesAreSimplifiedLatin1()
{
    QFETCH(QByteArray, line);
    for (const auto operation :
         {ArchiverOperation::Compress, ArchiverOperation::Extract, ArchiverOperation::List}) {
        ArchiverLineDecoder decoder(ArchiverDialect::Product, operation);
        QTEST(decoder.decode(line), "expected");
    }
}

void TestArchiverDialect::theProductsLinesAreAllThere_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("LF") << QByteArray("\n");
    QTest::newRow("CR LF") << QByteArray("\r\n");
    QTest::newRow("blanks") << QByteArray("  \t \n");
}

// An empty line counts for the readers: after the totals it sets them to 0.
void TestArchiverDialect::theProductsLinesAreAllThere()
{
    QFETCH(QByteArray, line);
    ArchiverLineDecoder decoder(ArchiverDialect::Product, ArchiverOperation::List);
    const QString text = decoder.decode(line);
    QVERIFY(text.isEmpty());
    QVERIFY(!text.isNull());
}

void TestArchiverDialect::aRecordedOutputOfTheProduct_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<ArchiverOperation>("operation");
    QTest::addColumn<QStringList>("expected");
    const QString banner = utf8("7-Zip 9.20 Copyright (c) 1999-2010 Igor Pavlov 2010-11-18");
    const QString empty = QLatin1String("");
    QTest::newRow("extraction of a 7z archive")
        << QStringLiteral("product-extract-7z.txt") << ArchiverOperation::Extract
        << QStringList{empty,
                       banner,
                       empty,
                       utf8("Processing archive: many.7z"),
                       empty,
                       utf8("Extracting 12"),
                       utf8("Extracting 12 34 numbers"),
                       utf8("Extracting d\\a b.txt"),
                       utf8("Extracting d\\2023 two blanks ü.txt"),
                       utf8("Extracting d"),
                       utf8("Extracting d\\empty"),
                       empty,
                       utf8("Everything is Ok"),
                       empty,
                       utf8("Folders: 1"),
                       utf8("Files: 5"),
                       utf8("Size: 2271"),
                       utf8("Compressed: 616")};
    QTest::newRow("extraction of a damaged archive")
        << QStringLiteral("product-extract-damaged.txt") << ArchiverOperation::Extract
        << QStringList{empty,
                       banner,
                       empty,
                       utf8("Processing archive: many.zip"),
                       empty,
                       utf8("Extracting 12 CRC Failed"),
                       utf8("Extracting 12 34 numbers"),
                       empty,
                       utf8("Sub items Errors: 1")};
    QTest::newRow("listing of a zip archive")
        << QStringLiteral("product-list-zip.txt") << ArchiverOperation::List
        << QStringList{empty,
                       banner,
                       empty,
                       utf8("Listing archive: many.zip"),
                       empty,
                       utf8("--"),
                       utf8("Path = many.zip"),
                       utf8("Type = zip"),
                       utf8("Physical Size = 2418"),
                       empty,
                       utf8("Date Time Attr Size Compressed Name"),
                       utf8(Ruler).simplified(),
                       utf8("2024-02-29 12:34:56 ..... 292 142 12"),
                       utf8("2024-02-29 12:34:56 ..... 81 49 12 34 numbers"),
                       utf8("2024-02-29 12:34:56 D.... 0 0 d"),
                       utf8("2024-02-29 12:34:56 ..... 6 6 d\\a b.txt"),
                       utf8(Ruler).simplified(),
                       utf8("379 197 3 files, 1 folders")};
}

void TestArchiverDialect::aRecordedOutputOfTheProduct()
{
    QFETCH(QString, file);
    QFETCH(ArchiverOperation, operation);
    QTEST(decoded(ArchiverDialect::Product, operation, recording(file)), "expected");
}

void TestArchiverDialect::aRecordedListing_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("header");
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QStringList>("totals");
    const auto row = [](const char *file, const QStringList &header, const QStringList &entries,
                        const QString &totals) {
        QTest::newRow(file) << QStringLiteral("current-list-%1.txt").arg(QString::fromLatin1(file))
                            << header << entries << QStringList{totals};
    };
    const QString type7z = utf8("Type = 7z");
    const QString typeZip = utf8("Type = zip");
    const QString lzma2 = utf8("Method = LZMA2");
    const QStringList entries7z{utf8("2024-02-29 12:34:56 D.... 0 0 d"),
                                utf8("2024-02-29 12:34:56 D.... 0 0 d/sub folder"),
                                utf8("2024-02-29 12:34:56 ....A 0 0 d/empty"),
                                utf8("2024-02-29 12:34:56 ....A 2 305  lead"),
                                utf8("2024-02-29 12:34:56 ....A 292 0 12"),
                                utf8("2024-02-29 12:34:56 ....A 81 0 12 34 numbers"),
                                utf8("2024-02-29 12:34:56 ....A 2 0 d/- minus"),
                                utf8("2024-02-29 12:34:56 ....A 1892 0 d/2023 two  blanks ü.txt"),
                                utf8("2024-02-29 12:34:56 ....A 6 0 d/a b.txt"),
                                utf8("2024-02-29 12:34:56 ....A 292 0 d/sub folder/123"),
                                utf8("2024-02-29 12:34:56 ....A 2 0 日本 Ω.txt")};
    const QStringList entriesZip{
        utf8("2024-02-29 12:34:56 ..... 2 2  lead"),
        utf8("2024-02-29 12:34:56 ..... 292 142 12"),
        utf8("2024-02-29 12:34:56 ..... 81 49 12 34 numbers"),
        utf8("2024-02-29 12:34:56 D.... 0 0 d"),
        utf8("2024-02-29 12:34:56 ..... 2 2 d/- minus"),
        utf8("2024-02-29 12:34:56 ..... 1892 591 d/2023 two  blanks ü.txt"),
        utf8("2024-02-29 12:34:56 ..... 6 6 d/a b.txt"),
        utf8("2024-02-29 12:34:56 ..... 0 0 d/empty"),
        utf8("2024-02-29 12:34:56 D.... 0 0 d/sub folder"),
        utf8("2024-02-29 12:34:56 ..... 292 142 d/sub folder/123"),
        utf8("2024-02-29 12:34:56 ..... 2 2 日本 Ω.txt")};
    row("many.7z", {type7z, lzma2}, entries7z, utf8("2569 305 9 files, 2 folders"));
    row("many.zip", {typeZip}, entriesZip, utf8("2569 936 9 files, 2 folders"));
    row("copy.7z", {type7z, utf8("Method = Copy")}, {utf8("2024-02-29 12:34:56 ....A 292 292 12")},
        utf8("292 292 1 files"));
    row("bcj.7z", {type7z, utf8("Method = LZMA")}, {utf8("2024-02-29 12:34:56 ....A 292 148 12")},
        utf8("292 148 1 files"));
    row("enc.7z", {type7z, lzma2}, {utf8("2024-02-29 12:34:56 ....A 292 160 12")},
        utf8("292 160 1 files"));
    row("nothing.7z", {type7z}, {}, utf8("0 0 0 files"));
    row("named.gz", {utf8("Type = gzip")}, {utf8("2024-02-29 12:34:56 ..... 2 36 日本 Ω.txt")},
        utf8("2 36 1 files"));
    row("stream.gz", {utf8("Type = gzip")}, {utf8("0 0 ..... 21 41 stream")},
        utf8("21 41 1 files"));
    row("12.txt.bz2", {utf8("Type = bzip2")}, {utf8("0 0 ..... 0 0 12.txt")},
        utf8("0 112 1 files"));
    row("tail.7z", {type7z, lzma2}, entries7z, utf8("2569 305 9 files, 2 folders")); // a warning
    row("cut.zip", {typeZip}, entriesZip, utf8("2569 936 9 files, 2 folders"));      // an error
    row("oneline.zip", {typeZip}, {utf8("2024-02-29 12:34:56 ..... 5 5 first.txt")},
        utf8("5 5 1 files"));
    row("comment.zip", {typeZip},
        {utf8("2024-02-29 12:34:56 ..... 5 5 first.txt"), utf8("2024-02-29 12:34:56 ..... 1 1 {"),
         utf8("2024-02-29 12:34:56 ..... 1 1 }"),
         utf8("2024-02-29 12:34:56 ..... 3 3 123 numbers first")},
        utf8("10 10 4 files"));
    QTest::newRow("missing.7z") << QStringLiteral("current-list-missing.7z.txt") << QStringList()
                                << QStringList() << QStringList();
}

void TestArchiverDialect::aRecordedListing()
{
    QFETCH(QString, file);
    QFETCH(QStringList, header);
    QFETCH(QStringList, entries);
    QFETCH(QStringList, totals);
    const QByteArray output = recording(file);
    QVERIFY(!output.isEmpty());
    const bool hasTable = !totals.isEmpty();
    const QStringList ruler = hasTable ? QStringList{QString::fromLatin1(Ruler)} : QStringList();
    QCOMPARE(currentListing(output), header + ruler + entries + ruler + totals);
}

void TestArchiverDialect::aRecordedExtraction_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("sizes");
    const auto row
        =
            [](const char *file, const QStringList &names, const QStringList &sizes) {
                QTest::newRow(file)
                    << QStringLiteral("current-extract-%1.txt").arg(QString::fromLatin1(file))
                    << names << sizes;
            };
    const QStringList names7z{utf8("d"),         utf8("d/sub folder"),
                              utf8("d/empty"),   utf8(" lead"),
                              utf8("12"),        utf8("12 34 numbers"),
                              utf8("d/- minus"), utf8("d/2023 two  blanks ü.txt"),
                              utf8("d/a b.txt"), utf8("d/sub folder/123"),
                              utf8("日本 Ω.txt")};
    row("many.7z", names7z, {utf8("Size: 2569"), utf8("Compressed: 616")});
    row("many.zip",
        {utf8(" lead"), utf8("12"), utf8("12 34 numbers"), utf8("d"), utf8("d/- minus"),
         utf8("d/2023 two  blanks ü.txt"), utf8("d/a b.txt"), utf8("d/empty"), utf8("d/sub folder"),
         utf8("d/sub folder/123"), utf8("日本 Ω.txt")},
        {utf8("Size: 2569"), utf8("Compressed: 2418")});
    row("tail.7z", names7z, {utf8("Size: 2569"), utf8("Compressed: 632")});
    row("stream.gz", {utf8("stream")}, {utf8("Size: 21"), utf8("Compressed: 41")});
    row("nothing.7z", {}, {utf8("Size: 0"), utf8("Compressed: 32")});
    row("comment.zip", {utf8("first.txt"), utf8("{"), utf8("}"), utf8("123 numbers first")},
        {utf8("Size: 10"), utf8("Compressed: 756")});
    row("damaged.7z", {utf8("d"), utf8("d/sub folder"), utf8("d/empty"), utf8(" lead"), utf8("12")},
        {});
    row("rubbish.7z", {}, {utf8("Size: 0"), utf8("Compressed: 0")});
    row("missing.7z", {}, {});
}

void TestArchiverDialect::aRecordedExtraction()
{
    QFETCH(QString, file);
    QFETCH(QStringList, names);
    QFETCH(QStringList, sizes);
    const QByteArray output = recording(file);
    QVERIFY(!output.isEmpty());
    QStringList expected;
    for (const QString &name : qAsConst(names))
        expected << QStringLiteral("Extracting ") + name;
    QCOMPARE(currentExtraction(output), expected + sizes);
}

void TestArchiverDialect::lineEndsDoNotCount_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("listing") << QStringLiteral("current-list-comment.zip.txt");
    QTest::newRow("extraction") << QStringLiteral("current-extract-comment.zip.txt");
}

void TestArchiverDialect::lineEndsDoNotCount()
{
    QFETCH(QString, file);
    const QByteArray lf = recording(file);
    QByteArray crLf = lf;
    crLf.replace("\n", "\r\n");
    QVERIFY(crLf.size() > lf.size());
    QCOMPARE(currentListing(crLf), currentListing(lf));
    QCOMPARE(currentExtraction(crLf), currentExtraction(lf));
}

void TestArchiverDialect::methodsLoseTheirParameters_data()
{
    QTest::addColumn<QString>("methods");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *methods, const char *expected) {
        QTest::newRow(methods) << QString::fromLatin1(methods) << QString::fromLatin1(expected);
    };
    row("Copy", "Copy");
    row("Deflate", "Deflate");
    row("LZMA:16", "LZMA");
    row("LZMA2:12", "LZMA2");
    row("LZMA2:768k", "LZMA2");
    row("BZip2", "BZip2");
    row("LZMA:12 BCJ", "LZMA");
    row("BCJ LZMA:12", "LZMA");
    row("Delta:4 LZMA2:24 7zAES", "LZMA2");
    row("LZMA:20 LZMA2:24", "LZMA");
    row("PPMD", "PPMD");
    row("PPMD:o6:mem24", "PPMD:o6:mem24");
    row("Deflate64", "Deflate64");
    row("lzma:12", "lzma:12");
    row("", "");
}

void TestArchiverDialect::methodsLoseTheirParameters()
{
    QFETCH(QString, methods);
    QFETCH(QString, expected);
    QCOMPARE(currentListing("Method = " + methods.toLatin1() + '\n'),
             QStringList{QStringLiteral("Method = ") + expected});
}

void TestArchiverDialect::rowsOfAListing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &line, const char *expected) {
        QTest::newRow(name) << line << utf8(expected);
    };
    row("all columns", "2024-02-29 12:34:56 ....A          292          139  a.txt",
        "2024-02-29 12:34:56 ....A 292 139 a.txt");
    row("no packed size", "2024-02-29 12:34:56 ....A          292               a.txt",
        "2024-02-29 12:34:56 ....A 292 0 a.txt");
    row("no size", "2024-02-29 12:34:56 ....A                       139  a.txt",
        "2024-02-29 12:34:56 ....A 0 139 a.txt");
    row("no date", "                    ....A          292          139  a.txt",
        "0 0 ....A 292 139 a.txt");
    row("nothing but a name", "                                                     a.txt",
        "0 0 0 0 0 a.txt");
    row("blanks around", "2024-02-29 12:34:56 ....A          292          139    a  b ",
        "2024-02-29 12:34:56 ....A 292 139   a  b ");
    row("a name of a number", "2024-02-29 12:34:56 ....A          292               12",
        "2024-02-29 12:34:56 ....A 292 0 12");
    row("numbers in a name", "2024-02-29 12:34:56 ....A          292               12 34 x",
        "2024-02-29 12:34:56 ....A 292 0 12 34 x");
    row("as wide as the columns", "2024-02-29 12:34:56 ....A 123456789012 210987654321  a b",
        "2024-02-29 12:34:56 ....A 123456789012 210987654321 a b");
    row("a wider size", "2024-02-29 12:34:56 ....A 1234567890123          139  12 b",
        "2024-02-29 12:34:56 ....A 1234567890123 139 12 b");
    row("a wider packed size", "2024-02-29 12:34:56 ....A          292 1234567890123  12 b",
        "2024-02-29 12:34:56 ....A 292 1234567890123 12 b");
    row("both wider", "2024-02-29 12:34:56 ....A 12345678901234 1234567890123  a",
        "2024-02-29 12:34:56 ....A 12345678901234 1234567890123 a");
    row("a wider size alone", "2024-02-29 12:34:56 ....A 1234567890123               12 b",
        "2024-02-29 12:34:56 ....A 1234567890123 0 12 b");
    row("letters outside Latin-1", "2024-02-29 12:34:56 ....A            1            1  日本 😀",
        "2024-02-29 12:34:56 ....A 1 1 日本 😀");
    row("a ruler for a name", "2024-02-29 12:34:56 ....A            1            1  --------",
        "2024-02-29 12:34:56 ....A 1 1 --------");
    row("braces for a name", "                    ....A            1            1  {",
        "0 0 ....A 1 1 {");
    row("words of the header", "2024-02-29 12:34:56 ....A            1            1  Type = 7z",
        "2024-02-29 12:34:56 ....A 1 1 Type = 7z");
}

void TestArchiverDialect::rowsOfAListing()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, expected);
    const QString ruler = QString::fromLatin1(Ruler);
    QCOMPARE(currentListing(table(line + '\n', "")), QStringList({ruler, expected, ruler}));
}

void TestArchiverDialect::whatTheReadersTakeForARulerEndsTheTable()
{
    const QByteArray indented = "  --------";
    const QByteArray totals
        = "2024-02-29 12:34:56               2569          305  9 files\n\nWarnings: 1\n";
    const QStringList lines = currentListing(QByteArray(Ruler) + '\n' + indented + '\n' + totals);
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(1).startsWith(utf8("--------")));
    QCOMPARE(lines.at(2), utf8("2569 305 9 files"));
}

void TestArchiverDialect::totalsOfAListing_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &lines, const char *expected) {
        const QString text = utf8(expected);
        QTest::newRow(name) << lines << (text.isEmpty() ? QStringList() : QStringList{text});
    };
    const QByteArray dated = "2024-02-29 12:34:56               2569          305  9 files\n";
    row("with a date", dated, "2569 305 9 files");
    row("without a date", "                                  2569          305  9 files\n",
        "2569 305 9 files");
    row("beyond 63 bits",
        "2024-02-29 12:34:56       9223372036854775808 9223372036854775808  9 files\n",
        "9223372036854775808 9223372036854775808 9 files");
    row("without a size", "                                                305  1 files\n",
        "0 305 1 files");
    row("wider numbers",
        "2024-02-29 12:34:56        1234567890123 12345678901234  9 files, 2 folders\n",
        "1234567890123 12345678901234 9 files, 2 folders");
    row("lines after them", dated + "\nWarnings: 1\n\nErrors: 1\n", "2569 305 9 files");
    row("long lines after them",
        dated + "WARNING: There are some data after the end of the payload data of x.7z\n",
        "2569 305 9 files");
    row("nothing", "\n", "");
}

void TestArchiverDialect::totalsOfAListing()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, expected);
    const QString ruler = QString::fromLatin1(Ruler);
    QCOMPARE(currentListing(table("", lines)), QStringList({ruler, ruler}) + expected);
}

void TestArchiverDialect::linesOfAnExtraction_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &lines, const QStringList &expected) {
        QTest::newRow(name) << lines << expected;
    };
    row("a name", "- a.txt\n", {utf8("Extracting a.txt")});
    row("white space in a name", "-  a  b\t \n", {utf8("Extracting  a  b\t ")});
    row("a folder", "- d/e/\n", {utf8("Extracting d/e")});
    row("a name with a switch", "- -bb1\n- - x\n",
        {utf8("Extracting -bb1"), utf8("Extracting - x")});
    row("words of the totals", "- Size: 5\n- Compressed: 6\n",
        {utf8("Extracting Size: 5"), utf8("Extracting Compressed: 6")});
    row("letters outside Latin-1", "- 日本 😀\n", {utf8("Extracting 日本 😀")});
    row("the archive's own line", "Extracting archive: x.7z\n", {});
    row("what was only tested or failed", "T a\nERROR: Data Error : a\n. b\n", {});
    row("a dash without a name", "-\n--\n-a\n", {});
    row("totals", "Size:       2569\nCompressed: 616\n",
        {utf8("Size: 2569"), utf8("Compressed: 616")});
    row("names after the totals", "- a\nSize:  5\n- b\nCompressed: 6\n",
        {utf8("Extracting a"), utf8("Size: 5"), utf8("Compressed: 6")});
    row("empty lines", "\n\n", {});
}

void TestArchiverDialect::linesOfAnExtraction()
{
    QFETCH(QByteArray, lines);
    QTEST(currentExtraction(lines), "expected");
}

void TestArchiverDialect::commentsAreSkipped_data()
{
    QTest::addColumn<QByteArray>("comment");
    QTest::newRow("one line") << QByteArray("Comment = Type = zip\n");
    QTest::newRow("one brace") << QByteArray("Comment = {\n");
    QTest::newRow("lines") << QByteArray("Comment = \n{\nfirst\n\nsecond\n}\n");
    QTest::newRow("lines of a header")
        << QByteArray("Comment = \n{\nType = zip\nMethod = Copy\n}\n");
    QTest::newRow("a table") << QByteArray("Comment = \n{\n") + table("1 2 3 4 5 x\n", "1 2 3\n")
            + QByteArray("}\n");
    QTest::newRow("lines of an extraction")
        << QByteArray("Comment = \n{\n- false\nSize: 7\nCompressed: 8\n}\n");
    QTest::newRow("braces in lines") << QByteArray("Comment = \n{\n{\n } \n}x\n- false\n}\n");
    QTest::newRow("two") << QByteArray("Comment = \n{\nType = zip\n}\nNote = \n{\n- false\n}\n");
}

void TestArchiverDialect::commentsAreSkipped()
{
    QFETCH(QByteArray, comment);
    const QString ruler = QString::fromLatin1(Ruler);
    const QStringList listing{
        utf8("Type = 7z"),  utf8("Method = LZMA"), ruler, utf8("0 0 ....A 1 1 a"), ruler,
        utf8("1 1 1 files")};
    QCOMPARE(
        currentListing("Type = 7z\n" + comment + "Method = LZMA:16\n"
                       + table("                    ....A            1            1  a\n",
                               "                                     1            1  1 files\n")),
        listing);
    QCOMPARE(currentExtraction("Type = 7z\n" + comment + "\n- a\nSize: 1\n"),
             QStringList({utf8("Extracting a"), utf8("Size: 1")}));
}

void TestArchiverDialect::aDecoderKeepsNothingOfAnotherRun()
{
    const QByteArray open = "Comment = \n{\nnever closed\n";
    QCOMPARE(currentExtraction(open), QStringList());
    QCOMPARE(currentExtraction("- a\n"), QStringList{utf8("Extracting a")});
}

void TestArchiverDialect::theArchiverIsFound_data()
{
    QTest::addColumn<QStringList>("beside");
    QTest::addColumn<QStringList>("onPath");
    QTest::addColumn<QString>("expected"); // where the system has programs of its own
    const QString own = QStringLiteral("product/7z.exe");
    const auto row
        = [](const char *name, const char *beside, const char *onPath, const QString &expected) {
              const auto names = [](const char *text) {
                  return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
              };
              QTest::newRow(name) << names(beside) << names(onPath) << expected;
          };
    row("none", "", "", own);
    row("the product's", "7z.exe", "", own);
    row("the product's before all others", "7z.exe 7z 7zz 7za", "7z 7zz 7za", own);
    row("beside: 7z first", "7z 7zz 7za", "7z 7zz 7za", QStringLiteral("product/7z"));
    row("beside: then 7zz", "7zz 7za", "7z 7zz 7za", QStringLiteral("product/7zz"));
    row("beside: then 7za", "7za", "7z 7zz 7za", QStringLiteral("product/7za"));
    row("path: 7z first", "", "7z 7zz 7za", QStringLiteral("path/7z"));
    row("path: then 7zz", "", "7zz 7za", QStringLiteral("path/7zz"));
    row("path: then 7za", "", "7za", QStringLiteral("path/7za"));
    row("7z.exe on the path does not count", "", "7z.exe", own);
}

void TestArchiverDialect::theArchiverIsFound()
{
    QFETCH(QStringList, beside);
    QFETCH(QStringList, onPath);
    QFETCH(QString, expected);
    const QTemporaryDir folder;
    const auto makePrograms = [&folder](const QString &place, const QStringList &names) {
        if (!QDir(folder.path()).mkdir(place))
            return false;
        for (const QString &name : names) {
            QFile program(folder.filePath(place + QLatin1Char('/') + name));
            if (!program.open(QIODevice::WriteOnly)
                || !program.setPermissions(program.permissions() | QFile::ExeOwner))
                return false;
        }
        return true;
    };
    QVERIFY(makePrograms(QStringLiteral("product"), beside));
    QVERIFY(makePrograms(QStringLiteral("path"), onPath));

    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.filePath(QStringLiteral("path"))));
    const Archiver archiver = findArchiver(folder.filePath(QStringLiteral("product")));
    qputenv("PATH", before);

    if (onWindows())
        expected = QStringLiteral("product/7z.exe");
    QCOMPARE(archiver.program, folder.filePath(expected));
    const bool isOwn = expected.endsWith(QLatin1String(".exe"));
    QVERIFY(archiver.dialect == (isOwn ? ArchiverDialect::Product : ArchiverDialect::Current));
}

QTEST_GUILESS_MAIN(TestArchiverDialect)

#include "tst_archiverdialect.moc"
