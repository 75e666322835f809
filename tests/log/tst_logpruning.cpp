// The removal of old logs with a time stamp in their names.

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithLog.h"

#include <Utility/Log.h>

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

namespace {

// While it lives, the file cannot be deleted: on Windows the file is open, elsewhere it is
// immutable, which not every account can set.
class KeptFile
{
public:
    explicit KeptFile(const QString &fileName)
        : file_(fileName)
    {
        kept_ = onWindows() ? file_.open(QIODevice::ReadOnly) : setImmutable(QStringLiteral("+i"));
    }
    ~KeptFile()
    {
        if (!onWindows() && kept_)
            setImmutable(QStringLiteral("-i"));
    }

    bool isKept() const { return kept_; }

private:
    Q_DISABLE_COPY(KeptFile)

    bool setImmutable(const QString &change)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("chattr"), {change, file_.fileName()});
        return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
            && process.exitCode() == 0;
    }

    QFile file_;
    bool kept_ = false;
};

} // namespace

class TestLogPruning : public TestWithLog
{
    Q_OBJECT

private Q_SLOTS:
    void aTimeStampedNameLeavesTheTenNewestFiles();
    void aNameWithoutTimeStampPrunesNothing();
    void afterTheStartElevenTimeStampedFilesExist();
    void pruningWorksOnTheFolderOfTheName();
    void onlyTimeStampedNamesOfThisCenturyArePruned_data();
    void onlyTimeStampedNamesOfThisCenturyArePruned();
    void foldersAreNeverPruned();
    void hiddenFilesArePruned();
    void wildcardsInABaseNameMatchThatNameOnly_data();
    void wildcardsInABaseNameMatchThatNameOnly();
    void wildcardsInASuffixMatchThatSuffixOnly_data();
    void wildcardsInASuffixMatchThatSuffixOnly();
    void emptyFilesAreDeletedEvenBelowTheCount();
    void theOldestByNameGoFirst();
    void moreThanTheCountAreDeleted_data();
    void moreThanTheCountAreDeleted();
    void pruningAMissingFolderIsFalse();
    void pruningNothingIsTrue();
    void theResultIsThatOfTheLastDeletion_data();
    void theResultIsThatOfTheLastDeletion();
    void theResultOfDeletingAnEmptyFileIsOverwrittenToo();
};

void TestLogPruning::aTimeStampedNameLeavesTheTenNewestFiles()
{
    const QStringList others{QStringLiteral("other_2023-01-01-000000.log"),
                             QStringLiteral("run.log"), QStringLiteral("run_1999-01-01-000000.log"),
                             QStringLiteral("run_old.log")};
    QVERIFY(make(others));
    QVERIFY(writeFile(path(QStringLiteral("run_1999-02-02-000000.log")), QByteArray()));
    // Made from the newest to the oldest, so that the order of making does not help.
    QStringList kept;
    for (int month = 12; month >= 1; --month) {
        const QString name
            = QStringLiteral("run_2023-%1-01-000000.log").arg(month, 2, 10, QLatin1Char('0'));
        QVERIFY(writeFile(path(name), month == 7 ? QByteArray() : QByteArray("x")));
        if (month != 7 && month != 1)
            kept.append(name);
    }
    QCOMPARE(kept.size(), 10);
    const Log log(fileName_, Log::WithFileTimeStamp);
    QStringList expected = others + kept + QStringList{QStringLiteral("run_1999-02-02-000000.log")};
    QStringList found = entriesOf(testFolder());
    expected.sort();
    found.sort();
    QCOMPARE(found, expected);
}

void TestLogPruning::aNameWithoutTimeStampPrunesNothing()
{
    QStringList names;
    for (int day = 10; day < 25; ++day)
        names.append(QStringLiteral("run_2023-01-%1-000000.log").arg(day));
    QVERIFY(make(names));
    QVERIFY(writeFile(path(names.first()), QByteArray()));
    Log log(fileName_, Log::NoFileTimeStamp);
    log.setName(fileName_, Log::NoFileTimeStamp);
    QCOMPARE(entriesOf(testFolder()), names);
}

void TestLogPruning::afterTheStartElevenTimeStampedFilesExist()
{
    QStringList names;
    for (int day = 10; day < 25; ++day)
        names.append(QStringLiteral("run_2023-01-%1-000000.log").arg(day));
    QVERIFY(make(names));
    Log log(fileName_, Log::WithFileTimeStamp);
    QCOMPARE(entriesOf(testFolder()), names.mid(5));
    QVERIFY(log.open(true));
    QCOMPARE(entriesOf(testFolder()),
             names.mid(5)
                 + QStringList{QStringLiteral("run_%1.log").arg(log.fileTimeStampString())});
}

