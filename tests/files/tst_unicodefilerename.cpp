// The moves of a file to its plain path and back.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithUnicodeFile.h"

#include <Utility/UnicodeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <filesystem>
#include <system_error>

using namespace Vorn::Util;

namespace {

bool makeHardLink(const QString &file, const QString &link)
{
    std::error_code error;
    std::filesystem::create_hard_link(std::filesystem::u8path(file.toStdString()),
                                      std::filesystem::u8path(link.toStdString()), error);
    return !error;
}

} // namespace

class TestUnicodeFileRename : public TestWithUnicodeFile
{
    Q_OBJECT

private Q_SLOTS:
    void aFileThatDoesNotExistYetIsNotMoved_data();
    void aFileThatDoesNotExistYetIsNotMoved();
    void aFileCreatedUnderItsPlainPathIsMovedToItsOwn_data();
    void aFileCreatedUnderItsPlainPathIsMovedToItsOwn();
    void aFileIsFoundUnderBothOfItsPaths();
    void anExistingFileAtThePlainPathIsOverwritten();
    void anExistingFileAtTheOwnPathIsOverwritten();
    void aFileThatIsItsOwnPlainFileStays();
    void aLinkToTheFileIsNeverMovedOverIt_data();
    void aLinkToTheFileIsNeverMovedOverIt();
    void aSecondNameOfTheFileIsNoObstacle();
    void aRelativeLinkComesBack();
    void theFileCanBeMovedToAndFro();
    void movingAFileThatIsNotThereIsASuccess();
    void movingAPlainFileIsASuccess();

    void aResultIsMovedAfterAFailedConstruction();
    void aResultIsMovedAfterAFailedMove_data();
    void aResultIsMovedAfterAFailedMove();
    void aFileThatTheObjectNeverMovedStaysAtThePlainPath();
    void anObstacleNeverTakesThePlaceOfTheFile_data();
    void anObstacleNeverTakesThePlaceOfTheFile();
    void aLinkAtThePlainPathIsReplaced_data();
    void aLinkAtThePlainPathIsReplaced();
};

void TestUnicodeFileRename::aFileThatDoesNotExistYetIsNotMoved_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("beam.dat");
    QTest::newRow("Unicode name") << unicodeName();
    QTest::newRow("Unicode folder") << unicodeFolder() + QStringLiteral("/beam.dat");
    QTest::newRow("both") << unicodeFolder() + QLatin1Char('/') + unicodeName();
}

void TestUnicodeFileRename::aFileThatDoesNotExistYetIsNotMoved()
{
    QFETCH(QString, name);
    const QString own = create(name);
    const QString folder = QFileInfo(own).path();
    QVERIFY(QFile::remove(own));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QCOMPARE(file.error(), QString());
        QVERIFY(!file.exists());
        QCOMPARE(entriesOf(folder), QStringList());
        QCOMPARE(entriesOf(temp_.path()), QStringList());
    }
    QCOMPARE(entriesOf(folder), QStringList());
}

void TestUnicodeFileRename::aFileCreatedUnderItsPlainPathIsMovedToItsOwn_data()
{
    aFileThatDoesNotExistYetIsNotMoved_data();
}

void TestUnicodeFileRename::aFileCreatedUnderItsPlainPathIsMovedToItsOwn()
{
    QFETCH(QString, name);
    const QString own = create(name);
    QVERIFY(QFile::remove(own));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(writeFile(file.asciiFilePath(), "created"));
        QCOMPARE(QFile::exists(own), isPlain(name));
    }
    QCOMPARE(contentOf(own), QByteArray("created"));
    QCOMPARE(entriesOf(QFileInfo(own).path()).size(), 1);
}

void TestUnicodeFileRename::aFileIsFoundUnderBothOfItsPaths()
{
    const QString own = create(unicodeName());
    UnicodeFile file(own);
    QVERIFY(file.exists()); // at the plain path
    QVERIFY(file.renameToUnicode());
    QVERIFY(file.exists()); // at its own
    QVERIFY(QFile::remove(own));
    QVERIFY(!file.exists());
    QVERIFY(writeFile(file.asciiFilePath(), Content));
    QVERIFY(file.exists());
}

void TestUnicodeFileRename::anExistingFileAtThePlainPathIsOverwritten()
{
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    QVERIFY(writeFile(temp_.filePath(QStringLiteral("beam.dat")), "another and longer content"));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
    }
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFileRename::anExistingFileAtTheOwnPathIsOverwritten()
{
    const QString own = create(unicodeName());
    {
        const UnicodeFile file(own);
        QVERIFY(writeFile(file.asciiFilePath(), "worked on"));
        QVERIFY(writeFile(own, "created meanwhile"));
    }
    QCOMPARE(contentOf(own), QByteArray("worked on"));
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
}

