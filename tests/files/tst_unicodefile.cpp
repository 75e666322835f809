// The names of a UnicodeFile and its copies.

#include "TestFiles.h"
#include "TestWithUnicodeFile.h"

#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <type_traits>

using namespace Vorn::Util;

static_assert(std::is_copy_constructible<UnicodeFile>::value
                  && std::is_copy_assignable<UnicodeFile>::value,
              "an object is copyable");

class TestUnicodeFile : public TestWithUnicodeFile
{
    Q_OBJECT

private Q_SLOTS:
    void aTextIsUnicodeWhenACharacterIsOutsideAscii_data();
    void aTextIsUnicodeWhenACharacterIsOutsideAscii();
    void everyAsciiCharacterIsPlain();
    void everyOtherCharacterIsUnicode();

    void aPlainFileStaysWhereItIs();
    void theNamesAreThoseOfTheFile_data();
    void theNamesAreThoseOfTheFile();
    void aUnicodeNameIsReplacedInItsOwnFolder();
    void theSuffixIsKept_data();
    void theSuffixIsKept();
    void everyPlainNameIsUnique();
    void aUnicodeFolderIsReplacedByTheTemporaryFolder_data();
    void aUnicodeFolderIsReplacedByTheTemporaryFolder();
    void aUnicodeFolderAndNameAreBothReplaced();
    void aRelativePathIsThatOfTheCurrentFolder_data();
    void aRelativePathIsThatOfTheCurrentFolder();
    void withoutAPathTheFolderIsTheCurrentOne();
    void theCurrentFolderIsTheSameAfterwards();

    void aCopyHasTheSameNames();
    void theFirstCopyDestroyedEndsThePlainName();
    void anAssignmentCopiesTheNames();
    void aCopyKeepsTheError();
};

void TestUnicodeFile::aTextIsUnicodeWhenACharacterIsOutsideAscii_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isUnicode");
    QTest::newRow("null") << QString() << false;
    QTest::newRow("empty") << QStringLiteral("") << false;
    QTest::newRow("abc") << QStringLiteral("abc") << false;
    QTest::newRow("a question mark") << QStringLiteral("?") << false;
    QTest::newRow("an accented letter") << QStringLiteral("\u00e9") << true;
    QTest::newRow("among others") << QStringLiteral("caf\u00e9 au lait") << true;
    QTest::newRow("composed of two") << QStringLiteral("e\u0301") << true;
    QTest::newRow("another script") << QStringLiteral("\u65e5\u672c") << true;
    QTest::newRow("beyond 16 bits") << QStringLiteral("\U0001F600") << true;
    QTest::newRow("a byte order mark") << QStringLiteral("\uFEFFabc") << true;
    QTest::newRow("after a zero") << QStringLiteral("abc\0\u00e9") << true;
}

void TestUnicodeFile::aTextIsUnicodeWhenACharacterIsOutsideAscii()
{
    QFETCH(QString, text);
    QFETCH(bool, isUnicode);
    QCOMPARE(UnicodeFile::isUnicode(text), isUnicode);
}

void TestUnicodeFile::everyAsciiCharacterIsPlain()
{
    QString all;
    for (ushort code = 0; code < 0x80; ++code) {
        QVERIFY2(!UnicodeFile::isUnicode(QString(QChar(code))), qPrintable(QString::number(code)));
        all += QChar(code);
    }
    QVERIFY(!UnicodeFile::isUnicode(all));
}

void TestUnicodeFile::everyOtherCharacterIsUnicode()
{
    for (ushort code = 0x80; code < 0xFFFF; ++code) {
        if (!QChar::isSurrogate(code))
            QVERIFY2(UnicodeFile::isUnicode(QString(QChar(code))),
                     qPrintable(QString::number(code)));
    }
}

void TestUnicodeFile::aPlainFileStaysWhereItIs()
{
    const QString own = create(QStringLiteral("beam.dat"));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QCOMPARE(file.error(), QString());
        QVERIFY(!file.isUnicode());
        QCOMPARE(file.asciiFilePath(), file.unicodeFilePath());
        QCOMPARE(file.asciiFilePath(), own);
        QCOMPARE(entriesOf(folder_->path()), QStringList{QStringLiteral("beam.dat")});
        QCOMPARE(contentOf(own), Content);
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{QStringLiteral("beam.dat")});
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::theNamesAreThoseOfTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("beam.dat");
    QTest::newRow("two suffixes") << QStringLiteral("beam.tar.gz");
    QTest::newRow("no suffix") << QStringLiteral("beam");
    QTest::newRow("a place marker") << QStringLiteral("%1 %2.dat");
    QTest::newRow("Unicode name") << unicodeName();
    QTest::newRow("Unicode name with a place marker") << QStringLiteral("\u00e4 %1 %2.dat");
    QTest::newRow("Unicode folder") << unicodeFolder() + QStringLiteral("/beam.dat");
    QTest::newRow("both") << unicodeFolder() + QLatin1Char('/') + unicodeName();
}

