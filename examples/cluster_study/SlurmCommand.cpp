#include "SlurmCommand.h"

#include "Text.h"

namespace ClusterStudy {

namespace {

constexpr int TimeLimit = 20000; // milliseconds

// The user's variables for sbatch choose the partition and the like. Those for the other commands
// would hide jobs.
QProcessEnvironment environmentWith(const QProcessEnvironment &variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QStringList names = environment.keys();
    for (const QString &name : names) {
        if (name.startsWith(QLatin1String("SQUEUE_")) || name.startsWith(QLatin1String("SCANCEL_"))
            || name == QLatin1String("SBATCH_WAIT"))
            environment.remove(name);
    }
    // Without this squeue shortens long lists of tasks.
    environment.insert(QStringLiteral("SLURM_BITSTR_LEN"), QStringLiteral("0"));
    environment.insert(variables);
    return environment;
}

// The lines that a command has printed, as one line.
QString joinedLines(const QByteArray &output)
{
    QStringList lines = QString::fromLocal8Bit(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (QString &line : lines)
        line = oneLine(line.trimmed());
    return lines.join(QStringLiteral("; "));
}

} // namespace

SlurmCommand::SlurmCommand()
{
    // Queued: the next command may be started, and this object deleted, after the end of a command.
    connect(
        &process_, &QProcess::errorOccurred, this,
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) // finished() follows the others
                end();
        },
        Qt::QueuedConnection);
    connect(
        &process_, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
        [this] { end(); }, Qt::QueuedConnection);
    limit_.setSingleShot(true);
    connect(&limit_, &QTimer::timeout, this, [this] {
        isTooLate_ = true;
        stop();
    });
}

bool SlurmCommand::isRunning() const
{
    return done_ != nullptr;
}

void SlurmCommand::stop()
{
    if (process_.state() != QProcess::NotRunning)
        process_.endAll(true);
}

void SlurmCommand::run(const QString &program, const QStringList &arguments, const Done &done,
                       const QByteArray &input, const QProcessEnvironment &variables)
{
    done_ = done;
    isTooLate_ = false;
    process_.setProgram(program);
    process_.setArguments(arguments);
    process_.setProcessEnvironment(environmentWith(variables));
    limit_.start(TimeLimit);
    process_.begin();
    if (!input.isEmpty())
        process_.write(input);
    process_.closeWriteChannel();
}

void SlurmCommand::end()
{
    limit_.stop();
    Answer answer;
    answer.isTooLate = isTooLate_;
    const QString program = process_.program();
    const QString errors = joinedLines(process_.readAllStandardError());
    answer.output = QString::fromUtf8(process_.readAllStandardOutput());
    if (process_.error() == QProcess::FailedToStart)
        answer.error
            = QStringLiteral("%1 cannot be started: %2").arg(program, process_.errorString());
    else if (isTooLate_)
        answer.error = QStringLiteral("%1 does not answer. %2").arg(program, errors);
    else if (process_.exitStatus() != QProcess::NormalExit || process_.exitCode() != 0)
        answer.error = QStringLiteral("%1 failed: %2").arg(program, errors);
    else
        answer.isOk = true;
    const Done done = std::move(done_);
    done_ = nullptr;
    done(answer);
}

} // namespace ClusterStudy
