#include <Utility/SevenZip.h>

#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestFolder.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <memory>
#include <type_traits>

using namespace Vorn::Util;

static_assert(std::is_base_of_v<QObject, SevenZip>);
static_assert(std::has_virtual_destructor_v<SevenZip>);
static_assert(!std::is_copy_constructible_v<SevenZip>);
static_assert(std::is_same_v<std::underlying_type_t<SevenZip::Type>, int>);
static_assert(std::is_same_v<std::underlying_type_t<SevenZip::Method>, int>);
static_assert(std::is_same_v<std::underlying_type_t<SevenZip::Level>, int>);
static_assert(std::is_same_v<std::underlying_type_t<SevenZip::Mode>, int>);
static_assert(std::is_same_v<std::underlying_type_t<SevenZip::Error>, int>);

namespace {

// What classes that derive from SevenZip get to see.
class Archive : public SevenZip
{
public:
    using SevenZip::addFile;
    using SevenZip::fileExt;
    using SevenZip::fileSize;
    using SevenZip::fileSizes;
    using SevenZip::levelArg;
    using SevenZip::methodArg;
    using SevenZip::modeArg;
    using SevenZip::multithreadArg;
    using SevenZip::setCompressedSize;
    using SevenZip::setError;
    using SevenZip::setFiles;
    using SevenZip::setFolder;
    using SevenZip::setOutput;
    using SevenZip::setUncompressedSize;
    using SevenZip::toMethod;
    using SevenZip::toType;
    using SevenZip::typeArg;
};

} // namespace

class TestSevenZip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void enumeratorsHaveTheirNumbers();
    void aFreshObjectHasTheDefaults();
    void theParentOwnsTheObject();
    void theClassHasItsMetaObject();
    void theSignalsStandInTheirOrder();
    void everySettingIsKept();
    void numbersWithoutANameAreKept();
    void progressUpdatesChangeNothing();
    void theObjectIsOkExactlyWithoutAnError_data();
    void theObjectIsOkExactlyWithoutAnError();
    void theProtectedSettersSetTheResults();
    void addFileAppendsOneName();

    void theTypeSwitch();
    void theMethodSwitchDependsOnTheType_data();
    void theMethodSwitchDependsOnTheType();
    void anyTypeButZipTakesTheForm7z();
    void theLevelSwitchHoldsTheNumber_data();
    void theLevelSwitchHoldsTheNumber();
    void theModeSwitchHoldsTheNumber_data();
    void theModeSwitchHoldsTheNumber();
    void theMultithreadSwitch();
    void theFileExtensionHasNoDot();
    void typesAreReadFromTheirTexts();
    void methodsAreReadFromTheirTexts_data();
    void methodsAreReadFromTheirTexts();
    void whatHasNoTextFailsAnAssertionOrFallsBack_data();
    void whatHasNoTextFailsAnAssertionOrFallsBack();

    void theSizeOfAFileIsItsBytes();
    void aMissingFileHasSize0();
    void theSizesAreSummedAndMissingFilesCount0();
    void theSizesOfNoFilesAre0();
    void sizesGoBeyond32Bits();

    void aMissingArchiverGivesFalseAndNoSignal_data();
    void aMissingArchiverGivesFalseAndNoSignal();
    void aMissingArchiverLeavesTheCurrentFolderChanged_data();
    void aMissingArchiverLeavesTheCurrentFolderChanged();
};

void TestSevenZip::enumeratorsHaveTheirNumbers()
{
    QCOMPARE(static_cast<int>(SevenZip::Type7z), 0);
    QCOMPARE(static_cast<int>(SevenZip::TypeZip), 1);
    QCOMPARE(static_cast<int>(SevenZip::Copy), 0);
    QCOMPARE(static_cast<int>(SevenZip::Deflate), 1);
    QCOMPARE(static_cast<int>(SevenZip::LZMA), 2);
    QCOMPARE(static_cast<int>(SevenZip::LZMA2), 3);
    QCOMPARE(static_cast<int>(SevenZip::BZip2), 4);
    QCOMPARE(static_cast<int>(SevenZip::NoError), 0);
    QCOMPARE(static_cast<int>(SevenZip::Warning), 1);
    QCOMPARE(static_cast<int>(SevenZip::FatalError), 2);
}

