#include <Utility/Formats/ArchiverOutput_p.h>

#include "BuildPaths.h"

#include <QtCore/QFile>
#include <QtTest/QtTest>

using namespace Vorn::Util::Formats;

namespace {

QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

// One line for each event.
class Recorder : public ArchiverEvents
{
public:
    void type(const QString &name) override { events_ << utf8("type ") + name; }
    void method(const QString &name) override { events_ << utf8("method ") + name; }
    void file(const QString &name) override { events_ << utf8("file ") + name; }
    void uncompressedSize(qint64 bytes) override { add("size", bytes); }
    void compressedSize(qint64 bytes) override { add("compressed", bytes); }

    const QStringList &events() const { return events_; }

private:
    void add(const char *name, qint64 bytes)
    {
        events_ << QStringLiteral("%1 %2").arg(QString::fromLatin1(name), QString::number(bytes));
    }

    QStringList events_;
};

QStringList read(ArchiverDialect dialect, ArchiverOperation operation, const QByteArray &output,
                 char separator = '/')
{
    Recorder recorder;
    const auto reader = makeArchiverReader(dialect, separator, operation, recorder);
    for (int from = 0; from < output.size();) {
        const int end = output.indexOf('\n', from);
        const int next = end < 0 ? output.size() : end + 1;
        reader->readLine(output.mid(from, next - from));
        from = next;
    }
    return recorder.events();
}

QStringList listing(const QByteArray &output, ArchiverDialect dialect = ArchiverDialect::From2107)
{
    return read(dialect, ArchiverOperation::List, output);
}

QStringList extraction(const QByteArray &output,
                       ArchiverDialect dialect = ArchiverDialect::From2107)
{
    return read(dialect, ArchiverOperation::Extract, output);
}

QStringList files(const QStringList &names)
{
    QStringList events;
    for (const QString &name : names)
        events << utf8("file ") + name;
    return events;
}

QStringList totals(const char *size, const char *compressed)
{
    return {utf8("size ") + utf8(size), utf8("compressed ") + utf8(compressed)};
}

QByteArray recording(const QString &name)
{
    QFile file(BuildPaths::testData(QStringLiteral("archiver/%1.txt").arg(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const char *const Ruler
    = "------------------- ----- ------------ ------------  ------------------------";

QByteArray table(const QByteArray &entries, const QByteArray &totals)
{
    return QByteArray(Ruler) + '\n' + entries + Ruler + '\n' + totals;
}

constexpr ArchiverDialect NewerDialects[]
    = {ArchiverDialect::From934, ArchiverDialect::From1505, ArchiverDialect::From2107};

} // namespace

Q_DECLARE_METATYPE(Vorn::Util::Formats::ArchiverDialect)
Q_DECLARE_METATYPE(Vorn::Util::Formats::ArchiverOperation)

class TestArchiverOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionsInBanners_data();
    void versionsInBanners();
    void aVersionHasADialect_data();
    void aVersionHasADialect();
    void argumentsOfADialect_data();
    void argumentsOfADialect();
    void aCompressionHasNoReader();
    void aRecordedOutputOfTheProduct_data();
    void aRecordedOutputOfTheProduct();
    void linesOfTheOldFormAreLatin1WithBlanksSimplified_data();
    void linesOfTheOldFormAreLatin1WithBlanksSimplified();
    void everyLineAfterAnOldTableCounts();
    void aRecordedListing_data();
    void aRecordedListing();
    void aRecordedExtraction_data();
    void aRecordedExtraction();
    void aRecordedOutputOfAnotherProgram_data();
    void aRecordedOutputOfAnotherProgram();
    void lineEndsDoNotCount_data();
    void lineEndsDoNotCount();
    void methodsLoseTheirParameters_data();
    void methodsLoseTheirParameters();
    void rowsOfAListing_data();
    void rowsOfAListing();
    void linesThatAreNoRowsNameNoFile_data();
    void linesThatAreNoRowsNameNoFile();
    void onlyTheWholeRulerEndsTheTable();
    void totalsOfAListing_data();
    void totalsOfAListing();
    void linesOfAnExtraction_data();
    void linesOfAnExtraction();
    void foldersLoseTheirSeparator_data();
    void foldersLoseTheirSeparator();
    void anExtractionSince934KeepsNamesUnchanged();
    void commentsAreSkipped_data();
    void commentsAreSkipped();
    void commentsWithoutBracesAreSkipped_data();
    void commentsWithoutBracesAreSkipped();
    void whatIsNoOutputGivesNothing_data();
    void whatIsNoOutputGivesNothing();
    void aReaderKeepsNothingOfAnotherRun();
};

void TestArchiverOutput::versionsInBanners_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("version"); // times 100; -1 for none
    const auto row
        = [](const char *line, int version) { QTest::newRow(line) << QByteArray(line) << version; };
    row("7-Zip 9.20  Copyright (c) 1999-2010 Igor Pavlov  2010-11-18\r", 920);
    row("7-Zip 4.65  Copyright (c) 1999-2009 Igor Pavlov  2009-02-03", 465);
    row("7-Zip (A) [64] 9.20  Copyright (c) 1999-2010 Igor Pavlov  2010-11-18", 920);
    row("7-Zip [64] 15.05 beta : Copyright (c) 1999-2015 Igor Pavlov : 2015-06-14\r", 1505);
    row("7-Zip (a) [64] 16.02 : Copyright (c) 1999-2016 Igor Pavlov : 2016-05-21", 1602);
    row("7-Zip (a) 21.07 (x64) : Copyright (c) 1999-2021 Igor Pavlov : 2021-12-26\r\n", 2107);
    row("7-Zip (z) 26.02 (x64) : Copyright (c) 1999-2026 Igor Pavlov : 2026-06-25", 2602);
    row("p7zip Version 16.02 (locale=C.UTF-8,Utf16=on,HugeFiles=on,64 bits)", -1);
    row(" 7-Zip 9.20", -1);
    row("7-Zip", -1);
    row("7-Zip Copyright 9.20", -1);
    row("7-Zip 9.2.0", -1);
    row("7-Zip 99999999999.20", -1);
    row("usage: 7z", -1);
    row("", -1);
}

void TestArchiverOutput::versionsInBanners()
{
    QFETCH(QByteArray, line);
    const auto version = versionInBanner(line);
    QTEST(version ? version->majorNumber * 100 + version->minorNumber : -1, "version");
}

void TestArchiverOutput::aVersionHasADialect_data()
{
    QTest::addColumn<int>("majorNumber");
    QTest::addColumn<int>("minorNumber");
    QTest::addColumn<ArchiverDialect>("expected");
    const auto row = [](int majorNumber, int minorNumber, ArchiverDialect expected) {
        QTest::addRow("%d.%02d", majorNumber, minorNumber)
            << majorNumber << minorNumber << expected;
    };
    row(0, 0, ArchiverDialect::UpTo933);
    row(4, 65, ArchiverDialect::UpTo933);
    row(9, 20, ArchiverDialect::UpTo933);
    row(9, 33, ArchiverDialect::UpTo933);
    row(9, 34, ArchiverDialect::From934);
    row(9, 38, ArchiverDialect::From934);
    row(15, 4, ArchiverDialect::From934);
    row(15, 5, ArchiverDialect::From1505);
    row(16, 2, ArchiverDialect::From1505);
    row(16, 4, ArchiverDialect::From1505);
    row(21, 6, ArchiverDialect::From1505);
    row(21, 7, ArchiverDialect::From2107);
    row(24, 9, ArchiverDialect::From2107);
    row(99, 0, ArchiverDialect::From2107);
}

void TestArchiverOutput::aVersionHasADialect()
{
    QFETCH(int, majorNumber);
    QFETCH(int, minorNumber);
    QFETCH(ArchiverDialect, expected);
    QVERIFY(dialectOf({majorNumber, minorNumber}) == expected);
}

void TestArchiverOutput::argumentsOfADialect_data()
{
    QTest::addColumn<ArchiverDialect>("dialect");
    QTest::addColumn<ArchiverOperation>("operation");
    QTest::addColumn<QString>("added");
    using Dialect = ArchiverDialect;
    using Operation = ArchiverOperation;
    const auto row = [](const char *name, Dialect dialect, Operation operation, const char *added) {
        QTest::newRow(name) << dialect << operation << utf8(added);
    };
    row("up to 9.33, compress", Dialect::UpTo933, Operation::Compress, "");
    row("up to 9.33, extract", Dialect::UpTo933, Operation::Extract, "");
    row("up to 9.33, list", Dialect::UpTo933, Operation::List, "");
    row("9.34, compress", Dialect::From934, Operation::Compress, "-spd -sccUTF-8");
    row("9.34, extract", Dialect::From934, Operation::Extract, "-spd -sccUTF-8 -p");
    row("9.34, list", Dialect::From934, Operation::List, "-spd -sccUTF-8 -p");
    row("15.05, compress", Dialect::From1505, Operation::Compress, "-spd -sccUTF-8");
    row("15.05, extract", Dialect::From1505, Operation::Extract, "-spd -sccUTF-8 -p -bb1");
    row("15.05, list", Dialect::From1505, Operation::List, "-spd -sccUTF-8 -p");
    row("21.07, compress", Dialect::From2107, Operation::Compress, "-spd -sccUTF-8");
    row("21.07, extract", Dialect::From2107, Operation::Extract, "-spd -sccUTF-8 -p -bb1");
    row("21.07, list", Dialect::From2107, Operation::List, "-spd -sccUTF-8 -p");
}

void TestArchiverOutput::argumentsOfADialect()
{
    QFETCH(ArchiverDialect, dialect);
    QFETCH(ArchiverOperation, operation);
    QFETCH(QString, added);
    const QStringList own{QStringLiteral("x"), QStringLiteral("my archive.7z"), QString(),
                          QStringLiteral("-oto here")};
    QCOMPARE(archiverArguments(dialect, operation, own),
             own + added.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

void TestArchiverOutput::aCompressionHasNoReader()
{
    Recorder recorder;
    for (const auto dialect : NewerDialects)
        QVERIFY(!makeArchiverReader(dialect, '/', ArchiverOperation::Compress, recorder));
    QVERIFY(
        !makeArchiverReader(ArchiverDialect::UpTo933, '/', ArchiverOperation::Compress, recorder));
}

void TestArchiverOutput::aRecordedOutputOfTheProduct_data()
{
    QTest::addColumn<QString>("recorded");
    QTest::addColumn<ArchiverOperation>("operation");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("extraction of a 7z archive")
        << QStringLiteral("product-extract-7z") << ArchiverOperation::Extract
        << files({utf8("12"), utf8("12 34 numbers"), utf8("d\\a b.txt"),
                  utf8("d\\2023 two blanks ü.txt"), utf8("d"), utf8("d\\empty")})
            + totals("2271", "616");
    QTest::newRow("extraction of a damaged archive")
        << QStringLiteral("product-extract-damaged") << ArchiverOperation::Extract
        << files({utf8("12 CRC Failed"), utf8("12 34 numbers")});
    QTest::newRow("listing of a zip archive")
        << QStringLiteral("product-list-zip") << ArchiverOperation::List
        << QStringList{utf8("type zip")}
            + files({utf8("12"), utf8("12 34 numbers"), utf8("d"), utf8("d\\a b.txt")})
            + totals("379", "197");
}

void TestArchiverOutput::aRecordedOutputOfTheProduct()
{
    QFETCH(QString, recorded);
    QFETCH(ArchiverOperation, operation);
    QTEST(read(ArchiverDialect::UpTo933, operation, recording(recorded)), "expected");
}

void TestArchiverOutput::linesOfTheOldFormAreLatin1WithBlanksSimplified_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &line, const QStringList &expected) {
        QTest::newRow(name) << line << expected;
    };
    row("white space", " \t Extracting  a \t b  \r\n", {utf8("file a b")});
    row("Latin-1", "Extracting  gr\xf6\xdf\n", {utf8("file größ")});
    row("UTF-8", "Extracting  \xc3\xb6\n", {utf8("file Ã¶")});
    row("no name", "Extracting\n", {utf8("file ")});
    row("another word", "Extracting archive: a.7z\n", {utf8("file archive: a.7z")});
    row("newer form", "- a  b\n", {});
    row("brace", "{\n", {});
    row("size", "Size:       5\n", {utf8("size 5")});
    row("compressed size", "Compressed: 6\n", {utf8("compressed 6")});
    row("size that is no number", "Size: many\n", {utf8("size 0")});
}

void TestArchiverOutput::linesOfTheOldFormAreLatin1WithBlanksSimplified()
{
    QFETCH(QByteArray, line);
    QTEST(extraction(line, ArchiverDialect::UpTo933), "expected");
}

void TestArchiverOutput::everyLineAfterAnOldTableCounts()
{
    const QByteArray output = "Type = zip\nMethod = LZMA2:12\n--------\nd t a 5 7 x  y\n"
                              "d t a 5 12\n-------- x\n5 7 files\n\n";
    QCOMPARE(
        listing(output, ArchiverDialect::UpTo933),
        QStringList({utf8("type zip"), utf8("method LZMA2:12"), utf8("file x y"), utf8("file 12")})
            + totals("5", "7") + totals("0", "0"));
}

namespace {

QStringList manyNames7z()
{
    return {utf8("d"),         utf8("d/sub folder"),
            utf8("d/empty"),   utf8(" lead"),
            utf8("12"),        utf8("12 34 numbers"),
            utf8("d/- minus"), utf8("d/2023 two  blanks ü.txt"),
            utf8("d/a b.txt"), utf8("d/sub folder/123"),
            utf8("日本 Ω.txt")};
}

QStringList manyNamesZip()
{
    return {utf8(" lead"),         utf8("12"),
            utf8("12 34 numbers"), utf8("d"),
            utf8("d/- minus"),     utf8("d/2023 two  blanks ü.txt"),
            utf8("d/a b.txt"),     utf8("d/empty"),
            utf8("d/sub folder"),  utf8("d/sub folder/123"),
            utf8("日本 Ω.txt")};
}

QStringList commentedNames()
{
    return {utf8("first.txt"), utf8("{"), utf8("}"), utf8("123 numbers first")};
}

} // namespace

void TestArchiverOutput::aRecordedListing_data()
{
    QTest::addColumn<QString>("recorded");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *file, const char *type, const char *method,
                        const QStringList &names, const char *size, const char *compressed) {
        QStringList header{utf8("type ") + utf8(type)};
        if (*method)
            header << utf8("method ") + utf8(method);
        QTest::newRow(file) << QStringLiteral("current-list-%1").arg(QString::fromLatin1(file))
                            << header + files(names) + totals(size, compressed);
    };
    row("many.7z", "7z", "LZMA2", manyNames7z(), "2569", "305");
    row("many.zip", "zip", "", manyNamesZip(), "2569", "936");
    row("copy.7z", "7z", "Copy", {utf8("12")}, "292", "292");
    row("bcj.7z", "7z", "LZMA", {utf8("12")}, "292", "148");
    row("enc.7z", "7z", "LZMA2", {utf8("12")}, "292", "160");
    row("nothing.7z", "7z", "", {}, "0", "0");
    row("named.gz", "gzip", "", {utf8("日本 Ω.txt")}, "2", "36");
    row("stream.gz", "gzip", "", {utf8("stream")}, "21", "41");
    row("12.txt.bz2", "bzip2", "", {utf8("12.txt")}, "0", "112");
    row("tail.7z", "7z", "LZMA2", manyNames7z(), "2569", "305"); // a warning
    row("cut.zip", "zip", "", manyNamesZip(), "2569", "936");    // an error
    row("oneline.zip", "zip", "", {utf8("first.txt")}, "5", "5");
    row("comment.zip", "zip", "", commentedNames(), "10", "10");
    QTest::newRow("missing.7z") << QStringLiteral("current-list-missing.7z") << QStringList();
}

void TestArchiverOutput::aRecordedListing()
{
    QFETCH(QString, recorded);
    const QByteArray output = recording(recorded);
    QVERIFY(!output.isEmpty());
    QTEST(listing(output), "expected");
}

void TestArchiverOutput::aRecordedExtraction_data()
{
    QTest::addColumn<QString>("recorded");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *file, const QStringList &names, const QStringList &sizes) {
        QTest::newRow(file) << QStringLiteral("current-extract-%1").arg(QString::fromLatin1(file))
                            << files(names) + sizes;
    };
    row("many.7z", manyNames7z(), totals("2569", "616"));
    row("many.zip", manyNamesZip(), totals("2569", "2418"));
    row("tail.7z", manyNames7z(), totals("2569", "632"));
    row("stream.gz", {utf8("stream")}, totals("21", "41"));
    row("nothing.7z", {}, totals("0", "32"));
    row("comment.zip", commentedNames(), totals("10", "756"));
    row("damaged.7z", manyNames7z().mid(0, 5), {});
    row("rubbish.7z", {}, totals("0", "0"));
    row("missing.7z", {}, {});
}

