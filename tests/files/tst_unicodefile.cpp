#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <filesystem>
#include <memory>
#include <system_error>
#include <type_traits>

using namespace Vorn::Util;

static_assert(std::is_copy_constructible<UnicodeFile>::value
                  && std::is_copy_assignable<UnicodeFile>::value,
              "an object is copyable");

namespace {

const QByteArray Content = "own content";

const char *const TempVariables[] = {"TMPDIR", "TMP", "TEMP"}; // of the one system or the other

QString unicodeName()
{
    return QStringLiteral("Tr\u00e4ger.dat");
}

bool makeHardLink(const QString &file, const QString &link)
{
    std::error_code error;
    std::filesystem::create_hard_link(std::filesystem::u8path(file.toStdString()),
                                      std::filesystem::u8path(link.toStdString()), error);
    return !error;
}

bool isPlain(const QString &text)
{
    for (const QChar character : text) {
        if (character.unicode() > 127)
            return false;
    }
    return true;
}

} // namespace

class TestUnicodeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

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
    void theCurrentFolderIsTheSameAfterwards();

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

    void aResultIsMovedAfterAFailedConstruction();
    void aResultIsMovedAfterAFailedMove_data();
    void aResultIsMovedAfterAFailedMove();
    void whatThisObjectNeverHadStaysAtThePlainPath();
    void anObstacleNeverTakesThePlaceOfTheFile_data();
    void anObstacleNeverTakesThePlaceOfTheFile();
    void aLinkAtThePlainPathIsReplaced_data();
    void aLinkAtThePlainPathIsReplaced();

    void aCopyHasTheSameNames();
    void theFirstCopyDestroyedEndsThePlainName();
    void anAssignmentCopiesTheNames();
    void aCopyKeepsTheError();

private:
    QString path(const QString &name) const { return folder_->filePath(name); }

    // A file of this content in a folder made for it.
    QString create(const QString &name, const QByteArray &content = Content) const
    {
        if (!QDir().mkpath(QFileInfo(path(name)).path()) || !writeFile(path(name), content))
            qFatal("The test's file cannot be written");
        return path(name);
    }

    static QString unicodeFolder() { return QStringLiteral("Tr\u00e4ger"); }

    QJsonObject runHelper(const QString &file, const QString &tempFolder) const;

    QTemporaryDir temp_;
    std::unique_ptr<QTemporaryDir> folder_;
    QString current_;
};

void TestUnicodeFile::initTestCase()
{
    // Before System finds out.
    QVERIFY(temp_.isValid());
    for (const char *variable : TempVariables)
        qputenv(variable, QDir::toNativeSeparators(temp_.path()).toLocal8Bit());
    QCOMPARE(QFileInfo(System::getTempDirPath()).canonicalFilePath(),
             QFileInfo(temp_.path()).canonicalFilePath());
    current_ = QDir::currentPath();
}

void TestUnicodeFile::init()
{
    folder_ = std::make_unique<QTemporaryDir>(current_ + QStringLiteral("/files-XXXXXX"));
    QVERIFY(folder_->isValid());
    QVERIFY(QDir().mkpath(temp_.path()));
    QVERIFY(isPlain(folder_->path()));
}

void TestUnicodeFile::cleanup()
{
    QCOMPARE(QDir::currentPath(), current_);
    folder_.reset();
    const bool isEmpty = entriesOf(temp_.path()).isEmpty();
    QDir(temp_.path()).removeRecursively(); // for the next test
    QVERIFY2(isEmpty, "a file was left in the temporary folder");
}

QJsonObject TestUnicodeFile::runHelper(const QString &file, const QString &tempFolder) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : TempVariables)
        environment.insert(QString::fromLatin1(variable), QDir::toNativeSeparators(tempFolder));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral(HELPER_PROGRAM), {QStringLiteral("unicode-file"), file});
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return QJsonObject();
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

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
    QTest::newRow("behind a zero") << QStringLiteral("abc\0\u00e9") << true;
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

void TestUnicodeFile::aFileThatDoesNotExistYetIsNotMoved_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("beam.dat");
    QTest::newRow("Unicode name") << unicodeName();
    QTest::newRow("Unicode folder") << unicodeFolder() + QStringLiteral("/beam.dat");
    QTest::newRow("both") << unicodeFolder() + QLatin1Char('/') + unicodeName();
}

void TestUnicodeFile::aFileThatDoesNotExistYetIsNotMoved()
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

void TestUnicodeFile::aFileCreatedUnderItsPlainPathIsMovedToItsOwn_data()
{
    aFileThatDoesNotExistYetIsNotMoved_data();
}

void TestUnicodeFile::aFileCreatedUnderItsPlainPathIsMovedToItsOwn()
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

void TestUnicodeFile::aFileIsFoundUnderBothOfItsPaths()
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

void TestUnicodeFile::anExistingFileAtThePlainPathIsOverwritten()
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

void TestUnicodeFile::anExistingFileAtTheOwnPathIsOverwritten()
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

