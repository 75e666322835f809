// Some system headers define these macros (sys/sysmacros.h): Version.h must work after them.
#define major(device) (((device) >> 8) & 0xff)
#define minor(device) ((device)&0xff)

#include <Utility/Version.h>

#include <QtTest/QtTest>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <type_traits>

using namespace Vorn::Util;

static_assert(std::is_trivially_copyable_v<Version>);
static_assert(std::is_trivially_destructible_v<Version>);
static_assert(!std::is_polymorphic_v<Version>);
static_assert(std::is_convertible_v<QString, Version>);
static_assert(std::is_convertible_v<int, Version>);
static_assert(std::is_same_v<decltype(Version::Major), const int>);
static_assert(std::is_same_v<decltype(Version::Minor), const int>);
static_assert(std::is_same_v<decltype(Version::Patch), const int>);
static_assert(std::is_same_v<decltype(Version::Hotfix), const int>);
static_assert(std::is_same_v<decltype(Version::DevStage), const int>);
static_assert(std::is_same_v<decltype(Version::Current), const Version>);
static_assert(std::is_same_v<decltype(Version::CurrentRelease), const Version>);
static_assert(std::is_same_v<decltype(Version::Public), const QString>);

// The numbers are compile-time constants.
static_assert(Version::Major == 24 && Version::Minor == 0 && Version::Patch == 75);
static_assert(Version::Hotfix == 1 && Version::DevStage == 0);

namespace {

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

using Fields = std::array<int, 4>;

Fields fieldsOf(const Version &version)
{
    return {version.major(), version.minor(), version.patch(), version.developmentStage()};
}

// An element <version> with what stands in \a content.
QDomElement element(QDomDocument &document, const QString &content)
{
    document.setContent(QStringLiteral("<version>%1</version>").arg(content));
    return document.documentElement();
}

QString numbersRead(const QString &content)
{
    QDomDocument document;
    Version version(1, 2, 3);
    version.fromElement(element(document, content));
    return version.toString();
}

} // namespace

Q_DECLARE_METATYPE(Version)

class TestVersion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFieldsLieInOrder();
    void aVersionIsZeroAndInvalidByDefault();
    void missingArgumentsAreZero();
    void eachArgumentIsItsField();
    void copyingCopiesAllFields();
    void setVersionSetsAllFields();
    void setDevelopmentStageSetsTheStageOnly();
    void aVersionIsValidWhenItsMajorNumberIsNotZero_data();
    void aVersionIsValidWhenItsMajorNumberIsNotZero();

    void theConstantsAreThoseOfThisBuild();
    void theConstantsHaveAddresses();

    void threePartsAreRead_data();
    void threePartsAreRead();
    void anotherNumberOfPartsChangesNothing_data();
    void anotherNumberOfPartsChangesNothing();
    void aConvertedTextOfAnotherNumberOfPartsIsZero();
    void readingATextResetsTheStage();

    void toStringPrintsThreeNumbers_data();
    void toStringPrintsThreeNumbers();
    void toPublicHasNamesForTheMajors9To12_data();
    void toPublicHasNamesForTheMajors9To12();
    void thePublicNameOfThisBuildIsSeparate();

    void theElementHoldsThreeNumbersInOrder();
    void theElementIsNotAttached();
    void theElementIsReadBackWithoutTheStage();
    void anElementIsRead_data();
    void anElementIsRead();
    void aNullElementIsZero();
    void anElementOfAnotherNameIsReadToo();
    void readingAnElementKeepsTheStage();

    void versionsAreOrdered_data();
    void versionsAreOrdered();
    void noComparisonLooksAtTheStage();

    void theBranchIsThatOfTheBuildsReference();
};

void TestVersion::theFieldsLieInOrder()
{
    const Version version(24, 1, 75, 3);
    Fields fields{};
    static_assert(sizeof version == sizeof fields);
    std::memcpy(fields.data(), &version, sizeof fields);
    QCOMPARE(fields, (Fields{24, 1, 75, 3}));
}

void TestVersion::aVersionIsZeroAndInvalidByDefault()
{
    const Version version;
    QCOMPARE(fieldsOf(version), (Fields{0, 0, 0, 0}));
    QVERIFY(!version.isValid());
}

