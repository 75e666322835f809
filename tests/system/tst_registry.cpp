#include "BuildPaths.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestSettings.h"
#include "TestSystem.h"

#include <Utility/Registry.h>

#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <algorithm>
#include <array>
#include <string>

using namespace Vorn::Util;

namespace {

constexpr int ValueSize = 1024;
constexpr int FolderSize = 512;
constexpr int NarrowSize = 512;

// A caller's buffer, filled with other bytes before and followed by guard bytes.
template <typename Character, int Size> class Buffer
{
public:
    Buffer() { characters_.fill(Character('#')); }

    Character *data() { return characters_.data(); }
    QString text() const;
    bool isUntouched() const { return isFilled(0); }
    bool isIntact() const { return isFilled(Size); }

private:
    bool isFilled(std::size_t from) const
    {
        return std::all_of(characters_.cbegin() + from, characters_.cend(),
                           [](Character character) { return character == Character('#'); });
    }

    std::array<Character, Size + 64> characters_;
};

template <> QString Buffer<wchar_t, ValueSize>::text() const
{
    return QString::fromWCharArray(characters_.data());
}

template <> QString Buffer<wchar_t, FolderSize>::text() const
{
    return QString::fromWCharArray(characters_.data());
}

template <> QString Buffer<char, NarrowSize>::text() const
{
    return QString::fromLatin1(characters_.data());
}

using ValueBuffer = Buffer<wchar_t, ValueSize>;
using FolderBuffer = Buffer<wchar_t, FolderSize>;
using NarrowBuffer = Buffer<char, NarrowSize>;

QString productKey()
{
    return QStringLiteral("SOFTWARE\\Vantorel\\VORN\\24.0");
}

QString maker()
{
    return QStringLiteral("SOFTWARE\\Vantorel");
}

QString installationDirectory()
{
    return QStringLiteral("InstallationDirectory");
}

// Reads the value \a name of the key \a keyPath; a null text means the product's key.
QString read(const QString &name, const QString &keyPath = QString())
{
    ValueBuffer out;
    const std::wstring key = keyPath.toStdWString();
    Registry::readRegistryValue(name.toStdWString().c_str(), out.data(),
                                keyPath.isNull() ? nullptr : key.c_str());
    return out.isIntact() ? out.text() : QStringLiteral("written past the end");
}

QString translators(const QStringList &lastParts, const QString &base)
{
    const QStringList parts{base, QStringLiteral("Vantorel"), QStringLiteral("VORN 2024"),
                            QStringLiteral("VORN_Translators")};
    return (parts + lastParts).join(QDir::separator());
}

// The message of Windows for an error, without its line end.
QString messageOf(quint32 code)
{
    constexpr quint32 FromSystemIgnoringInserts = 0x1200;
    const auto format = reinterpret_cast<quint32 (*)(quint32, const void *, quint32, quint32,
                                                     wchar_t *, quint32, void *)>(
        QLibrary::resolve(QStringLiteral("kernel32"), "FormatMessageW"));
    std::array<wchar_t, 512> message{};
    if (format)
        format(FromSystemIgnoringInserts, nullptr, code, 0, message.data(), 512, nullptr);
    return QString::fromWCharArray(message.data()).trimmed();
}

QString readTranslatorsFolder()
{
    FolderBuffer out;
    Registry::readOrlithTranslatorsFolder(out.data());
    return out.isIntact() ? out.text() : QStringLiteral("written past the end");
}

QString readServerFolder()
{
    FolderBuffer out;
    Registry::readOrlith_HLXServerFolder(out.data());
    return out.isIntact() ? out.text() : QStringLiteral("written past the end");
}

QString readServerProgram()
{
    FolderBuffer out;
    Registry::getOrlith_HLXServer_exe(out.data());
    return out.isIntact() ? out.text() : QStringLiteral("written past the end");
}

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void noNameDoesNothing();
    void noBufferDoesNothing();
    void theBufferIsEmptiedFirst();
    void withoutAKeyPathTheProductsKeyIsRead();
    void theLastPartIsJoinedWithoutASeparator_data();
    void theLastPartIsJoinedWithoutASeparator();
    void aKeyPathWithoutASeparatorIsTheWholeKey();
    void anEmptyKeyPathIsNotTheProductsKey();
    void theGreatestReleaseIsRead_data();
    void theGreatestReleaseIsRead();
    void withoutAReleaseTheKeyOfThatNameIsRead();
    void namesThatAreNoReleaseAreNeverRead();
    void aValueIsReadAsItStands_data();
    void aValueIsReadAsItStands();
    void aNameNeverReachesIntoASubkey_data();
    void aNameNeverReachesIntoASubkey();
    void aValueEndsAtItsFirstNull();
    void theTypeOfAValueIsNotChecked();
    void aValueThatDoesNotFitCountsAsMissing_data();
    void aValueThatDoesNotFitCountsAsMissing();
    void aValueThatDoesNotFitIsPrinted();
    void aKeyPathThatDoesNotFitIsPrintedAsNotOpened();
    void aKeyPathCannotLeaveTheSettingsFolder_data();
    void aKeyPathCannotLeaveTheSettingsFolder();
    void everyFolderOfTheSettingsIsSearched();

