// Files that cannot be moved, and the errors that they give.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithUnicodeFile.h"

#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>
#include <QtTest/QtTest>

using namespace Vorn::Util;

class TestUnicodeFileErrors : public TestWithUnicodeFile
{
    Q_OBJECT

private Q_SLOTS:
    void aFolderThatCannotBeMadeCurrentIsAnError();
    void aFileThatCannotBeRemovedIsAnError();
    void aReadOnlyFileIsReplacedWhereItCanBeRemoved();
    void aFileThatCannotBeMovedBackIsAnError();
    void aTemporaryFolderThatIsGoneLeavesTheFileAlone_data();
    void aTemporaryFolderThatIsGoneLeavesTheFileAlone();
    void aMissingTemporaryFolderLeavesTheFileAlone_data();
    void aMissingTemporaryFolderLeavesTheFileAlone();
    void aFileInThePlaceOfTheTemporaryFolderLeavesBothAlone();
    void aUnicodeTemporaryFolderIsReplaced();
    void aPlainTemporaryFolderIsUsed();
    void aFolderWithAUnicodeNameIsMovedAsAFileIs();
    void aFolderIsNotReplaced_data();
    void aFolderIsNotReplaced();
    void aFolderInThePlaceOfTheFileIsNeverMoved_data();
    void aFolderInThePlaceOfTheFileIsNeverMoved();
    void aLaterSuccessDoesNotTakeTheErrorBack();
    void theLastErrorIsKept();
};

void TestUnicodeFileErrors::aFolderThatCannotBeMadeCurrentIsAnError()
{
    const QString missing = path(QStringLiteral("missing %1"));
    {
        UnicodeFile file(missing + QLatin1Char('/') + unicodeName());
        QVERIFY(!file.isOk());
        QCOMPARE(file.error(), QStringLiteral("Cannot set current path to ") + missing);
        QCOMPARE(file.asciiName(), QString());
        QCOMPARE(file.asciiPath(), missing);
        QCOMPARE(file.unicodeName(), unicodeName());
        QVERIFY(!file.exists());
        QCOMPARE(QDir::currentPath(), current_);
    }
    QCOMPARE(entriesOf(folder_->path()), QStringList());
}

void TestUnicodeFileErrors::aFileThatCannotBeRemovedIsAnError()
{
    // QFile does not remove a folder.
    const QString obstacle = temp_.filePath(QStringLiteral("beam.dat"));
    QVERIFY(QDir().mkpath(obstacle + QStringLiteral("/content")));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        UnicodeFile file(own);
        QVERIFY(!file.isOk());
        QCOMPARE(file.error(),
                 QStringLiteral("Unable to remove existing file: ") + file.asciiFilePath());
        QCOMPARE(contentOf(own), Content);
        QVERIFY(!file.renameToAscii());
        QCOMPARE(contentOf(own), Content);
    }
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(obstacle), QStringList{QStringLiteral("content")});
    QVERIFY(QDir(obstacle).removeRecursively());
}

