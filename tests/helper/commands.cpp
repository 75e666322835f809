#include "commands.h"

#include "BinaryStreams.h"

#include <Utility/Command.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QThread>

#include <cstdio>
#include <cstring>

namespace {

constexpr int LongestWait = 60000; // milliseconds; nothing may be left running

void print(std::FILE *channel, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), channel);
    std::fflush(channel);
}

QByteArray lines(int count)
{
    QByteArray text;
    for (int number = 1; number <= count; ++number)
        text += "line " + QByteArray::number(number) + "\r\n";
    return text;
}

void waitFor(const QString &fileName)
{
    for (int waited = 0; waited < LongestWait && !QFile::exists(fileName); waited += 5)
        QThread::msleep(5);
}

// Waits \a delay milliseconds, then prints until nobody reads the output any more.
void printWithoutPause(int delay)
{
    constexpr int LongestTime = 12000; // milliseconds
    QThread::msleep(static_cast<unsigned long>(delay));
    char line[64];
    std::memset(line, 'x', sizeof line);
    line[sizeof line - 1] = '\n';
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(LongestTime) && std::fwrite(line, sizeof line, 1, stdout) == 1) { }
}

// Prints how many milliseconds the call took, and what it returned.
void runCommand(const QString &operation, const QString &text)
{
    constexpr int MaxLines = 30;
    QElapsedTimer timer;
    timer.start();
    const QString result = operation == QLatin1String("runQ")
        ? QString::number(Vorn::Util::Command().runQ(text))
        : Vorn::Util::Command().run(text, MaxLines, false);
    print(stdout, QByteArray::number(timer.elapsed()) + ' ' + result.toUtf8());
}

void waitForEndOfInput()
{
    while (std::getchar() != EOF) { }
}

void createFile(const QString &fileName)
{
    QFile file(fileName);
    file.open(QIODevice::WriteOnly);
}

} // namespace

bool runCommandBehaviour(const QByteArray &behaviour, const QStringList &arguments)
{
    useBinaryStreams();
    const QString first = arguments.value(0);
    const QString second = arguments.value(1);
    if (behaviour == "print") {
        print(stdout, QByteArray::fromHex(first.toLatin1()));
    } else if (behaviour == "print-error") {
        print(stderr, QByteArray::fromHex(first.toLatin1()));
    } else if (behaviour == "print-lines") {
        print(stdout, lines(first.toInt()));
    } else if (behaviour == "print-arguments") {
        for (const QString &argument : arguments)
            print(stdout, argument.toUtf8() + "\r\n");
    } else if (behaviour == "print-variable") {
        print(stdout, qgetenv(first.toLatin1().constData()));
    } else if (behaviour == "copy") {
        QFile::copy(first, second);
    } else if (behaviour == "wait-for") {
        waitFor(first);
    } else if (behaviour == "print-without-pause") {
        printWithoutPause(first.toInt());
    } else if (behaviour == "run-command") {
        runCommand(first, QString::fromUtf8(QByteArray::fromHex(second.toLatin1())));
    } else if (behaviour == "hang") {
        print(stdout, QByteArray::fromHex(first.toLatin1()));
        waitForEndOfInput();
        createFile(second);
    } else {
        return false;
    }
    return true;
}
