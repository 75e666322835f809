#pragma once

#include "BuildPaths.h"
#include "FileTree.h"
#include "Fixture.h"
#include "RealArchiver.h"
#include "TestFolder.h"
#include "TestSystem.h"

#include "CsvText.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>
#include <QtTest/QtTest>

constexpr int StudyTimeLimit = 60000; // milliseconds

inline QString asText(QByteArray bytes)
{
    return QString::fromLocal8Bit(bytes.replace("\r\n", "\n"));
}

/// The program cluster-study in a folder of its own, a file of cases, and the output folder.
class StudySite
{
public:
    StudySite()
    {
        QDir().mkpath(path(QStringLiteral("program")));
        copy(BuildPaths::clusterStudy(), QFileInfo(program()).fileName());
        for (const char *name : {"7z.exe", "7z.dll"}) {
            const QString file = QCoreApplication::applicationDirPath() + QLatin1Char('/')
                + QString::fromLatin1(name);
            if (onWindows() && QFile::exists(file))
                copy(file, QString::fromLatin1(name));
        }
        environment_ = QProcessEnvironment::systemEnvironment();
        process_.setWorkingDirectory(root_.path());
    }

    ~StudySite()
    {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished();
        }
    }

    QString path(const QString &name) const { return root_.filePath(name); }
    QString program() const
    {
        return path(QStringLiteral("program/") + QFileInfo(BuildPaths::clusterStudy()).fileName());
    }
    QString output(const QString &name = QString()) const
    {
        return path(QStringLiteral("cases-results"))
            + (name.isEmpty() ? QString() : QLatin1Char('/') + name);
    }
    QProcess &process() { return process_; }
    QProcessEnvironment &environment() { return environment_; }

    void writeCases(const QByteArray &csv) const
    {
        if (!writeFile(path(QStringLiteral("cases.csv")), csv))
            qFatal("The cases cannot be written.");
    }

    /// Runs a shell script before each call of 7-Zip, with the same arguments. Not on Windows.
    void wrapArchiver(const QByteArray &script)
    {
        const QString wrapper = path(QStringLiteral("bin/7z"));
        const QByteArray end = "exec " + QFile::encodeName(archiverOnPath()) + " \"$@\"\n";
        if (!writeFileInFolder(wrapper, "#!/bin/sh\n" + script + end)
            || !QFile::setPermissions(wrapper, QFile::ReadOwner | QFile::ExeOwner))
            qFatal("The script for 7-Zip cannot be written.");
        const QString variable = QStringLiteral("PATH");
        environment_.insert(variable, path(QStringLiteral("bin:")) + environment_.value(variable));
    }

    /// The command line: \a options, the file of cases, and the program with \a actions.
    QStringList commandLine(const QStringList &options, const QStringList &actions) const
    {
        return options
            + QStringList{QStringLiteral("cases.csv"), QStringLiteral("--"),
                          BuildPaths::studyCase()}
        + actions;
    }

    void start(const QStringList &arguments)
    {
        process_.setProcessEnvironment(environment_);
        process_.start(program(), arguments);
    }

    int finish()
    {
        if (!process_.waitForFinished(StudyTimeLimit) && process_.state() != QProcess::NotRunning)
            return -1;
        printed_ = asText(process_.readAllStandardOutput());
        errors_ = asText(process_.readAllStandardError());
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -2;
    }

    int run(const QStringList &arguments)
    {
        start(arguments);
        return finish();
    }

    int runCases(const QStringList &options, const QStringList &actions)
    {
        return run(commandLine(options, actions));
    }

    QString printed() const { return printed_; }
    QString errors() const { return errors_; }

    /// A column of the table of results, without its name.
    QStringList column(const QString &name) const
    {
        QVector<ClusterStudy::CsvRow> rows;
        ClusterStudy::readCsv(contentOf(output(QStringLiteral("results.csv"))), rows);
        QStringList values;
        if (rows.isEmpty())
            return values;
        const int index = rows.first().fields.indexOf(name);
        for (int row = 1; row < rows.size(); ++row)
            values << rows.at(row).fields.value(index);
        return values;
    }

    QStringList states() const { return column(QStringLiteral("state")); }

private:
    Q_DISABLE_COPY(StudySite)

    void copy(const QString &from, const QString &name) const
    {
        if (!QFile::copy(from, path(QStringLiteral("program/") + name)))
            qFatal("%s cannot be copied.", qPrintable(from));
    }

    TestFolder root_;
    QProcessEnvironment environment_;
    QProcess process_;
    QString printed_;
    QString errors_;
};

inline QString asError(const QString &text)
{
    return QStringLiteral("cluster-study: %1\n").arg(text);
}

/// Hides the command lines that SevenZip sends to the debug channel of the test.
class TestWithStudy : public Fixture
{
protected:
    void initTestCase() override
    {
        QLoggingCategory::setFilterRules(QStringLiteral("vorn.utility.debug=false"));
    }

    static QString text(const char *latin) { return QString::fromLatin1(latin); }

    static QStringList list(const char *words) { return text(words).split(QLatin1Char(' ')); }
};
