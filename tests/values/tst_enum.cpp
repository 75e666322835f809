#include <Utility/Enum.h>

#include "BuildPaths.h"

#include <QtCore/QLibrary>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <limits>
#include <type_traits>

using Vorn::Util::Enum;

// Only derived classes create and copy members; anybody may destroy them.
static_assert(!std::is_default_constructible_v<Enum>);
static_assert(!std::is_copy_constructible_v<Enum>);
static_assert(!std::is_copy_assignable_v<Enum>);
static_assert(!std::is_constructible_v<Enum, QString, int>);
static_assert(!std::is_constructible_v<Enum, QString, QString>);
static_assert(!std::is_constructible_v<Enum, QString, QString, int>);
static_assert(std::is_destructible_v<Enum>);
static_assert(!std::is_polymorphic_v<Enum>);

namespace {

class Member : public Enum
{
public:
    Member() = default;

    Member(const QString &type, int id)
        : Enum(type, id)
    {
    }

    Member(const QString &type, const char *name)
        : Enum(type, QString::fromUtf8(name))
    {
    }

    Member(const QString &type, const char *name, int value)
        : Enum(type, QString::fromUtf8(name), value)
    {
    }

    Member(const Enum &other)
        : Enum(other)
    {
    }

    using Enum::id;
    using Enum::Invalid;
};

static_assert(std::is_copy_constructible_v<Member>);
static_assert(std::is_copy_assignable_v<Member>);
static_assert(std::is_same_v<decltype(Member::Invalid), const int>);

Member named(const QString &type, const char *name)
{
    return Enum::fromString(type, QString::fromUtf8(name));
}

QString colour()
{
    return QStringLiteral("Colour");
}

// Members are static objects, as in a program.
const Member Red(colour(), "Red");
const Member Green(colour(), "Green");
const Member Blue(colour(), "Blue");

QString shared()
{
    return QStringLiteral("Shared");
}

const Member OfProgram(shared(), "program", 100);

int call(QLibrary &module, const char *function)
{
    const auto address = reinterpret_cast<int (*)()>(module.resolve(function));
    return address ? address() : -2;
}

int valueIn(QLibrary &module, const char *name)
{
    const auto address = reinterpret_cast<int (*)(const char *)>(module.resolve("valueOf"));
    return address ? address(name) : -2;
}

} // namespace

class TestEnum : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void invalidIsMinusOne();
    void invalidIsAConstantExpression();
    void aDefaultMemberIsInvalidAndOfNoType();
    void idsFollowTheOrderOfRegistration();
    void valuesAreIdsUnlessGiven();
    void anAutomaticValueAfterAGivenOneIsStillTheId();
    void aGivenValueMayBeAnyNumber_data();
    void aGivenValueMayBeAnyNumber();
    void aMemberOfValueMinusOneIsValid();
    void aMemberByIdRegistersNothing();
    void aMemberByIdIsTheOneInThatPlace();
    void anIdIsNotChecked();
    void copyingCopiesTypeAndId();
    void copyingRegistersNothing();

    void anUnknownTypeHasNoMembers();
    void lookingUpDoesNotMakeATypeKnown();
    void namesAreFoundExactly_data();
    void namesAreFoundExactly();
    void aNameThatIsNotThereKeepsTheType();
    void aNameOfAnUnknownTypeHasNoType();
    void valuesAreFound();
    void aValueThatIsNotThereKeepsTheType();
    void aValueOfAnUnknownTypeHasNoType();
    void anInvalidMemberHasNoNameAndNoValue();

    void theSameNameMakesAnotherMember();
    void theSameValueMakesAnotherMember();
    void typesAreKeptApart();
    void typeNamesAreCaseSensitive();
    void emptyNamesAreNames();
    void namesMayBeAnyText();
    void membersAreEqualWhenTypeAndIdAre();
    void manyMembersAreRegistered();

    void allModulesShareTheRegistries();
    void theRegistriesLiveUntilTheProcessEnds();
};

void TestEnum::invalidIsMinusOne()
{
    const int *address = &Member::Invalid;
    QCOMPARE(*address, -1);
}

void TestEnum::invalidIsAConstantExpression()
{
    static_assert(Member::Invalid == -1);
    const auto isInvalid = [](int id) {
        switch (id) {
        case Member::Invalid:
            return true;
        default:
            return false;
        }
    };
    QVERIFY(isInvalid(Member().id()));
    QVERIFY(!isInvalid(Red.id()));
}

void TestEnum::aDefaultMemberIsInvalidAndOfNoType()
{
    const Member member;
    QVERIFY(!member.isValid());
    QCOMPARE(member.id(), -1);
    QVERIFY(member == Member(QString(), -1));
}

