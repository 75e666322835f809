#include "SubstitutedDrive.h"
#include "TestSystem.h"

#include <Utility/System.h>

#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QString withOtherLetterCase(const QString &text)
{
    QString other;
    for (const QChar character : text)
        other += character.isUpper() ? character.toLower() : character.toUpper();
    return other;
}

} // namespace

class TestSystemPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindOfAPath_data();
    void kindOfAPath();
    void windowsFormOfAPath_data();
    void windowsFormOfAPath();
    void wslFormOfAPath_data();
    void wslFormOfAPath();
    void theFormsAreNoExactInverses();
    void anyCharactersMayFollowTheDrive();

    void universalPathOfAnyOtherPathIsThePath_data();
    void universalPathOfAnyOtherPathIsThePath();
    void universalPathOnASubstitutedDriveIsTheFolder_data();
    void universalPathOnASubstitutedDriveIsTheFolder();

    void namesOfTheLocalHost();
    void otherNamesAreNotTheLocalHost_data();
    void otherNamesAreNotTheLocalHost();
};

void TestSystemPaths::kindOfAPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isWsl");

    const auto row = [](const char *path, bool isWsl) {
        QTest::addRow("\"%s\"", path) << QString::fromLatin1(path) << isWsl;
    };
    row("/mnt/c/dir/file", true);
    row("/mnt", true);
    row("/mnt/", true);
    row("/mntdata", true);
    row("/mntdata/c/a", true);
    row("/mnt\\c", true);
    row("/MNT/c/a", false);
    row("/Mnt", false);
    row("/mn", false);
    row("mnt/c/a", false);
    row(" /mnt/c/a", false);
    row("\\mnt\\c", false);
    row("/home/mnt/c", false);
    row("C:\\dir\\file", false);
    row("C:/mnt/c", false);
    row("\\\\server\\share\\x", false);
    row("relative/dir", false);
    row("", false);
}

void TestSystemPaths::kindOfAPath()
{
    QFETCH(QString, path);
    QFETCH(bool, isWsl);

    QCOMPARE(System::isWslPath(path), isWsl);
    QCOMPARE(System::isWindowsPath(path), !isWsl);
}

void TestSystemPaths::windowsFormOfAPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *path, const char *expected) {
        QTest::addRow("\"%s\"", path) << QString::fromUtf8(path) << QString::fromUtf8(expected);
    };
    const auto unchanged = [&row](const char *path) { row(path, path); };
    row("/mnt/d/work/case1", "D:\\work\\case1");
    row("/mnt/c/", "C:\\");
    row("/mnt/a/x", "A:\\x");
    row("/mnt/z/x", "Z:\\x");
    row("/mnt/c/Gr\xC3\xB6\xC3\x9F"
        "e/%1 %2",
        "C:\\Gr\xC3\xB6\xC3\x9F"
        "e\\%1 %2");
    row("/mnt/c/a b//c/", "C:\\a b\\\\c\\");
    row("/mnt/c/a\\b/c", "C:\\a\\b\\c");
    // Every occurrence is replaced, also in a longer name, but only of this letter.
    row("/mnt/c/a/mnt/c/b", "C:\\aC:\\b");
    row("/mnt/c/a /mnt/c/b /mnt/d/e", "C:\\a C:\\b \\mnt\\d\\e");
    row("/mnt/c/mnt/case", "C:C:ase");
    row("/mnt/c/mnt/C/x", "C:\\mnt\\C\\x");
    row("/mnt/c/MNT/c/x", "C:\\MNT\\c\\x");
    unchanged("/mnt/C/a");
    unchanged("/mnt/c");
    unchanged("/mnt/cd/a");
    unchanged("/mnt/1/a");
    unchanged("/mnt//a");
    unchanged("/mnt/\xC3\xA4/a");
    unchanged("/mnt\\c\\a");
    unchanged("/mnt/c\\a");
    unchanged("/mnt/|/a");
    unchanged("/mnt");
    unchanged("/mntdata/c/a");
    unchanged("/MNT/c/a");
    unchanged("x/mnt/c/a");
    unchanged("/home/user");
    unchanged("C:/a/mnt/c/b");
    unchanged("relative/dir");
    unchanged("");
}

void TestSystemPaths::windowsFormOfAPath()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);

    QCOMPARE(System::toWindowsPath(path), expected);
}

void TestSystemPaths::wslFormOfAPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *path, const char *expected) {
        QTest::addRow("\"%s\"", path) << QString::fromUtf8(path) << QString::fromUtf8(expected);
    };
    const auto unchanged = [&row](const char *path) { row(path, path); };
    row("D:\\work\\case1", "/mnt/d/work/case1");
    row("C:\\Temp\\x", "/mnt/c/Temp/x");
    row("d:/x", "/mnt/d/x");
    row("c:", "/mnt/c");
    row("C:file", "/mnt/cfile");
    row("Z:\\", "/mnt/z/");
    row("C:\\a/b\\\\c", "/mnt/c/a/b//c");
    row("C:\\Gr\xC3\xB6\xC3\x9F"
        "e\\%1 %2",
        "/mnt/c/Gr\xC3\xB6\xC3\x9F"
        "e/%1 %2");
    // Installed job files begin with "|:".
    row("|:\\x", "/mnt/|/x");
    // Every occurrence is replaced, in the letter case of the first.
    row("C:\\a\\C:\\b", "/mnt/c/a//mnt/c/b");
    row("C:\\a C:\\b D:\\e", "/mnt/c/a /mnt/c/b D:/e");
    row("C:\\a c:\\b", "/mnt/c/a c:/b");
    row("c:\\a C:\\b", "/mnt/c/a C:/b");
    row("C:\\ABC:\\x", "/mnt/c/AB/mnt/c/x");
    unchanged("\\\\server\\share\\x");
    unchanged("\\\\server\\C:\\x");
    unchanged("relative\\dir");
    unchanged("1:\\x");
    unchanged("[:\\x");
    unchanged("\xC3\xA4:\\x");
    unchanged(" C:\\x");
    unchanged("CD:\\x");
    unchanged(":\\x");
    unchanged("C");
    unchanged("/mnt/c/C:\\x");
    unchanged("/mnt");
    unchanged("/home\\user");
    unchanged("");
}

