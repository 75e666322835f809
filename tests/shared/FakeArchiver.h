#pragma once

#include "TestFolder.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Controls the fake archiver (helper/archiver.cpp) from a test: holds the script that it follows
/// and reads the record of how it was called. Archivers that are started follow the object that was
/// created last.
class FakeArchiver
{
public:
    FakeArchiver()
    {
        qputenv("FAKE_ARCHIVER", QFile::encodeName(path(QStringLiteral("script"))));
        qputenv("FAKE_ARCHIVER_RECORD", QFile::encodeName(path(QStringLiteral("record"))));
        save();
    }

    /// Prints in blocks of \a blockSize bytes, 0 for one block.
    FakeArchiver &print(const QByteArray &bytes, int blockSize = 0)
    {
        return add(QStringLiteral("print"), QString(), bytes, blockSize);
    }

    FakeArchiver &printError(const QByteArray &bytes)
    {
        return add(QStringLiteral("printError"), QString(), bytes, 0);
    }

    /// Prints the same bytes \a times times without a pause.
    FakeArchiver &flood(const QByteArray &bytes, int times)
    {
        return add(QStringLiteral("flood"), QString(), bytes, times);
    }

    /// A relative name lies in the current folder of the program.
    FakeArchiver &writeFile(const QString &name, const QByteArray &bytes)
    {
        return add(QStringLiteral("writeFile"), name, bytes, 0);
    }

    /// For an extraction: \a name is relative to the folder on the command line.
    FakeArchiver &unpackFile(const QString &name, const QByteArray &bytes)
    {
        return add(QStringLiteral("unpackFile"), name, bytes, 0);
    }

    /// The program waits here until the test calls goOn() with the same word.
    FakeArchiver &waitFor(const QString &word)
    {
        return add(QStringLiteral("waitFor"), path(word), QByteArray(), 0);
    }

    FakeArchiver &exit(int code)
    {
        return add(QStringLiteral("exit"), QString(), QByteArray(), code);
    }

    FakeArchiver &crash() { return add(QStringLiteral("crash"), QString(), QByteArray(), 0); }

    bool goOn(const QString &word) const
    {
        QFile file(path(word));
        return file.open(QIODevice::WriteOnly);
    }

    bool wasCalled() const { return QFile::exists(path(QStringLiteral("record"))); }

    QStringList arguments() const
    {
        QStringList all;
        const QJsonArray values = record().value(QStringLiteral("arguments")).toArray();
        for (const QJsonValue &value : values)
            all << value.toString();
        return all;
    }

    QString folder() const { return record().value(QStringLiteral("folder")).toString(); }

    /// What the program read until its standard input ended.
    QByteArray input() const { return bytesOf(QStringLiteral("input")); }

    /// The list file on the command line; hasListFile() is false when it could not be read.
    bool hasListFile() const { return record().value(QStringLiteral("listFile")).isString(); }
    QByteArray listFile() const { return bytesOf(QStringLiteral("listFile")); }

private:
    Q_DISABLE_COPY(FakeArchiver)

    QString path(const QString &name) const { return folder_.filePath(name); }

    FakeArchiver &add(const QString &action, const QString &name, const QByteArray &bytes,
                      int number)
    {
        QJsonObject step;
        step.insert(QStringLiteral("do"), action);
        step.insert(QStringLiteral("name"), name);
        step.insert(QStringLiteral("bytes"), QString::fromLatin1(bytes.toHex()));
        step.insert(QStringLiteral("number"), number);
        steps_.append(step);
        save();
        return *this;
    }

    void save() const
    {
        QFile file(path(QStringLiteral("script")));
        if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(steps_).toJson()) < 0)
            qFatal("The script of the fake archiver cannot be written.");
    }

    QJsonObject record() const
    {
        QFile file(path(QStringLiteral("record")));
        if (!file.open(QIODevice::ReadOnly))
            return QJsonObject();
        return QJsonDocument::fromJson(file.readAll()).object();
    }

    QByteArray bytesOf(const QString &key) const
    {
        return QByteArray::fromHex(record().value(key).toString().toLatin1());
    }

    TestFolder folder_;
    QJsonArray steps_;
};