    void aMissingKeyIsPrinted();
    void aMissingReleaseIsPrintedUnderItsOwnName();
    void aMissingValueIsPrinted();
    void theMessageOfAMissingValueIsThatOfTheLastError();
    void aValueThatIsReadPrintsNothing();
    void linesArePrintedAfterWideText();

    void theInstallationFolderIsRead();
    void theInstallationFolderOfAnotherKeyIsRead();
    void aMissingInstallationFolderIsFalseAndEmpty();
    void anEmptyInstallationFolderIsFalse();
    void theNarrowInstallationFolderIsLatin1();
    void aNarrowInstallationFolderThatDoesNotFitIsFalse();
    void noBufferForTheInstallationFolderIsFalse();

    void theTranslatorsLieBelowTheDataOfAllUsers();
    void withoutTheVariableTheFoldersBeginWithASeparator();
    void theServerProgramHasNativeSeparators();
    void aFolderThatDoesNotFitIsEmpty_data();
    void aFolderThatDoesNotFitIsEmpty();
    void noBufferForAFolderDoesNothing();

private:
    SystemOutcome runCalls(const QStringList &calls) const;

    QTemporaryDir settings_;
};

void TestRegistry::initTestCase()
{
    QVERIFY(settings_.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, settings_.path());
}

void TestRegistry::init()
{
    QVERIFY(writeSetting(productKey(), installationDirectory(), QStringLiteral("product")));
}

void TestRegistry::cleanup()
{
    for (const char *application : {"VORN", "VORN24.0", "Other"})
        QVERIFY(removeSettings(maker() + QLatin1Char('\\') + QString::fromLatin1(application)));
    qunsetenv("AllUsersProfile");
}

void TestRegistry::cleanupTestCase()
{
    if (onWindows())
        QVERIFY(removeSettings(maker()));
}

SystemOutcome TestRegistry::runCalls(const QStringList &calls) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), settings_.path());
    return runSystemCalls(BuildPaths::helperProgram(), QStringLiteral("system"), calls,
                          environment);
}

void TestRegistry::noNameDoesNothing()
{
    ValueBuffer out;
    Registry::readRegistryValue(nullptr, out.data(), nullptr);
    QVERIFY(out.isUntouched());
}

void TestRegistry::noBufferDoesNothing()
{
    Registry::readRegistryValue(L"InstallationDirectory", nullptr, nullptr);
    Registry::readRegistryValue(nullptr, nullptr, nullptr);
}

void TestRegistry::theBufferIsEmptiedFirst()
{
    QCOMPARE(read(QStringLiteral("Missing")), QString());
    QCOMPARE(read(installationDirectory(), QStringLiteral("SOFTWARE\\Vantorel\\Missing\\1.0")),
             QString());
}

