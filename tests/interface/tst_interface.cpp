// What clients see of the library and neither the list of its exports nor that of its declarations
// shows: values that the library sets, and what strings look up in meta-objects.

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/CpuCounter.h>
#include <Utility/Log.h>
#include <Utility/Registry.h>
#include <Utility/SevenZip.h>
#include <Utility/SyncTask.h>
#include <Utility/System.h>
#include <Utility/Version.h>
#include <Utility/Xml.h>

#include <QtTest/QtTest>

#include <type_traits>
#include <utility>

using namespace Vorn::Util;

namespace {

// Whether `Class{}` compiles. For an aggregate it does, even if its constructor is deleted.
template <typename Class, typename = void> constexpr bool compilesWithBraces = false;
template <typename Class>
constexpr bool compilesWithBraces<Class, std::void_t<decltype(Class{})>> = true;
static_assert(compilesWithBraces<Version>);
static_assert(!compilesWithBraces<Registry>);
static_assert(!compilesWithBraces<System>);
static_assert(!compilesWithBraces<Xml>);

// The methods that the class adds to QObject, in their order.
QStringList methodsOf(const QMetaObject &metaObject)
{
    QStringList methods;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        const QString access = method.access() == QMetaMethod::Public ? QStringLiteral("public")
                                                                      : QStringLiteral("private");
        const QString type = method.methodType() == QMetaMethod::Signal ? QStringLiteral("signal")
                                                                        : QStringLiteral("slot");
        methods += QStringList{access, type, QString::fromLatin1(method.typeName()),
                               QString::fromLatin1(method.methodSignature())}
                       .join(QLatin1Char(' '));
    }
    return methods;
}

bool addsOnlyMethods(const QMetaObject &metaObject)
{
    const QMetaObject &base = QObject::staticMetaObject;
    return metaObject.superClass() == &base && metaObject.propertyCount() == base.propertyCount()
        && metaObject.enumeratorCount() == base.enumeratorCount()
        && metaObject.constructorCount() == 0
        && metaObject.classInfoCount() == base.classInfoCount();
}

} // namespace

Q_DECLARE_METATYPE(const QMetaObject *)

class TestInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theConstantsOfLog();
    void theConstantsOfVersion();
    void theConstantsOfCpuCounter();
    void aCpuCounterThatWasMovedCountsNothing();

    void metaObjects_data();
    void metaObjects();
    void syncTaskHasNoMetaObjectOfItsOwn();
    void theTranslationFunctionsBelongToTheClass();
};

void TestInterface::theConstantsOfLog()
{
    QCOMPARE(Log::MaxLogSize, qint64(5242880));
    QCOMPARE(Log::AmountToTruncate, qint64(1048576));
    QCOMPARE(Log::MaxLogCount, 10);
}

void TestInterface::theConstantsOfVersion()
{
    // Clients may use the numbers in constant expressions.
    static_assert(Version::Major == 24);
    static_assert(Version::Minor == 0);
    static_assert(Version::Patch == 75);
    static_assert(Version::Hotfix == 1);
    static_assert(Version::DevStage == 0);
    QCOMPARE(Version::Current.toString(), QStringLiteral("24.0.75"));
    QCOMPARE(Version::Current.developmentStage(), 0);
    QCOMPARE(Version::CurrentRelease.toString(), QStringLiteral("24.0.1"));
    QCOMPARE(Version::CurrentRelease.developmentStage(), 0);
    QCOMPARE(Version::Public, QStringLiteral("2024"));
}

void TestInterface::theConstantsOfCpuCounter()
{
    QCOMPARE(CpuCounter::CpuPercent, QStringLiteral("\\Processor(_Total)\\% Processor Time"));
    QCOMPARE(CpuCounter::MemInUseBytes, QStringLiteral("\\Memory\\Committed Bytes"));
    QCOMPARE(CpuCounter::MemAvailBytes, QStringLiteral("\\Memory\\Available Bytes"));
    QCOMPARE(CpuCounter::MemAvailKBytes, QStringLiteral("\\Memory\\Available KBytes"));
    QCOMPARE(CpuCounter::MemAvailMBytes, QStringLiteral("\\Memory\\Available MBytes"));
    QCOMPARE(CpuCounter::MemInUsePercent, QStringLiteral("\\Memory\\% Committed Bytes In Use"));
    QCOMPARE(CpuCounter::MemLimitBytes, QStringLiteral("\\Memory\\Commit Limit"));
}

