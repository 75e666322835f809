#pragma once

#include "FakeArchiver.h"
#include "Fixture.h"
#include "OwnTempFolder.h"
#include "TestSystem.h"

#include <Utility/SevenZip.h>
#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtTest/QtTest>

class Archive : public Vorn::Util::SevenZip
{
public:
    using SevenZip::setCompressedSize;
    using SevenZip::setFiles;
    using SevenZip::setUncompressedSize;
};

inline QStringList numberedFiles(int count)
{
    QStringList names;
    for (int i = 1; i <= count; ++i)
        names << QStringLiteral("file %1").arg(i);
    return names;
}

inline QStringList listFilesThere()
{
    return QDir(Vorn::Util::System::getTempDirPath())
        .entryList({QStringLiteral("listfile*")}, QDir::AllEntries | QDir::System);
}

inline QByteArray lines(const QStringList &names)
{
    QByteArray all;
    for (const QString &name : names)
        all += name.toUtf8() + lineEnd();
    return all;
}

inline const char *const Ruler
    = "------------------- ----- ------------ ------------  ----------\n";

/// A listing with this one table, in the form of the product's archiver.
inline QByteArray listing(const QByteArray &entries, const QByteArray &totals = QByteArray())
{
    return "Listing archive: x\n\n" + QByteArray(Ruler) + entries + Ruler + totals;
}

/// The archiver is the one of FakeArchiver.h. Every test function checks that no list file is left.
class TestWithFakeArchiver : public Fixture
{
protected:
    void initTestCase() override
    {
        QVERIFY(temp_.isUsed());
        QVERIFY(QFile::exists(Vorn::Util::System::getCurrentExePath() + QStringLiteral("/7z.exe")));
    }

    void cleanup() override { QCOMPARE(listFilesThere(), QStringList()); }

    OwnTempFolder temp_;
};