// Its folder is a link to the temporary folder: no file has to be replaced.
void TestUnicodeFileRename::aFileThatIsItsOwnPlainFileStays()
{
    if (onWindows())
        QSKIP("A link to a folder is a file here");
    QVERIFY(QFile::link(temp_.path(), path(unicodeFolder())));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(file.isUnicode());
        QCOMPARE(contentOf(own), Content);
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
        QVERIFY(file.renameToUnicode());
        QVERIFY(file.renameToAscii());
        QVERIFY(file.isOk());
    }
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(temp_.path()), QStringList{QStringLiteral("beam.dat")});
    QVERIFY(QFile::remove(own));
}

void TestUnicodeFileRename::aLinkToTheFileIsNeverMovedOverIt_data()
{
    QTest::addColumn<bool>("isLinkAtOwnPath");
    QTest::newRow("the own path is a link to the plain one") << true;
    QTest::newRow("the plain path is a link to the own one") << false;
}

void TestUnicodeFileRename::aLinkToTheFileIsNeverMovedOverIt()
{
    if (onWindows())
        QSKIP("A link is a file with a name of its own here");
    QFETCH(bool, isLinkAtOwnPath);
    const QString plain = temp_.filePath(QStringLiteral("beam.dat"));
    const QString own = path(unicodeFolder() + QStringLiteral("/beam.dat"));
    QVERIFY(QDir().mkdir(path(unicodeFolder())));
    const QString &real = isLinkAtOwnPath ? plain : own;
    const QString &link = isLinkAtOwnPath ? own : plain;
    QVERIFY(writeFile(real, Content));
    QVERIFY(QFile::link(real, link));
    {
        UnicodeFile file(own);
        QVERIFY(file.isOk());
        QCOMPARE(contentOf(plain), Content);
        QVERIFY(file.renameToUnicode());
        QVERIFY(file.renameToAscii());
        QVERIFY(file.isOk());
    }
    QCOMPARE(contentOf(own), Content);
    QVERIFY(!QFileInfo(real).isSymLink());
    QVERIFY(QFile::remove(plain));
}

void TestUnicodeFileRename::aSecondNameOfTheFileIsNoObstacle()
{
    const QString plain = temp_.filePath(QStringLiteral("beam.dat"));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    if (!makeHardLink(own, plain))
        QSKIP("The file system has no hard links");
    {
        const UnicodeFile file(own);
        QVERIFY2(file.isOk(), qPrintable(file.error()));
        QCOMPARE(contentOf(plain), Content);
    }
    QCOMPARE(contentOf(own), Content);
    {
        const UnicodeFile file(own);
        QVERIFY(QFile::remove(plain)); // as many programs save a file
        QVERIFY(writeFile(plain, "result"));
    }
    QCOMPARE(contentOf(own), QByteArray("result"));
    QVERIFY(!QFile::exists(plain));
}

// At the plain path the relative link leads nowhere.
void TestUnicodeFileRename::aRelativeLinkComesBack()
{
    if (onWindows())
        QSKIP("A link is a file with a name of its own here");
    create(unicodeFolder() + QStringLiteral("/target"));
    const QString own = path(unicodeFolder() + QStringLiteral("/beam.dat"));
    QVERIFY(QFile::link(QStringLiteral("target"), own));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(!QFileInfo(own).isSymLink());
    }
    QVERIFY(QFileInfo(own).isSymLink());
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFileRename::theFileCanBeMovedToAndFro()
{
    const QString own = create(unicodeName());
    {
        UnicodeFile file(own);
        const QString plain = file.asciiFilePath();
        for (int round = 0; round < 2; ++round) {
            QVERIFY(file.renameToUnicode());
            QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
            QVERIFY(file.isUnicode());
            QVERIFY(file.renameToAscii());
            QCOMPARE(entriesOf(folder_->path()), QStringList{file.asciiName()});
            QCOMPARE(file.asciiFilePath(), plain);
        }
        QVERIFY(file.isOk());
    }
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFileRename::movingAFileThatIsNotThereIsASuccess()
{
    const QString own = create(unicodeName());
    UnicodeFile file(own);
    QVERIFY(file.renameToAscii()); // it is there already
    QCOMPARE(contentOf(file.asciiFilePath()), Content);
    QVERIFY(file.renameToUnicode());
    QVERIFY(file.renameToUnicode());
    QCOMPARE(contentOf(own), Content);
    QVERIFY(QFile::remove(own));
    QVERIFY(file.renameToAscii());
    QVERIFY(file.renameToUnicode());
    QVERIFY(file.isOk());
    QCOMPARE(entriesOf(folder_->path()), QStringList());
}

void TestUnicodeFileRename::movingAPlainFileIsASuccess()
{
    const QString own = create(QStringLiteral("beam.dat"));
    UnicodeFile file(own);
    QVERIFY(file.renameToAscii());
    QVERIFY(file.renameToUnicode());
    QVERIFY(file.isOk());
    QCOMPARE(contentOf(own), Content);
}

// The file could not be moved to its plain path. Then the obstacle was removed, and a program wrote
// to the plain path.
void TestUnicodeFileRename::aResultIsMovedAfterAFailedConstruction()
{
    const QString plain = temp_.filePath(QStringLiteral("beam.dat"));
    QVERIFY(QDir().mkpath(plain));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        UnicodeFile file(own);
        QVERIFY(!file.isOk());
        QVERIFY(QDir().rmdir(plain));
        QVERIFY(writeFile(plain, "result"));
        QVERIFY(file.renameToUnicode());
        QCOMPARE(contentOf(own), QByteArray("result"));
        QVERIFY(!QFile::exists(plain));
    }
    QCOMPARE(contentOf(own), QByteArray("result"));
}

