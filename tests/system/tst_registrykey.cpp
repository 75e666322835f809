#include <Utility/Formats/RegistryKey_p.h>

#include <QtTest/QtTest>

using namespace Vorn::Util::Formats;

namespace {

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class TestRegistryKey : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void greatestRelease_data();
    void greatestRelease();
    void withoutAMatchTheReleaseIsNull();
    void keyPath_data();
    void keyPath();
};

void TestRegistryKey::greatestRelease_data()
{
    QTest::addColumn<QString>("release");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *title, const char *release, const QStringList &names,
                        const char *expected) {
        QTest::newRow(title) << QString::fromLatin1(release) << names
                             << QString::fromLatin1(expected);
    };
    row("compared as numbers", "24.x", words("24.0 24.1 24.10"), "24.10");
    row("in any order", "24.x", words("24.10 24.9 24.2"), "24.10");
    row("zero counts", "24.x", words("24.0"), "24.0");
    row("first of equal numbers", "24.x", words("24.01 24.1 24.001"), "24.01");
    row("first of equal zeros", "24.x", words("24.00 24.0"), "24.00");
    row("nothing after the point", "24.x", words("24. 24.0"), "24.0");
    row("only nothing after the point", "24.x", words("24."), "");
    row("no point", "24.x", words("24 2499 24x9 24.0"), "24.0");
    row("not wholly a number", "24.x", words("24.1a 24.a1 24.0x1 24.1,5 24.0"), "24.0");
    row("a second point", "24.x", words("24.5.1 24.0"), "24.0");
    row("only a second point", "24.x", words("24.5."), "");
    row("itself", "24.x", words("24.x"), "");
    row("other prefix", "24.x", words("23.9 25.9 2.9 4.9 24.1"), "24.1");
    row("longer prefix", "24.x", words("124.9 240.9 024.9 24.1"), "24.1");
    row("point in front", "24.x", words(".24 24.1"), "24.1");
    row("prefix with case", "Rel.x", words("rel.9 REL.8 Rel.3"), "Rel.3");
    row("greatest number", "24.x", words("24.2147483646 24.2147483647"), "24.2147483647");
    row("out of range", "24.x", words("24.2147483648 24.99999999999999999999 24.1"), "24.1");
    row("negative", "24.x", words("24.-1 24.-5"), "");
    row("negative zero", "24.x", words("24.-0"), "24.-0");
    row("plus sign", "24.x", words("24.+5 24.3"), "24.+5");
    row("signs without a number", "24.x", words("24.+ 24.- 24.+-5 24.-+5 24.--5"), "");
    row("blank in front", "24.x", {QStringLiteral("24. 7"), QStringLiteral("24.3")}, "24. 7");
    row("blank after", "24.x", {QStringLiteral("24.7 "), QStringLiteral("24.3")}, "24.3");
    row("only a blank", "24.x", {QStringLiteral("24. ")}, "");
    row("grouped digits", "24.x", {QStringLiteral("24.1,000"), QStringLiteral("24.3")}, "24.3");
    row("prefix up to an x", "24xy.x", words("24.3 24xy.7"), "24.3");
    row("prefix up to the first point", "24.5.x", words("24.3 24.5.7"), "24.3");
    row("empty prefix", ".x", words("24.3 .7 .5"), ".7");
    row("more after the x", "24.x86", words("24.3"), "24.3");
    row("no names", "24.x", {}, "");
    row("empty name", "24.x", {QString()}, "");
    QTest::newRow("other digits") << QStringLiteral("24.x")
                                  << QStringList{QString::fromUtf8("24.\xD9\xA5")} << QString();
}

void TestRegistryKey::greatestRelease()
{
    QFETCH(QString, release);
    QFETCH(QStringList, names);
    QFETCH(QString, expected);

    QCOMPARE(Vorn::Util::Formats::greatestRelease(release, names), expected);
}

void TestRegistryKey::withoutAMatchTheReleaseIsNull()
{
    QVERIFY(Vorn::Util::Formats::greatestRelease(QStringLiteral("24.x"), {}).isNull());
    QVERIFY(
        Vorn::Util::Formats::greatestRelease(QStringLiteral("24.x"), words("24. 23.1")).isNull());
}

void TestRegistryKey::keyPath_data()
{
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("asked"); // for the subkeys of

    const auto row = [](const char *keyPath, const char *expected, const QStringList &asked) {
        QTest::addRow("\"%s\"", keyPath)
            << QString::fromLatin1(keyPath) << QString::fromLatin1(expected) << asked;
    };
    // Every key has the subkeys 24.0, 24.2 and 25.0.
    row("SOFTWARE\\Vantorel\\VORN\\24.0", "SOFTWARE\\Vantorel\\VORN24.0", {});
    row("SOFTWARE/Vantorel/VORN/24.0", "SOFTWARE/Vantorel/VORN24.0", {});
    row("A\\B/C", "A\\BC", {});
    row("A/B\\C", "A/BC", {});
    row("VORN", "VORN", {});
    row("", "", {});
    row("A\\", "A", {});
    row("A\\\\B", "A\\B", {});
    row("\\A", "A", {});
    row("A\\24.X", "A24.X", {});
    row("A\\24x", "A24x", {});
    row("A.x\\24.0", "A.x24.0", {});
    row("A\\24.x", "A\\24.2", {QStringLiteral("A")});
    row("A/24.x", "A\\24.2", {QStringLiteral("A")});
    row("A\\B\\24.x", "A\\B\\24.2", {QStringLiteral("A\\B")});
    row("A\\25.x", "A\\25.0", {QStringLiteral("A")});
    row("A\\24.x1", "A\\24.2", {QStringLiteral("A")});
    row("A\\23.x", "A\\23.x", {QStringLiteral("A")});
    row("A\\.x", "A\\.x", {QStringLiteral("A")});
    row("24.x", "\\24.2", {QString()});
    row("23.x", "\\23.x", {QString()});
}

void TestRegistryKey::keyPath()
{
    QFETCH(QString, keyPath);
    QFETCH(QString, expected);
    QFETCH(QStringList, asked);

    QStringList asks;
    const auto subkeys = [&asks](const QString &key) {
        asks += key;
        return words("24.0 24.2 25.0");
    };
    QCOMPARE(resolveKeyPath(keyPath, subkeys), expected);
    QCOMPARE(asks, asked);
}

QTEST_GUILESS_MAIN(TestRegistryKey)

#include "tst_registrykey.moc"