void TestSevenZip::aFreshObjectHasTheDefaults()
{
    const SevenZip archive;
    QVERIFY(archive.archiveFile().isEmpty());
    QVERIFY(archive.currentPath().isEmpty());
    QCOMPARE(static_cast<int>(archive.type()), 0);
    QCOMPARE(static_cast<int>(archive.method()), 3);
    QCOMPARE(static_cast<int>(archive.level()), 1);
    QCOMPARE(static_cast<int>(archive.mode()), 0);
    QVERIFY(archive.useThreads());
    QCOMPARE(static_cast<int>(archive.error()), 0);
    QVERIFY(archive.isOk());
    QVERIFY(archive.output().isEmpty());
    QVERIFY(archive.files().isEmpty());
    QVERIFY(archive.folder().isEmpty());
    QCOMPARE(archive.compressedSize(), Q_INT64_C(0));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(0));
    QVERIFY(archive.children().isEmpty());
    QVERIFY(!archive.parent());
}

void TestSevenZip::theParentOwnsTheObject()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<SevenZip> archive = new SevenZip(parent.get());
    QCOMPARE(archive->parent(), parent.get());
    parent.reset();
    QVERIFY(archive.isNull());
}

void TestSevenZip::theClassHasItsMetaObject()
{
    SevenZip archive;
    QCOMPARE(archive.metaObject()->className(), "Vorn::Util::SevenZip");
    QVERIFY(qobject_cast<SevenZip *>(static_cast<QObject *>(&archive)));
}

void TestSevenZip::theSignalsStandInTheirOrder()
{
    const QMetaObject &meta = SevenZip::staticMetaObject;
    QList<QByteArray> signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            signatures << meta.method(i).methodSignature();
    }
    const QList<QByteArray> expected{"progress(qlonglong,qlonglong)", // as Qt names qint64
                                     "compressionFinished()", "extractionFinished()",
                                     "listFinished()"};
    QCOMPARE(signatures, expected);
}

void TestSevenZip::everySettingIsKept()
{
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("C:/x y/ä.7z"));
    archive.setCurrentPath(QStringLiteral("C:\\work/"));
    archive.setType(SevenZip::TypeZip);
    archive.setMethod(SevenZip::BZip2);
    archive.setLevel(SevenZip::Ultra);
    archive.setMode(SevenZip::NormalMode);
    archive.setUseThreads(false);
    QCOMPARE(archive.archiveFile(), QStringLiteral("C:/x y/ä.7z"));
    QCOMPARE(archive.currentPath(), QStringLiteral("C:\\work/"));
    QCOMPARE(archive.type(), SevenZip::TypeZip);
    QCOMPARE(archive.method(), SevenZip::BZip2);
    QCOMPARE(static_cast<int>(archive.level()), 9);
    QCOMPARE(static_cast<int>(archive.mode()), 1);
    QVERIFY(!archive.useThreads());

    archive.setArchiveFile(QString());
    archive.setCurrentPath(QString());
    archive.setUseThreads(true);
    QVERIFY(archive.archiveFile().isEmpty());
    QVERIFY(archive.currentPath().isEmpty());
    QVERIFY(archive.useThreads());
}

void TestSevenZip::numbersWithoutANameAreKept()
{
    SevenZip archive;
    archive.setLevel(static_cast<SevenZip::Level>(42));
    archive.setMode(static_cast<SevenZip::Mode>(-3));
    QCOMPARE(static_cast<int>(archive.level()), 42);
    QCOMPARE(static_cast<int>(archive.mode()), -3);
}

void TestSevenZip::progressUpdatesChangeNothing()
{
    SevenZip archive;
    QSignalSpy progress(&archive, &SevenZip::progress);
    archive.enableProgressUpdates(true);
    archive.enableProgressUpdates(false);
    QVERIFY(progress.isValid());
    QVERIFY(progress.isEmpty());
    QVERIFY(archive.isOk());
}

void TestSevenZip::theObjectIsOkExactlyWithoutAnError_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isOk");
    QTest::newRow("no error") << 0 << true;
    QTest::newRow("warning") << 1 << false;
    QTest::newRow("fatal error") << 2 << false;
}

void TestSevenZip::theObjectIsOkExactlyWithoutAnError()
{
    QFETCH(int, error);
    QFETCH(bool, isOk);
    Archive archive;
    archive.setError(static_cast<SevenZip::Error>(error));
    QCOMPARE(static_cast<int>(archive.error()), error);
    QCOMPARE(archive.isOk(), isOk);
}

