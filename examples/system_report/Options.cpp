#include "Options.h"

#include "Text.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

namespace SystemReport {

namespace {

constexpr int MaxSeconds = 3600;

constexpr const char *Description
    = "Reports what the library knows about this machine: versions, processors, counters,\n"
      "cluster, folders, forms of paths, language, settings, processes and flags of the product.\n"
      "The text is for people: its form may change.\n\n"
      "The report names the machine, its user, its folders and the nodes of the cluster. It\n"
      "contains no values of environment variables except the paths of these folders, no content\n"
      "of files other than the names of the product's flags, and no processes of other "
      "products.\n\n"
      "The library creates the product's folders for documents, tutorials, rules, templates and\n"
      "flags if they do not exist.\n\n"
      "Exit codes: 0 the report is complete, 1 it could not be made or written.";

QString readSeconds(const QString &text, int &seconds)
{
    bool isNumber = false;
    seconds = text.toInt(&isNumber);
    if (!isNumber || seconds < 1 || seconds > MaxSeconds) {
        return QStringLiteral("The number of seconds %1 is not valid: use 1 to %2")
            .arg(oneLine(text), QString::number(MaxSeconds));
    }
    return QString();
}

QString readClusterTools(const QString &text, QString &folder)
{
    if (text.isEmpty() || !QFileInfo(text).isDir()) {
        return QStringLiteral("The folder of the cluster tool does not exist: %1")
            .arg(shownPath(text));
    }
    folder = QFileInfo(text).absoluteFilePath();
    return QString();
}

QString readHtml(const QString &text, QString &file)
{
    if (text.isEmpty() || text == QLatin1String("-")) // which is the standard output elsewhere
        return QStringLiteral("The page has no file name");
    const QFileInfo info(text);
    // A device or pipe would be replaced by the page.
    if (info.exists() && !info.isFile())
        return QStringLiteral("The page is not a file: %1").arg(shownPath(text));
    file = info.absoluteFilePath();
    return QString();
}

} // namespace

QString readOptions(Options &options)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(Description));
    parser.addHelpOption();
    const QCommandLineOption seconds(
        QStringLiteral("seconds"),
        QStringLiteral("How long the counters are read (default %1).").arg(options.seconds),
        QStringLiteral("n"));
    const QCommandLineOption clusterTools(
        QStringLiteral("cluster-tools"),
        QStringLiteral("The folder of the cluster tool. By default the folder of this program."),
        QStringLiteral("folder"));
    const QCommandLineOption html(
        QStringLiteral("html"),
        QStringLiteral("Write one page in HTML instead of text. It needs no network."),
        QStringLiteral("file"));
    parser.addOptions({seconds, clusterTools, html});

    if (!parser.parse(QCoreApplication::arguments()))
        return parser.errorText();
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    if (!parser.positionalArguments().isEmpty())
        return QStringLiteral("Expected only options; see --help");

    options.clusterTools = QCoreApplication::applicationDirPath();
    QString problem;
    if (parser.isSet(seconds))
        problem = readSeconds(parser.value(seconds), options.seconds);
    if (problem.isEmpty() && parser.isSet(clusterTools))
        problem = readClusterTools(parser.value(clusterTools), options.clusterTools);
    if (problem.isEmpty() && parser.isSet(html))
        problem = readHtml(parser.value(html), options.html);
    return problem;
}

} // namespace SystemReport
