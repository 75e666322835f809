// UnicodeFile with names and folders that a real system does not give on demand.

#include "FakePlatform.h"
#include "TestFiles.h"

#include <Utility/UnicodeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

using namespace Vorn::Util;

namespace {

const QByteArray Content = "own content";

QString unicodeName()
{
    return QStringLiteral("Tr\u00e4ger.dat");
}

} // namespace

class TestUnicodeFileFakePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { start_ = QDir::currentPath(); }
    void init();
    void cleanup();

    void theNamePartOfTheSystemsNameIsTaken_data();
    void theNamePartOfTheSystemsNameIsTaken();
    void theNameIsAskedForInThePlainFolder();
    void aPlainNameNeedsNoOther();
    void withoutAUniqueNameTheFileStays();
    void whenTheCurrentFolderIsGoneTheFileStays();

    void toAnotherFileSystemTheFileIsCopied();
    void aRealNameLeadsToTheFileAtEveryMoment();
    void aFileThatCannotBeRemovedStaysTheOnlyOne();
    void anObstacleIsKeptWhenTheFileCannotBeRemoved();
    void aCopyThatCannotBeMovedIsRemoved();

private:
    QString own() const { return folder_->filePath(unicodeName()); }
    QString plain() const { return folder_->filePath(QStringLiteral("s1ko.dat")); }

    // Gives the file the plain name "s1ko.dat" on another file system; moves that canMove() refuses
    // fail.
    static void setOtherFileSystem(
        const std::function<bool(const QString &source, const QString &target)> &canMove);

    std::unique_ptr<QTemporaryDir> folder_;
    QString start_;
};

void TestUnicodeFileFakePlatform::init()
{
    fakePlatform() = FakePlatform();
    folder_ = std::make_unique<QTemporaryDir>(start_ + QStringLiteral("/files-XXXXXX"));
    QVERIFY(folder_->isValid());
    QVERIFY(writeFile(own(), Content));
}

void TestUnicodeFileFakePlatform::cleanup()
{
    fakePlatform() = FakePlatform();
    QVERIFY(QDir::setCurrent(start_));
    folder_.reset();
}

void TestUnicodeFileFakePlatform::theNamePartOfTheSystemsNameIsTaken_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("name");
    QTest::newRow("rooted") << QStringLiteral("/s1ko.") << QStringLiteral("s1ko.dat");
    QTest::newRow("rooted, the other separator")
        << QStringLiteral("\\s1ko.") << QStringLiteral("s1ko.dat");
    QTest::newRow("without a dot") << QStringLiteral("s1ko") << QStringLiteral("s1ko.dat");
    QTest::newRow("a whole path") << QStringLiteral("/tmp/a/s1ko.") << QStringLiteral("s1ko.dat");
}

