#include "Latin1Locale.h"

#include <Utility/TextConversions.h>

#include <QtTest/QtTest>

#include <algorithm>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

using namespace Vorn::Util;

namespace {

constexpr char16_t Untouched = u'\x7E7E';
constexpr wchar_t UntouchedWide = L'\x7E7E';

// One text in all its forms.
void addTexts()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::string>("narrow");
    QTest::addColumn<std::wstring>("wide");

    QTest::newRow("empty") << QString() << std::string() << std::wstring();
    QTest::newRow("one character") << QStringLiteral("a") << std::string("a") << std::wstring(L"a");
    QTest::newRow("ASCII") << QStringLiteral("run 1.log\r\n") << std::string("run 1.log\r\n")
                           << std::wstring(L"run 1.log\r\n");
    QTest::newRow("two bytes") << QStringLiteral("Tr\u00e4ger") << std::string("Tr\xC3\xA4ger")
                               << std::wstring(L"Tr\u00e4ger");
    QTest::newRow("three bytes") << QStringLiteral("5 \u20ac") << std::string("5 \xE2\x82\xAC")
                                 << std::wstring(L"5 \u20ac");
    QTest::newRow("surrogate pair")
        << QStringLiteral("<\U0001F600>") << std::string("<\xF0\x9F\x98\x80>")
        << std::wstring(L"<\U0001F600>");
    QTest::newRow("last code point")
        << QStringLiteral("\U0010FFFD") << std::string("\xF4\x8F\xBF\xBD")
        << std::wstring(L"\U0010FFFD");
    QTest::newRow("long") << QString(100000, QChar(0x20AC))
                          << QByteArray("\xE2\x82\xAC").repeated(100000).toStdString()
                          << std::wstring(100000, L'\u20ac');
}

// Texts for the array functions, as 16-bit units and as wide text.
void addArrayTexts()
{
    QTest::addColumn<std::u16string>("units");
    QTest::addColumn<std::wstring>("wide");

    QTest::newRow("empty") << std::u16string() << std::wstring();
    QTest::newRow("ASCII") << std::u16string(u"run 1") << std::wstring(L"run 1");
    QTest::newRow("beyond ASCII") << std::u16string(u"Tr\u00e4ger \u20ac")
                                  << std::wstring(L"Tr\u00e4ger \u20ac");
    QTest::newRow("surrogate pair")
        << std::u16string(u"<\U0001F600>") << std::wstring(L"<\U0001F600>");
    QTest::newRow("only surrogate pairs") << std::u16string(u"\U0001F600\U00010000\U0010FFFD")
                                          << std::wstring(L"\U0001F600\U00010000\U0010FFFD");
    QTest::newRow("byte-order mark") << std::u16string(u"\uFEFFab") << std::wstring(L"\uFEFFab");
    QTest::newRow("byte-order mark alone") << std::u16string(u"\uFEFF") << std::wstring(L"\uFEFF");
    QTest::newRow("inner byte-order mark")
        << std::u16string(u"a\uFEFFb") << std::wstring(L"a\uFEFFb");
    QTest::newRow("long") << std::u16string(100000, u'\u20ac') << std::wstring(100000, L'\u20ac');
}

} // namespace

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(std::wstring)
Q_DECLARE_METATYPE(std::u16string)