void TestRegistry::withoutAKeyPathTheProductsKeyIsRead()
{
    QVERIFY(writeSetting(productKey(), QStringLiteral("AnalyzeDirectory"), QStringLiteral("D:/a")));
    QCOMPARE(read(installationDirectory()), QStringLiteral("product"));
    QCOMPARE(read(QStringLiteral("AnalyzeDirectory")), QStringLiteral("D:/a"));
}

void TestRegistry::theLastPartIsJoinedWithoutASeparator_data()
{
    QTest::addColumn<QString>("keyPath");

    QTest::newRow("\\") << QStringLiteral("SOFTWARE\\Vantorel\\VORN\\24.0");
    QTest::newRow("/") << QStringLiteral("SOFTWARE\\Vantorel\\VORN/24.0");
    QTest::newRow("in a part") << QStringLiteral("SOFTWARE\\Vantorel\\VORN24\\.0");
    QTest::newRow("at the end") << QStringLiteral("SOFTWARE\\Vantorel\\VORN24.0\\");
}

void TestRegistry::theLastPartIsJoinedWithoutASeparator()
{
    QFETCH(QString, keyPath);

    QVERIFY(writeSetting(QStringLiteral("SOFTWARE\\Vantorel\\VORN24.0"), installationDirectory(),
                         QStringLiteral("joined")));
    QCOMPARE(read(installationDirectory(), keyPath), QStringLiteral("joined"));
}

void TestRegistry::aKeyPathWithoutASeparatorIsTheWholeKey()
{
    const SystemOutcome outcome
        = runCalls({QStringLiteral("readRegistryValue=InstallationDirectory|VORNMissing")});
    QCOMPARE(outcome.results, QStringList{QString()});
    QCOMPARE(outcome.printed.size(), 1);
    QVERIFY2(outcome.printed.first().startsWith(QLatin1String("RegOpenKeyEx: VORNMissing: 2: ")),
             qPrintable(outcome.printed.first()));
}

void TestRegistry::anEmptyKeyPathIsNotTheProductsKey()
{
    QCOMPARE(read(installationDirectory(), QStringLiteral("")), QString());
}

void TestRegistry::theGreatestReleaseIsRead_data()
{
    QTest::addColumn<QStringList>("releases");
    QTest::addColumn<QString>("expected");

    const auto list
        = [](const char *names) { return QString::fromLatin1(names).split(QLatin1Char(' ')); };
    QTest::newRow("one") << list("24.0") << QStringLiteral("24.0");
    QTest::newRow("two") << list("24.0 24.2") << QStringLiteral("24.2");
    QTest::newRow("by number") << list("24.0 24.1 24.10 24.9") << QStringLiteral("24.10");
    QTest::newRow("only releases of the same major number")
        << list("23.9 24.3 25.8 124.7") << QStringLiteral("24.3");
}

void TestRegistry::theGreatestReleaseIsRead()
{
    QFETCH(QStringList, releases);
    QFETCH(QString, expected);

    const QString key = QStringLiteral("SOFTWARE\\Vantorel\\Other\\");
    for (const QString &release : qAsConst(releases))
        QVERIFY(writeSetting(key + release, QStringLiteral("Name"), release));
    QCOMPARE(read(QStringLiteral("Name"), key + QStringLiteral("24.x")), expected);
    QCOMPARE(read(QStringLiteral("Name"), QStringLiteral("SOFTWARE\\Vantorel\\Other/24.x")),
             expected);
}

void TestRegistry::withoutAReleaseTheKeyOfThatNameIsRead()
{
    const QString key = QStringLiteral("SOFTWARE\\Vantorel\\Other\\24.x");
    QVERIFY(writeSetting(key, QStringLiteral("Name"), QStringLiteral("by its name")));
    QCOMPARE(read(QStringLiteral("Name"), key), QStringLiteral("by its name"));
}