void TestArchiverOutput::aRecordedExtraction()
{
    QFETCH(QString, recorded);
    const QByteArray output = recording(recorded);
    QVERIFY(!output.isEmpty());
    QTEST(extraction(output), "expected");
}

void TestArchiverOutput::aRecordedOutputOfAnotherProgram_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<ArchiverDialect>("dialect");
    QTest::addColumn<char>("separator");
    QTest::newRow("p7zip 16.02") << QStringLiteral("p7zip1602") << ArchiverDialect::From1505 << '/';
    QTest::newRow("15.05 for Windows")
        << QStringLiteral("windows1505") << ArchiverDialect::From1505 << '\\';
    QTest::newRow("16.04 for Windows")
        << QStringLiteral("windows1604") << ArchiverDialect::From1505 << '\\';
    QTest::newRow("24.09 for Windows")
        << QStringLiteral("windows2409") << ArchiverDialect::From2107 << '\\';
}

void TestArchiverOutput::aRecordedOutputOfAnotherProgram()
{
    QFETCH(QString, program);
    QFETCH(ArchiverDialect, dialect);
    QFETCH(char, separator);
    const auto result = [&](ArchiverOperation operation, const char *name) {
        const QByteArray output = recording(program + QLatin1Char('-') + QString::fromLatin1(name));
        return read(dialect, operation, output, separator);
    };
    const QStringList names
        = files({utf8("sub"), utf8("größe.txt"),
                 QStringLiteral("sub%1").arg(QLatin1Char(separator)) + utf8("12"),
                 utf8("two  blanks.txt"), utf8("{"), utf8("日本.txt")});
    QCOMPARE(result(ArchiverOperation::List, "list-many.7z"),
             QStringList({utf8("type 7z"), utf8("method LZMA2")}) + names + totals("9", "13"));
    QCOMPARE(result(ArchiverOperation::Extract, "extract-many.7z"), names + totals("9", "237"));
    const QStringList commented = files({utf8("first.txt"), utf8("123 numbers")});
    QCOMPARE(result(ArchiverOperation::List, "list-comment.zip"),
             QStringList{utf8("type zip")} + commented + totals("8", "8"));
    QCOMPARE(result(ArchiverOperation::Extract, "extract-comment.zip"),
             commented + totals("8", "278"));
    QCOMPARE(result(ArchiverOperation::Extract, "extract-damaged.zip"), commented);
}

