// The rules of the parameter study: cases, arguments, ends, results, table, picture, time left.

#include "Fixture.h"
#include "Latin1Locale.h"
#include "TestFiles.h"
#include "TestFolder.h"

#include "CaseEnd.h"
#include "Cases.h"
#include "CsvText.h"
#include "FilesToPack.h"
#include "Progress.h"
#include "Table.h"
#include "Text.h"
#include "TimesPicture.h"

#include <QtCore/QProcess>
#include <QtCore/QXmlStreamReader>
#include <QtTest/QtTest>

using namespace ClusterStudy;

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

QStringList list(const char *words)
{
    return text(words).split(QLatin1Char(' '));
}

Cases smallCases()
{
    return {list("load name"), {list("1.5 a"), {text("{name}"), QString()}}};
}

CaseEnd okAfter(qint64 milliseconds)
{
    return {CaseEnd::Ok, 0, milliseconds, QString()};
}

// The number of bars in a picture: its rectangles without background and legend.
int barsIn(const QByteArray &svg)
{
    int rectangles = 0;
    QXmlStreamReader reader(svg);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == text("rect"))
            ++rectangles;
    }
    return reader.hasError() ? -1 : rectangles - 4;
}

} // namespace

class TestClusterStudyRules : public Fixture
{
    Q_OBJECT

private Q_SLOTS:
    void csvIsReadAsRowsOfFields_data();
    void csvIsReadAsRowsOfFields();
    void csvThatIsWrongIsRefusedWithTheLine_data();
    void csvThatIsWrongIsRefusedWithTheLine();
    void csvThatIsWrittenReadsBack_data();
    void csvThatIsWrittenReadsBack();
    void casesThatAreWrongAreRefused_data();
    void casesThatAreWrongAreRefused();
    void valuesThatTheEncodingCannotHoldAreRefused();
    void aCaseKnowsTheValuesOfItsRow();
    void argumentsAreFilled_data();
    void argumentsAreFilled();
    void anUnknownParameterIsNamed_data();
    void anUnknownParameterIsNamed();
    void anotherValueGivesAnotherFingerprint();
    void anEndThatIsWrittenReadsBack_data();
    void anEndThatIsWrittenReadsBack();
    void anEndFileThatIsWrongReadsAsMissing_data();
    void anEndFileThatIsWrongReadsAsMissing();
    void resultsAreReadFromLines_data();
    void resultsAreReadFromLines();
    void manyResultsAreReadUpToALimit();
    void theTableHasAColumnForEachResult();
    void theTableKeepsItsOwnColumns();
    void onlyAFailedCaseHasAnErrorInTheTable();
    void thePictureHasABarForEachCaseThatRan();
    void thePictureOfManyCasesHasFewerBars();
    void thePictureShowsTheWorstStateOfABar();
    void theTimesInThePictureAreWrittenOut_data();
    void theTimesInThePictureAreWrittenOut();
    void theTimeLeftIsInProportion_data();
    void theTimeLeftIsInProportion();
    void theTimeLeftDoesNotIncludeCancelledCases();
    void aStepIsShownInsteadOfTheTimeLeft();
    void filesThatCannotBePackedAreLeftOut();
};

void TestClusterStudyRules::csvIsReadAsRowsOfFields_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("rows"); // fields in [], rows with their lines
    const auto row = [](const char *name, const QByteArray &csv, const char *rows) {
        QTest::newRow(name) << csv << QString::fromUtf8(rows);
    };
    row("nothing", "", "");
    row("LF", "a,b\nc,d\n", "1[a][b]2[c][d]");
    row("CR LF", "a,b\r\nc,d\r\n", "1[a][b]2[c][d]");
    row("no line end at the end", "a\nb", "1[a]2[b]");
    row("empty lines", "\na\n\r\n\nb\n\n", "2[a]5[b]");
    row("empty fields", ",\n,,\n", "1[][]2[][][]");
    row("empty field at the end of the text", "a,", "1[a][]");
    row("quoted", "\"a\",\"b c\"\n", "1[a][b c]");
    row("quoted and empty", "\"\"\n", "1[]");
    row("comma", "\"a,b\",c\n", "1[a,b][c]");
    row("quotation marks", "\"a\"\"b\",\"\"\"\"\n", "1[a\"b][\"]");
    row("line end in a field", "\"a\nb\",c\nd\n", "1[a\nb][c]3[d]");
    row("CR LF in a field", "\"a\r\nb\"\r\nd\r\n", "1[a\r\nb]3[d]");
    row("blanks are kept", " a , b \n", "1[ a ][ b ]");
    row("byte order mark",
        "\xEF\xBB\xBF"
        "a\n",
        "1[a]");
    row("other letters", "\xC3\xA4,\xE2\x82\xAC\n", "1[\xC3\xA4][\xE2\x82\xAC]");
}