void TestRegistry::namesThatAreNoReleaseAreNeverRead()
{
    const QString key = QStringLiteral("SOFTWARE\\Vantorel\\Other\\");
    for (const char *name : {"24.", "24.1a", "24", "24.a", "24.3.1", "24.99999999999"})
        QVERIFY(writeSetting(key + QString::fromLatin1(name), QStringLiteral("Name"),
                             QString::fromLatin1(name)));
    QCOMPARE(read(QStringLiteral("Name"), key + QStringLiteral("24.x")), QString());
    QVERIFY(
        writeSetting(key + QStringLiteral("24.0"), QStringLiteral("Name"), QStringLiteral("24.0")));
    QCOMPARE(read(QStringLiteral("Name"), key + QStringLiteral("24.x")), QStringLiteral("24.0"));
}

void TestRegistry::aValueIsReadAsItStands_data()
{
    QTest::addColumn<QString>("value");

    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("path") << QStringLiteral("C:\\Program Files\\VORN 2024\\");
    QTest::newRow("blanks") << QStringLiteral("  a  b  ");
    QTest::newRow("signs") << QStringLiteral("a,b;c\"d\"%1=@#$\t");
    QTest::newRow("letters") << QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                                  "e \xE6\x97\xA5 \xF0\x9F\x94\xA9");
}

void TestRegistry::aValueIsReadAsItStands()
{
    QFETCH(QString, value);

    QVERIFY(writeSetting(productKey(), installationDirectory(), value));
    QCOMPARE(read(installationDirectory()), value);
}

void TestRegistry::aNameNeverReachesIntoASubkey_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("/") << QStringLiteral("sub/Value");
    QTest::newRow("\\") << QStringLiteral("sub\\Value");
    QTest::newRow("/ in front") << QStringLiteral("/sub/Value");
    QTest::newRow("nothing but the subkey") << QStringLiteral("sub");
}

void TestRegistry::aNameNeverReachesIntoASubkey()
{
    QFETCH(QString, name);

    QVERIFY(writeSetting(productKey() + QStringLiteral("\\sub"), QStringLiteral("Value"),
                         QStringLiteral("of the subkey")));
    QCOMPARE(read(name), QString());
    QVERIFY(writeSetting(productKey(), QStringLiteral("Value"), QStringLiteral("of the key")));
    QCOMPARE(read(name), QString());
    QCOMPARE(read(QStringLiteral("Value")), QStringLiteral("of the key"));
}

// A null gets into the registry as the separator of a list of texts.
void TestRegistry::aValueEndsAtItsFirstNull()
{
    const QStringList texts{QStringLiteral("before"), QStringLiteral("after")};
    QVERIFY(writeSetting(productKey(), installationDirectory(),
                         onWindows() ? QVariant(texts) : QVariant(texts.join(QChar()))));
    QCOMPARE(read(installationDirectory()), QStringLiteral("before"));
}

