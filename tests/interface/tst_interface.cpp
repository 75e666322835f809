// Pins what clients see of the public headers: a client that was built against them once has to
// build and link again.

#include "TestInterface.h"

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Command.h>
#include <Utility/Log.h>
#include <Utility/Registry.h>
#include <Utility/SevenZip.h>
#include <Utility/SyncTask.h>
#include <Utility/TextConversions.h>
#include <Utility/Xml.h>

#include <QtTest/QtTest>

#include <string>
#include <type_traits>
#include <vector>

using namespace Vorn::Util;

namespace {

template <typename Enumeration>
constexpr bool isUnscopedInt = std::is_enum_v<Enumeration> &&std::is_convertible_v<Enumeration, int>
    &&std::is_same_v<std::underlying_type_t<Enumeration>, int>;

struct Derived
{
    // What derived classes may use.
    struct Task : AsyncTask
    {
        using AsyncTask::AsyncTask;
        using AsyncTask::execute;
        using AsyncTask::log;
        using AsyncTask::resetError;
        using AsyncTask::setError;
        using AsyncTask::setFinished;
        using AsyncTask::setLog;
    };

    struct CompleteTask : AsyncTask
    {
        using AsyncTask::AsyncTask;
        void execute() override { }
    };

    struct Sync : SyncTask
    {
        using SyncTask::execute;
        using SyncTask::SyncTask;
    };

    struct Monitor : AsyncTaskMonitor
    {
        bool isCanceled() override { return false; }
    };

    struct Archive : SevenZip
    {
        using SevenZip::addFile;
        using SevenZip::fileExt;
        using SevenZip::fileSize;
        using SevenZip::fileSizes;
        using SevenZip::levelArg;
        using SevenZip::methodArg;
        using SevenZip::modeArg;
        using SevenZip::multithreadArg;
        using SevenZip::setCommandFinished;
        using SevenZip::setCompressedSize;
        using SevenZip::setError;
        using SevenZip::setFiles;
        using SevenZip::setFolder;
        using SevenZip::setOutput;
        using SevenZip::setUncompressedSize;
        using SevenZip::toMethod;
        using SevenZip::toType;
        using SevenZip::typeArg;
    };
};

} // namespace

class TestInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textConversions();
    void xml();
    void log();
    void asyncTask();
    void asyncTaskMonitor();
    void asyncTaskProcessor();
    void syncTask();
    void command();
    void sevenZip();
    void registry();

    void theConstantsOfLog();
    void theValuesOfEnumerations();
    void classesOfStaticMembersHaveNoObjects();
    void defaultArguments();
    void noConstructorIsExplicit();

    void theMetaObjectOfAsyncTask();
    void theMetaObjectOfAsyncTaskProcessor();
    void theMetaObjectOfSevenZip();
    void syncTaskHasNoMetaObjectOfItsOwn();
    void theTranslationFunctionsBelongToTheClass();
};

void TestInterface::textConversions()
{
    EXPORTED_OVERLOAD(toQString, QString(*)(const std::string &));
    EXPORTED_OVERLOAD(toQString, QString(*)(const std::wstring &));
    EXPORTED_OVERLOAD(toStdString, std::string(*)(const QString &));
    EXPORTED_OVERLOAD(toStdString, std::string(*)(const std::wstring &));
    EXPORTED_OVERLOAD(toStdWString, std::wstring(*)(const std::string &));
    EXPORTED_OVERLOAD(toStdWString, std::wstring(*)(const QString &));
    EXPORTED(toQStringList, QStringList(*)(const std::vector<std::string> &));
    EXPORTED(toStringVector, std::vector<std::string>(*)(const QStringList &));
    EXPORTED_OVERLOAD(toWCharArray, wchar_t * (*)(const QString &));
    EXPORTED_OVERLOAD(toWCharArray, void (*)(const char16_t *, wchar_t *));
    EXPORTED_OVERLOAD(toChar16Array, void (*)(const QString &, char16_t *));
    EXPORTED_OVERLOAD(toChar16Array, void (*)(const wchar_t *, char16_t *));
}

void TestInterface::xml()
{
    EXPORTED(Xml::boolToString, QString(*)(bool));
    EXPORTED(Xml::stringToBool, bool (*)(const QString &));
    EXPORTED(Xml::textElement, QDomElement(*)(const QString &, const QString &, QDomDocument &));
    EXPORTED(Xml::valueOf, QString(*)(const QString &, const QDomElement &, const QString &));
}