void TestLogPruning::pruningWorksOnTheFolderOfTheName()
{
    const QString name = QStringLiteral("run_2023-01-01-000000.log");
    QVERIFY(QDir(testFolder()).mkdir(QStringLiteral("deeper")));
    QVERIFY(writeFile(path(name), QByteArray()));
    QVERIFY(writeFile(path(QStringLiteral("deeper/") + name), QByteArray()));
    const Log log(path(QStringLiteral("deeper/run.log")), Log::WithFileTimeStamp);
    QVERIFY(QFile::exists(path(name)));
    QVERIFY(!QFile::exists(path(QStringLiteral("deeper/") + name)));
}

void TestLogPruning::onlyTimeStampedNamesOfThisCenturyArePruned_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("pruned");

    QTest::newRow("time stamp") << QStringLiteral("run_2023-01-01-000000.log") << true;
    QTest::newRow("the first year") << QStringLiteral("run_2000-01-01-000000.log") << true;
    QTest::newRow("the last year") << QStringLiteral("run_2099-12-31-235959.log") << true;
    QTest::newRow("any stamp from 20") << QStringLiteral("run_20x.log") << true;
    QTest::newRow("only 20") << QStringLiteral("run_20.log") << true;
    QTest::newRow("with a dot") << QStringLiteral("run_2023.old.log") << true;
    QTest::newRow("suffix in capitals") << QStringLiteral("run_2023-01-01-000000.LOG") << true;
    QTest::newRow("base name in capitals") << QStringLiteral("RUN_2023-01-01-000000.log") << true;
    QTest::newRow("old") << QStringLiteral("run_old.log") << false;
    QTest::newRow("last century") << QStringLiteral("run_1999-01-01-000000.log") << false;
    QTest::newRow("next century") << QStringLiteral("run_2100-01-01-000000.log") << false;
    QTest::newRow("no stamp") << QStringLiteral("run.log") << false;
    QTest::newRow("no underscore") << QStringLiteral("run2023-01-01-000000.log") << false;
    QTest::newRow("longer base name") << QStringLiteral("my_run_2023-01-01-000000.log") << false;
    QTest::newRow("other base name") << QStringLiteral("run_a_2023-01-01-000000.log") << false;
    QTest::newRow("other suffix") << QStringLiteral("run_2023-01-01-000000.txt") << false;
    QTest::newRow("longer suffix") << QStringLiteral("run_2023-01-01-000000.logs") << false;
    QTest::newRow("second suffix") << QStringLiteral("run_2023-01-01-000000.log.bak") << false;
    QTest::newRow("no suffix") << QStringLiteral("run_2023-01-01-000000") << false;
    QTest::newRow("no dot") << QStringLiteral("run_2023-01-01-000000log") << false;
}

void TestLogPruning::onlyTimeStampedNamesOfThisCenturyArePruned()
{
    QFETCH(QString, name);
    QFETCH(bool, pruned);
    for (const QByteArray &content : {QByteArray(), QByteArray("x")}) {
        QVERIFY(writeFile(path(name), content));
        QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                                  QStringLiteral("log"), 0));
        QCOMPARE(QFile::exists(path(name)), !pruned);
    }
}

