#pragma once

#include <QtCore/QDebug>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QUrl>

/// The outcome of calls that helper/systemcalls.h describes.
struct SystemOutcome
{
    QStringList results;  ///< one per call that has a result
    QStringList messages; ///< on Qt's debug channel
    QStringList printed;  ///< by the library, one per line
};

/// Runs \a calls in a fresh process of \a program. If the process fails, its exit code is the last
/// result.
inline SystemOutcome
runSystemCalls(const QString &program, const QString &behaviour, const QStringList &calls,
               const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    SystemOutcome outcome;
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, QStringList{behaviour} + calls, QIODevice::ReadOnly);
    process.waitForFinished();
    QString output = QString::fromLocal8Bit(process.readAllStandardOutput());
    output.remove(QLatin1Char('\r'));
    const QStringList lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QString text = QUrl::fromPercentEncoding(line.mid(1).toLatin1());
        if (line.startsWith(QLatin1Char('=')))
            outcome.results += text;
        else if (line.startsWith(QLatin1Char('!')))
            outcome.messages += text;
        else
            outcome.printed += line;
    }
    if (process.error() == QProcess::FailedToStart || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        outcome.results += QStringLiteral("exit code %1").arg(process.exitCode());
    return outcome;
}

/// A message that a debug stream makes of \a text and \a path.
inline QString debugMessage(const char *text, const QString &path)
{
    QString message;
    QDebug(&message) << text << path;
    return message.trimmed();
}