void TestInterface::log()
{
    EXPORTED(Log::setName, void(Log::*)(const QString &, Log::FileTimeStamp));
    EXPORTED(Log::name, QString(Log::*)() const);
    EXPORTED(Log::open, bool(Log::*)(bool));
    EXPORTED(Log::close, void(Log::*)());
    EXPORTED(Log::flush, void(Log::*)());
    EXPORTED(Log::append, void(Log::*)(const QString &));
    EXPORTED(Log::fastAppend, void(Log::*)(const QString &));
    EXPORTED_OVERLOAD(Log::operator<<, Log & (Log::*)(const QString &));
    EXPORTED_OVERLOAD(Log::operator<<, Log & (Log::*)(char));
    EXPORTED_OVERLOAD(Log::operator<<, Log & (Log::*)(int));
    EXPORTED_OVERLOAD(Log::operator<<, Log & (Log::*)(double));
    EXPORTED(Log::setTimeStamp, void(Log::*)(Log::TimeStamp));
    EXPORTED(Log::timeStamp, Log::TimeStamp(Log::*)() const);
    EXPORTED(Log::fileTimeStampString, QString(Log::*)() const);
    EXPORTED_OVERLOAD(Log::removeOldTimeStampedLogFiles,
                      bool (*)(const QString &, const QString &, const QString &, int));

    static_assert(std::is_default_constructible_v<Log>);
    static_assert(std::is_constructible_v<Log, const QString &, Log::FileTimeStamp>);
    static_assert(!std::is_polymorphic_v<Log>);
    static_assert(isNeitherCopiedNorMoved<Log>);
}

void TestInterface::asyncTask()
{
    EXPORTED(AsyncTask::name, QString(AsyncTask::*)() const);
    EXPORTED(AsyncTask::error, QString(AsyncTask::*)() const);
    EXPORTED(AsyncTask::isOk, bool(AsyncTask::*)() const);
    EXPORTED(AsyncTask::ignoreError, bool(AsyncTask::*)() const);
    EXPORTED(AsyncTask::setIgnoreError, void(AsyncTask::*)(bool));
    EXPORTED(AsyncTask::elapsedTime, qint64(AsyncTask::*)() const);
    EXPORTED(AsyncTask::start, void(AsyncTask::*)());
    EXPORTED(AsyncTask::progress, void(AsyncTask::*)(const QString &));
    EXPORTED(AsyncTask::finished, void(AsyncTask::*)());
    EXPORTED(Derived::Task::execute, void(AsyncTask::*)());
    EXPORTED(Derived::Task::setFinished, void(AsyncTask::*)());
    EXPORTED(Derived::Task::setError, void(AsyncTask::*)(const QString &));
    EXPORTED(Derived::Task::resetError, void(AsyncTask::*)());
    EXPORTED(Derived::Task::log, void(AsyncTask::*)(const QString &));
    EXPORTED(Derived::Task::setLog, void(AsyncTask::*)(Log *));

    static_assert(CLIENT_MAY_WRITE(AsyncTask, object.start()));
    static_assert(!CLIENT_MAY_WRITE(AsyncTask, object.execute()));
    static_assert(!CLIENT_MAY_WRITE(AsyncTask, object.setFinished()));
    static_assert(!CLIENT_MAY_WRITE(AsyncTask, object.setError(QString())));
    static_assert(!CLIENT_MAY_WRITE(AsyncTask, object.resetError()));
    static_assert(!CLIENT_MAY_WRITE(AsyncTask, object.log(QString())));
    static_assert(!CLIENT_MAY_WRITE(AsyncTask, object.setLog(nullptr)));

    static_assert(std::is_base_of_v<QObject, AsyncTask>);
    static_assert(std::is_abstract_v<AsyncTask>);
    static_assert(std::is_abstract_v<Derived::Task>);
    static_assert(std::has_virtual_destructor_v<AsyncTask>);
    static_assert(std::is_constructible_v<Derived::CompleteTask, const QString &, QObject *>);
    static_assert(isNeitherCopiedNorMoved<Derived::CompleteTask>);
}

