// Which file holds the machine-wide settings, and how its text is read and changed. Every call runs
// in a fresh process: Qt works the folders out once.

#include "BuildPaths.h"
#include "FileSizeLimit.h"
#include "OrdinaryUser.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/System.h>

#include <QtCore/QSettings>
#include <QtTest/QtTest>

#include <sys/stat.h>

namespace {

const QString ReadDirectory = QStringLiteral("readRegistryValue=InstallationDirectory");

QString setLocale(const char *locale)
{
    return QStringLiteral("setLocale=") + QString::fromLatin1(locale);
}

// The permission bits of a file or folder.
unsigned int modeOf(const QString &name)
{
    struct stat status = {};
    return stat(QFile::encodeName(name).constData(), &status) == 0 ? status.st_mode & 0777U : 0U;
}

} // namespace

class TestSettingsFiles : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void aTextIsUtf8();
    void aTextIsReadAsItIsWritten_data();
    void aTextIsReadAsItIsWritten();
    void aLocaleWithACommaIsOneText();
    void theFileOfTheOrganisationDoesNotCount();
    void theFileOfTheOrganisationIsNotWritten();
    void theFirstFileThatExistsCounts();
    void aFileThatExistsHidesTheOnesAfterIt();
    void aFolderSetForQtReplacesTheOthers();
    void aListedFolderSetForQtGoesFirst();
    void aChangeGoesToTheFileThatIsRead();
    void aChangeWithoutAFileMakesTheFirst();
    void aChangeLeavesTheRestOfTheFileAsItIs();
    void aChangeIsReadByQt();
    void aDamagedFileLosesNothing();
    void aFileThatDoesNotFitOnTheDiskLosesNothing();
    void aFileOfMoreThanAMebibyteIsNotRead();
    void aNewFileCanBeReadByEveryUser();
    void anExistingFolderKeepsItsPermissions();
    void aLinkedFileStaysALink();

private:
    QString folder(const char *name) const { return path(QString::fromLatin1(name)); }
    QString file(const char *name) const
    {
        return folder(name) + QStringLiteral("/Vantorel/VORN.conf");
    }
    bool writeSettings(const QString &fileName, const QByteArray &content) const
    {
        return QDir().mkpath(QFileInfo(fileName).path()) && writeFile(fileName, content);
    }
    SystemOutcome run(const QStringList &calls) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_DIRS"),
                           folder("first") + QLatin1Char(':') + folder("second"));
        return runSystemCalls(BuildPaths::helperProgram(), QStringLiteral("system"), calls,
                              environment);
    }
    QString installationDirectory() const { return run({ReadDirectory}).results.value(0); }
};

void TestSettingsFiles::aTextIsUtf8()
{
    QVERIFY(writeSettings(
        file("first"), "[24.0]\nInstallationDirectory=/opt/Tr\xC3\xA4ger\nLocale=\xE6\x97\xA5\n"));
    QCOMPARE(
        run({ReadDirectory, QStringLiteral("getLocale")}).results,
        (QStringList{QString::fromUtf8("/opt/Tr\xC3\xA4ger"), QString::fromUtf8("\xE6\x97\xA5")}));
}

void TestSettingsFiles::aTextIsReadAsItIsWritten_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QString>("text");

    QTest::newRow("comma") << QByteArray("/opt/a,b") << QStringLiteral("/opt/a,b");
    QTest::newRow("blanks around commas")
        << QByteArray("/opt/a , b,  c") << QStringLiteral("/opt/a , b,  c");
    QTest::newRow("quoted") << QByteArray("\"/opt/a,b \"") << QStringLiteral("/opt/a,b ");
    QTest::newRow("escape") << QByteArray("/opt/Tr\\xe4ger")
                            << QString::fromUtf8("/opt/Tr\xC3\xA4ger");
    QTest::newRow("carriage return") << QByteArray("/opt/a,b\r") << QStringLiteral("/opt/a,b");
}

void TestSettingsFiles::aTextIsReadAsItIsWritten()
{
    QFETCH(QByteArray, written);
    QFETCH(QString, text);

    QVERIFY(writeSettings(file("first"),
                          "[24.0]\nInstallationDirectory=" + written + "\nLocale=en-US\n"));
    QCOMPARE(installationDirectory(), text);
}

void TestSettingsFiles::aLocaleWithACommaIsOneText()
{
    QVERIFY(writeSettings(file("first"), "[24.0]\nLocale=de-DE, fr-FR\n"));
    QCOMPARE(run({QStringLiteral("getLocale")}).results,
             QStringList{QStringLiteral("de-DE, fr-FR")});
}

