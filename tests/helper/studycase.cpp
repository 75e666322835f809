// The program of a case in a parameter study: "studycase ACTION VALUE [ACTION VALUE]...".

#include "BinaryStreams.h"
#include "TestFiles.h"
#include "TestSystem.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>
#include <QtCore/QThread>
#include <QtCore/QVector>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int UnknownAction = 96;
constexpr int TooLong = 97;               // ends the program also when a test goes wrong
constexpr unsigned long LongestLife = 60; // seconds

[[noreturn]] void leave(int exitCode)
{
    std::fflush(nullptr);
    std::_Exit(exitCode);
}

[[noreturn]] void crash()
{
    // Windows reports a crash by the exit code, other systems by the signal.
    if (onWindows())
        leave(static_cast<int>(0xC0000005U));
    std::abort();
}

void limitLife()
{
    QThread *watch = QThread::create([] {
        QThread::sleep(LongestLife);
        leave(TooLong);
    });
    watch->start();
}

void print(std::FILE *channel, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), channel);
    std::fflush(channel);
}

void append(const QString &name, const QByteArray &line)
{
    QFile file(name);
    if (!file.open(QIODevice::Append) || file.write(line + '\n') < 0)
        leave(UnknownAction);
}

QByteArray noise(int kibibytes)
{
    QVector<quint32> numbers(kibibytes * 256);
    QRandomGenerator(static_cast<quint32>(kibibytes)).fillRange(numbers.data(), numbers.size());
    return {reinterpret_cast<const char *>(numbers.constData()), kibibytes * 1024};
}

void removeCurrentFolder()
{
    QDir folder = QDir::current();
    QDir::setCurrent(folder.filePath(QStringLiteral("..")));
    folder.removeRecursively(); // Windows leaves the open files of the output
}

// Starts a process that ends only when it is killed, and records its number.
void startChild(const QString &record)
{
    auto *child = new QProcess; // never deleted: its destructor would kill the process
    child->setProcessChannelMode(QProcess::ForwardedChannels);
    child->start(
        QCoreApplication::applicationFilePath(),
        {QStringLiteral("deaf"), QString(), QStringLiteral("wait"), QStringLiteral("for ever")});
    if (!child->waitForStarted() || !writeFile(record, QByteArray::number(child->processId())))
        leave(UnknownAction);
}

void run(const QString &action, const QString &value)
{
    if (action == QLatin1String("print"))
        print(stdout, value.toUtf8() + '\n');
    else if (action == QLatin1String("error"))
        print(stderr, value.toUtf8() + '\n');
    else if (action == QLatin1String("flood")) // kibibytes
        print(stdout, QByteArray(1024, 'x').repeated(value.toInt()));
    else if (action == QLatin1String("noise")) // kibibytes, which cannot be compressed
        print(stdout, noise(value.toInt()));
    else if (action == QLatin1String("variable"))
        print(stdout, qEnvironmentVariable(qPrintable(value)).toUtf8() + '\n');
    else if (action == QLatin1String("result"))
        append(QStringLiteral("result.txt"), value.toUtf8());
    else if (action == QLatin1String("long-result")) // bytes
        append(QStringLiteral("result.txt"), QByteArray(value.toInt(), '#'));
    else if (action == QLatin1String("count"))
        append(value, "run");
    else if (action == QLatin1String("process"))
        append(value, QByteArray::number(QCoreApplication::applicationPid()));
    else if (action == QLatin1String("folder"))
        QDir().mkpath(value);
    else if (action == QLatin1String("remove-folder"))
        removeCurrentFolder();
    else if (action == QLatin1String("deaf"))
        std::signal(SIGTERM, SIG_IGN);
    else if (action == QLatin1String("obedient"))
        std::signal(SIGTERM, [](int) { std::_Exit(0); });
    else if (action == QLatin1String("child"))
        startChild(value);
    else if (action == QLatin1String("wait"))
        while (!QFile::exists(value))
            QThread::msleep(2);
    else if (action == QLatin1String("fail-without") && !QFile::exists(value))
        leave(1);
    else if (action == QLatin1String("crash"))
        crash();
    else if (action == QLatin1String("exit"))
        leave(value.toInt());
    else if (action != QLatin1String("fail-without"))
        leave(UnknownAction);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    useBinaryStreams();
    limitLife();
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (int index = 0; index < arguments.size(); index += 2)
        run(arguments.at(index), arguments.value(index + 1));
    leave(0);
}
