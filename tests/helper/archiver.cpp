// A "7z.exe" that does what a script says. FAKE_ARCHIVER names the script, FAKE_ARCHIVER_RECORD
// the file that records how the program was called; FakeArchiver.h writes the one and reads the
// other.

#include "BinaryStreams.h"
#include "TestFiles.h"
#include "TestSystem.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>
#include <QtCore/QThread>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int NoScript = 96;
constexpr int TooLong = 97;               // ends the program also when a test goes wrong
constexpr unsigned long LongestLife = 60; // seconds

[[noreturn]] void leave(int exitCode)
{
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

QByteArray readInput()
{
    QByteArray all;
    std::array<char, 256> buffer{};
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), stdin))
        all.append(buffer.data(), static_cast<int>(size));
    return all;
}

// The content, in hexadecimal, of the list file that the command line names; null if there is none.
QJsonValue listFile(const QStringList &arguments)
{
    for (const QString &argument : arguments) {
        QFile file(argument.mid(1));
        if (argument.startsWith(QLatin1Char('@')) && file.open(QIODevice::ReadOnly))
            return QString::fromLatin1(file.readAll().toHex());
    }
    return QJsonValue();
}

bool writeRecord()
{
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    QJsonObject record;
    record.insert(QStringLiteral("arguments"), QJsonArray::fromStringList(arguments));
    record.insert(QStringLiteral("folder"), QDir::currentPath());
    record.insert(QStringLiteral("listFile"), listFile(arguments));
    // Reads up to the end: if the library leaves the input open, the program hangs here and the
    // test fails.
    record.insert(QStringLiteral("input"), QString::fromLatin1(readInput().toHex()));
    QSaveFile file(qEnvironmentVariable("FAKE_ARCHIVER_RECORD"));
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(record).toJson()) > 0
        && file.commit();
}

void print(std::FILE *channel, const QByteArray &bytes, int blockSize)
{
    for (int from = 0; from < bytes.size(); from += blockSize) {
        const QByteArray block = bytes.mid(from, blockSize);
        std::fwrite(block.constData(), 1, static_cast<std::size_t>(block.size()), channel);
        std::fflush(channel);
        if (from + blockSize < bytes.size())
            QThread::usleep(100); // gives the reader the chance to see the block alone
    }
}

void flood(const QByteArray &bytes, int times)
{
    for (int i = 0; i < times; ++i)
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void waitFor(const QString &fileName)
{
    while (!QFile::exists(fileName))
        QThread::msleep(2);
}

void writeFileOrLeave(const QString &fileName, const QByteArray &bytes)
{
    if (!writeFile(fileName, bytes))
        leave(NoScript);
}

// Below the folder that an extraction names; other operations have none.
void unpackFile(const QString &name, const QByteArray &bytes)
{
    const QString option = QStringLiteral("-o");
    for (const QString &argument : QCoreApplication::arguments()) {
        if (argument.startsWith(option))
            writeFileOrLeave(QDir(argument.mid(option.size())).filePath(name), bytes);
    }
}

void run(const QJsonObject &step)
{
    const QString action = step.value(QStringLiteral("do")).toString();
    const QString name = step.value(QStringLiteral("name")).toString();
    const int number = step.value(QStringLiteral("number")).toInt();
    const QByteArray bytes
        = QByteArray::fromHex(step.value(QStringLiteral("bytes")).toString().toLatin1());
    if (action == QLatin1String("print"))
        print(stdout, bytes, number > 0 ? number : static_cast<int>(bytes.size()));
    else if (action == QLatin1String("printError"))
        print(stderr, bytes, number > 0 ? number : static_cast<int>(bytes.size()));
    else if (action == QLatin1String("flood"))
        flood(bytes, number);
    else if (action == QLatin1String("writeFile"))
        writeFileOrLeave(name, bytes);
    else if (action == QLatin1String("unpackFile"))
        unpackFile(name, bytes);
    else if (action == QLatin1String("waitFor"))
        waitFor(name);
    else if (action == QLatin1String("crash"))
        crash();
    else if (action == QLatin1String("exit"))
        leave(number);
    else
        leave(NoScript);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    useBinaryStreams();
    limitLife();
    QFile script(qEnvironmentVariable("FAKE_ARCHIVER"));
    if (!script.open(QIODevice::ReadOnly))
        leave(NoScript);
    const QJsonArray steps = QJsonDocument::fromJson(script.readAll()).array();
    script.close();
    if (!writeRecord()) // from here on the test may write the next script
        leave(NoScript);
    for (const QJsonValue &step : steps)
        run(step.toObject());
    leave(0);
}
