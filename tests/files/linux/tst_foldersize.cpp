// The size of trees that only this system can hold, or that change meanwhile.

#include "Adversary.h"
#include "DeepTree.h"
#include "DescriptorLimit.h"
#include "OrdinaryUser.h"
#include "ProcessState.h"
#include "SpecialEntries.h"
#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/System.h>

#include <QtTest/QtTest>

#include <atomic>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vorn::Util;

namespace {

constexpr int FileSize = 1000;

bool makeFileAt(int folder, const char *name)
{
    const int file = openat(folder, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    const bool isMade = file >= 0 && ftruncate(file, FileSize) == 0;
    close(file);
    return isMade;
}

QByteArray sizeText(const QString &path)
{
    return QByteArray::number(System::getDirectorySize(path));
}

} // namespace

class TestFolderSize : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsNeitherFileNorFolderHasNoSize_data();
    void whatIsNeitherFileNorFolderHasNoSize();
    void everyNameOfAFileCounts();
    void theHolesOfASparseFileCount();
    void aNameThatIsNoTextDoesNotCount_data();
    void aNameThatIsNoTextDoesNotCount();
    void whatMayNotBeReadDoesNotCount_data();
    void whatMayNotBeReadDoesNotCount();
    void aLinkToWhatMayNotBeReadDoesNotCount();
    void thousandsOfLevelsCount();
    void pathsLongerThanTheSystemAllowsCount();
    void aFolderThatCannotBeOpenedDoesNotCount();
    void theMemoryDoesNotGrowWithTheFiles();
    void filesThatVanishMayCount();

private:
    bool makeFile(const QByteArray &name) const
    {
        return makeFileAt(AT_FDCWD, (QFile::encodeName(testFolder()) + '/' + name).constData());
    }
    bool makeFolder(const QByteArray &name) const
    {
        return mkdir((QFile::encodeName(testFolder()) + '/' + name).constData(), 0777) == 0;
    }
    bool setMode(const char *name, mode_t mode) const
    {
        return chmod(QFile::encodeName(path(name)).constData(), mode) == 0;
    }
};

void TestFolderSize::whatIsNeitherFileNorFolderHasNoSize_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : SpecialEntries)
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void TestFolderSize::whatIsNeitherFileNorFolderHasNoSize()
{
    QFETCH(QString, kind);
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeSpecialEntry(path("tree/special"), kind, path("pipe")));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(FileSize));
}

void TestFolderSize::everyNameOfAFileCounts()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QCOMPARE(link(QFile::encodeName(path("tree/file")).constData(),
                  QFile::encodeName(path("tree/same file")).constData()),
             0);
    QVERIFY(QFile::link(path("tree/file"), path("tree/link")));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(3 * FileSize));
}

void TestFolderSize::theHolesOfASparseFileCount()
{
    constexpr qint64 Size = Q_INT64_C(1) << 40;
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(QFile::resize(path("tree/file"), Size));
    QCOMPARE(System::getDirectorySize(path("tree")), Size);
}

void TestFolderSize::aNameThatIsNoTextDoesNotCount_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("counts");
    QTest::newRow("text") << QByteArray("Gr\xC3\xB6\xC3\x9F"
                                        "e")
                          << true;
    QTest::newRow("beyond 16 bits") << QByteArray("\xF0\x9F\x98\x80") << true;
    QTest::newRow("byte order mark first") << QByteArray("\xEF\xBB\xBFname") << true;
    QTest::newRow("replacement character") << QByteArray("\xEF\xBF\xBD") << true;
    QTest::newRow("no character") << QByteArray("\xEF\xBF\xBF") << true;
    QTest::newRow("single byte") << QByteArray("\xFF") << false;
    QTest::newRow("incomplete") << QByteArray("name\xC3") << false;
    QTest::newRow("longer than needed") << QByteArray("\xC0\xAE") << false;
    QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") << false;
}

void TestFolderSize::aNameThatIsNoTextDoesNotCount()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, counts);
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    QVERIFY(makeFile("tree/" + name));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(counts ? 2 * FileSize : FileSize));
    const QByteArray file = QFile::encodeName(path("tree/")) + name;
    QCOMPARE(unlink(file.constData()), 0);
    QVERIFY(makeFolder("tree/" + name));
    QVERIFY(makeFile("tree/" + name + "/file"));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(counts ? 2 * FileSize : FileSize));
    QCOMPARE(unlink((file + "/file").constData()), 0);
    QCOMPARE(rmdir(file.constData()), 0);
}

