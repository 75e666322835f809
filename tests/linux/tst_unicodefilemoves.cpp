// A file whose plain folder lies on another file system, and files of other users.

#include "../OtherFileSystem.h"
#include "../TestFiles.h"
#include "../TestFolder.h"
#include "FileSizeLimit.h"
#include "OrdinaryUser.h"

#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <atomic>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

const QByteArray Content = QByteArray("own content ").repeated(20000);

// A process that repeats work without a pause, until the object is destroyed.
class Adversary
{
public:
    using Work = std::function<void(std::atomic<int> &count)>;

    explicit Adversary(const Work &work)
        : count_(static_cast<std::atomic<int> *>(mmap(nullptr, sizeof(std::atomic<int>),
                                                      PROT_READ | PROT_WRITE,
                                                      MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        *count_ = 0;
        process_ = fork();
        while (process_ == 0)
            work(*count_);
    }

    ~Adversary()
    {
        ::kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        munmap(count_, sizeof *count_);
    }

    bool isRunning() const { return process_ > 0; }
    int count() const { return *count_; }

private:
    Q_DISABLE_COPY(Adversary)

    std::atomic<int> *count_; // shared with the process
    pid_t process_ = -1;
};

// How many files in a folder others may read.
int readableByOthers(const QByteArray &folder)
{
    int count = 0;
    DIR *directory = opendir(folder.constData());
    while (const dirent *entry = readdir(directory)) {
        struct stat status = {};
        if (fstatat(dirfd(directory), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISREG(status.st_mode) && (status.st_mode & (S_IRGRP | S_IROTH)))
            ++count;
    }
    closedir(directory);
    return count;
}

} // namespace

class TestUnicodeFileMoves : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void theFileIsMovedToAnotherFileSystemAndBack();
    void aLinkAtThePlainPathIsNeverWrittenThrough();
    void aLinkPlantedInTheMeantimeIsNeverWrittenThrough();
    void aPrivateFileIsPrivateAtEveryMoment();
    void aFullTemporaryFolderKeepsNothing();
    void aFullFolderLeavesTheFileAtItsPlainPath();
    void aFileThatCannotBeTakenAwayLeavesNothingBehind();
    void aFolderAtThePlainPathLeavesTheFileWhereItIs();
    void aPipeIsNotWaitedFor();
    void aFileOfAnotherUserNeverTakesThePlaceOfTheFile();

private:
    QString own() const { return folder_->filePath(QStringLiteral("Tr\u00e4ger/beam.dat")); }
    QString plain() const { return temp_->filePath(QStringLiteral("beam.dat")); }

    std::unique_ptr<QTemporaryDir> temp_; // on another file system than the folder
    std::unique_ptr<TestFolder> folder_;
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
    folder_ = std::make_unique<TestFolder>();
    QVERIFY(QDir().mkpath(QFileInfo(own()).path()));
    QVERIFY(writeFile(own(), Content));
}

void TestUnicodeFileMoves::cleanup()
{
    QCOMPARE(entriesOf(temp_->path()), QStringList());
    QVERIFY(entriesOf(QFileInfo(own()).path()).size() <= 1);
    folder_.reset();
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
    const QString target = folder_->filePath(QStringLiteral("target"));
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
    const QByteArray target = QFile::encodeName(folder_->filePath(QStringLiteral("target")));
    const QByteArray link = QFile::encodeName(plain());
    int written = 0;
    int planted = 0;
    {
        const Adversary adversary([&](std::atomic<int> &count) {
            if (symlink(target.constData(), link.constData()) == 0)
                ++count;
        });
        QVERIFY(adversary.isRunning());
        for (int round = 0; round < Rounds; ++round) {
            {
                const UnicodeFile file(own());
            }
            if (QFile::remove(QFile::decodeName(target)))
                ++written;
            QCOMPARE(contentOf(own()), Content);
        }
        planted = adversary.count();
    }
    unlink(link.constData());
    QVERIFY(planted > 0);
    QCOMPARE(written, 0);
}

void TestUnicodeFileMoves::aPrivateFileIsPrivateAtEveryMoment()
{
    constexpr int Rounds = 300;
    QVERIFY(QFile::setPermissions(own(), QFile::ReadOwner | QFile::WriteOwner));
    const QByteArray temp = QFile::encodeName(temp_->path());
    const QByteArray folder = QFile::encodeName(QFileInfo(own()).path());
    const Adversary adversary([&](std::atomic<int> &count) {
        count += readableByOthers(temp) + readableByOthers(folder);
    });
    QVERIFY(adversary.isRunning());
    for (int round = 0; round < Rounds; ++round) {
        const UnicodeFile file(own());
        QVERIFY(file.isOk());
    }
    QCOMPARE(adversary.count(), 0);
}

void TestUnicodeFileMoves::aFullTemporaryFolderKeepsNothing()
{
    bool isOk = true;
    QString error;
    QStringList left;
    {
        const FileSizeLimit limit(Content.size() / 2);
        QVERIFY(limit.isSet());
        const UnicodeFile file(own());
        isOk = file.isOk();
        error = file.error();
        left = entriesOf(temp_->path());
    }
    QVERIFY(!isOk);
    QCOMPARE(error, QStringLiteral("Unable to rename %1 to %2").arg(own(), plain()));
    QCOMPARE(left, QStringList());
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileMoves::aFullFolderLeavesTheFileAtItsPlainPath()
{
    UnicodeFile file(own());
    bool isMoved = true;
    QStringList left;
    {
        const FileSizeLimit limit(Content.size() / 2);
        QVERIFY(limit.isSet());
        isMoved = file.renameToUnicode();
        left = entriesOf(QFileInfo(own()).path());
    }
    QVERIFY(!isMoved);
    QCOMPARE(file.error(), QStringLiteral("Unable to rename %1 to %2").arg(plain(), own()));
    QCOMPARE(left, QStringList());
    QCOMPARE(contentOf(plain()), Content);
    QVERIFY(file.renameToUnicode());
    QCOMPARE(contentOf(own()), Content);
}

void TestUnicodeFileMoves::aFileThatCannotBeTakenAwayLeavesNothingBehind()
{
    constexpr QFile::Permissions Everybody = QFile::ReadOther | QFile::ExeOther | QFile::ReadOwner
        | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup;
    const QString folder = QFileInfo(own()).path();
    QVERIFY(
        QFile::setPermissions(temp_->path(), Everybody | QFile::WriteOwner | QFile::WriteOther));
    QVERIFY(QFile::setPermissions(folder_->path(), Everybody | QFile::WriteOwner));
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

// Copied, it would never come to an end.
void TestUnicodeFileMoves::aPipeIsNotWaitedFor()
{
    QVERIFY(QFile::remove(own()));
    QCOMPARE(mkfifo(QFile::encodeName(own()).constData(), 0600), 0);
    const UnicodeFile file(own());
    QVERIFY(!file.isOk());
    QVERIFY(QFile::exists(own()));
}

// It lies at the plain path, in a folder in which everybody may remove only what is his own.
void TestUnicodeFileMoves::aFileOfAnotherUserNeverTakesThePlaceOfTheFile()
{
    if (geteuid() != 0)
        QSKIP("This takes two users");
    QCOMPARE(chmod(QFile::encodeName(temp_->path()).constData(), 01777), 0);
    for (const QString &folder : {folder_->path(), QFileInfo(own()).path()})
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
