// scripts/slurm.sh, with a second cluster beside that of the other tests.
#include "BuildPaths.h"
#include "TestFiles.h"
#include "TestWithCluster.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

namespace {

// The processes that have this configuration of Slurm in their environment.
QStringList processesWith(const QByteArray &configuration)
{
    QStringList processes;
    const QStringList all
        = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[1-9]*")}, QDir::Dirs);
    for (const QString &process : all) {
        const QByteArray environment = contentOf(QStringLiteral("/proc/%1/environ").arg(process));
        if (environment.split('\0').contains("SLURM_CONF=" + configuration))
            processes += process;
    }
    return processes;
}

// The numbers of all sockets that the processes have open.
QSet<QByteArray> socketsOf(const QStringList &processes)
{
    static const QRegularExpression socket(QStringLiteral("socket:\\[(\\d+)\\]$"));
    QSet<QByteArray> numbers;
    for (const QString &process : processes) {
        const QFileInfoList files = QDir(QStringLiteral("/proc/%1/fd").arg(process))
                                        .entryInfoList(QDir::Files | QDir::System);
        for (const QFileInfo &file : files) {
            const QString number = socket.match(file.symLinkTarget()).captured(1);
            if (!number.isEmpty())
                numbers += number.toLatin1();
        }
    }
    return numbers;
}

// The local addresses, as in /proc/net, of those of the sockets to which others can connect or
// send.
QList<QByteArray> listeningAddresses(const QSet<QByteArray> &sockets)
{
    QList<QByteArray> addresses;
    for (const char *protocol : {"tcp", "tcp6", "udp", "udp6"}) {
        QList<QByteArray> lines
            = contentOf(QStringLiteral("/proc/net/") + QString::fromLatin1(protocol)).split('\n');
        lines.removeFirst(); // the names of the columns
        const QByteArray listening = protocol[0] == 't' ? "0A" : "07";
        for (const QByteArray &line : qAsConst(lines)) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            if (fields.value(3) == listening && sockets.contains(fields.value(9)))
                addresses += fields.at(1).split(':').first();
        }
    }
    return addresses;
}

// 127.0.0.0/8, the same as an IPv6 address, or ::1. The bytes of each word are in reverse order.
bool isLoopback(const QByteArray &address)
{
    static const QRegularExpression form(
        QStringLiteral("\\A(?:(?:0{16}FFFF0000)?[0-9A-F]{6}7F|0{24}01000000)\\z"));
    return form.match(QString::fromLatin1(address)).hasMatch();
}

} // namespace

class TestClusterScript : public TestWithCluster
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() override { TestWithCluster::initTestCase(); }
    void init() override { TestWithCluster::init(); }
    void cleanup() override;

    void theClusterListensOnLoopbackAddressesOnly();
    void stopEndsTheClusterAndItsJobs();
    void stopLeavesOtherFoldersAlone();
    void aFolderThatSlurmCannotReadIsRefused_data();
    void aFolderThatSlurmCannotReadIsRefused();

private:
    static Answer script(const QString &action, const QStringList &variables = {})
    {
        return answerOf(QStringLiteral("env"),
                        variables + QStringList{BuildPaths::clusterScript(), action, cluster()});
    }
    // Beside the first cluster, where scripts/test-cluster.sh ends it after Ctrl-C.
    static QString cluster()
    {
        return QFileInfo(qEnvironmentVariable("VORNUTILITY_CLUSTER")).path()
            + QStringLiteral("/second");
    }
    static QString pathInCluster(const char *name)
    {
        return cluster() + QLatin1Char('/') + QLatin1String(name);
    }
};

void TestClusterScript::cleanup()
{
    qputenv("SLURM_CONF", QFile::encodeName(clusterFile(QStringLiteral("slurm.conf"))));
    script(QStringLiteral("stop"));
    TestWithCluster::cleanup();
}