// In the registry a list is several texts with a null between them, in a file it is one line.
void TestRegistry::theTypeOfAValueIsNotChecked()
{
    QVERIFY(writeSetting(productKey(), installationDirectory(),
                         QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    QCOMPARE(read(installationDirectory()),
             onWindows() ? QStringLiteral("one") : QStringLiteral("one, two"));
}

void TestRegistry::aValueThatDoesNotFitCountsAsMissing_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isThere");

    QTest::newRow("fits") << 1023 << true;
    QTest::newRow("without its end") << 1024 << false;
    QTest::newRow("one more") << 1025 << false;
    QTest::newRow("much more") << 5000 << false;
}

void TestRegistry::aValueThatDoesNotFitIsPrinted()
{
    QVERIFY(writeSetting(productKey(), installationDirectory(), QString(1024, QLatin1Char('x'))));
    const SystemOutcome outcome
        = runCalls({QStringLiteral("readRegistryValue=InstallationDirectory")});
    QCOMPARE(outcome.results, QStringList{QString()});
    QCOMPARE(outcome.printed.size(), 1);
    QVERIFY2(outcome.printed.first().startsWith(QLatin1String("RegQueryValueEx: ")),
             qPrintable(outcome.printed.first()));
}

void TestRegistry::aKeyPathThatDoesNotFitIsPrintedAsNotOpened()
{
    const QString longest(511, QLatin1Char('k'));
    const SystemOutcome outcome = runCalls({QStringLiteral("readRegistryValue=Name|") + longest,
                                            QStringLiteral("readRegistryValue=Name|k") + longest});
    QCOMPARE(outcome.results, (QStringList{QString(), QString()}));
    QCOMPARE(outcome.printed.size(), 2);
    const QString tooLong = onWindows() ? QStringLiteral("206") : QStringLiteral("36");
    const QString line = QStringLiteral("RegOpenKeyEx: %1: %2: ");
    // A key path of the greatest length is passed to the system, whose error differs between
    // systems.
    QVERIFY(outcome.printed.first().startsWith(QStringLiteral("RegOpenKeyEx: k")));
    QVERIFY(!outcome.printed.first().startsWith(line.arg(longest, tooLong)));
    const QString expected = line.arg(QLatin1Char('k') + longest, tooLong);
    QVERIFY2(outcome.printed.last().startsWith(expected), qPrintable(outcome.printed.last()));
}

void TestRegistry::aValueThatDoesNotFitCountsAsMissing()
{
    QFETCH(int, size);
    QFETCH(bool, isThere);

    const QString value(size, QLatin1Char('x'));
    QVERIFY(writeSetting(productKey(), installationDirectory(), value));
    QCOMPARE(read(installationDirectory()), isThere ? value : QString());
}

void TestRegistry::aKeyPathCannotLeaveTheSettingsFolder_data()
{
    QTest::addColumn<QString>("keyPath");

    QTest::newRow("folders in a part")
        << QStringLiteral("SOFTWARE\\Vantorel/../Vantorel\\VORN\\24.0");
    QTest::newRow("this folder") << QStringLiteral("SOFTWARE\\.\\Around\\24.0");
    QTest::newRow("the folder above") << QStringLiteral("SOFTWARE\\..\\Around\\24.0");
    QTest::newRow("an empty part") << QStringLiteral("SOFTWARE\\\\Around\\24.0");
}

void TestRegistry::aKeyPathCannotLeaveTheSettingsFolder()
{
    QFETCH(QString, keyPath);

    const QString name = QStringLiteral("Name");
    QVERIFY(writeSetting(QStringLiteral("SOFTWARE\\Vantorel\\VORN24.0"), name,
                         QStringLiteral("value")));
    // Files that such paths would lead to, were they paths of files.
    const QDir folder(settings_.path());
    for (const char *around : {"Around24.0.conf", "../Around24.0.conf"})
        QVERIFY(writeFile(folder.filePath(QString::fromLatin1(around)), "Name=around\n"));
    const SystemOutcome outcome
        = runCalls({QStringLiteral("readRegistryValue=Name|SOFTWARE\\Vantorel\\VORN\\24.0"),
                    QStringLiteral("readRegistryValue=Name|") + keyPath});
    QVERIFY(QFile::remove(folder.filePath(QStringLiteral("../Around24.0.conf"))));
    QCOMPARE(outcome.results, (QStringList{QStringLiteral("value"), QString()}));
    QCOMPARE(outcome.printed.size(), 1);
}

void TestRegistry::everyFolderOfTheSettingsIsSearched()
{
    if (onWindows())
        QSKIP("The registry is one store; only settings files lie in several folders");
    QTemporaryDir first;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_DIRS"),
                       first.path() + QLatin1Char(':') + settings_.path());
    const SystemOutcome outcome
        = runSystemCalls(BuildPaths::helperProgram(), QStringLiteral("system"),
                         {QStringLiteral("readRegistryValue=InstallationDirectory")}, environment);
    QCOMPARE(outcome.results, QStringList{QStringLiteral("product")});
}

