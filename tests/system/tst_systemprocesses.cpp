#include "BuildPaths.h"
#include "CurrentFolder.h"
#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/System.h>

#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtCore/QProcess>
#include <QtCore/QSysInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUuid>
#include <QtTest/QtTest>

#include <memory>

using namespace Vorn::Util;

namespace {

// A running copy of the helper program, which goes on until its standard input ends.
class Child
{
public:
    // Starts the program \a program, which is created.
    explicit Child(const QString &program)
        : program_(program)
    {
        if (!QFile::exists(program) && !QFile::copy(BuildPaths::helperProgram(), program))
            qFatal("The helper program cannot be copied.");
        // It has started when its first output arrives; before, it may still be a copy of this one.
        process_.start(program, {QStringLiteral("hang"), QStringLiteral("68690d0a"), endFile()});
        if (!process_.waitForReadyRead())
            qFatal("The helper program cannot be started.");
    }
    ~Child() { end(); }
    Q_DISABLE_COPY(Child)

    long id() const { return static_cast<long>(process_.processId()); }

    bool isKilled()
    {
        return (process_.state() == QProcess::NotRunning || process_.waitForFinished())
            && !QFile::exists(endFile());
    }

    // Whether it has come to its own end.
    bool end()
    {
        process_.closeWriteChannel();
        return (process_.state() == QProcess::NotRunning || process_.waitForFinished())
            && QFile::exists(endFile());
    }

    int exitCode() const { return process_.exitCode(); }
    QProcess::ExitStatus exitStatus() const { return process_.exitStatus(); }

private:
    QString endFile() const
    {
        return QStringLiteral("%1.%2.ended").arg(program_).arg(quintptr(this));
    }

    QString program_;
    QProcess process_;
};

// Counts the open handles of this process on Windows with values below 8192. The system gives small
// values first.
int openHandles()
{
    const auto getInformation = reinterpret_cast<int (*)(quintptr, quint32 *)>(
        QLibrary::resolve(QStringLiteral("kernel32"), "GetHandleInformation"));
    int count = 0;
    for (quintptr handle = 4; getInformation && handle < 8192; handle += 4) {
        quint32 flags = 0;
        count += getInformation(handle, &flags) != 0 ? 1 : 0;
    }
    return count;
}

QString sorted(QStringList names)
{
    names.sort();
    return names.join(QLatin1Char(' '));
}

} // namespace

// Only programs with names of their own are looked for and ended.
class TestSystemProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theIdIsFoundByTheNameInUpperCase();
    void theIdIsNotFoundByTheNameInOtherLetterCase();
    void theIdIsNotFoundByAPartOfTheName();
    void theIdIsThatOfTheFirstProcess();
    void theIdOfWhatDoesNotRunIsZero();
    void aRunningProgramIsFoundByItsExactName();
    void aRunningProgramIsFoundWhenItsFileIsGone();
    void theSnapshotOfProcessesStaysOpen();
    void theNamesEndTheirProcessesInAnyLetterCase();
    void withoutAFilterProcessesInAllFoldersEnd();
    void theFilterIsFoundInAnyLetterCase_data();
    void theFilterIsFoundInAnyLetterCase();
    void aFilterThatIsNotInThePathLeavesTheProcessAlone();
    void otherProcessesAreLeftAlone();
    void namesOfEndedProcessesAreInTheSystemsOrder();
    void nothingIsEndedWithoutAMatch_data();
    void nothingIsEndedWithoutAMatch();
    void aKilledProcessHasTheExitCodeOne();

    void aStartedProgramGetsItsArguments();
    void aStartedProgramHasTheCallersCurrentFolder();
    void aStartedProgramOutlivesTheOneThatStartedIt();
    void aProgramThatCannotBeStartedIsFalse_data();
    void aProgramThatCannotBeStartedIsFalse();

    void aVariableIsReadAsLatin1_data();
    void aVariableIsReadAsLatin1();
    void aVariableThatIsNotSetIsEmpty();
    void theHostNameIsTheMachines();
    void theUserNameIsTheOwners();

private:
    QString path(const QString &fileName) const { return here_ + QLatin1Char('/') + fileName; }

    QTemporaryDir folder_;
    QString here_; // a folder for the test function
    QString name_; // of a program that only it has
};

void TestSystemProcesses::init()
{
    const QString id = QUuid::createUuid().toString(QUuid::Id128);
    here_ = QDir(folder_.path()).canonicalPath() + QStringLiteral("/Folder ") + id;
    QVERIFY(QDir().mkdir(here_));
    // Longer than the 15 characters that some lists of processes hold.
    name_ = QStringLiteral("vornTest") + id + QStringLiteral(".exe");
}