// Its folder is a link to the temporary folder: there is nothing to make room for.
void TestUnicodeFile::aFileThatIsItsOwnPlainFileStays()
{
    if (onWindows())
        QSKIP("A link to a folder is a file here.");
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

void TestUnicodeFile::aLinkToTheFileIsNeverMovedOverIt_data()
{
    QTest::addColumn<bool>("isLinkAtOwnPath");
    QTest::newRow("the own path is a link to the plain one") << true;
    QTest::newRow("the plain path is a link to the own one") << false;
}

void TestUnicodeFile::aLinkToTheFileIsNeverMovedOverIt()
{
    if (onWindows())
        QSKIP("A link is a file with a name of its own here.");
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

void TestUnicodeFile::aSecondNameOfTheFileIsNoObstacle()
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
        QVERIFY(QFile::remove(plain)); // in the way of many programs that save a file
        QVERIFY(writeFile(plain, "result"));
    }
    QCOMPARE(contentOf(own), QByteArray("result"));
    QVERIFY(!QFile::exists(plain));
}

// At the plain path it leads nowhere.
void TestUnicodeFile::aRelativeLinkComesBack()
{
    if (onWindows())
        QSKIP("A link is a file with a name of its own here.");
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

void TestUnicodeFile::theFileCanBeMovedToAndFro()
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

void TestUnicodeFile::movingAFileThatIsNotThereIsASuccess()
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

void TestUnicodeFile::movingAPlainFileIsASuccess()
{
    const QString own = create(QStringLiteral("beam.dat"));
    UnicodeFile file(own);
    QVERIFY(file.renameToAscii());
    QVERIFY(file.renameToUnicode());
    QVERIFY(file.isOk());
    QCOMPARE(contentOf(own), Content);
}

void TestUnicodeFile::aFolderThatCannotBeMadeCurrentIsAnError()
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

void TestUnicodeFile::aFileThatCannotBeRemovedIsAnError()
{
    // A folder is none that QFile removes.
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
void TestUnicodeFile::aReadOnlyFileIsReplacedWhereItCanBeRemoved()
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

void TestUnicodeFile::aFileThatCannotBeMovedBackIsAnError()
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

void TestUnicodeFile::aTemporaryFolderThatIsGoneLeavesTheFileAlone_data()
{
    aMissingTemporaryFolderLeavesTheFileAlone_data();
}

void TestUnicodeFile::aTemporaryFolderThatIsGoneLeavesTheFileAlone()
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

void TestUnicodeFile::aMissingTemporaryFolderLeavesTheFileAlone_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("needsAName");
    QTest::newRow("a name is needed") << unicodeName() << true;
    QTest::newRow("the name stays") << QStringLiteral("beam.dat") << false;
}

void TestUnicodeFile::aMissingTemporaryFolderLeavesTheFileAlone()
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

void TestUnicodeFile::aFileInThePlaceOfTheTemporaryFolderLeavesBothAlone()
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

void TestUnicodeFile::aUnicodeTemporaryFolderIsReplaced()
{
    const QString own = create(unicodeFolder() + QStringLiteral("/beam.dat"));
    const QString temp = path(QStringLiteral("Tempor\u00e4r"));
    QVERIFY(QDir().mkpath(temp));
    const QJsonObject report = runHelper(own, temp);
    // That folder need not exist: then nothing moves.
    QCOMPARE(report.value(QStringLiteral("asciiPath")).toString(),
             System::getProgramDataPath(QStringLiteral("VORN 2024")));
    QCOMPARE(report.value(QStringLiteral("isOk")).toBool(),
             !report.value(QStringLiteral("isAtOwnPath")).toBool());
    QCOMPARE(contentOf(own), Content);
    QCOMPARE(entriesOf(temp), QStringList());
}

void TestUnicodeFile::aPlainTemporaryFolderIsUsed()
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

void TestUnicodeFile::aFolderWithAUnicodeNameIsMovedAsAFileIs()
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

void TestUnicodeFile::aFolderIsNotReplaced_data()
{
    QTest::addColumn<bool>("isEmpty");
    QTest::newRow("an empty one") << true;
    QTest::newRow("a full one") << false;
}

void TestUnicodeFile::aFolderIsNotReplaced()
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

void TestUnicodeFile::aFolderInThePlaceOfTheFileIsNeverMoved_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("a folder that exists") << true;
    QTest::newRow("a folder that does not exist") << false;
}

void TestUnicodeFile::aFolderInThePlaceOfTheFileIsNeverMoved()
{
    // Without a name the plain path is the temporary folder itself.
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

void TestUnicodeFile::aLaterSuccessDoesNotTakeTheErrorBack()
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

void TestUnicodeFile::theLastErrorIsKept()
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

// An obstacle kept the file from its plain path; it has gone, and a program has written there.
void TestUnicodeFile::aResultIsMovedAfterAFailedConstruction()
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

void TestUnicodeFile::aResultIsMovedAfterAFailedMove_data()
{
    QTest::addColumn<bool>("isCalled");
    QTest::newRow("by a call") << true;
    QTest::newRow("by the destructor") << false;
}

void TestUnicodeFile::aResultIsMovedAfterAFailedMove()
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

void TestUnicodeFile::whatThisObjectNeverHadStaysAtThePlainPath()
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

void TestUnicodeFile::anObstacleNeverTakesThePlaceOfTheFile_data()
{
    QTest::addColumn<bool>("hadTheFile");
    QTest::newRow("after a failed construction") << false;
    QTest::newRow("after a failed move") << true;
}

void TestUnicodeFile::anObstacleNeverTakesThePlaceOfTheFile()
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

void TestUnicodeFile::aLinkAtThePlainPathIsReplaced_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("to a file") << true;
    QTest::newRow("to nowhere") << false;
}

void TestUnicodeFile::aLinkAtThePlainPathIsReplaced()
{
    if (onWindows())
        QSKIP("A link is a file with a name of its own here.");
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
        // The target's own file is moved by no one from now on.
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