void TestClusterStudyRules::csvIsReadAsRowsOfFields()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, rows);
    QVector<CsvRow> read;
    QCOMPARE(readCsv(csv, read), QString());
    QString all;
    for (const CsvRow &row : qAsConst(read)) {
        all += QString::number(row.line);
        for (const QString &field : row.fields)
            all += QLatin1Char('[') + field + QLatin1Char(']');
    }
    QCOMPARE(all, rows);
}

void TestClusterStudyRules::csvThatIsWrongIsRefusedWithTheLine_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QByteArray &csv, const char *problem) {
        QTest::newRow(name) << csv << text(problem);
    };
    row("mark in a field", "a\nb\"c\n",
        "Line 2: a quotation mark inside a field that is not quoted");
    row("text after a mark", "\"a\"b\n", "Line 1: text after the closing quotation mark");
    row("no closing mark", "a\n\"b\nc\nd\n", "Line 2: the closing quotation mark is missing");
    row("only a mark", "\"", "Line 1: the closing quotation mark is missing");
    row("CR alone", "a\rb\n", "Line 1: a carriage return without a line feed");
    row("CR at the end", "a\r", "Line 1: a carriage return without a line feed");
    row("not UTF-8", "a\n\xFF\n", "The text is not UTF-8");
    row("incomplete UTF-8", "a\n\xC3", "The text is not UTF-8");
    row("null", QByteArray("a\0b\n", 4), "The text contains a null character");
}

void TestClusterStudyRules::csvThatIsWrongIsRefusedWithTheLine()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, problem);
    QVector<CsvRow> read;
    QCOMPARE(readCsv(csv, read), problem);
}

void TestClusterStudyRules::csvThatIsWrittenReadsBack_data()
{
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("plain") << list("a b") << QByteArray("a,b\n");
    QTest::newRow("comma") << QStringList{text("a,b")} << QByteArray("\"a,b\"\n");
    QTest::newRow("mark") << QStringList{text("a\"b")} << QByteArray("\"a\"\"b\"\n");
    QTest::newRow("line end") << QStringList{text("a\r\nb")} << QByteArray("\"a\r\nb\"\n");
    QTest::newRow("one empty field") << QStringList{QString()} << QByteArray("\"\"\n");
    QTest::newRow("empty fields") << QStringList{QString(), QString()} << QByteArray(",\n");
}

void TestClusterStudyRules::csvThatIsWrittenReadsBack()
{
    QFETCH(QStringList, fields);
    QFETCH(QByteArray, line);
    QCOMPARE(csvLine(fields), line);
    QVector<CsvRow> read;
    QCOMPARE(readCsv(line, read), QString());
    QCOMPARE(read.size(), 1);
    QCOMPARE(read.first().fields, fields);
}