void TestUnicodeFile::theNamesAreThoseOfTheFile()
{
    QFETCH(QString, name);
    const QString own = create(name);
    const UnicodeFile file(own);
    QVERIFY(file.isOk());
    QCOMPARE(file.unicodePath(), QFileInfo(own).path());
    QCOMPARE(file.unicodeName(), QFileInfo(own).fileName());
    QCOMPARE(file.unicodeFilePath(), own);
    QCOMPARE(file.asciiFilePath(), file.asciiPath() + QLatin1Char('/') + file.asciiName());
    QCOMPARE(file.isUnicode(), !isPlain(name));
    QVERIFY(isPlain(file.asciiFilePath()));
    QCOMPARE(contentOf(file.asciiFilePath()), Content);
}

void TestUnicodeFile::aUnicodeNameIsReplacedInItsOwnFolder()
{
    const QString own = create(unicodeName());
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(file.isUnicode());
        QCOMPARE(file.asciiPath(), folder_->path());
        QCOMPARE(entriesOf(folder_->path()), QStringList{file.asciiName()});
        QVERIFY(isPlain(file.asciiName()));
        QVERIFY(!file.asciiName().contains(QLatin1Char('/')));
        QVERIFY(!file.asciiName().contains(QLatin1Char('\\')));
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::theSuffixIsKept_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("end");
    QTest::newRow("one") << QStringLiteral("\u00e4.dat") << QStringLiteral(".dat");
    QTest::newRow("the last of two") << QStringLiteral("\u00e4.tar.gz") << QStringLiteral(".gz");
    QTest::newRow("none") << QStringLiteral("\u00e4") << QStringLiteral(".");
    QTest::newRow("capitals") << QStringLiteral("\u00e4.DAT") << QStringLiteral(".DAT");
    QTest::newRow("blanks") << QStringLiteral("\u00e4.d t") << QStringLiteral(".d t");
}

void TestUnicodeFile::theSuffixIsKept()
{
    QFETCH(QString, name);
    QFETCH(QString, end);
    const QString own = create(name);
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY2(file.asciiName().endsWith(end), qPrintable(file.asciiName()));
        QVERIFY(!file.asciiName().endsWith(QLatin1String(".tar.gz")));
        QVERIFY(file.asciiName().size() > end.size());
        QVERIFY(!QFile::exists(own));
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{name});
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::everyPlainNameIsUnique()
{
    const QString first = create(QStringLiteral("\u00e4.dat"), "first");
    const QString second = create(QStringLiteral("\u00f6.dat"), "second");
    {
        const UnicodeFile firstFile(first);
        const UnicodeFile secondFile(second);
        QVERIFY(firstFile.asciiName() != secondFile.asciiName());
        QCOMPARE(contentOf(firstFile.asciiFilePath()), QByteArray("first"));
        QCOMPARE(contentOf(secondFile.asciiFilePath()), QByteArray("second"));
    }
    QCOMPARE(contentOf(first), QByteArray("first"));
    QCOMPARE(contentOf(second), QByteArray("second"));
}

void TestUnicodeFile::aUnicodeFolderIsReplacedByTheTemporaryFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("its own") << unicodeFolder();
    QTest::newRow("one above") << unicodeFolder() + QStringLiteral("/plain");
    QTest::newRow("another script") << QStringLiteral("plain/\u65e5\u672c");
}