void TestLogPruning::foldersAreNeverPruned()
{
    const QString name = QStringLiteral("run_2023-01-01-000000.log");
    QVERIFY(QDir(testFolder()).mkdir(name));
    QVERIFY(make({QStringLiteral("run_2023-01-02-000000.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), 1));
    QCOMPARE(entriesOf(testFolder()),
             (QStringList{name, QStringLiteral("run_2023-01-02-000000.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), 0));
    QCOMPARE(entriesOf(testFolder()), QStringList{name});
}

void TestLogPruning::hiddenFilesArePruned()
{
    QVERIFY(make({QStringLiteral(".run_2023-01-01-000000.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral(".run"),
                                              QStringLiteral("log"), 0));
    QCOMPARE(entriesOf(testFolder()), QStringList());
}

void TestLogPruning::wildcardsInABaseNameMatchThatNameOnly_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QStringList>("others");

    // Each base name with names that it would match as a pattern. Only rows whose name the system
    // allows are added.
    const QVector<QPair<const char *, QVector<const char *>>> rows{
        {"run[1]", {"run1"}},
        {"run[0-9]", {"run0", "run5", "run-"}},
        {"run[!a]", {"runb", "run!"}},
        {"run[^a]", {"runb", "run^"}},
        {"[run]", {"r", "u", "n"}},
        {"[]run]", {"]", "r"}},
        {"run[", {"run"}},
        {"run]", {"run"}},
        {"run[]", {"run"}},
        {"run[[]", {"run["}},
        {"run[]]", {"run]"}},
        {"][", {"]"}},
        {"run*", {"run", "runa", "run_a"}},
        {"*", {"run", "a"}},
        {"run?", {"runa", "run1"}},
        {"???", {"run"}},
        {"run[*]", {"run*", "run"}},
        {"run[?]", {"run?", "run"}},
        {"[*]", {"*", "a"}},
        {"run\\", {"run"}},
        {"run\\*", {"run*", "runa"}},
        {"run\\d", {"run1", "rund"}},
        {"run.", {"runa", "run"}},
        {"run+", {"runn", "run"}},
        {"(run)", {"run"}},
        {"run|a", {"run", "a"}},
        {"run{1}", {"run"}},
        {"^run$", {"run"}},
        {"run%1", {"run", "runlog"}},
        {"%2", {"log"}},
    };
    QTemporaryDir folder;
    for (const auto &row : rows) {
        const QString base = QString::fromLatin1(row.first);
        const QString probe = base + QStringLiteral("_20.log");
        // On Windows a name may be refused, or a part of it taken for a folder or changed: such
        // rows are left out.
        const bool possible = !base.contains(QDir::separator())
            && writeFile(folder.filePath(probe), "x")
            && entriesOf(folder.path()) == QStringList{probe};
        for (const QString &entry : entriesOf(folder.path()))
            QVERIFY(QFile::remove(folder.filePath(entry)));
        if (!possible)
            continue;
        QStringList others;
        for (const char *other : row.second) {
            const QString name = QString::fromLatin1(other);
            if (writeFile(folder.filePath(name), "x") && QFile::remove(folder.filePath(name)))
                others.append(name);
        }
        QTest::newRow(row.first) << base << others;
    }
}

void TestLogPruning::wildcardsInABaseNameMatchThatNameOnly()
{
    QFETCH(QString, base);
    QFETCH(QStringList, others);
    QStringList kept;
    for (const QString &other : others)
        kept.append(other + QStringLiteral("_2023-01-01-000000.log"));
    QVERIFY(make(kept));
    QVERIFY(make({base + QStringLiteral("_2022-01-01-000000.log"),
                  base + QStringLiteral("_2023-01-01-000000.log")}));
    QVERIFY(writeFile(path(base + QStringLiteral("_2024-01-01-000000.log")), QByteArray()));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), base, QStringLiteral("log"), 1));
    QStringList found = entriesOf(testFolder());
    QStringList expected = kept + QStringList{base + QStringLiteral("_2023-01-01-000000.log")};
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
}

void TestLogPruning::wildcardsInASuffixMatchThatSuffixOnly_data()
{
    QTest::addColumn<QString>("suffix");

    QTemporaryDir folder;
    for (const char *suffix : {"l[o]g", "l?g", "l*g", "*", "[!x]og"}) {
        if (writeFile(folder.filePath(QLatin1Char('a') + QString::fromLatin1(suffix)), "x"))
            QTest::newRow(suffix) << QString::fromLatin1(suffix);
    }
}

void TestLogPruning::wildcardsInASuffixMatchThatSuffixOnly()
{
    QFETCH(QString, suffix);
    const QString other = QStringLiteral("run_2023-01-01-000000.log");
    QVERIFY(make({other, QStringLiteral("run_2023-01-01-000000.") + suffix}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"), suffix, 0));
    QCOMPARE(entriesOf(testFolder()), QStringList{other});
}

void TestLogPruning::emptyFilesAreDeletedEvenBelowTheCount()
{
    const QStringList names{QStringLiteral("run_2023-01-01-000000.log"),
                            QStringLiteral("run_2023-01-02-000000.log"),
                            QStringLiteral("run_2023-01-03-000000.log")};
    QVERIFY(make(names));
    QVERIFY(writeFile(path(names.at(0)), QByteArray()));
    QVERIFY(writeFile(path(names.at(2)), QByteArray()));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), 10));
    QCOMPARE(entriesOf(testFolder()), QStringList{names.at(1)});
}

void TestLogPruning::theOldestByNameGoFirst()
{
    const QStringList names{
        QStringLiteral("run_2022-12-31-235959.log"), QStringLiteral("run_2023-01-01-000000.log"),
        QStringLiteral("run_2023-01-01-000001.log"), QStringLiteral("run_2023-01-01-095959.log"),
        QStringLiteral("run_2023-01-01-100000.log"), QStringLiteral("run_2023-10-01-000000.log")};
    // The age of the files says the opposite.
    for (int i = names.size() - 1; i >= 0; --i)
        QVERIFY(make({names.at(i)}));
    for (int left = names.size() - 1; left >= 0; --left) {
        QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                                  QStringLiteral("log"), left));
        QCOMPARE(entriesOf(testFolder()), names.mid(names.size() - left));
    }
}

void TestLogPruning::moreThanTheCountAreDeleted_data()
{
    QTest::addColumn<int>("maxCount");
    QTest::addColumn<int>("left");

    QTest::newRow("more") << 6 << 5;
    QTest::newRow("as many") << 5 << 5;
    QTest::newRow("one less") << 4 << 4;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("negative") << -1 << 0;
}

void TestLogPruning::moreThanTheCountAreDeleted()
{
    QFETCH(int, maxCount);
    QFETCH(int, left);
    QStringList names;
    for (int day = 1; day <= 5; ++day)
        names.append(QStringLiteral("run_2023-01-0%1-000000.log").arg(day));
    QVERIFY(make(names));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), maxCount));
    QCOMPARE(entriesOf(testFolder()), names.mid(5 - left));
}