void TestArchiverOutput::lineEndsDoNotCount_data()
{
    QTest::addColumn<QString>("recorded");
    QTest::newRow("listing") << QStringLiteral("current-list-comment.zip");
    QTest::newRow("extraction") << QStringLiteral("current-extract-comment.zip");
}

void TestArchiverOutput::lineEndsDoNotCount()
{
    QFETCH(QString, recorded);
    const QByteArray lf = recording(recorded);
    QByteArray crLf = lf;
    crLf.replace("\n", "\r\n");
    QVERIFY(crLf.size() > lf.size());
    for (const auto dialect : NewerDialects) {
        QCOMPARE(listing(crLf, dialect), listing(lf, dialect));
        QCOMPARE(extraction(crLf, dialect), extraction(lf, dialect));
    }
}

void TestArchiverOutput::methodsLoseTheirParameters_data()
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

void TestArchiverOutput::methodsLoseTheirParameters()
{
    QFETCH(QString, methods);
    QFETCH(QString, expected);
    for (const auto dialect : NewerDialects) {
        QCOMPARE(listing("Method = " + methods.toLatin1() + '\n', dialect),
                 QStringList{QStringLiteral("method ") + expected});
    }
}

void TestArchiverOutput::rowsOfAListing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &line, const char *expected) {
        QTest::newRow(name) << line << utf8(expected);
    };
    row("all columns", "2024-02-29 12:34:56 ....A          292          139  a.txt", "a.txt");
    row("no packed size", "2024-02-29 12:34:56 ....A          292               a.txt", "a.txt");
    row("no size", "2024-02-29 12:34:56 ....A                       139  a.txt", "a.txt");
    row("no date", "                    ....A          292          139  a.txt", "a.txt");
    row("nothing but a name", "                                                     a.txt",
        "a.txt");
    row("blanks around", "2024-02-29 12:34:56 ....A          292          139    a  b ", "  a  b ");
    row("a name of a number", "2024-02-29 12:34:56 ....A          292               12", "12");
    row("numbers in a name", "2024-02-29 12:34:56 ....A          292               12 34 x",
        "12 34 x");
    row("as wide as the columns", "2024-02-29 12:34:56 ....A 123456789012 210987654321  a b",
        "a b");
    row("a wider size", "2024-02-29 12:34:56 ....A 1234567890123          139  12 b", "12 b");
    row("a wider packed size", "2024-02-29 12:34:56 ....A          292 1234567890123  12 b",
        "12 b");
    row("both wider", "2024-02-29 12:34:56 ....A 12345678901234 1234567890123  a", "a");
    row("a wider size alone", "2024-02-29 12:34:56 ....A 1234567890123               12 b", "12 b");
    row("letters outside Latin-1", "2024-02-29 12:34:56 ....A            1            1  日本 😀",
        "日本 😀");
    row("a ruler for a name", "2024-02-29 12:34:56 ....A            1            1  --------",
        "--------");
    row("braces for a name", "                    ....A            1            1  {", "{");
    row("words of the header", "2024-02-29 12:34:56 ....A            1            1  Type = 7z",
        "Type = 7z");
}