void TestVersion::missingArgumentsAreZero()
{
    QCOMPARE(fieldsOf(Version(24)), (Fields{24, 0, 0, 0}));
    QCOMPARE(fieldsOf(Version(24, 1)), (Fields{24, 1, 0, 0}));
    QCOMPARE(fieldsOf(Version(24, 1, 75)), (Fields{24, 1, 75, 0}));
    QCOMPARE(fieldsOf(Version(0)), (Fields{0, 0, 0, 0}));
}

void TestVersion::eachArgumentIsItsField()
{
    const Version version(24, -1, Highest, Lowest);
    QCOMPARE(version.major(), 24);
    QCOMPARE(version.minor(), -1);
    QCOMPARE(version.patch(), Highest);
    QCOMPARE(version.developmentStage(), Lowest);
}

void TestVersion::copyingCopiesAllFields()
{
    const Version version(24, 1, 75, 3);
    const Version copy(version);
    Version assigned(1, 2, 3, 4);
    assigned = version;
    QCOMPARE(fieldsOf(copy), (Fields{24, 1, 75, 3}));
    QCOMPARE(fieldsOf(assigned), (Fields{24, 1, 75, 3}));
}

void TestVersion::setVersionSetsAllFields()
{
    Version version(1, 2, 3, 4);
    version.setVersion(24, 1, 75, 3);
    QCOMPARE(fieldsOf(version), (Fields{24, 1, 75, 3}));
    version.setVersion(0, 0, 0, 0);
    QCOMPARE(fieldsOf(version), (Fields{0, 0, 0, 0}));
}

void TestVersion::setDevelopmentStageSetsTheStageOnly()
{
    Version version(24, 1, 75, 3);
    version.setDevelopmentStage(7);
    QCOMPARE(fieldsOf(version), (Fields{24, 1, 75, 7}));
}

void TestVersion::aVersionIsValidWhenItsMajorNumberIsNotZero_data()
{
    QTest::addColumn<Version>("version");
    QTest::addColumn<bool>("valid");

    QTest::newRow("all") << Version(24, 1, 75, 3) << true;
    QTest::newRow("major only") << Version(1) << true;
    QTest::newRow("negative") << Version(-1) << true;
    QTest::newRow("all but major") << Version(0, 1, 75, 3) << false;
    QTest::newRow("none") << Version() << false;
}

void TestVersion::aVersionIsValidWhenItsMajorNumberIsNotZero()
{
    QFETCH(Version, version);
    QTEST(version.isValid(), "valid");
}

void TestVersion::theConstantsAreThoseOfThisBuild()
{
    QCOMPARE(fieldsOf(Version::Current), (Fields{24, 0, 75, 0}));
    QCOMPARE(fieldsOf(Version::CurrentRelease), (Fields{24, 0, 1, 0}));
    QCOMPARE(Version::Public, QStringLiteral("2024"));
}

void TestVersion::theConstantsHaveAddresses()
{
    const std::array<const int *, 5> constants{&Version::Major, &Version::Minor, &Version::Patch,
                                               &Version::Hotfix, &Version::DevStage};
    std::array<int, 5> values{};
    std::transform(constants.cbegin(), constants.cend(), values.begin(),
                   [](const int *constant) { return *constant; });
    QCOMPARE(values, (std::array<int, 5>{24, 0, 75, 1, 0}));
}

void TestVersion::threePartsAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("numbers");

    const auto row = [](const char *text, const char *numbers) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromLatin1(numbers);
    };
    row("24.0.75", "24.0.75");
    row("0.0.0", "0.0.0");
    row("24.x.75", "24.0.75");
    row("x.y.z", "0.0.0");
    row("24..5", "24.0.5");
    row("..", "0.0.0");
    row("24.1.", "24.1.0");
    row(".1.5", "0.1.5");
    row("-1.-2.-3", "-1.-2.-3");
    row("024.010.007", "24.10.7");
    row("0x18.1.2", "0.1.2");
    row("24.1.75b", "24.1.0");
    row("24.1,5.75", "24.0.75");
    row("24.1e1.75", "24.0.75");
    row("2147483647.-2147483648.0", "2147483647.-2147483648.0");
    row("2147483648.1.2", "0.1.2");
    row(" 24.1.75", "0.1.75");
    row("24 .1.75", "0.1.75");
    row("24. 1.75", "24.0.75");
    row("24.1 .75", "24.0.75");
    row("24.1.75 ", "24.1.0");
    row("24.1.\t75", "24.1.0");
    row("24.1.75\n", "24.1.0");
    row("24. .75", "24.0.75");
    row("2 4.1.75", "0.1.75");
}