// Windows does not remove it (but Wine does); other systems do.
void TestUnicodeFileErrors::aReadOnlyFileIsReplacedWhereItCanBeRemoved()
{
    const QString obstacle = temp_.filePath(QStringLiteral("beam.dat"));
    QVERIFY(writeFile(obstacle, "obstacle"));
    QVERIFY(QFile::setPermissions(obstacle, QFile::ReadOwner));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    bool isReplaced = false;
    {
        const UnicodeFile file(own);
        isReplaced = file.isOk();
        QVERIFY(isReplaced || onWindows());
        if (!isReplaced) {
            QCOMPARE(file.error(),
                     QStringLiteral("Unable to remove existing file: ") + file.asciiFilePath());
        }
        QCOMPARE(contentOf(obstacle), isReplaced ? Content : QByteArray("obstacle"));
    }
    QCOMPARE(contentOf(own), Content);
    if (!isReplaced) {
        QVERIFY(QFile::setPermissions(obstacle, QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(QFile::remove(obstacle));
    }
}

void TestUnicodeFileErrors::aFileThatCannotBeMovedBackIsAnError()
{
    const QString folder = unicodeFolder() + QStringLiteral(" %2");
    const QString own = create(folder + QStringLiteral("/%1 beam.dat"));
    QString plain;
    {
        UnicodeFile file(own);
        plain = file.asciiFilePath();
        QVERIFY(QDir(path(folder)).removeRecursively());
        QVERIFY(!file.renameToUnicode());
        QVERIFY(!file.isOk());
        QCOMPARE(file.error(),
                 QStringLiteral("Unable to rename ") + plain + QStringLiteral(" to ") + own);
        QVERIFY(file.exists());
    }
    QCOMPARE(contentOf(plain), Content); // not lost
    QVERIFY(QFile::remove(plain));
}

void TestUnicodeFileErrors::aTemporaryFolderThatIsGoneLeavesTheFileAlone_data()
{
    aMissingTemporaryFolderLeavesTheFileAlone_data();
}

void TestUnicodeFileErrors::aTemporaryFolderThatIsGoneLeavesTheFileAlone()
{
    QFETCH(QString, name);
    QFETCH(bool, needsAName);
    const QString own = create(unicodeFolder() + QLatin1Char('/') + name);
    const QString temp = System::getTempDirPath();
    QVERIFY(QDir().rmdir(temp));
    {
        const UnicodeFile file(own);
        QVERIFY(!file.isOk());
        QCOMPARE(file.error(),
                 needsAName ? QStringLiteral("Cannot set current path to ") + temp
                            : QStringLiteral("Unable to rename %1 to %2/beam.dat").arg(own, temp));
        QCOMPARE(contentOf(own), Content);
        QCOMPARE(QDir::currentPath(), current_);
        QVERIFY(file.exists());
    }
    QCOMPARE(contentOf(own), Content);
    QVERIFY(!QDir(temp).exists());
}

void TestUnicodeFileErrors::aMissingTemporaryFolderLeavesTheFileAlone_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("needsAName");
    QTest::newRow("a name is needed") << unicodeName() << true;
    QTest::newRow("the name stays") << QStringLiteral("beam.dat") << false;
}

void TestUnicodeFileErrors::aMissingTemporaryFolderLeavesTheFileAlone()
{
    QFETCH(QString, name);
    QFETCH(bool, needsAName);
    const QString own = create(unicodeFolder() + QLatin1Char('/') + name);
    const QString missing = path(QStringLiteral("missing"));
    const QJsonObject report = runHelper(own, missing);
    // Qt does not name a missing folder on every system.
    const QString temp = report.value(QStringLiteral("asciiPath")).toString();
    QVERIFY2(temp.isEmpty() || temp == missing, qPrintable(temp));
    QCOMPARE(report.value(QStringLiteral("isOk")).toBool(true), false);
    QCOMPARE(report.value(QStringLiteral("error")).toString(),
             needsAName ? QStringLiteral("Cannot set current path to ") + temp
                        : QStringLiteral("Unable to rename %1 to %2/beam.dat").arg(own, temp));
    QCOMPARE(report.value(QStringLiteral("asciiName")).toString(), needsAName ? QString() : name);
    QVERIFY(report.value(QStringLiteral("isAtOwnPath")).toBool());
    QVERIFY(report.value(QStringLiteral("folderIsTheSame")).toBool());
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(folder_->path()), QStringList{unicodeFolder()});
    QCOMPARE(entriesOf(path(unicodeFolder())), QStringList{name});
}

void TestUnicodeFileErrors::aFileInThePlaceOfTheTemporaryFolderLeavesBothAlone()
{
    const QString own = create(unicodeFolder() + QLatin1Char('/') + unicodeName());
    const QString temp = create(QStringLiteral("temp"), "no folder");
    const QJsonObject report = runHelper(own, temp);
    QCOMPARE(report.value(QStringLiteral("error")).toString(),
             QStringLiteral("Cannot set current path to ") + temp);
    QVERIFY(report.value(QStringLiteral("isAtOwnPath")).toBool());
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(contentOf(temp), QByteArray("no folder"));
}

void TestUnicodeFileErrors::aUnicodeTemporaryFolderIsReplaced()
{
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    const QString temp = path(QStringLiteral("Tempor\u00e4r"));
    QVERIFY(QDir().mkpath(temp));
    const QJsonObject report = runHelper(own, temp);
    // When that folder does not exist, the file is not moved.
    QCOMPARE(report.value(QStringLiteral("asciiPath")).toString(),
             System::getProgramDataPath(QStringLiteral("VORN 2024")));
    QCOMPARE(report.value(QStringLiteral("isOk")).toBool(),
             !report.value(QStringLiteral("isAtOwnPath")).toBool());
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(temp), QStringList());
}