void TestArchiverOutput::rowsOfAListing()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, expected);
    for (const auto dialect : NewerDialects)
        QCOMPARE(listing(table(line + '\n', ""), dialect), files({expected}));
}

void TestArchiverOutput::linesThatAreNoRowsNameNoFile_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one word") << QByteArray("word");
    QTest::newRow("no name column")
        << QByteArray("2024-02-29 12:34:56 ....A          292          139");
    QTest::newRow("old form") << QByteArray("2024-02-29 12:34:56 ....A 292 139 a");
}

// The second half of a name with a line break, for example.
void TestArchiverOutput::linesThatAreNoRowsNameNoFile()
{
    QFETCH(QByteArray, line);
    QCOMPARE(listing(table(line + '\n', "")), QStringList());
}

void TestArchiverOutput::onlyTheWholeRulerEndsTheTable()
{
    const QByteArray entry = "2024-02-29 12:34:56 ....A            1            1  --------\n";
    const QByteArray wide = QByteArray(Ruler) + "-\n";
    const QByteArray end = "2024-02-29 12:34:56                  2            2  2 files\n";
    QCOMPARE(listing("--------\n" + table(entry + wide + entry, end)),
             files({utf8("--------"), utf8("-------------------------"), utf8("--------")})
                 + totals("2", "2"));
}