void TestVersion::threePartsAreRead()
{
    QFETCH(QString, text);
    QTEST(Version(text).toString(), "numbers");

    Version version(1, 2, 3, 4);
    version.fromString(text);
    QTEST(version.toString(), "numbers");
}

void TestVersion::anotherNumberOfPartsChangesNothing_data()
{
    QTest::addColumn<QString>("text");

    for (const char *text : {"", "24", "24.0", "1.2", "24.0.75.1", "24.0.75.3", "1.2.3.", ".1.2.3",
                             "...", ".", "1,2,3", "v24"})
        QTest::newRow(text) << QString::fromLatin1(text);
    QTest::newRow("null") << QString();
}

void TestVersion::anotherNumberOfPartsChangesNothing()
{
    QFETCH(QString, text);
    Version version(24, 0, 75, 3);
    version.fromString(text);
    QCOMPARE(fieldsOf(version), (Fields{24, 0, 75, 3}));
}

void TestVersion::aConvertedTextOfAnotherNumberOfPartsIsZero()
{
    for (const char *text : {"24.0", "", "24", "24.0.75.1"}) {
        const Version version(QString::fromLatin1(text));
        QCOMPARE(fieldsOf(version), (Fields{0, 0, 0, 0}));
        QVERIFY(!version.isValid());
    }
}

void TestVersion::readingATextResetsTheStage()
{
    Version version(1, 2, 3, 4);
    version.fromString(QStringLiteral("24.0.75"));
    QCOMPARE(fieldsOf(version), (Fields{24, 0, 75, 0}));
    QVERIFY(version.isValid());
}

void TestVersion::toStringPrintsThreeNumbers_data()
{
    QTest::addColumn<Version>("version");
    QTest::addColumn<QString>("text");

    QTest::newRow("this build") << Version(24, 0, 75) << QStringLiteral("24.0.75");
    QTest::newRow("no stage") << Version(24, 1, 75, 3) << QStringLiteral("24.1.75");
    QTest::newRow("none") << Version() << QStringLiteral("0.0.0");
    QTest::newRow("negative") << Version(-1, -2, -3) << QStringLiteral("-1.-2.-3");
    QTest::newRow("no groups of digits")
        << Version(1000, Highest, Lowest) << QStringLiteral("1000.2147483647.-2147483648");
}

void TestVersion::toStringPrintsThreeNumbers()
{
    QFETCH(Version, version);
    QTEST(version.toString(), "text");
}

void TestVersion::toPublicHasNamesForTheMajors9To12_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");

    const auto row = [](int number, const char *name) {
        QTest::newRow(name) << number << QString::fromLatin1(name);
    };
    row(0, "0");
    row(8, "8");
    row(9, "v9");
    row(10, "v10");
    row(11, "2010");
    row(12, "2011");
    row(13, "13");
    row(24, "24");
    row(2024, "2024");
    row(-9, "-9");
}

void TestVersion::toPublicHasNamesForTheMajors9To12()
{
    QFETCH(int, number);
    QTEST(Version(number).toPublic(), "name");
    QTEST(Version(number, 9, 10, 11).toPublic(), "name");
}

void TestVersion::thePublicNameOfThisBuildIsSeparate()
{
    QCOMPARE(Version::Current.toPublic(), QStringLiteral("24"));
    QCOMPARE(Version::Public, QStringLiteral("2024"));
}

