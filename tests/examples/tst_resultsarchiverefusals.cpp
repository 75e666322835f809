// What the example refuses.

#include "TestSystem.h"
#include "TestWithResultsArchive.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <cstdio>
#include <fstream>

using namespace Vorn::Util;

class TestResultsArchiveRefusals : public TestWithResultsArchive
{
    Q_OBJECT

private Q_SLOTS:
    void helpSucceeds();
    void aWrongCallIsRefused_data();
    void aWrongCallIsRefused();
    void anArchiveThatExistsIsLeftAsItIs();
    void anArchiveInsideTheFolderIsRefused_data();
    void anArchiveInsideTheFolderIsRefused();
    void anArchiveThatCannotBeWrittenIsRefused_data();
    void anArchiveThatCannotBeWrittenIsRefused();
    void aLogInsideTheFolderIsRefused();
    void aLogThatCannotBeWrittenIsRefused();
    void anEmptyFolderIsRefused_data();
    void anEmptyFolderIsRefused();
    void aNameThat7ZipMisreadsIsRefused_data();
    void aNameThat7ZipMisreadsIsRefused();
    void aNameThatIsNoTextIsRefused();
    void withoutSevenZipTheRunEnds();
};

void TestResultsArchiveRefusals::helpSucceeds()
{
    Site site(smallTree());
    QCOMPARE(site.run({QStringLiteral("--help")}), 0);
    for (const char *option :
         {"--archive", "--type", "--method", "--level", "--log", "--cluster-tools", "folder"})
        QVERIFY2(site.output().contains(QLatin1String(option)), option);
    QCOMPARE(site.errors(), QString());
}

void TestResultsArchiveRefusals::aWrongCallIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QString &arguments, const char *text) {
        QTest::newRow(name) << arguments.split(QLatin1Char('|')) << QString::fromLatin1(text);
    };
    row("no such option", QStringLiteral("--fast|data"), "Unknown option 'fast'.");
    row("no value", QStringLiteral("data|--level"), "Missing value after '--level'.");
    row("no cluster tools", QStringLiteral("data|--cluster-tools"),
        "Missing value after '--cluster-tools'.");
    row("cluster tools missing", QStringLiteral("--cluster-tools|nowhere|data"),
        "The folder of the cluster tool does not exist: nowhere");
    row("cluster tools empty text", QStringLiteral("--cluster-tools||data"),
        "The folder of the cluster tool does not exist: ");
    row("cluster tools no folder", QStringLiteral("--cluster-tools|nodes.txt|data"),
        "The folder of the cluster tool does not exist: nodes.txt");
    row("no folder", QStringLiteral("--level|1"), "Expected one folder; see --help");
    row("two folders", QStringLiteral("data|data"), "Expected one folder; see --help");
    row("folder missing", QStringLiteral("nowhere"), "The folder does not exist: nowhere");
    row("folder empty text", QString(), "The folder does not exist: ");
    row("folder is a file", QStringLiteral("data/a.txt"), nullptr);
    row("type", QStringLiteral("--type|rar|data"), "The type rar is unknown: use 7z or zip");
    row("type in capitals", QStringLiteral("--type|ZIP|data"),
        "The type ZIP is unknown: use 7z or zip");
    row("method", QStringLiteral("--method|PPMd|data"),
        "The method PPMd is unknown: use Copy, Deflate, LZMA, LZMA2 or BZip2");
    row("method in small letters", QStringLiteral("--method|lzma|data"),
        "The method lzma is unknown: use Copy, Deflate, LZMA, LZMA2 or BZip2");
    for (const char *method : {"LZMA", "LZMA2", "BZip2"}) {
        const QByteArray text
            = QByteArray("The method ") + method + " is not for zip archives: use Copy or Deflate";
        row(method, QStringLiteral("--type|zip|--method|%1|data").arg(QLatin1String(method)),
            text.constData());
    }
    row("level too high", QStringLiteral("--level|10|data"), "The level 10 is unknown: use 0 to 9");
    row("level negative", QStringLiteral("--level=-1|data"), "The level -1 is unknown: use 0 to 9");
    row("level no number", QStringLiteral("--level|best|data"),
        "The level best is unknown: use 0 to 9");
}

void TestResultsArchiveRefusals::aWrongCallIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, text);
    if (text.isNull())
        text = QStringLiteral("The folder does not exist: ") + native(arguments.first());
    Site site(smallTree());
    QVERIFY(writeFileInFolder(site.path(QStringLiteral("nodes.txt")), "a file"));
    QCOMPARE(site.run(arguments), 1);
    QCOMPARE(site.errors(), error(text));
    QCOMPARE(site.output(), QString());
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
    QVERIFY(!QFile::exists(site.path(QStringLiteral("data.7z"))));
}

void TestResultsArchiveRefusals::anArchiveThatExistsIsLeftAsItIs()
{
    Site site(smallTree());
    QVERIFY(writeFileInFolder(site.archive(), "precious"));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The archive exists already: ") + native(site.archive())));
    QCOMPARE(contentOf(site.archive()), QByteArray("precious"));
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
}

void TestResultsArchiveRefusals::anArchiveInsideTheFolderIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("inside") << QStringLiteral("data/x.7z");
    QTest::addRow("below") << QStringLiteral("data/sub/x.7z");
    QTest::addRow("below what is missing") << QStringLiteral("data/missing/too/x.7z");
    QTest::addRow("by a detour") << QStringLiteral("out/../data/x.7z");
}

