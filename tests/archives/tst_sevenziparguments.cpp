// The command line of the archiver, the names on it, and the list files.

#include "CurrentFolder.h"
#include "FakeArchiver.h"
#include "TestFiles.h"
#include "TestFolder.h"
#include "TestMessages.h"
#include "TestWithFakeArchiver.h"

#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

QString listFilePath(const char *name)
{
    return System::getTempDirPath() + QLatin1Char('/') + QString::fromLatin1(name);
}

QString listFileArgument(const char *name)
{
    return QLatin1Char('@') + listFilePath(name);
}

} // namespace

class TestSevenZipArguments : public TestWithFakeArchiver
{
    Q_OBJECT

private Q_SLOTS:
    // Command lines
    void theArgumentsOfACompression_data();
    void theArgumentsOfACompression();
    void aCombinationWithoutSwitchesGivesEmptyArguments_data();
    void aCombinationWithoutSwitchesGivesEmptyArguments();
    void compressingNoFilesNamesNone();
    void theArgumentsOfAnExtraction();
    void theArgumentsOfAListing();
    void argumentsArriveUnchanged();
    void theArgumentsAreSentAsOneDebugMessage_data();
    void theArgumentsAreSentAsOneDebugMessage();
    void theInputOfTheArchiverIsAtItsEnd();

    // Names
    void namesStayWithoutACurrentPath();
    void namesBelowTheCurrentPathBecomeRelative();
    void everyOccurrenceOfTheCurrentPathIsRemoved();
    void aCurrentPathWithASlashAtItsEndRemovesNothing();

    // List files
    void upTo32FilesStandOnTheCommandLine_data();
    void upTo32FilesStandOnTheCommandLine();
    void from33FilesOnAListFileStandsOnTheCommandLine_data();
    void from33FilesOnAListFileStandsOnTheCommandLine();
    void theListFileIsWrittenAtOnce();
    void theListFileHoldsTheNamesInUtf8();
    void theListFileHoldsTheRelativeNames();
    void theListFileTakesTheFirstFreeName_data();
    void theListFileTakesTheFirstFreeName();
    void twoCompressionsAtOnceHaveTheirOwnListFiles();
    void aLinkToNowhereIsInTheWayOfAListFile();
    void theListFileIsRemovedAtTheEnd_data();
    void theListFileIsRemovedAtTheEnd();
    void theNameOfAListFileThatCannotBeWrittenStaysOnTheCommandLine();
};

void TestSevenZipArguments::theArgumentsOfACompression_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("threads");
    QTest::addColumn<QString>("typeSwitch");
    QTest::addColumn<QStringList>("lastSwitches");
    const auto row = [](const char *name, int type, int method, int level, int mode, bool threads,
                        const char *typeSwitch, const char *lastSwitches) {
        QTest::newRow(name) << type << method << level << mode << threads
                            << QString::fromLatin1(typeSwitch)
                            << QString::fromLatin1(lastSwitches).split(QLatin1Char(' '));
    };
    row("7z, Copy", 0, 0, 1, 0, true, "-t7z", "-m0=Copy -mx=1 -mmt=on");
    row("7z, Deflate", 0, 1, 1, 0, true, "-t7z", "-m0=Deflate -mx=1 -mmt=on");
    row("7z, LZMA", 0, 2, 1, 0, true, "-t7z", "-m0=LZMA -mx=1 -ma=0 -mmt=on");
    row("7z, LZMA2", 0, 3, 1, 0, true, "-t7z", "-m0=LZMA2 -mx=1 -ma=0 -mmt=on");
    row("7z, BZip2", 0, 4, 1, 0, true, "-t7z", "-m0=BZip2 -mx=1 -mmt=on");
    row("zip, Copy", 1, 0, 1, 0, true, "-tzip", "-mm=Copy -mx=1 -mmt=on");
    row("zip, Deflate", 1, 1, 1, 0, true, "-tzip", "-mm=Deflate -mx=1 -mmt=on");
    row("without threads", 0, 3, 1, 0, false, "-t7z", "-m0=LZMA2 -mx=1 -ma=0 -mmt=off");
    row("level and mode", 0, 2, 9, 1, true, "-t7z", "-m0=LZMA -mx=9 -ma=1 -mmt=on");
    row("numbers without a name", 0, 3, 42, 7, false, "-t7z", "-m0=LZMA2 -mx=42 -ma=7 -mmt=off");
    row("zip has no mode", 1, 1, 0, 1, false, "-tzip", "-mm=Deflate -mx=0 -mmt=off");
}

