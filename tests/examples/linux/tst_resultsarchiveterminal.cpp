// The line that results-archive shows on a terminal while it works.

#include "Terminal.h"
#include "TestWithResultsArchive.h"

class TestResultsArchiveTerminal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theUnpackedPartIsShownInPercent();
};

// The script unpacks everything and then goes on only when the line has been seen.
void TestResultsArchiveTerminal::theUnpackedPartIsShownInPercent()
{
    NEED_ARCHIVER;
    constexpr int UntilTheNextLook = 100; // milliseconds
    Tree tree = smallTree();
    tree.insert(QStringLiteral(".hidden"), "hidden");
    const Site site(tree);
    const QString script = site.path(QStringLiteral("bin/7z"));
    const QString seen = site.path(QStringLiteral("seen"));
    QVERIFY(writeFileInFolder(script,
                              "#!/bin/sh\n" + QFile::encodeName(archiverOnPath())
                                  + " \"$@\" || exit\n"
                                    "[ \"$1\" = x ] || exit 0\n"
                                    "until [ -e "
                                  + QFile::encodeName(seen) + " ]; do sleep 0.1; done\n"));
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
    Terminal terminal(QStringLiteral("/usr/bin/env"),
                      {QStringLiteral("PATH=%1:%2")
                           .arg(site.path(QStringLiteral("bin")), qEnvironmentVariable("PATH")),
                       QStringLiteral("TMPDIR=%1").arg(site.tempFolder()),
                       BuildPaths::resultsArchive(), QStringLiteral("--archive"), site.archive(),
                       site.dataFolder()});
    QVERIFY(terminal.isStarted());
    const auto isShown = [&] {
        const QRegularExpression line(
            QStringLiteral("\\rUnpack  [0-9:.]+( sec)?  archive: 0.0 MiB  100.0 % *"));
        return !terminal.waitForEnd(UntilTheNextLook)
            && QString::fromLocal8Bit(terminal.output()).contains(line);
    };
    QTRY_VERIFY_WITH_TIMEOUT(isShown(), TimeLimit);
    QVERIFY(writeFile(seen, ""));
    QVERIFY(terminal.waitForEnd(TimeLimit));
    QVERIFY2(terminal.output().contains("Packed and verified: 2 files"),
             terminal.output().constData());
}

QTEST_GUILESS_MAIN(TestResultsArchiveTerminal)

#include "tst_resultsarchiveterminal.moc"