void TestUnicodeFileRename::aResultIsMovedAfterAFailedMove_data()
{
    QTest::addColumn<bool>("isCalled");
    QTest::newRow("by a call") << true;
    QTest::newRow("by the destructor") << false;
}

void TestUnicodeFileRename::aResultIsMovedAfterAFailedMove()
{
    QFETCH(bool, isCalled);
    const QString plain = temp_.filePath(QStringLiteral("beam.dat"));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        UnicodeFile file(own);
        QVERIFY(file.renameToUnicode());
        QVERIFY(QDir().mkpath(plain));
        QVERIFY(!file.renameToAscii());
        QVERIFY(QDir().rmdir(plain));
        QVERIFY(writeFile(plain, "result"));
        if (isCalled)
            QVERIFY(file.renameToUnicode());
    }
    QCOMPARE(contentOf(own), QByteArray("result"));
    QVERIFY(!QFile::exists(plain));
}

void TestUnicodeFileRename::aFileThatTheObjectNeverMovedStaysAtThePlainPath()
{
    const QString plain = temp_.filePath(QStringLiteral("beam.dat"));
    QVERIFY(QDir().mkpath(plain));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        const UnicodeFile file(own);
        const UnicodeFile copy(file);
        QVERIFY(QDir().rmdir(plain));
        QVERIFY(writeFile(plain, "of somebody else"));
    }
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(contentOf(plain), QByteArray("of somebody else"));
    QVERIFY(QFile::remove(plain));
}

void TestUnicodeFileRename::anObstacleNeverTakesThePlaceOfTheFile_data()
{
    QTest::addColumn<bool>("hadTheFile");
    QTest::newRow("after a failed construction") << false;
    QTest::newRow("after a failed move") << true;
}

void TestUnicodeFileRename::anObstacleNeverTakesThePlaceOfTheFile()
{
    QFETCH(bool, hadTheFile);
    const QString obstacle = temp_.filePath(QStringLiteral("beam.dat"));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    if (!hadTheFile)
        QVERIFY(QDir().mkpath(obstacle + QStringLiteral("/content")));
    {
        UnicodeFile file(own);
        if (hadTheFile) {
            QVERIFY(file.renameToUnicode());
            QVERIFY(QDir().mkpath(obstacle + QStringLiteral("/content")));
            QVERIFY(!file.renameToAscii());
        }
        QVERIFY(!file.renameToUnicode());
        QCOMPARE(contentOf(own), Content);
    }
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(obstacle), QStringList{QStringLiteral("content")});
    QVERIFY(QDir(obstacle).removeRecursively());
}

void TestUnicodeFileRename::aLinkAtThePlainPathIsReplaced_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("to a file") << true;
    QTest::newRow("to nowhere") << false;
}

void TestUnicodeFileRename::aLinkAtThePlainPathIsReplaced()
{
    if (onWindows())
        QSKIP("A link is a file with a name of its own here");
    QFETCH(bool, exists);
    const QString plain = temp_.filePath(QStringLiteral("beam.dat"));
    const QString target = path(QStringLiteral("target"));
    if (exists)
        QVERIFY(writeFile(target, "target"));
    QVERIFY(QFile::link(target, plain));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        const UnicodeFile file(own);
        QVERIFY(file.isOk());
        QVERIFY(!QFileInfo(plain).isSymLink());
        QCOMPARE(contentOf(plain), Content);
    }
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(contentOf(target), exists ? QByteArray("target") : QByteArray());
    QCOMPARE(QFile::exists(target), exists);
}

QTEST_GUILESS_MAIN(TestUnicodeFileRename)

#include "tst_unicodefilerename.moc"