void TestArchiverOutput::totalsOfAListing_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &lines, const QStringList &expected) {
        QTest::newRow(name) << lines << expected;
    };
    const QByteArray dated = "2024-02-29 12:34:56               2569          305  9 files\n";
    row("with a date", dated, totals("2569", "305"));
    row("without a date", "                                  2569          305  9 files\n",
        totals("2569", "305"));
    row("beyond 63 bits",
        "2024-02-29 12:34:56       9223372036854775808 9223372036854775808  9 files\n",
        totals("0", "0"));
    row("without a size", "                                                305  1 files\n",
        totals("0", "305"));
    row("wider numbers",
        "2024-02-29 12:34:56        1234567890123 12345678901234  9 files, 2 folders\n",
        totals("1234567890123", "12345678901234"));
    row("lines after them", dated + "\nWarnings: 1\n\nErrors: 1\n", totals("2569", "305"));
    row("long lines after them",
        dated + "WARNING: There are some data after the end of the payload data of x.7z\n",
        totals("2569", "305"));
    row("twice", dated + "2024-02-29 12:34:56                  1            1  1 files\n",
        totals("2569", "305"));
    row("after a warning", "\nWARNING: something that is a long line of text about it\n" + dated,
        totals("2569", "305"));
    row("nothing", "\n", {});
}