void TestInterface::aCpuCounterThatWasMovedCountsNothing()
{
    static_assert(std::is_nothrow_move_constructible_v<CpuCounter>);
    static_assert(std::is_nothrow_move_assignable_v<CpuCounter>);
    CpuCounter first(CpuCounter::CpuPercent);
    CpuCounter second(std::move(first));
    QCOMPARE(first.getValue(), -1L); // NOLINT(bugprone-use-after-move)
    CpuCounter third(QString{});
    third = std::move(second);
    QCOMPARE(second.getValue(), -1L); // NOLINT(bugprone-use-after-move)
}

void TestInterface::metaObjects_data()
{
    QTest::addColumn<const QMetaObject *>("metaObject");
    QTest::addColumn<QStringList>("methods");

    QTest::newRow("Vorn::Util::AsyncTask")
        << &AsyncTask::staticMetaObject
        << QStringList{QStringLiteral("public signal void progress(QString)"),
                       QStringLiteral("public signal void finished()")};
    QTest::newRow("Vorn::Util::AsyncTaskProcessor")
        << &AsyncTaskProcessor::staticMetaObject
        << QStringList{
               QStringLiteral("public signal void started(Vorn::Util::AsyncTask*)"),
               QStringLiteral("public signal void finished(Vorn::Util::AsyncTask*)"),
               QStringLiteral("public signal void progress(Vorn::Util::AsyncTask*,QString)"),
               QStringLiteral("private slot void startTaskFromQueue()"),
               QStringLiteral("private slot void handleFinishedTask()"),
               QStringLiteral("private slot void handleProgressFromTask(QString)")};
    QTest::newRow("Vorn::Util::SevenZip")
        << &SevenZip::staticMetaObject
        << QStringList{QStringLiteral("public signal void progress(qlonglong,qlonglong)"),
                       QStringLiteral("public signal void compressionFinished()"),
                       QStringLiteral("public signal void extractionFinished()"),
                       QStringLiteral("public signal void listFinished()")};
}

void TestInterface::metaObjects()
{
    QFETCH(const QMetaObject *, metaObject);
    QCOMPARE(metaObject->className(), QTest::currentDataTag());
    QVERIFY(addsOnlyMethods(*metaObject));
    QTEST(methodsOf(*metaObject), "methods");
}

void TestInterface::syncTaskHasNoMetaObjectOfItsOwn()
{
    QObject receiver;
    const SyncTask task(&receiver, QStringLiteral("deleteLater"), nullptr);
    QCOMPARE(task.metaObject(), &AsyncTask::staticMetaObject);
    QCOMPARE(task.metaObject()->className(), "Vorn::Util::AsyncTask");
}

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

void TestInterface::theTranslationFunctionsBelongToTheClass()
{
    QCOMPARE(AsyncTask::tr("Mesh"), QStringLiteral("Mesh"));
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // Qt 6 has no trUtf8()
    QCOMPARE(AsyncTask::trUtf8("Mesh"), QStringLiteral("Mesh"));
#endif

    // Each looks for its texts in the context of its class.
    class Translator : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(const char *context, const char *, const char *, int) const override
        {
            return QString::fromLatin1(context);
        }
    };
    Translator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(AsyncTask::tr("Mesh"), QStringLiteral("Vorn::Util::AsyncTask"));
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QCOMPARE(AsyncTask::trUtf8("Mesh"), QStringLiteral("Vorn::Util::AsyncTask"));
#endif
    QCOMPARE(AsyncTaskProcessor::tr("Mesh"), QStringLiteral("Vorn::Util::AsyncTaskProcessor"));
    QCOMPARE(SevenZip::tr("Mesh"), QStringLiteral("Vorn::Util::SevenZip"));
}

QT_WARNING_POP

QTEST_GUILESS_MAIN(TestInterface)

#include "tst_interface.moc"
