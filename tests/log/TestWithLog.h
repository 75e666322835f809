#pragma once

#include "TestFiles.h"
#include "TestWithFolder.h"

#include <Utility/Log.h>

#include <QtCore/QDateTime>
#include <QtTest/QtTest>

#include <functional>

/// Whether \a prefix is what \a format makes of a time from \a before up to now.
inline bool isFromSince(const QDateTime &before, const QString &prefix,
                        const std::function<QString(const QDateTime &)> &format)
{
    const QDateTime now = QDateTime::currentDateTime();
    for (QDateTime time = before; time < now.addSecs(1); time = time.addSecs(1)) {
        if (prefix == format(time))
            return true;
    }
    return false;
}

/// Each test function has a folder of its own, and the name of a log in it.
class TestWithLog : public TestWithFolder
{
protected:
    void init() override
    {
        TestWithFolder::init();
        fileName_ = path(QStringLiteral("run.log"));
    }

    // Creates files that are not empty.
    bool make(const QStringList &names) const
    {
        for (const QString &name : names) {
            if (!writeFile(path(name), "x"))
                return false;
        }
        return true;
    }

    QByteArray written() const { return contentOf(fileName_); }

    QString fileName_;
};