void TestClusterStudyRules::casesThatAreWrongAreRefused_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QByteArray &csv, const QString &problem) {
        QTest::newRow(name) << csv << problem;
    };
    const QString none
        = text("Expected a row with the names of the parameters and at least one case");
    const auto invalid = [](const char *name) {
        return text("Column 1: the name \"%1\" is not valid; use letters, digits and _")
            .arg(QString::fromUtf8(name));
    };
    const auto blank = [](const char *name) {
        return text("Column 2: the name \"%1\" begins or ends with a blank; remove it")
            .arg(text(name));
    };
    const QString twice
        = text("Column 3: column 1 has this name too (letter case does not count); use another: ");
    const QString reserved
        = text("Column 1: this name is reserved for the table of results; use another: ");
    row("empty file", "", none);
    row("no case", "a,b\n", none);
    row("no name", "a,\n1,2\n", text("Column 2: the parameter has no name"));
    row("a name twice", "a,b,a\n1,2,3\n", twice + text("a"));
    row("the same variable", "a,b,A\n1,2,3\n", twice + text("A"));
    row("number of the case", "case\n1\n", reserved + text("case"));
    row("column of the table", "Exit_Code\n1\n", reserved + text("Exit_Code"));
    row("column of errors", "error\n1\n", reserved + text("error"));
    row("blank before a name", "length, width\n1,2\n", blank(" width"));
    row("blank after a name", "length,width \n1,2\n", blank("width "));
    row("line end after a name", "a,\"b\n\"\n1,2\n", blank("b?"));
    row("blank in a name", "a b\n1\n", invalid("a b"));
    row("name with =", "a=b\n1\n", invalid("a=b"));
    row("name with a digit first", "1a\n1\n", invalid("1a"));
    row("name with other letters", "\xC3\xA4\n1\n", invalid("\xC3\xA4"));
    row("too few values", "a,b\n1,2\n\n3\n", text("Line 4: expected 2 values, found 1"));
    row("too many values", "a\n1,2\n", text("Line 2: expected 1 values, found 2"));
    row("wrong CSV", "a\n\"1\n", text("Line 2: the closing quotation mark is missing"));
}

void TestClusterStudyRules::casesThatAreWrongAreRefused()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, problem);
    Cases cases;
    QCOMPARE(readCases(csv, cases), problem);
}

void TestClusterStudyRules::valuesThatTheEncodingCannotHoldAreRefused()
{
    const bool onWindows = QDir::separator() == QLatin1Char('\\'); // arguments have UTF-16 there
    const Latin1Locale locale;
    Cases cases;
    const QString latin = readCases("x,y\n\xC3\xA4,1\n", cases);
    const QString euro = readCases("x,y\n\xC3\xA4,1\n1,\xE2\x82\xAC\n", cases);
    QCOMPARE(latin, QString());
    QCOMPARE(euro,
             onWindows || !Latin1Locale::IsPossible
                 ? QString()
                 : text("Line 3: the encoding of the system cannot hold the value of y; set "
                        "LC_ALL to one that can, such as C.UTF-8"));
}

void TestClusterStudyRules::aCaseKnowsTheValuesOfItsRow()
{
    Cases cases;
    QCOMPARE(readCases("load,name\n1.5,a\n\n{name},\"\"\n", cases), QString());
    QCOMPARE(cases.count(), 2);
    QCOMPARE(cases.names, smallCases().names);
    QCOMPARE(cases.values, smallCases().values);
    QCOMPARE(variableName(cases.names.first()), text("STUDY_LOAD"));
}

void TestClusterStudyRules::argumentsAreFilled_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *argument, int number, const char *result) {
        QTest::addRow("%s, case %d", argument, number) << text(argument) << number << text(result);
    };
    row("plain", 1, "plain");
    row("{load}", 1, "1.5");
    row("x={load}{name}.txt", 1, "x=1.5a.txt");
    row("{case}", 2, "2");
    row("{load}", 2, "{name}"); // values are not searched
    row("[{name}]", 2, "[]");
    row("{{load}}", 1, "{load}");
    row("{{load}} {load}", 1, "{load} 1.5");
    row("{ load}", 1, "{ load}");
    row("{}", 1, "{}");
    row("{1,2}", 1, "{1,2}");
    row("{\"a\":{\"b\":{load}}}", 1, "{\"a\":{\"b\":1.5}}");
    row("", 1, "");
    row("$(reboot) ; %PATH% `x`", 1, "$(reboot) ; %PATH% `x`");
}

void TestClusterStudyRules::argumentsAreFilled()
{
    QFETCH(QString, argument);
    QFETCH(int, number);
    QFETCH(QString, result);
    QCOMPARE(filledArguments({argument, text("next")}, smallCases(), number),
             QStringList({result, text("next")}));
}

void TestClusterStudyRules::anUnknownParameterIsNamed_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("problem");
    QTest::newRow("known") << text("{load}{name}{case}") << QString();
    QTest::newRow("unknown") << text("{load}{lod}") << text("There is no parameter {lod}");
    QTest::newRow("other letter case") << text("{Load}") << text("There is no parameter {Load}");
    QTest::newRow("literal") << text("{{lod}}") << QString();
    QTest::newRow("no name") << text("{1}") << QString();
}

