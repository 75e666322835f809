// A file whose plain folder lies on another file system, and files of other users.

#include "Adversary.h"
#include "FileSizeLimit.h"
#include "OrdinaryUser.h"
#include "OtherFileSystem.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <atomic>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

const QByteArray Content = QByteArray("own content ").repeated(20000);

using IsCounted = std::function<bool(const char *name, const struct stat &status)>;

int countFiles(const QByteArray &folder, const IsCounted &isCounted)
{
    int count = 0;
    DIR *directory = opendir(folder.constData());
    while (const dirent *entry = readdir(directory)) {
        struct stat status = {};
        if (fstatat(dirfd(directory), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISREG(status.st_mode) && isCounted(entry->d_name, status))
            ++count;
    }
    closedir(directory);
    return count;
}

bool isReadableByOthers(const char *, const struct stat &status)
{
    return (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

// Readable by others, or at the plain path already.
bool isPublishedTooEarly(const char *name, const struct stat &status)
{
    return status.st_size < Content.size()
        && (isReadableByOthers(name, status) || qstrcmp(name, "beam.dat") == 0);
}

} // namespace

class TestUnicodeFileMoves : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;
    void init() override;
    void cleanup() override;

    void theFileIsMovedToAnotherFileSystemAndBack();
    void aLinkAtThePlainPathIsNeverWrittenThrough();
    void aLinkPlantedInTheMeantimeIsNeverWrittenThrough();
    void aPrivateFileIsPrivateAtEveryMoment();
    void aCopyIsPrivateUntilItIsComplete();
    void aKilledProcessLeavesTheFileAtOneOfItsPaths();
    void aFullTemporaryFolderKeepsNothing_data();
    void aFullTemporaryFolderKeepsNothing();
    void aFullFolderLeavesTheFileAtItsPlainPath_data();
    void aFullFolderLeavesTheFileAtItsPlainPath();
    void anObstacleIsNotBlamedForAFullFolder();
    void anObstacleIsNotBlamedForAFolderThatCannotBeWritten_data();
    void anObstacleIsNotBlamedForAFolderThatCannotBeWritten();
    void aFileThatCannotBeTakenAwayLeavesNothingBehind();
    void aFolderAtThePlainPathLeavesTheFileWhereItIs();
    void aPipeIsNotWaitedFor();
    void aFileOfAnotherUserNeverTakesThePlaceOfTheFile();

private:
    QString own() const { return path(QStringLiteral("Tr\u00e4ger/beam.dat")); }
    QString plain() const { return temp_->filePath(QStringLiteral("beam.dat")); }

    std::unique_ptr<QTemporaryDir> temp_; // on another file system than the folder
};

// The folder for temporary files is worked out once per process.
void TestUnicodeFileMoves::initTestCase()
{
    const QString other = folderOnAnotherFileSystem(QDir::tempPath());
    if (other.isEmpty())
        QSKIP("There is no second file system that can be written");
    temp_ = std::make_unique<QTemporaryDir>(other + QStringLiteral("/unicodefile-XXXXXX"));
    QVERIFY(temp_->isValid());
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(temp_->path()));
    QCOMPARE(System::getTempDirPath(), temp_->path());
    if (before.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", before);
}

void TestUnicodeFileMoves::init()
{
    TestWithFolder::init();
    QVERIFY(QDir().mkpath(QFileInfo(own()).path()));
    QVERIFY(writeFile(own(), Content));
}

void TestUnicodeFileMoves::cleanup()
{
    const QStringList left = entriesOf(temp_->path());
    for (const QString &name : left)
        QFile::remove(temp_->filePath(name)); // for the next test
    QCOMPARE(left, QStringList());
    QVERIFY(entriesOf(QFileInfo(own()).path()).size() <= 1);
    TestWithFolder::cleanup();
}

void TestUnicodeFileMoves::theFileIsMovedToAnotherFileSystemAndBack()
{
    constexpr QFile::Permissions Owner = QFile::ReadOwner | QFile::WriteOwner;
    for (const QFile::Permissions others :
         {QFile::Permissions(), QFile::Permissions(QFile::ReadGroup | QFile::ReadOther)}) {
        QVERIFY(QFile::setPermissions(own(), Owner | others));
        const QFile::Permissions permissions = QFile::permissions(own());
        {
            const UnicodeFile file(own());
            QVERIFY2(file.isOk(), qPrintable(file.error()));
            QVERIFY(!QFile::exists(own()));
            QCOMPARE(entriesOf(temp_->path()), QStringList{QStringLiteral("beam.dat")});
            QCOMPARE(contentOf(plain()), Content);
            QCOMPARE(QFile::permissions(plain()), permissions);
        }
        QCOMPARE(contentOf(own()), Content);
        QCOMPARE(QFile::permissions(own()), permissions);
        QCOMPARE(entriesOf(temp_->path()), QStringList());
    }
}

void TestUnicodeFileMoves::aLinkAtThePlainPathIsNeverWrittenThrough()
{
    const QString target = path(QStringLiteral("target"));
    QVERIFY(QFile::link(target, plain()));
    {
        const UnicodeFile file(own());
        QVERIFY2(file.isOk(), qPrintable(file.error()));
        QVERIFY(!QFileInfo(plain()).isSymLink());
        QCOMPARE(contentOf(plain()), Content);
    }
    QVERIFY(!QFile::exists(target));
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileMoves::aLinkPlantedInTheMeantimeIsNeverWrittenThrough()
{
    constexpr int Rounds = 300;
    const QByteArray target = QFile::encodeName(path(QStringLiteral("target")));
    const QByteArray link = QFile::encodeName(plain());
    int written = 0;
    {
        const Adversary adversary([&](std::atomic<int> &count) {
            if (symlink(target.constData(), link.constData()) == 0)
                ++count;
        });
        QVERIFY(adversary.isRunning());
        for (int round = 0; round < Rounds; ++round) {
            adversary.waitForWork();
            {
                const UnicodeFile file(own());
            }
            if (QFile::remove(QFile::decodeName(target)))
                ++written;
            QCOMPARE(contentOf(own()), Content);
        }
        QVERIFY(adversary.count() > 0);
    }
    unlink(link.constData());
    QCOMPARE(written, 0);
}

void TestUnicodeFileMoves::aPrivateFileIsPrivateAtEveryMoment()
{
    constexpr int Rounds = 300;
    QVERIFY(QFile::setPermissions(own(), QFile::ReadOwner | QFile::WriteOwner));
    const QByteArray temp = QFile::encodeName(temp_->path());
    const QByteArray folder = QFile::encodeName(QFileInfo(own()).path());
    const Adversary adversary([&](std::atomic<int> &count) {
        count += countFiles(temp, isReadableByOthers) + countFiles(folder, isReadableByOthers);
    });
    QVERIFY(adversary.isRunning());
    for (int round = 0; round < Rounds; ++round) {
        const UnicodeFile file(own());
        adversary.waitForWork();
        QVERIFY(file.isOk());
    }
    QCOMPARE(adversary.count(), 0);
}

void TestUnicodeFileMoves::aCopyIsPrivateUntilItIsComplete()
{
    constexpr int Rounds = 300;
    QVERIFY(QFile::setPermissions(
        own(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
    const QByteArray temp = QFile::encodeName(temp_->path());
    const Adversary adversary(
        [&](std::atomic<int> &count) { count += countFiles(temp, isPublishedTooEarly); });
    QVERIFY(adversary.isRunning());
    for (int round = 0; round < Rounds; ++round) {
        const UnicodeFile file(own());
        adversary.waitForWork();
        QVERIFY(file.isOk());
    }
    QCOMPARE(adversary.count(), 0);
}

void TestUnicodeFileMoves::aKilledProcessLeavesTheFileAtOneOfItsPaths()
{
    constexpr int Rounds = 100;
    constexpr int LongestLife = 3000; // microseconds, several moves
    constexpr quint32 Seed = 20240307;
    QRandomGenerator random(Seed);
    int plainRounds = 0;
    int copies = 0;
    for (int round = 0; round < Rounds; ++round) {
        {
            const Adversary mover([&](std::atomic<int> &count) {
                const UnicodeFile file(own());
                ++count;
            });
            QVERIFY(mover.isRunning());
            while (mover.count() == 0) { }
            usleep(static_cast<useconds_t>(random.bounded(LongestLife)));
        }
        const bool isPlain = !QFile::exists(own());
        plainRounds += isPlain ? 1 : 0;
        QVERIFY2(contentOf(isPlain ? plain() : own()) == Content,
                 qPrintable(QStringLiteral("seed %1, round %2").arg(Seed).arg(round)));
        if (isPlain)
            QVERIFY(writeFile(own(), Content));
        QFile::remove(plain());
        for (const QString &folder : {temp_->path(), QFileInfo(own()).path()}) {
            for (const QString &copy : QDir(folder).entryList({QStringLiteral("vorn-*")})) {
                QVERIFY(QFile::remove(folder + QLatin1Char('/') + copy));
                ++copies;
            }
        }
    }
    qInfo("%d processes killed, %d of them with the file at its plain path; %d copies were left",
          Rounds, plainRounds, copies);
}

// Content that is written at once, and content that waits in a buffer for the end.
void TestUnicodeFileMoves::aFullTemporaryFolderKeepsNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("space");
    for (const QByteArray &content : {Content, Content.left(100)}) {
        const int size = content.size();
        for (const int space : {0, 1, size / 2, size - 1})
            QTest::addRow("%d of %d bytes", space, size) << content << space;
    }
}

void TestUnicodeFileMoves::aFullTemporaryFolderKeepsNothing()
{
    QFETCH(QByteArray, content);
    QFETCH(int, space);
    QVERIFY(writeFile(own(), content));
    bool isOk = true;
    QString error;
    QStringList left;
    {
        const FileSizeLimit limit(space);
        QVERIFY(limit.isSet());
        const UnicodeFile file(own());
        isOk = file.isOk();
        error = file.error();
        left = entriesOf(temp_->path());
    }
    QVERIFY(!isOk);
    QCOMPARE(error, QStringLiteral("Unable to rename %1 to %2").arg(own(), plain()));
    QCOMPARE(left, QStringList());
    QCOMPARE(contentOf(own()), content);
}

void TestUnicodeFileMoves::aFullFolderLeavesTheFileAtItsPlainPath_data()
{
    aFullTemporaryFolderKeepsNothing_data();
}

void TestUnicodeFileMoves::aFullFolderLeavesTheFileAtItsPlainPath()
{
    QFETCH(QByteArray, content);
    QFETCH(int, space);
    QVERIFY(writeFile(own(), content));
    UnicodeFile file(own());
    bool isMoved = true;
    QStringList left;
    {
        const FileSizeLimit limit(space);
        QVERIFY(limit.isSet());
        isMoved = file.renameToUnicode();
        left = entriesOf(QFileInfo(own()).path());
    }
    QVERIFY(!isMoved);
    QCOMPARE(file.error(), QStringLiteral("Unable to rename %1 to %2").arg(plain(), own()));
    QCOMPARE(left, QStringList());
    QCOMPARE(contentOf(plain()), content);
    QVERIFY(file.renameToUnicode());
    QCOMPARE(contentOf(own()), content);
}

void TestUnicodeFileMoves::anObstacleIsNotBlamedForAFullFolder()
{
    QVERIFY(writeFile(plain(), "obstacle"));
    QString error;
    {
        const FileSizeLimit limit(Content.size() / 2);
        QVERIFY(limit.isSet());
        error = UnicodeFile(own()).error();
    }
    QCOMPARE(error, QStringLiteral("Unable to rename %1 to %2").arg(own(), plain()));
    QCOMPARE(contentOf(own()), Content);
    QFile::remove(plain());
}

void TestUnicodeFileMoves::anObstacleIsNotBlamedForAFolderThatCannotBeWritten_data()
{
    QTest::addColumn<bool>("elsewhere");
    QTest::newRow("on the file system of the temporary folder") << false;
    QTest::newRow("on another file system") << true;
}

void TestUnicodeFileMoves::anObstacleIsNotBlamedForAFolderThatCannotBeWritten()
{
    QFETCH(bool, elsewhere);
    const QTemporaryDir beside(temp_->path() + QStringLiteral("-XXXXXX"));
    const QString top = elsewhere ? testFolder() : beside.path();
    const QString folder = top + QStringLiteral("/\u00e4");
    const QString file = folder + QStringLiteral("/beam.dat");
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(writeFile(file, Content));
    QVERIFY(writeFile(plain(), "obstacle"));
    QCOMPARE(chmod(QFile::encodeName(temp_->path()).constData(), 0777), 0);
    QCOMPARE(chmod(QFile::encodeName(top).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(folder).constData(), 0555), 0);
    const QByteArray error = asOrdinaryUser([&file] { return UnicodeFile(file).error().toUtf8(); });
    QCOMPARE(chmod(QFile::encodeName(folder).constData(), 0755), 0);
    QCOMPARE(error, QStringLiteral("Unable to rename %1 to %2").arg(file, plain()).toUtf8());
    QCOMPARE(contentOf(file), Content);
    QFile::remove(plain());
}

void TestUnicodeFileMoves::aFileThatCannotBeTakenAwayLeavesNothingBehind()
{
    constexpr QFile::Permissions Everybody = QFile::ReadOther | QFile::ExeOther | QFile::ReadOwner
        | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup;
    const QString folder = QFileInfo(own()).path();
    QVERIFY(
        QFile::setPermissions(temp_->path(), Everybody | QFile::WriteOwner | QFile::WriteOther));
    QVERIFY(QFile::setPermissions(testFolder(), Everybody | QFile::WriteOwner));
    QVERIFY(QFile::setPermissions(folder, Everybody));
    const QByteArray outcome = asOrdinaryUser([this] {
        const UnicodeFile file(own());
        return file.error().toUtf8() + '|'
            + entriesOf(temp_->path()).join(QLatin1Char(' ')).toUtf8();
    });
    QVERIFY(QFile::setPermissions(folder, Everybody | QFile::WriteOwner));
    QCOMPARE(outcome, QStringLiteral("Unable to rename %1 to %2|").arg(own(), plain()).toUtf8());
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileMoves::aFolderAtThePlainPathLeavesTheFileWhereItIs()
{
    QVERIFY(QDir().mkpath(plain() + QStringLiteral("/content")));
    {
        UnicodeFile file(own());
        QCOMPARE(file.error(), QStringLiteral("Unable to remove existing file: ") + plain());
        QCOMPARE(entriesOf(QFileInfo(own()).path()), QStringList{QStringLiteral("beam.dat")});
        QVERIFY(!file.renameToUnicode());
        QCOMPARE(contentOf(own()), Content);
    }
    QCOMPARE(contentOf(own()), Content);
    QVERIFY(QDir(plain()).removeRecursively());
}

// Copying a pipe would never end.
void TestUnicodeFileMoves::aPipeIsNotWaitedFor()
{
    QVERIFY(QFile::remove(own()));
    QCOMPARE(mkfifo(QFile::encodeName(own()).constData(), 0600), 0);
    const UnicodeFile file(own());
    QVERIFY(!file.isOk());
    QVERIFY(QFile::exists(own()));
}

// The other user's file is at the plain path, in a folder where users may remove only their own
// files.
void TestUnicodeFileMoves::aFileOfAnotherUserNeverTakesThePlaceOfTheFile()
{
    if (geteuid() != 0)
        QSKIP("This takes two users");
    QCOMPARE(chmod(QFile::encodeName(temp_->path()).constData(), 01777), 0);
    for (const QString &folder : {testFolder(), QFileInfo(own()).path()})
        QCOMPARE(chmod(QFile::encodeName(folder).constData(), 0777), 0);
    QVERIFY(writeFile(plain(), "of somebody else"));
    const QByteArray outcome = asOrdinaryUser([this] {
        UnicodeFile file(own());
        const QByteArray error = file.error().toUtf8();
        return error + (file.renameToUnicode() ? " moved" : " stayed");
    });
    QCOMPARE(outcome,
             QStringLiteral("Unable to remove existing file: %1 stayed").arg(plain()).toUtf8());
    QCOMPARE(contentOf(own()), Content);
    QCOMPARE(contentOf(plain()), QByteArray("of somebody else"));
    QVERIFY(QFile::remove(plain()));
}

QTEST_GUILESS_MAIN(TestUnicodeFileMoves)

#include "tst_unicodefilemoves.moc"
