// The folder for the data of all users. Permissions count for an ordinary user only.

#include "OrdinaryUser.h"
#include "TestWithFolder.h"

#include <Utility/Platform/Linux/Folders_p.h>
#include <Utility/System.h>

#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

constexpr QFile::Permissions Readable = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup
    | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
constexpr QFile::Permissions Writable
    = Readable | QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;

} // namespace

class TestDataFolder : public TestWithFolder
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void theFolderThatMayBeWrittenIsTaken_data();
    void theFolderThatMayBeWrittenIsTaken();
    void aMissingFolderIsNotTaken();
    void anOrdinaryUserHasTheProgramDataAmongItsOwn();

private:
    QString common() const { return path(QStringLiteral("lib")); }
};

void TestDataFolder::init()
{
    TestWithFolder::init();
    QVERIFY(QFile::setPermissions(testFolder(), Writable));
}

void TestDataFolder::cleanup()
{
    QFile::setPermissions(common(), Writable);
    TestWithFolder::cleanup();
}

void TestDataFolder::theFolderThatMayBeWrittenIsTaken_data()
{
    QTest::addColumn<bool>("isCommonWritable");
    QTest::addColumn<bool>("isMakersThere");
    QTest::addColumn<bool>("isMakersWritable");
    QTest::addColumn<QByteArray>("taken");

    QTest::newRow("it can be made") << true << false << false << QByteArray("common");
    QTest::newRow("it cannot be made") << false << false << false << QByteArray("own");
    QTest::newRow("made by the administrator for all users")
        << false << true << true << QByteArray("common");
    QTest::newRow("made by the administrator") << false << true << false << QByteArray("own");
    QTest::newRow("made by another user") << true << true << false << QByteArray("own");
    QTest::newRow("made by this user") << true << true << true << QByteArray("common");
}

void TestDataFolder::theFolderThatMayBeWrittenIsTaken()
{
    QFETCH(bool, isCommonWritable);
    QFETCH(bool, isMakersThere);
    QFETCH(bool, isMakersWritable);
    QFETCH(QByteArray, taken);

    const QString makers = common() + QStringLiteral("/Vantorel");
    QVERIFY(QDir().mkdir(common()));
    if (isMakersThere) {
        QVERIFY(QDir().mkdir(makers));
        QVERIFY(QFile::setPermissions(makers, isMakersWritable ? Writable : Readable));
    }
    QVERIFY(QFile::setPermissions(common(), isCommonWritable ? Writable : Readable));
    const QString name = common();
    QCOMPARE(asOrdinaryUser([name] {
                 const QString folder = Platform::writableDataFolder(
                     name, QStringLiteral("Vantorel"), QStringLiteral("own"));
                 return folder == name ? QByteArray("common") : folder.toLatin1();
             }),
             taken);
}

void TestDataFolder::aMissingFolderIsNotTaken()
{
    QCOMPARE(
        Platform::writableDataFolder(common(), QStringLiteral("Vantorel"), QStringLiteral("own")),
        QStringLiteral("own"));
}

void TestDataFolder::anOrdinaryUserHasTheProgramDataAmongItsOwn()
{
    if (QFileInfo::exists(QStringLiteral("/var/lib/Vantorel")))
        QSKIP("The administrator has made the maker's folder on this machine");
    const QByteArray home = QFile::encodeName(testFolder());
    QCOMPARE(asOrdinaryUser([home] {
                 qputenv("XDG_DATA_HOME", home);
                 return QFile::encodeName(System::getProgramDataPath(QStringLiteral("Any Name")));
             }),
             home + "/Vantorel/Any Name");
}

QTEST_GUILESS_MAIN(TestDataFolder)

#include "tst_datafolder.moc"
