#include "Workplace.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <malloc.h>

namespace Workplace {

namespace {

QString root;

} // namespace

void setFolder(const QString &folder)
{
    root = folder;
}

QString path(const QString &name)
{
    return root + QLatin1Char('/') + name;
}

QStringList makeFiles(const QString &name, int count, int size)
{
    QRandomGenerator random(1);
    QByteArray content(size, '\0');
    QStringList files;
    for (int index = 0; index < count; ++index) {
        const QString folder = path(QStringLiteral("%1/%2").arg(name).arg(index / 100));
        if (index % 100 == 0)
            QDir().mkpath(folder);
        for (char &byte : content)
            byte = static_cast<char>('0' + random.bounded(10));
        QFile file(QStringLiteral("%1/%2.dat").arg(folder).arg(index));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != size)
            qFatal("cannot write %s", qPrintable(file.fileName()));
        files.append(file.fileName());
    }
    return files;
}

void shell(const QString &command)
{
    if (std::system(qPrintable(command + QStringLiteral(" >/dev/null 2>&1 </dev/null"))) != 0)
        qFatal("failed: %s", qPrintable(command));
}

qint64 memory()
{
    const auto info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

} // namespace Workplace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    QTemporaryDir folder;
    Workplace::setFolder(folder.path());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
