#pragma once

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

/// A folder for the files of a test, which goes with the object. A program that has just ended
/// may hold it as its current folder for a moment longer: it is waited for.
class TestFolder : public QTemporaryDir
{
public:
    using QTemporaryDir::QTemporaryDir;
    ~TestFolder()
    {
        const bool isGone = QTest::qWaitFor([this] { return QDir(path()).removeRecursively(); });
        if (!isGone)
            qWarning("The folder %s stays.", qPrintable(path()));
    }

private:
    Q_DISABLE_COPY(TestFolder)
};