void TestClusterStudyRules::anUnknownParameterIsNamed()
{
    QFETCH(QString, argument);
    QFETCH(QString, problem);
    QCOMPARE(unknownParameter({text("x"), argument}, smallCases().names), problem);
}

void TestClusterStudyRules::anotherValueGivesAnotherFingerprint()
{
    const Cases cases = smallCases();
    Cases other = cases;
    other.values[1][1] = text("b");
    Cases moved{{text("load")}, {{text("1,5")}}};
    Cases split{list("load x"), {list("1 5")}};
    QCOMPARE(fingerprint(cases), fingerprint(smallCases()));
    QVERIFY(fingerprint(cases) != fingerprint(other));
    QVERIFY(fingerprint(moved) != fingerprint(split));
}

void TestClusterStudyRules::anEndThatIsWrittenReadsBack_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("error");
    QTest::newRow("ok") << int(CaseEnd::Ok) << 0 << qint64(0) << QString();
    QTest::newRow("failed") << int(CaseEnd::Failed) << 7 << qint64(5000000000)
                            << text("Exit code 7");
    QTest::newRow("crashed") << int(CaseEnd::Failed) << -1 << qint64(1) << text("\"Line\"\nend");
    QTest::newRow("cancelled") << int(CaseEnd::Cancelled) << -1 << qint64(2) << text("x");
}

void TestClusterStudyRules::anEndThatIsWrittenReadsBack()
{
    QFETCH(int, state);
    QFETCH(int, exitCode);
    QFETCH(qint64, milliseconds);
    QFETCH(QString, error);
    const CaseEnd end{static_cast<CaseEnd::State>(state), exitCode, milliseconds, error};
    const CaseEnd read = readEndFile(endFileContent(end, 12), 12);
    QCOMPARE(read.state, end.state);
    QCOMPARE(read.exitCode, exitCode);
    QCOMPARE(read.milliseconds, milliseconds);
    QCOMPARE(read.error, error);
}

void TestClusterStudyRules::anEndFileThatIsWrongReadsAsMissing_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray good = endFileContent(okAfter(1), 3);
    QCOMPARE(readEndFile(good, 3).state, CaseEnd::Ok);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("incomplete") << good.left(good.size() - 4);
    QTest::newRow("other case") << endFileContent(okAfter(1), 4);
    QTest::newRow("other state") << QByteArray(good).replace("\"ok\"", "\"fine\"");
    QTest::newRow("no exit code") << QByteArray(good).replace("exitCode", "code");
    QTest::newRow("no number") << QByteArray(good).replace("\"milliseconds\": 1",
                                                           "\"milliseconds\": \"1\"");
    QTest::newRow("list") << QByteArray("[1, 2]");
}

void TestClusterStudyRules::anEndFileThatIsWrongReadsAsMissing()
{
    QFETCH(QByteArray, content);
    QCOMPARE(readEndFile(content, 3).state, CaseEnd::Missing);
}

void TestClusterStudyRules::resultsAreReadFromLines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("results");
    const auto row = [](const char *name, const QByteArray &content, const char *results) {
        QTest::newRow(name) << content << QString::fromUtf8(results);
    };
    row("nothing", "", "");
    row("lines", "a=1\nb=2\n", "[a|1][b|2]");
    row("CR LF", "a=1\r\nb=2\r\n", "[a|1][b|2]");
    row("no line end", "a=1", "[a|1]");
    row("blanks", "  a  =  1 2  \n", "[a|1 2]");
    row("= in the value", "a=b=c\n", "[a|b=c]");
    row("no value", "a=\n", "[a|]");
    row("no name", "=1\n  =2\n", "");
    row("no =", "a\n\nb=2\n# text\n", "[b|2]");
    row("the last one counts", "a=1\nb=2\na=3\n", "[a|3][b|2]");
    row("bytes that are no text", "a=\xFF\n", "[a|\xEF\xBF\xBD]");
}

void TestClusterStudyRules::resultsAreReadFromLines()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, results);
    QString all;
    QString ignored;
    for (const auto &result : readResults(content, ignored))
        all += text("[%1|%2]").arg(result.first, result.second);
    QCOMPARE(all, results);
    QCOMPARE(ignored, QString());
}