void TestSystemProcesses::theIdIsFoundByTheNameInUpperCase()
{
    Child child(path(name_));
    QCOMPARE(System::getPID({name_.toUpper()}), child.id());
    QCOMPARE(System::getPID({QStringLiteral("OTHER.EXE"), name_.toUpper(), QString()}), child.id());
    QVERIFY(child.end());
    QTRY_COMPARE(System::getPID({name_.toUpper()}), 0L);
}

void TestSystemProcesses::theIdIsNotFoundByTheNameInOtherLetterCase()
{
    const Child child(path(name_));
    QCOMPARE(System::getPID({name_}), 0L);
    QCOMPARE(System::getPID({name_.toLower()}), 0L);
    QCOMPARE(System::getPID({name_, name_.toUpper()}), child.id());
}

void TestSystemProcesses::theIdIsNotFoundByAPartOfTheName()
{
    const Child child(path(name_));
    const QString name = name_.toUpper();
    QCOMPARE(System::getPID({name.chopped(1), name.mid(1), name + QLatin1Char('X'),
                             name + QLatin1Char(' '), name.chopped(4)}),
             0L);
    QCOMPARE(System::getPID({QDir::toNativeSeparators(path(name_)).toUpper()}), 0L);
}

void TestSystemProcesses::theIdIsThatOfTheFirstProcess()
{
    const QString other = QStringLiteral("other") + name_;
    Child first(path(name_));
    Child second(path(other));
    const QStringList names{name_.toUpper(), other.toUpper()};
    const long id = System::getPID(names);
    QVERIFY(id == first.id() || id == second.id());
    // The order is the system's, not that of the names.
    QCOMPARE(System::getPID({names.at(1), names.at(0)}), id);
    const QStringList killed = System::killProcesses(QString(), names);
    QCOMPARE(killed.size(), 2);
    QCOMPARE(killed.first(), id == first.id() ? name_ : other);
}

void TestSystemProcesses::theIdOfWhatDoesNotRunIsZero()
{
    QCOMPARE(System::getPID({}), 0L);
    QCOMPARE(System::getPID({QString()}), 0L);
    QCOMPARE(System::getPID({name_.toUpper()}), 0L);
}

void TestSystemProcesses::aRunningProgramIsFoundByItsExactName()
{
    QVERIFY(!System::isProcessRunning(name_));
    Child child(path(name_));
    QVERIFY(System::isProcessRunning(name_));
    QVERIFY(!System::isProcessRunning(name_.toLower()));
    QVERIFY(!System::isProcessRunning(name_.toUpper()));
    QVERIFY(!System::isProcessRunning(name_.chopped(4)));
    QVERIFY(!System::isProcessRunning(name_ + QLatin1Char(' ')));
    QVERIFY(!System::isProcessRunning(QDir::toNativeSeparators(path(name_))));
    if (!onWindows()) // Wine lists a process without a name
        QVERIFY(!System::isProcessRunning(QString()));
    QVERIFY(child.end());
    QTRY_VERIFY(!System::isProcessRunning(name_));
}

void TestSystemProcesses::aRunningProgramIsFoundWhenItsFileIsGone()
{
    if (onWindows())
        QSKIP("The file of a running program cannot be removed here");
    Child child(path(name_));
    QVERIFY(QFile::remove(path(name_)));
    QVERIFY(System::isProcessRunning(name_));
    QCOMPARE(System::getPID({name_.toUpper()}), child.id());
    QCOMPARE(System::killProcesses(path(name_), {name_}), QStringList{name_});
    QVERIFY(child.isKilled());
}

// Kept for compatibility: see "Snapshot of processes" in docs/compatibility.md.
void TestSystemProcesses::theSnapshotOfProcessesStaysOpen()
{
    if (!onWindows())
        QSKIP("There is no snapshot on this system");
    constexpr int Calls = 10;
    const int before = openHandles();
    QVERIFY(before > 0);
    for (int call = 0; call < Calls; ++call)
        QVERIFY(!System::isProcessRunning(name_));
    QVERIFY(openHandles() >= before + Calls);
}

void TestSystemProcesses::theNamesEndTheirProcessesInAnyLetterCase()
{
    for (const QString &name : {name_, name_.toUpper(), name_.toLower()}) {
        Child child(path(name_));
        // The name is that of the program, in whatever letter case it was searched for.
        QCOMPARE(System::killProcesses(QString(), {QStringLiteral("other.exe"), name}),
                 QStringList{name_});
        QVERIFY(child.isKilled());
    }
    QTRY_COMPARE(System::killProcesses(QString(), {name_}), QStringList());
}

void TestSystemProcesses::withoutAFilterProcessesInAllFoldersEnd()
{
    QVERIFY(QDir(here_).mkdir(QStringLiteral("sub")));
    Child first(path(name_));
    Child second(path(QStringLiteral("sub/") + name_));
    Child third(path(name_));
    QCOMPARE(System::killProcesses(QString(), {name_}), (QStringList{name_, name_, name_}));
    QVERIFY(first.isKilled());
    QVERIFY(second.isKilled());
    QVERIFY(third.isKilled());
}