class TestTextConversions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void narrowTextBecomesAQString_data() { addTexts(); }
    void narrowTextBecomesAQString();
    void wideTextBecomesAQString_data() { addTexts(); }
    void wideTextBecomesAQString();
    void aQStringBecomesNarrowText_data() { addTexts(); }
    void aQStringBecomesNarrowText();
    void wideTextBecomesNarrowText_data() { addTexts(); }
    void wideTextBecomesNarrowText();
    void narrowTextBecomesWideText_data() { addTexts(); }
    void narrowTextBecomesWideText();
    void aQStringBecomesWideText_data() { addTexts(); }
    void aQStringBecomesWideText();

    void aByteOrderMarkInFrontDoesNotGetIntoAQString();
    void aByteOrderMarkInAQStringIsWritten();
    void theCommonFormOfNarrowTextIsNeverTheLocalCodePage();
    void narrowInputEndsAtItsFirstNul_data();
    void narrowInputEndsAtItsFirstNul();
    void narrowResultsEndAtTheFirstNul_data();
    void narrowResultsEndAtTheFirstNul();
    void wideTextKeepsItsNuls();

    void aVectorBecomesAListInItsOrder();
    void aListBecomesAVectorInItsOrder();
    void anEmptyVectorBecomesAnEmptyList();
    void anEmptyListBecomesAnEmptyVector();
    void elementsEndAtTheirFirstNul();

    void aNewWideArrayHoldsTheTextAndAZero_data() { addArrayTexts(); }
    void aNewWideArrayHoldsTheTextAndAZero();
    void aNewWideArrayOfAnEmptyTextHoldsOnlyTheZero();
    void aNewWideArrayKeepsNuls();
    void unitsBecomeTheWideForm_data() { addArrayTexts(); }
    void unitsBecomeTheWideForm();
    void unitsAreReadUpToTheirZero();
    void aQStringBecomesUnits_data() { addArrayTexts(); }
    void aQStringBecomesUnits();
    void aQStringWithNulsBecomesAllItsUnits();
    void theWideFormBecomesUnits_data() { addArrayTexts(); }
    void theWideFormBecomesUnits();
    void wideUnitsAreReadUpToTheirZero();
    void aMissingArrayChangesNothing();
};

void TestTextConversions::narrowTextBecomesAQString()
{
    QFETCH(QString, text);
    QFETCH(std::string, narrow);
    QCOMPARE(toQString(narrow), text);
}

void TestTextConversions::wideTextBecomesAQString()
{
    QFETCH(QString, text);
    QFETCH(std::wstring, wide);
    QCOMPARE(toQString(wide), text);
}

void TestTextConversions::aQStringBecomesNarrowText()
{
    QFETCH(QString, text);
    QFETCH(std::string, narrow);
    QCOMPARE(toStdString(text), narrow);
}

void TestTextConversions::wideTextBecomesNarrowText()
{
    QFETCH(std::string, narrow);
    QFETCH(std::wstring, wide);
    QCOMPARE(toStdString(wide), narrow);
}

void TestTextConversions::narrowTextBecomesWideText()
{
    QFETCH(std::string, narrow);
    QFETCH(std::wstring, wide);
    QVERIFY(toStdWString(narrow) == wide);
}

void TestTextConversions::aQStringBecomesWideText()
{
    QFETCH(QString, text);
    QFETCH(std::wstring, wide);
    QVERIFY(toStdWString(text) == wide);
}

void TestTextConversions::theCommonFormOfNarrowTextIsNeverTheLocalCodePage()
{
    const Latin1Locale locale; // in a UTF-8 locale the test would not see the difference
    const QString text = QStringLiteral("\u00e4");
    const std::string utf8 = "\xC3\xA4";
    QCOMPARE(toQString(utf8), text);
    QVERIFY(toQString(std::string("\xE4")) != text);
    QCOMPARE(toStdString(text), utf8);
    QCOMPARE(toStdString(std::wstring(L"\u00e4")), utf8);
    QVERIFY(toStdWString(utf8) == L"\u00e4");
    QCOMPARE(toQStringList({utf8}), QStringList{text});
    QCOMPARE(toStringVector({text}), std::vector<std::string>{utf8});
}

void TestTextConversions::narrowInputEndsAtItsFirstNul_data()
{
    QTest::addColumn<std::string>("narrow");
    QTest::addColumn<QString>("text");

    QTest::newRow("within") << std::string("ab\0cd", 5) << QStringLiteral("ab");
    QTest::newRow("at the end") << std::string("ab\0", 3) << QStringLiteral("ab");
    QTest::newRow("at the beginning") << std::string("\0ab", 3) << QString();
    QTest::newRow("several") << std::string("a\0b\0c", 5) << QStringLiteral("a");
}

void TestTextConversions::narrowInputEndsAtItsFirstNul()
{
    QFETCH(std::string, narrow);
    QFETCH(QString, text);
    QCOMPARE(toQString(narrow), text);
    QVERIFY(toStdWString(narrow) == text.toStdWString());
}

