#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/Formats/ShellWord_p.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <algorithm>

using Vorn::Util::Formats::shellWord;

namespace {

// The words that the shell makes of a line of a script, each followed by a null byte.
QByteArray wordsOf(const QString &line)
{
    const QString script = QStringLiteral("script.sh");
    if (!writeFile(script, "printf '%s\\0' " + line.toLatin1()))
        return "The script cannot be written";
    QProcess shell;
    shell.start(QStringLiteral("/bin/sh"), {script});
    shell.waitForFinished();
    QFile::remove(script);
    return shell.readAllStandardOutput();
}

bool isPlainAscii(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character >= QLatin1Char(' ') && character <= QLatin1Char('~');
    });
}

} // namespace

class TestShellWord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anyTextIsOneWord_data();
    void anyTextIsOneWord();
    void everyByteIsKept();
    void everyByteIsWrittenInPlainAscii();
};

void TestShellWord::anyTextIsOneWord_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("word");

    const auto row = [](const char *name, const QByteArray &bytes, const char *word) {
        QTest::newRow(name) << bytes << QString::fromLatin1(word);
    };
    row("path", "/opt/tools/x", "'/opt/tools/x'");
    row("empty", "", "''");
    row("blanks", "  a  b ", "'  a  b '");
    row("apostrophe", "it's", "'it'\\''s'");
    row("apostrophes only", "''", "''\\'''\\'''");
    row("quotes", "\"a\"", "'\"a\"'");
    row("variable", "$HOME ${HOME}", "'$HOME ${HOME}'");
    row("command", "$(echo x) `echo y`", "'$(echo x) `echo y`'");
    row("operators", "a;b&c|d>e<f(g)h", "'a;b&c|d>e<f(g)h'");
    row("patterns", "* ? [a-z] ~ {a,b} !x", "'* ? [a-z] ~ {a,b} !x'");
    row("comment", "# a", "'# a'");
    row("percent", "100% %s", "'100% %s'");
    row("backslash", "a\\b\\\\n\\", "'a\\b\\\\n\\'");
    row("option", "-n", "'-n'");
    row("last plain letter", "~", "'~'");
    row("letter beyond ASCII", "\xC3\xB6", "\"$(printf '\\303\\266')\"");
    row("letters after one beyond ASCII",
        "\xC3\xB6"
        "1a",
        "\"$(printf '\\303\\266\\061\\141')\"");
    row("percent beside one", "\xC3\xB6%s", "\"$(printf '\\303\\266\\045\\163')\"");
    row("apostrophe and quotes beside one", "\xC3\xB6'\"", "\"$(printf '\\303\\266\\047\\042')\"");
    row("backslash beside one", "\xC3\xB6\\", "\"$(printf '\\303\\266\\134')\"");
    row("blanks beside one", " \xC3\xB6  * ",
        "\"$(printf '\\040\\303\\266\\040\\040\\052\\040')\"");
    row("no UTF-8", "\xFF\xFE", "\"$(printf '\\377\\376')\"");
    row("tabulator", "a\tb", "\"$(printf '\\141\\011\\142')\"");
    row("line break", "a\nb", "\"$(printf '\\141\\012\\142')\"");
    row("delete", "\x7F", "\"$(printf '\\177')\"");
}

void TestShellWord::anyTextIsOneWord()
{
    QFETCH(QByteArray, bytes);
    QTEST(shellWord(bytes), "word");
    if (!onWindows()) {
        const QString line = shellWord(bytes) + QStringLiteral(" next");
        QCOMPARE(wordsOf(line), bytes + '\0' + QByteArray("next") + '\0');
    }
}

// Between letters, and with a percent sign, which means something to printf.
void TestShellWord::everyByteIsKept()
{
    QString line;
    QByteArray words;
    for (int byte = 1; byte < 256; ++byte) {
        for (const char *end : {"z", "%1", "\xE9"}) {
            const QByteArray bytes = 'a' + QByteArray(1, static_cast<char>(byte)) + end;
            line += shellWord(bytes) + QLatin1Char(' ');
            words += bytes + '\0';
        }
    }
    if (onWindows())
        QSKIP("There is no POSIX shell: everyByteIsWrittenInPlainAscii() compares the texts");
    QCOMPARE(wordsOf(line), words);
}

void TestShellWord::everyByteIsWrittenInPlainAscii()
{
    for (int byte = 1; byte < 256; ++byte) {
        const QByteArray bytes(1, static_cast<char>(byte));
        const QString word = shellWord(bytes);
        QVERIFY(isPlainAscii(word));
        if (byte == '\'')
            QCOMPARE(word, QStringLiteral("''\\'''"));
        else if (byte >= ' ' && byte <= '~')
            QCOMPARE(word, QStringLiteral("'%1'").arg(QLatin1Char(static_cast<char>(byte))));
        else
            QCOMPARE(word,
                     QStringLiteral("\"$(printf '\\%1')\"").arg(byte, 3, 8, QLatin1Char('0')));
    }
}

QTEST_GUILESS_MAIN(TestShellWord)

#include "tst_shellword.moc"