void TestLogPruning::pruningAMissingFolderIsFalse()
{
    QVERIFY(!Log::removeOldTimeStampedLogFiles(path(QStringLiteral("missing")),
                                               QStringLiteral("run"), QStringLiteral("log"), 10));
    QVERIFY(!QFile::exists(path(QStringLiteral("missing"))));
    QVERIFY(make({QStringLiteral("file")}));
    QVERIFY(!Log::removeOldTimeStampedLogFiles(path(QStringLiteral("file")), QStringLiteral("run"),
                                               QStringLiteral("log"), 10));
}

void TestLogPruning::pruningNothingIsTrue()
{
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), 10));
    QVERIFY(make({QStringLiteral("run_2023-01-01-000000.log"), QStringLiteral("run_old.log")}));
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), 1));
    QCOMPARE(entriesOf(testFolder()).size(), 2);
}

void TestLogPruning::theResultIsThatOfTheLastDeletion_data()
{
    QTest::addColumn<int>("kept");
    QTest::addColumn<bool>("result");

    QTest::newRow("the first fails") << 0 << true;
    QTest::newRow("one between fails") << 1 << true;
    QTest::newRow("the last fails") << 2 << false;
}

void TestLogPruning::theResultIsThatOfTheLastDeletion()
{
    QFETCH(int, kept);
    QFETCH(bool, result);
    const QStringList names{
        QStringLiteral("run_2023-01-01-000000.log"), QStringLiteral("run_2023-01-02-000000.log"),
        QStringLiteral("run_2023-01-03-000000.log"), QStringLiteral("run_2023-01-04-000000.log")};
    QVERIFY(make(names));
    const KeptFile file(path(names.at(kept)));
    if (!file.isKept())
        QSKIP("This account cannot protect a file from being deleted");
    QCOMPARE(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                               QStringLiteral("log"), 1),
             result);
    QCOMPARE(entriesOf(testFolder()), (QStringList{names.at(kept), names.at(3)}));
}

void TestLogPruning::theResultOfDeletingAnEmptyFileIsOverwrittenToo()
{
    const QString empty = QStringLiteral("run_2023-01-02-000000.log");
    const QStringList names{QStringLiteral("run_2023-01-01-000000.log"), empty,
                            QStringLiteral("run_2023-01-03-000000.log")};
    QVERIFY(make(names));
    QVERIFY(writeFile(path(empty), QByteArray()));
    const KeptFile file(path(empty));
    if (!file.isKept())
        QSKIP("This account cannot protect a file from being deleted");
    // Nothing but the empty file is to be deleted.
    QVERIFY(!Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                               QStringLiteral("log"), 10));
    QCOMPARE(entriesOf(testFolder()), names);
    // It still counts, and the deletion of the oldest comes after it.
    QVERIFY(Log::removeOldTimeStampedLogFiles(testFolder(), QStringLiteral("run"),
                                              QStringLiteral("log"), 2));
    QCOMPARE(entriesOf(testFolder()), names.mid(1));
}

QTEST_GUILESS_MAIN(TestLogPruning)

#include "tst_logpruning.moc"