// 2 is the code of what cannot be found on either system. The message is the system's own.
void TestRegistry::aMissingKeyIsPrinted()
{
    QVERIFY(removeSettings(maker() + QStringLiteral("\\VORN")));
    const SystemOutcome outcome
        = runCalls({QStringLiteral("readRegistryValue=InstallationDirectory|"
                                   "SOFTWARE\\Vantorel\\Missing\\24.0"),
                    QStringLiteral("readWideInstallationFolder"),
                    QStringLiteral("readNarrowInstallationFolder")});
    QCOMPARE(outcome.results,
             (QStringList{QString(), QStringLiteral("false"), QStringLiteral("false")}));
    QCOMPARE(outcome.printed.size(), 3);
    const QString missing = QStringLiteral("RegOpenKeyEx: SOFTWARE\\Vantorel\\Missing24.0: 2: ");
    QVERIFY2(outcome.printed.first().startsWith(missing), qPrintable(outcome.printed.first()));
    QVERIFY(outcome.printed.first().size() > missing.size());
}

void TestRegistry::aMissingReleaseIsPrintedUnderItsOwnName()
{
    QVERIFY(writeSetting(QStringLiteral("SOFTWARE\\Vantorel\\Other\\23.0"), QStringLiteral("Name"),
                         QStringLiteral("other")));
    const SystemOutcome outcome
        = runCalls({QStringLiteral("readRegistryValue=Name|SOFTWARE\\Vantorel\\Other\\24.x")});
    QCOMPARE(outcome.results, QStringList{QString()});
    QCOMPARE(outcome.printed.size(), 1);
    QVERIFY2(outcome.printed.first().startsWith(
                 QLatin1String("RegOpenKeyEx: SOFTWARE\\Vantorel\\Other\\24.x: 2: ")),
             qPrintable(outcome.printed.first()));
}

void TestRegistry::aMissingValueIsPrinted()
{
    const SystemOutcome outcome = runCalls({QStringLiteral("readRegistryValue=Missing")});
    QCOMPARE(outcome.results, QStringList{QString()});
    QCOMPARE(outcome.printed.size(), 1);
    const QString missing = QStringLiteral("RegQueryValueEx: 2 ");
    QVERIFY2(outcome.printed.first().startsWith(missing), qPrintable(outcome.printed.first()));
    QVERIFY(outcome.printed.first().size() > missing.size());
}

void TestRegistry::theMessageOfAMissingValueIsThatOfTheLastError()
{
    if (!onWindows())
        QSKIP("Only Windows keeps a last error beside the result of the query");
    const SystemOutcome outcome = runCalls(
        {QStringLiteral("setLastError=1234"), QStringLiteral("readRegistryValue=Missing")});
    const QString message = messageOf(1234);
    QVERIFY(!message.isEmpty());
    QVERIFY(message != messageOf(2));
    QCOMPARE(outcome.results, QStringList{QString()});
    QCOMPARE(outcome.printed.size(), 1);
    QCOMPARE(outcome.printed.first().trimmed(), QStringLiteral("RegQueryValueEx: 2 ") + message);
}

void TestRegistry::aValueThatIsReadPrintsNothing()
{
    QVERIFY(writeSetting(productKey(), QStringLiteral("Empty"), QStringLiteral("")));
    const SystemOutcome outcome
        = runCalls({QStringLiteral("readRegistryValue=InstallationDirectory"),
                    QStringLiteral("readRegistryValue=Empty")});
    QCOMPARE(outcome.results, (QStringList{QStringLiteral("product"), QString()}));
    QCOMPARE(outcome.printed, QStringList());
}

void TestRegistry::linesArePrintedAfterWideText()
{
    const SystemOutcome outcome
        = runCalls({QStringLiteral("printWide=wide"), QStringLiteral("readRegistryValue=Missing"),
                    QStringLiteral("printWide=wide again")});
    QCOMPARE(outcome.printed.size(), 3);
    QCOMPARE(outcome.printed.at(0), QStringLiteral("wide"));
    QVERIFY(outcome.printed.at(1).startsWith(QLatin1String("RegQueryValueEx: 2 ")));
    QCOMPARE(outcome.printed.at(2), QStringLiteral("wide again"));
}

