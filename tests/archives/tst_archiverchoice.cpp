#include <Utility/ArchiverProgram_p.h>

#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QtEndian>
#include <QtTest/QtTest>

using namespace Vorn::Util;
using Formats::ArchiverDialect;

namespace {

// A program file whose version block holds this version.
QByteArray programOfVersion(int majorNumber, int minorNumber)
{
    QByteArray bytes = contentOf(BuildPaths::testData(QStringLiteral("programs/version64.dll")));
    const int version = bytes.indexOf("\xbd\x04\xef\xfe") + 8;
    qToLittleEndian(static_cast<quint32>(majorNumber << 16 | minorNumber), bytes.data() + version);
    return bytes;
}

} // namespace

Q_DECLARE_METATYPE(Vorn::Util::Formats::ArchiverDialect)

class TestArchiverChoice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theArchiverIsFound_data();
    void theArchiverIsFound();
    void aVersionBlockDecides_data();
    void aVersionBlockDecides();
    void withoutAVersionBlock7zExeIsTheProductsOwn_data();
    void withoutAVersionBlock7zExeIsTheProductsOwn();
};

void TestArchiverChoice::theArchiverIsFound_data()
{
    QTest::addColumn<QStringList>("beside");
    QTest::addColumn<QStringList>("onPath");
    QTest::addColumn<QString>("expected"); // on Linux; Windows always takes product/7z.exe
    const QString own = QStringLiteral("product/7z.exe");
    const auto row
        = [](const char *name, const char *beside, const char *onPath, const QString &expected) {
              const auto names = [](const char *text) {
                  return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
              };
              QTest::newRow(name) << names(beside) << names(onPath) << expected;
          };
    row("none", "", "", own);
    row("the product's", "7z.exe", "", own);
    row("the product's before all others", "7z.exe 7z 7zz 7za", "7z 7zz 7za", own);
    row("beside: 7z first", "7z 7zz 7za", "7z 7zz 7za", QStringLiteral("product/7z"));
    row("beside: then 7zz", "7zz 7za", "7z 7zz 7za", QStringLiteral("product/7zz"));
    row("beside: then 7za", "7za", "7z 7zz 7za", QStringLiteral("product/7za"));
    row("path: 7z first", "", "7z 7zz 7za", QStringLiteral("path/7z"));
    row("path: then 7zz", "", "7zz 7za", QStringLiteral("path/7zz"));
    row("path: then 7za", "", "7za", QStringLiteral("path/7za"));
    row("7z.exe on the path does not count", "", "7z.exe", own);
}

void TestArchiverChoice::theArchiverIsFound()
{
    QFETCH(QStringList, beside);
    QFETCH(QStringList, onPath);
    QFETCH(QString, expected);
    const QTemporaryDir folder;
    const auto makePrograms = [&folder](const QString &place, const QStringList &names) {
        if (!QDir(folder.path()).mkdir(place))
            return false;
        for (const QString &name : names) {
            QFile program(folder.filePath(place + QLatin1Char('/') + name));
            if (!program.open(QIODevice::WriteOnly)
                || !program.setPermissions(program.permissions() | QFile::ExeOwner))
                return false;
        }
        return true;
    };
    QVERIFY(makePrograms(QStringLiteral("product"), beside));
    QVERIFY(makePrograms(QStringLiteral("path"), onPath));

    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.filePath(QStringLiteral("path"))));
    const ArchiverProgram archiver
        = findArchiverProgram(folder.filePath(QStringLiteral("product")));
    qputenv("PATH", before);

    if (onWindows())
        expected = QStringLiteral("product/7z.exe");
    QCOMPARE(archiver.path, folder.filePath(expected));
    const bool isOwn = expected.endsWith(QLatin1String(".exe"));
    QVERIFY(archiver.dialect == (isOwn ? ArchiverDialect::UpTo933 : ArchiverDialect::From2107));
}

void TestArchiverChoice::aVersionBlockDecides_data()
{
    QTest::addColumn<int>("majorNumber");
    QTest::addColumn<int>("minorNumber");
    QTest::addColumn<ArchiverDialect>("expected");
    QTest::newRow("9.20") << 9 << 20 << ArchiverDialect::UpTo933;
    QTest::newRow("9.33") << 9 << 33 << ArchiverDialect::UpTo933;
    QTest::newRow("9.34") << 9 << 34 << ArchiverDialect::From934;
    QTest::newRow("15.05") << 15 << 5 << ArchiverDialect::From1505;
    QTest::newRow("16.04") << 16 << 4 << ArchiverDialect::From1505;
    QTest::newRow("24.09") << 24 << 9 << ArchiverDialect::From2107;
}

void TestArchiverChoice::aVersionBlockDecides()
{
    QFETCH(int, majorNumber);
    QFETCH(int, minorNumber);
    QFETCH(ArchiverDialect, expected);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("7z.exe"));
    QVERIFY(writeFile(path, programOfVersion(majorNumber, minorNumber)));
    const ArchiverProgram archiver = findArchiverProgram(folder.path());
    QCOMPARE(archiver.path, path);
    QVERIFY(archiver.dialect == expected);
    QCOMPARE(archiver.separator, '\\');
}

void TestArchiverChoice::withoutAVersionBlock7zExeIsTheProductsOwn_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("script") << QByteArray("#!/bin/sh\necho 7-Zip 24.09 ; : > \"$0.ran\"\n");
    QTest::newRow("damaged") << programOfVersion(24, 9).left(300);
    QTest::newRow("version 0") << programOfVersion(0, 0);
}

// It is not run to find out.
void TestArchiverChoice::withoutAVersionBlock7zExeIsTheProductsOwn()
{
    QFETCH(QByteArray, program);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("7z.exe"));
    QVERIFY(writeFile(path, program));
    QVERIFY(QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner));
    const ArchiverProgram archiver = findArchiverProgram(folder.path());
    QCOMPARE(archiver.path, path);
    QVERIFY(archiver.dialect == ArchiverDialect::UpTo933);
    QCOMPARE(entriesOf(folder.path()), QStringList{QStringLiteral("7z.exe")});
}

QTEST_GUILESS_MAIN(TestArchiverChoice)

#include "tst_archiverchoice.moc"