void TestFolderSize::whatMayNotBeReadDoesNotCount_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("nothing") << 0;
    QTest::newRow("names only") << 0444;
    QTest::newRow("known names only") << 0111;
}

void TestFolderSize::whatMayNotBeReadDoesNotCount()
{
    QFETCH(int, mode);
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFolder("tree/closed"));
    QVERIFY(makeFolder("tree/closed/sub"));
    for (const char *name : {"tree/file", "tree/closed/file", "tree/closed/sub/file"})
        QVERIFY(makeFile(name));
    QVERIFY(setMode("", 0755));
    QVERIFY(setMode("tree/closed", static_cast<mode_t>(mode)));
    const QByteArray sizes = asOrdinaryUser(
        [this] { return sizeText(path("tree")) + ' ' + sizeText(path("tree/closed")); });
    QVERIFY(setMode("tree/closed", 0755));
    QCOMPARE(sizes, QByteArray::number(FileSize) + " 0");
}

void TestFolderSize::aLinkToWhatMayNotBeReadDoesNotCount()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFolder("closed"));
    QVERIFY(makeFile("closed/file"));
    QVERIFY(QFile::link(path("closed/file"), path("tree/link")));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(FileSize));
    QVERIFY(setMode("", 0755));
    QVERIFY(setMode("closed", 0));
    const QByteArray size = asOrdinaryUser([this] { return sizeText(path("tree")); });
    QVERIFY(setMode("closed", 0755));
    QCOMPARE(size, QByteArray("0"));
}

void TestFolderSize::thousandsOfLevelsCount()
{
    constexpr int Depth = 1900;
    QVERIFY(
        makeDeepTree(path("tree"), "d", Depth, [](int folder) { return makeFileAt(folder, "f"); }));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(Depth) * FileSize);
}

void TestFolderSize::pathsLongerThanTheSystemAllowsCount()
{
    constexpr int Depth = 50;
    const QByteArray name(99, 'd');
    QVERIFY(Depth * name.size() > PATH_MAX);
    QVERIFY(makeDeepTree(path("tree"), name, Depth,
                         [](int folder) { return makeFileAt(folder, "file"); }));
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(Depth) * FileSize);
    QVERIFY(System::removeDir(path("tree"), false, QStringList()));
}

void TestFolderSize::aFolderThatCannotBeOpenedDoesNotCount()
{
    QVERIFY(makeFolder("tree"));
    QVERIFY(makeFile("tree/file"));
    qint64 size = -1;
    {
        const DescriptorLimit limit;
        QVERIFY(limit.isSet());
        size = System::getDirectorySize(path("tree"));
    }
    QCOMPARE(size, qint64(0));
}

void TestFolderSize::theMemoryDoesNotGrowWithTheFiles()
{
    if (LOAD_FACTOR > 1)
        QSKIP("A sanitizer keeps what was freed");
    constexpr int Files = 20000;
    const QByteArray longName(240, 'n');
    QVERIFY(makeFolder("tree"));
    for (int number = 0; number < Files; ++number)
        QVERIFY(makeFile("tree/" + longName + QByteArray::number(number)));
    const qint64 before = residentMemory();
    QVERIFY(restartPeakMemory());
    QCOMPARE(System::getDirectorySize(path("tree")), qint64(Files) * FileSize);
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < MiB, qPrintable(QString::number(grown)));
}

// Also while folders and files take each other's place. The system reads the names of many entries
// at once, so that most entries have changed before their size is asked for.
void TestFolderSize::filesThatVanishMayCount()
{
    constexpr int Rounds = 1000;
    constexpr int Files = 100;
    QVERIFY(makeFolder("tree"));
    for (int number = 0; number < Files; ++number)
        QVERIFY(makeFile("tree/file" + QByteArray::number(number)));
    const QByteArray top = QFile::encodeName(path("tree/"));
    const Adversary adversary([&top](std::atomic<int> &count) {
        for (int number = 0; number < Files; ++number) {
            const QByteArray name = top + "other" + QByteArray::number(number);
            unlink(name.constData());
            if (mkdir(name.constData(), 0777) == 0 && rmdir(name.constData()) == 0
                && makeFileAt(AT_FDCWD, name.constData()))
                ++count;
        }
    });
    QVERIFY(adversary.isRunning());
    int round = 0;
    for (; round < Rounds || adversary.count() < Rounds; ++round) {
        const qint64 size = System::getDirectorySize(path("tree"));
        QVERIFY2(size >= Files * FileSize && size <= 2 * Files * FileSize,
                 qPrintable(QString::number(size)));
    }
}

QTEST_GUILESS_MAIN(TestFolderSize)

#include "tst_foldersize.moc"