void TestRegistry::theInstallationFolderIsRead()
{
    ValueBuffer wide;
    QVERIFY(Registry::readProductInstallationFolder(wide.data(), nullptr));
    QCOMPARE(wide.text(), QStringLiteral("product"));
    NarrowBuffer narrow;
    QVERIFY(Registry::readProductInstallationFolder(narrow.data(), nullptr));
    QCOMPARE(narrow.text(), QStringLiteral("product"));
}

void TestRegistry::theInstallationFolderOfAnotherKeyIsRead()
{
    QVERIFY(writeSetting(QStringLiteral("SOFTWARE\\Vantorel\\Other\\24.7"), installationDirectory(),
                         QStringLiteral("other")));
    const wchar_t *key = L"SOFTWARE\\Vantorel\\Other\\24.x";
    ValueBuffer wide;
    QVERIFY(Registry::readProductInstallationFolder(wide.data(), key));
    QCOMPARE(wide.text(), QStringLiteral("other"));
    NarrowBuffer narrow;
    QVERIFY(Registry::readProductInstallationFolder(narrow.data(), key));
    QCOMPARE(narrow.text(), QStringLiteral("other"));
}

void TestRegistry::aMissingInstallationFolderIsFalseAndEmpty()
{
    const wchar_t *key = L"SOFTWARE\\Vantorel\\Missing\\24.0";
    ValueBuffer wide;
    QVERIFY(!Registry::readProductInstallationFolder(wide.data(), key));
    QCOMPARE(wide.text(), QString());
    NarrowBuffer narrow;
    QVERIFY(!Registry::readProductInstallationFolder(narrow.data(), key));
    QCOMPARE(narrow.text(), QString());
}

void TestRegistry::anEmptyInstallationFolderIsFalse()
{
    QVERIFY(writeSetting(productKey(), installationDirectory(), QStringLiteral("")));
    ValueBuffer wide;
    QVERIFY(!Registry::readProductInstallationFolder(wide.data(), nullptr));
    QCOMPARE(wide.text(), QString());
    NarrowBuffer narrow;
    QVERIFY(!Registry::readProductInstallationFolder(narrow.data(), nullptr));
    QCOMPARE(narrow.text(), QString());
}

void TestRegistry::theNarrowInstallationFolderIsLatin1()
{
    const QString folder = QString::fromUtf8("C:\\Gr\xC3\xB6\xC3\x9F"
                                             "e \xE2\x82\xAC");
    QVERIFY(writeSetting(productKey(), installationDirectory(), folder));
    NarrowBuffer narrow;
    QVERIFY(Registry::readProductInstallationFolder(narrow.data(), nullptr));
    QCOMPARE(QByteArray(narrow.data()),
             QByteArray("C:\\Gr\xF6\xDF"
                        "e ?"));
    QVERIFY(narrow.isIntact());
}

void TestRegistry::aNarrowInstallationFolderThatDoesNotFitIsFalse()
{
    const QString longest(NarrowSize - 1, QLatin1Char('x'));
    QVERIFY(writeSetting(productKey(), installationDirectory(), longest));
    NarrowBuffer fits;
    QVERIFY(Registry::readProductInstallationFolder(fits.data(), nullptr));
    QCOMPARE(fits.text(), longest);
    QVERIFY(fits.isIntact());

    QVERIFY(writeSetting(productKey(), installationDirectory(), longest + QLatin1Char('x')));
    NarrowBuffer overflows;
    QVERIFY(!Registry::readProductInstallationFolder(overflows.data(), nullptr));
    QCOMPARE(overflows.text(), QString());
    QVERIFY(overflows.isIntact());
    ValueBuffer wide;
    QVERIFY(Registry::readProductInstallationFolder(wide.data(), nullptr));
}