void TestSevenZipArguments::theArgumentsOfACompression()
{
    QFETCH(int, type);
    QFETCH(int, method);
    QFETCH(int, level);
    QFETCH(int, mode);
    QFETCH(bool, threads);
    QFETCH(QString, typeSwitch);
    QFETCH(QStringList, lastSwitches);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x/archive.bin"));
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    archive.setLevel(static_cast<SevenZip::Level>(level));
    archive.setMode(static_cast<SevenZip::Mode>(mode));
    archive.setUseThreads(threads);
    QVERIFY(archive.compressFiles({QStringLiteral("b.txt"), QStringLiteral("a.txt")}));
    const QStringList names{QStringLiteral("x/archive.bin"), QStringLiteral("b.txt"),
                            QStringLiteral("a.txt")};
    QCOMPARE(fake.arguments(),
             QStringList({QStringLiteral("a"), typeSwitch}) + names + lastSwitches);
}

void TestSevenZipArguments::aCombinationWithoutSwitchesGivesEmptyArguments_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, int type, int method, const char *expected) {
        QTest::newRow(name) << type << method
                            << QString::fromLatin1(expected).split(QLatin1Char('|'));
    };
    row("zip, LZMA", 1, 2, "a|-tzip|x|f||-mx=1|-mmt=on");
    row("zip, LZMA2", 1, 3, "a|-tzip|x|f||-mx=1|-mmt=on");
    row("zip, BZip2", 1, 4, "a|-tzip|x|f||-mx=1|-mmt=on");
    row("7z, 5", 0, 5, "a|-t7z|x|f||-mx=1|-mmt=on");
    row("another type, LZMA2", 2, 3, "a||x|f|-m0=LZMA2|-mx=1|-mmt=on");
    row("another type, Copy", 2, 0, "a||x|f|-m0=Copy|-mx=1|-mmt=on");
}

void TestSevenZipArguments::aCombinationWithoutSwitchesGivesEmptyArguments()
{
#ifdef QT_NO_DEBUG
    QFETCH(int, type);
    QFETCH(int, method);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x"));
    archive.setType(static_cast<SevenZip::Type>(type));
    archive.setMethod(static_cast<SevenZip::Method>(method));
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QTEST(fake.arguments(), "expected");
#else
    QSKIP("A debug build stops here with an assertion, which tst_sevenzip tests");
#endif
}

void TestSevenZipArguments::compressingNoFilesNamesNone()
{
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x.7z"));
    QVERIFY(archive.compressFiles({}));
    const QStringList expected{QStringLiteral("a"),      QStringLiteral("-t7z"),
                               QStringLiteral("x.7z"),   QStringLiteral("-m0=LZMA2"),
                               QStringLiteral("-mx=1"),  QStringLiteral("-ma=0"),
                               QStringLiteral("-mmt=on")};
    QCOMPARE(fake.arguments(), expected);
}

void TestSevenZipArguments::theArgumentsOfAnExtraction()
{
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("folder/x.7z"));
    archive.setType(SevenZip::TypeZip);
    archive.setUseThreads(false);
    QVERIFY(archive.extractFilesTo(QStringLiteral("C:/to here/")));
    const QStringList expected{QStringLiteral("x"), QStringLiteral("folder/x.7z"),
                               QStringLiteral("-oC:/to here/"), QStringLiteral("-aoa")};
    QCOMPARE(fake.arguments(), expected);
}

void TestSevenZipArguments::theArgumentsOfAListing()
{
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("folder/x.7z"));
    QVERIFY(archive.listFiles());
    QCOMPARE(fake.arguments(), QStringList({QStringLiteral("l"), QStringLiteral("folder/x.7z")}));
}

void TestSevenZipArguments::argumentsArriveUnchanged()
{
    const FakeArchiver fake;
    const QStringList names{QStringLiteral("two  blanks"),
                            QStringLiteral("a \"quoted\" word"),
                            QStringLiteral("ends with a\\"),
                            QStringLiteral("ends blank \\"),
                            QStringLiteral("%PATH% ^& $HOME `x` *"),
                            QString::fromUtf8("größe Ω 日本"),
                            QString(),
                            QStringLiteral("%1 %2")};
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("my archive's.7z"));
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.arguments().mid(2, 1 + names.size()), QStringList{archive.archiveFile()} + names);
}