void TestSystemProcesses::theFilterIsFoundInAnyLetterCase_data()
{
    QTest::addColumn<int>("letterCase"); // -1 lower, 1 upper
    QTest::addColumn<int>("start");      // of the part of the path that is the filter

    QTest::newRow("as it is") << 0 << 0;
    QTest::newRow("upper") << 1 << 0;
    QTest::newRow("lower") << -1 << 0;
    QTest::newRow("part") << 0 << 5;
    QTest::newRow("part upper") << 1 << 5;
}

void TestSystemProcesses::theFilterIsFoundInAnyLetterCase()
{
    QFETCH(int, letterCase);
    QFETCH(int, start);

    QVERIFY(QDir(here_).mkdir(QStringLiteral("Other")));
    QVERIFY(QDir(here_).mkdir(QStringLiteral("Meant")));
    Child meant(path(QStringLiteral("Meant/") + name_));
    Child other(path(QStringLiteral("Other/") + name_));
    QString filter = QDir::toNativeSeparators(path(QStringLiteral("Meant"))).mid(start);
    if (letterCase != 0)
        filter = letterCase > 0 ? filter.toUpper() : filter.toLower();
    QCOMPARE(System::killProcesses(filter, {name_}), QStringList{name_});
    QVERIFY(meant.isKilled());
    QVERIFY(other.end());
}

void TestSystemProcesses::aFilterThatIsNotInThePathLeavesTheProcessAlone()
{
    Child child(path(name_));
    for (const QString &filter : {QStringLiteral("no such folder"), here_ + QStringLiteral("/sub"),
                                  QStringLiteral("*"), path(name_) + QLatin1Char('x')})
        QCOMPARE(System::killProcesses(QDir::toNativeSeparators(filter), {name_}), QStringList());
    QVERIFY(child.end());
}

void TestSystemProcesses::otherProcessesAreLeftAlone()
{
    const QString other = QStringLiteral("other") + name_;
    Child first(path(name_));
    Child second(path(other));
    QCOMPARE(System::killProcesses(QDir::toNativeSeparators(here_), {name_}), QStringList{name_});
    QVERIFY(first.isKilled());
    QVERIFY(second.end());
}

void TestSystemProcesses::namesOfEndedProcessesAreInTheSystemsOrder()
{
    const QString other = QStringLiteral("Other") + name_;
    Child first(path(name_));
    Child second(path(other));
    Child third(path(name_));
    const QString firstName
        = System::getPID({name_.toUpper(), other.toUpper()}) == second.id() ? other : name_;
    const QStringList killed = System::killProcesses(here_.left(0), {other, name_});
    QCOMPARE(sorted(killed), sorted({name_, name_, other}));
    QCOMPARE(killed.first(), firstName);
    QVERIFY(first.isKilled());
    QVERIFY(second.isKilled());
    QVERIFY(third.isKilled());
}

void TestSystemProcesses::nothingIsEndedWithoutAMatch_data()
{
    QTest::addColumn<QString>("name"); // %1 the program's without its last part

    QTest::newRow("other") << QStringLiteral("no such program.exe");
    QTest::newRow("without its last part") << QStringLiteral("%1");
    QTest::newRow("longer") << QStringLiteral("%1.exe2");
    QTest::newRow("pattern") << QStringLiteral("%1*");
    QTest::newRow("empty") << QString();
}

void TestSystemProcesses::nothingIsEndedWithoutAMatch()
{
    QFETCH(QString, name);

    Child child(path(name_));
    if (name.contains(QLatin1Char('%')))
        name = name.arg(name_.chopped(4));
    QCOMPARE(System::killProcesses(QString(), {name}), QStringList());
    QCOMPARE(System::killProcesses(QString(), {}), QStringList());
    QVERIFY(child.end());
}

void TestSystemProcesses::aKilledProcessHasTheExitCodeOne()
{
    Child child(path(name_));
    QCOMPARE(System::killProcesses(QString(), {name_}), QStringList{name_});
    QVERIFY(child.isKilled());
    // Elsewhere a killed process has no exit code.
    QCOMPARE(child.exitStatus(), onWindows() ? QProcess::NormalExit : QProcess::CrashExit);
    if (onWindows())
        QCOMPARE(child.exitCode(), 1);
}

void TestSystemProcesses::aStartedProgramGetsItsArguments()
{
    const QString source = path(QStringLiteral("a source  with blanks, 100% & more.txt"));
    const QString target = path(QStringLiteral("the target.txt"));
    QVERIFY(writeFile(source, "content"));
    QVERIFY(System::startProcess(BuildPaths::helperProgram(),
                                 {QStringLiteral("copy"), source, target}));
    QTRY_COMPARE(contentOf(target), QByteArray("content"));
}