void TestTextConversions::narrowResultsEndAtTheFirstNul_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::string>("narrow");

    const QChar nul;
    QTest::newRow("within") << QStringLiteral("ab") + nul + QStringLiteral("cd")
                            << std::string("ab");
    QTest::newRow("at the end") << QStringLiteral("ab") + nul << std::string("ab");
    QTest::newRow("at the beginning") << nul + QStringLiteral("ab") << std::string();
}

void TestTextConversions::narrowResultsEndAtTheFirstNul()
{
    QFETCH(QString, text);
    QFETCH(std::string, narrow);
    QCOMPARE(toStdString(text), narrow);
    QCOMPARE(toStdString(text.toStdWString()), narrow);
}

void TestTextConversions::wideTextKeepsItsNuls()
{
    const std::wstring wide(L"ab\0cd", 5);
    const QString text = QStringLiteral("ab") + QChar() + QStringLiteral("cd");
    QCOMPARE(toQString(wide), text);
    QVERIFY(toStdWString(text) == wide);
}

void TestTextConversions::aVectorBecomesAListInItsOrder()
{
    const std::vector<std::string> vector{"b", "", "\xC3\xA4", "a", "b"};
    const QStringList list{QStringLiteral("b"), QString(), QStringLiteral("\u00e4"),
                           QStringLiteral("a"), QStringLiteral("b")};
    QCOMPARE(toQStringList(vector), list);
}

void TestTextConversions::aListBecomesAVectorInItsOrder()
{
    const QStringList list{QStringLiteral("b"), QString(), QStringLiteral("\u00e4"),
                           QStringLiteral("a"), QStringLiteral("b")};
    const std::vector<std::string> vector{"b", "", "\xC3\xA4", "a", "b"};
    QCOMPARE(toStringVector(list), vector);
}

void TestTextConversions::anEmptyVectorBecomesAnEmptyList()
{
    QCOMPARE(toQStringList({}), QStringList());
}

void TestTextConversions::anEmptyListBecomesAnEmptyVector()
{
    QVERIFY(toStringVector({}).empty());
}

void TestTextConversions::elementsEndAtTheirFirstNul()
{
    const QStringList cut{QStringLiteral("ab"), QStringLiteral("ef")};
    QCOMPARE(toQStringList({std::string("ab\0cd", 5), std::string("ef")}), cut);
    const std::vector<std::string> cutVector{"ab", "ef"};
    QCOMPARE(toStringVector(
                 {QStringLiteral("ab") + QChar() + QStringLiteral("cd"), QStringLiteral("ef")}),
             cutVector);
}

void TestTextConversions::aByteOrderMarkInFrontDoesNotGetIntoAQString()
{
    const QString text = QStringLiteral("ab");
    QCOMPARE(toQString(std::string("\xEF\xBB\xBF"
                                   "ab")),
             text);
    QCOMPARE(toQString(std::wstring(L"\uFEFFab")), text);
    QVERIFY(toStdWString(std::string("\xEF\xBB\xBF"
                                     "ab"))
            == L"ab");
    QVERIFY(toStdString(std::wstring(L"\uFEFFab")) == "ab");
    // Only one mark is removed, and only at the beginning.
    const QString mark(QChar(0xFEFF));
    QCOMPARE(toQString(std::wstring(L"\uFEFF\uFEFFab")), mark + text);
    QCOMPARE(toQString(std::wstring(L"ab\uFEFF")), text + mark);
}

void TestTextConversions::aByteOrderMarkInAQStringIsWritten()
{
    const QString text = QChar(0xFEFF) + QStringLiteral("ab");
    QVERIFY(toStdString(text)
            == "\xEF\xBB\xBF"
               "ab");
    QVERIFY(toStdWString(text) == L"\uFEFFab");
}

void TestTextConversions::aNewWideArrayHoldsTheTextAndAZero()
{
    static_assert(std::is_same_v<decltype(toWCharArray(QString())), wchar_t *>);
    QFETCH(std::u16string, units);
    QFETCH(std::wstring, wide);
    const std::unique_ptr<wchar_t[]> array(toWCharArray(QString::fromStdU16String(units)));
    // A byte-order mark in front is lost on the way into the QString, not in the array.
    const std::wstring expected = QString::fromStdU16String(units).toStdWString();
    QVERIFY(expected == wide || units.front() == u'\uFEFF');
    QVERIFY(std::equal(expected.begin(), expected.end(), array.get()));
    QVERIFY(array[expected.size()] == L'\0');
}

