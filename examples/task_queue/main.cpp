// Shows a queue of tasks with a line about the progress, a cancel with Ctrl-C, and a clean-up task
// that runs after a failure or a cancel too.

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskMonitor.h>
#include <Utility/AsyncTaskProcessor.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTimer>

#include <csignal>
#include <cstdio>

using namespace Vorn::Util;

namespace {

constexpr char Help[] = R"(Usage: task-queue LIST FILE...

Writes the SHA-256 checksums of files into the new file LIST. There is no list after a failure,
or after a cancel with Ctrl-C.

Exit codes: 0 the list was written, 1 a failure, 130 a cancel.
)";

volatile std::sig_atomic_t cancelRequested = 0;

extern "C" void requestCancel(int signal) // a signal handler may do little more than set a flag
{
    std::signal(signal, requestCancel); // some systems remove the handler when they call it
    cancelRequested = 1;
}

// The processor asks this object after each task. A long task looks at the flag itself.
class CancelRequest : public AsyncTaskMonitor
{
public:
    bool isCanceled() override { return cancelRequested != 0; }
};

// The checksums, in a file that gets its name when they are complete.
struct List
{
    QFile file;
    QString name;
    qint64 missing; // number of files
};

// Adds the checksum of a file to the list.
class ChecksumTask : public AsyncTask
{
public:
    ChecksumTask(const QString &fileName, List &list)
        : AsyncTask(fileName, nullptr)
        , file_(fileName)
        , list_(list)
    {
    }

protected:
    void execute() override
    {
        if (name().contains(QLatin1Char('\n'))) // would look like two lines of the list
            setError(QStringLiteral("%1: the name contains a line break").arg(name()));
        else if (QFileInfo::exists(name()) && !QFileInfo(name()).isFile()) // may have no end
            setError(QStringLiteral("%1: not a file").arg(name()));
        else if (!file_.open(QIODevice::ReadOnly))
            setError(QStringLiteral("%1: %2").arg(name(), file_.errorString()));
        readBlock();
    }

private:
    // Returns to the event loop after each block, so that the program stays responsive.
    void readBlock()
    {
        constexpr qint64 BlockSize = 1 << 20;
        const QByteArray block = isOk() ? file_.read(BlockSize) : QByteArray();
        if (isOk() && file_.error() != QFile::NoError)
            setError(QStringLiteral("%1: %2").arg(name(), file_.errorString()));
        if (isOk() && !cancelRequested && block.isEmpty())
            addToList();
        if (!isOk() || cancelRequested || block.isEmpty())
            return setFinished(); // deletes this task
        hash_.addData(block);
        Q_EMIT progress(
            QStringLiteral("%1 %").arg(100 * file_.pos() / qMax(file_.pos(), file_.size())));
        QTimer::singleShot(0, this, [this] { readBlock(); });
    }

    void addToList()
    {
        const QByteArray line = hash_.result().toHex() + "  " + name().toUtf8() + '\n';
        if (list_.file.write(line) == line.size())
            --list_.missing;
        else
            setError(QStringLiteral("%1: cannot be written").arg(list_.name));
    }

    QFile file_;
    List &list_;
    QCryptographicHash hash_{QCryptographicHash::Sha256};
};

// Publishes the list if it is complete, otherwise removes it.
class CleanUpTask : public AsyncTask
{
public:
    explicit CleanUpTask(List &list)
        : AsyncTask(QStringLiteral("Clean up"), nullptr)
        , list_(list)
    {
    }

protected:
    void execute() override
    {
        if (!(list_.missing == 0 ? list_.file.rename(list_.name) : list_.file.remove()))
            setError(QStringLiteral("%1: %2").arg(list_.name, list_.file.errorString()));
        setFinished();
    }

private:
    List &list_;
};

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

int fail(const QString &problem, int exitCode = 1)
{
    print(stderr, QStringLiteral("task-queue: %1\n").arg(problem));
    return exitCode;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList files = QCoreApplication::arguments().mid(2);
    const QString help = QString::fromLatin1(Help);
    if (QCoreApplication::arguments().value(1) == QLatin1String("--help")) {
        print(stdout, help);
        return 0;
    }
    if (files.isEmpty())
        return fail(help.section(QLatin1Char('\n'), 0, 0));
    List list{{}, QCoreApplication::arguments().at(1), files.size()};
    list.file.setFileName(list.name + QStringLiteral(".part"));
    if (QFile::exists(list.name))
        return fail(QStringLiteral("%1 exists already").arg(list.name));
    if (!list.file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return fail(QStringLiteral("%1: %2").arg(list.file.fileName(), list.file.errorString()));
    std::signal(SIGINT, requestCancel);
    std::signal(SIGTERM, requestCancel);
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN); // the list is completed even if nobody reads the output
#endif

    CancelRequest cancelRequest;
    AsyncTaskProcessor processor;
    processor.setTaskMonitor(&cancelRequest);
    processor.setExitEventLoopWhenDone(true);
    auto *cleanUp = new CleanUpTask(list);
    for (const QString &file : files) {
        auto *task = new ChecksumTask(file, list);
        processor.addTask(task);
        processor.setCleanUpTask(task, cleanUp); // skip to it after a failure or a cancel
    }
    processor.addTask(cleanUp);
    const auto showProgress = [&](AsyncTask *task, const QString &text) {
        const qint64 number = files.size() - list.missing + 1;
        const QString line = QStringLiteral("%1 of %2, ").arg(number).arg(files.size()) + text
            + QLatin1String(": ") + task->name();
        // Blanks cover the longer line of an earlier file.
        print(stdout, QLatin1Char('\r') + line.leftJustified(79, QLatin1Char(' '), true));
    };
    QObject::connect(&processor, &AsyncTaskProcessor::progress, &processor, showProgress);
    QString problem;
    QObject::connect(&processor, &AsyncTaskProcessor::finished, &processor, [&](AsyncTask *task) {
        if (!task->isOk() && problem.isEmpty())
            problem = task->error();
    });
    processor.startLater();
    const int exitCode = QCoreApplication::exec();
    print(stdout, QStringLiteral("\n"));
    if (!problem.isEmpty())
        return fail(problem);
    return list.missing == 0 ? exitCode : fail(QStringLiteral("Cancelled"), 130);
}