void TestSevenZip::theProtectedSettersSetTheResults()
{
    Archive archive;
    archive.setOutput(QStringLiteral("text"));
    archive.setFiles({QStringLiteral("a"), QStringLiteral("b")});
    archive.setFolder(QStringLiteral("folder"));
    archive.setCompressedSize(Q_INT64_C(5000000000));
    archive.setUncompressedSize(Q_INT64_C(6000000000));
    QCOMPARE(archive.output(), QStringLiteral("text"));
    QCOMPARE(archive.files(), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(archive.folder(), QStringLiteral("folder"));
    QCOMPARE(archive.compressedSize(), Q_INT64_C(5000000000));
    QCOMPARE(archive.uncompressedSize(), Q_INT64_C(6000000000));
}

void TestSevenZip::addFileAppendsOneName()
{
    Archive archive;
    archive.setFiles({QStringLiteral("a")});
    archive.addFile(QStringLiteral("b c"));
    archive.addFile(QStringLiteral("a"));
    const QStringList expected{QStringLiteral("a"), QStringLiteral("b c"), QStringLiteral("a")};
    QCOMPARE(archive.files(), expected);
}

void TestSevenZip::theTypeSwitch()
{
    QCOMPARE(Archive::typeArg(SevenZip::Type7z), QStringLiteral("-t7z"));
    QCOMPARE(Archive::typeArg(SevenZip::TypeZip), QStringLiteral("-tzip"));
}

void TestSevenZip::theMethodSwitchDependsOnTheType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("method");
    QTest::addColumn<QString>("expected");
    QTest::newRow("zip, Copy") << 1 << 0 << QStringLiteral("-mm=Copy");
    QTest::newRow("zip, Deflate") << 1 << 1 << QStringLiteral("-mm=Deflate");
    QTest::newRow("7z, Copy") << 0 << 0 << QStringLiteral("-m0=Copy");
    QTest::newRow("7z, Deflate") << 0 << 1 << QStringLiteral("-m0=Deflate");
    QTest::newRow("7z, LZMA") << 0 << 2 << QStringLiteral("-m0=LZMA");
    QTest::newRow("7z, LZMA2") << 0 << 3 << QStringLiteral("-m0=LZMA2");
    QTest::newRow("7z, BZip2") << 0 << 4 << QStringLiteral("-m0=BZip2");
}

void TestSevenZip::theMethodSwitchDependsOnTheType()
{
    QFETCH(int, type);
    QFETCH(int, method);
    QTEST(Archive::methodArg(static_cast<SevenZip::Type>(type),
                             static_cast<SevenZip::Method>(method)),
          "expected");
}

void TestSevenZip::anyTypeButZipTakesTheForm7z()
{
    const auto unknown = static_cast<SevenZip::Type>(7);
    QCOMPARE(Archive::methodArg(unknown, SevenZip::Copy), QStringLiteral("-m0=Copy"));
    QCOMPARE(Archive::methodArg(unknown, SevenZip::Deflate), QStringLiteral("-m0=Deflate"));
    QCOMPARE(Archive::methodArg(unknown, SevenZip::LZMA), QStringLiteral("-m0=LZMA"));
    QCOMPARE(Archive::methodArg(unknown, SevenZip::LZMA2), QStringLiteral("-m0=LZMA2"));
    QCOMPARE(Archive::methodArg(unknown, SevenZip::BZip2), QStringLiteral("-m0=BZip2"));
}

void TestSevenZip::theLevelSwitchHoldsTheNumber_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0") << 0 << QStringLiteral("-mx=0");
    QTest::newRow("1") << 1 << QStringLiteral("-mx=1");
    QTest::newRow("9") << 9 << QStringLiteral("-mx=9");
    QTest::newRow("10 in decimal") << 10 << QStringLiteral("-mx=10");
    QTest::newRow("beyond the range") << 1234567 << QStringLiteral("-mx=1234567");
    QTest::newRow("negative") << -1 << QStringLiteral("-mx=-1");
}

void TestSevenZip::theLevelSwitchHoldsTheNumber()
{
    QFETCH(int, level);
    QTEST(Archive::levelArg(static_cast<SevenZip::Level>(level)), "expected");
}

void TestSevenZip::theModeSwitchHoldsTheNumber_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0") << 0 << QStringLiteral("-ma=0");
    QTest::newRow("1") << 1 << QStringLiteral("-ma=1");
    QTest::newRow("without a name") << 12 << QStringLiteral("-ma=12");
}

void TestSevenZip::theModeSwitchHoldsTheNumber()
{
    QFETCH(int, mode);
    QTEST(Archive::modeArg(static_cast<SevenZip::Mode>(mode)), "expected");
}