void TestRegistry::noBufferForTheInstallationFolderIsFalse()
{
    QVERIFY(!Registry::readProductInstallationFolder(static_cast<wchar_t *>(nullptr), nullptr));
    QVERIFY(!Registry::readProductInstallationFolder(static_cast<char *>(nullptr), nullptr));
}

void TestRegistry::theTranslatorsLieBelowTheDataOfAllUsers()
{
    const QString base = QDir::toNativeSeparators(QStringLiteral("/Pro gram/Data"));
    qputenv("AllUsersProfile", base.toLatin1());
    QCOMPARE(readTranslatorsFolder(), translators({}, base));
    QCOMPARE(readServerFolder(), translators({QStringLiteral("VORN_HLXServer")}, base));
    QCOMPARE(readServerProgram(),
             translators({QStringLiteral("VORN_HLXServer"), QStringLiteral("VORN_HLXServer.exe")},
                         base));
}

void TestRegistry::withoutTheVariableTheFoldersBeginWithASeparator()
{
    qunsetenv("AllUsersProfile");
    QCOMPARE(readTranslatorsFolder(), translators({}, QString()));
    QCOMPARE(readServerFolder(), translators({QStringLiteral("VORN_HLXServer")}, QString()));
    QCOMPARE(readServerProgram(),
             translators({QStringLiteral("VORN_HLXServer"), QStringLiteral("VORN_HLXServer.exe")},
                         QString()));
}

void TestRegistry::theServerProgramHasNativeSeparators()
{
    const QString base = QStringLiteral("C:/Data");
    qputenv("AllUsersProfile", base.toLatin1());
    QCOMPARE(readServerFolder(), translators({QStringLiteral("VORN_HLXServer")}, base));
    QCOMPARE(readServerProgram(),
             QDir::toNativeSeparators(translators(
                 {QStringLiteral("VORN_HLXServer"), QStringLiteral("VORN_HLXServer.exe")}, base)));
}

void TestRegistry::aFolderThatDoesNotFitIsEmpty_data()
{
    QTest::addColumn<int>("baseSize");

    const QStringList server{QStringLiteral("VORN_HLXServer")};
    const QStringList program{QStringLiteral("VORN_HLXServer"),
                              QStringLiteral("VORN_HLXServer.exe")};
    for (const QStringList &lastParts : {QStringList(), server, program}) {
        const int longest = FolderSize - 1 - translators(lastParts, QString()).size();
        const int count = lastParts.size();
        QTest::addRow("%d parts fit", count) << longest;
        QTest::addRow("%d parts do not fit", count) << longest + 1;
    }
    QTest::newRow("the variable just fits") << FolderSize - 1;
    QTest::newRow("the variable does not fit") << FolderSize;
    QTest::newRow("the variable is much too long") << 3000;
}

void TestRegistry::aFolderThatDoesNotFitIsEmpty()
{
    QFETCH(int, baseSize);

    qputenv("AllUsersProfile", QByteArray(baseSize, 'x'));
    // A variable that cannot be read is one that is not there.
    const QString base(baseSize < FolderSize ? baseSize : 0, QLatin1Char('x'));
    const auto fitting = [&base](const QStringList &lastParts) {
        const QString folder = translators(lastParts, base);
        return folder.size() < FolderSize ? folder : QString();
    };
    QCOMPARE(readTranslatorsFolder(), fitting({}));
    QCOMPARE(readServerFolder(), fitting({QStringLiteral("VORN_HLXServer")}));
    QCOMPARE(readServerProgram(),
             fitting({QStringLiteral("VORN_HLXServer"), QStringLiteral("VORN_HLXServer.exe")}));
}

void TestRegistry::noBufferForAFolderDoesNothing()
{
    Registry::readOrlithTranslatorsFolder(nullptr);
    Registry::readOrlith_HLXServerFolder(nullptr);
    Registry::getOrlith_HLXServer_exe(nullptr);
}

QTEST_GUILESS_MAIN(TestRegistry)

#include "tst_registry.moc"
