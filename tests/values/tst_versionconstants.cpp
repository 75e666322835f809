// The constants of the version and the branch.

#include <Utility/Formats/BranchName_p.h>
#include <Utility/Version.h>

#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

bool holds(const Version &version, int majorNumber, int minorNumber, int patch)
{
    return version.major() == majorNumber && version.minor() == minorNumber
        && version.patch() == patch && version.developmentStage() == 0 && version.isValid();
}

// Reads the constants before any object of an ordinary static initialisation is built.
struct EarlyReader
{
    EarlyReader()
        : current(Version::Current)
        , release(Version::CurrentRelease)
    {
    }

    Version current;
    Version release;
};
#if defined(__GNUC__)
__attribute__((init_priority(101)))
#endif
const EarlyReader earlyReader;

} // namespace

class TestVersionConstants : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theConstantsAreConstantInitialised();
    void theBranchIsTheRestOfTheReference_data();
    void theBranchIsTheRestOfTheReference();
};

void TestVersionConstants::theConstantsAreConstantInitialised()
{
    QVERIFY(holds(earlyReader.current, Version::Major, Version::Minor, Version::Patch));
    QVERIFY(holds(earlyReader.release, Version::Major, Version::Minor, Version::Hotfix));
}

void TestVersionConstants::theBranchIsTheRestOfTheReference_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<QString>("branch");

    const auto row = [](const char *name, const char *reference, const char *branch) {
        QTest::newRow(name) << QString::fromLatin1(reference) << QString::fromLatin1(branch);
    };
    row("a branch", "Ref=refs/heads/main", "main");
    row("a branch in a group", "Ref=refs/heads/fix/log", "fix/log");
    row("every occurrence is removed", "Ref=refs/heads/a-Ref=refs/heads/b", "a-b");
    row("nothing after it", "Ref=refs/heads/", "");
    row("without the last separator", "Ref=refs/heads", "Ref=refs/heads");
    row("another word after it", "Ref=refs/headset", "Ref=refs/headset");
    row("a tag", "Ref=refs/tags/v24", "");
    row("in another case", "ref=refs/heads/main", "");
    row("not at the start", "My Ref=refs/heads/main", "");
    row("a detached head", "DetachedHead", "");
    row("no reference", "", "");
}

void TestVersionConstants::theBranchIsTheRestOfTheReference()
{
    QFETCH(QString, reference);
    QTEST(Formats::branchName(reference), "branch");
}

QTEST_GUILESS_MAIN(TestVersionConstants)

#include "tst_versionconstants.moc"
