#pragma once

#include "BuildPaths.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <cmath>

/// A row of a table, by the names of the columns.
using Row = QMap<QString, QString>;

/// Reads a table whose values contain no commas, quotes or line breaks.
inline QList<Row> readTable(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeAll(QString());
    if (lines.isEmpty())
        return {};
    const QStringList names = lines.takeFirst().split(QLatin1Char(','));
    QList<Row> rows;
    for (const QString &line : qAsConst(lines)) {
        const QStringList values = line.split(QLatin1Char(','));
        Row row;
        for (int i = 0; i < names.size(); ++i)
            row.insert(names.at(i), values.value(i));
        rows.append(row);
    }
    return rows;
}

/// The study in examples/cluster_study/beam, run in a temporary folder of its own.
class BeamStudy
{
public:
    /// Why the study cannot run here; empty if it can.
    static QString missingProgram()
    {
        for (const char *name : {"python3", "ccx"}) {
            if (QStandardPaths::findExecutable(QString::fromLatin1(name)).isEmpty())
                return QStringLiteral("The beam study needs %1").arg(QString::fromLatin1(name));
        }
        return QString();
    }

    /// \a caseCount: the number of cases from the beginning of the list; all if it is negative.
    explicit BeamStudy(int caseCount = -1)
    {
        QFile all(BuildPaths::beamStudy() + QStringLiteral("/cases.csv"));
        QFile some(casesFile());
        if (!all.open(QIODevice::ReadOnly) || !some.open(QIODevice::WriteOnly))
            qFatal("The cases cannot be copied");
        for (int line = 0; (caseCount < 0 || line <= caseCount) && !all.atEnd(); ++line)
            some.write(all.readLine());
    }

    QString path(const QString &name) const { return folder_.filePath(name); }
    QString casesFile() const { return path(QStringLiteral("cases.csv")); }
    QString outputFolder() const { return path(QStringLiteral("results")); }
    QString outputFile(const QString &name) const
    {
        return outputFolder() + QLatin1Char('/') + name;
    }

    QList<Row> cases() const { return readTable(casesFile()); }
    QList<Row> table() const { return readTable(outputFile(QStringLiteral("results.csv"))); }

    /// The end files of the cases that have finished, and when they were written.
    QMap<QString, QDateTime> finishedCases() const
    {
        QMap<QString, QDateTime> ends;
        const QDir folder(outputFile(QStringLiteral("cases")));
        for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QFileInfo end(folder.filePath(name + QStringLiteral(".json")));
            if (end.exists())
                ends.insert(name, end.lastModified());
        }
        return ends;
    }

    /// Starts cluster-study with these options.
    void start(QProcess &process, const QStringList &options) const
    {
        process.setWorkingDirectory(folder_.path());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(BuildPaths::clusterStudy(),
                      options
                          + QStringList{QStringLiteral("--output"), outputFolder(), casesFile(),
                                        QStringLiteral("--"), QStringLiteral("python3"),
                                        BuildPaths::beamStudy() + QStringLiteral("/beam.py"),
                                        QStringLiteral("--length"), QStringLiteral("{length}"),
                                        QStringLiteral("--width"), QStringLiteral("{width}"),
                                        QStringLiteral("--height"), QStringLiteral("{height}"),
                                        QStringLiteral("--load"), QStringLiteral("{load}")});
    }

    /// Returns the exit code, or -1 if the program has not ended normally.
    int run(const QStringList &options)
    {
        constexpr int TimeLimit = 300000; // milliseconds
        QProcess process;
        start(process, options);
        const bool hasEnded
            = process.waitForFinished(TimeLimit) && process.exitStatus() == QProcess::NormalExit;
        output_ = QString::fromLocal8Bit(process.readAll());
        return hasEnded ? process.exitCode() : -1;
    }

    /// Runs cluster-study with these options, kills it when a third of the cases have finished, and
    /// resumes it. Returns what went wrong; empty if nothing did.
    QString runKilledAndResumed(const QStringList &options)
    {
        constexpr int TimeLimit = 60000; // milliseconds
        const int count = cases().size();
        QProcess killed;
        start(killed, options);
        const bool isInTheMiddle
            = QTest::qWaitFor([&] { return finishedCases().size() >= count / 3; }, TimeLimit);
        killed.kill();
        killed.waitForFinished();
        const QMap<QString, QDateTime> before = finishedCases();
        if (!isInTheMiddle || before.size() >= count)
            return QStringLiteral("Killed after %1 of %2 cases").arg(before.size()).arg(count);

        if (run(options + QStringList{QStringLiteral("--resume")}) != 0)
            return output_;
        const QMap<QString, QDateTime> after = finishedCases();
        for (auto end = before.cbegin(); end != before.cend(); ++end) {
            if (after.value(end.key()) != end.value())
                return QStringLiteral("The finished case %1 has run again").arg(end.key());
        }
        return problem();
    }

    /// What the last run has printed.
    QByteArray output() const { return output_.toLocal8Bit(); }

    /// Beam theory: Euler and Bernoulli's bending plus Timoshenko's shear.
    static double theory(const Row &beam)
    {
        constexpr double Young = 210000;
        constexpr double Poisson = 0.3;
        const auto value
            = [&](const char *name) { return beam.value(QString::fromLatin1(name)).toDouble(); };
        const double area = value("width") * value("height");
        const double inertia = area * value("height") * value("height") / 12;
        const double shearModulus = Young / (2 * (1 + Poisson));
        return value("load") * std::pow(value("length"), 3) / (3 * Young * inertia)
            + value("load") * value("length") / (5.0 / 6 * shearModulus * area);
    }

    /// Compares every row with its case and its deflection with theory; returns the first problem.
    QString problem() const
    {
        // README.md of the study says how the tolerance was measured.
        constexpr double Tolerance = 0.015;
        const QList<Row> expected = cases();
        const QList<Row> rows = table();
        if (rows.size() != expected.size())
            return QStringLiteral("%1 rows for %2 cases").arg(rows.size()).arg(expected.size());
        for (int i = 0; i < rows.size(); ++i) {
            const Row &row = rows.at(i);
            const QString number = QString::number(i + 1);
            for (const QString &name : expected.at(i).keys()) {
                if (row.value(name) != expected.at(i).value(name))
                    return QStringLiteral("Case %1 has another %2").arg(number, name);
            }
            if (row.value(QStringLiteral("state")) != QLatin1String("ok"))
                return QStringLiteral("Case %1 is %2")
                    .arg(number, row.value(QStringLiteral("state")));
            const double deflection = row.value(QStringLiteral("deflection")).toDouble();
            const double deviation = deflection / theory(row) - 1;
            if (!(std::abs(deviation) < Tolerance))
                return QStringLiteral("Case %1 deviates by %2").arg(number).arg(deviation);
        }
        return QString();
    }

private:
    QTemporaryDir folder_;
    QString output_;
};