void TestClusterStudyRules::manyResultsAreReadUpToALimit()
{
    QByteArray content;
    for (int number = 0; number < 100000; ++number)
        content += "n" + QByteArray::number(number) + "=1\n";
    content += "n0=last\n";
    QString ignored;
    const Results results = readResults(content, ignored);
    QCOMPARE(results.size(), 1000);
    QCOMPARE(results.first(), qMakePair(text("n0"), text("last")));
    QCOMPARE(results.last().first, text("n999"));
    QCOMPARE(ignored, text("only the first 1000 names are read"));
}

void TestClusterStudyRules::theTableHasAColumnForEachResult()
{
    Cases cases = smallCases();
    cases.values << list("3 c");
    const QVector<CaseEnd> ends{okAfter(1234), {CaseEnd::Failed, 2, 10, text("Exit code 2")}, {}};
    const QVector<Results> results{
        {{text("x"), text("1,5")}}, {{text("y"), text("2")}, {text("x"), text("3")}}, {}};
    QStringList ignored;
    QCOMPARE(tableOf(cases, ends, results, ignored),
             QByteArray("case,load,name,state,exit_code,seconds,error,x,y\n"
                        "1,1.5,a,ok,0,1.234,,\"1,5\",\n"
                        "2,{name},,failed,2,0.010,Exit code 2,3,2\n"
                        "3,3,c,missing,,,,,\n"));
    QCOMPARE(ignored, QStringList());
}

void TestClusterStudyRules::theTableKeepsItsOwnColumns()
{
    const Cases cases{{text("load")}, {{text("1")}, {text("2")}}};
    const Results ofCase{
        {text("load"), text("9")}, {text("x"), text("5")}, {text("state"), text("9")}};
    QStringList ignored;
    QCOMPARE(tableOf(cases, {okAfter(1000), okAfter(1000)}, {ofCase, ofCase}, ignored),
             QByteArray("case,load,state,exit_code,seconds,error,x\n1,1,ok,0,1.000,,5\n"
                        "2,2,ok,0,1.000,,5\n"));
    QCOMPARE(ignored, list("load state"));
}

void TestClusterStudyRules::onlyAFailedCaseHasAnErrorInTheTable()
{
    const Cases cases{{text("load")}, {{text("1")}}};
    QStringList ignored;
    QCOMPARE(
        tableOf(cases, {{CaseEnd::Cancelled, -1, 10, text("Ended abnormally")}}, {{}}, ignored),
        QByteArray("case,load,state,exit_code,seconds,error\n1,1,cancelled,,0.010,\n"));
}

void TestClusterStudyRules::thePictureHasABarForEachCaseThatRan()
{
    QCOMPARE(barsIn(timesPicture({okAfter(0), okAfter(10), CaseEnd(), okAfter(5)})), 3);
    QCOMPARE(barsIn(timesPicture({CaseEnd()})), 0);
    QCOMPARE(barsIn(timesPicture({})), 0);
}

void TestClusterStudyRules::thePictureOfManyCasesHasFewerBars()
{
    const int bars = barsIn(timesPicture(QVector<CaseEnd>(100000, okAfter(10))));
    QVERIFY(bars > 100);
    QVERIFY(bars < 1000);
}

void TestClusterStudyRules::thePictureShowsTheWorstStateOfABar()
{
    QVector<CaseEnd> ends(10000, okAfter(10));
    const int reds = timesPicture(ends).count("#c0392b"); // in the legend
    ends[5000] = {CaseEnd::Failed, 1, 1, text("Exit code 1")};
    QCOMPARE(timesPicture(ends).count("#c0392b"), reds + 1);
}

void TestClusterStudyRules::theTimesInThePictureAreWrittenOut_data()
{
    QTest::addColumn<qint64>("milliseconds"); // of the longest case
    QTest::addColumn<QStringList>("times");
    const auto row = [](const char *name, qint64 milliseconds, const char *times) {
        QTest::newRow(name) << milliseconds << list(times);
    };
    row("a millisecond", 1, "0 0.00025 0.0005 0.00075 0.001");
    row("a fraction of a second", 310, "0 0.0775 0.155 0.233 0.31");
    row("just below 1000 seconds", 999499, "0 250 500 750 999");
    row("1000 seconds", 999600, "0 250 500 750 1000");
    row("two hours", 7200000, "0 1800 3600 5400 7200");
    row("a month", qint64(2592000) * 1000, "0 648000 1296000 1944000 2592000");
}

