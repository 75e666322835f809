// The text of a settings file. The expected values are what Qt reads from the same text.

#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/Formats/SettingsText_p.h>

#include <QtCore/QSettings>
#include <QtTest/QtTest>

#include <algorithm>
#include <ctime>

using namespace Vorn::Util::Formats;

using Texts = QMap<QString, QString>;

namespace {

constexpr bool IsQt5 = QT_VERSION < QT_VERSION_CHECK(6, 0, 0);

void useUtf8(QSettings &settings)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    settings.setIniCodec("UTF-8");
#else
    Q_UNUSED(settings) // Qt 6 uses no other encoding
#endif
}

} // namespace

class TestSettingsText : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void aValueIsOneText_data();
    void aValueIsOneText();
    void aValueIsReadAsByQt_data();
    void aValueIsReadAsByQt();
    void namesAreReadAsUtf8();
    void namesAndValuesEndAtANullByte();
    void theFormIsThatOfQt_data();
    void theFormIsThatOfQt();
    void whatQtWritesIsRead_data();
    void whatQtWritesIsRead();
    void whatIsWrittenIsRead_data();
    void whatIsWrittenIsRead();
    void onlyTheValueIsChanged_data();
    void onlyTheValueIsChanged();
    void aLongTextIsReadInTime();

private:
    QString fileName() const { return path(QStringLiteral("settings.conf")); }
    Texts readByQt(const QByteArray &content) const;
};

Texts TestSettingsText::readByQt(const QByteArray &content) const
{
    // A new name for each call, because Qt caches the files that it has read.
    static int number = 0;
    const QString name = path(QStringLiteral("%1.ini").arg(++number));
    writeFile(name, content);
    QSettings settings(name, QSettings::IniFormat);
    useUtf8(settings);
    Texts texts;
    const QStringList keys = settings.allKeys();
    for (const QString &key : keys)
        texts.insert(key, settings.value(key).toString());
    return texts;
}

void TestSettingsText::aValueIsOneText_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *written, const char *text) {
        QTest::newRow(written) << QByteArray(written) << QString::fromUtf8(text);
    };
    row("/opt/a,b", "/opt/a,b");
    row("/opt/a, b", "/opt/a, b");
    row(" /opt/a ,\tb ,  ", "/opt/a ,\tb ,");
    row(",", ",");
    row("\"a\", \"b\"", "a, b");
    row("\"a,b\", c", "a,b, c");
    row("a, \"b \"", "a, b ");
    row("\"a\",b  ", "a,b");
    row("C:\\\\a,b\\\\", "C:\\a,b\\");
    row("@Size(1 2)", "@Size(1 2)");
}

void TestSettingsText::aValueIsOneText()
{
    QFETCH(QByteArray, written);
    QFETCH(QString, text);

    QCOMPARE(settingsTexts("[24.0]\nName=" + written + "\nNext=x\n"),
             (Texts{{QStringLiteral("24.0/Name"), text},
                    {QStringLiteral("24.0/Next"), QStringLiteral("x")}}));
}

void TestSettingsText::aValueIsReadAsByQt_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *written, const char *text) {
        QTest::newRow(written) << QByteArray(written) << QString::fromUtf8(text);
    };
    row("", "");
    row("  /opt/a b \t", "/opt/a b");
    row("/opt/Tr\xC3\xA4ger \xE6\x97\xA5", "/opt/Tr\xC3\xA4ger \xE6\x97\xA5");
    row("\"  a;b,c=d  \"", "  a;b,c=d  ");
    row("\"a\"  ", "a");
    row("a\"b\" c", "abc");
    row("a \"\"", "a ");
    row("a=b=c", "a=b=c");
    row("a ; comment", "a");
    row("a\\;b", "ab"); // the character of an unknown escape is dropped
    row("Tr\\xe4ger", "Tr\xC3\xA4ger");
    row("\\x65e5\\x672c", "\xE6\x97\xA5\xE6\x9C\xAC");
    row("\\xd83d\\xdd29", "\xF0\x9F\x94\xA9");
    row("\\x1e4g", "\xC7\xA4g");
    row("\\x100e4", "\xC3\xA4");
    row("\\x", "");
    row("\\xg", "g");
    row("\\101\\1018", "AA8");
    row("\\u00e4", "00e4");
    row("\\a\\b\\f\\n\\r\\t\\v\\\"\\?\\'\\\\", "\a\b\f\n\r\t\v\"?'\\");
    row("C:\\Opt\\New", "C:ptew");
    row("C:\\\\VORN\\\\", "C:\\VORN\\");
    row("a\\t ", "a\t");
    row(" \\x20 a", "  a");
    row("a\\x20 ", "a ");
    row("@@a", "@a");
    row("@a", "@a");
    row("@String(a b)", "a b");
    row("@ByteArray(Tr\\xc3\\xa4ger)", "Tr\xC3\xA4ger");
    row("@Invalid()", "");
    row("@String(", "@String(");
}

