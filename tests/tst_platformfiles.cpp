// How files of known names are opened to be written.

#include "TestFiles.h"
#include "TestFolder.h"

#include <Utility/Platform/Files.h>

#include <QtTest/QtTest>

#include <memory>

using namespace Vorn::Util;

class tst_PlatformFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aMissingFileIsMade();
    void anExistingFileIsEmptied();
    void aFileThatIsOpenElsewhereIsEmptied();
    void aFolderIsNotOpened();
    void aMissingFolderIsNotMade();

private:
    QString path(const char *name) const { return folder_->filePath(QString::fromLatin1(name)); }
    static bool write(const QString &fileName, const QByteArray &text)
    {
        QFile file(fileName);
        return Platform::openWithoutLink(file) && file.isTextModeEnabled()
            && file.write(text) == text.size() && file.flush();
    }

    std::unique_ptr<TestFolder> folder_;
};

void tst_PlatformFiles::init()
{
    folder_ = std::make_unique<TestFolder>();
    QVERIFY(folder_->isValid());
}

void tst_PlatformFiles::cleanup()
{
    folder_.reset();
}

void tst_PlatformFiles::aMissingFileIsMade()
{
    QVERIFY(write(path("new"), "text"));
    QCOMPARE(contentOf(path("new")), QByteArray("text"));
}

void tst_PlatformFiles::anExistingFileIsEmptied()
{
    QVERIFY(writeFile(path("old"), "a longer text"));
    QVERIFY(write(path("old"), "text"));
    QCOMPARE(contentOf(path("old")), QByteArray("text"));
}

// Such a file cannot be removed on Windows.
void tst_PlatformFiles::aFileThatIsOpenElsewhereIsEmptied()
{
    QVERIFY(writeFile(path("old"), "a longer text"));
    QFile reader(path("old"));
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QFile writer(path("old"));
    QVERIFY(writer.open(QIODevice::ReadWrite));
    QVERIFY(write(path("old"), "text"));
    QCOMPARE(contentOf(path("old")), QByteArray("text"));
}

void tst_PlatformFiles::aFolderIsNotOpened()
{
    QVERIFY(QDir().mkdir(path("folder")));
    QVERIFY(!write(path("folder"), "text"));
    QVERIFY(QFileInfo(path("folder")).isDir());
}

void tst_PlatformFiles::aMissingFolderIsNotMade()
{
    QVERIFY(!write(path("missing/new"), "text"));
    QCOMPARE(entriesOf(folder_->path()), QStringList());
}

QTEST_GUILESS_MAIN(tst_PlatformFiles)

#include "tst_platformfiles.moc"
