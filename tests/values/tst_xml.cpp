#include <Utility/Xml.h>

#include <QtTest/QtTest>

#include <type_traits>

using namespace Vorn::Util;

static_assert(!std::is_default_constructible_v<Xml>);

class TestXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFlagIsWrittenAsTrueOrFalse();
    void onlyTrueAndYAreAYes_data();
    void onlyTrueAndYAreAYes();
    void aWrittenFlagIsReadBack();

    void aTextElementHoldsOneTextNode_data();
    void aTextElementHoldsOneTextNode();
    void aTextElementIsNotInsertedAnywhere();
    void theCallerAppendsATextElement();

    void valueOfReadsTheTextOfTheNamedChild();
    void withoutSuchAChildTheDefaultIsTheValue_data();
    void withoutSuchAChildTheDefaultIsTheValue();
    void anEmptyChildHasAnEmptyValueAndNotTheDefault_data();
    void anEmptyChildHasAnEmptyValueAndNotTheDefault();
    void theFirstOfSeveralChildrenCounts();
    void theFirstNodeOfTheChildCounts_data();
    void theFirstNodeOfTheChildCounts();
    void whatTextElementWritesValueOfReads_data();
    void whatTextElementWritesValueOfReads();
};

namespace {

QDomElement elementOf(QDomDocument &document, const QString &xml)
{
    if (!document.setContent(xml))
        qFatal("Not XML: %s", qPrintable(xml));
    return document.documentElement();
}

QString theDefault()
{
    return QStringLiteral("4");
}

} // namespace

void TestXml::aFlagIsWrittenAsTrueOrFalse()
{
    QCOMPARE(Xml::boolToString(true), QStringLiteral("true"));
    QCOMPARE(Xml::boolToString(false), QStringLiteral("false"));
}

void TestXml::onlyTrueAndYAreAYes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");

    for (const char *text : {"true", "Y"})
        QTest::addRow("'%s'", text) << QString::fromLatin1(text) << true;
    for (const char *text :
         {"",   "y",  "True", "TRUE",  "tRue",     "yes",    "Yes",     "YES",   "1",
          "on", "t",  "T",    "false", "N",        "n",      "0",       " true", "true ",
          " Y", "Y ", "Y\n",  "YY",    "truetrue", "true Y", "\"true\""})
        QTest::addRow("'%s'", text) << QString::fromLatin1(text) << false;
    QTest::newRow("null") << QString() << false;
}

void TestXml::onlyTrueAndYAreAYes()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QCOMPARE(Xml::stringToBool(text), expected);
}

void TestXml::aWrittenFlagIsReadBack()
{
    QVERIFY(Xml::stringToBool(Xml::boolToString(true)));
    QVERIFY(!Xml::stringToBool(Xml::boolToString(false)));
}

void TestXml::aTextElementHoldsOneTextNode_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << QStringLiteral("8");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("blanks") << QStringLiteral("  a  ");
    QTest::newRow("markup") << QStringLiteral("<a>&amp;\"'</a>");
    QTest::newRow("lines") << QStringLiteral("a\nb");
    QTest::newRow("beyond ASCII") << QStringLiteral("Tr\u00e4ger \U0001F600");
}

void TestXml::aTextElementHoldsOneTextNode()
{
    QFETCH(QString, text);
    QDomDocument document;
    const QDomElement element = Xml::textElement(QStringLiteral("cores"), text, document);
    QCOMPARE(element.tagName(), QStringLiteral("cores"));
    QVERIFY(!element.hasAttributes());
    QCOMPARE(element.childNodes().size(), 1);
    QVERIFY(element.firstChild().isText());
    QCOMPARE(element.firstChild().toText().data(), text);
}

void TestXml::aTextElementIsNotInsertedAnywhere()
{
    QDomDocument document;
    const QDomElement root = elementOf(document, QStringLiteral("<root><a/></root>"));
    const QString before = document.toString();
    const QDomElement element
        = Xml::textElement(QStringLiteral("cores"), QStringLiteral("8"), document);
    QVERIFY(element.parentNode().isNull());
    QVERIFY(element.ownerDocument() == document);
    QCOMPARE(document.toString(), before);
    QCOMPARE(root.childNodes().size(), 1);
}

void TestXml::theCallerAppendsATextElement()
{
    QDomDocument document;
    QDomElement root = elementOf(document, QStringLiteral("<root/>"));
    root.appendChild(Xml::textElement(QStringLiteral("a"), QStringLiteral("1"), document));
    root.appendChild(Xml::textElement(QStringLiteral("b"), QStringLiteral("<2>"), document));
    QCOMPARE(document.toString(-1), QStringLiteral("<root><a>1</a><b>&lt;2></b></root>"));
}