void TestSettingsText::aValueIsReadAsByQt()
{
    QFETCH(QByteArray, written);
    QFETCH(QString, text);

    for (const char *lineEnd : {"\n", "\r\n", "\r"}) {
        const QByteArray content
            = QByteArray("[24.0]") + lineEnd + "Name=" + written + lineEnd + "Next=x" + lineEnd;
        QCOMPARE(settingsTexts(content).value(QStringLiteral("24.0/Name")), text);
        QCOMPARE(settingsTexts(content), readByQt(content));
    }
}

// Qt reads the bytes of a name as Latin-1, whatever the codec.
void TestSettingsText::namesAreReadAsUtf8()
{
    const QByteArray content = "[Gr\xC3\xB6\xC3\x9F"
                               "e]\nN\xC3\xA4me=x\n";
    const QByteArray key = "Gr\xC3\xB6\xC3\x9F"
                           "e/N\xC3\xA4me";
    QCOMPARE(settingsTexts(content), (Texts{{QString::fromUtf8(key), QStringLiteral("x")}}));
    const QString readKey = IsQt5 ? QString::fromLatin1(key) : QString::fromUtf8(key);
    QCOMPARE(readByQt(content), (Texts{{readKey, QStringLiteral("x")}}));
}

void TestSettingsText::namesAndValuesEndAtANullByte()
{
    const QByteArray content = QByteArray("[24.0^x]\nName^y=a^b\n").replace('^', '\0');
    const QByteArray changed = QByteArray("[24.0^x]\nName=c\n").replace('^', '\0');
    QCOMPARE(settingsTexts(content), (Texts{{QStringLiteral("24.0/Name"), QStringLiteral("a")}}));
    QCOMPARE(withSettingsText(content, QStringLiteral("24.0"), QStringLiteral("Name"),
                              QStringLiteral("c")),
             changed);
}

void TestSettingsText::theFormIsThatOfQt_data()
{
    QTest::addColumn<QByteArray>("content");

    const auto row = [](const char *content) { QTest::newRow(content) << QByteArray(content); };
    row("");
    row("\n\n");
    row("Name=a\n[24.0]\nName=b");
    row("[General]\nName=a\n[%General]\nName=b\n[GENERAL]\nOther=c\n");
    row("[ 24.0 ]  rest\n Name = a \n\tOther\t=\tb\n");
    row("[24.0]\nName=a\nName=b\n[23.0]\nName=c\n[24.0]\nName=d\n");
    row("[24.0\nName=a\n");
    row("[24%2E0]\nA%20Name=a\nA%U65E5=b\n%zz=c\nx%U00=d\nsub\\Name=e\ny%=f\n");
    row("[24.0/Sub]\nName=a\n[24.0]\nSub\\Other=b\n");
    row("; comment\n  ; another\n[24.0] ; more\nName=a;b\n;Name=c\n;\n");
    row("[24.0]\nno value\nName=a\n");
    row("[24.0]\nName=\"a\nb\r\nc\"\nOther=d\n");
    row("[24.0]\nName=\"a\nOther=b\n");
    row("[24.0]\nName=a\\\nb\nOther=c\\\r\nd\n");
    row("[24.0]\nName=C:\\VORN\\\nOther=b\n");
    row("[24.0]\nName=a\\");
    row("[24.0]\nName=\"a;b\" ; comment\n");
    row("\xEF\xBB\xBF[24.0]\nName=a\n");
}

void TestSettingsText::theFormIsThatOfQt()
{
    QFETCH(QByteArray, content);

    QCOMPARE(settingsTexts(content), readByQt(content));
}

void TestSettingsText::whatQtWritesIsRead_data()
{
    QTest::addColumn<QString>("text");

    const auto row = [](const char *text) { QTest::newRow(text) << QString::fromUtf8(text); };
    row("");
    row("/opt/a,b");
    row("  a  b  ");
    row("C:\\Program Files\\VORN 2024\\");
    row("a,b;c\"d\"%1=@#$\t\n\r");
    row("@Invalid()");
    row("@");
    row("Gr\xC3\xB6\xC3\x9F"
        "e \xE6\x97\xA5 \xF0\x9F\x94\xA9"
        "1");
    QTest::newRow("null") << QStringLiteral("a") + QChar() + QStringLiteral("1b");
    if (IsQt5) // Qt 6 writes another character instead
        QTest::newRow("half a pair") << QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b");
    QTest::newRow("control characters") << QStringLiteral("\x01"
                                                          "a\x7f");
}