void TestEnum::idsFollowTheOrderOfRegistration()
{
    QCOMPARE(Red.id(), 0);
    QCOMPARE(Green.id(), 1);
    QCOMPARE(Blue.id(), 2);
    QCOMPARE(Enum::count(colour()), 3);
    QVERIFY(Red.isValid() && Green.isValid() && Blue.isValid());
}

void TestEnum::valuesAreIdsUnlessGiven()
{
    QCOMPARE(Red.toValue(), 0);
    QCOMPARE(Green.toValue(), 1);
    QCOMPARE(Blue.toValue(), 2);
    QCOMPARE(Green.toString(), QStringLiteral("Green"));

    const Member given(QStringLiteral("Given"), "first", 12);
    QCOMPARE(given.id(), 0);
    QCOMPARE(given.toValue(), 12);
    QCOMPARE(given.toString(), QStringLiteral("first"));
}

void TestEnum::anAutomaticValueAfterAGivenOneIsStillTheId()
{
    const QString type = QStringLiteral("Mixed");
    const Member a(type, "A");
    const Member b(type, "B", 10);
    const Member c(type, "C");
    QCOMPARE(a.toValue(), 0);
    QCOMPARE(b.toValue(), 10);
    QCOMPARE(c.toValue(), 2);
    QCOMPARE(b.id(), 1);
    QCOMPARE(c.id(), 2);
}

void TestEnum::aGivenValueMayBeAnyNumber_data()
{
    QTest::addColumn<int>("value");

    for (const int value :
         {std::numeric_limits<int>::min(), -2, -1, 0, 1, std::numeric_limits<int>::max()})
        QTest::newRow(QByteArray::number(value).constData()) << value;
}

void TestEnum::aGivenValueMayBeAnyNumber()
{
    QFETCH(int, value);
    const QString type = QStringLiteral("Any%1").arg(value);
    const Member other(type, "other", 5);
    const Member member(type, "member", value);
    QCOMPARE(member.toValue(), value);
    QVERIFY(Enum::fromValue(type, value) == member);
    QVERIFY(member != other);
}

void TestEnum::aMemberOfValueMinusOneIsValid()
{
    const QString type = QStringLiteral("Negative");
    const Member none(type, "none", -1);
    QVERIFY(none.isValid());
    QCOMPARE(none.id(), 0);
    QCOMPARE(none.toValue(), -1);
    QCOMPARE(Enum::fromValue(type, -1).toString(), QStringLiteral("none"));
}

void TestEnum::aMemberByIdRegistersNothing()
{
    const Member member(QStringLiteral("Nowhere"), 3);
    QCOMPARE(member.id(), 3);
    QVERIFY(member.isValid());
    QCOMPARE(Enum::count(QStringLiteral("Nowhere")), 0);
    QVERIFY(named(QStringLiteral("Nowhere"), "x") == Member());
}

void TestEnum::aMemberByIdIsTheOneInThatPlace()
{
    const Member member(colour(), 1);
    QVERIFY(member == Green);
    QCOMPARE(member.toString(), QStringLiteral("Green"));
    QCOMPARE(member.toValue(), 1);
    QCOMPARE(Enum::count(colour()), 3);
}

void TestEnum::anIdIsNotChecked()
{
    QCOMPARE(Member(colour(), 99).id(), 99);
    QVERIFY(Member(colour(), 99).isValid());
    QVERIFY(!Member(colour(), -1).isValid());
    QVERIFY(Member(colour(), -2).isValid());
}

void TestEnum::copyingCopiesTypeAndId()
{
    const Member copy(Green);
    QVERIFY(copy == Green);
    QCOMPARE(copy.toString(), QStringLiteral("Green"));

    Member assigned;
    assigned = Blue;
    QVERIFY(assigned == Blue);
    QCOMPARE(assigned.toString(), QStringLiteral("Blue"));
    assigned = Member();
    QVERIFY(!assigned.isValid());
    QVERIFY(assigned == Member());
}

void TestEnum::copyingRegistersNothing()
{
    const Member copy(Green);
    Member assigned;
    assigned = copy;
    QCOMPARE(assigned.id(), 1);
    QCOMPARE(Enum::count(colour()), 3);
}

void TestEnum::anUnknownTypeHasNoMembers()
{
    QCOMPARE(Enum::count(QStringLiteral("Unknown")), 0);
    QCOMPARE(Enum::count(QString()), 0);
}

void TestEnum::lookingUpDoesNotMakeATypeKnown()
{
    const QString type = QStringLiteral("LookedUp");
    for (int time = 0; time < 2; ++time) {
        QCOMPARE(Enum::count(type), 0);
        QVERIFY(named(type, "x") == Member());
        QVERIFY(Enum::fromValue(type, 0) == Member());
        QCOMPARE(Member(type, 0).toString(), QString());
    }
}