void TestInterface::asyncTaskMonitor()
{
    EXPORTED(AsyncTaskMonitor::isCanceled, bool(AsyncTaskMonitor::*)());

    static_assert(std::is_abstract_v<AsyncTaskMonitor>);
    static_assert(std::has_virtual_destructor_v<AsyncTaskMonitor>);
    static_assert(!std::is_base_of_v<QObject, AsyncTaskMonitor>);
    static_assert(sizeof(AsyncTaskMonitor) == sizeof(void *)); // no data
    static_assert(std::is_default_constructible_v<Derived::Monitor>);
    static_assert(std::is_copy_constructible_v<Derived::Monitor>);
    static_assert(std::is_copy_assignable_v<AsyncTaskMonitor>);
}

void TestInterface::asyncTaskProcessor()
{
    using Processor = AsyncTaskProcessor;
    EXPORTED(Processor::addTask, void(Processor::*)(AsyncTask *));
    EXPORTED(Processor::setCleanUpTask, void(Processor::*)(AsyncTask *, AsyncTask *));
    EXPORTED(Processor::setExitEventLoopWhenDone, void(Processor::*)(bool));
    EXPORTED(Processor::exitEventLoopWhenDone, bool(Processor::*)() const);
    EXPORTED(Processor::setExitOnError, void(Processor::*)(bool));
    EXPORTED(Processor::exitOnError, bool(Processor::*)() const);
    EXPORTED(Processor::setLog, void(Processor::*)(Log *));
    EXPORTED(Processor::setTaskMonitor, void(Processor::*)(AsyncTaskMonitor *));
    EXPORTED(Processor::isFinished, bool(Processor::*)() const);
    EXPORTED(Processor::isOk, bool(Processor::*)() const);
    EXPORTED(Processor::startLater, void(Processor::*)());
    EXPORTED(Processor::started, void(Processor::*)(AsyncTask *));
    EXPORTED(Processor::finished, void(Processor::*)(AsyncTask *));
    EXPORTED(Processor::progress, void(Processor::*)(AsyncTask *, const QString &));

    static_assert(!CLIENT_MAY_WRITE(Processor, object.startTaskFromQueue()));
    static_assert(!CLIENT_MAY_WRITE(Processor, object.startTaskLater()));
    static_assert(!CLIENT_MAY_WRITE(Processor, object.handleFinishedTask()));
    static_assert(!CLIENT_MAY_WRITE(Processor, object.handleProgressFromTask(QString())));
    static_assert(!CLIENT_MAY_WRITE(Processor, object.log(QString())));

    static_assert(std::is_base_of_v<QObject, Processor>);
    static_assert(std::has_virtual_destructor_v<Processor>);
    static_assert(isNeitherCopiedNorMoved<Processor>);
}

void TestInterface::syncTask()
{
    EXPORTED(Derived::Sync::execute, void(SyncTask::*)());

    static_assert(!CLIENT_MAY_WRITE(SyncTask, object.execute()));
    static_assert(std::is_base_of_v<AsyncTask, SyncTask>);
    static_assert(!std::is_abstract_v<SyncTask>);
    static_assert(std::has_virtual_destructor_v<SyncTask>);
    static_assert(std::is_constructible_v<SyncTask, QObject *, const QString &, QObject *>);
    static_assert(isNeitherCopiedNorMoved<SyncTask>);
}

void TestInterface::command()
{
    EXPORTED(Command::run, QString(Command::*)(const QString &, int, bool));
    EXPORTED(Command::runL, QStringList(Command::*)(const QString &, int, bool));
    EXPORTED(Command::runQ, int(Command::*)(const QString &));
    EXPORTED(Command::runNoWait, int(Command::*)(const QString &, bool, const QString &));

    static_assert(std::is_constructible_v<Command, Log *>);
    static_assert(std::is_copy_constructible_v<Command>);
    static_assert(std::is_copy_assignable_v<Command>);
    static_assert(!std::is_polymorphic_v<Command>);
    static_assert(sizeof(Command) == sizeof(Log *));
}