void TestSettingsFiles::theFileOfTheOrganisationDoesNotCount()
{
    QVERIFY(writeSettings(folder("first") + QStringLiteral("/Vantorel.conf"),
                          "[24.0]\nInstallationDirectory=/organisation\nLocale=de-DE\n"));
    const SystemOutcome outcome = run({ReadDirectory, QStringLiteral("getLocale"),
                                       QStringLiteral("readRegistryValue=InstallationDirectory|"
                                                      "SOFTWARE\\Vantorel\\VORN\\24.x")});
    QCOMPARE(outcome.results, (QStringList{QString(), QStringLiteral("en-US"), QString()}));
    QCOMPARE(outcome.printed.size(), 2);
    QVERIFY(outcome.printed.first().startsWith(QLatin1String("RegOpenKeyEx: ")));
}

void TestSettingsFiles::theFileOfTheOrganisationIsNotWritten()
{
    const QString organisation = folder("first") + QStringLiteral("/Vantorel.conf");
    const QByteArray content = "[24.0]\nLocale=de-DE\n";
    QVERIFY(writeSettings(organisation, content));
    QCOMPARE(run({setLocale("it-IT"), QStringLiteral("getLocale")}).results,
             QStringList{QStringLiteral("it-IT")});
    QCOMPARE(contentOf(organisation), content);
}

void TestSettingsFiles::theFirstFileThatExistsCounts()
{
    QVERIFY(writeSettings(file("second"), "[24.0]\nInstallationDirectory=/second\n"));
    QCOMPARE(installationDirectory(), QStringLiteral("/second"));
    QVERIFY(writeSettings(file("first"), "[24.0]\nInstallationDirectory=/first\n"));
    QCOMPARE(installationDirectory(), QStringLiteral("/first"));
}

void TestSettingsFiles::aFileThatExistsHidesTheOnesAfterIt()
{
    QVERIFY(writeSettings(file("first"), "[24.0]\nLocale=it-IT\n"));
    QVERIFY(writeSettings(file("second"), "[24.0]\nInstallationDirectory=/second\n"));
    QCOMPARE(installationDirectory(), QString());
}

void TestSettingsFiles::aFolderSetForQtReplacesTheOthers()
{
    QVERIFY(writeSettings(file("first"), "[24.0]\nLocale=it-IT\n"));
    const auto localeAfter = [this](const char *newLocale) {
        return inChildProcess([&] {
            qputenv("XDG_CONFIG_DIRS", QFile::encodeName(folder("first")));
            QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, folder("set"));
            if (*newLocale)
                Vorn::Util::System::setLocale(QString::fromLatin1(newLocale));
            return Vorn::Util::System::getLocale().toLatin1();
        });
    };
    QCOMPARE(localeAfter(""), QByteArray("en-US"));
    QCOMPARE(localeAfter("de-DE"), QByteArray("de-DE"));
    QCOMPARE(localeAfter(""), QByteArray("de-DE"));
    QCOMPARE(contentOf(file("set")), QByteArray("[24.0]\nLocale=de-DE\n"));
    QCOMPARE(contentOf(file("first")), QByteArray("[24.0]\nLocale=it-IT\n"));
}

// The folder that is set is also in XDG_CONFIG_DIRS, but not the first one.
void TestSettingsFiles::aListedFolderSetForQtGoesFirst()
{
    QVERIFY(writeSettings(file("first"), "[24.0]\nLocale=it-IT\n"));
    const auto locale = [this] {
        return inChildProcess([this] {
            qputenv("XDG_CONFIG_DIRS",
                    QFile::encodeName(folder("first") + QLatin1Char(':') + folder("second")));
            QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, folder("second"));
            return Vorn::Util::System::getLocale().toLatin1();
        });
    };
    QCOMPARE(locale(), QByteArray("it-IT")); // the folder has no such file
    QVERIFY(writeSettings(file("second"), "[24.0]\nLocale=de-DE\n"));
    QCOMPARE(locale(), QByteArray("de-DE"));
}

void TestSettingsFiles::aChangeGoesToTheFileThatIsRead()
{
    QVERIFY(writeSettings(file("second"), "[24.0]\nLocale=de-DE\n"));
    QCOMPARE(run({setLocale("it-IT"), QStringLiteral("getLocale")}).results,
             QStringList{QStringLiteral("it-IT")});
    QCOMPARE(contentOf(file("second")), QByteArray("[24.0]\nLocale=it-IT\n"));
    QVERIFY(!QFileInfo::exists(file("first")));
}

void TestSettingsFiles::aChangeWithoutAFileMakesTheFirst()
{
    QCOMPARE(run({setLocale("it-IT"), QStringLiteral("getLocale")}).results,
             QStringList{QStringLiteral("it-IT")});
    QCOMPARE(contentOf(file("first")), QByteArray("[24.0]\nLocale=it-IT\n"));
    QVERIFY(!QFileInfo::exists(file("second")));
    QCOMPARE(entriesOf(QFileInfo(file("first")).path()), QStringList{QStringLiteral("VORN.conf")});
}