void TestEnum::namesAreFoundExactly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("id");

    QTest::newRow("first") << QStringLiteral("Red") << 0;
    QTest::newRow("middle") << QStringLiteral("Green") << 1;
    QTest::newRow("last") << QStringLiteral("Blue") << 2;
    QTest::newRow("lower case") << QStringLiteral("green") << -1;
    QTest::newRow("upper case") << QStringLiteral("GREEN") << -1;
    QTest::newRow("the beginning") << QStringLiteral("Gree") << -1;
    QTest::newRow("more") << QStringLiteral("Greens") << -1;
    QTest::newRow("blank in front") << QStringLiteral(" Green") << -1;
    QTest::newRow("blank after") << QStringLiteral("Green ") << -1;
    QTest::newRow("empty") << QStringLiteral("") << -1;
    QTest::newRow("null") << QString() << -1;
}

void TestEnum::namesAreFoundExactly()
{
    QFETCH(QString, name);
    QFETCH(int, id);
    const Member member(Enum::fromString(colour(), name));
    QCOMPARE(member.id(), id);
    QCOMPARE(member.isValid(), id >= 0);
    QCOMPARE(member.toString(), id >= 0 ? name : QString());
}

void TestEnum::aNameThatIsNotThereKeepsTheType()
{
    QVERIFY(named(colour(), "green") == Member(colour(), -1));
    QVERIFY(named(colour(), "green") != Member());
}

void TestEnum::aNameOfAnUnknownTypeHasNoType()
{
    QVERIFY(named(QStringLiteral("Shape"), "Red") == Member());
    QVERIFY(named(QStringLiteral("Shape"), "Red") != Member(QStringLiteral("Shape"), -1));
    QVERIFY(!named(QStringLiteral("Shape"), "Red").isValid());
}

void TestEnum::valuesAreFound()
{
    QCOMPARE(Enum::fromValue(colour(), 0).toString(), QStringLiteral("Red"));
    QCOMPARE(Enum::fromValue(colour(), 2).toString(), QStringLiteral("Blue"));

    // By the value, not by the index.
    const QString type = QStringLiteral("Crossed");
    const Member one(type, "one", 1);
    const Member zero(type, "zero", 0);
    QVERIFY(Enum::fromValue(type, 1) == one);
    QVERIFY(Enum::fromValue(type, 0) == zero);
}

void TestEnum::aValueThatIsNotThereKeepsTheType()
{
    QVERIFY(Enum::fromValue(colour(), 3) == Member(colour(), -1));
    QVERIFY(Enum::fromValue(colour(), -1) == Member(colour(), -1));
    QVERIFY(Enum::fromValue(colour(), 3) != Member());
}

void TestEnum::aValueOfAnUnknownTypeHasNoType()
{
    QVERIFY(Enum::fromValue(QStringLiteral("Shape"), 0) == Member());
    QVERIFY(Enum::fromValue(QStringLiteral("Shape"), 0) != Member(QStringLiteral("Shape"), -1));
}

void TestEnum::anInvalidMemberHasNoNameAndNoValue()
{
    for (const Member &member : {Member(), Member(colour(), -1), named(colour(), "green"),
                                 named(QStringLiteral("Shape"), "x")}) {
        QVERIFY(!member.isValid());
        QCOMPARE(member.toString(), QString());
        QCOMPARE(member.toValue(), -1);
    }
}

void TestEnum::theSameNameMakesAnotherMember()
{
    const QString type = QStringLiteral("Repeated");
    const Member red(type, "Red");
    const Member green(type, "Green");
    const Member blue(type, "Blue");
    const Member again(type, "Red");
    QCOMPARE(Enum::count(type), 4);
    QCOMPARE(again.id(), 3);
    QCOMPARE(again.toValue(), 3);
    QCOMPARE(again.toString(), QStringLiteral("Red"));
    QVERIFY(again != red);
    QVERIFY(named(type, "Red") == red);
    QVERIFY(Enum::fromValue(type, 3) == again);
}

void TestEnum::theSameValueMakesAnotherMember()
{
    const QString type = QStringLiteral("Aliases");
    const Member first(type, "first", 5);
    const Member second(type, "second", 5);
    QCOMPARE(Enum::count(type), 2);
    QCOMPARE(second.id(), 1);
    QCOMPARE(second.toValue(), 5);
    QVERIFY(Enum::fromValue(type, 5) == first);
    QVERIFY(named(type, "second") == second);
}

void TestEnum::typesAreKeptApart()
{
    const QString type = QStringLiteral("Light");
    const Member red(type, "Red", 50);
    QCOMPARE(red.id(), 0);
    QVERIFY(red != Red);
    QVERIFY(named(type, "Red") == red);
    QVERIFY(!named(type, "Green").isValid());
    QCOMPARE(named(colour(), "Red").toValue(), 0);
    QCOMPARE(Enum::count(colour()), 3);
    QCOMPARE(Enum::count(type), 1);
}