void TestInterface::sevenZip()
{
    EXPORTED(SevenZip::archiveFile, QString(SevenZip::*)() const);
    EXPORTED(SevenZip::setArchiveFile, void(SevenZip::*)(const QString &));
    EXPORTED(SevenZip::currentPath, QString(SevenZip::*)() const);
    EXPORTED(SevenZip::setCurrentPath, void(SevenZip::*)(const QString &));
    EXPORTED(SevenZip::type, SevenZip::Type(SevenZip::*)() const);
    EXPORTED(SevenZip::setType, void(SevenZip::*)(SevenZip::Type));
    EXPORTED(SevenZip::method, SevenZip::Method(SevenZip::*)() const);
    EXPORTED(SevenZip::setMethod, void(SevenZip::*)(SevenZip::Method));
    EXPORTED(SevenZip::level, SevenZip::Level(SevenZip::*)() const);
    EXPORTED(SevenZip::setLevel, void(SevenZip::*)(SevenZip::Level));
    EXPORTED(SevenZip::mode, SevenZip::Mode(SevenZip::*)() const);
    EXPORTED(SevenZip::setMode, void(SevenZip::*)(SevenZip::Mode));
    EXPORTED(SevenZip::useThreads, bool(SevenZip::*)() const);
    EXPORTED(SevenZip::setUseThreads, void(SevenZip::*)(bool));
    EXPORTED(SevenZip::enableProgressUpdates, void(SevenZip::*)(bool));
    EXPORTED(SevenZip::error, SevenZip::Error(SevenZip::*)() const);
    EXPORTED(SevenZip::isOk, bool(SevenZip::*)() const);
    EXPORTED(SevenZip::output, QString(SevenZip::*)() const);
    EXPORTED(SevenZip::files, QStringList(SevenZip::*)() const);
    EXPORTED(SevenZip::folder, QString(SevenZip::*)() const);
    EXPORTED(SevenZip::compressedSize, qint64(SevenZip::*)() const);
    EXPORTED(SevenZip::uncompressedSize, qint64(SevenZip::*)() const);
    EXPORTED(SevenZip::compressFiles, bool(SevenZip::*)(const QStringList &));
    EXPORTED(SevenZip::startCompressingFiles, void(SevenZip::*)(const QStringList &));
    EXPORTED(SevenZip::extractFilesTo, bool(SevenZip::*)(const QString &));
    EXPORTED(SevenZip::startExtractingFilesTo, void(SevenZip::*)(const QString &));
    EXPORTED(SevenZip::listFiles, bool(SevenZip::*)());
    EXPORTED(SevenZip::startListingFiles, void(SevenZip::*)());
    EXPORTED(SevenZip::progress, void(SevenZip::*)(qint64, qint64));
    EXPORTED(SevenZip::compressionFinished, void(SevenZip::*)());
    EXPORTED(SevenZip::extractionFinished, void(SevenZip::*)());
    EXPORTED(SevenZip::listFinished, void(SevenZip::*)());

    using Archive = Derived::Archive;
    EXPORTED(Archive::setError, void(SevenZip::*)(SevenZip::Error));
    EXPORTED(Archive::setOutput, void(SevenZip::*)(const QString &));
    EXPORTED(Archive::setFiles, void(SevenZip::*)(const QStringList &));
    EXPORTED(Archive::addFile, void(SevenZip::*)(const QString &));
    EXPORTED(Archive::setFolder, void(SevenZip::*)(const QString &));
    EXPORTED(Archive::setCompressedSize, void(SevenZip::*)(qint64));
    EXPORTED(Archive::setUncompressedSize, void(SevenZip::*)(qint64));
    EXPORTED(Archive::setCommandFinished, void(SevenZip::*)());
    EXPORTED(Archive::typeArg, QString(*)(SevenZip::Type));
    EXPORTED(Archive::methodArg, QString(*)(SevenZip::Type, SevenZip::Method));
    EXPORTED(Archive::levelArg, QString(*)(SevenZip::Level));
    EXPORTED(Archive::modeArg, QString(*)(SevenZip::Mode));
    EXPORTED(Archive::multithreadArg, QString(*)(bool));
    EXPORTED(Archive::fileExt, QString(*)(SevenZip::Type));
    EXPORTED(Archive::toType, SevenZip::Type(*)(const QString &));
    EXPORTED(Archive::toMethod, SevenZip::Method(*)(const QString &));
    EXPORTED(Archive::fileSize, qint64(*)(const QString &));
    EXPORTED(Archive::fileSizes, qint64(*)(const QStringList &));

    static_assert(!CLIENT_MAY_WRITE(SevenZip, object.setOutput(QString())));
    static_assert(!CLIENT_MAY_WRITE(SevenZip, object.setCommandFinished()));
    static_assert(!CLIENT_MAY_WRITE(SevenZip, object.multithreadArg(true)));

    static_assert(std::is_base_of_v<QObject, SevenZip>);
    static_assert(std::has_virtual_destructor_v<SevenZip>);
    static_assert(isNeitherCopiedNorMoved<SevenZip>);
}