void TestUnicodeFileFakePlatform::theNamePartOfTheSystemsNameIsTaken()
{
    QFETCH(QString, given);
    QFETCH(QString, name);
    fakePlatform().uniqueFileName = [given] { return given; };
    {
        const UnicodeFile file(own());
        QVERIFY(file.isOk());
        QCOMPARE(file.asciiName(), name);
        QCOMPARE(entriesOf(folder_->path()), QStringList{name});
    }
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileFakePlatform::theNameIsAskedForInThePlainFolder()
{
    QString current;
    fakePlatform().uniqueFileName = [&current] {
        current = QDir::currentPath();
        return QStringLiteral("/s1ko.");
    };
    const UnicodeFile file(own());
    QCOMPARE(QFileInfo(current).canonicalFilePath(),
             QFileInfo(folder_->path()).canonicalFilePath());
    QCOMPARE(QDir::currentPath(), start_);
}

void TestUnicodeFileFakePlatform::aPlainNameNeedsNoOther()
{
    bool asked = false;
    fakePlatform().uniqueFileName = [&asked] {
        asked = true;
        return QStringLiteral("/s1ko.");
    };
    const UnicodeFile file(folder_->filePath(QStringLiteral("beam.dat")));
    QVERIFY(!asked);
    QCOMPARE(file.asciiName(), QStringLiteral("beam.dat"));
}

void TestUnicodeFileFakePlatform::withoutAUniqueNameTheFileStays()
{
    fakePlatform().uniqueFileName = [] { return QString(); };
    {
        UnicodeFile file(own());
        QVERIFY(!file.isOk());
        // The plain path is that of the folder.
        QCOMPARE(file.error(),
                 QStringLiteral("Unable to remove existing file: %1/").arg(folder_->path()));
        QCOMPARE(file.asciiName(), QString());
        QCOMPARE(contentOf(own()), Content);
        QVERIFY(!file.renameToUnicode());
        QCOMPARE(contentOf(own()), Content);
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileFakePlatform::whenTheCurrentFolderIsGoneTheFileStays()
{
    const QString before = folder_->filePath(QStringLiteral("before %1"));
    QVERIFY(QDir().mkpath(before));
    QVERIFY(QDir::setCurrent(before));
    const QString current = QDir::currentPath();
    fakePlatform().uniqueFileName
        = [before] { return QDir().rmdir(before) ? QStringLiteral("/s1ko.") : QString(); };
    {
        const UnicodeFile file(own());
        QVERIFY(!file.isOk());
        QCOMPARE(file.error(), QStringLiteral("Cannot set current path back to ") + current);
        QCOMPARE(file.asciiName(), QStringLiteral("s1ko.dat"));
        QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileFakePlatform::setOtherFileSystem(
    const std::function<bool(const QString &source, const QString &target)> &canMove)
{
    fakePlatform().uniqueFileName = [] { return QStringLiteral("/s1ko."); };
    fakePlatform().moveFile
        = [canMove, move = FakePlatform().moveFile](const QString &source, const QString &target) {
              const QStringList names{QFileInfo(source).fileName(), QFileInfo(target).fileName()};
              if (names.contains(unicodeName()) && names.contains(QStringLiteral("s1ko.dat")))
                  return Platform::MoveOutcome::OtherFileSystem;
              return canMove(source, target) ? move(source, target) : Platform::MoveOutcome::Failed;
          };
}

void TestUnicodeFileFakePlatform::toAnotherFileSystemTheFileIsCopied()
{
    setOtherFileSystem([](const QString &, const QString &) { return true; });
    {
        const UnicodeFile file(own());
        QVERIFY2(file.isOk(), qPrintable(file.error()));
        QCOMPARE(entriesOf(folder_->path()), QStringList{QStringLiteral("s1ko.dat")});
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
        QVERIFY(writeFile(file.asciiFilePath(), "result"));
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    QCOMPARE(contentOf(own()), QByteArray("result"));
}

// A process can be killed between any two calls.
void TestUnicodeFileFakePlatform::aRealNameLeadsToTheFileAtEveryMoment()
{
    int calls = 0;
    int without = 0;
    const auto look = [&] {
        ++calls;
        without += contentOf(own()) == Content || contentOf(plain()) == Content ? 0 : 1;
    };
    setOtherFileSystem([&look](const QString &, const QString &) {
        look();
        return true;
    });
    fakePlatform().removeFile = [&look](const QString &path) {
        look();
        const bool isRemoved = QFile::remove(path);
        look();
        return isRemoved;
    };
    {
        const UnicodeFile file(own());
        QVERIFY2(file.isOk(), qPrintable(file.error()));
    }
    QCOMPARE(contentOf(own()), Content);
    QVERIFY(calls >= 6);
    QCOMPARE(without, 0);
}

void TestUnicodeFileFakePlatform::aFileThatCannotBeRemovedStaysTheOnlyOne()
{
    setOtherFileSystem([](const QString &, const QString &) { return true; });
    fakePlatform().removeFile
        = [this](const QString &path) { return path != own() && QFile::remove(path); };
    {
        const UnicodeFile file(own());
        QCOMPARE(file.error(), QStringLiteral("Unable to rename %1 to %2").arg(own(), plain()));
        QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileFakePlatform::anObstacleIsKeptWhenTheFileCannotBeRemoved()
{
    setOtherFileSystem([](const QString &, const QString &) { return true; });
    fakePlatform().mayReplaceFile = [this](const QString &path) { return path != own(); };
    QVERIFY(writeFile(plain(), "obstacle"));
    {
        const UnicodeFile file(own());
        QCOMPARE(file.error(), QStringLiteral("Unable to rename %1 to %2").arg(own(), plain()));
    }
    QCOMPARE(contentOf(own()), Content);
    QCOMPARE(contentOf(plain()), QByteArray("obstacle"));
}

void TestUnicodeFileFakePlatform::aCopyThatCannotBeMovedIsRemoved()
{
    setOtherFileSystem([](const QString &, const QString &) { return false; });
    {
        const UnicodeFile file(own());
        QCOMPARE(file.error(), QStringLiteral("Unable to rename %1 to %2").arg(own(), plain()));
        QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
        QCOMPARE(contentOf(own()), Content);
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeName()});
    QCOMPARE(contentOf(own()), Content);
}

QTEST_GUILESS_MAIN(TestUnicodeFileFakePlatform)

#include "tst_unicodefilefakeplatform.moc"
