// The forms of a system report: the text, the page and its pictures.

#include "Fixture.h"

#include "HtmlReport.h"
#include "Plot.h"
#include "TextReport.h"

#include <QtTest/QtTest>
#include <QtXml/QDomDocument>

using namespace SystemReport;

class TestSystemReportForms : public Fixture
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextOfThePageIsEscaped();
    void aTextCannotStartALineOrTurnTheDirection();
    void thePageLoadsNothing();
    void aPictureHasAPointForEachSample_data();
    void aPictureHasAPointForEachSample();
    void anUnknownValueHasNoPoint();
    void theTopOfAPictureIsRounded_data();
    void theTopOfAPictureIsRounded();

private:
    static Report reportWith(const QString &text)
    {
        Report report;
        report.machine = text;
        report.time = text;
        report.highlights = {{text, text}};
        Section section;
        section.title = text;
        section.remark = text;
        section.columns = QStringList{text};
        section.rows << QStringList{text, text};
        report.sections << section;
        return report;
    }
};

void TestSystemReportForms::everyTextOfThePageIsEscaped()
{
    const QString hostile = QStringLiteral("<script>alert('x')</script>\"&<img src=x>%1%2%3");
    const QString page = QString::fromUtf8(htmlReport(reportWith(hostile)));
    QVERIFY(!page.contains(QLatin1String("<script")));
    QVERIFY(!page.contains(QLatin1String("<img")));
    constexpr int Places = 10; // machine twice, time, name and value, title, remark, three cells
    QCOMPARE(page.count(hostile.toHtmlEscaped()), Places);
}

void TestSystemReportForms::aTextCannotStartALineOrTurnTheDirection()
{
    const QString hostile
        = QStringLiteral("a\n\r\x1b[2J") + QChar(0x202E) + QChar(0x2028) + QStringLiteral("b");
    const QString safe = QStringLiteral("a???[2J??b");
    for (const QString &form :
         {textReport(reportWith(hostile)), QString::fromUtf8(htmlReport(reportWith(hostile)))}) {
        for (const QChar character : {QChar(0x1B), QChar(0x0D), QChar(0x202E), QChar(0x2028)})
            QVERIFY(!form.contains(character));
        QVERIFY(form.contains(safe));
    }
}

void TestSystemReportForms::thePageLoadsNothing()
{
    const QString page = QString::fromUtf8(htmlReport(reportWith(QStringLiteral("text"))));
    for (const char *loading : {"src=", "href=", "url(", "@import", "http://", "https://"})
        QVERIFY2(!page.contains(QLatin1String(loading)), loading);
    QVERIFY(page.contains(QLatin1String("default-src 'none'")));
}

void TestSystemReportForms::aPictureHasAPointForEachSample_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2, 20, 240})
        QTest::addRow("%d", count) << count;
}

void TestSystemReportForms::aPictureHasAPointForEachSample()
{
    QFETCH(int, count);

    Report report;
    for (int index = 0; index < count; ++index)
        report.samples << Sample{250 * (index + 1), index % 101, 1024, 50};
    const QString page = QString::fromUtf8(htmlReport(report));
    QCOMPARE(page.count(QLatin1String("<circle class=\"point\"")), 2 * count);
}

void TestSystemReportForms::anUnknownValueHasNoPoint()
{
    Curve curve;
    curve.seconds = {1, 2, 3, 4, 5};
    curve.values = {10, 20, -1, 150, 40};
    QDomDocument picture;
    QVERIFY(picture.setContent(plot(curve)));
    const QDomNodeList points = picture.elementsByTagName(QStringLiteral("circle"));
    QCOMPARE(points.count(), 4);
    QCOMPARE(picture.elementsByTagName(QStringLiteral("polyline")).count(), 2);
    const auto y = [&points](int index) {
        return points.at(index).toElement().attribute(QStringLiteral("cy")).toDouble();
    };
    QVERIFY(y(1) < y(0)); // the greater value is higher
    QVERIFY(y(2) > 0);    // and a value above the maximum is not outside the picture
}

void TestSystemReportForms::theTopOfAPictureIsRounded_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("top");
    QTest::newRow("nothing") << 0.0 << 1.0;
    QTest::newRow("1") << 1.0 << 1.0;
    QTest::newRow("3") << 3.0 << 5.0;
    QTest::newRow("5.1") << 5.1 << 10.0;
    QTest::newRow("10") << 10.0 << 10.0;
    QTest::newRow("120") << 120.0 << 200.0;
}

void TestSystemReportForms::theTopOfAPictureIsRounded()
{
    QFETCH(double, value);
    QFETCH(double, top);
    QCOMPARE(roundedUp(value), top);
}

QTEST_GUILESS_MAIN(TestSystemReportForms)
#include "tst_systemreportforms.moc"