void TestSevenZipArguments::theArgumentsAreSentAsOneDebugMessage_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("expected");
    QTest::newRow("compress") << QStringLiteral("compress")
                              << QString::fromUtf8("a -t7z x y.7z ä \"b\" c -m0=LZMA2 -mx=1 -ma=0 "
                                                   "-mmt=on");
    QTest::newRow("extract") << QStringLiteral("extract") << QStringLiteral("x x y.7z -oto -aoa");
    QTest::newRow("list") << QStringLiteral("list") << QStringLiteral("l x y.7z");
}

void TestSevenZipArguments::theArgumentsAreSentAsOneDebugMessage()
{
    QFETCH(QString, operation);
    QFETCH(QString, expected);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x y.7z"));
    const TestMessages messages;
    if (operation == QLatin1String("compress"))
        archive.compressFiles({QString::fromUtf8("ä"), QStringLiteral("\"b\" c")});
    else if (operation == QLatin1String("extract"))
        archive.extractFilesTo(QStringLiteral("to"));
    else
        archive.listFiles();
    QCOMPARE(messages.lines(), QStringList{expected});
}

void TestSevenZipArguments::theInputOfTheArchiverIsAtItsEnd()
{
    FakeArchiver fake;
    fake.print("read\n"); // after the input has ended
    SevenZip archive;
    QVERIFY(archive.compressFiles({QStringLiteral("f")}));
    QVERIFY(fake.input().isEmpty());
    QCOMPARE(archive.output(), QStringLiteral("read\n"));
}

void TestSevenZipArguments::namesStayWithoutACurrentPath()
{
    const FakeArchiver fake;
    const QStringList names{QStringLiteral("/a/b.txt"), QStringLiteral("C:/a\\b.txt"),
                            QStringLiteral("./c//d")};
    SevenZip archive;
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.arguments().mid(3, names.size()), names);
}

void TestSevenZipArguments::namesBelowTheCurrentPathBecomeRelative()
{
    const TestFolder folder;
    const FakeArchiver fake;
    const QString other = folder.path().toUpper() + QStringLiteral("/e.txt");
    SevenZip archive;
    archive.setCurrentPath(folder.path());
    const QStringList names{folder.path() + QStringLiteral("/a/b.txt"),
                            folder.path() + QStringLiteral("-2/c.txt"), QStringLiteral("d/e.txt"),
                            folder.path(), other};
    QVERIFY(archive.compressFiles(names));
    const QStringList expected{
        QDir::toNativeSeparators(QStringLiteral("a/b.txt")), QDir::toNativeSeparators(names.at(1)),
        QDir::toNativeSeparators(QStringLiteral("d/e.txt")),
        QDir::toNativeSeparators(folder.path()), QDir::toNativeSeparators(other)}; // case counts
    QCOMPARE(fake.arguments().mid(3, names.size()), expected);
    QCOMPARE(archive.files(), names);
}

void TestSevenZipArguments::everyOccurrenceOfTheCurrentPathIsRemoved()
{
    const TestFolder folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("w")));
    const CurrentFolder current(folder.path());
    const FakeArchiver fake;
    SevenZip archive;
    archive.setCurrentPath(QStringLiteral("w"));
    QVERIFY(archive.compressFiles({QStringLiteral("w/a/w/b.txt"), QStringLiteral("new/c.txt")}));
    const QStringList expected{QDir::toNativeSeparators(QStringLiteral("a/b.txt")),
                               QStringLiteral("nec.txt")};
    QCOMPARE(fake.arguments().mid(3, 2), expected);
}

void TestSevenZipArguments::aCurrentPathWithASlashAtItsEndRemovesNothing()
{
    const TestFolder folder;
    const FakeArchiver fake;
    const QString name = folder.path() + QStringLiteral("/a.txt");
    SevenZip archive;
    archive.setCurrentPath(folder.path() + QLatin1Char('/'));
    QVERIFY(archive.compressFiles({name}));
    QCOMPARE(fake.arguments().value(3), QDir::toNativeSeparators(name));
}

void TestSevenZipArguments::upTo32FilesStandOnTheCommandLine_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("1") << 1;
    QTest::newRow("31") << 31;
    QTest::newRow("32") << 32;
}