void TestSevenZip::theMultithreadSwitch()
{
    QCOMPARE(Archive::multithreadArg(true), QStringLiteral("-mmt=on"));
    QCOMPARE(Archive::multithreadArg(false), QStringLiteral("-mmt=off"));
}

void TestSevenZip::theFileExtensionHasNoDot()
{
    QCOMPARE(Archive::fileExt(SevenZip::Type7z), QStringLiteral("7z"));
    QCOMPARE(Archive::fileExt(SevenZip::TypeZip), QStringLiteral("zip"));
}

void TestSevenZip::typesAreReadFromTheirTexts()
{
    QCOMPARE(Archive::toType(QStringLiteral("7z")), SevenZip::Type7z);
    QCOMPARE(Archive::toType(QStringLiteral("zip")), SevenZip::TypeZip);
}

void TestSevenZip::methodsAreReadFromTheirTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::newRow("Copy") << QStringLiteral("Copy") << 0;
    QTest::newRow("Deflate") << QStringLiteral("Deflate") << 1;
    QTest::newRow("LZMA") << QStringLiteral("LZMA") << 2;
    QTest::newRow("LZMA2") << QStringLiteral("LZMA2") << 3;
    QTest::newRow("BZip2") << QStringLiteral("BZip2") << 4;
}

void TestSevenZip::methodsAreReadFromTheirTexts()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QCOMPARE(static_cast<int>(Archive::toMethod(text)), expected);
}

void TestSevenZip::whatHasNoTextFailsAnAssertionOrFallsBack_data()
{
    QTest::addColumn<QStringList>("call");
    QTest::addColumn<QByteArray>("fallback");
    const auto row = [](const char *name, const QStringList &call, const QByteArray &fallback) {
        QTest::newRow(name) << call << fallback;
    };
    const auto call = [](const char *function, const char *first = "", const char *second = "") {
        return QStringList{QString::fromLatin1(function), QString::fromLatin1(first),
                           QString::fromLatin1(second)};
    };
    row("type switch, 2", call("typeArg", "2"), "");
    row("type switch, -1", call("typeArg", "-1"), "");
    row("extension, 2", call("fileExt", "2"), "");
    row("method switch, zip and LZMA", call("methodArg", "1", "2"), "");
    row("method switch, zip and LZMA2", call("methodArg", "1", "3"), "");
    row("method switch, zip and BZip2", call("methodArg", "1", "4"), "");
    row("method switch, zip and 5", call("methodArg", "1", "5"), "");
    row("method switch, 7z and 5", call("methodArg", "0", "5"), "");
    row("method switch, 7z and -1", call("methodArg", "0", "-1"), "");
    row("method switch, other type and 5", call("methodArg", "7", "5"), "");
    row("type of rar", call("toType", "rar"), "0");
    row("type of ZIP", call("toType", "ZIP"), "0");
    row("type of zip and a blank", call("toType", "zip "), "0");
    row("type of nothing", call("toType", ""), "0");
    row("method of LZMA:16", call("toMethod", "LZMA:16"), "3");
    row("method of copy", call("toMethod", "copy"), "3");
    row("method of a blank and Copy", call("toMethod", " Copy"), "3");
    row("method of Deflate64", call("toMethod", "Deflate64"), "3");
    row("method of nothing", call("toMethod", ""), "3");
    row("end without an operation", call("setCommandFinished"), "0"); // no signal
}

void TestSevenZip::whatHasNoTextFailsAnAssertionOrFallsBack()
{
    QFETCH(QStringList, call);
    QFETCH(QByteArray, fallback);
    QProcess child;
    child.start(BuildPaths::helperProgram(),
                QStringList{QStringLiteral("sevenzip-convert")} + call);
    QVERIFY(child.waitForFinished());
    const QByteArray output = child.readAllStandardOutput();
#ifdef QT_NO_DEBUG
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(output, fallback);
#else
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QVERIFY(child.readAllStandardError().contains("ASSERT: \"false\""));
    QVERIFY(output.isEmpty());
#endif
}

void TestSevenZip::theSizeOfAFileIsItsBytes()
{
    const TestFolder folder;
    QVERIFY(writeFile(folder.filePath(QStringLiteral("ten")), "0123456789"));
    QVERIFY(writeFile(folder.filePath(QStringLiteral("empty")), QByteArray()));
    QCOMPARE(Archive::fileSize(folder.filePath(QStringLiteral("ten"))), Q_INT64_C(10));
    QCOMPARE(Archive::fileSize(folder.filePath(QStringLiteral("empty"))), Q_INT64_C(0));
}

