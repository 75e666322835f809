// How files are opened, moved, compared and removed.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <Utility/Platform/Files.h>

#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestPlatformFiles : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void aMissingFileIsMade();
    void anExistingFileIsEmptied();
    void aFileThatIsOpenElsewhereIsEmptied();
    void aFolderIsNotOpened();
    void aMissingFolderIsNotMade();
    void onlyAPlainFileIsOpenedToBeRead();

    void aPathOfTheSystemIsTakenAsItIs();
    void twoPathsOfAFileAreTheSameFile();
    void aReadOnlyFileIsRemoved();
    void aFolderIsNotRemoved();

private:
    static bool write(const QString &fileName, const QByteArray &text)
    {
        QFile file(fileName);
        return Platform::openWithoutLink(file) && file.isTextModeEnabled()
            && file.write(text) == text.size() && file.flush();
    }
};

void TestPlatformFiles::aMissingFileIsMade()
{
    QVERIFY(write(path("new"), "text"));
    QCOMPARE(contentOf(path("new")), QByteArray("text"));
}

void TestPlatformFiles::anExistingFileIsEmptied()
{
    QVERIFY(writeFile(path("old"), "a longer text"));
    QVERIFY(write(path("old"), "text"));
    QCOMPARE(contentOf(path("old")), QByteArray("text"));
}

// Such a file cannot be removed on Windows.
void TestPlatformFiles::aFileThatIsOpenElsewhereIsEmptied()
{
    QVERIFY(writeFile(path("old"), "a longer text"));
    QFile reader(path("old"));
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QFile writer(path("old"));
    QVERIFY(writer.open(QIODevice::ReadWrite));
    QVERIFY(write(path("old"), "text"));
    QCOMPARE(contentOf(path("old")), QByteArray("text"));
}

void TestPlatformFiles::aFolderIsNotOpened()
{
    QVERIFY(QDir().mkdir(path("folder")));
    QVERIFY(!write(path("folder"), "text"));
    QVERIFY(QFileInfo(path("folder")).isDir());
}

void TestPlatformFiles::aMissingFolderIsNotMade()
{
    QVERIFY(!write(path("missing/new"), "text"));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestPlatformFiles::onlyAPlainFileIsOpenedToBeRead()
{
    QVERIFY(writeFile(path("plain"), "two\nlines"));
    QFile plain(path("plain"));
    QVERIFY(Platform::openPlainFile(plain));
    QCOMPARE(plain.openMode(), QIODevice::ReadOnly);
    QCOMPARE(plain.readAll(), QByteArray("two\nlines"));
    QFile folder(testFolder());
    QVERIFY(!Platform::openPlainFile(folder));
    QFile missing(path("missing"));
    QVERIFY(!Platform::openPlainFile(missing));
    QVERIFY(!missing.exists());
}

void TestPlatformFiles::aPathOfTheSystemIsTakenAsItIs()
{
    if (!onWindows())
        QSKIP("Only Windows has a second form of its paths");
    const QString form = QStringLiteral("\\\\?\\");
    QVERIFY(writeFile(path("old"), "text"));
    QCOMPARE(Platform::moveFile(form + QDir::toNativeSeparators(path("old")),
                                form + QDir::toNativeSeparators(path("new"))),
             Platform::MoveOutcome::Moved);
    QCOMPARE(contentOf(path("new")), QByteArray("text"));
    QCOMPARE(entriesOf(testFolder()), QStringList{QStringLiteral("new")});
}

void TestPlatformFiles::twoPathsOfAFileAreTheSameFile()
{
    QVERIFY(writeFile(path("one"), "text"));
    QVERIFY(writeFile(path("other"), "text"));
    QVERIFY(QDir().mkdir(path("folder")));
    QVERIFY(Platform::isSameFile(path("one"), path("folder/../one")));
    QVERIFY(Platform::isSameFile(path("folder"), path("folder/.")));
    QVERIFY(!Platform::isSameFile(path("one"), path("other")));
    QVERIFY(!Platform::isSameFile(path("one"), path("missing")));
    QVERIFY(!Platform::isSameFile(path("missing"), path("missing")));
}

void TestPlatformFiles::aReadOnlyFileIsRemoved()
{
    QVERIFY(writeFile(path("old"), "text"));
    QVERIFY(QFile::setPermissions(path("old"), QFile::ReadOwner));
    QVERIFY(Platform::removeFile(path("old")));
    QVERIFY(!Platform::removeFile(path("old")));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestPlatformFiles::aFolderIsNotRemoved()
{
    QVERIFY(QDir().mkdir(path("folder")));
    QVERIFY(!Platform::removeFile(path("folder")));
    QVERIFY(QFileInfo(path("folder")).isDir());
}

QTEST_GUILESS_MAIN(TestPlatformFiles)

#include "tst_platformfiles.moc"