void TestVersion::theElementHoldsThreeNumbersInOrder()
{
    QDomDocument document;
    const QDomElement version = Version(24, -1, 75, 3).toElement(document);
    QCOMPARE(version.tagName(), QStringLiteral("version"));
    QCOMPARE(version.attributes().size(), 0);
    QCOMPARE(version.ownerDocument(), document);

    QStringList children;
    const QDomNodeList nodes = version.childNodes();
    for (int index = 0; index < nodes.size(); ++index) {
        const QDomElement child = nodes.at(index).toElement();
        QCOMPARE(child.childNodes().size(), 1);
        QVERIFY(child.firstChild().isText());
        children += child.tagName() + QLatin1Char('=') + child.firstChild().nodeValue();
    }
    QCOMPARE(children,
             (QStringList{QStringLiteral("major=24"), QStringLiteral("minor=-1"),
                          QStringLiteral("patch=75")}));
}

void TestVersion::theElementIsNotAttached()
{
    QDomDocument document;
    QVERIFY(Version::Current.toElement(document).parentNode().isNull());
    QVERIFY(!document.hasChildNodes());
}

void TestVersion::theElementIsReadBackWithoutTheStage()
{
    QDomDocument document;
    for (const Version &written : {Version(24, 0, 75, 3), Version(23, 1, 0, 3), Version(0, 0, 0, 3),
                                   Version(Highest, Lowest, -1, 3)}) {
        Version version(1, 2, 3, 9);
        version.fromElement(written.toElement(document));
        QCOMPARE(version.toString(), written.toString());
        QCOMPARE(version.developmentStage(), 9);
    }
}

void TestVersion::anElementIsRead_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("numbers");

    const auto row = [](const char *name, const char *content, const char *numbers) {
        QTest::newRow(name) << QString::fromLatin1(content) << QString::fromLatin1(numbers);
    };
    row("all", "<major>24</major><minor>1</minor><patch>75</patch>", "24.1.75");
    row("any order", "<patch>75</patch><minor>1</minor><major>24</major>", "24.1.75");
    row("build for patch", "<major>23</major><minor>1</minor><build>12</build>", "23.1.12");
    row("build for a patch of 0", "<major>23</major><patch>0</patch><build>7</build>", "23.0.7");
    row("build for a patch that is no number", "<major>23</major><patch>x</patch><build>7</build>",
        "23.0.7");
    row("build for an empty patch", "<major>23</major><patch/><build>7</build>", "23.0.7");
    row("patch before build", "<major>23</major><minor>1</minor><build>12</build><patch>5</patch>",
        "23.1.5");
    row("a negative patch before build", "<patch>-1</patch><build>12</build>", "0.0.-1");
    row("neither patch nor build", "<major>23</major><minor>1</minor>", "23.1.0");
    row("a build that is no number", "<major>23</major><minor>1</minor><build>x</build>", "23.1.0");
    row("no major", "<minor>1</minor><patch>75</patch>", "0.1.75");
    row("no minor", "<major>24</major><patch>75</patch>", "24.0.75");
    row("a major that is no number", "<major>x</major><minor>1</minor><patch>75</patch>", "0.1.75");
    row("a minor that is no number", "<major>24</major><minor>x</minor><patch>75</patch>",
        "24.0.75");
    row("an empty major", "<major/><minor>1</minor><patch>75</patch>", "0.1.75");
    row("no hexadecimal numbers", "<major>0x18</major><minor>1</minor><patch>75</patch>", "0.1.75");
    // In a text, blanks would make it invalid.
    row("blanks around the numbers", "<major> 23 </major><minor>\n1\n</minor><patch>\t75</patch>",
        "23.1.75");
    row("blanks around a build", "<patch> 0 </patch><build> 12 </build>", "0.0.12");
    row("a blank between digits", "<major>2 3</major><minor>1</minor>", "0.1.0");
    row("the first of two", "<major>24</major><major>25</major><minor>1</minor>", "24.1.0");
    row("names in another case", "<Major>24</Major><Minor>1</Minor><Patch>75</Patch>", "0.0.0");
    row("children of children", "<x><major>24</major></x><minor>1</minor>", "0.1.0");
    row("nothing", "", "0.0.0");
}

void TestVersion::anElementIsRead()
{
    QFETCH(QString, content);
    QTEST(numbersRead(content), "numbers");
}

void TestVersion::aNullElementIsZero()
{
    Version version(24, 1, 75, 3);
    version.fromElement(QDomElement());
    QCOMPARE(fieldsOf(version), (Fields{0, 0, 0, 3}));
}