void TestSevenZip::aMissingFileHasSize0()
{
    const TestFolder folder;
    QCOMPARE(Archive::fileSize(folder.filePath(QStringLiteral("missing"))), Q_INT64_C(0));
}

void TestSevenZip::theSizesAreSummedAndMissingFilesCount0()
{
    const TestFolder folder;
    const QString ten = folder.filePath(QStringLiteral("ten"));
    const QString three = folder.filePath(QStringLiteral("three"));
    const QString missing = folder.filePath(QStringLiteral("missing"));
    QVERIFY(writeFile(ten, "0123456789"));
    QVERIFY(writeFile(three, "012"));
    QCOMPARE(Archive::fileSizes({missing, ten}), Q_INT64_C(10));
    QCOMPARE(Archive::fileSizes({ten, missing, three, three}), Q_INT64_C(16));
}

void TestSevenZip::theSizesOfNoFilesAre0()
{
    QCOMPARE(Archive::fileSizes({}), Q_INT64_C(0));
}

void TestSevenZip::sizesGoBeyond32Bits()
{
    const TestFolder folder;
    QFile large(folder.filePath(QStringLiteral("large")));
    QVERIFY(large.open(QIODevice::WriteOnly));
    constexpr qint64 Size = Q_INT64_C(3000000000);
    if (!large.resize(Size))
        QSKIP("The file system of the temporary folder takes no file of 3 GB");
    large.close();
    QCOMPARE(Archive::fileSize(large.fileName()), Size);
    QCOMPARE(Archive::fileSizes({large.fileName(), large.fileName()}), 2 * Size);
}

namespace {

void operationRows(const QStringList &operations)
{
    QTest::addColumn<QString>("operation");
    for (const QString &operation : operations)
        QTest::newRow(qPrintable(operation)) << operation;
}

// What the helper prints about an operation in the folder "work" when there is no archiver.
QJsonObject runWithoutArchiver(const TestFolder &folder, const QString &operation,
                               const QString &currentPath)
{
    QProcess child;
    child.setWorkingDirectory(folder.path());
    child.start(BuildPaths::helperProgram(),
                {QStringLiteral("sevenzip-missing"), folder.filePath(QStringLiteral("programs")),
                 currentPath, operation});
    if (!child.waitForFinished() || child.exitStatus() != QProcess::NormalExit)
        return QJsonObject();
    return QJsonDocument::fromJson(child.readAllStandardOutput()).object();
}

bool makeFolders(const TestFolder &folder)
{
    const QDir dir(folder.path());
    return dir.mkdir(QStringLiteral("programs")) && dir.mkdir(QStringLiteral("work"));
}

} // namespace

void TestSevenZip::aMissingArchiverGivesFalseAndNoSignal_data()
{
    operationRows({QStringLiteral("compress"), QStringLiteral("extract"), QStringLiteral("list")});
}

void TestSevenZip::aMissingArchiverGivesFalseAndNoSignal()
{
    QFETCH(QString, operation);
    const TestFolder folder;
    QVERIFY(makeFolders(folder));
    const QJsonObject report = runWithoutArchiver(folder, operation, QString());
    QCOMPARE(report.value(QStringLiteral("result")), QJsonValue(false));
    QCOMPARE(report.value(QStringLiteral("signals")), QJsonValue(0));
    QCOMPARE(report.value(QStringLiteral("error")), QJsonValue(0));
    QCOMPARE(report.value(QStringLiteral("folder")).toString(),
             QDir(folder.path()).canonicalPath());
}

void TestSevenZip::aMissingArchiverLeavesTheCurrentFolderChanged_data()
{
    operationRows({QStringLiteral("compress"), QStringLiteral("extract"), QStringLiteral("list"),
                   QStringLiteral("startCompressing"), QStringLiteral("startExtracting"),
                   QStringLiteral("startListing")});
}

void TestSevenZip::aMissingArchiverLeavesTheCurrentFolderChanged()
{
    QFETCH(QString, operation);
    const TestFolder folder;
    QVERIFY(makeFolders(folder));
    const QString work = folder.filePath(QStringLiteral("work"));
    const QJsonObject report = runWithoutArchiver(folder, operation, work);
    QCOMPARE(report.value(QStringLiteral("signals")), QJsonValue(0));
    QCOMPARE(report.value(QStringLiteral("folder")).toString(), QDir(work).canonicalPath());
}

QTEST_GUILESS_MAIN(TestSevenZip)

#include "tst_sevenzip.moc"
