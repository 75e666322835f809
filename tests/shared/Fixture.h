#pragma once

#include <QtCore/QObject>

/// The functions that QtTest calls around the test functions, for the bases of test classes to
/// override.
class Fixture : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    virtual void initTestCase();
    virtual void init();
    virtual void cleanup();
    virtual void cleanupTestCase();
};