void TestClusterStudyRules::theTimesInThePictureAreWrittenOut()
{
    QFETCH(qint64, milliseconds);
    QStringList times;
    QXmlStreamReader reader(timesPicture({okAfter(milliseconds)}));
    while (reader.readNextStartElement() || !reader.atEnd()) {
        if (reader.name() != text("text"))
            continue;
        const QString label = reader.readElementText();
        if (label.endsWith(text(" s")))
            times << label.chopped(2);
    }
    QTEST(times, "times");
}

void TestClusterStudyRules::theTimeLeftIsInProportion_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("ok");
    QTest::addColumn<int>("failed");
    QTest::addColumn<QString>("line");
    QTest::newRow("none") << 0 << 0 << 0
                          << text("0 of 12 done, 0 failed, 2 running, time left unknown");
    QTest::newRow("some") << 0 << 3 << 1
                          << text("3 of 12 done, 1 failed, 2 running, time left 20.00 sec");
    QTest::newRow("resumed, none")
        << 5 << 0 << 0 << text("5 of 12 done, 0 failed, 2 running, time left unknown");
    QTest::newRow("resumed, some")
        << 2 << 1 << 1 << text("3 of 12 done, 1 failed, 2 running, time left 40.00 sec");
    QTest::newRow("all") << 5 << 6 << 1
                         << text("11 of 12 done, 1 failed, 2 running, time left 0.00 sec");
}

void TestClusterStudyRules::theTimeLeftIsInProportion()
{
    QFETCH(int, before);
    QFETCH(int, ok);
    QFETCH(int, failed);
    QFETCH(QString, line);
    Progress progress;
    progress.total = 12;
    progress.before = before;
    progress.ok = ok;
    progress.failed = failed;
    progress.running = 2;
    QCOMPARE(progressLine(progress, 10000), line);
}

void TestClusterStudyRules::theTimeLeftDoesNotIncludeCancelledCases()
{
    Progress progress;
    progress.total = 12;
    progress.ok = 6;
    progress.failed = 1;
    progress.cancelled = 3;
    progress.running = 2;
    QCOMPARE(timeLeft(progress, 10000), qint64(2000));
}

void TestClusterStudyRules::aStepIsShownInsteadOfTheTimeLeft()
{
    Progress progress;
    progress.total = 12;
    progress.ok = 12;
    progress.step = text("packing 12 cases");
    QCOMPARE(progressLine(progress, 10000),
             text("12 of 12 done, 0 failed, 0 running, packing 12 cases"));
}

void TestClusterStudyRules::filesThatCannotBePackedAreLeftOut()
{
    const TestFolder folder;
    QVERIFY(writeFileInFolder(folder.filePath(text("cases/1/a.txt")), "a"));
    QVERIFY(writeFileInFolder(folder.filePath(text("cases/1/sub/.b")), "b"));
    QVERIFY(writeFileInFolder(folder.filePath(text("cases/2/c")), "c"));
    QStringList expected;
    for (const char *name : {"cases/1/d ", "cases/1/e\"", "cases/1/f\ng"}) {
        if (QDir::separator() == QLatin1Char('/')) {
            QVERIFY(writeFile(folder.filePath(text(name)), "x"));
            expected << oneLine(text(name)) + text(": 7-Zip cannot be given this name");
        }
    }
    // A link out of the folder: on Windows this makes a shortcut, which is a file.
    if (QDir::separator() == QLatin1Char('/')) {
        QVERIFY(QFile::link(text("/"), folder.filePath(text("cases/1/root"))));
        QVERIFY(QFile::link(text("missing"), folder.filePath(text("cases/1/sub/broken"))));
        QCOMPARE(QProcess::execute(text("mkfifo"), {folder.filePath(text("cases/1/pipe"))}), 0);
        expected << text("cases/1/pipe: neither a file nor a folder")
                 << text("cases/1/root: a link") << text("cases/1/sub/broken: a link");
    }
    QStringList leftOut;
    QCOMPARE(filesToPack(folder.path(), text("cases/1"), leftOut),
             QStringList({text("cases/1/a.txt"), text("cases/1/sub/.b")}));
    leftOut.sort();
    QCOMPARE(leftOut, expected);
}

QTEST_GUILESS_MAIN(TestClusterStudyRules)
#include "tst_clusterstudyrules.moc"
