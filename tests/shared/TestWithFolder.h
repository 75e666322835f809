#pragma once

#include "CurrentFolder.h"
#include "Fixture.h"
#include "TestFolder.h"

#include <QtTest/QtTest>

#include <memory>

/// Each test function has a folder of its own.
class TestWithFolder : public Fixture
{
protected:
    void init() override
    {
        folder_ = std::make_unique<TestFolder>();
        QVERIFY(folder_->isValid());
    }

    void cleanup() override { folder_.reset(); }

    QString testFolder() const { return folder_->path(); }
    QString path(const QString &name) const { return folder_->filePath(name); }
    QString path(const char *name) const { return path(QString::fromUtf8(name)); }

private:
    std::unique_ptr<TestFolder> folder_;
};

/// Each test function has a folder of its own, which is the current one.
class TestInFolder : public TestWithFolder
{
protected:
    void init() override
    {
        TestWithFolder::init();
        current_ = std::make_unique<CurrentFolder>(testFolder());
        QVERIFY(current_->isUsed());
    }

    void cleanup() override
    {
        current_.reset();
        TestWithFolder::cleanup();
    }

private:
    std::unique_ptr<CurrentFolder> current_;
};
