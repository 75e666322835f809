#pragma once

#include "TestFiles.h"
#include "TestSystem.h"
#include "TestWithFolder.h"

#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

inline bool runQuietly(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

/// Hides an entry whose name begins with a dot, which is enough on systems other than Windows.
inline bool makeHidden(const QString &path)
{
    if (onWindows()) {
        runQuietly(QStringLiteral("attrib"),
                   {QStringLiteral("+H"), QDir::toNativeSeparators(path)});
    }
    return QFileInfo(path).isHidden();
}

/// Each test function has a current folder of its own and makes entries in it.
class TestWithEntries : public TestInFolder
{
protected:
    void init() override
    {
        TestInFolder::init();
        here_ = QDir(testFolder()).canonicalPath();
    }

    void cleanup() override
    {
        opened_.close();
        TestInFolder::cleanup();
    }

    QString path(const QByteArray &name) const
    {
        return here_ + QLatin1Char('/') + QString::fromUtf8(name);
    }
    bool makeFolder(const QByteArray &name) const { return QDir().mkpath(path(name)); }
    bool makeFile(const QByteArray &name, const QByteArray &content = "content") const
    {
        return writeFile(path(name), content);
    }
    // Also of a link to nothing.
    bool exists(const QByteArray &name) const
    {
        const QFileInfo info(path(name));
        return entriesOf(info.path()).contains(info.fileName());
    }

    // On Windows the file of a link has a suffix.
    static QByteArray linkName(const QByteArray &name)
    {
        return onWindows() ? name + ".lnk" : name;
    }
    bool makeLink(const QByteArray &target, const QByteArray &name) const
    {
        return QFile::link(path(target), path(linkName(name)));
    }

    bool makeJunction(const char *target, const char *name) const
    {
        runQuietly(QStringLiteral("cmd.exe"),
                   {QStringLiteral("/C"), QStringLiteral("mklink"), QStringLiteral("/J"),
                    QDir::toNativeSeparators(path(name)), QDir::toNativeSeparators(path(target))});
        return QFileInfo(path(name)).isJunction();
    }

    // An entry that removeDir() cannot take away, as long as the test goes on.
    bool makeObstacle(const char *name)
    {
        if (!onWindows())
            return QFile::link(path("no such target"), path(name));
        opened_.setFileName(path(name));
        return opened_.open(QIODevice::WriteOnly);
    }

    QString here_; // the folder of the test function, without links in its path
    QFile opened_;
};
