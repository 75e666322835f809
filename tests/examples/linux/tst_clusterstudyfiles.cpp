// Files of a case that cannot be packed.

#include "Fixture.h"
#include "OrdinaryUser.h"
#include "TestFiles.h"
#include "TestFolder.h"

#include "FilesToPack.h"

#include <QtTest/QtTest>

#include <sys/stat.h>

using namespace ClusterStudy;

class TestClusterStudyFiles : public Fixture
{
    Q_OBJECT

private Q_SLOTS:
    void filesAndFoldersThatCannotBeReadAreNamed();
    void namesThatAreNoTextAreNamed();
};

void TestClusterStudyFiles::filesAndFoldersThatCannotBeReadAreNamed()
{
    const TestFolder folder;
    for (const char *name : {"1/a", "1/closed", "1/sub/b", "1/no-list/c", "1/no-entry/d"})
        QVERIFY(writeFileInFolder(folder.filePath(QString::fromLatin1(name)), "x"));
    const auto setMode = [&folder](const char *name, mode_t mode) {
        return chmod(qPrintable(folder.filePath(QString::fromLatin1(name))), mode) == 0;
    };
    QVERIFY(setMode("", 0755));
    QVERIFY(setMode("1/closed", 0));
    QVERIFY(setMode("1/no-list", 0311));
    QVERIFY(setMode("1/no-entry", 0644));
    const QByteArray answer = asOrdinaryUser([&folder] {
        QStringList leftOut;
        const QStringList names = filesToPack(folder.path(), QStringLiteral("1"), leftOut);
        leftOut.sort();
        return (names + leftOut).join(QLatin1Char('\n')).toUtf8();
    });
    QVERIFY(setMode("1/no-list", 0755));
    QVERIFY(setMode("1/no-entry", 0755));
    QCOMPARE(answer,
             QByteArray("1/a\n1/sub/b\n1/closed: cannot be read\n1/no-entry/d: cannot be read\n"
                        "1/no-list: cannot be read"));
}

void TestClusterStudyFiles::namesThatAreNoTextAreNamed()
{
    const TestFolder folder;
    QVERIFY(writeFileInFolder(folder.filePath(QStringLiteral("1/sub/a")), "x"));
    const QByteArray sub = QFile::encodeName(folder.filePath(QStringLiteral("1/sub/")));
    QCOMPARE(mkdir((sub + "f\xFF").constData(), 0755), 0);
    QCOMPARE(mkdir((sub + "f\xFF/g").constData(), 0755), 0);
    QStringList leftOut;
    const QStringList names = filesToPack(folder.path(), QStringLiteral("1"), leftOut);
    QCOMPARE(rmdir((sub + "f\xFF/g").constData()), 0);
    QCOMPARE(rmdir((sub + "f\xFF").constData()), 0);
    QCOMPARE(names, QStringList(QStringLiteral("1/sub/a")));
    QCOMPARE(leftOut,
             QStringList(QString::fromUtf8("1/sub/f\xEF\xBF\xBD: the name is no text in the "
                                           "encoding of the system")));
}

QTEST_GUILESS_MAIN(TestClusterStudyFiles)

#include "tst_clusterstudyfiles.moc"