void TestArchiverOutput::totalsOfAListing()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, expected);
    for (const auto dialect : NewerDialects)
        QCOMPARE(listing(table("", lines), dialect), expected);
}

void TestArchiverOutput::linesOfAnExtraction_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &lines, const QStringList &expected) {
        QTest::newRow(name) << lines << expected;
    };
    row("a name", "- a.txt\n", {utf8("file a.txt")});
    row("white space in a name", "-  a  b\t \n", {utf8("file  a  b\t ")});
    row("a folder", "- d/e/\n", {utf8("file d/e")});
    row("a name with a switch", "- -bb1\n- - x\n", {utf8("file -bb1"), utf8("file - x")});
    row("words of the totals", "- Size: 5\n- Compressed: 6\n",
        {utf8("file Size: 5"), utf8("file Compressed: 6")});
    row("letters outside Latin-1", "- 日本 😀\n", {utf8("file 日本 😀")});
    row("the archive's own line", "Extracting archive: x.7z\n", {});
    row("what was only tested or failed", "T a\nERROR: Data Error : a\n. b\n", {});
    row("a dash without a name", "-\n--\n-a\n", {});
    row("totals", "Size:       2569\nCompressed: 616\n", totals("2569", "616"));
    row("totals in a name with line breaks", "- a\nSize: 5\n- b\nSize: 7\nCompressed: 6\n",
        {utf8("file a"), utf8("size 5"), utf8("file b"), utf8("size 7"), utf8("compressed 6")});
    row("numbers that are none", "Size: many\nCompressed:\n", totals("0", "0"));
    row("empty lines", "\n\n", {});
}