// The program copies between two names without a folder.
void TestSystemProcesses::aStartedProgramHasTheCallersCurrentFolder()
{
    QVERIFY(writeFile(path(QStringLiteral("source")), "content"));
    const CurrentFolder current(here_);
    QVERIFY(current.isUsed());
    QVERIFY(System::startProcess(
        BuildPaths::helperProgram(),
        {QStringLiteral("copy"), QStringLiteral("source"), QStringLiteral("target")}));
    QTRY_COMPARE(contentOf(path(QStringLiteral("target"))), QByteArray("content"));
}

// Between the test and the program is a process that has ended. The program ends when its input
// does: when the test closes it, or at once if the input is not passed on.
void TestSystemProcesses::aStartedProgramOutlivesTheOneThatStartedIt()
{
    const QString ended = path(QStringLiteral("ended"));
    QProcess process;
    process.start(
        BuildPaths::helperProgram(),
        {QStringLiteral("system"),
         QStringLiteral("startProcess=%1|hang||%2").arg(BuildPaths::helperProgram(), ended)});
    QVERIFY(process.waitForFinished());
    QVERIFY(process.readAllStandardOutput().startsWith("=true"));
    QTRY_VERIFY(QFile::exists(ended));
}

void TestSystemProcesses::aProgramThatCannotBeStartedIsFalse_data()
{
    QTest::addColumn<QString>("program");

    QTest::newRow("missing") << path(QStringLiteral("missing.exe"));
    QTest::newRow("missing folder") << path(QStringLiteral("missing/missing.exe"));
    QTest::newRow("not on the path") << QStringLiteral("vorn-no-such-program");
    QTest::newRow("folder") << folder_.path();
    QTest::newRow("empty") << QString();
}

void TestSystemProcesses::aProgramThatCannotBeStartedIsFalse()
{
    QFETCH(QString, program);

    QVERIFY(!System::startProcess(program, {}));
    QVERIFY(!System::startProcess(program, {QStringLiteral("exit"), QStringLiteral("0")}));
}

void TestSystemProcesses::aVariableIsReadAsLatin1_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");

    QTest::newRow("text") << QByteArray("VORN_TEST") << QByteArray("D:\\a b;%PATH%=$HOME");
    QTest::newRow("outside ASCII") << QByteArray("VORN_TEST")
                                   << QByteArray("Gr\xF6\xDF"
                                                 "e \xFF");
    QTest::newRow("UTF-8") << QByteArray("VORN_TEST")
                           << QByteArray("Gr\xC3\xB6\xC3\x9F"
                                         "e");
    QTest::newRow("blanks") << QByteArray("VORN_TEST") << QByteArray("  a  ");
    QTest::newRow("name outside ASCII") << QByteArray("VORN_GR\xD6SSE") << QByteArray("a");
    QTest::newRow("long") << QByteArray("VORN_TEST") << QByteArray(5000, 'x');
}

void TestSystemProcesses::aVariableIsReadAsLatin1()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);

    QVERIFY(qputenv(name.constData(), value));
    const QString read = System::getEnv(QString::fromLatin1(name));
    qunsetenv(name.constData());
    QCOMPARE(read, QString::fromLatin1(value));
}

void TestSystemProcesses::aVariableThatIsNotSetIsEmpty()
{
    const QString name = QStringLiteral("VORN_TEST_NOT_SET");
    QCOMPARE(System::getEnv(name), QString());
    QVERIFY(qputenv("VORN_TEST_NOT_SET", "set"));
    QCOMPARE(System::getEnv(name), QStringLiteral("set"));
    qputenv("VORN_TEST_NOT_SET", "");
    QVERIFY(System::getEnv(name).isEmpty());
    qunsetenv("VORN_TEST_NOT_SET");
    QVERIFY(System::getEnv(name).isEmpty());
    QVERIFY(System::getEnv(QString()).isEmpty());
    QVERIFY(System::getEnv(QStringLiteral("VORN=TEST")).isEmpty());
}

void TestSystemProcesses::theHostNameIsTheMachines()
{
    const QString name = System::getHostName();
    QVERIFY(!name.isEmpty());
    QCOMPARE(name, QSysInfo::machineHostName());
    QCOMPARE(System::getHostName(), name);
}

void TestSystemProcesses::theUserNameIsTheOwners()
{
    const QString name = System::getUserName();
    QVERIFY(!name.isEmpty());
    // Qt does not know the owner of a file on every system.
    QCOMPARE(name, onWindows() ? qEnvironmentVariable("USERNAME") : QFileInfo(here_).owner());
}

QTEST_GUILESS_MAIN(TestSystemProcesses)

#include "tst_systemprocesses.moc"
