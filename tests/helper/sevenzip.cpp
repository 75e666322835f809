#include "sevenzip.h"

#include <Utility/SevenZip.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

#include <cstdio>
#include <cstdlib>

using namespace Vorn::Util;

namespace {

constexpr int NoSuchFunction = 98;

class Archive : public SevenZip
{
public:
    using SevenZip::fileExt;
    using SevenZip::methodArg;
    using SevenZip::setCommandFinished;
    using SevenZip::toMethod;
    using SevenZip::toType;
    using SevenZip::typeArg;
};

void print(const QByteArray &text)
{
    std::fputs(text.constData(), stdout);
    std::fflush(stdout);
}

// Counts the signals compressionFinished, extractionFinished and listFinished.
class Ends
{
public:
    explicit Ends(const SevenZip &archive)
    {
        QObject::connect(&archive, &SevenZip::compressionFinished, [this] { ++count_; });
        QObject::connect(&archive, &SevenZip::extractionFinished, [this] { ++count_; });
        QObject::connect(&archive, &SevenZip::listFinished, [this] { ++count_; });
    }

    int count() const { return count_; }

private:
    int count_ = 0;
};

bool runBlocking(SevenZip &archive, const QString &operation)
{
    if (operation == QLatin1String("compress"))
        return archive.compressFiles({QStringLiteral("a.txt")});
    if (operation == QLatin1String("extract"))
        return archive.extractFilesTo(QStringLiteral("folder"));
    return archive.listFiles();
}

// Starts the operation, then runs the event loop until another program has started and ended in it.
void runAsynchronously(SevenZip &archive, const QString &operation)
{
    if (operation == QLatin1String("startCompressing"))
        archive.startCompressingFiles({QStringLiteral("a.txt")});
    else if (operation == QLatin1String("startExtracting"))
        archive.startExtractingFilesTo(QStringLiteral("folder"));
    else
        archive.startListingFiles();
    QProcess other;
    QObject::connect(&other, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     QCoreApplication::instance(), &QCoreApplication::quit);
    other.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("exit"), QStringLiteral("0")});
    QCoreApplication::exec();
}

} // namespace

int sevenZipConvert(const QStringList &arguments)
{
    const QString function = arguments.value(0);
    const QString text = arguments.value(1);
    const auto type = static_cast<SevenZip::Type>(text.toInt());
    const auto method = static_cast<SevenZip::Method>(arguments.value(2).toInt());
    if (function == QLatin1String("typeArg")) {
        print(Archive::typeArg(type).toUtf8());
    } else if (function == QLatin1String("fileExt")) {
        print(Archive::fileExt(type).toUtf8());
    } else if (function == QLatin1String("methodArg")) {
        print(Archive::methodArg(type, method).toUtf8());
    } else if (function == QLatin1String("toType")) {
        print(QByteArray::number(Archive::toType(text)));
    } else if (function == QLatin1String("toMethod")) {
        print(QByteArray::number(Archive::toMethod(text)));
    } else if (function == QLatin1String("setCommandFinished")) {
        Archive archive;
        const Ends ends(archive);
        archive.setCommandFinished();
        print(QByteArray::number(ends.count()));
    } else {
        return NoSuchFunction;
    }
    return EXIT_SUCCESS;
}

int sevenZipRun(const QStringList &arguments)
{
    qputenv("PATH", QFile::encodeName(arguments.value(0)));
    const QString operation = arguments.value(1);
    const QString name = arguments.value(3);
    SevenZip archive;
    archive.setArchiveFile(arguments.value(2));
    bool result = false;
    if (operation == QLatin1String("compress"))
        result = archive.compressFiles({name});
    else if (operation == QLatin1String("extract"))
        result = archive.extractFilesTo(name);
    else
        result = archive.listFiles();
    const QJsonObject report{
        {QStringLiteral("result"), result},
        {QStringLiteral("error"), static_cast<int>(archive.error())},
        {QStringLiteral("files"), QJsonArray::fromStringList(archive.files())}};
    print(QJsonDocument(report).toJson(QJsonDocument::Compact) + '\n');
    return EXIT_SUCCESS;
}

int sevenZipMissing(const QStringList &arguments)
{
    const QString operation = arguments.value(2);
    qputenv("PATH", QFile::encodeName(arguments.value(0)));
    SevenZip archive;
    archive.setArchiveFile(QStringLiteral("archive.7z"));
    archive.setCurrentPath(arguments.value(1));
    const Ends ends(archive);
    QJsonObject report;
    if (operation.startsWith(QLatin1String("start")))
        runAsynchronously(archive, operation);
    else
        report.insert(QStringLiteral("result"), runBlocking(archive, operation));
    report.insert(QStringLiteral("signals"), ends.count());
    report.insert(QStringLiteral("folder"), QDir::currentPath());
    report.insert(QStringLiteral("error"), static_cast<int>(archive.error()));
    print(QJsonDocument(report).toJson());
    return EXIT_SUCCESS;
}
