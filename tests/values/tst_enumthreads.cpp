#include "TestThreads.h"

#include <Utility/Enum.h>

#include <QtTest/QtTest>

#include <atomic>

using Vorn::Util::Enum;

namespace {

class Member : public Enum
{
public:
    Member(const QString &type, const QString &name)
        : Enum(type, name)
    {
    }
};

} // namespace

class TestEnumThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstUseMayBeOnManyThreads();
    void membersAreLookedUpOnManyThreads();
};

// The first function of the program: nothing has used the registries before.
void TestEnumThreads::theFirstUseMayBeOnManyThreads()
{
    const QString type = QStringLiteral("Colour");
    std::atomic_int found{0};
    onAllThreads([&] {
        if (Enum::fromString(type, type).isValid() || Enum::fromValue(type, 0).isValid())
            ++found;
        found += Enum::count(type);
    });
    QCOMPARE(found.load(), 0);
}

void TestEnumThreads::membersAreLookedUpOnManyThreads()
{
    constexpr int Count = 100;
    const QString type = QStringLiteral("Number");
    for (int number = 0; number < Count; ++number)
        Member(type, QString::number(number));
    std::atomic_int found{0};
    onAllThreads([&] {
        for (int number = 0; number < Count; ++number) {
            const QString name = QString::number(number);
            if (Enum::fromString(type, name).toValue() == number
                && Enum::fromValue(type, number).toString() == name)
                ++found;
        }
    });
    QCOMPARE(found.load(), ThreadCount * Count);
    QCOMPARE(Enum::count(type), Count);
}

QTEST_GUILESS_MAIN(TestEnumThreads)

#include "tst_enumthreads.moc"
