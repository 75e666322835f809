#include "BuildPaths.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include <Utility/Command.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <array>
#include <memory>

using namespace Vorn::Util;

namespace {

constexpr int TimeLimit = 30000; // milliseconds
constexpr int Tolerance = 1500;
constexpr int LongestWait = 60000;

QString scriptLine(const QString &arguments)
{
    return QStringLiteral("%1\"%2\" %3\n")
        .arg(onWindows() ? QStringLiteral("@") : QString(),
             QDir::toNativeSeparators(BuildPaths::helperProgram()), arguments);
}

QString hangLine(const QString &output)
{
    return scriptLine(
        QStringLiteral("hang %1 ended.txt").arg(QString::fromLatin1(output.toLatin1().toHex())));
}

// A program with a current folder of its own that runs a command.
class Run
{
public:
    Run(const QString &operation, const QString &command)
    {
        process_.setWorkingDirectory(folder_.path());
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(BuildPaths::helperProgram(),
                       {QStringLiteral("run-command"), operation,
                        QString::fromLatin1(command.toUtf8().toHex())});
    }

    ~Run()
    {
        process_.kill();
        process_.waitForFinished();
    }

    // False unless the program has ended as it should.
    bool wait()
    {
        if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(LongestWait))
            return false;
        const QByteArray report = process_.readAllStandardOutput();
        const int blank = report.indexOf(' ');
        duration_ = report.left(blank).toInt();
        result_ = QString::fromUtf8(report.mid(blank + 1));
        return process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
    }

    int duration() const { return duration_; }
    QString result() const { return result_; }
    bool hasFile(const char *name) const
    {
        return QFile::exists(folder_.filePath(QString::fromLatin1(name)));
    }

private:
    Q_DISABLE_COPY(Run)

    TestFolder folder_;
    QProcess process_;
    int duration_ = 0;
    QString result_;
};

} // namespace

// All commands run at the same time.
class TestCommandTimeout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void aHangingCommandIsStoppedAfter30Seconds();
    void runQStopsAHangingCommandAfter30Seconds();
    void aCommandThatKeepsPrintingIsStoppedAfter30Seconds();

private:
    void verifyDuration(const Run &run, int tolerance = Tolerance);

    const QString output_ = QStringLiteral("first\r\nsecond\r\nunfinished");
    std::unique_ptr<Run> run_;
    std::unique_ptr<Run> runQ_;
    std::unique_ptr<Run> printing_;
};

void TestCommandTimeout::initTestCase()
{
    const QString hang = hangLine(output_) + scriptLine(QStringLiteral("copy ended.txt rest.txt"));
    run_ = std::make_unique<Run>(QStringLiteral("run"), hang);
    runQ_ = std::make_unique<Run>(QStringLiteral("runQ"), hang);
    printing_ = std::make_unique<Run>(
        QStringLiteral("run"),
        scriptLine(QStringLiteral("print-without-pause %1").arg(TimeLimit - 2000)));
}

void TestCommandTimeout::cleanupTestCase()
{
    run_.reset();
    runQ_.reset();
    printing_.reset();
}

void TestCommandTimeout::verifyDuration(const Run &run, int tolerance)
{
    QVERIFY2(run.duration() >= TimeLimit - 100, qPrintable(QString::number(run.duration())));
    QVERIFY2(run.duration() <= TimeLimit + tolerance, qPrintable(QString::number(run.duration())));
}

// What it has printed so far is returned, and the rest of its script is never run. The program
// that the interpreter waited for learns of the end by the end of its input.
void TestCommandTimeout::aHangingCommandIsStoppedAfter30Seconds()
{
    QVERIFY(run_->wait());
    verifyDuration(*run_);
    QCOMPARE(run_->result(), output_);
    QVERIFY(!run_->hasFile("work.bat"));
    QTRY_VERIFY_WITH_TIMEOUT(run_->hasFile("ended.txt"), LongestWait);
    QVERIFY(!run_->hasFile("rest.txt"));
}

void TestCommandTimeout::runQStopsAHangingCommandAfter30Seconds()
{
    QVERIFY(runQ_->wait());
    verifyDuration(*runQ_);
    QCOMPARE(runQ_->result(), QStringLiteral("0"));
    QVERIFY(!runQ_->hasFile("work.bat"));
    QTRY_VERIFY_WITH_TIMEOUT(runQ_->hasFile("ended.txt"), LongestWait);
    QVERIFY(!runQ_->hasFile("rest.txt"));
}

// On Windows Qt closes the pipe only when the program that prints pauses for a moment.
void TestCommandTimeout::aCommandThatKeepsPrintingIsStoppedAfter30Seconds()
{
    constexpr int Lines = 32;
    constexpr int ToleranceOnWindows = 15000;
    QVERIFY(printing_->wait());
    verifyDuration(*printing_, onWindows() ? ToleranceOnWindows : Tolerance);
    QCOMPARE(printing_->result(),
             (QString(63, QLatin1Char('x')) + QLatin1Char('\n')).repeated(Lines));
    QVERIFY(!printing_->hasFile("work.bat"));
}

QTEST_GUILESS_MAIN(TestCommandTimeout)

#include "tst_commandtimeout.moc"
