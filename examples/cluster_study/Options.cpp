#include "Options.h"

#include "CaseTask.h"
#include "Platform.h"
#include "Text.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace ClusterStudy {

namespace {

constexpr qint64 MaxCasesFile = 64 << 20; // bytes
constexpr int MaxJobs = 1000;

constexpr const char *Description
    = "Runs a program once for each row of a CSV file, and packs all results into an archive\n"
      "with a table and a picture of the times.\n\n"
      "The first row of the file has the names of the parameters. In an argument {name} is\n"
      "replaced by the value of the parameter, {case} by the number of the case; {{name}}\n"
      "stands for {name} itself. The values are also in environment variables, such as\n"
      "STUDY_NAME. Each case has a folder of its own as the current folder: give files in\n"
      "arguments with absolute paths. The program cannot be a batch file of Windows.\n\n"
      "Files in the folder of a case:\n"
      "  result.txt        written by the case: lines \"name=value\". Each name is a column of\n"
      "                    the table, but not case, state, exit_code, seconds, error and the\n"
      "                    names of parameters. No more than 1000 names and 1 MiB are read.\n"
      "  study-output.txt  the standard output of the case\n"
      "  study-errors.txt  the standard error of the case\n"
      "The last two belong to this program: a case must not write files with these names.\n"
      "How a case ended is in a file beside its folder, such as cases/0001.json.\n\n"
      "Ctrl-C cancels the study, and packs the cases that have ended. A running case is asked\n"
      "to end, and killed after %1 seconds; on Windows it is killed at once. If this program\n"
      "is killed, the programs of the cases end too. But on Linux the processes that they have\n"
      "started may run on: end them before you use --resume.\n\n"
      "Exit codes: 0 all cases succeeded, 1 the study could not be run, 2 a case failed,\n"
      "130 cancelled.";

QString readCasesFile(const QString &path, Cases &cases)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return QStringLiteral("The file of cases cannot be read: %1").arg(shown(path));
    if (file.size() > MaxCasesFile) {
        return QStringLiteral("The file of cases has more than %1 bytes: %2")
            .arg(QString::number(MaxCasesFile), shown(path));
    }
    const QString problem = readCases(file.readAll(), cases);
    return problem.isEmpty() ? problem : QStringLiteral("%1: %2").arg(shown(path), problem);
}

// A name without a folder is searched for when a case starts.
QString programPath(const QString &program)
{
    const bool hasFolder = QDir::fromNativeSeparators(program).contains(QLatin1Char('/'));
    return hasFolder ? QFileInfo(program).absoluteFilePath() : program;
}

QString readStudy(const QStringList &words, Study &study)
{
    if (words.size() < 2)
        return QStringLiteral("Expected a file of cases and a program; see --help");
    study.program = programPath(words.at(1));
    study.arguments = words.mid(2);
    if (study.program.isEmpty())
        return QStringLiteral("The program has no name");
    if (isRunByShell(study.program)) {
        return QStringLiteral("The command interpreter of Windows would read the values of "
                              "parameters as commands: use a program instead of the batch file %1")
            .arg(oneLine(words.at(1)));
    }
    const QString problem = readCasesFile(words.first(), study.cases);
    return problem.isEmpty() ? unknownParameter(study.arguments, study.cases.names) : problem;
}

QString readJobs(const QString &text, int &jobs)
{
    bool isNumber = false;
    jobs = text.toInt(&isNumber);
    if (!isNumber || jobs < 1 || jobs > MaxJobs) {
        return QStringLiteral("The number of jobs %1 is not valid: use 1 to %2")
            .arg(oneLine(text), QString::number(MaxJobs));
    }
    return QString();
}

QString outputFolder(const QString &text, const QString &casesFile)
{
    const QFileInfo cases(casesFile);
    return QDir::cleanPath(text.isEmpty() ? cases.absolutePath() + QLatin1Char('/')
                                   + cases.completeBaseName() + QStringLiteral("-results")
                                          : QFileInfo(text).absoluteFilePath());
}

} // namespace

QString readOptions(Options &options)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(Description).arg(TimeToEnd / 1000));
    parser.addHelpOption();
    const QCommandLineOption jobs(
        QStringLiteral("jobs"),
        QStringLiteral("Cases to run at a time. By default as many as the machine has cores, or as "
                       "Slurm allows."),
        QStringLiteral("n"));
    const QCommandLineOption resume(
        QStringLiteral("resume"),
        QStringLiteral("Continue a study: run the cases that have not succeeded yet."));
    const QCommandLineOption output(
        QStringLiteral("output"),
        QStringLiteral("The folder of the results. By default CASES-results beside the file."),
        QStringLiteral("folder"));
    const QCommandLineOption slurm(
        QStringLiteral("slurm"),
        QStringLiteral("Run the cases as job arrays on Slurm. The variables of sbatch choose the "
                       "partition and the like, such as SBATCH_PARTITION."));
    const QCommandLineOption clusterTools(
        QStringLiteral("cluster-tools"),
        QStringLiteral("The folder of the cluster tool NodeInformation. By default that of this "
                       "program, or else PATH."),
        QStringLiteral("folder"));
    parser.addOptions({slurm, clusterTools, jobs, resume, output});
    parser.addPositionalArgument(QStringLiteral("cases.csv"), QStringLiteral("The cases."));
    parser.addPositionalArgument(QStringLiteral("program"),
                                 QStringLiteral("The program and its arguments, after \"--\"."),
                                 QStringLiteral("-- program [argument...]"));

    if (!parser.parse(QCoreApplication::arguments()))
        return parser.errorText();
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    const QStringList words = parser.positionalArguments();
    QString problem = readStudy(words, options.study);
    if (problem.isEmpty() && parser.isSet(jobs))
        problem = readJobs(parser.value(jobs), options.jobs);
    if (!problem.isEmpty())
        return problem;
    options.slurm = parser.isSet(slurm);
    if (parser.isSet(clusterTools) && !options.slurm)
        return QStringLiteral("The option --cluster-tools needs --slurm");
    options.clusterTools = parser.isSet(clusterTools)
        ? QFileInfo(parser.value(clusterTools)).absoluteFilePath()
        : QCoreApplication::applicationDirPath();
    options.resume = parser.isSet(resume);
    options.output = outputFolder(parser.value(output), words.first());
    const QStringList texts = QCoreApplication::arguments() << options.output;
    for (const QString &text : texts) {
        if (!canBePassed(text)) {
            return QStringLiteral("The encoding of the system cannot hold this argument; set "
                                  "LC_ALL to one that can, such as C.UTF-8: %1")
                .arg(oneLine(text));
        }
    }
    return QString();
}

} // namespace ClusterStudy