// Also while a job runs.
void TestClusterScript::theClusterListensOnLoopbackAddressesOnly()
{
    const QString file = path("go");
    const QString job = QStringLiteral("touch '%1'; sleep 600").arg(file);
    const Answer submitted = answerOf(QStringLiteral("sbatch"),
                                      {QStringLiteral("--parsable"), QStringLiteral("--wrap"), job,
                                       QStringLiteral("--output=/dev/null")});
    QCOMPARE(submitted.exitCode, 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file), 30000);
    const QByteArray configuration = QFile::encodeName(clusterFile(QStringLiteral("slurm.conf")));
    const QList<QByteArray> addresses = listeningAddresses(socketsOf(processesWith(configuration)));
    answerOf(QStringLiteral("scancel"), submitted.lines);
    QCOMPARE(addresses.size(), 4); // the controller and the daemons of three nodes
    for (const QByteArray &address : addresses)
        QVERIFY2(isLoopback(address), address.constData());
}

void TestClusterScript::stopEndsTheClusterAndItsJobs()
{
    // Also inside a job of another cluster, or if the user has set variables of Slurm.
    const Answer started
        = script(QStringLiteral("start"),
                 {QStringLiteral("SLURM_CLUSTERS=nothing"), QStringLiteral("SLURM_JOB_ID=1"),
                  QStringLiteral("SINFO_PARTITION=nothing")});
    QVERIFY2(started.exitCode == 0, started.errors.constData());
    qputenv("SLURM_CONF", QFile::encodeName(pathInCluster("slurm.conf")));
    QProcess bystander; // a program of the user that knows the cluster
    bystander.start(QStringLiteral("sleep"), {QStringLiteral("600")});
    QVERIFY(bystander.waitForStarted());

    // The job does not carry the configuration in its environment.
    const QString file = path("process");
    const QString job
        = QStringLiteral("echo $$ >'%1.new'; mv '%1.new' '%1'; exec env -i sleep 600").arg(file);
    QCOMPARE(answerOf(QStringLiteral("sbatch"),
                      {QStringLiteral("--output=/dev/null"), QStringLiteral("--wrap"), job})
                 .exitCode,
             0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file), 30000);
    const QList<QByteArray> processes{contentOf(file).trimmed(),
                                      contentOf(pathInCluster("munge/munged.pid")).trimmed(),
                                      contentOf(pathInCluster("slurmctld.pid")).trimmed(),
                                      contentOf(pathInCluster("slurmd-n1.pid")).trimmed(),
                                      contentOf(pathInCluster("slurmd-n3.pid")).trimmed()};
    for (const QByteArray &process : processes)
        QVERIFY(isRunning(process));

    const Answer stopped = script(QStringLiteral("stop"));
    QVERIFY2(stopped.exitCode == 0, stopped.errors.constData());
    for (const QByteArray &process : processes)
        QVERIFY(!isRunning(process));
    QVERIFY(!QFile::exists(cluster()));
    QCOMPARE(bystander.state(), QProcess::Running);
    qputenv("SLURM_CONF", QFile::encodeName(clusterFile(QStringLiteral("slurm.conf"))));
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(QStringLiteral("n1")), QStringLiteral("idle"), 30000);
    bystander.kill();
    QVERIFY(bystander.waitForFinished());
}

void TestClusterScript::stopLeavesOtherFoldersAlone()
{
    QVERIFY(writeFileInFolder(path("other/slurm.conf"), "abc"));
    const Answer stopped
        = answerOf(BuildPaths::clusterScript(), {QStringLiteral("stop"), path("other")});
    QCOMPARE(stopped.exitCode, 1);
    QCOMPARE(contentOf(path("other/slurm.conf")), QByteArray("abc"));
}

void TestClusterScript::aFolderThatSlurmCannotReadIsRefused_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"a b", "a#b", "a%nb"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestClusterScript::aFolderThatSlurmCannotReadIsRefused()
{
    QFETCH(QString, name);
    const QString folder = cluster() + name;
    const Answer started = answerOf(BuildPaths::clusterScript(), {QStringLiteral("start"), folder});
    const bool wasCreated = QFile::exists(folder);
    answerOf(BuildPaths::clusterScript(), {QStringLiteral("stop"), folder});
    QCOMPARE(started.exitCode, 1);
    QVERIFY2(started.errors.startsWith("slurm.sh: ")
                 && started.errors.endsWith(QFile::encodeName(folder) + '\n'),
             started.errors.constData());
    QVERIFY(!wasCreated);
}

QTEST_GUILESS_MAIN(TestClusterScript)

#include "tst_clusterscript.moc"