void TestUnicodeFile::aUnicodeFolderIsReplacedByTheTemporaryFolder()
{
    QFETCH(QString, folder);
    const QString own = create(folder + QStringLiteral("/beam.dat"));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(file.isUnicode());
        QCOMPARE(file.asciiPath(), System::getTempDirPath());
        QCOMPARE(file.asciiName(), QStringLiteral("beam.dat"));
        QCOMPARE(entriesOf(temp_.path()), QStringList{QStringLiteral("beam.dat")});
        QCOMPARE(entriesOf(path(folder)), QStringList());
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
    }
    QCOMPARE(entriesOf(temp_.path()), QStringList());
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::aUnicodeFolderAndNameAreBothReplaced()
{
    const QString own = create(unicodeFolder() + QLatin1Char('/') + unicodeName());
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(file.isUnicode());
        QCOMPARE(file.asciiPath(), System::getTempDirPath());
        QVERIFY(isPlain(file.asciiName()));
        QVERIFY(file.asciiName().endsWith(QLatin1String(".dat")));
        QCOMPARE(entriesOf(temp_.path()), QStringList{file.asciiName()});
        QVERIFY(!QFile::exists(own));
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
    }
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::aRelativePathIsThatOfTheCurrentFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("beam.dat");
    QTest::newRow("Unicode name") << unicodeName();
    QTest::newRow("Unicode name in a folder") << QStringLiteral("plain/") + unicodeName();
    QTest::newRow("Unicode folder") << unicodeFolder() + QStringLiteral("/beam.dat");
}

void TestUnicodeFile::aRelativePathIsThatOfTheCurrentFolder()
{
    QFETCH(QString, name);
    create(name);
    QVERIFY(QDir::setCurrent(folder_->path()));
    const QString current = QDir::currentPath();
    bool good = false;
    {
        const UnicodeFile file(name);
        good = file.isOk() && file.unicodePath() == QFileInfo(name).path()
            && file.isUnicode() == !isPlain(name) && QFile::exists(name) == isPlain(name)
            && contentOf(file.asciiFilePath()) == Content && QDir::currentPath() == current;
    }
    const bool isBack = contentOf(name) == Content;
    QVERIFY(QDir::setCurrent(current_));
    QVERIFY(good);
    QVERIFY(isBack);
}

void TestUnicodeFile::withoutAPathTheFolderIsTheCurrentOne()
{
    const UnicodeFile file{QString()};
    QCOMPARE(file.unicodePath(), current_);
    QCOMPARE(file.unicodeName(), QString());
    QVERIFY(file.isOk());
}

void TestUnicodeFile::theCurrentFolderIsTheSameAfterwards()
{
    const QString own = create(unicodeFolder() + QLatin1Char('/') + unicodeName());
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QCOMPARE(QDir::currentPath(), current_);
    }
    QCOMPARE(QDir::currentPath(), current_);
}

void TestUnicodeFile::aCopyHasTheSameNames()
{
    const QString own = create(unicodeFolder() + QLatin1Char('/') + unicodeName());
    const UnicodeFile file(own);
    const UnicodeFile copy(file);
    QCOMPARE(copy.asciiFilePath(), file.asciiFilePath());
    QCOMPARE(copy.unicodeFilePath(), own);
    QVERIFY(copy.isUnicode());
    QVERIFY(copy.isOk());
    // Copying moves nothing.
    QCOMPARE(contentOf(file.asciiFilePath()), Content);
}

void TestUnicodeFile::theFirstCopyDestroyedEndsThePlainName()
{
    const QString own = create(unicodeName());
    {
        UnicodeFile file(own);
        {
            const UnicodeFile copy(file);
            QVERIFY(!QFile::exists(own));
        }
        QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
        QVERIFY(file.exists());
    }
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::anAssignmentCopiesTheNames()
{
    const QString own = create(QStringLiteral("\u00e4.dat"), "first");
    const QString other = create(QStringLiteral("\u00f6.dat"), "second");
    QString lost;
    {
        UnicodeFile file(own);
        const UnicodeFile source(other);
        lost = file.asciiFilePath();
        file = source;
        QCOMPARE(file.unicodeFilePath(), other);
        QCOMPARE(file.asciiFilePath(), source.asciiFilePath());
        // From now on nothing moves the file of the target.
        QCOMPARE(contentOf(lost), QByteArray("first"));
        QVERIFY(!QFile::exists(own));
    }
    QCOMPARE(contentOf(other), QByteArray("second"));
    QCOMPARE(contentOf(lost), QByteArray("first"));
    QVERIFY(!QFile::exists(own));
}

void TestUnicodeFile::aCopyKeepsTheError()
{
    const QString missing = path(QStringLiteral("missing"));
    const UnicodeFile file(missing + QLatin1Char('/') + unicodeName());
    const UnicodeFile copy(file);
    QVERIFY(!copy.isOk());
    QCOMPARE(copy.error(), QStringLiteral("Cannot set current path to ") + missing);
}

QTEST_GUILESS_MAIN(TestUnicodeFile)

#include "tst_unicodefile.moc"
