#include "BuildPaths.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestSettings.h"
#include "TestSystem.h"

#include <Utility/Registry.h>
#include <Utility/System.h>

#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <array>

using namespace Vorn::Util;

namespace {

QString productKey()
{
    return QStringLiteral("SOFTWARE\\Vantorel\\VORN\\24.0");
}

QString localeName()
{
    return QStringLiteral("Locale");
}

QVariant storedValue(const QString &name)
{
    return openSettings(productKey())->value(name);
}

QString registryValue(const wchar_t *name)
{
    std::array<wchar_t, 1024> value{};
    Registry::readRegistryValue(name, value.data(), nullptr);
    return QString::fromWCharArray(value.data());
}

} // namespace

class TestSystemLocale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void languagesOffered();
    void everyCallGivesANewList();
    void withoutASettingItIsTheDefault();
    void theSettingIsReadAsItStands_data();
    void theSettingIsReadAsItStands();
    void everyLanguageOfferedCanBeSet();
    void theSettingIsReadAnewByEveryCall();
    void onlyTheProductsReleaseIsRead();
    void whatIsSetIsStoredForTheRelease();
    void whatIsSetIsTheRegistrysValue();
    void anyTextCanBeSet_data();
    void anyTextCanBeSet();
    void aTextIsWrittenUnderAnyName();
    void otherValuesStay();
    void aStoreThatCannotBeWrittenIsSilent();

private:
    QTemporaryDir settings_;
};

void TestSystemLocale::initTestCase()
{
    QVERIFY(settings_.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, settings_.path());
}

void TestSystemLocale::cleanup()
{
    QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel\\VORN")));
    if (onWindows())
        QVERIFY(removeSettings(QStringLiteral("SOFTWARE\\Vantorel")));
}

void TestSystemLocale::languagesOffered()
{
    QStringList expected;
    for (const char *name :
         {"en-US", "zh-CN", "zh-TW", "de-DE", "fr-FR", "ja-JP", "it-IT", "ko-KR", "ru-RU"})
        expected += QString::fromLatin1(name);
    QCOMPARE(System::validLocales(), expected);
}

void TestSystemLocale::everyCallGivesANewList()
{
    QStringList first = System::validLocales();
    first.clear();
    QCOMPARE(System::validLocales().size(), 9);
}

void TestSystemLocale::withoutASettingItIsTheDefault()
{
    QCOMPARE(System::getLocale(), QStringLiteral("en-US"));
    QCOMPARE(System::getLocaleID(), 1033);
    // Another value of the release is not taken for the locale, and reading stores nothing.
    QVERIFY(writeSetting(productKey(), QStringLiteral("Other"), QStringLiteral("de-DE")));
    QCOMPARE(System::getLocale(), QStringLiteral("en-US"));
    QCOMPARE(System::getLocaleID(), 1033);
    QVERIFY(!storedValue(localeName()).isValid());
}

void TestSystemLocale::theSettingIsReadAsItStands_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<int>("id");

    const auto row = [](const char *stored, int id) {
        const QString text = QString::fromUtf8(stored);
        QTest::addRow("\"%s\"", stored) << QVariant(text) << text << id;
    };
    row("en-US", 1033);
    row("zh-CN", 2052);
    row("zh-TW", 1028);
    row("de-DE", 1031);
    row("fr-FR", 1036);
    row("ja-JP", 1041);
    row("it-IT", 1040);
    row("ko-KR", 1042);
    row("ru-RU", 1049);
    // In any letter case.
    row("en-us", 1033);
    row("ZH-CN", 2052);
    row("Zh-Tw", 1028);
    row("de-de", 1031);
    row("fR-fR", 1036);
    row("ja-jp", 1041);
    row("IT-it", 1040);
    row("KO-KR", 1042);
    row("rU-Ru", 1049);
    // Of any other language, and of what is nearly one.
    row("xx-YY", 1033);
    row("de", 1033);
    row("de-AT", 1033);
    row("de_DE", 1033);
    row("de-DE ", 1033);
    row(" de-DE", 1033);
    row("de-DE;fr-FR", 1033);
    row("1031", 1033);
    row(" ", 1033);
    row("\xD1\x80\xD1\x83", 1033);
    QTest::newRow("empty") << QVariant(QStringLiteral("")) << QStringLiteral("en-US") << 1033;
    QTest::newRow("number") << QVariant(1031) << QStringLiteral("1031") << 1033;
    // In a settings file a list is one text like any other.
    QTest::newRow("list") << QVariant(QStringList{QStringLiteral("de-DE"), QStringLiteral("fr-FR")})
                          << (onWindows() ? QStringLiteral("en-US")
                                          : QStringLiteral("de-DE, fr-FR"))
                          << 1033;
}

void TestSystemLocale::theSettingIsReadAsItStands()
{
    QFETCH(QVariant, stored);
    QFETCH(QString, locale);
    QFETCH(int, id);

    QVERIFY(writeSetting(productKey(), localeName(), stored));
    QCOMPARE(System::getLocale(), locale);
    QCOMPARE(System::getLocaleID(), id);
}

void TestSystemLocale::everyLanguageOfferedCanBeSet()
{
    QList<int> ids;
    const QStringList names = System::validLocales();
    for (const QString &name : names) {
        System::setLocale(name);
        QCOMPARE(System::getLocale(), name);
        ids += System::getLocaleID();
    }
    QCOMPARE(ids, (QList<int>{1033, 2052, 1028, 1031, 1036, 1041, 1040, 1042, 1049}));
}