void TestTextConversions::aNewWideArrayOfAnEmptyTextHoldsOnlyTheZero()
{
    const std::unique_ptr<wchar_t[]> ofNull(toWCharArray(QString()));
    QVERIFY(ofNull);
    QVERIFY(ofNull[0] == L'\0');
    const std::unique_ptr<wchar_t[]> ofEmpty(toWCharArray(QStringLiteral("")));
    QVERIFY(ofEmpty);
    QVERIFY(ofEmpty[0] == L'\0');
}

void TestTextConversions::aNewWideArrayKeepsNuls()
{
    const std::unique_ptr<wchar_t[]> array(
        toWCharArray(QStringLiteral("ab") + QChar() + QStringLiteral("cd")));
    QVERIFY(std::wstring(array.get(), 6) == std::wstring(L"ab\0cd\0", 6));
}

void TestTextConversions::unitsBecomeTheWideForm()
{
    QFETCH(std::u16string, units);
    QFETCH(std::wstring, wide);
    // Space for the length and the zero, then bytes that must not change.
    std::vector<wchar_t> out(wide.size() + 2, UntouchedWide);
    toWCharArray(units.c_str(), out.data());
    QVERIFY(std::equal(wide.begin(), wide.end(), out.begin()));
    QVERIFY(out[wide.size()] == L'\0');
    QVERIFY(out[wide.size() + 1] == UntouchedWide);
}

void TestTextConversions::unitsAreReadUpToTheirZero()
{
    std::vector<wchar_t> out(6, UntouchedWide);
    toWCharArray(u"ab\0cd", out.data());
    QVERIFY(std::wstring(out.data()) == L"ab");
    QVERIFY(out[3] == UntouchedWide);
}

void TestTextConversions::aQStringBecomesUnits()
{
    QFETCH(std::u16string, units);
    const QString text(reinterpret_cast<const QChar *>(units.data()),
                       static_cast<int>(units.size()));
    std::vector<char16_t> out(units.size() + 2, Untouched);
    toChar16Array(text, out.data());
    QVERIFY(std::equal(units.begin(), units.end(), out.begin()));
    QVERIFY(out[units.size()] == u'\0');
    QVERIFY(out[units.size() + 1] == Untouched);
}

void TestTextConversions::aQStringWithNulsBecomesAllItsUnits()
{
    std::vector<char16_t> out(7, Untouched);
    toChar16Array(QStringLiteral("ab") + QChar() + QStringLiteral("cd"), out.data());
    QVERIFY(std::u16string(out.data(), 6) == std::u16string(u"ab\0cd\0", 6));
    QVERIFY(out[6] == Untouched);
}

void TestTextConversions::theWideFormBecomesUnits()
{
    QFETCH(std::u16string, units);
    QFETCH(std::wstring, wide);
    std::vector<char16_t> out(units.size() + 2, Untouched);
    toChar16Array(wide.c_str(), out.data());
    QVERIFY(std::equal(units.begin(), units.end(), out.begin()));
    QVERIFY(out[units.size()] == u'\0');
    QVERIFY(out[units.size() + 1] == Untouched);
}

void TestTextConversions::wideUnitsAreReadUpToTheirZero()
{
    std::vector<char16_t> out(6, Untouched);
    toChar16Array(L"ab\0cd", out.data());
    QVERIFY(std::u16string(out.data()) == u"ab");
    QVERIFY(out[3] == Untouched);
}

void TestTextConversions::aMissingArrayChangesNothing()
{
    const char16_t *noUnits = nullptr;
    const wchar_t *noWide = nullptr;
    wchar_t wide = UntouchedWide;
    toWCharArray(noUnits, &wide);
    QVERIFY(wide == UntouchedWide);
    char16_t unit = Untouched;
    toChar16Array(noWide, &unit);
    QVERIFY(unit == Untouched);
    toWCharArray(u"ab", nullptr);
    toChar16Array(QStringLiteral("ab"), nullptr);
    toChar16Array(L"ab", nullptr);
}

QTEST_GUILESS_MAIN(TestTextConversions)

#include "tst_textconversions.moc"