void TestSevenZipArguments::upTo32FilesStandOnTheCommandLine()
{
    QFETCH(int, count);
    const FakeArchiver fake;
    SevenZip archive;
    QVERIFY(archive.compressFiles(numberedFiles(count)));
    QCOMPARE(fake.arguments().size(), 7 + count);
    QCOMPARE(fake.arguments().mid(3, count), numberedFiles(count));
    QVERIFY(!fake.hasListFile());
}

void TestSevenZipArguments::from33FilesOnAListFileStandsOnTheCommandLine_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("33") << 33;
    QTest::newRow("34") << 34;
    QTest::newRow("2000") << 2000;
}

void TestSevenZipArguments::from33FilesOnAListFileStandsOnTheCommandLine()
{
    QFETCH(int, count);
    const FakeArchiver fake;
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("x.7z"));
    QVERIFY(archive.compressFiles(numberedFiles(count)));
    const QStringList expected{QStringLiteral("a"),         QStringLiteral("-t7z"),
                               QStringLiteral("x.7z"),      listFileArgument("listfile.tmp"),
                               QStringLiteral("-m0=LZMA2"), QStringLiteral("-mx=1"),
                               QStringLiteral("-ma=0"),     QStringLiteral("-mmt=on")};
    QCOMPARE(fake.arguments(), expected);
    QVERIFY(fake.hasListFile());
    QCOMPARE(fake.listFile(), lines(numberedFiles(count)));
    QCOMPARE(archive.files(), numberedFiles(count));
}

void TestSevenZipArguments::theListFileIsWrittenAtOnce()
{
    FakeArchiver fake;
    fake.waitFor(QStringLiteral("end"));
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    archive.startCompressingFiles(numberedFiles(33));
    QFile file(listFilePath("listfile.tmp"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), lines(numberedFiles(33)));
    file.close();
    QVERIFY(fake.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
}

void TestSevenZipArguments::theListFileHoldsTheNamesInUtf8()
{
    const FakeArchiver fake;
    QStringList names = numberedFiles(30);
    names << QString::fromUtf8("größe.txt") << QString::fromUtf8("日本 Ω") << QString::fromUtf8("😀")
          << QStringLiteral("-minus") << QStringLiteral("@at") << QStringLiteral("\"quoted\" x");
    SevenZip archive;
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.listFile(), lines(names)); // and no byte-order mark
}

void TestSevenZipArguments::theListFileHoldsTheRelativeNames()
{
    const TestFolder folder;
    const FakeArchiver fake;
    QStringList names;
    QStringList expected;
    for (int i = 0; i < 33; ++i) {
        const QString name = QStringLiteral("sub/%1.txt").arg(i);
        names << folder.path() + QLatin1Char('/') + name;
        expected << QDir::toNativeSeparators(name);
    }
    SevenZip archive;
    archive.setCurrentPath(folder.path());
    QVERIFY(archive.compressFiles(names));
    QCOMPARE(fake.listFile(), lines(expected));
    QCOMPARE(archive.files(), names);
}

void TestSevenZipArguments::theListFileTakesTheFirstFreeName_data()
{
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("expected");
    const QString first = QStringLiteral("listfile.tmp");
    const QString second = QStringLiteral("listfile1.tmp");
    const QString third = QStringLiteral("listfile2.tmp");
    QTest::newRow("none taken") << QStringList() << first;
    QTest::newRow("first taken") << QStringList{first} << second;
    QTest::newRow("two taken") << QStringList{first, second} << third;
    QTest::newRow("later taken") << QStringList{second, third} << first;
    QTest::newRow("gap") << QStringList{first, third} << second;
    QStringList many{first};
    for (int i = 1; i <= 10; ++i)
        many << QStringLiteral("listfile%1.tmp").arg(i);
    QTest::newRow("eleven taken") << many << QStringLiteral("listfile11.tmp");
}

