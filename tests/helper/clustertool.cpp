// A "NodeInformation.exe" that prints the file that FAKE_NODES names, and adds to the file that
// FAKE_NODES_RECORD names its own file name and its arguments, all in one line. FAKE_NODES_SECONDS
// is the time that it takes after that.

#include "BinaryStreams.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>

#include <cstdio>
#include <cstdlib>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    useBinaryStreams();
    QStringList call = QCoreApplication::arguments();
    call.first() = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    QFile record(qEnvironmentVariable("FAKE_NODES_RECORD"));
    QFile nodes(qEnvironmentVariable("FAKE_NODES"));
    if (!record.open(QIODevice::Append) || !nodes.open(QIODevice::ReadOnly))
        return EXIT_FAILURE;
    record.write(call.join(QLatin1Char('|')).toUtf8() + '\n');
    const QByteArray output = nodes.readAll();
    std::fwrite(output.constData(), 1, static_cast<std::size_t>(output.size()), stdout);
    std::fflush(stdout);
    QThread::sleep(static_cast<unsigned long>(qEnvironmentVariableIntValue("FAKE_NODES_SECONDS")));
    std::fputs("c9:9:9:9:HeadNodes,ComputeNodes\n", stderr); // nobody reads this
    return EXIT_SUCCESS;
}
