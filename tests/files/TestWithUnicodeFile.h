#pragma once

#include "BuildPaths.h"
#include "Fixture.h"
#include "OwnTempFolder.h"
#include "TestFiles.h"
#include "TestFolder.h"

#include <QtCore/QDir>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <memory>

inline const QByteArray Content = "own content";

inline QString unicodeName()
{
    return QStringLiteral("Tr\u00e4ger.dat");
}

inline bool isPlain(const QString &text)
{
    for (const QChar character : text) {
        if (character.unicode() > 127)
            return false;
    }
    return true;
}

/// Has the helper program make a UnicodeFile of \a file, with a temporary folder of its own.
inline QJsonObject runHelper(const QString &file, const QString &tempFolder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : TempVariables)
        environment.insert(QString::fromLatin1(variable), QDir::toNativeSeparators(tempFolder));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(BuildPaths::helperProgram(), {QStringLiteral("unicode-file"), file});
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return QJsonObject();
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

/// Each test function has a folder for its files and an empty temporary folder, which it leaves
/// empty.
class TestWithUnicodeFile : public Fixture
{
protected:
    void initTestCase() override
    {
        QVERIFY(temp_.isUsed());
        current_ = QDir::currentPath();
    }

    void init() override
    {
        folder_ = std::make_unique<TestFolder>(current_ + QStringLiteral("/files-XXXXXX"));
        QVERIFY(folder_->isValid());
        QVERIFY(QDir().mkpath(temp_.path()));
        QVERIFY(isPlain(folder_->path()));
    }

    void cleanup() override
    {
        QCOMPARE(QDir::currentPath(), current_);
        folder_.reset();
        const bool isEmpty = entriesOf(temp_.path()).isEmpty();
        QDir(temp_.path()).removeRecursively(); // for the next test
        QVERIFY2(isEmpty, "a file was left in the temporary folder");
    }

    QString path(const QString &name) const { return folder_->filePath(name); }

    // A file of this content in a folder made for it.
    QString create(const QString &name, const QByteArray &content = Content) const
    {
        if (!writeFileInFolder(path(name), content))
            qFatal("The test's file cannot be written");
        return path(name);
    }

    static QString unicodeFolder() { return QStringLiteral("Tr\u00e4ger"); }

    OwnTempFolder temp_;
    std::unique_ptr<TestFolder> folder_;
    QString current_;
};