void TestInterface::registry()
{
    EXPORTED(Registry::readRegistryValue, void (*)(const wchar_t *, wchar_t *, const wchar_t *));
    EXPORTED_OVERLOAD(Registry::readProductInstallationFolder,
                      bool (*)(wchar_t *, const wchar_t *));
    EXPORTED_OVERLOAD(Registry::readProductInstallationFolder, bool (*)(char *, const wchar_t *));
    EXPORTED(Registry::readOrlithTranslatorsFolder, void (*)(wchar_t *));
    EXPORTED(Registry::readOrlith_HLXServerFolder, void (*)(wchar_t *));
    EXPORTED(Registry::getOrlith_HLXServer_exe, void (*)(wchar_t *));

    static_assert(!CLIENT_MAY_WRITE(Registry, object.toQString("")));
    static_assert(!CLIENT_MAY_WRITE(Registry, object.toQString(L"")));
    static_assert(std::is_copy_assignable_v<Registry>);
    static_assert(std::is_move_assignable_v<Registry>);
    static_assert(std::is_empty_v<Registry>);
}

void TestInterface::theConstantsOfLog()
{
    static_assert(std::is_same_v<decltype(Log::MaxLogSize), const qint64>);
    static_assert(std::is_same_v<decltype(Log::AmountToTruncate), const qint64>);
    static_assert(std::is_same_v<decltype(Log::MaxLogCount), const int>);
    EXPORTED(Log::MaxLogSize, const qint64 *);
    EXPORTED(Log::AmountToTruncate, const qint64 *);
    EXPORTED(Log::MaxLogCount, const int *);
    QCOMPARE(Log::MaxLogSize, qint64(5242880));
    QCOMPARE(Log::AmountToTruncate, qint64(1048576));
    QCOMPARE(Log::MaxLogCount, 10);
}

void TestInterface::theValuesOfEnumerations()
{
    static_assert(isUnscopedInt<Log::TimeStamp>);
    QCOMPARE(int(Log::NoTimeStamp), 0);
    QCOMPARE(int(Log::TimeOnly), 1);
    QCOMPARE(int(Log::DateAndTime), 2);

    static_assert(isUnscopedInt<Log::FileTimeStamp>);
    QCOMPARE(int(Log::NoFileTimeStamp), 0);
    QCOMPARE(int(Log::WithFileTimeStamp), 1);

    static_assert(isUnscopedInt<SevenZip::Type>);
    QCOMPARE(int(SevenZip::Type7z), 0);
    QCOMPARE(int(SevenZip::TypeZip), 1);

    static_assert(isUnscopedInt<SevenZip::Method>);
    QCOMPARE(int(SevenZip::Copy), 0);
    QCOMPARE(int(SevenZip::Deflate), 1);
    QCOMPARE(int(SevenZip::LZMA), 2);
    QCOMPARE(int(SevenZip::LZMA2), 3);
    QCOMPARE(int(SevenZip::BZip2), 4);

    static_assert(isUnscopedInt<SevenZip::Level>);
    QCOMPARE(int(SevenZip::Store), 0);
    QCOMPARE(int(SevenZip::Fastest), 1);
    QCOMPARE(int(SevenZip::Fast), 3);
    QCOMPARE(int(SevenZip::Normal), 5);
    QCOMPARE(int(SevenZip::Maximum), 7);
    QCOMPARE(int(SevenZip::Ultra), 9);

    static_assert(isUnscopedInt<SevenZip::Mode>);
    QCOMPARE(int(SevenZip::FastMode), 0);
    QCOMPARE(int(SevenZip::NormalMode), 1);

    static_assert(isUnscopedInt<SevenZip::Error>);
    QCOMPARE(int(SevenZip::NoError), 0);
    QCOMPARE(int(SevenZip::Warning), 1);
    QCOMPARE(int(SevenZip::FatalError), 2);

    // The enumerators belong to the class and to their enumerations.
    static_assert(std::is_same_v<decltype(Log::TimeOnly), Log::TimeStamp>);
    static_assert(std::is_same_v<decltype(Log::WithFileTimeStamp), Log::FileTimeStamp>);
    static_assert(std::is_same_v<decltype(SevenZip::TypeZip), SevenZip::Type>);
    static_assert(std::is_same_v<decltype(SevenZip::LZMA2), SevenZip::Method>);
    static_assert(std::is_same_v<decltype(SevenZip::Fastest), SevenZip::Level>);
    static_assert(std::is_same_v<decltype(SevenZip::FastMode), SevenZip::Mode>);
    static_assert(std::is_same_v<decltype(SevenZip::FatalError), SevenZip::Error>);
}

