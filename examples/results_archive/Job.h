#pragma once

#include "FolderFiles.h"
#include "Options.h"

#include <Utility/CpuCounter.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <memory>

namespace Vorn::Util {
class Log;
class SevenZip;
} // namespace Vorn::Util

namespace ResultsArchive {

class CancelRequest;

/// The steps of a run and the data that they share. A step returns an error message, empty if it
/// succeeded.
class Job : public QObject
{
    Q_OBJECT

public:
    /// The object uses \a cancel and \a log, which must outlive it.
    Job(const Options &options, const CancelRequest &cancel, Vorn::Util::Log &log);

    Q_INVOKABLE void inspectFolder();
    QString logMachine();
    QString logCluster() const;
    QString checkStart() const;
    QString checkSizes() const;

    QString startPacking(Vorn::Util::SevenZip &archive);
    QString checkPacking(const Vorn::Util::SevenZip &archive);

    QString startListing(Vorn::Util::SevenZip &archive) const;
    QString checkListing(const Vorn::Util::SevenZip &archive) const;

    QString startUnpacking(Vorn::Util::SevenZip &archive) const;
    QString unpackedPart() const; ///< in percent, so far
    QString checkUnpacking(const Vorn::Util::SevenZip &archive) const;

    QStringList names() const;
    QString compareFile(const QString &name) const;

    /// Lists the archive with a command of the system and checks its size. This is the last check.
    QString listWithSystem();

    /// Removes the temporary files and, unless every check has succeeded, the archive.
    QString cleanUp();

    /// Whether the archive was made and every check has succeeded. Set by cleanUp().
    bool isComplete() const;

    /// A line about a successful run.
    QString summary(qint64 milliseconds) const;

private:
    QString unpackFolder() const;

    Options options_;
    const CancelRequest &cancel_;
    Vorn::Util::Log &log_;
    FolderFiles files_;
    Vorn::Util::CpuCounter load_{Vorn::Util::CpuCounter::CpuPercent};
    std::unique_ptr<QTemporaryDir> scratch_;
    qint64 packedBytes_ = 0;
    bool startedPacking_ = false;
    bool verified_ = false;
    bool complete_ = false;
};

} // namespace ResultsArchive