void TestResultsArchiveRefusals::anArchiveInsideTheFolderIsRefused()
{
    QFETCH(QString, name);
    const Tree tree{{QStringLiteral("sub/a.txt"), "abc"}};
    Site site(tree);
    QCOMPARE(site.run({QStringLiteral("--archive"), name, site.dataFolder()}), 1);
    const QString start = error(QStringLiteral("The archive lies inside the folder: "));
    QVERIFY2(site.errors().startsWith(start.chopped(1)), qPrintable(site.errors()));
    QCOMPARE(site.errors().count(QLatin1Char('\n')), 1);
    QCOMPARE(readTree(site.dataFolder()), tree);
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
}

void TestResultsArchiveRefusals::anArchiveThatCannotBeWrittenIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addRow("folder missing") << QStringLiteral("missing/x.7z");
    QTest::addRow("folder is a file") << QStringLiteral("file/x.7z");
    QTest::addRow("name too long") << QString(300, QLatin1Char('x')) + QStringLiteral(".7z");
}

void TestResultsArchiveRefusals::anArchiveThatCannotBeWrittenIsRefused()
{
    QFETCH(QString, name);
    Site site(smallTree());
    QVERIFY(writeFileInFolder(site.outFile(QStringLiteral("file")), "x"));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.outFile(name), site.dataFolder()}), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The archive cannot be written: ") + native(site.outFile(name))));
    QCOMPARE(entriesOf(site.outFolder()), QStringList{QStringLiteral("file")});
    QCOMPARE(entriesOf(site.tempFolder()), QStringList());
}

void TestResultsArchiveRefusals::aLogInsideTheFolderIsRefused()
{
    Site site(smallTree());
    const QString log = site.dataFile(QStringLiteral("run.log"));
    QCOMPARE(site.run({QStringLiteral("--log"), log, QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()}),
             1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The log lies inside the folder, use another with --log: ")
                   + native(log)));
    QCOMPARE(readTree(site.dataFolder()), smallTree());
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

void TestResultsArchiveRefusals::aLogThatCannotBeWrittenIsRefused()
{
    Site site(smallTree());
    const QString log = site.path(QStringLiteral("missing/run.log"));
    QCOMPARE(site.run({QStringLiteral("--log"), log, QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()}),
             1);
    const QString pattern
        = QStringLiteral("^results-archive: The log cannot be written: %1_\\d{4}-\\d\\d-\\d\\d-"
                         "\\d{6}\\.log\n$")
              .arg(QRegularExpression::escape(native(site.path(QStringLiteral("missing/run")))));
    QVERIFY2(QRegularExpression(pattern).match(site.errors()).hasMatch(),
             qPrintable(site.errors()));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
}

void TestResultsArchiveRefusals::anEmptyFolderIsRefused_data()
{
    QTest::addColumn<bool>("hasSubfolder");
    QTest::addRow("nothing") << false;
    QTest::addRow("only folders") << true;
}

void TestResultsArchiveRefusals::anEmptyFolderIsRefused()
{
    QFETCH(bool, hasSubfolder);
    Site site{Tree()};
    if (hasSubfolder)
        QVERIFY(QDir().mkpath(site.dataFile(QStringLiteral("sub/deep"))));
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The folder holds no files: ") + native(site.dataFolder())));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveRefusals::aNameThat7ZipMisreadsIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shownName");
    const auto row = [](const char *name, const char *shownName) {
        QTest::addRow("%s", shownName)
            << QString::fromLatin1(name) << QString::fromLatin1(shownName);
    };
    row("-sdel/x", "-sdel/x");
    row("@list/x", "@list/x");
    if (!onWindows()) { // where no file can be named so
        row("line\nbreak", "line?break");
        row("blank ", "blank ");
    }
}

void TestResultsArchiveRefusals::aNameThat7ZipMisreadsIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, shownName);
    Site site({{name, "x"}, {QStringLiteral("a.txt"), "abc"}});
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("7-Zip cannot be given this name: ") + shownName));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveRefusals::aNameThatIsNoTextIsRefused()
{
    if (onWindows())
        QSKIP("Every name is text here");
    Site site(smallTree());
    const std::string name = QFile::encodeName(site.dataFolder()).toStdString() + "/b\xff";
    QVERIFY(std::ofstream(name).is_open());
    const int exitCode = site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()});
    QCOMPARE(std::remove(name.c_str()), 0); // Qt could not
    QCOMPARE(exitCode, 1);
    QCOMPARE(site.errors(),
             error(QStringLiteral("The folder contains a name that cannot be read")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

void TestResultsArchiveRefusals::withoutSevenZipTheRunEnds()
{
    Site site(smallTree());
    site.hideArchivers();
    QCOMPARE(site.run({QStringLiteral("--archive"), site.archive(), site.dataFolder()}), 1);
    QCOMPARE(site.errors(), error(QStringLiteral("7-Zip cannot be started")));
    QCOMPARE(entriesOf(site.outFolder()), QStringList());
    QVERIFY(site.isTempFolderClean());
}

QTEST_GUILESS_MAIN(TestResultsArchiveRefusals)

#include "tst_resultsarchiverefusals.moc"
