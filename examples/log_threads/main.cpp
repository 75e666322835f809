// Shows that threads may share a log, and that the size limit removes only the oldest lines.

#include <Utility/Log.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <cstdio>
#include <system_error>
#include <thread>
#include <vector>

using namespace Vorn::Util;

namespace {

constexpr char Help[] = R"(Usage: log-threads LOG [THREADS [LINES]]

Writes a log from several threads, reads it back and says what it holds. There are 1 to 100
threads (default 4), and each writes LINES lines (default 10000). A file LOG that exists is
replaced.

Exit codes: 0 the log holds what it should, 1 it does not.)";

void print(std::FILE *stream, const QString &line)
{
    std::fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stream);
}

int fail(const QString &problem)
{
    print(stderr, QStringLiteral("log-threads: ") + problem);
    return 1;
}

// A number from the command line, or a default; 0 if it is not a number from 1 to a million.
int number(const QStringList &arguments, int index, int standard)
{
    const int value = arguments.size() > index ? arguments.at(index).toInt() : standard;
    return value >= 1 && value <= 1000000 ? value : 0;
}

// Any number of threads may call append() at the same time. The log is opened before the threads
// start and closed after they have ended, because open() and close() are not for several threads.
// Returns whether the system has started all threads.
bool write(Log &log, int threads, int lines)
{
    const QString rest(150, QLatin1Char('.'));
    std::vector<std::thread> writers;
    bool areStarted = true;
    for (int thread = 1; areStarted && thread <= threads; ++thread) {
        const auto writeLines = [&log, &rest, thread, lines] {
            for (int line = 1; line <= lines; ++line) {
                log.append(QStringLiteral("thread %1 line %2 %3")
                               .arg(QString::number(thread), QString::number(line), rest));
            }
        };
        try {
            writers.emplace_back(writeLines);
        } catch (const std::system_error &) {
            areStarted = false;
        }
    }
    for (std::thread &writer : writers)
        writer.join();
    return areStarted;
}

// The lines of a thread that the log holds.
struct Held
{
    int first = 0; // 0 if there are none
    int last = 0;
};

// Returns an error message if a line is damaged or missing between two others.
QString read(QFile &file, std::vector<Held> &threads)
{
    static const QRegularExpression form(
        QStringLiteral("^\\[\\d\\d:\\d\\d:\\d\\d\\] thread (\\d+) line (\\d+) \\.{150}\n$"));
    while (!file.atEnd()) {
        const QRegularExpressionMatch match = form.match(QString::fromUtf8(file.readLine()));
        const auto thread = static_cast<std::size_t>(match.captured(1).toInt());
        const int line = match.captured(2).toInt();
        if (thread < 1 || thread > threads.size())
            return QStringLiteral("The log holds a damaged line");
        Held &held = threads[thread - 1];
        if (held.first == 0)
            held.first = line;
        else if (line != held.last + 1)
            return QStringLiteral("Thread %1 has lost lines after line %2")
                .arg(thread)
                .arg(held.last);
        held.last = line;
    }
    return QString();
}

// Reports what the log holds, and checks that only old lines of a full log were removed.
int report(const QString &name, int threads, int lines)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return fail(
            QStringLiteral("The log cannot be read: %1").arg(QDir::toNativeSeparators(name)));
    std::vector<Held> all(static_cast<std::size_t>(threads));
    const QString problem = read(file, all);
    if (!problem.isEmpty())
        return fail(problem);

    // A truncation leaves at least this much.
    constexpr int LongestRest = 255;
    const bool canBeTruncated
        = file.size() >= Log::MaxLogSize - Log::AmountToTruncate - LongestRest;
    print(stdout,
          QStringLiteral("%1: %2 MiB")
              .arg(QDir::toNativeSeparators(name))
              .arg(static_cast<double>(file.size()) / (1 << 20), 0, 'f', 1));
    for (int thread = 1; thread <= threads; ++thread) {
        const Held &held = all[static_cast<std::size_t>(thread - 1)];
        if (held.first == 0 ? !canBeTruncated
                            : held.last != lines || (held.first != 1 && !canBeTruncated))
            return fail(QStringLiteral("Lines of thread %1 were not written").arg(thread));
        print(stdout,
              held.first == 0 ? QStringLiteral("thread %1: all lines were removed").arg(thread)
                              : QStringLiteral("thread %1: lines %2 to %3")
                                    .arg(QString::number(thread), QString::number(held.first),
                                         QString::number(held.last)));
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString help = QString::fromLatin1(Help);
    if (arguments.value(1) == QLatin1String("--help")) {
        print(stdout, help);
        return 0;
    }
    const int threads = number(arguments, 2, 4);
    const int lines = number(arguments, 3, 10000);
    if (arguments.size() < 2 || arguments.size() > 4 || threads == 0 || threads > 100 || lines == 0)
        return fail(help.section(QLatin1Char('\n'), 0, 0));

    Log log(QDir::current().absoluteFilePath(arguments.at(1)), Log::NoFileTimeStamp);
    if (!log.open(false)) {
        return fail(QStringLiteral("The log cannot be written: %1")
                        .arg(QDir::toNativeSeparators(log.name())));
    }
    if (!write(log, threads, lines))
        return fail(QStringLiteral("%1 threads cannot be started").arg(threads));
    log.close();
    return report(log.name(), threads, lines);
}