void TestSystemLocale::theSettingIsReadAnewByEveryCall()
{
    System::setLocale(QStringLiteral("fr-FR"));
    QCOMPARE(System::getLocale(), QStringLiteral("fr-FR"));
    QVERIFY(writeSetting(productKey(), localeName(), QStringLiteral("it-IT")));
    QCOMPARE(System::getLocale(), QStringLiteral("it-IT"));
    QVERIFY(removeSettings(productKey()));
    QCOMPARE(System::getLocale(), QStringLiteral("en-US"));
}

void TestSystemLocale::onlyTheProductsReleaseIsRead()
{
    for (const char *key : {"SOFTWARE\\Vantorel\\VORN", "SOFTWARE\\Vantorel\\VORN\\24.1",
                            "SOFTWARE\\Vantorel\\VORN\\24.0\\Sub"}) {
        QVERIFY(writeSetting(QString::fromLatin1(key), localeName(), QStringLiteral("de-DE")));
        QCOMPARE(System::getLocale(), QStringLiteral("en-US"));
    }
    QVERIFY(writeSetting(productKey(), localeName(), QStringLiteral("fr-FR")));
    QCOMPARE(System::getLocale(), QStringLiteral("fr-FR"));
}

void TestSystemLocale::whatIsSetIsStoredForTheRelease()
{
    System::setLocale(QStringLiteral("ko-KR"));
    QCOMPARE(storedValue(localeName()), QVariant(QStringLiteral("ko-KR")));
    QCOMPARE(openSettings(productKey())->allKeys(), QStringList{localeName()});
}

void TestSystemLocale::whatIsSetIsTheRegistrysValue()
{
    System::setLocale(QStringLiteral("ja-JP"));
    QCOMPARE(registryValue(L"Locale"), QStringLiteral("ja-JP"));
    System::writeToRegistry(QStringLiteral("InstallationDirectory"), QStringLiteral("D:\\VORN\\"));
    QCOMPARE(registryValue(L"InstallationDirectory"), QStringLiteral("D:\\VORN\\"));
}

void TestSystemLocale::anyTextCanBeSet_data()
{
    QTest::addColumn<QString>("locale");

    for (const char *locale :
         {"xx-YY", "de-de", "a,b;c\"d\"%1=@#$\\", "@Invalid()", "  blanks  ", "1031",
          "Gr\xC3\xB6\xC3\x9F"
          "e \xE6\x97\xA5"})
        QTest::newRow(locale) << QString::fromUtf8(locale);
}

void TestSystemLocale::anyTextCanBeSet()
{
    QFETCH(QString, locale);

    System::setLocale(locale);
    QCOMPARE(System::getLocale(), locale);
    QCOMPARE(storedValue(localeName()).toString(), locale);
    System::setLocale(QString());
    QCOMPARE(System::getLocale(), QStringLiteral("en-US"));
    QVERIFY(storedValue(localeName()).isValid());
}

void TestSystemLocale::aTextIsWrittenUnderAnyName()
{
    System::writeToRegistry(QStringLiteral("A Name"), QStringLiteral("C:\\a b"));
    System::writeToRegistry(QStringLiteral("Number"), QStringLiteral("007"));
    QCOMPARE(storedValue(QStringLiteral("A Name")), QVariant(QStringLiteral("C:\\a b")));
    QCOMPARE(storedValue(QStringLiteral("Number")), QVariant(QStringLiteral("007")));
    System::writeToRegistry(QStringLiteral("Number"), QStringLiteral("8"));
    QCOMPARE(storedValue(QStringLiteral("Number")), QVariant(QStringLiteral("8")));
    System::writeToRegistry(localeName(), QStringLiteral("it-IT"));
    QCOMPARE(System::getLocaleID(), 1040);
}

void TestSystemLocale::otherValuesStay()
{
    const QString other = QStringLiteral("SOFTWARE\\Vantorel\\VORN\\23.0");
    QVERIFY(writeSetting(other, localeName(), QStringLiteral("de-DE")));
    QVERIFY(writeSetting(productKey(), QStringLiteral("Other"), 5));
    System::setLocale(QStringLiteral("fr-FR"));
    QCOMPARE(openSettings(other)->value(localeName()), QVariant(QStringLiteral("de-DE")));
    QCOMPARE(storedValue(QStringLiteral("Other")).toInt(), 5);
}

void TestSystemLocale::aStoreThatCannotBeWrittenIsSilent()
{
    if (onWindows())
        QSKIP("The registry cannot be made unwritable for a user who may write it");
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("file"));
    QVERIFY(writeFile(file, "no folder"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), file);
    const SystemOutcome outcome = runSystemCalls(
        BuildPaths::helperProgram(), QStringLiteral("system"),
        {QStringLiteral("setLocale=fr-FR"), QStringLiteral("getLocale")}, environment);
    QCOMPARE(outcome.results, QStringList{QStringLiteral("en-US")});
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.printed, QStringList());
    QCOMPARE(contentOf(file), QByteArray("no folder"));
}

QTEST_GUILESS_MAIN(TestSystemLocale)

#include "tst_systemlocale.moc"