void TestEnum::typeNamesAreCaseSensitive()
{
    QCOMPARE(Enum::count(QStringLiteral("colour")), 0);
    QVERIFY(named(QStringLiteral("colour"), "Red") == Member());
}

void TestEnum::emptyNamesAreNames()
{
    const QString type = QStringLiteral("Blanks");
    const Member empty(type, "");
    const Member blank(type, " ");
    QVERIFY(empty.isValid());
    QVERIFY(named(type, "") == empty);
    QVERIFY(named(type, " ") == blank);

    const Member ofNoType(QString(), "x");
    QCOMPARE(Enum::count(QString()), 1);
    QVERIFY(named(QString(), "x") == ofNoType);
    QVERIFY(named(QString(), "y") == Member());
}

void TestEnum::namesMayBeAnyText()
{
    const QString type = QString::fromUtf8("Gr\xC3\xB6\xC3\x9F"
                                           "e");
    const Member member(type, "\xE2\x82\xAC %1");
    QCOMPARE(Enum::count(type), 1);
    QCOMPARE(member.toString(), QString::fromUtf8("\xE2\x82\xAC %1"));
    QVERIFY(named(type, "\xE2\x82\xAC %1") == member);
}

void TestEnum::membersAreEqualWhenTypeAndIdAre()
{
    QVERIFY(Red == Red);
    QVERIFY(!(Red != Red));
    QVERIFY(Red != Green);
    QVERIFY(!(Red == Green));
    QVERIFY(Member(QStringLiteral("X"), 0) != Member(QStringLiteral("Y"), 0));
    QVERIFY(Member(QStringLiteral("X"), 0) == Member(QStringLiteral("X"), 0));
    QVERIFY(Member(QStringLiteral("X"), -1) != Member(QStringLiteral("Y"), -1));
    QVERIFY(Member() == named(QStringLiteral("Shape"), "x"));
}

void TestEnum::manyMembersAreRegistered()
{
    const QString type = QStringLiteral("Many");
    constexpr int Count = 2000;
    for (int number = 0; number < Count; ++number) {
        const Member member(type, QByteArray::number(number).constData(), 3 * number);
        QCOMPARE(member.id(), number);
    }
    QCOMPARE(Enum::count(type), Count);
    for (int number = 0; number < Count; number += 111) {
        QCOMPARE(Member(type, number).toString(), QString::number(number));
        QCOMPARE(Member(type, number).toValue(), 3 * number);
        QCOMPARE(Member(Enum::fromValue(type, 3 * number)).id(), number);
    }
    QVERIFY(!Enum::fromValue(type, 1).isValid());
}

void TestEnum::allModulesShareTheRegistries()
{
    QCOMPARE(OfProgram.id(), 0);
    QCOMPARE(Enum::count(shared()), 1);

    QLibrary first(BuildPaths::firstModule());
    QVERIFY2(first.load(), qPrintable(first.errorString()));
    QCOMPARE(call(first, "idOfAutomatic"), 1);
    QCOMPARE(call(first, "idOfExplicit"), 2);
    QCOMPARE(Enum::count(shared()), 3);

    QLibrary second(BuildPaths::secondModule());
    QVERIFY2(second.load(), qPrintable(second.errorString()));
    QCOMPARE(call(second, "idOfAutomatic"), 3);
    QCOMPARE(call(second, "idOfExplicit"), 4);
    QCOMPARE(Enum::count(shared()), 5);

    const Member last(shared(), "last");
    QCOMPARE(last.id(), 5);
    for (QLibrary *module : {&first, &second}) {
        QCOMPARE(valueIn(*module, "program"), 100);
        QCOMPARE(valueIn(*module, "first.automatic"), 1);
        QCOMPARE(valueIn(*module, "first.explicit"), 200);
        QCOMPARE(valueIn(*module, "second.automatic"), 3);
        QCOMPARE(valueIn(*module, "second.explicit"), 300);
        QCOMPARE(valueIn(*module, "last"), 5);
        QCOMPARE(valueIn(*module, "none"), -1);
    }
    QCOMPARE(Enum::fromValue(shared(), 300).toString(), QStringLiteral("second.explicit"));
}

void TestEnum::theRegistriesLiveUntilTheProcessEnds()
{
    QProcess helper;
    helper.start(BuildPaths::helperProgram(), {QStringLiteral("enum-at-exit")});
    QVERIFY(helper.waitForFinished());
    QCOMPARE(helper.readAllStandardOutput().trimmed(), QByteArray("Red of 1"));
    QCOMPARE(helper.exitStatus(), QProcess::NormalExit);
    QCOMPARE(helper.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TestEnum)

#include "tst_enum.moc"