void TestVersion::anElementOfAnotherNameIsReadToo()
{
    QDomDocument document;
    document.setContent(QStringLiteral("<release><major>24</major><patch>75</patch></release>"));
    Version version;
    version.fromElement(document.documentElement());
    QCOMPARE(version.toString(), QStringLiteral("24.0.75"));
}

void TestVersion::readingAnElementKeepsTheStage()
{
    QDomDocument document;
    Version version(1, 2, 3, 4);
    version.fromElement(element(document, QStringLiteral("<major>24</major><build>5</build>")));
    QCOMPARE(fieldsOf(version), (Fields{24, 0, 5, 4}));
}

void TestVersion::versionsAreOrdered_data()
{
    QTest::addColumn<Version>("left");
    QTest::addColumn<Version>("right");
    QTest::addColumn<int>("order"); // -1 when left comes first

    QTest::newRow("equal") << Version(24, 0, 75) << Version(24, 0, 75) << 0;
    QTest::newRow("none") << Version() << Version() << 0;
    QTest::newRow("another stage") << Version(24, 0, 75, 1) << Version(24, 0, 75, 0) << 0;
    QTest::newRow("patch") << Version(24, 0, 74) << Version(24, 0, 75) << -1;
    QTest::newRow("minor") << Version(24, 0, 75) << Version(24, 1, 75) << -1;
    QTest::newRow("major") << Version(23, 0, 75) << Version(24, 0, 75) << -1;
    QTest::newRow("minor before patch") << Version(24, 0, 75) << Version(24, 1, 0) << -1;
    QTest::newRow("major before minor") << Version(9, 9, 9) << Version(10, 0, 0) << -1;
    QTest::newRow("major before patch") << Version(9, 0, 9) << Version(10, 0, 0) << -1;
    QTest::newRow("numbers, not texts") << Version(9, 0, 0) << Version(10, 0, 0) << -1;
    QTest::newRow("signed major") << Version(-1) << Version() << -1;
    QTest::newRow("signed minor") << Version(24, -1, 5) << Version(24, 0, 0) << -1;
    QTest::newRow("signed patch") << Version(24, 0, -1) << Version(24, 0, 0) << -1;
    QTest::newRow("far apart") << Version(Lowest) << Version(Highest) << -1;
    QTest::newRow("far apart in minor") << Version(1, Lowest) << Version(1, Highest) << -1;
    QTest::newRow("far apart in patch") << Version(1, 1, Lowest) << Version(1, 1, Highest) << -1;
    QTest::newRow("the release") << Version::CurrentRelease << Version::Current << -1;
    QTest::newRow("later stage, earlier patch")
        << Version(24, 0, 74, 9) << Version(24, 0, 75, 0) << -1;
}

void TestVersion::versionsAreOrdered()
{
    QFETCH(Version, left);
    QFETCH(Version, right);
    QFETCH(int, order);

    QCOMPARE(left == right, order == 0);
    QCOMPARE(left != right, order != 0);
    QCOMPARE(left < right, order < 0);
    QCOMPARE(left <= right, order <= 0);
    QCOMPARE(left > right, order > 0);
    QCOMPARE(left >= right, order >= 0);

    QCOMPARE(right == left, order == 0);
    QCOMPARE(right != left, order != 0);
    QCOMPARE(right<left, order> 0);
    QCOMPARE(right <= left, order >= 0);
    QCOMPARE(right > left, order < 0);
    QCOMPARE(right >= left, order <= 0);
}

void TestVersion::noComparisonLooksAtTheStage()
{
    const Version earlier(24, 0, 75, 0);
    const Version later(24, 0, 75, 1);
    QVERIFY(earlier == later);
    QVERIFY(!(earlier != later));
    QVERIFY(!(earlier < later));
    QVERIFY(!(later < earlier));
    QVERIFY(!(earlier > later));
    QVERIFY(!(later > earlier));
}

void TestVersion::theBranchIsThatOfTheBuildsReference()
{
    QCOMPARE(Version::Branch(), QStringLiteral(BRANCH));
}

QTEST_GUILESS_MAIN(TestVersion)

#include "tst_version.moc"
