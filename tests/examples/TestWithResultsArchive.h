#pragma once

#include "BuildPaths.h"
#include "FakeArchiver.h"
#include "FileTree.h"
#include "Fixture.h"
#include "Noise.h"
#include "OwnTempFolder.h"
#include "RealArchiver.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

constexpr int TimeLimit = 120000; // milliseconds

/// Names of every kind that can be packed.
inline Tree fewResultsTree()
{
    Tree tree;
    tree.insert(QStringLiteral("text.txt"), QByteArray("a line that comes again\n").repeated(4000));
    tree.insert(QStringLiteral("noise.bin"), noise(70000));
    tree.insert(QStringLiteral("deep/er/and/deeper/x.txt"), "LF\nCR LF\r\nCR\r\x1a end");
    tree.insert(QStringLiteral("empty"), QByteArray());
    tree.insert(QStringLiteral("deep/empty too"), QByteArray());
    tree.insert(QStringLiteral(".hidden"), "hidden");
    tree.insert(QStringLiteral(".folder/hidden too"), "hidden");
    tree.insert(QStringLiteral("two  blanks   three"), "blanks");
    tree.insert(QStringLiteral("12 34 numbers.txt"), "numbers");
    tree.insert(QStringLiteral("12 34"), "numbers");
    tree.insert(QStringLiteral("98765432109876543210 34"), "more than 64 bits");
    tree.insert(QStringLiteral("-12 34"), "numbers");
    tree.insert(QStringLiteral("-option"), "option");
    tree.insert(QStringLiteral("@list"), "list");
    tree.insert(QStringLiteral("sub/-option"), "option below");
    tree.insert(QString::fromUtf8("größe/λύσις.txt"), "letters");
    tree.insert(QString::fromUtf8("結果.dat"), "letters");
    return tree;
}

inline Tree smallTree()
{
    return {{QStringLiteral("a.txt"), "abc"}};
}

inline QStringList words(const QString &text)
{
    QStringList all = text.split(QLatin1Char(' '));
    all.removeAll(QString());
    return all;
}

/// A size as the program prints it.
inline QString mebibytes(qint64 bytes)
{
    return QStringLiteral("%1 MiB").arg(static_cast<double>(bytes) / 1048576.0, 0, 'f', 1);
}

inline QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

inline QString error(const QString &text)
{
    return QStringLiteral("results-archive: %1\n").arg(text);
}

inline QString textOf(QByteArray bytes)
{
    return QString::fromLocal8Bit(bytes.replace("\r\n", "\n"));
}

/// The program in a folder of its own, data to pack, a folder for archives and one for temporary
/// files. All are deleted with the object.
class Site
{
public:
    explicit Site(const Tree &data)
    {
        for (const QString &folder : {dataFolder(), outFolder(), tempFolder(), path(Program)})
            QDir().mkpath(folder);
        if (!writeTree(dataFolder(), data))
            qFatal("The test's data cannot be written.");
        copy(BuildPaths::resultsArchive(), QFileInfo(BuildPaths::resultsArchive()).fileName());
        environment_ = QProcessEnvironment::systemEnvironment();
        useTempFolder(tempFolder());
    }

    void useTempFolder(const QString &folder)
    {
        for (const char *variable : TempVariables)
            environment_.insert(QString::fromLatin1(variable), native(folder));
    }

    // Puts a cluster tool that prints these lines into the folder "tools".
    void useClusterTool(const QByteArray &lines)
    {
        const QString tool = path(QStringLiteral("tools/NodeInformation.exe"));
        const QString nodes = path(QStringLiteral("nodes"));
        if (!writeFileInFolder(nodes, lines) || !QDir().mkpath(QFileInfo(tool).path())
            || !QFile::copy(BuildPaths::fakeClusterTool(), tool))
            qFatal("The cluster tool cannot be placed.");
        environment_.insert(QStringLiteral("FAKE_NODES"), native(nodes));
        environment_.insert(QStringLiteral("FAKE_NODES_RECORD"),
                            native(path(QStringLiteral("record"))));
    }