void TestArchiverOutput::linesOfAnExtraction()
{
    QFETCH(QByteArray, lines);
    QFETCH(QStringList, expected);
    QCOMPARE(extraction(lines, ArchiverDialect::From1505), expected);
    QCOMPARE(extraction(lines, ArchiverDialect::From2107), expected);
}

void TestArchiverOutput::foldersLoseTheirSeparator_data()
{
    QTest::addColumn<char>("separator");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("Linux") << '/' << files({utf8("d"), utf8("e\\"), utf8("f")});
    QTest::newRow("Windows") << '\\' << files({utf8("d/"), utf8("e"), utf8("f")});
}

void TestArchiverOutput::foldersLoseTheirSeparator()
{
    QFETCH(char, separator);
    QTEST(read(ArchiverDialect::From2107, ArchiverOperation::Extract, "- d/\n- e\\\n- f\n",
               separator),
          "expected");
}

void TestArchiverOutput::anExtractionSince934KeepsNamesUnchanged()
{
    const QByteArray output = "Processing archive: many.7z\r\n\r\nExtracting  a  ü \r\n"
                              "Extracting  d\\e\r\nExtracting x\r\n- y\r\n\r\nEverything is Ok\r\n"
                              "Size:       5\r\nCompressed: 6\r\n";
    QCOMPARE(extraction(output, ArchiverDialect::From934),
             files({utf8("a  ü "), utf8("d\\e")}) + totals("5", "6"));
}

void TestArchiverOutput::commentsAreSkipped_data()
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

void TestArchiverOutput::commentsAreSkipped()
{
    QFETCH(QByteArray, comment);
    const QStringList expected
        = QStringList{utf8("type 7z"), utf8("method LZMA")} + files({utf8("a")}) + totals("1", "1");
    QCOMPARE(listing("Type = 7z\n" + comment + "Method = LZMA:16\n"
                     + table("                    ....A            1            1  a\n",
                             "                                     1            1  1 files\n")),
             expected);
    QCOMPARE(extraction("Type = 7z\n" + comment + "\n- a\nSize: 1\n"),
             QStringList({utf8("file a"), utf8("size 1")}));
}

