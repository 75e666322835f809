// The version that an archiver prints. Shell scripts take the place of the archiver.

#include <Utility/ArchiverProgram_p.h>

#include "TestFiles.h"
#include "TestWithFolder.h"

#include <QtCore/QDateTime>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtTest/QtTest>

using namespace Vorn::Util;
using Formats::ArchiverDialect;

Q_DECLARE_METATYPE(Vorn::Util::Formats::ArchiverDialect)

class TestArchiverVersion : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void thePrintedVersionDecides_data();
    void thePrintedVersionDecides();
    void aProgramThatPrintsNoVersionIsTakenForACurrentOne_data();
    void aProgramThatPrintsNoVersionIsTakenForACurrentOne();
    void aProgramIsAskedOnce();
    void aProgramThatPrintsNoVersionIsAskedOnce();
    void aProgramThatWasReplacedIsAskedAgain_data();
    void aProgramThatWasReplacedIsAskedAgain();
    void aProgramThatKeepsPrintingIsNotWaitedFor();
    void aProgramThatPrintsNoVersionIsNotWaitedForLong_data();
    void aProgramThatPrintsNoVersionIsNotWaitedForLong();

private:
    // Every run leaves a line in the file "runs".
    bool writeArchiver(const QByteArray &script) const
    {
        const QString program = path(QStringLiteral("7z"));
        return writeFile(program,
                         "#!/bin/sh\necho \"run $#\" >> \"" + QFile::encodeName(testFolder())
                             + "/runs\"\n" + script)
            && QFile::setPermissions(program,
                                     QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    ArchiverProgram find() const { return findArchiverProgram(testFolder()); }
    QByteArray runs() const { return contentOf(path(QStringLiteral("runs"))); }
};

void TestArchiverVersion::thePrintedVersionDecides_data()
{
    QTest::addColumn<QByteArray>("banner");
    QTest::addColumn<ArchiverDialect>("expected");
    QTest::newRow("p7zip 9.20") << QByteArray("7-Zip (A) [64] 9.20  Copyright (c)")
                                << ArchiverDialect::UpTo933;
    QTest::newRow("9.38") << QByteArray("7-Zip [64] 9.38 beta  Copyright (c)")
                          << ArchiverDialect::From934;
    QTest::newRow("p7zip 16.02") << QByteArray("7-Zip (a) [64] 16.02 : Copyright (c)")
                                 << ArchiverDialect::From1505;
    QTest::newRow("26.02") << QByteArray("7-Zip (z) 26.02 (x64) : Copyright (c)")
                           << ArchiverDialect::From2107;
}

void TestArchiverVersion::thePrintedVersionDecides()
{
    QFETCH(QByteArray, banner);
    QFETCH(ArchiverDialect, expected);
    QVERIFY(writeArchiver("echo\necho '" + banner + "'\necho\necho Usage\nexit 7\n"));
    const ArchiverProgram archiver = find();
    QCOMPARE(archiver.path, path(QStringLiteral("7z")));
    QVERIFY(archiver.dialect == expected);
    QCOMPARE(archiver.separator, '/');
    QCOMPARE(runs(), QByteArray("run 0\n"));
}

void TestArchiverVersion::aProgramThatPrintsNoVersionIsTakenForACurrentOne_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("prints nothing") << QByteArray("exit 0\n");
    QTest::newRow("prints something else") << QByteArray("echo usage: x\nexit 2\n");
    QTest::newRow("crashes") << QByteArray("kill -SEGV $$\n");
    QTest::newRow("prints without an end") << QByteArray("exec /usr/bin/yes\n");
    QTest::newRow("reads its input") << QByteArray("/bin/cat\n");
}

void TestArchiverVersion::aProgramThatPrintsNoVersionIsTakenForACurrentOne()
{
    QFETCH(QByteArray, script);
    QVERIFY(writeArchiver(script));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(find().dialect == ArchiverDialect::From2107);
    QVERIFY(timer.elapsed() < TimeForVersion);
}

void TestArchiverVersion::aProgramIsAskedOnce()
{
    QVERIFY(writeArchiver("echo '7-Zip [64] 9.38 beta'\n"));
    for (int i = 0; i < 3; ++i)
        QVERIFY(find().dialect == ArchiverDialect::From934);
    QCOMPARE(runs(), QByteArray("run 0\n"));
}

void TestArchiverVersion::aProgramThatPrintsNoVersionIsAskedOnce()
{
    QVERIFY(writeArchiver("exit 0\n"));
    for (int i = 0; i < 3; ++i)
        QVERIFY(find().dialect == ArchiverDialect::From2107);
    QCOMPARE(runs(), QByteArray("run 0\n"));
}

void TestArchiverVersion::aProgramThatWasReplacedIsAskedAgain_data()
{
    QTest::addColumn<QByteArray>("end"); // of the script that takes the place of the first one
    QTest::addColumn<bool>("keepsTime");
    QTest::newRow("by one of the same size") << QByteArray() << false;
    QTest::newRow("by one of the same time") << QByteArray("# longer\n") << true;
}

void TestArchiverVersion::aProgramThatWasReplacedIsAskedAgain()
{
    QFETCH(QByteArray, end);
    QFETCH(bool, keepsTime);
    const QDateTime time = QDateTime::currentDateTime().addDays(-1);
    const auto setTime = [this](const QDateTime &changed) {
        QFile file(path(QStringLiteral("7z")));
        return file.open(QIODevice::ReadWrite)
            && file.setFileTime(changed, QFileDevice::FileModificationTime);
    };
    QVERIFY(writeArchiver("echo '7-Zip [64] 9.38 beta'\n"));
    QVERIFY(setTime(time));
    QVERIFY(find().dialect == ArchiverDialect::From934);
    QVERIFY(writeArchiver("echo '7-Zip [64] 16.02 bet'\n" + end));
    QVERIFY(setTime(keepsTime ? time : time.addSecs(1)));
    QVERIFY(find().dialect == ArchiverDialect::From1505);
    QCOMPARE(runs(), QByteArray("run 0\nrun 0\n"));
}

void TestArchiverVersion::aProgramThatKeepsPrintingIsNotWaitedFor()
{
    QVERIFY(writeArchiver("echo '7-Zip [64] 9.38 beta'\nexec /bin/sleep 60\n"));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(find().dialect == ArchiverDialect::From934);
    QVERIFY(timer.elapsed() < TimeForVersion);
}

void TestArchiverVersion::aProgramThatPrintsNoVersionIsNotWaitedForLong_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("nothing") << QByteArray("exec /bin/sleep 60\n");
    QTest::newRow("a byte now and then")
        << QByteArray("while :; do printf x; /bin/sleep 0.2; done\n");
}

void TestArchiverVersion::aProgramThatPrintsNoVersionIsNotWaitedForLong()
{
    QFETCH(QByteArray, script);
    QVERIFY(writeArchiver(script));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(find().dialect == ArchiverDialect::From2107);
    QVERIFY(timer.elapsed() >= TimeForVersion);
    QVERIFY(timer.elapsed() < 10 * TimeForVersion);
}

QTEST_GUILESS_MAIN(TestArchiverVersion)

#include "tst_archiverversion.moc"