void TestSevenZipArguments::theListFileTakesTheFirstFreeName()
{
    QFETCH(QStringList, taken);
    QFETCH(QString, expected);
    const FakeArchiver fake;
    for (const QString &name : qAsConst(taken))
        QVERIFY(writeFile(listFilePath(qPrintable(name)), "mine"));
    SevenZip archive;
    QVERIFY(archive.compressFiles(numberedFiles(33)));
    QCOMPARE(fake.arguments().value(3), listFileArgument(qPrintable(expected)));
    QCOMPARE(fake.listFile(), lines(numberedFiles(33)));

    QStringList left = listFilesThere();
    left.sort();
    taken.sort();
    QCOMPARE(left, taken);
    for (const QString &name : qAsConst(taken)) {
        QFile file(listFilePath(qPrintable(name)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("mine"));
        QVERIFY(file.remove());
    }
}

void TestSevenZipArguments::twoCompressionsAtOnceHaveTheirOwnListFiles()
{
    SevenZip archive;
    QSignalSpy finished(&archive, &SevenZip::compressionFinished);
    FakeArchiver first;
    first.waitFor(QStringLiteral("end"));
    archive.startCompressingFiles(numberedFiles(33));
    FakeArchiver second;
    second.waitFor(QStringLiteral("end"));
    archive.startCompressingFiles(numberedFiles(40));
    QTRY_VERIFY(first.wasCalled() && second.wasCalled());
    QCOMPARE(first.arguments().value(3), listFileArgument("listfile.tmp"));
    QCOMPARE(second.arguments().value(3), listFileArgument("listfile1.tmp"));
    QCOMPARE(first.listFile(), lines(numberedFiles(33)));
    QCOMPARE(second.listFile(), lines(numberedFiles(40)));

    QVERIFY(first.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
    QCOMPARE(listFilesThere(), QStringList{QStringLiteral("listfile1.tmp")});
    QVERIFY(second.goOn(QStringLiteral("end")));
    QVERIFY(finished.wait());
}

void TestSevenZipArguments::aLinkToNowhereIsInTheWayOfAListFile()
{
    const QString link = listFilePath("listfile.tmp");
    const QString target = temp_.path() + QStringLiteral("/target");
    if (!QFile::link(target, link) || !QFileInfo(link).isSymLink()) {
        QFile::remove(link);
        QSKIP("This system has no links with names of that kind");
    }
    const FakeArchiver fake;
    SevenZip archive;
    QVERIFY(archive.compressFiles(numberedFiles(33)));
    QCOMPARE(fake.arguments().value(3), listFileArgument("listfile1.tmp"));
    QCOMPARE(fake.listFile(), lines(numberedFiles(33)));
    QVERIFY(!QFile::exists(target));
    QVERIFY(QFileInfo(link).isSymLink());
    QVERIFY(QFile::remove(link));
}

void TestSevenZipArguments::theListFileIsRemovedAtTheEnd_data()
{
    QTest::addColumn<int>("exitCode");
    QTest::newRow("success") << 0;
    QTest::newRow("failure") << 2;
    QTest::newRow("crash") << -1;
}

void TestSevenZipArguments::theListFileIsRemovedAtTheEnd()
{
    QFETCH(int, exitCode);
    FakeArchiver fake;
    if (exitCode < 0)
        fake.crash();
    else
        fake.exit(exitCode);
    SevenZip archive;
    bool wasThere = true;
    connect(&archive, &SevenZip::compressionFinished, &archive,
            [&wasThere] { wasThere = QFile::exists(listFilePath("listfile.tmp")); });
    QCOMPARE(archive.compressFiles(numberedFiles(33)), exitCode == 0);
    QVERIFY(fake.hasListFile());
    QVERIFY(!wasThere);
    QCOMPARE(listFilesThere(), QStringList());
}

// The folder is moved away, because an administrator can write to any folder that exists.
void TestSevenZipArguments::theNameOfAListFileThatCannotBeWrittenStaysOnTheCommandLine()
{
    const QString folder = temp_.path();
    const QString away = folder + QStringLiteral(" away");
    FakeArchiver fake;
    fake.exit(2);
    QVERIFY(QDir().rename(folder, away));
    SevenZip archive;
    const bool result = archive.compressFiles(numberedFiles(33));
    QVERIFY(QDir().rename(away, folder));
    QVERIFY(!result);
    QCOMPARE(archive.error(), SevenZip::FatalError);
    QCOMPARE(fake.arguments().value(3), listFileArgument("listfile.tmp"));
    QCOMPARE(fake.arguments().size(), 8);
    QVERIFY(!fake.hasListFile());
}

QTEST_GUILESS_MAIN(TestSevenZipArguments)

#include "tst_sevenziparguments.moc"