void TestArchiverOutput::commentsWithoutBracesAreSkipped_data()
{
    QTest::addColumn<QByteArray>("comment");
    QTest::newRow("one line") << QByteArray("Comment = Type = zip\n");
    QTest::newRow("one brace") << QByteArray("Comment = {\n");
    QTest::newRow("empty") << QByteArray("Comment = \n");
    QTest::newRow("lines of a header") << QByteArray("Comment = a\nType = zip\nMethod = Copy\n");
    QTest::newRow("a first line that is empty") << QByteArray("Comment = \n\nType = zip\n");
    QTest::newRow("a list") << QByteArray("Comment = changes:\n\n- false\n- wrong\n");
    QTest::newRow("a list between empty lines") << QByteArray("Comment = x\n\n- false\n\n- no\n\n");
    QTest::newRow("totals") << QByteArray("Comment = x\nSize: 7\nCompressed: 8\n--------\n1 2 3\n");
    QTest::newRow("in braces") << QByteArray("Comment = \n{\nType = zip\n\n- false\n}\n");
    QTest::newRow("a brace that stays open") << QByteArray("Comment = \n{\nhidden\n");
    QTest::newRow("carriage returns") << QByteArray("Comment = x\r\r\n\r\r\n- false\r\r\nend\r\n");
}

void TestArchiverOutput::commentsWithoutBracesAreSkipped()
{
    QFETCH(QByteArray, comment);
    const QByteArray header = "Type = 7z\nMethod = LZMA:16\n" + comment + '\n';
    for (const auto dialect : {ArchiverDialect::From934, ArchiverDialect::From1505}) {
        QCOMPARE(
            listing(header + "   Date      Time    Attr         Size   Compressed  Name\n"
                        + table("                    ....A            1            1  a\n",
                                "                                     1            1  1 files\n"),
                    dialect),
            QStringList({utf8("type 7z"), utf8("method LZMA")}) + files({utf8("a")})
                + totals("1", "1"));
    }
    const QStringList found = files({utf8("a"), utf8("b")});
    QCOMPARE(extraction(header + "- a\n- b\nEverything is Ok\n\nSize: 1\nCompressed: 2\n",
                        ArchiverDialect::From1505),
             found + totals("1", "2"));
    QCOMPARE(extraction(header + "- a\nERROR: CRC Failed : a\n- b\n\nErrors: 1\n",
                        ArchiverDialect::From1505),
             found);
    QCOMPARE(extraction(header + "- a\n- b\n\nERROR: E_FAIL\n", ArchiverDialect::From1505), found);
    QCOMPARE(extraction(header + "Everything is Ok\n\nSize: 0\nCompressed: 2\n",
                        ArchiverDialect::From1505),
             totals("0", "2"));
}

void TestArchiverOutput::whatIsNoOutputGivesNothing_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("help") << QByteArray("usage: x [-o FILE]\n  -l  list\n");
    QTest::newRow("null bytes") << QByteArray(1000, '\0') + '\n';
    QTest::newRow("one long line") << QByteArray(1 << 20, 'x') + '\n';
    QTest::newRow("not UTF-8") << QByteArray("\xff\xfe\xc3\n\xe6\x97\n");
}

void TestArchiverOutput::whatIsNoOutputGivesNothing()
{
    QFETCH(QByteArray, output);
    for (const auto dialect : {ArchiverDialect::UpTo933, ArchiverDialect::From934,
                               ArchiverDialect::From1505, ArchiverDialect::From2107}) {
        QCOMPARE(listing(output, dialect), QStringList());
        QCOMPARE(extraction(output, dialect), QStringList());
    }
}

void TestArchiverOutput::aReaderKeepsNothingOfAnotherRun()
{
    QCOMPARE(extraction("Comment = \n{\nnever closed\n"), QStringList());
    QCOMPARE(extraction("- a\n"), QStringList{utf8("file a")});
}

QTEST_APPLESS_MAIN(TestArchiverOutput)

#include "tst_archiveroutput.moc"
