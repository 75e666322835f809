#pragma once

#include <QtCore/QObject>

/// Base class of test classes: declares the functions that QtTest calls around test functions, as
/// virtual functions.
class Fixture : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    virtual void initTestCase();
    virtual void init();
    virtual void cleanup();
    virtual void cleanupTestCase();
};