void TestXml::valueOfReadsTheTextOfTheNamedChild()
{
    QDomDocument document;
    const QDomElement root
        = elementOf(document, QStringLiteral("<root><a>1</a><b> two </b><A>3</A></root>"));
    QCOMPARE(Xml::valueOf(QStringLiteral("a"), root, theDefault()), QStringLiteral("1"));
    QCOMPARE(Xml::valueOf(QStringLiteral("b"), root, theDefault()), QStringLiteral(" two "));
    QCOMPARE(Xml::valueOf(QStringLiteral("A"), root, theDefault()), QStringLiteral("3"));
}

void TestXml::withoutSuchAChildTheDefaultIsTheValue_data()
{
    QTest::addColumn<QString>("xml");

    QTest::newRow("no children") << QStringLiteral("<root/>");
    QTest::newRow("other children") << QStringLiteral("<root><core>1</core></root>");
    QTest::newRow("another case") << QStringLiteral("<root><Cores>1</Cores></root>");
    QTest::newRow("a grandchild") << QStringLiteral("<root><a><cores>1</cores></a></root>");
    QTest::newRow("an attribute") << QStringLiteral("<root cores=\"1\"/>");
    QTest::newRow("the element itself") << QStringLiteral("<cores>1</cores>");
}

void TestXml::withoutSuchAChildTheDefaultIsTheValue()
{
    QFETCH(QString, xml);
    QDomDocument document;
    const QDomElement root = elementOf(document, xml);
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), root, theDefault()), theDefault());
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), root, QString()), QString());
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), QDomElement(), theDefault()), theDefault());
}

void TestXml::anEmptyChildHasAnEmptyValueAndNotTheDefault_data()
{
    QTest::addColumn<QString>("xml");

    QTest::newRow("empty tag") << QStringLiteral("<root><cores/></root>");
    QTest::newRow("two tags") << QStringLiteral("<root><cores></cores></root>");
    QTest::newRow("attribute") << QStringLiteral("<root><cores value=\"1\"/></root>");
    QTest::newRow("only an element") << QStringLiteral("<root><cores><a>1</a></cores></root>");
    QTest::newRow("an instruction with the name before it")
        << QStringLiteral("<root><?cores 1?><cores>2</cores></root>");
    QTest::newRow("followed by a full one")
        << QStringLiteral("<root><cores/><cores>1</cores></root>");
}

void TestXml::anEmptyChildHasAnEmptyValueAndNotTheDefault()
{
    QFETCH(QString, xml);
    QDomDocument document;
    const QDomElement root = elementOf(document, xml);
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), root, theDefault()), QString());
}

void TestXml::theFirstOfSeveralChildrenCounts()
{
    QDomDocument document;
    const QDomElement root = elementOf(
        document, QStringLiteral("<root><a>0</a><cores>1</cores><cores>2</cores></root>"));
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), root, theDefault()), QStringLiteral("1"));
}

void TestXml::theFirstNodeOfTheChildCounts_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("expected");

    QTest::newRow("text and element") << QStringLiteral("1<a/>2") << QStringLiteral("1");
    QTest::newRow("element and text") << QStringLiteral("<a>1</a>2") << QString();
    QTest::newRow("section") << QStringLiteral("<![CDATA[<1>]]>") << QStringLiteral("<1>");
    QTest::newRow("instruction") << QStringLiteral("<?a 1?>2") << QString();
    QTest::newRow("comment") << QStringLiteral("<!--1-->2") << QStringLiteral("1");
    QTest::newRow("entities") << QStringLiteral("1&lt;2&amp;3") << QStringLiteral("1<2&3");
}

void TestXml::theFirstNodeOfTheChildCounts()
{
    QFETCH(QString, content);
    QFETCH(QString, expected);
    QDomDocument document;
    const QDomElement root
        = elementOf(document, QStringLiteral("<root><cores>%1</cores></root>").arg(content));
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), root, theDefault()), expected);
}

void TestXml::whatTextElementWritesValueOfReads_data()
{
    aTextElementHoldsOneTextNode_data();
}

void TestXml::whatTextElementWritesValueOfReads()
{
    QFETCH(QString, text);
    QDomDocument written;
    QDomElement root = elementOf(written, QStringLiteral("<root/>"));
    root.appendChild(Xml::textElement(QStringLiteral("cores"), text, written));
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), root, theDefault()), text);

    QDomDocument read;
    const QDomElement readRoot = elementOf(read, written.toString());
    QCOMPARE(Xml::valueOf(QStringLiteral("cores"), readRoot, theDefault()), text);
}

QTEST_GUILESS_MAIN(TestXml)

#include "tst_xml.moc"
