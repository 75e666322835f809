// The functions of System and Registry that any thread may call.

#include "TestThreads.h"

#include <Utility/Registry.h>
#include <Utility/System.h>

#include <QtTest/QtTest>

#include <array>
#include <atomic>

using namespace Vorn::Util;

class TestSystemThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHostNameMayBeAskedForFirstOnManyThreads();
    void theOtherFunctionsMayBeCalledOnManyThreads();
    void theSettingsMayBeReadOnManyThreads();
};

// The first function of the program: nothing has asked for the name before.
void TestSystemThreads::theHostNameMayBeAskedForFirstOnManyThreads()
{
    std::atomic_int same{0};
    onAllThreads([&] {
        const QString name = System::getHostName();
        if (!name.isEmpty() && name == System::getHostName() && System::isLocalHost(name))
            ++same;
    });
    QCOMPARE(same.load(), ThreadCount);
}

// All but startProcess(), which calls Qt and nothing else. Qt allocates memory in the forked
// process, where a sanitizer's allocator can wait for ever.
void TestSystemThreads::theOtherFunctionsMayBeCalledOnManyThreads()
{
    qputenv("TST_SYSTEMTHREADS", "value");
    const QString user = System::getUserName();
    const QString missing = QStringLiteral("tst_systemthreads no such program");
    std::atomic_int right{0};
    onAllThreads([&] {
        if (System::getEnv(QStringLiteral("TST_SYSTEMTHREADS")) == QLatin1String("value")
            && System::getUserName() == user && System::getPID({missing}) == 0
            && !System::isProcessRunning(missing)
            && System::killProcesses(QString(), {missing}).isEmpty())
            ++right;
    });
    QCOMPARE(right.load(), ThreadCount);
}

void TestSystemThreads::theSettingsMayBeReadOnManyThreads()
{
    std::atomic_int empty{0};
    onAllThreads([&] {
        std::array<wchar_t, 1024> value{L'x'};
        Registry::readRegistryValue(L"tst_systemthreads no such value", value.data(), nullptr);
        if (value[0] == L'\0')
            ++empty;
    });
    QCOMPARE(empty.load(), ThreadCount);
}

QTEST_GUILESS_MAIN(TestSystemThreads)

#include "tst_systemthreads.moc"