void TestUnicodeFileErrors::aPlainTemporaryFolderIsUsed()
{
    const QString own = create(unicodeFolder() + QLatin1Char('/') + unicodeName());
    const QString temp = path(QStringLiteral("temp"));
    QVERIFY(QDir().mkpath(temp));
    const QJsonObject report = runHelper(own, temp);
    QCOMPARE(report.value(QStringLiteral("asciiPath")).toString(), temp);
    QVERIFY(report.value(QStringLiteral("isOk")).toBool());
    QCOMPARE(report.value(QStringLiteral("isAtOwnPath")).toBool(true), false);
    QVERIFY(report.value(QStringLiteral("folderIsTheSame")).toBool());
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(temp), QStringList());
}

void TestUnicodeFileErrors::aFolderWithAUnicodeNameIsMovedAsAFileIs()
{
    const QString own = path(unicodeFolder());
    create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        const UnicodeFile file(own);
        QVERIFY2(file.isOk(), qPrintable(file.error()));
        QCOMPARE(contentOf(file.asciiFilePath() + QStringLiteral("/beam.dat")), Content);
        QVERIFY(!QFileInfo::exists(own));
    }
    QCOMPARE(contentOf(own + QStringLiteral("/beam.dat")), Content);
}

void TestUnicodeFileErrors::aFolderIsNotReplaced_data()
{
    QTest::addColumn<bool>("isEmpty");
    QTest::newRow("an empty one") << true;
    QTest::newRow("a full one") << false;
}

void TestUnicodeFileErrors::aFolderIsNotReplaced()
{
    QFETCH(bool, isEmpty);
    const QString plain = temp_.filePath(QStringLiteral("folder"));
    QVERIFY(QDir().mkpath(isEmpty ? plain : plain + QStringLiteral("/content")));
    const QString own = path(unicodeFolder() + QStringLiteral("/folder"));
    create(unicodeFolder() + QStringLiteral("/folder/beam.dat"));
    {
        const UnicodeFile file(own);
        QCOMPARE(file.error(),
                 QStringLiteral("Unable to remove existing file: ") + file.asciiFilePath());
        QVERIFY(QFileInfo(own).isDir());
    }
    QCOMPARE(contentOf(own + QStringLiteral("/beam.dat")), Content);
    QVERIFY(QDir(plain).removeRecursively());
}

void TestUnicodeFileErrors::aFolderInThePlaceOfTheFileIsNeverMoved_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("a folder that exists") << true;
    QTest::newRow("a folder that does not exist") << false;
}

void TestUnicodeFileErrors::aFolderInThePlaceOfTheFileIsNeverMoved()
{
    // Without a file name, the plain path is the temporary folder.
    QFETCH(bool, exists);
    const QString beside = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    const QString temp = path(QStringLiteral("temp"));
    QVERIFY(QDir().mkpath(temp));
    const QString folder = exists ? unicodeFolder() : QStringLiteral("Bl\u00e4tter");
    const QJsonObject report = runHelper(path(folder) + QLatin1Char('/'), temp);
    QCOMPARE(report.value(QStringLiteral("isOk")).toBool(exists), !exists);
    QCOMPARE(contentOf(beside), Content);
    QCOMPARE(entriesOf(folder_->path()), (QStringList{unicodeFolder(), QStringLiteral("temp")}));
    QCOMPARE(entriesOf(temp), QStringList());
}

void TestUnicodeFileErrors::aLaterSuccessDoesNotTakeTheErrorBack()
{
    const QString obstacle = temp_.filePath(QStringLiteral("beam.dat"));
    QVERIFY(QDir().mkpath(obstacle));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    {
        UnicodeFile file(own);
        const QString error = file.error();
        QVERIFY(!error.isEmpty());
        QVERIFY(QDir().rmdir(obstacle));
        QVERIFY(file.renameToAscii());
        QCOMPARE(contentOf(file.asciiFilePath()), Content);
        QVERIFY(!file.isOk());
        QCOMPARE(file.error(), error);
    }
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFileErrors::theLastErrorIsKept()
{
    const QString obstacle = temp_.filePath(QStringLiteral("beam.dat"));
    QVERIFY(QDir().mkpath(obstacle));
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    UnicodeFile file(own);
    QVERIFY(file.error().startsWith(QLatin1String("Unable to remove existing file: ")));
    QVERIFY(QDir().rmdir(obstacle));
    QVERIFY(file.renameToAscii());
    QVERIFY(QDir().rmdir(path(unicodeFolder())));
    QVERIFY(!file.renameToUnicode());
    QVERIFY(file.error().startsWith(QLatin1String("Unable to rename ")));
    QVERIFY(QFile::remove(file.asciiFilePath()));
}

QTEST_GUILESS_MAIN(TestUnicodeFileErrors)

#include "tst_unicodefileerrors.moc"