void TestSettingsText::whatQtWritesIsRead()
{
    QFETCH(QString, text);

    // With a codec, Qt writes the halves of a surrogate pair separately, so that they cannot be
    // read back.
    const bool hasSurrogates = std::any_of(text.cbegin(), text.cend(),
                                           [](QChar character) { return character.isSurrogate(); });
    for (const bool isUtf8 : {false, true}) {
        const QString name = path(QStringLiteral("%1.conf").arg(isUtf8));
        if (isUtf8 && hasSurrogates)
            continue;
        {
            QSettings settings(name, QSettings::IniFormat);
            if (isUtf8)
                useUtf8(settings);
            settings.setValue(QStringLiteral("24.0/A Name"), text);
        }
        QCOMPARE(settingsTexts(contentOf(name)), (Texts{{QStringLiteral("24.0/A Name"), text}}));
    }
}

void TestSettingsText::whatIsWrittenIsRead_data()
{
    whatQtWritesIsRead_data();
}

void TestSettingsText::whatIsWrittenIsRead()
{
    QFETCH(QString, text);

    const QString name = QString::fromUtf8("A N\xC3\xA4me/\xE6\x97\xA5");
    const QByteArray content = withSettingsText("", QStringLiteral("24.0"), name, text);
    QCOMPARE(settingsTexts(content), (Texts{{QStringLiteral("24.0/") + name, text}}));
    // With or without a codec.
    QCOMPARE(readByQt(content), (Texts{{QStringLiteral("24.0/") + name, text}}));
    QVERIFY(std::all_of(content.cbegin(), content.cend(),
                        [](char c) { return c == '\n' || (c >= ' ' && c < 127); }));
}

void TestSettingsText::onlyTheValueIsChanged_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const auto row = [](const char *name, const char *before, const char *after) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after);
    };
    row("empty", "", "[24.0]\nName=new\n");
    row("another group", "[23.0]\nName=a\n", "[23.0]\nName=a\n\n[24.0]\nName=new\n");
    row("no line end", "[23.0]\nName=a", "[23.0]\nName=a\n\n[24.0]\nName=new\n");
    row("the value", "[24.0]\nName=a\nOther=b\n", "[24.0]\nName=new\nOther=b\n");
    row("the last of several", "[24.0]\nName=a\nName=b\n", "[24.0]\nName=a\nName=new\n");
    row("the group", "[24.0]\nOther=b\n[23.0]\n", "[24.0]\nName=new\nOther=b\n[23.0]\n");
    row("the group without a line end", "[24.0]", "[24.0]\nName=new");
    row("a group with a comment", "[24.0] ; c\nOther=b\n", "[24.0] ; c\nName=new\nOther=b\n");
    row("carriage returns", "[24.0]\r\nName=a\r\n", "[24.0]\r\nName=new\r\n");
    row("comments", "; a\n[24.0]\n; b\n\nName=a\n; c\n", "; a\n[24.0]\n; b\n\nName=new\n; c\n");
    row("any bytes", "[24.0]\nName=a\nOther=\xFF,b\n", "[24.0]\nName=new\nOther=\xFF,b\n");
    row("several lines", "[24.0]\nName=\"a\nb\"\nOther=b\n", "[24.0]\nName=new\nOther=b\n");
}

void TestSettingsText::onlyTheValueIsChanged()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);

    QCOMPARE(withSettingsText(before, QStringLiteral("24.0"), QStringLiteral("Name"),
                              QStringLiteral("new")),
             after);
}

// Linear in the length of the text, whatever it holds.
void TestSettingsText::aLongTextIsReadInTime()
{
    for (const char *part :
         {"a=b\n", "[a]\n", ";\n", "\\\n", "\"", "\\x1", "a=\\\"", ",", "%U", "["}) {
        const QByteArray once(part);
        const QByteArray text = once.repeated(1000000 / once.size());
        for (const QByteArray &content : {"[24.0]\nName=" + text, text}) {
            const std::clock_t start = std::clock(); // does not count other programs
            settingsTexts(content);
            QVERIFY2(std::clock() - start < 5 * CLOCKS_PER_SEC, part);
        }
    }
}

QTEST_GUILESS_MAIN(TestSettingsText)

#include "tst_settingstext.moc"