void TestInterface::classesOfStaticMembersHaveNoObjects()
{
    static_assert(hasEmptyBraces<Log>); // the check itself finds what compiles
    QVERIFY(!std::is_default_constructible_v<Registry>);
    QVERIFY(!hasEmptyBraces<Registry>);
    QVERIFY(!std::is_default_constructible_v<Xml>);
    QVERIFY(!hasEmptyBraces<Xml>);
}

void TestInterface::defaultArguments()
{
    static_assert(std::is_default_constructible_v<AsyncTaskProcessor>);
    static_assert(std::is_constructible_v<AsyncTaskProcessor, QObject *>);
    static_assert(std::is_default_constructible_v<SevenZip>);
    static_assert(std::is_constructible_v<SevenZip, QObject *>);
    static_assert(std::is_default_constructible_v<Command>);
    QVERIFY(!AsyncTaskProcessor().parent());
    QVERIFY(!SevenZip().parent());

    // Everything else has to be written out.
    static_assert(!std::is_constructible_v<Log, QString>);
    static_assert(!std::is_default_constructible_v<Derived::CompleteTask>);
    static_assert(!std::is_constructible_v<Derived::CompleteTask, QString>);
    static_assert(!std::is_constructible_v<SyncTask, QObject *, QString>);
    static_assert(!CLIENT_MAY_WRITE(Log, object.open()));
    static_assert(!CLIENT_MAY_WRITE(Log, object.setName(QString())));
    static_assert(!CLIENT_MAY_WRITE(
        Log, object.removeOldTimeStampedLogFiles(QString(), QString(), QString())));
    static_assert(!CLIENT_MAY_WRITE(Command, object.run(QString())));
    static_assert(!CLIENT_MAY_WRITE(Command, object.run(QString(), 1)));
    static_assert(!CLIENT_MAY_WRITE(Command, object.runL(QString())));
    static_assert(!CLIENT_MAY_WRITE(Command, object.runL(QString(), 1)));
    static_assert(!CLIENT_MAY_WRITE(Command, object.runNoWait(QString())));
    static_assert(!CLIENT_MAY_WRITE(Command, object.runNoWait(QString(), true)));
    static_assert(!CLIENT_MAY_WRITE(AsyncTaskProcessor, object.setCleanUpTask(nullptr)));
    static_assert(!CLIENT_MAY_WRITE(Registry, object.readRegistryValue(L"", nullptr)));
}

void TestInterface::noConstructorIsExplicit()
{
    QVERIFY((isImplicit<Log>(0)));
    QVERIFY((isImplicit<Log, QString, Log::FileTimeStamp>(0)));
    QVERIFY((isImplicit<Derived::CompleteTask, QString, QObject *>(0)));
    QVERIFY((isImplicit<AsyncTaskProcessor>(0)));
    QVERIFY((isImplicit<AsyncTaskProcessor, QObject *>(0)));
    QVERIFY((isImplicit<SyncTask, QObject *, QString, QObject *>(0)));
    QVERIFY((isImplicit<Command>(0)));
    QVERIFY((isImplicit<Command, Log *>(0)));
    QVERIFY((isImplicit<SevenZip>(0)));
    QVERIFY((isImplicit<SevenZip, QObject *>(0)));
}