    QString dataFolder() const { return path(QStringLiteral("data")); }
    QString dataFile(const QString &name) const { return dataFolder() + QLatin1Char('/') + name; }
    QString outFolder() const { return path(QStringLiteral("out")); }
    QString archive() const { return outFile(QStringLiteral("results.7z")); }
    QString outFile(const QString &name) const { return outFolder() + QLatin1Char('/') + name; }
    QString tempFolder() const { return path(QStringLiteral("tmp")); }
    QString path(const QString &name) const { return root_.filePath(name); }

    void useRealArchiver() const
    {
        // Only for Windows: on Linux the real archiver is on PATH.
        for (const QString &name : {QStringLiteral("7z.exe"), QStringLiteral("7z.dll")}) {
            const QString file = QCoreApplication::applicationDirPath() + QLatin1Char('/') + name;
            if (onWindows() && QFile::exists(file))
                copy(file, name);
        }
    }

    void useFakeArchiver(const FakeArchiver &)
    {
        for (const char *variable : {"FAKE_ARCHIVER", "FAKE_ARCHIVER_RECORD"})
            environment_.insert(QString::fromLatin1(variable), qEnvironmentVariable(variable));
        copy(BuildPaths::fakeArchiver(), QStringLiteral("7z.exe"));
    }

    void hideArchivers()
    {
        if (!onWindows()) // there it lies beside the program or nowhere
            environment_.insert(QStringLiteral("PATH"), tempFolder());
    }

    void start(const QStringList &arguments)
    {
        process_.setProcessEnvironment(environment_);
        process_.setWorkingDirectory(root_.path());
        process_.start(path(Program) + QLatin1Char('/')
                           + QFileInfo(BuildPaths::resultsArchive()).fileName(),
                       arguments);
    }

    int finish()
    {
        if (!process_.waitForFinished(TimeLimit) && process_.state() != QProcess::NotRunning)
            return -1;
        output_ = textOf(process_.readAllStandardOutput());
        errors_ = textOf(process_.readAllStandardError());
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -2;
    }

    int run(const QStringList &arguments)
    {
        start(arguments);
        return finish();
    }

    QProcess &process() { return process_; }
    QString output() const { return output_; }
    QString errors() const { return errors_; }

    QString logFile() const
    {
        const QDir folder(tempFolder());
        const QStringList logs = folder.entryList({QStringLiteral("results-archive_20*.log")});
        return logs.size() == 1 ? folder.filePath(logs.first()) : QString();
    }

    // Without the time in front.
    QStringList logLines() const
    {
        QStringList lines = textOf(contentOf(logFile())).split(QLatin1Char('\n'));
        lines.removeLast();
        for (QString &line : lines)
            line.remove(QRegularExpression(QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] ")));
        return lines;
    }

    // Whether the temporary folder is empty or holds only the log (an early failure writes none).
    bool isTempFolderClean() const
    {
        const QStringList entries = entriesOf(tempFolder());
        return entries.isEmpty() || (entries.size() == 1 && !logFile().isEmpty());
    }

private:
    Q_DISABLE_COPY(Site)

    void copy(const QString &from, const QString &name) const
    {
        if (!QFile::copy(from, path(Program) + QLatin1Char('/') + name))
            qFatal("%s cannot be copied.", qPrintable(from));
    }

    const QString Program = QStringLiteral("program");
    TestFolder root_;
    QProcessEnvironment environment_;
    QProcess process_;
    QString output_;
    QString errors_;
};

/// A listing as the 7-Zip that is shipped with the product prints it.
inline QByteArray listing(const QByteArray &name, int size)
{
    const QByteArray number = QByteArray::number(size);
    return "Type = 7z\nMethod = LZMA2\n\n"
           "-------- -------- ----- ------------ ------------  ------------\n"
           "2024-03-05 14:23:10 ....A "
        + number + ' ' + number + "  " + name
        + "\n-------- -------- ----- ------------ ------------  ------------\n" + number + ' '
        + number + "  1 files, 0 folders\n";
}

/// A program that packs the small tree well.
inline void makeGood(FakeArchiver &archiver, const Site &site)
{
    archiver.writeFile(site.archive(), "archive").unpackFile(QStringLiteral("a.txt"), "abc");
    archiver.print(listing("a.txt", 3));
}

/// Hides the command lines that SevenZip sends to the debug channel of the test.
class TestWithResultsArchive : public Fixture
{
protected:
    void initTestCase() override
    {
        QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
    }
};