void TestSettingsFiles::aChangeLeavesTheRestOfTheFileAsItIs()
{
    const QByteArray before = "; by hand\r\n[Other]\r\nList=a,b\r\n"
                              "[24.0]\r\nInstallationDirectory=/opt/Tr\xC3\xA4ger, b\r\nLocale=";
    const QByteArray after = " ; a comment\r\nRaw=\xFF\xFE\r\n[More]\r\nLocale=xx\r\n";
    QVERIFY(writeSettings(file("first"), before + "de-DE" + after));
    run({setLocale("it-IT")});
    QCOMPARE(contentOf(file("first")), before + "it-IT" + after.mid(1));
    QCOMPARE(installationDirectory(), QString::fromUtf8("/opt/Tr\xC3\xA4ger, b"));
}

// Other programs read the settings with QSettings, and without a codec.
void TestSettingsFiles::aChangeIsReadByQt()
{
    const QString locale = QString::fromUtf8("a,b;c\"d\" Tr\xC3\xA4ger \xE6\x97\xA5\\");
    run({QStringLiteral("setLocale=") + locale});
    QSettings settings(file("first"), QSettings::NativeFormat);
    QCOMPARE(settings.value(QStringLiteral("24.0/Locale")).toString(), locale);
}

// A quotation without an end goes on to the end of the file: whatever is added there becomes part
// of it.
void TestSettingsFiles::aDamagedFileLosesNothing()
{
    const QByteArray open = "InstallationDirectory=\"/opt/a\n";
    QVERIFY(writeSettings(file("first"), "[24.0]\n" + open));
    QCOMPARE(run({setLocale("it-IT"), QStringLiteral("getLocale")}).results,
             QStringList{QStringLiteral("it-IT")});
    QCOMPARE(contentOf(file("first")), QByteArray("[24.0]\nLocale=it-IT\n" + open));

    QVERIFY(writeSettings(file("first"), open));
    QCOMPARE(run({setLocale("it-IT"), QStringLiteral("getLocale")}).results,
             QStringList{QStringLiteral("en-US")});
    QCOMPARE(contentOf(file("first")), open);
}

void TestSettingsFiles::aFileThatDoesNotFitOnTheDiskLosesNothing()
{
    const QByteArray before = "[24.0]\nInstallationDirectory=" + QByteArray(2000, 'x') + "\n";
    QVERIFY(writeSettings(file("first"), before));
    {
        const FileSizeLimit limit(before.size() / 2);
        QVERIFY(limit.isSet());
        run({setLocale("de-DE")});
    }
    QCOMPARE(contentOf(file("first")), before);
    run({setLocale("de-DE")});
    QVERIFY(contentOf(file("first")).contains("de-DE"));
}

void TestSettingsFiles::aFileOfMoreThanAMebibyteIsNotRead()
{
    const QByteArray settings = "[24.0]\nInstallationDirectory=/opt/a\n;";
    const int rest = 1024 * 1024 - settings.size();
    QVERIFY(writeSettings(file("first"), settings + QByteArray(rest, 'x')));
    QCOMPARE(installationDirectory(), QStringLiteral("/opt/a"));
    const QByteArray tooLong = settings + QByteArray(rest + 1, 'x');
    QVERIFY(writeSettings(file("first"), tooLong));
    QCOMPARE(run({ReadDirectory, setLocale("it-IT")}).results, QStringList{QString()});
    QCOMPARE(contentOf(file("first")), tooLong);
}

void TestSettingsFiles::aNewFileCanBeReadByEveryUser()
{
    const mode_t before = umask(077);
    run({setLocale("it-IT")});
    umask(before);
    QCOMPARE(modeOf(file("first")), 0644U);
    // The folders that were made on the way to it.
    QCOMPARE(modeOf(folder("first/Vantorel")), 0755U);
    QCOMPARE(modeOf(folder("first")), 0755U);
}

void TestSettingsFiles::anExistingFolderKeepsItsPermissions()
{
    QVERIFY(QDir().mkdir(folder("first")));
    QVERIFY(QFile::setPermissions(folder("first"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    run({setLocale("it-IT")});
    QCOMPARE(modeOf(folder("first")), 0700U);
    QVERIFY(QFileInfo::exists(file("first")));
}

void TestSettingsFiles::aLinkedFileStaysALink()
{
    QVERIFY(writeSettings(folder("target"), "[24.0]\nLocale=de-DE\n"));
    QVERIFY(QDir().mkpath(QFileInfo(file("first")).path()));
    QVERIFY(QFile::link(folder("target"), file("first")));
    run({setLocale("it-IT")});
    QCOMPARE(QFileInfo(file("first")).symLinkTarget(), folder("target"));
    QCOMPARE(contentOf(folder("target")), QByteArray("[24.0]\nLocale=it-IT\n"));
}

QTEST_GUILESS_MAIN(TestSettingsFiles)

#include "tst_settingsfiles.moc"