void TestSystemPaths::wslFormOfAPath()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);

    QCOMPARE(System::toWslPath(path), expected);
}

void TestSystemPaths::theFormsAreNoExactInverses()
{
    const QString path = QStringLiteral("/mnt/d/work/case1");
    QCOMPARE(System::toWslPath(System::toWindowsPath(path)), path);
    const QString upperCase = QStringLiteral("/mnt/D/work");
    QCOMPARE(System::toWslPath(System::toWindowsPath(upperCase)), upperCase);
    QCOMPARE(System::toWindowsPath(System::toWslPath(QStringLiteral("d:\\work"))),
             QStringLiteral("D:\\work"));
}

// A file name on Windows can contain half of a surrogate pair.
void TestSystemPaths::anyCharactersMayFollowTheDrive()
{
    const QString name = QChar(0xD800) + QStringLiteral("\n.x");
    QCOMPARE(System::toWslPath(QStringLiteral("C:\\") + name), QStringLiteral("/mnt/c/") + name);
    QCOMPARE(System::toWindowsPath(QStringLiteral("/mnt/c/") + name),
             QStringLiteral("C:\\") + name);
}

void TestSystemPaths::universalPathOfAnyOtherPathIsThePath_data()
{
    QTest::addColumn<QString>("path");

    for (const char *path : {"C:\\a\\b", "c:/a/b", "C:", "c:relative", "\\\\server\\share\\x",
                             "relative/dir\\x", "/home/user", "/mnt/c/a", "?:\\x", "x", ""})
        QTest::addRow("\"%s\"", path) << QString::fromLatin1(path);
    QTest::newRow("longer than any path") << QString(5000, QLatin1Char('x'));
}

void TestSystemPaths::universalPathOfAnyOtherPathIsThePath()
{
    QFETCH(QString, path);

    QCOMPARE(System::getUniversalPath(path), path);
}

void TestSystemPaths::universalPathOnASubstitutedDriveIsTheFolder_data()
{
    QTest::addColumn<QString>("tail");

    QTest::newRow("file") << QStringLiteral("\\a\\b.txt");
    QTest::newRow("other separators") << QStringLiteral("/a/b.txt");
    QTest::newRow("relative") << QStringLiteral("b.txt");
    QTest::newRow("root") << QStringLiteral("\\");
    QTest::newRow("drive") << QString();
    QTest::newRow("longer than 256") << QStringLiteral("\\") + QString(300, QLatin1Char('x'));
}

void TestSystemPaths::universalPathOnASubstitutedDriveIsTheFolder()
{
    QFETCH(QString, tail);

    if (!onWindows())
        QSKIP("There are no drives on this system");
    const QTemporaryDir folder;
    const QString path = QDir::toNativeSeparators(folder.path());
    QString drive;
    {
        const SubstitutedDrive substituted(path);
        drive = substituted.name();
        QVERIFY(!drive.isEmpty());
        QCOMPARE(System::getUniversalPath(drive + tail), path + tail);
        QCOMPARE(System::getUniversalPath(drive.toLower() + tail), path + tail);
    }
    QCOMPARE(System::getUniversalPath(drive + tail), drive + tail);
}

void TestSystemPaths::namesOfTheLocalHost()
{
    QVERIFY(System::isLocalHost(QStringLiteral("localhost")));
    QVERIFY(System::isLocalHost(QStringLiteral("MyComputer")));
    QVERIFY(System::isLocalHost(System::getHostName()));
}

void TestSystemPaths::otherNamesAreNotTheLocalHost_data()
{
    QTest::addColumn<QString>("host");

    for (const char *host : {"LOCALHOST", "Localhost", "mycomputer", "MYCOMPUTER", "localhost.",
                             " localhost", "localhos", "127.0.0.1", "::1", "."})
        QTest::newRow(host) << QString::fromLatin1(host);
    QTest::newRow("empty") << QString();
    const QString own = System::getHostName();
    QTest::newRow("part of the own name") << own.chopped(1);
    QTest::newRow("longer than the own name") << own + QLatin1Char('x');
    QTest::newRow("own name in other letter case") << withOtherLetterCase(own);
}

void TestSystemPaths::otherNamesAreNotTheLocalHost()
{
    QFETCH(QString, host);

    if (host == System::getHostName())
        QSKIP("This machine has that very name, or one without letters");
    QVERIFY(!System::isLocalHost(host));
}

QTEST_GUILESS_MAIN(TestSystemPaths)

#include "tst_systempaths.moc"
