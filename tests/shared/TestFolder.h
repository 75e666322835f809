#pragma once

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

/// A folder for the files of a test, deleted with the object. The destructor waits for a program
/// that has just ended and still has the folder as its current one.
class TestFolder : public QTemporaryDir
{
public:
    using QTemporaryDir::QTemporaryDir;
    ~TestFolder()
    {
        if (!isValid())
            return; // its path is empty, which for QDir is the current folder
        const bool isGone = QTest::qWaitFor([this] { return QDir(path()).removeRecursively(); });
        if (!isGone)
            qWarning("The folder %s stays.", qPrintable(path()));
    }

private:
    Q_DISABLE_COPY(TestFolder)
};
