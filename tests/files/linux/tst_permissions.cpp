// Who may write the files that the library makes.

#include "TestFiles.h"
#include "TestFolder.h"
#include "TestWithFolder.h"

#include <Utility/Command.h>
#include <Utility/CpuInfo.h>
#include <Utility/Log.h>
#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QtTest>

#include <sys/stat.h>

using namespace Vorn::Util;

namespace {

constexpr QFile::Permissions ByOthers = QFile::WriteGroup | QFile::WriteOther;

bool isWritableByOthers(const QString &name)
{
    return QFile::permissions(name) & ByOthers;
}

} // namespace

class TestPermissions : public TestInFolder
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override;

    void aLogIsWrittenByItsUserOnly();
    void theMaskOfTheProcessCounts();
    void aTruncatedLogIsWrittenByItsUserOnly();
    void aScriptIsWrittenByItsUserOnly();
    void anInformationFileIsWrittenByItsUserOnly();
    void aListFileIsWrittenByItsUserOnly();
    void foldersAreWrittenByTheirUserOnly();

private:
    TestFolder userData_;
};

void TestPermissions::initTestCase()
{
    umask(022);
    qputenv("XDG_DATA_HOME", QFile::encodeName(userData_.path()));
}

void TestPermissions::aLogIsWrittenByItsUserOnly()
{
    Log log(path("run.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    log.append(QStringLiteral("line"));
    QVERIFY(!isWritableByOthers(path("run.log")));
}

void TestPermissions::theMaskOfTheProcessCounts()
{
    const mode_t before = umask(077);
    Log log(path("run.log"), Log::NoFileTimeStamp);
    const bool isOpen = log.open(true);
    const QString mode = Command().run(QStringLiteral("stat -c %a work.bat"), 10, false);
    CpuInfo(nullptr, testFolder());
    umask(before);
    QVERIFY(isOpen);
    QCOMPARE(mode, QStringLiteral("600\n"));
    constexpr QFile::Permissions NotTheUser = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QVERIFY(!(QFile::permissions(path("run.log")) & NotTheUser));
    QVERIFY(!(QFile::permissions(path("SystemInfo.xml")) & NotTheUser));
}

void TestPermissions::aTruncatedLogIsWrittenByItsUserOnly()
{
    QVERIFY(writeFile(path("run.log"), QByteArray(int(Log::MaxLogSize) + 1, 'x')));
    Log log(path("run.log"), Log::NoFileTimeStamp);
    QVERIFY(log.open(true));
    QVERIFY(QFileInfo(path("run.log")).size() < Log::MaxLogSize);
    QVERIFY(!isWritableByOthers(path("run.log")));
}

void TestPermissions::aScriptIsWrittenByItsUserOnly()
{
    QCOMPARE(Command().run(QStringLiteral("stat -c %a work.bat"), 10, false),
             QStringLiteral("644\n"));
}

void TestPermissions::anInformationFileIsWrittenByItsUserOnly()
{
    CpuInfo(nullptr, testFolder());
    QVERIFY(QFileInfo::exists(path("SystemInfo.xml")));
    QVERIFY(!isWritableByOthers(path("SystemInfo.xml")));
}

// The archiver is a script that looks at its list file.
void TestPermissions::aListFileIsWrittenByItsUserOnly()
{
    const QString archiver = QCoreApplication::applicationDirPath() + QStringLiteral("/7z.exe");
    QVERIFY(writeFile(archiver,
                      "#!/bin/sh\n"
                      "for word; do\n"
                      "case $word in @*) stat -c %a \"${word#@}\" > mode.txt ;; esac\n"
                      "done\n"));
    QVERIFY(
        QFile::setPermissions(archiver, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QStringList names;
    for (int number = 0; number < 33; ++number)
        names.append(QString::number(number));
    SevenZip archive;
    QVERIFY(archive.compressFiles(names));
    QVERIFY(QFile::remove(archiver));
    QCOMPARE(contentOf(path("mode.txt")), QByteArray("644\n"));
}

void TestPermissions::foldersAreWrittenByTheirUserOnly()
{
    const QStringList folders{System::getFlagsDirPath(), System::getRuleDirPath(),
                              System::getTemplateDirPath()};
    for (const QString &folder : folders) {
        QVERIFY2(folder.startsWith(userData_.path()), qPrintable(folder));
        QVERIFY2(!isWritableByOthers(folder), qPrintable(folder));
    }
    QVERIFY(System::makePath(path("a/b")));
    QVERIFY(!isWritableByOthers(path("a/b")));
}

QTEST_GUILESS_MAIN(TestPermissions)
#include "tst_permissions.moc"