namespace {

struct Method
{
    const char *signature;
    QMetaMethod::MethodType type;
    QMetaMethod::Access access;
    QList<QByteArray> parameterTypes;
};

// The methods that the class adds to \a base are \a methods, in this order.
void compareMethods(const QMetaObject &metaObject, const QMetaObject &base,
                    const QList<Method> &methods)
{
    QCOMPARE(metaObject.superClass(), &base);
    QCOMPARE(metaObject.methodOffset(), base.methodCount());
    QCOMPARE(metaObject.methodCount() - metaObject.methodOffset(), methods.size());
    for (int i = 0; i < methods.size(); ++i) {
        const Method &expected = methods.at(i);
        const QMetaMethod method = metaObject.method(metaObject.methodOffset() + i);
        QCOMPARE(method.methodSignature(), QByteArray(expected.signature));
        QCOMPARE(method.methodType(), expected.type);
        QCOMPARE(method.access(), expected.access);
        QCOMPARE(method.parameterTypes(), expected.parameterTypes);
        QCOMPARE(method.returnType(), int(QMetaType::Void));
    }
    QCOMPARE(metaObject.propertyCount(), base.propertyCount());
    QCOMPARE(metaObject.enumeratorCount(), base.enumeratorCount());
    QCOMPARE(metaObject.constructorCount(), 0);
    QCOMPARE(metaObject.classInfoCount(), base.classInfoCount());
}

} // namespace

void TestInterface::theMetaObjectOfAsyncTask()
{
    QCOMPARE(AsyncTask::staticMetaObject.className(), "Vorn::Util::AsyncTask");
    compareMethods(AsyncTask::staticMetaObject, QObject::staticMetaObject,
                   {{"progress(QString)", QMetaMethod::Signal, QMetaMethod::Public, {"QString"}},
                    {"finished()", QMetaMethod::Signal, QMetaMethod::Public, {}}});
}

void TestInterface::theMetaObjectOfAsyncTaskProcessor()
{
    QCOMPARE(AsyncTaskProcessor::staticMetaObject.className(), "Vorn::Util::AsyncTaskProcessor");
    compareMethods(AsyncTaskProcessor::staticMetaObject, QObject::staticMetaObject,
                   {{"started(Vorn::Util::AsyncTask*)",
                     QMetaMethod::Signal,
                     QMetaMethod::Public,
                     {"Vorn::Util::AsyncTask*"}},
                    {"finished(Vorn::Util::AsyncTask*)",
                     QMetaMethod::Signal,
                     QMetaMethod::Public,
                     {"Vorn::Util::AsyncTask*"}},
                    {"progress(Vorn::Util::AsyncTask*,QString)",
                     QMetaMethod::Signal,
                     QMetaMethod::Public,
                     {"Vorn::Util::AsyncTask*", "QString"}},
                    {"startTaskFromQueue()", QMetaMethod::Slot, QMetaMethod::Private, {}},
                    {"handleFinishedTask()", QMetaMethod::Slot, QMetaMethod::Private, {}},
                    {"handleProgressFromTask(QString)",
                     QMetaMethod::Slot,
                     QMetaMethod::Private,
                     {"QString"}}});
}

void TestInterface::theMetaObjectOfSevenZip()
{
    QCOMPARE(SevenZip::staticMetaObject.className(), "Vorn::Util::SevenZip");
    compareMethods(SevenZip::staticMetaObject, QObject::staticMetaObject,
                   {{"progress(qlonglong,qlonglong)",
                     QMetaMethod::Signal,
                     QMetaMethod::Public,
                     {"qlonglong", "qlonglong"}},
                    {"compressionFinished()", QMetaMethod::Signal, QMetaMethod::Public, {}},
                    {"extractionFinished()", QMetaMethod::Signal, QMetaMethod::Public, {}},
                    {"listFinished()", QMetaMethod::Signal, QMetaMethod::Public, {}}});
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
    using Translate = QString (*)(const char *, const char *, int);
    static_assert(std::is_same_v<decltype(&AsyncTask::tr), Translate>);
    static_assert(std::is_same_v<decltype(&AsyncTask::trUtf8), Translate>);
    QCOMPARE(AsyncTask::tr("Mesh"), QStringLiteral("Mesh"));
    QCOMPARE(AsyncTask::trUtf8("Mesh"), QStringLiteral("Mesh"));

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
    QCOMPARE(AsyncTask::trUtf8("Mesh"), QStringLiteral("Vorn::Util::AsyncTask"));
    QCOMPARE(AsyncTaskProcessor::tr("Mesh"), QStringLiteral("Vorn::Util::AsyncTaskProcessor"));
    QCOMPARE(SevenZip::tr("Mesh"), QStringLiteral("Vorn::Util::SevenZip"));
}

QT_WARNING_POP

QTEST_GUILESS_MAIN(TestInterface)

#include "tst_interface.moc"
