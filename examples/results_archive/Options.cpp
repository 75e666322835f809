#include "Options.h"

#include "Names.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

namespace ResultsArchive {

namespace {

QString shown(const QString &path)
{
    return oneLine(QDir::toNativeSeparators(path));
}

bool liesInside(const QString &file, const QString &folder)
{
    // A folder that does not exist yet is where its nearest existing parent is.
    QFileInfo parent(QFileInfo(file).absolutePath());
    while (!parent.exists() && !parent.isRoot())
        parent.setFile(parent.absolutePath());
    QDir dir(parent.canonicalFilePath());
    do {
        if (QFileInfo(dir.path()) == QFileInfo(folder))
            return true;
    } while (dir.cdUp());
    return false;
}

QString readType(const QString &text, Options &options)
{
    if (text == QLatin1String("7z"))
        options.type = SevenZip::Type7z;
    else if (text == QLatin1String("zip"))
        options.type = SevenZip::TypeZip;
    else
        return QStringLiteral("The type %1 is unknown: use 7z or zip").arg(oneLine(text));
    return QString();
}

QString readMethod(const QString &text, Options &options)
{
    const QStringList methods{QStringLiteral("Copy"), QStringLiteral("Deflate"),
                              QStringLiteral("LZMA"), QStringLiteral("LZMA2"),
                              QStringLiteral("BZip2")}; // in the order of SevenZip::Method
    const bool isZip = options.type == SevenZip::TypeZip;
    const int standard = isZip ? SevenZip::Deflate : SevenZip::LZMA2;
    const int index = text.isEmpty() ? standard : static_cast<int>(methods.indexOf(text));
    if (index < 0) {
        return QStringLiteral("The method %1 is unknown: use Copy, Deflate, LZMA, LZMA2 or BZip2")
            .arg(oneLine(text));
    }
    if (isZip && index > SevenZip::Deflate) {
        return QStringLiteral("The method %1 is not for zip archives: use Copy or Deflate")
            .arg(text);
    }
    options.method = static_cast<SevenZip::Method>(index);
    return QString();
}

QString readLevel(const QString &text, Options &options)
{
    bool isNumber = false;
    const int level = text.toInt(&isNumber);
    if (!isNumber || level < SevenZip::Store || level > SevenZip::Ultra)
        return QStringLiteral("The level %1 is unknown: use 0 to 9").arg(oneLine(text));
    options.level = static_cast<SevenZip::Level>(level);
    return QString();
}

QString readFolder(const QString &text, Options &options)
{
    const QFileInfo folder(QDir(text).absolutePath());
    if (text.isEmpty() || !folder.isDir())
        return QStringLiteral("The folder does not exist: %1").arg(shown(text));
    options.folder = folder.canonicalFilePath();
    return QString();
}

// Creates the archive and removes it again. 7-Zip would report later that it cannot be written.
QString tryArchive(const QString &archive)
{
    if (QFileInfo::exists(archive))
        return QStringLiteral("The archive exists already: %1").arg(shown(archive));
    QFile file(archive);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return QStringLiteral("The archive cannot be written: %1").arg(shown(archive));
    file.remove();
    return QString();
}

QString readArchive(QString text, const QString &folder, Options &options)
{
    const QString suffix
        = options.type == SevenZip::TypeZip ? QStringLiteral(".zip") : QStringLiteral(".7z");
    if (text.isEmpty()) {
        text = QDir(folder).absolutePath();
        if (QFileInfo(text).fileName().isEmpty())
            return QStringLiteral("This folder has no name for the archive: use --archive");
        text += suffix;
    } else if (QFileInfo(text).suffix().isEmpty()) {
        text += suffix; // 7-Zip would add one
    }
    options.archive = QFileInfo(text).absoluteFilePath();
    if (liesInside(options.archive, options.folder))
        return QStringLiteral("The archive lies inside the folder: %1").arg(shown(options.archive));
    if (!canBePacked(options.archive))
        return QStringLiteral("7-Zip cannot be given this name: %1").arg(shown(options.archive));
    return tryArchive(options.archive);
}

QString readClusterTools(const QString &text, Options &options)
{
    if (text.isEmpty() || !QFileInfo(text).isDir())
        return QStringLiteral("The folder of the cluster tool does not exist: %1").arg(shown(text));
    options.clusterTools = QFileInfo(text).absoluteFilePath();
    return QString();
}

QString readLog(const QString &text, Options &options)
{
    const QString log
        = text.isEmpty() ? QDir::temp().filePath(QStringLiteral("results-archive.log")) : text;
    options.log = QFileInfo(log).absoluteFilePath();
    if (liesInside(options.log, options.folder)) {
        return QStringLiteral("The log lies inside the folder, use another with --log: %1")
            .arg(shown(options.log));
    }
    return QString();
}

} // namespace

QString readOptions(Options &options)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Packs the files of a folder and its subfolders into a new archive and verifies it: the\n"
        "archive is listed, unpacked and compared byte for byte. Symbolic links are left out.\n"
        "Needs disk space for all files twice: in the folder of the archive and in the folder for\n"
        "temporary files."));
    parser.addHelpOption();
    const QCommandLineOption archive(
        QStringLiteral("archive"),
        QStringLiteral("The archive. By default it is beside the folder and has its name."),
        QStringLiteral("file"));
    const QCommandLineOption type(QStringLiteral("type"), QStringLiteral("7z (default) or zip."),
                                  QStringLiteral("type"), QStringLiteral("7z"));
    const QCommandLineOption method(
        QStringLiteral("method"),
        QStringLiteral("Copy, Deflate (default for zip), LZMA, LZMA2 (default for 7z) or BZip2."),
        QStringLiteral("name"));
    const QCommandLineOption level(QStringLiteral("level"),
                                   QStringLiteral("Compression level, 0 to 9 (default 1)."),
                                   QStringLiteral("n"), QStringLiteral("1"));
    const QCommandLineOption log(
        QStringLiteral("log"),
        QStringLiteral("The log; the start time is added to its name. By default "
                       "results-archive.log in the folder for temporary files."),
        QStringLiteral("file"));
    const QCommandLineOption clusterTools(
        QStringLiteral("cluster-tools"),
        QStringLiteral("Log the cluster too, with the cluster tool in this folder."),
        QStringLiteral("folder"));
    parser.addOptions({archive, type, method, level, log, clusterTools});
    parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("The folder to pack."));

    if (!parser.parse(QCoreApplication::arguments()))
        return parser.errorText();
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    const QStringList folders = parser.positionalArguments();
    if (folders.size() != 1)
        return QStringLiteral("Expected one folder; see --help");

    QString problem = readType(parser.value(type), options);
    if (problem.isEmpty())
        problem = readMethod(parser.value(method), options);
    if (problem.isEmpty())
        problem = readLevel(parser.value(level), options);
    if (problem.isEmpty())
        problem = readFolder(folders.first(), options);
    if (problem.isEmpty() && parser.isSet(clusterTools))
        problem = readClusterTools(parser.value(clusterTools), options);
    if (problem.isEmpty())
        problem = readLog(parser.value(log), options);
    if (problem.isEmpty())
        problem = readArchive(parser.value(archive), folders.first(), options);
    return problem;
}

} // namespace ResultsArchive
